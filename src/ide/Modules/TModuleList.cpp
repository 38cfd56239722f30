#include "Modules/TModuleList.h"

#include "Modules/FileNames.h"
#include "TIde.h"
#include "rtl/EAbort.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <exception>
#include <filesystem>

namespace tarn {
namespace {

std::string ReadText(const std::string& name) {
    const TFileContents file = LoadFile(name);
    const std::span<const char> bytes = file.Bytes.Pieces(0, file.Bytes.Size())[0];
    return {bytes.data(), bytes.size()};
}

/// Runs a reader of project files on a file.
template <class F> auto ReadWith(const std::string& name, const std::string& text, F reader) {
    try {
        return reader(text);
    } catch (const EProjectFileError& error) {
        throw Exception(Format("%s:%d: %s", {name, error.Line, error.Message()}));
    }
}

TProjectFile ReadProject(const std::string& name) {
    const bool cpp = HasExtension(name, CppProjectExtensions);
    return ReadWith(name, ReadText(name), cpp ? ReadCppProject : ReadPascalProject);
}

/// The 1-based line of a group's text that has the rule of that project.
int LineOf(std::string_view group, const TProjectGroupEntry& project) {
    int line = 0;
    int found = 0;
    ForEachLine(group, [&](std::string_view content) {
        ++line;
        if (found == 0 && Trim(content).starts_with(project.Target) &&
            content.find(project.FileName) != content.npos)
            found = line;
    });
    return std::max(found, 1);
}

} // namespace

TIdeModule* TModuleList::Find(std::string_view fileName) const {
    TSourceBuffer* const source = FSources.Find(NormalFileName(fileName));
    return source ? &source->Module() : nullptr;
}

namespace {

template <class F> void ForEachSource(const TIdeModule& module, F&& visit) {
    for (int i = 0; i < module.EditorCount(); ++i)
        if (auto* const source = ClassCast<TSourceBuffer>(&module.Editor(i))) visit(*source);
}

} // namespace

TIdeModule& TModuleList::Add(std::unique_ptr<TIdeModule> module) {
    FModules.push_back(std::move(module));
    ForEachSource(*FModules.back(), [&](TSourceBuffer& source) { FSources.Add(source); });
    return *FModules.back();
}

std::unique_ptr<TIdeModule> TModuleList::Take(TIdeModule& module) {
    // What was opened last is closed first, more often than not.
    const auto place = std::find_if(FModules.rbegin(), FModules.rend(),
                                    [&](const auto& item) { return item.get() == &module; });
    std::unique_ptr<TIdeModule> taken = std::move(*place);
    FModules.erase(std::prev(place.base()));
    ForEachSource(*taken, [&](TSourceBuffer& source) { FSources.Remove(source); });
    return taken;
}

std::unique_ptr<TIdeModule> TModuleList::TakeFormer(const std::string& name) {
    TIdeModule* const former = Find(name);
    return former ? Take(*former) : nullptr;
}

// --- Opening ----------------------------------------------------------------------------------

TIdeModule& TModuleList::OpenFile(std::string_view fileName) {
    TIdeModule& module = OpenUnit(fileName);
    module.FindSource(NormalFileName(fileName))->Show();
    return module;
}

TIdeModule& TModuleList::OpenUnit(std::string_view fileName) {
    if (TIdeModule* const open = Find(fileName)) return *open;
    auto module = std::make_unique<TIdeModule>(FIde, NormalFileName(fileName));
    module->Source().Load();
    module->AddSiblings(FFolders);
    TIdeModule& added = Add(std::move(module));
    FIde.EditWindow().AddBuffer(added.Source());
    return added;
}

TSourceBuffer& TModuleList::Recover(std::string_view fileName, std::string_view text,
                                    const std::optional<TFileIdentity>& identity) {
    const std::string name = NormalFileName(fileName);
    TIdeModule* module = Find(name);
    if (!module) {
        auto made = std::make_unique<TIdeModule>(FIde, name);
        made->Source().LoadOrMake();
        made->AddSiblings(FFolders);
        module = &Add(std::move(made));
    }
    TSourceBuffer& buffer = *module->FindSource(name);
    buffer.LoadOrMake();
    buffer.Show();
    buffer.Recover(text, identity);
    return buffer;
}

TIdeModule& TModuleList::OpenProject(std::string_view fileName) {
    const std::string name = NormalFileName(fileName);
    if (HasExtension(name, GroupExtensions)) return OpenGroup(name);
    if (!HasExtension(name, ProjectExtensions))
        throw Exception(Format("%s is neither a project nor a project group", {name}));
    if (auto* const open = ClassCast<TProjectModule>(Find(name))) return *open;
    return AddProject(name, ReadProject(name));
}

TProjectModule& TModuleList::AddProject(const std::string& name, TProjectFile project) {
    const std::unique_ptr<TIdeModule> former = TakeFormer(name);
    auto module = std::make_unique<TProjectModule>(FIde, name, std::move(project), former.get());
    return static_cast<TProjectModule&>(Add(std::move(module)));
}

TIdeModule& TModuleList::OpenGroup(const std::string& name) {
    if (auto* const open = ClassCast<TProjectGroupModule>(Find(name))) return *open;
    const std::string text = ReadText(name);
    const TProjectGroupFile file = ReadWith(name, text, ReadProjectGroup);

    // All projects are read before the first one is opened.
    struct TFound {
        std::string Name;
        TProjectFile Project;
    };
    std::vector<TFound> found;
    for (const TProjectGroupEntry& entry : file.Projects) {
        const std::filesystem::path folder = std::filesystem::path(name).parent_path();
        std::string project = NormalFileName(ResolveProjectPath(folder, entry.FileName).string());
        try {
            TProjectFile contents = ReadProject(project);
            found.push_back({std::move(project), std::move(contents)});
        } catch (const EFileError& error) {
            throw Exception(Format("%s:%d: %s", {name, LineOf(text, entry), error.what()}));
        }
    }

    const std::unique_ptr<TIdeModule> former = TakeFormer(name);
    auto module = std::make_unique<TProjectGroupModule>(FIde, name, former.get());
    auto& group = static_cast<TProjectGroupModule&>(Add(std::move(module)));
    for (TFound& project : found) {
        auto* const open = ClassCast<TProjectModule>(Find(project.Name));
        group.AddProject(open ? *open : AddProject(project.Name, std::move(project.Project)));
    }
    return group;
}

// --- Saving and closing -----------------------------------------------------------------------

void TModuleList::SaveAll() {
    std::exception_ptr firstError;
    for (const auto& module : FModules) {
        try {
            module->Save();
        } catch (...) {
            if (!firstError) firstError = std::current_exception();
        }
    }
    if (firstError) std::rethrow_exception(firstError);
}

namespace {

/// Asks the user. While the box is open, a form "Confirm" is active: by that whoever goes on
/// meanwhile, by a timer for example, sees that the IDE waits for an answer.
TDialogAnswer Confirm(const std::string& question) {
    const TWeak<TForm> before(Screen()->ActiveForm());
    TForm form;
    form.SetName("Confirm");
    form.SetCaption(question);
    form.Show();
    const TDialogAnswer answer = OS().MessageBox(
        Application()->Handle(), question, Application()->Title, MB_YESNOCANCEL | MB_ICONQUESTION);
    if (Screen()->ActiveForm() == &form) Screen()->SetActiveForm(before.Get());
    return answer;
}

} // namespace

bool TModuleList::MayClose(TIdeModule& module) const {
    const TWeak<TIdeModule> alive(&module);
    for (int i = 0; alive && i < module.EditorCount(); ++i) {
        TFileEditor& editor = module.Editor(i);
        if (!editor.Modified()) continue;
        const TDialogAnswer answer = Confirm(Format("Save changes to %s?", {editor.FileName()}));
        if (!alive) break; // somebody else has closed it while the question was open
        switch (answer) {
        case IDYES:
            try {
                static_cast<TSourceBuffer&>(editor).Save();
            } catch (const EAbort&) { // it is not to be written over
                return false;
            }
            break;
        case IDNO:
            break;
        default:
            return false;
        }
    }
    return true;
}

/// All modules, the one that was opened last first.
TModuleList::TSome TModuleList::FromTheLast() const {
    TSome modules;
    for (auto module = FModules.rbegin(); module != FModules.rend(); ++module)
        modules.emplace_back(module->get());
    return modules;
}

bool TModuleList::MayClose(const TSome& modules) const {
    return std::all_of(modules.begin(), modules.end(),
                       [this](const auto& module) { return !module || MayClose(*module); });
}

/// Closes modules once the user agrees to all of them; meanwhile each may be closed by others.
bool TModuleList::CloseSome(const TSome& modules, bool force) {
    if (!force && !MayClose(modules)) return false;
    for (const auto& module : modules)
        if (module) Remove(*module);
    return true;
}

bool TModuleList::Close(TIdeModule& module, bool force) {
    TSome modules;
    if (const auto* const group = ClassCast<TProjectGroupModule>(&module))
        for (TProjectModule* const project : group->Projects()) modules.emplace_back(project);
    modules.emplace_back(&module);
    return CloseSome(modules, force);
}

bool TModuleList::CloseAll(bool force) {
    return CloseSome(FromTheLast(), force);
}

bool TModuleList::MayCloseAll() {
    return MayClose(FromTheLast());
}

/// The module leaves the list and the window first, so that whoever is told of the change finds
/// whole modules only.
void TModuleList::Remove(TIdeModule& module) {
    const std::unique_ptr<TIdeModule> last = Take(module);
    ForEachSource(*last, [&](TSourceBuffer& source) { FIde.EditWindow().RemoveBuffer(source); });
}

} // namespace tarn
