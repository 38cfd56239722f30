#pragma once

#include "vcl/TComponent.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Asks the user for a file to open, or for several.
class TOpenDialog : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TOpenDialog(TComponent* owner = nullptr) : TComponent(owner) {}

    std::string Title;      ///< empty for that of the system
    std::string Filter;     ///< descriptions and patterns in turn: "Texts (*.txt)|*.txt|All|*.*"
    std::string FileName;   ///< that the dialog begins with, and the one that was chosen
    std::string DefaultExt; ///< of a name without one, with or without its point
    std::string InitialDir; ///< the folder that it begins in where FileName is empty

    bool AllowMultiSelect = false;  ///< not of a dialog for saving
    std::vector<std::string> Files; ///< all that were chosen, FileName the first of them

    /// Shows the dialog; false, and FileName and Files as they were, when the user cancels it.
    virtual bool Execute() { return Ask(false, false); }

protected:
    bool Ask(bool save, bool overwritePrompt);
};

/// Asks the user for a file to save to.
class TSaveDialog : public TOpenDialog {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TOpenDialog::TOpenDialog;

    bool OverwritePrompt = true; ///< whether the user is asked before a file is chosen that exists
    bool Execute() override { return Ask(true, OverwritePrompt); }
};

/// Asks the user for a line of text, beginning with `value`; false, and `value` as it was, when he
/// cancels that.
bool InputQuery(std::string_view caption, std::string_view prompt, std::string& value);

} // namespace tarn
