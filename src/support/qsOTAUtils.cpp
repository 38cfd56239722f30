#include "qsOTAUtils.h"

#include "qsStrUtils.h"
#include "rtl/SysUtils.h"

namespace tarn {
namespace {

constexpr std::string_view FormType = "dfm";

// Lists of file extensions, see FitsExtension.
constexpr std::string_view NoSourceExtensions = ".dfm.xfm.h.bpr.res";
constexpr std::string_view FormExtensions = ".dfm.xfm";
constexpr std::string_view SourceExtensions = ".pas.cpp";
constexpr std::string_view CppExtension = ".cpp";

/// Whether the extension is on the list. It is looked up as a part of the list's text, so that the
/// beginning of an entry, such as ".p", fits as well.
bool FitsExtension(std::string_view extension, std::string_view list) {
    return !extension.empty() && StringPosI(list, extension) != 0;
}

template <class Visit> void ForEachFileEditor(const TIntf<IOTAModule>& module, Visit&& visit) {
    if (!module) return;
    for (int i = 0; i < module->GetModuleFileCount(); ++i)
        if (const auto editor = module->GetModuleFileEditor(i)) visit(editor);
}

template <class Visit> void ForEachModuleInfo(const TIntf<IOTAProject>& project, Visit&& visit) {
    if (!project) return;
    for (int i = 0; i < project->GetModuleCount(); ++i)
        if (const auto info = project->GetModule(i)) visit(info);
}

template <class I> TIntf<I> FirstFileEditor(const TIntf<IOTAModule>& module) {
    if (!module) return nullptr;
    for (int i = 0; i < module->GetModuleFileCount(); ++i)
        if (auto editor = Supports<I>(module->GetModuleFileEditor(i))) return editor;
    return nullptr;
}

bool OwnedBy(IOTAModule& module, const TIntf<IOTAProject>& project) {
    for (int i = 0; i < module.GetOwnerCount(); ++i)
        if (module.GetOwner(i) == project) return true;
    return false;
}

template <class Visit> void ForEachOpenedEditor(bool projectOnly, Visit&& visit) {
    const auto project = projectOnly ? GetActiveProject() : nullptr;
    if (projectOnly && !project) return;
    const auto services = IDEService<IOTAModuleServices>();
    for (int i = 0; services && i < services->GetModuleCount(); ++i) {
        const auto module = services->GetModule(i);
        if (module && (!projectOnly || OwnedBy(*module, project))) ForEachFileEditor(module, visit);
    }
}

TForm* FormOfEditWindow(const TIntf<IOTAEditView>& view) {
    const auto window = view ? view->GetEditWindow() : nullptr;
    return window ? window->GetForm() : nullptr;
}

std::string ModuleName(IOTAModuleInfo& info, TModuleNameKind kind) {
    switch (kind) {
    case mnkFile:
        return info.GetFileName();
    case mnkUnit:
        return info.GetName();
    case mnkForm:
        return info.GetFormName();
    case mnkDesignClass:
        return info.GetDesignClass();
    }
    return {};
}

enum TShowWay : std::uint8_t { swNone, swEditor, swFile };

/// How a file editor with that extension comes to the front.
TShowWay ShowWay(std::string_view extension, TModuleNameKind kind, bool formOnly,
                 bool showCppSource) {
    switch (kind) {
    case mnkFile:
    case mnkUnit:
        return FitsExtension(extension, NoSourceExtensions) ? swNone : swEditor;
    case mnkForm:
        if (FitsExtension(extension, FormExtensions)) return swEditor;
        if (formOnly || !FitsExtension(extension, SourceExtensions)) return swNone;
        return showCppSource && SameText(extension, CppExtension) ? swEditor : swFile;
    case mnkDesignClass:
        break;
    }
    return swNone;
}

} // namespace

// --- Services, modules and projects -----------------------------------------------------------

TIntf<IOTAKeyboardServices> OTAKeyboardServices() {
    return IDEService<IOTAKeyboardServices>();
}

TIntf<IOTAModule> GetActiveModule() {
    const auto services = IDEService<IOTAModuleServices>();
    return services ? services->CurrentModule() : nullptr;
}

TIntf<IOTAProject> GetActiveProject() {
    const auto services = IDEService<IOTAModuleServices>();
    TIntf<IOTAProject> only;
    int projects = 0;
    for (int i = 0; services && i < services->GetModuleCount(); ++i) {
        const auto module = services->GetModule(i);
        if (const auto group = Supports<IOTAProjectGroup>(module)) return group->GetActiveProject();
        if (auto project = Supports<IOTAProject>(module)) {
            only = std::move(project);
            ++projects;
        }
    }
    return projects == 1 ? only : nullptr;
}

TIntf<IOTAProjectResource> GetProjectResource() {
    return FirstFileEditor<IOTAProjectResource>(GetActiveProject());
}

std::string GetProjectFormType() {
    return std::string(FormType);
}

std::string GetProjectFormExt() {
    return "." + GetProjectFormType();
}

// --- Editors of a module ----------------------------------------------------------------------

TIntf<IOTASourceEditor> GetSourceEditorFromModule(const TIntf<IOTAModule>& module) {
    return FirstFileEditor<IOTASourceEditor>(module);
}

TIntf<IOTAFormEditor> GetFormEditorFromModule(const TIntf<IOTAModule>& module) {
    return FirstFileEditor<IOTAFormEditor>(module);
}

TIntf<IOTASourceEditor> GetActiveSourceEditor() {
    return GetSourceEditorFromModule(GetActiveModule());
}

TIntf<IOTAFormEditor> GetActiveFormEditor() {
    return GetFormEditorFromModule(GetActiveModule());
}

TIntf<IFormDesigner> GetActiveFormDesigner() {
    const auto editor = GetActiveFormEditor();
    return editor ? editor->GetFormDesigner() : nullptr;
}

TForm* GetFormFromEditor(const TIntf<IOTAEditor>& editor) {
    return GetFormFromEditor(Supports<IOTAFormEditor>(editor));
}

TForm* GetFormFromEditor(const TIntf<IOTAFormEditor>& editor) {
    return editor ? editor->GetForm() : nullptr;
}

// --- The edit window --------------------------------------------------------------------------

TForm* GetEditorForm() {
    const auto services = IDEService<IOTAEditorServices>();
    if (!services) return nullptr;
    const auto buffer = services->GetTopBuffer();
    if (!buffer || buffer->GetEditViewCount() < 1) return nullptr;
    return FormOfEditWindow(services->GetTopView());
}

TForm* GetEditorForm2() {
    const auto editor = GetActiveSourceEditor();
    if (!editor || editor->GetEditViewCount() < 1) return nullptr;
    return FormOfEditWindow(editor->GetEditView(0));
}

TComponent* GetEditorFormComponent(std::string_view name) {
    const TForm* const form = GetEditorForm();
    return form ? form->FindComponent(name) : nullptr;
}

TForm* FindEditorForm() {
    const TScreen* const screen = Screen();
    for (int i = 0; screen && i < screen->FormCount(); ++i) {
        TForm* const form = screen->Forms(i);
        if (form->Visible() && StringPosI(form->Name(), "EditWindow") != 0) return form;
    }
    return nullptr;
}

// --- Lists ------------------------------------------------------------------------------------

void GetOpenedEditors(TInterfaceList<IOTAEditor>& list, TModuleType kind, bool projectOnly) {
    list.clear();
    ForEachOpenedEditor(projectOnly, [&](const TIntf<IOTAEditor>& editor) {
        if (kind == mtForm) {
            if (GetFormFromEditor(editor)) list.push_back(editor);
        } else if (const auto source = Supports<IOTASourceEditor>(editor)) {
            list.emplace_back(source);
        }
    });
}

void GetOpenedSourceEditors(TInterfaceList<IOTASourceEditor>& list) {
    list.clear();
    ForEachOpenedEditor(false, [&](const TIntf<IOTAEditor>& editor) {
        if (auto source = Supports<IOTASourceEditor>(editor)) list.push_back(std::move(source));
    });
}

void GetOpenedFormEditors(TInterfaceList<IOTAFormEditor>& list) {
    list.clear();
    ForEachOpenedEditor(false, [&](const TIntf<IOTAEditor>& editor) {
        auto form = Supports<IOTAFormEditor>(editor);
        if (GetFormFromEditor(form)) list.push_back(std::move(form));
    });
}

void GetProjectModules(TInterfaceList<IOTAModuleInfo>& list) {
    list.clear();
    ForEachModuleInfo(GetActiveProject(), [&](const auto& info) { list.push_back(info); });
}

void GetProjectForms(TInterfaceList<IOTAModuleInfo>& list) {
    GetProjectForms(GetActiveProject(), list);
}

void GetProjectForms(const TIntf<IOTAProject>& project, TInterfaceList<IOTAModuleInfo>& list) {
    list.clear();
    ForEachModuleInfo(project, [&](const TIntf<IOTAModuleInfo>& info) {
        if (!info->GetFormName().empty()) list.push_back(info);
    });
}

void GetProjectModuleNames(TStrings& list, TModuleNameKind kind) {
    GetProjectModuleNames(GetActiveProject(), list, kind);
}

void GetProjectModuleNames(const TIntf<IOTAProject>& project, TStrings& list,
                           TModuleNameKind kind) {
    list.Clear();
    ForEachModuleInfo(project, [&](const TIntf<IOTAModuleInfo>& info) {
        if (const std::string name = ModuleName(*info, kind); !name.empty()) list.Add(name);
    });
}

// --- Showing a module -------------------------------------------------------------------------

void ShowModule(const TIntf<IOTAModuleInfo>& info, TModuleNameKind kind, bool formOnly,
                bool showCppSource) {
    if (!info) return;
    ForEachFileEditor(info->OpenModule(), [&](const TIntf<IOTAEditor>& editor) {
        const std::string file = editor->GetFileName();
        const TShowWay way = ShowWay(ExtractFileExt(file), kind, formOnly, showCppSource);
        if (way == swEditor) {
            editor->Show();
        } else if (way == swFile) {
            if (const auto actions = IDEService<IOTAActionServices>()) actions->OpenFile(file);
        }
    });
}

void ShowModuleByName(std::string_view name, TModuleNameKind kind, bool formOnly,
                      bool showCppSource) {
    if (kind == mnkDesignClass) return;
    const auto project = GetActiveProject();
    for (int i = 0; project && i < project->GetModuleCount(); ++i) {
        const auto info = project->GetModule(i);
        if (info && AnsiSameText(ModuleName(*info, kind), name)) {
            ShowModule(info, kind, formOnly, showCppSource);
            break;
        }
    }
}

} // namespace tarn
