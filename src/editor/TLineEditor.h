#pragma once

#include "vcl/Forms.h"
#include "vcl/TButton.h"
#include "vcl/TMemo.h"
#include "vcl/TPanel.h"
#include "vcl/TStatusBar.h"

#include <optional>
#include <string>

namespace tarn {

/// Asks the user for a file of lines to save to, or to load from; none when he cancels that.
std::optional<std::string> AskForTextFile(bool save);

/// A dialog in which lines are edited as a text: with room, and with files.
class TLineEditor : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TLineEditor(TComponent* owner = nullptr);

    /// Shows the lines until the user saves or cancels; true when he has saved, and Lines is what
    /// he made of the copy. A copy that is read-only can be looked at and saved to a file.
    bool Execute(const TStrings& lines, bool readOnly = false);
    TStrings& Lines() { return FMemo->Lines(); }

    TMemo& Memo() { return *FMemo; }
    TStatusBar& StatusBar() { return *FStatusBar; } ///< has the number of lines
    TButton& SaveButton() { return *FSave; }
    TButton& CancelButton() { return *FCancel; }
    TButton& SaveToButton() { return *FSaveTo; }
    TButton& LoadFromButton() { return *FLoadFrom; }

    /// Ctrl+Enter saves: Enter alone breaks a line.
    bool IsShortCut(TShortCut shortCut) override;

private:
    TButton* NewButton(std::string_view name, int caption);
    void MemoChange(TObject*);
    void SaveTo(TObject*);
    void LoadFrom(TObject*);

    // Components of the form.
    TStatusBar* FStatusBar;
    TPanel* FButtons;
    TMemo* FMemo;
    TButton* FSave;
    TButton* FCancel;
    TButton* FSaveTo;
    TButton* FLoadFrom;
};

} // namespace tarn
