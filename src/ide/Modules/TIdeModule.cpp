#include "Modules/TIdeModule.h"

#include "Modules/FileNames.h"
#include "Modules/TFolderNames.h"
#include "Modules/TProjectModule.h"
#include "Services/OtaModules.h"
#include "TIde.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

TIdeModule::TIdeModule(TIde& ide, std::string_view fileName, TIdeModule* former) : FIde(ide) {
    if (former) {
        AddEditor(std::move(former->FEditors.front()));
        FEditors.front()->SetModule(*this);
    } else {
        AddEditor(std::make_unique<TSourceBuffer>(*this, fileName));
    }
}

/// Adds the form file and, to a C++ source, the header that stand beside the source.
void TIdeModule::AddSiblings(TFolderCache& folders) {
    if (!HasExtension(FileName(), UnitExtensions)) return;
    const std::filesystem::path file(FileName());
    const TFolderNames& names = folders.Read(file.parent_path());
    const auto sibling = [&](std::string_view extension) {
        const std::string name = names.Find(file.stem().string() + std::string(extension));
        std::error_code error;
        return !name.empty() && std::filesystem::is_regular_file(file.parent_path() / name, error)
                   ? (file.parent_path() / name).string()
                   : std::string();
    };
    for (const std::string_view extension : FormExtensions) {
        const std::string form = sibling(extension);
        if (form.empty()) continue;
        AddEditor(std::make_unique<TFormEditor>(*this, form));
        break;
    }
    if (!HasExtension(FileName(), CppUnitExtensions)) return;
    if (const std::string header = sibling(".h"); !header.empty())
        AddEditor(std::make_unique<TSourceBuffer>(*this, header));
}

TFormEditor* TIdeModule::FormEditor() const {
    for (const auto& editor : FEditors)
        if (auto* const form = ClassCast<TFormEditor>(editor.get())) return form;
    return nullptr;
}

TSourceBuffer* TIdeModule::FindSource(std::string_view fileName) const {
    for (const auto& editor : FEditors)
        if (auto* const source = ClassCast<TSourceBuffer>(editor.get());
            source && IsSameFile(source->FileName(), fileName))
            return source;
    return nullptr;
}

bool TIdeModule::Modified() const {
    return std::any_of(FEditors.begin(), FEditors.end(),
                       [](const auto& editor) { return editor->Modified(); });
}

void TIdeModule::Save() {
    for (const auto& editor : FEditors)
        if (auto* const source = ClassCast<TSourceBuffer>(editor.get())) source->Save();
}

namespace {

/// The name that a file of a unit takes when the unit's own becomes `target`.
std::string NameBeside(const std::string& target, const TFileEditor& editor) {
    return ChangeFileExt(target, ExtractFileExt(editor.FileName()));
}

} // namespace

/// Whether the files of a unit may follow it to another name. Whoever has the unit there written
/// over means all its files; where there is none, nobody was asked about a form or a header.
void TIdeModule::CheckNames(const std::string& target) const {
    std::error_code error;
    const bool isNew = !std::filesystem::exists(target, error);
    for (std::size_t i = 0; i < FEditors.size(); ++i) {
        const std::string name = i == 0 ? target : NameBeside(target, *FEditors[i]);
        if (i > 0 && IsSameFile(name, FEditors[i]->FileName())) continue;
        if (FIde.Modules().Find(name)) throw EInvalidOperation(Format("%s is open", {name}));
        if (isNew && std::filesystem::exists(name, error))
            throw EInvalidOperation(Format("%s exists", {name}));
    }
}

void TIdeModule::SaveAs(std::string_view fileName) {
    const std::string target = NormalFileName(fileName);
    if (HasExtension(FileName(), ProjectExtensions) || HasExtension(FileName(), GroupExtensions))
        throw EInvalidOperation("a project keeps its name, which its units' names start from");
    CheckNames(target);
    Source().SaveAs(target);
    for (std::size_t i = 1; i < FEditors.size(); ++i) {
        TFileEditor& editor = *FEditors[i];
        const std::string name = NameBeside(target, editor);
        if (auto* const header = ClassCast<TSourceBuffer>(&editor); header && header->IsLoaded()) {
            header->SaveAs(name);
            continue;
        }
        CopyFile(editor.FileName(), name);
        editor.SetFileName(name);
    }
}

std::vector<TProjectModule*> TIdeModule::Owners() const {
    std::vector<TProjectModule*> owners;
    for (const auto& module : FIde.Modules())
        if (auto* const project = ClassCast<TProjectModule>(module.get());
            project && project->Lists(FileName()))
            owners.push_back(project);
    return owners;
}

TIntf<IOTAModule> TIdeModule::Interface() {
    if (!FInterface) FInterface = MakeInterface();
    return FInterface;
}

TIntf<IOTAModule> TIdeModule::MakeInterface() {
    return MakeModuleInterface(*this);
}

} // namespace tarn
