#include "vcl/Dialogs.h"

#include "os/OS.h"

namespace tarn {
namespace {

constexpr TPropInfo OpenDialogProps[] = {
    Published<&TOpenDialog::DefaultExt>("DefaultExt"),
    Published<&TOpenDialog::FileName>("FileName"),
    Published<&TOpenDialog::Filter>("Filter"),
    Published<&TOpenDialog::InitialDir>("InitialDir"),
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
    std::vector<std::string> chosen = OS().ChooseFiles({.Save = save,
                                                        .Title = Title,
                                                        .Filter = Filter,
                                                        .FileName = FileName,
                                                        .DefaultExt = DefaultExt,
                                                        .OverwritePrompt = overwritePrompt,
                                                        .Several = AllowMultiSelect && !save,
                                                        .InitialDir = InitialDir});
    if (chosen.empty()) return false;
    Files = std::move(chosen);
    FileName = Files.front();
    return true;
}

bool InputQuery(std::string_view caption, std::string_view prompt, std::string& value) {
    auto entered = OS().InputText(caption, prompt, value);
    if (entered) value = std::move(*entered);
    return entered.has_value();
}

} // namespace tarn
