#include "Modules/TFormEditor.h"

#include "Services/OtaModules.h"
#include "TextStore/TextFile.h"
#include "rtl/SysUtils.h"

#include <filesystem>

namespace tarn {
namespace {

/// The component name in the first line of a text form file, "object Form1: TForm1"; empty for a
/// binary file and for a form without a name.
std::string_view NameInFormFile(std::string_view text) {
    const std::string_view line = Trim(text.substr(0, text.find_first_of("\r\n")));
    for (const std::string_view word : {"object ", "inherited "}) {
        const std::size_t colon = line.find(':');
        if (colon != line.npos && colon >= word.size() &&
            SameText(line.substr(0, word.size()), word))
            return Trim(line.substr(word.size(), colon - word.size()));
    }
    return {};
}

bool TrySetName(TForm& form, std::string_view name) {
    try {
        form.SetName(name);
        return !name.empty();
    } catch (const EComponentError&) {
        return false;
    }
}

std::unique_ptr<TForm> MakeForm(const std::string& fileName) {
    const TFileContents file = LoadFile(fileName);
    const std::span<const char> bytes = file.Bytes.Pieces(0, file.Bytes.Size())[0];
    auto form = std::make_unique<TForm>();
    // A stem that is no identifier leaves the form without a name.
    if (!TrySetName(*form, NameInFormFile({bytes.data(), bytes.size()})))
        TrySetName(*form, std::filesystem::path(fileName).stem().string());
    form->SetCaption(form->Name());
    return form;
}

} // namespace

TFormEditor::~TFormEditor() {
    // The screen tells of the form's end; who then asks this editor must not get a new one.
    FClosing = true;
    FForm.reset();
}

TForm* TFormEditor::Form() {
    if (!FForm && !FClosing) FForm = MakeForm(FileName());
    return FForm.get();
}

void TFormEditor::Show() {
    if (TForm* const form = Form()) form->Show();
}

TIntf<IOTAEditor> TFormEditor::Interface() {
    if (!FInterface) FInterface = MakeFormEditorInterface(*this);
    return FInterface;
}

} // namespace tarn
