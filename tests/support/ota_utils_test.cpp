#include "qsOTAUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace tarn {
namespace {

// --- An IDE of plain data. What it is told to do goes into its log.

/// The actions of the IDE in their order: "+FILE" an editor shown, "*FILE" a file opened, "@UNIT" a
/// project's module opened; a blank behind each.
using TLog = std::string;

template <class T, class... A> TIntf<T> New(A&&... arguments) {
    return new T(std::forward<A>(arguments)...);
}

template <class I> class TFakeEditor : public TInterfacedObject<I> {
public:
    explicit TFakeEditor(std::string file, TLog* log = nullptr)
        : FFile(std::move(file)), FLog(log) {}
    std::string GetFileName() override { return FFile; }
    TIntf<IOTAModule> GetModule() override { return nullptr; }
    bool GetModified() override { return false; }
    void Show() override {
        if (FLog) *FLog += "+" + FFile + " ";
    }

private:
    std::string FFile;
    TLog* FLog;
};

class TFakeDesigner : public TInterfacedObject<IFormDesigner> {
public:
    TComponent* GetRoot() override { return nullptr; }
};

class TFakeFormEditor : public TFakeEditor<IOTAFormEditor> {
public:
    using TFakeEditor::TFakeEditor;
    TForm* GetForm() override { return Form; }
    TIntf<IFormDesigner> GetFormDesigner() override { return Designer; }
    TForm* Form = nullptr;
    TIntf<IFormDesigner> Designer;
};

/// An edit view and the window that it stands in.
class TFakeView : public TInterfacedObject<IOTAEditView, INTAEditWindow> {
public:
    TIntf<IOTAEditBlock> GetBlock() override { return nullptr; }
    TIntf<IOTAEditBuffer> GetBuffer() override { return nullptr; }
    TIntf<IOTAEditPosition> GetPosition() override { return nullptr; }
    TIntf<INTAEditWindow> GetEditWindow() override { return Form ? this : nullptr; }
    int GetTopRow() override { return 1; }
    int GetBottomRow() override { return 1; }
    void Scroll(int, int) override {}
    void Paint() override {}
    TForm* GetForm() override { return Form; }
    TForm* Form = nullptr; ///< without it there is no window
};

class TFakeSource : public TFakeEditor<IOTAEditBuffer> {
public:
    using TFakeEditor::TFakeEditor;
    int GetEditViewCount() override { return static_cast<int>(Views.size()); }
    TIntf<IOTAEditView> GetEditView(int index) override { return Views.at(index); }
    TIntf<IOTABufferOptions> GetBufferOptions() override { return nullptr; }
    TIntf<IOTAEditView> GetTopView() override { return nullptr; }
    TInterfaceList<IOTAEditView> Views;
};

template <class I> class TFakeModuleOf : public TInterfacedObject<I> {
public:
    explicit TFakeModuleOf(std::string file = {}) : FFile(std::move(file)) {}
    std::string GetFileName() override { return FFile; }
    int GetModuleFileCount() override { return static_cast<int>(Editors.size()); }
    TIntf<IOTAEditor> GetModuleFileEditor(int index) override { return Editors.at(index); }
    int GetOwnerCount() override { return static_cast<int>(Owners.size()); }
    TIntf<IOTAProject> GetOwner(int index) override { return Owners.at(index); }
    bool Close() override { return false; }
    TInterfaceList<IOTAEditor> Editors;
    TInterfaceList<IOTAProject> Owners;

private:
    std::string FFile;
};
using TFakeModule = TFakeModuleOf<IOTAModule>;

class TFakeProject : public TFakeModuleOf<IOTAProject> {
public:
    using TFakeModuleOf::TFakeModuleOf;
    int GetModuleCount() override { return static_cast<int>(Infos.size()); }
    TIntf<IOTAModuleInfo> GetModule(int index) override { return Infos.at(index); }
    TInterfaceList<IOTAModuleInfo> Infos;
};

class TFakeGroup : public TFakeModuleOf<IOTAProjectGroup> {
public:
    explicit TFakeGroup(TIntf<IOTAProject> active) : FActive(std::move(active)) {}
    int GetProjectCount() override { return 0; }
    TIntf<IOTAProject> GetProject(int) override { return nullptr; }
    TIntf<IOTAProject> GetActiveProject() override { return FActive; }

private:
    TIntf<IOTAProject> FActive;
};

struct TNames {
    std::string File = {}, Unit = {}, Form = {}, DesignClass = {};
};

class TFakeInfo : public TInterfacedObject<IOTAModuleInfo> {
public:
    TFakeInfo(TNames names, TLog& log) : FNames(std::move(names)), FLog(log) {}
    std::string GetName() override { return FNames.Unit; }
    std::string GetFileName() override { return FNames.File; }
    std::string GetFormName() override { return FNames.Form; }
    std::string GetDesignClass() override { return FNames.DesignClass; }
    TIntf<IOTAModule> OpenModule() override {
        FLog += "@" + FNames.Unit + " ";
        return Module;
    }
    TIntf<IOTAModule> Module;

private:
    TNames FNames;
    TLog& FLog;
};

class TFakeIDE : public TInterfacedObject<IOTAModuleServices, IOTAEditorServices,
                                          IOTAActionServices, IOTAKeyboardServices> {
public:
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        obj = nullptr;
        if (std::find(Missing.begin(), Missing.end(), iid) != Missing.end()) return E_NOINTERFACE;
        return TInterfacedObject::QueryInterface(iid, obj);
    }
    int GetModuleCount() override { return static_cast<int>(Modules.size()); }
    TIntf<IOTAModule> GetModule(int index) override { return Modules.at(index); }
    TIntf<IOTAModule> CurrentModule() override { return Current; }
    TIntf<IOTAEditBuffer> GetTopBuffer() override { return TopBuffer; }
    TIntf<IOTAEditView> GetTopView() override { return TopView; }
    bool OpenFile(std::string_view fileName) override {
        Log += "*" + std::string(fileName) + " ";
        return true;
    }
    bool SaveFile(std::string_view) override { return false; }
    bool CloseFile(std::string_view) override { return false; }
    int AddKeyboardBinding(const TIntf<IOTAKeyboardBinding>&) override { return -1; }
    void RemoveKeyboardBinding(int) override {}

    std::vector<TGUID> Missing;
    TInterfaceList<IOTAModule> Modules;
    TIntf<IOTAModule> Current;
    TIntf<IOTAEditBuffer> TopBuffer;
    TIntf<IOTAEditView> TopView;
    TLog Log;
};

class OTAUtils : public testing::Test {
protected:
    OTAUtils() { SetIDEServices(static_cast<IOTAModuleServices*>(IDE.Get())); }
    ~OTAUtils() override { SetIDEServices(nullptr); }

    TIntf<TFakeInfo> AddInfo(TFakeProject& project, TNames names) {
        auto info = New<TFakeInfo>(std::move(names), IDE->Log);
        project.Infos.emplace_back(info);
        return info;
    }

    TForm Form;
    TIntf<TFakeIDE> IDE = New<TFakeIDE>();
};

template <class I> std::string FileOf(const TIntf<I>& file) {
    return file ? file->GetFileName() : "-";
}

/// The file names of a list, a blank behind each.
template <class I> std::string FilesOf(const TInterfaceList<I>& list) {
    std::string result;
    for (const auto& file : list) result += FileOf(file) + " ";
    return result;
}

// --- Modules and projects

TEST_F(OTAUtils, ActiveProject) {
    // The open modules, a letter each: u a unit, n no module, a to c projects, A and B groups with
    // the active project a or b, O a group without one.
    const struct {
        std::string_view Modules;
        std::string_view Active;
    } cases[] = {
        {"", "-"},    {"u", "-"},    {"nuau", "a"}, {"ab", "-"},  {"aub", "-"},
        {"abc", "-"}, {"B", "b"},    {"aB", "b"},   {"Ba", "b"},  {"acB", "b"},
        {"AB", "a"},  {"aacB", "b"}, {"aO", "-"},   {"Oa", "-"},  {"OB", "-"},
        {"O", "-"},   {"uO", "-"},   {"Bac", "b"},  {"acn", "-"}, {"bn", "b"},
    };
    const auto a = New<TFakeProject>("a");
    const auto b = New<TFakeProject>("b");
    const std::map<char, TIntf<IOTAModule>> modules = {
        {'n', nullptr},
        {'u', New<TFakeModule>("u")},
        {'a', a},
        {'b', b},
        {'c', New<TFakeProject>("c")},
        {'A', New<TFakeGroup>(a)},
        {'B', New<TFakeGroup>(b)},
        {'O', New<TFakeGroup>(nullptr)},
    };
    for (const auto& row : cases) {
        IDE->Modules.clear();
        for (const char kind : row.Modules) IDE->Modules.push_back(modules.at(kind));
        EXPECT_EQ(FileOf(GetActiveProject()), row.Active) << row.Modules;
    }
}

TEST_F(OTAUtils, FirstEditorOfItsKind) {
    // The file editors of a module, a letter each: s source, f form, r project resource, o another
    // kind, n none; each editor's file is called by its index.
    const struct {
        std::string_view Editors, Source, Form, Resource;
    } cases[] = {
        {"", "-", "-", "-"},    {"n", "-", "-", "-"},      {"o", "-", "-", "-"},
        {"s", "0", "-", "-"},   {"fs", "1", "0", "-"},     {"nossff", "2", "4", "-"},
        {"onr", "-", "-", "2"}, {"rsfrsf", "1", "2", "0"},
    };
    for (const auto& row : cases) {
        const auto module = New<TFakeProject>();
        for (const char kind : row.Editors) {
            const std::string file = std::to_string(module->Editors.size());
            auto& editor = module->Editors.emplace_back();
            if (kind == 's') editor = New<TFakeSource>(file);
            if (kind == 'f') editor = New<TFakeFormEditor>(file);
            if (kind == 'r') editor = New<TFakeEditor<IOTAProjectResource>>(file);
            if (kind == 'o') editor = New<TFakeEditor<IOTAEditor>>(file);
        }
        IDE->Modules = {module};
        IDE->Current = module;
        EXPECT_EQ(FileOf(GetSourceEditorFromModule(module)), row.Source) << row.Editors;
        EXPECT_EQ(FileOf(GetFormEditorFromModule(module)), row.Form) << row.Editors;
        EXPECT_EQ(FileOf(GetActiveSourceEditor()), row.Source) << row.Editors;
        EXPECT_EQ(FileOf(GetActiveFormEditor()), row.Form) << row.Editors;
        EXPECT_EQ(FileOf(GetProjectResource()), row.Resource) << row.Editors;
    }
}

TEST_F(OTAUtils, FormOfAnEditor) {
    const auto editor = New<TFakeFormEditor>("u.dfm");
    const auto module = New<TFakeModule>();
    module->Editors = {editor, New<TFakeSource>("u.pas")};
    IDE->Current = module;
    for (TForm* const form : {static_cast<TForm*>(nullptr), &Form}) {
        editor->Form = form;
        EXPECT_EQ(GetFormFromEditor(module->Editors[0]), form);
        EXPECT_EQ(GetFormFromEditor(GetFormEditorFromModule(module)), form);
        EXPECT_EQ(GetFormFromEditor(module->Editors[1]), nullptr);
    }
    EXPECT_FALSE(GetActiveFormDesigner());
    editor->Designer = New<TFakeDesigner>();
    EXPECT_EQ(GetActiveFormDesigner(), editor->Designer);
}

// --- The edit window

TEST_F(OTAUtils, FormOfTheEditWindow) {
    struct TCase {
        bool Service = true, Buffer = true, ViewOfBuffer = true, TopView = true, Window = true;
        bool Found = false, Found2 = false; ///< by the top view, by the active module
    };
    const TCase cases[] = {
        {.Found = true, .Found2 = true},    {.Service = false, .Found2 = true},
        {.Buffer = false, .Found2 = true},  {.ViewOfBuffer = false},
        {.TopView = false, .Found2 = true}, {.Window = false},
    };
    TControl tabs(&Form);
    tabs.SetName("TabControl");
    for (const TCase& row : cases) {
        const auto view = New<TFakeView>();
        if (row.Window) view->Form = &Form;
        const auto source = New<TFakeSource>("u.pas");
        if (row.ViewOfBuffer) source->Views = {view};
        const auto module = New<TFakeModule>();
        module->Editors = {source};
        IDE->Current = module;
        IDE->TopBuffer = row.Buffer ? source : nullptr;
        IDE->TopView = row.TopView ? view : nullptr;
        IDE->Missing.assign(row.Service ? 0 : 1, IOTAEditorServices::IID);
        const auto index = &row - cases;
        EXPECT_EQ(GetEditorForm(), row.Found ? &Form : nullptr) << index;
        EXPECT_EQ(GetEditorFormComponent("TABcontrol"), row.Found ? &tabs : nullptr) << index;
        EXPECT_EQ(GetEditorFormComponent("Tab"), nullptr) << index;
        EXPECT_EQ(GetEditorForm2(), row.Found2 ? &Form : nullptr) << index;
    }
}

TEST(EditWindow, OnTheScreen) {
    EXPECT_EQ(FindEditorForm(), nullptr);
    TScreen screen;
    TForm hidden, other, first, second;
    hidden.SetName("EditWindow_0");
    other.SetName("IdeMainForm");
    first.SetName("MyeditWINDOW_1");
    second.SetName("EditWindow_2");
    EXPECT_EQ(FindEditorForm(), nullptr);
    second.Show();
    first.SetVisible(true);
    other.Show();
    EXPECT_EQ(FindEditorForm(), &second);
    first.Show();
    EXPECT_EQ(FindEditorForm(), &first);
}

// --- Lists

TEST_F(OTAUtils, OpenedEditors) {
    const auto form = [&](const char* file) {
        auto editor = New<TFakeFormEditor>(file);
        editor->Form = &Form;
        return editor;
    };
    const auto project = New<TFakeProject>("p");
    const auto other = New<TFakeProject>("q");
    const auto own = New<TFakeModule>();
    own->Owners = {project};
    own->Editors = {New<TFakeSource>("own.pas"), nullptr, form("own.dfm")};
    const auto foreign = New<TFakeModule>();
    foreign->Owners = {other};
    foreign->Editors = {form("foreign.dfm"), New<TFakeSource>("foreign.pas")};
    const auto shared = New<TFakeModule>();
    shared->Owners = {other, project};
    shared->Editors = {nullptr, New<TFakeSource>("shared.cpp"), New<TFakeSource>("shared.h"),
                       New<TFakeFormEditor>("closed.dfm"), New<TFakeEditor<IOTAEditor>>("x.bin")};
    const auto loose = New<TFakeModule>();
    loose->Owners = {nullptr};
    loose->Editors = {New<TFakeSource>("loose.pas"), form("loose.dfm")};
    project->Editors = {New<TFakeSource>("p.dpr")};

    constexpr std::string_view allUnits =
        "foreign.pas p.dpr own.pas shared.cpp shared.h loose.pas ";
    constexpr std::string_view allForms = "foreign.dfm own.dfm loose.dfm ";
    const struct {
        TModuleType Kind;
        bool ProjectOnly, HasProject;
        std::string_view Files;
    } cases[] = {
        {mtUnit, false, true, allUnits},
        {mtUnit, false, false, allUnits},
        {mtUnit, true, true, "own.pas shared.cpp shared.h "},
        {mtUnit, true, false, ""},
        {mtForm, false, true, allForms},
        {mtForm, false, false, allForms},
        {mtForm, true, true, "own.dfm "},
        {mtForm, true, false, ""},
    };
    TInterfaceList<IOTAEditor> list = {nullptr};
    IDE->Modules = {foreign, nullptr, project, own, shared, loose, nullptr};
    for (const auto& row : cases) {
        // A group without an active project leaves the IDE without one.
        IDE->Modules.back() = New<TFakeGroup>(row.HasProject ? project : nullptr);
        GetOpenedEditors(list, row.Kind, row.ProjectOnly);
        EXPECT_EQ(FilesOf(list), row.Files) << &row - cases;
        for (const auto& editor : list)
            EXPECT_EQ(bool(Supports<IOTASourceEditor>(editor)), row.Kind == mtUnit);
    }
    TInterfaceList<IOTASourceEditor> sources = {nullptr};
    GetOpenedSourceEditors(sources);
    EXPECT_EQ(FilesOf(sources), allUnits);
    TInterfaceList<IOTAFormEditor> forms = {nullptr};
    GetOpenedFormEditors(forms);
    EXPECT_EQ(FilesOf(forms), allForms);
}

TEST_F(OTAUtils, ModulesOfAProject) {
    const auto active = New<TFakeProject>();
    const auto given = New<TFakeProject>();
    AddInfo(*active, {"Unit2.pas", "Unit2", "Form2", "TForm"});
    active->Infos.emplace_back(nullptr);
    AddInfo(*active, {"Tool.pas", "Tool", "", ""});
    AddInfo(*active, {"Unit1.pas", "Unit1", "Form1", "TFrame"});
    AddInfo(*given, {"Main.cpp", "Main", "Form3", ""});
    IDE->Modules = {New<TFakeGroup>(active), given};

    TInterfaceList<IOTAModuleInfo> list = {nullptr};
    GetProjectModules(list);
    EXPECT_EQ(FilesOf(list), "Unit2.pas Tool.pas Unit1.pas ");
    GetProjectForms(list);
    EXPECT_EQ(FilesOf(list), "Unit2.pas Unit1.pas ");
    GetProjectForms(given, list);
    EXPECT_EQ(FilesOf(list), "Main.cpp ");

    constexpr std::string_view activeNames[] = {"Unit2.pas,Tool.pas,Unit1.pas", "Unit2,Tool,Unit1",
                                                "Form2,Form1", "TForm,TFrame"};
    constexpr std::string_view givenNames[] = {"Main.cpp", "Main", "Form3", ""};
    TStringList names;
    for (const auto kind : {mnkFile, mnkUnit, mnkForm, mnkDesignClass}) {
        GetProjectModuleNames(names, kind);
        EXPECT_EQ(names.GetCommaText(), activeNames[kind]);
        GetProjectModuleNames(given, names, kind);
        EXPECT_EQ(names.GetCommaText(), givenNames[kind]);
    }
}

// --- Showing a module

TEST_F(OTAUtils, ShowModule) {
    const auto module = New<TFakeModule>();
    for (const char* file :
         {"a.pas", "b.CPP", "c.Dfm", "d.xfm", "e.H", "f.bpr", "g.RES", "h", "i.txt", "j.P", "k.c"})
        module->Editors.emplace_back(New<TFakeEditor<IOTAEditor>>(file, &IDE->Log));
    module->Editors.insert(module->Editors.begin() + 1, nullptr);
    const auto info = New<TFakeInfo>(TNames{.Unit = "u"}, IDE->Log);
    info->Module = module;

    constexpr std::string_view sources = "@u +a.pas +b.CPP +h +i.txt +j.P +k.c ";
    constexpr std::string_view forms = "@u +c.Dfm +d.xfm ";
    const struct {
        TModuleNameKind Kind;
        bool FormOnly, ShowCppSource;
        std::string_view Log;
    } cases[] = {
        {mnkFile, false, false, sources},
        {mnkFile, true, true, sources},
        {mnkUnit, false, true, sources},
        {mnkUnit, true, false, sources},
        {mnkForm, true, false, forms},
        {mnkForm, true, true, forms},
        {mnkForm, false, false, "@u *a.pas *b.CPP +c.Dfm +d.xfm *j.P *k.c "},
        {mnkForm, false, true, "@u *a.pas +b.CPP +c.Dfm +d.xfm *j.P *k.c "},
        {mnkDesignClass, false, true, "@u "},
        {mnkDesignClass, true, false, "@u "},
    };
    const auto show = [&](TModuleNameKind kind, bool formOnly, bool showCppSource) {
        IDE->Log.clear();
        ShowModule(info, kind, formOnly, showCppSource);
        return IDE->Log;
    };
    for (const auto& row : cases)
        EXPECT_EQ(show(row.Kind, row.FormOnly, row.ShowCppSource), row.Log) << &row - cases;

    IDE->Missing = {IOTAActionServices::IID};
    EXPECT_EQ(show(mnkForm, false, true), "@u +b.CPP +c.Dfm +d.xfm ");
    info->Module = nullptr; // its file cannot be read
    EXPECT_EQ(show(mnkUnit, false, false), "@u ");
}

TEST_F(OTAUtils, ShowModuleByName) {
    const auto project = New<TFakeProject>();
    const auto form = New<TFakeModule>();
    form->Editors = {New<TFakeEditor<IOTAEditor>>("b.pas", &IDE->Log),
                     New<TFakeEditor<IOTAEditor>>("b.cpp", &IDE->Log),
                     New<TFakeEditor<IOTAEditor>>("b.dfm", &IDE->Log)};
    AddInfo(*project, {"a.pas", "a", "FormA", "TForm"});
    project->Infos.emplace_back(nullptr);
    AddInfo(*project, {"b.pas", "b", "FormB", "TForm"})->Module = form;
    AddInfo(*project, {"B.PAS", "B", "FORMB", "TForm"});
    AddInfo(*project, {"\xD0\x96.pas", "c", "a.pas", ""});
    const struct {
        std::string_view Name;
        TModuleNameKind Kind;
        bool FormOnly, ShowCppSource;
        std::string_view Log;
    } cases[] = {
        {"A.PAS", mnkFile, false, false, "@a "},
        {"a.PAS", mnkForm, false, false, "@c "},
        {"\xD0\xB6.PAS", mnkFile, false, false, "@c "},
        {"B.pas", mnkFile, true, true, "@b +b.pas +b.cpp "},
        {"B", mnkUnit, false, false, "@b +b.pas +b.cpp "},
        {"formb", mnkForm, true, true, "@b +b.dfm "},
        {"formb", mnkForm, false, true, "@b *b.pas +b.cpp +b.dfm "},
        {"formb", mnkForm, false, false, "@b *b.pas *b.cpp +b.dfm "},
        {"b", mnkForm, false, false, ""},
        {"b.pas", mnkUnit, false, false, ""},
        {"TForm", mnkDesignClass, false, false, ""},
    };
    for (const bool open : {true, false}) {
        IDE->Modules.clear();
        if (open) IDE->Modules.emplace_back(project);
        for (const auto& row : cases) {
            IDE->Log.clear();
            ShowModuleByName(row.Name, row.Kind, row.FormOnly, row.ShowCppSource);
            EXPECT_EQ(IDE->Log, open ? row.Log : "") << &row - cases;
        }
    }
}

// --- Without an IDE

/// What is found, a word each; empty when nothing is.
std::string WhatIsThere() {
    TInterfaceList<IOTAEditor> editors = {nullptr};
    TInterfaceList<IOTASourceEditor> sources = {nullptr};
    TInterfaceList<IOTAFormEditor> forms = {nullptr};
    TInterfaceList<IOTAModuleInfo> infos = {nullptr}, formInfos = {nullptr};
    TStringList names;
    names.Add("old");
    GetOpenedEditors(editors, mtUnit, false);
    GetOpenedSourceEditors(sources);
    GetOpenedFormEditors(forms);
    GetProjectModules(infos);
    GetProjectForms(formInfos);
    GetProjectModuleNames(names, mnkUnit);
    ShowModuleByName("u", mnkUnit, false, false);
    const std::pair<bool, const char*> found[] = {
        {bool(OTAKeyboardServices()), "keyboard"},
        {bool(GetActiveModule()), "module"},
        {bool(GetActiveProject()), "project"},
        {bool(GetProjectResource()), "resource"},
        {bool(GetActiveSourceEditor()), "source"},
        {bool(GetActiveFormEditor()), "form"},
        {bool(GetActiveFormDesigner()), "designer"},
        {GetEditorForm() != nullptr, "window"},
        {GetEditorForm2() != nullptr, "window2"},
        {GetEditorFormComponent("Editor") != nullptr, "component"},
        {!editors.empty(), "editors"},
        {!sources.empty(), "sources"},
        {!forms.empty(), "forms"},
        {!infos.empty(), "infos"},
        {!formInfos.empty(), "formInfos"},
        {names.Count() != 0, "names"},
    };
    std::string result;
    for (const auto& [is, what] : found)
        if (is) result += std::string(what) + " ";
    return result;
}

TEST_F(OTAUtils, MissingServices) {
    TControl editorControl(&Form);
    editorControl.SetName("Editor");
    const auto view = New<TFakeView>();
    view->Form = &Form;
    const auto source = New<TFakeSource>("p.dpr");
    source->Views = {view};
    const auto form = New<TFakeFormEditor>("p.dfm");
    form->Form = &Form;
    form->Designer = New<TFakeDesigner>();
    const auto project = New<TFakeProject>();
    project->Editors = {source, form, New<TFakeEditor<IOTAProjectResource>>("p.res")};
    AddInfo(*project, {"u.pas", "u", "Form", ""});
    IDE->Modules = {project};
    IDE->Current = project;
    IDE->TopBuffer = source;
    IDE->TopView = view;

    EXPECT_EQ(WhatIsThere(),
              "keyboard module project resource source form designer window window2 component "
              "editors sources forms infos formInfos names ");
    IDE->Missing = {IOTAModuleServices::IID};
    EXPECT_EQ(WhatIsThere(), "keyboard window component ");
    IDE->Missing = {IOTAModuleServices::IID, IOTAEditorServices::IID, IOTAKeyboardServices::IID};
    EXPECT_EQ(WhatIsThere(), "");
    SetIDEServices(nullptr);
    EXPECT_EQ(WhatIsThere(), "");

    // Nothing in, nothing out.
    EXPECT_FALSE(GetSourceEditorFromModule(nullptr));
    EXPECT_FALSE(GetFormEditorFromModule(nullptr));
    EXPECT_EQ(GetFormFromEditor(TIntf<IOTAEditor>()), nullptr);
    EXPECT_EQ(GetFormFromEditor(TIntf<IOTAFormEditor>()), nullptr);
    ShowModule(nullptr, mnkUnit, false, false);
    TInterfaceList<IOTAModuleInfo> infos = {nullptr};
    GetProjectForms(nullptr, infos);
    EXPECT_TRUE(infos.empty());
}

TEST(OTANames, FormFilesAndEnumerations) {
    EXPECT_EQ(GetProjectFormType(), "dfm");
    EXPECT_EQ(GetProjectFormExt(), ".dfm");
    EXPECT_EQ(TypeInfoOf<TModuleType>.Names[mtUnit], "mtUnit");
    EXPECT_EQ(TypeInfoOf<TModuleNameKind>.MaxValue, mnkDesignClass);
    EXPECT_EQ(TypeInfoOf<TModuleNameKind>.Names[mnkForm], "mnkForm");
}

} // namespace
} // namespace tarn
