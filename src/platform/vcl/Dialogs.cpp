#include "vcl/Dialogs.h"

#include "os/OS.h"

namespace tarn {
namespace {

constexpr TPropInfo OpenDialogProps[] = {
    Published<&TOpenDialog::DefaultExt>("DefaultExt"),
    Published<&TOpenDialog::FileName>("FileName"),
    Published<&TOpenDialog::Filter>("Filter"),
    Published<&TOpenDialog::Title>("Title"),
};

constexpr TPropInfo SaveDialogProps[] = {
    Published<&TSaveDialog::OverwritePrompt>("OverwritePrompt", {.Default = true}),
};

} // namespace

constinit const TClassRecord TOpenDialog::ClassRecord{"TOpenDialog", &TComponent::ClassRecord,
                                                      CreateObject<TOpenDialog>, OpenDialogProps};
constinit const TClassRecord TSaveDialog::ClassRecord{"TSaveDialog", &TOpenDialog::ClassRecord,
                                                      CreateObject<TSaveDialog>, SaveDialogProps};

bool TOpenDialog::Ask(bool save, bool overwritePrompt) {
    auto chosen = OS().ChooseFile({save, Title, Filter, FileName, DefaultExt, overwritePrompt});
    if (chosen) FileName = std::move(*chosen);
    return chosen.has_value();
}

bool InputQuery(std::string_view caption, std::string_view prompt, std::string& value) {
    auto entered = OS().InputText(caption, prompt, value);
    if (entered) value = std::move(*entered);
    return entered.has_value();
}

} // namespace tarn
