#pragma once

#include "Modules/TFileEditor.h"

#include <memory>

namespace tarn {

/// The editor of a form file. The form under design is made when it is first asked for.
class TFormEditor : public TFileEditor {
public:
    using TFileEditor::TFileEditor;
    ~TFormEditor() override;

    /// The form; owned by the editor. It has the name that a text form file gives in its first
    /// line, else that of the file. Raises EFileError when the file cannot be read.
    TForm* Form();
    /// The form when it has been made already; null otherwise.
    TForm* ExistingForm() const { return FForm.get(); }

    void Show() override;
    TIntf<IOTAEditor> Interface() override;

private:
    std::unique_ptr<TForm> FForm;
    bool FClosing = false;
    TIntf<IOTAFormEditor> FInterface;
};

} // namespace tarn
