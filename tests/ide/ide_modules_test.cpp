#include "ide_fixture.h"

namespace tarn {
namespace {

using Strings = std::vector<std::string>;
using namespace std::string_literals;

class ModulesTest : public IdeTest {
protected:
    Strings Tabs() {
        Strings tabs;
        Ide->EditWindow().CurrentBuffer();
        TStrings& list = Ide->EditWindow().TabControl().Tabs();
        for (int i = 0; i < list.Count(); ++i)
            tabs.push_back((i == Ide->EditWindow().TabControl().TabIndex() ? ">" : "") + list[i]);
        return tabs;
    }
    std::string Name(std::string_view path) { return std::string(ExtractFileName(path)); }
    Strings OpenModules() {
        Strings names;
        const auto services = IDEService<IOTAModuleServices>();
        for (int i = 0; i < services->GetModuleCount(); ++i)
            names.push_back(Name(services->GetModule(i)->GetFileName()));
        return names;
    }
    /// The file editors of a module: source, form or resource, and the file.
    Strings Editors(TIdeModule& module) {
        Strings editors;
        const TIntf<IOTAModule> intf = module.Interface();
        for (int i = 0; i < intf->GetModuleFileCount(); ++i) {
            const TIntf<IOTAEditor> editor = intf->GetModuleFileEditor(i);
            EXPECT_EQ(editor->GetModule(), intf);
            editors.push_back((Supports<IOTASourceEditor>(editor)      ? "source "
                               : Supports<IOTAFormEditor>(editor)      ? "form "
                               : Supports<IOTAProjectResource>(editor) ? "resource "
                                                                       : "? ") +
                              Name(editor->GetFileName()));
        }
        return editors;
    }
    /// The message that a command raises.
    template <class F> std::string ErrorOf(F&& command) {
        try {
            command();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "no error";
    }
    void WriteProject(std::string_view name) {
        Write(name,
              "program P;\r\nuses\r\n  Forms,\r\n  Main in 'Main.PAS' {MainForm},\r\n"
              "  Data in 'sub\\Data.pas' {DataModule1: TDataModule};\r\n\r\n{$R *.RES}\r\n\r\n"
              "begin\r\nend.\r\n");
    }
};

// --- Files keep their bytes -------------------------------------------------------------------

TEST_F(ModulesTest, WhatIsNotTouchedKeepsItsBytes) {
    const struct {
        std::string Before, After; ///< with "new\nline\n" put in front
    } cases[] = {
        {"a\r\nb\r\n", "new\r\nline\r\na\r\nb\r\n"},
        {"a\nb", "new\nline\na\nb"},
        {"a\rb\r", "new\rline\ra\rb\r"},
        {"a\r\nb\nc\rd\ne", "new\nline\na\r\nb\nc\rd\ne"},
        {"\0a\0\n\xFF\xFE\x80\n\xEF\xBB\xBF"s, "new\nline\n\0a\0\n\xFF\xFE\x80\n\xEF\xBB\xBF"s},
        {"", "new\r\nline\r\n"},
    };
    for (const auto& [before, after] : cases) {
        TSourceView& view = OpenText(before);
        Ide->Modules().SaveAll();
        EXPECT_EQ(Read("Unit1.pas"), before);
        Ide->RunCommand([&] { view.InsertText("new\nline\n"); });
        Ide->PressKey(scCtrl | 'S');
        EXPECT_EQ(Read("Unit1.pas"), after);
        EXPECT_FALSE(view.Buffer().Modified());
        Ide->Undo();
        EXPECT_TRUE(view.Buffer().Modified());
        Ide->PressKey(scShift | scCtrl | 'S');
        EXPECT_EQ(Read("Unit1.pas"), before);
        Ide->Modules().CloseAll(true);
    }
    EXPECT_EQ(Boxes(), Strings{});
}

TEST_F(ModulesTest, AFileThatIsNotModifiedIsNotWritten) {
    OpenText("abc");
    Write("Unit1.pas", "somebody else's");
    Ide->CurrentModule()->Save();
    EXPECT_EQ(Read("Unit1.pas"), "somebody else's");
    Ide->TypeText("x");
    EXPECT_THROW(Ide->CurrentModule()->Save(), EFileError);
    EXPECT_EQ(Read("Unit1.pas"), "somebody else's");
    EXPECT_TRUE(Ide->CurrentModule()->Modified());

    OpenText("", "Other.pas"); // the file that cannot be saved does not stop the others
    Ide->TypeText("x");
    EXPECT_THROW(Ide->Modules().SaveAll(), EFileError);
    EXPECT_EQ(Read("Unit1.pas") + Read("Other.pas"), "somebody else'sx");
}

TEST_F(ModulesTest, SomebodyElsesChangesAreWrittenOverWhenThatIsAllowed) {
    for (const bool allowed : {false, true}) {
        TSourceBuffer& buffer = OpenText("abc").Buffer();
        Ide->TypeText("x");
        Write("Unit1.pas", "somebody else's");
        Ide->Modules().OnOverwrite = [&](const TSourceBuffer& asked) {
            EXPECT_EQ(&asked, &buffer);
            return allowed;
        };
        EXPECT_EQ(Ide->RunCommand([&] { buffer.Save(); }), allowed);
        EXPECT_EQ(Read("Unit1.pas"), allowed ? "xabc" : "somebody else's");
        EXPECT_EQ(buffer.Modified(), !allowed);
        Ide->Modules().CloseAll(true);
    }
    EXPECT_EQ(Boxes(), Strings{}); // who has refused it knows
}

TEST_F(ModulesTest, TextsThatWereTypedBeforeACrash) {
    constexpr auto text = "begin\n  A;\nend.\n";
    const struct {
        const char* Case;
        std::optional<std::string_view> Then, Now; ///< the file when it was read, and now
        const char* AfterUndo;
        bool Modified, Saved;
    } cases[] = {
        {"the file is as it was", "begin\nend.\n", "begin\nend.\n", "begin\nend.\n", true, true},
        {"the file has changed", "begin\nend.\n", "begin B; end.\n", "begin B; end.\n", true,
         false},
        {"the file is gone", "begin\nend.\n", {}, "", true, false},
        {"there never was a file", {}, {}, "", true, true},
        {"the text was saved after all", "begin\nend.\n", text, text, false, true},
    };
    for (const auto& [name, then, now, afterUndo, modified, saved] : cases) {
        SCOPED_TRACE(name);
        const std::string file = Path("Unit1.pas");
        std::optional<TFileIdentity> identity;
        if (then) identity = IdentityOf(Write("Unit1.pas", *then));
        if (now != then) std::filesystem::remove(file);
        if (now && now != then) Write("Unit1.pas", *now);
        TSourceBuffer* buffer = nullptr;
        Ide->RunCommand([&] { buffer = &Ide->Modules().Recover(file, text, identity); });
        EXPECT_EQ(Ide->CurrentBuffer(), buffer);
        EXPECT_EQ(buffer->Text().Text(), text);
        EXPECT_EQ(buffer->Modified(), modified);
        EXPECT_EQ(Ide->Undo(), modified); // one step
        EXPECT_EQ(buffer->Text().Text(), afterUndo);
        EXPECT_EQ(buffer->Modified(), modified && !now);
        Ide->Redo();
        // What somebody else has done to the file meanwhile is not lost unseen.
        if (saved) {
            buffer->Save();
            EXPECT_EQ(Read("Unit1.pas"), text);
        } else {
            EXPECT_THROW(buffer->Save(), EFileError);
        }
        Ide->Modules().CloseAll(true);
        std::filesystem::remove(file);
    }
}

TEST_F(ModulesTest, FilesThatCannotBeOpened) {
    std::filesystem::create_directory(Path("folder.pas"));
    EXPECT_EQ(ErrorOf([&] { Ide->Modules().OpenFile(Path("none.pas")); }),
              "cannot read " + Path("none.pas") + ": no such file or folder");
    EXPECT_EQ(ErrorOf([&] { Ide->Modules().OpenFile(Path("folder.pas")); }),
              "cannot read " + Path("folder.pas") + ": is a folder");
    EXPECT_FALSE(IDEService<IOTAActionServices>()->OpenFile(Path("none.pas")));
    EXPECT_EQ(OpenModules(), Strings{});
    EXPECT_FALSE(Ide->EditWindow().Visible());
}

// --- Units ------------------------------------------------------------------------------------

TEST_F(ModulesTest, EditorsOfUnits) {
    Write("Plain.pas", "");
    Write("Form.pas", "");
    Write("FORM.DFM", "object MyForm: TMyForm\r\nend\r\n");
    Write("Cpp.cpp", "");
    Write("Cpp.dfm", "\xFF\x0A");
    Write("Cpp.h", "");
    const struct {
        std::string_view File;
        Strings Expected;
    } cases[] = {
        {"Plain.pas", {"source Plain.pas"}},
        {"Form.pas", {"source Form.pas", "form FORM.DFM"}},
        {"Cpp.cpp", {"source Cpp.cpp", "form Cpp.dfm", "source Cpp.h"}},
        {"FORM.DFM", {"source FORM.DFM"}},
    };
    for (const auto& [file, expected] : cases)
        EXPECT_EQ(Editors(Ide->Modules().OpenFile(Path(file))), expected);
    EXPECT_EQ(Tabs(), (Strings{"Plain.pas", "Form.pas", "Cpp.cpp", ">FORM.DFM"}));

    // The header belongs to its module and is read when it is shown.
    TIdeModule& cpp = *Ide->Modules().Find(Path("Cpp.cpp"));
    EXPECT_EQ(&Ide->Modules().OpenFile(Path("Cpp.h")), &cpp);
    EXPECT_EQ(Tabs(), (Strings{"Plain.pas", "Form.pas", "Cpp.cpp", "FORM.DFM", ">Cpp.h"}));
    EXPECT_EQ(Ide->CurrentModule(), &cpp);
}

TEST_F(ModulesTest, FormsAreNamedByTheirFile) {
    const struct {
        std::string_view File, Bytes, Name;
    } cases[] = {
        {"A.dfm", "object Form1: TForm1\r\nend", "Form1"},
        {"B.xfm", "inherited  Frame2 : TFrame2\nend", "Frame2"},
        {"C.dfm", "TPF0 binary: x", "C"},
        {"D.dfm", "object TForm1\r\nend", "D"},
        {"E-1.dfm", "", ""},
        {"F.dfm", "object no name: TForm1", "F"},
    };
    for (const auto& [file, bytes, name] : cases) {
        const std::string unit = Write(ChangeFileExt(file, ".pas"), "");
        Write(file, bytes);
        TFormEditor* const editor = Ide->Modules().OpenFile(unit).FormEditor();
        ASSERT_TRUE(editor);
        EXPECT_EQ(editor->ExistingForm(), nullptr);
        const auto intf = Supports<IOTAFormEditor>(editor->Interface());
        EXPECT_EQ(intf->GetForm()->Name(), name);
        EXPECT_EQ(intf->GetFormDesigner()->GetRoot(), intf->GetForm());
    }

    const std::string unit = Write("Gone.pas", "");
    Write("Gone.dfm", "");
    TFormEditor* const editor = Ide->Modules().OpenFile(unit).FormEditor();
    std::filesystem::remove(Path("Gone.dfm"));
    EXPECT_EQ(Supports<IOTAFormEditor>(editor->Interface())->GetForm(), nullptr);
    EXPECT_THROW(editor->Show(), EFileError);
}

TEST_F(ModulesTest, ShowingAForm) {
    Write("Unit1.dfm", "object Form1: TForm1");
    OpenText("");
    OpenText("", "Other.pas");
    TIdeModule& module = Ide->Modules().Items(0);
    module.FormEditor()->Show();
    EXPECT_EQ(Screen()->ActiveForm(), module.FormEditor()->Form());
    EXPECT_EQ(Ide->CurrentModule(), &module);
    EXPECT_EQ(&Ide->CurrentBuffer()->Module(), &Ide->Modules().Items(1));
    EXPECT_TRUE(Ide->PressKey(0x7B)); // F12 goes to the form's unit
    EXPECT_EQ(Tabs(), (Strings{">Unit1.pas", "Other.pas"}));
    EXPECT_TRUE(Ide->EditWindow().EditorHasFocus());

    const auto form = Supports<IOTAFormEditor>(module.FormEditor()->Interface());
    const int forms = Screen()->FormCount();
    Ide->Modules().Close(module);
    EXPECT_EQ(Screen()->FormCount(), forms - 1);
    EXPECT_EQ(form->GetForm(), nullptr);
}

TEST_F(ModulesTest, NamesOfAFolder) {
    using namespace std::chrono_literals;
    for (const std::string_view name : {"x.dfm", "X.DFM", "X.dfm"}) Write(name, "");
    TFolderCache cache;
    for (const auto& [wanted, found] : {std::pair("X.dfm", "X.dfm"), {"x.DFM", "X.DFM"}, {"x", ""}})
        EXPECT_EQ(cache.Read(Folder).Find(wanted), found);
    EXPECT_EQ(cache.Read(Folder / "none").Find("x.dfm"), "");

    // A folder whose time is that of the last reading: only a time long past vouches for its names.
    for (const auto& [age, found] : {std::pair(3600s, ""), {1s, "new"}}) {
        const auto time = std::filesystem::file_time_type::clock::now() - age;
        std::filesystem::remove(Folder / "new");
        std::filesystem::last_write_time(Folder, time);
        EXPECT_EQ(cache.Read(Folder).Find("NEW"), "");
        Write("new", "");
        std::filesystem::last_write_time(Folder, time);
        EXPECT_EQ(cache.Read(Folder).Find("NEW"), found);
    }
}

// --- Tabs -------------------------------------------------------------------------------------

TEST_F(ModulesTest, TabsOfOthersMaking) {
    for (const std::string_view name : {"A.pas", "B.pas", "C.pas"}) OpenText(name, name);
    TTabControl& control = Ide->EditWindow().TabControl();
    EXPECT_TRUE(Ide->ActivateTab("b.PAS"));
    EXPECT_EQ(Tabs(), (Strings{"A.pas", ">B.pas", "C.pas"}));

    control.Tabs().Move(1, 2); // the current buffer goes with its tab
    EXPECT_EQ(Text(), "B.pas");
    EXPECT_EQ(Tabs(), (Strings{"A.pas", "C.pas", ">B.pas"}));

    control.SetTabIndex(1); // another tab, another buffer
    EXPECT_EQ(Text(), "C.pas");

    TStringList reversed; // the whole list replaced
    for (int i = 2; i >= 0; --i) reversed.AddObject(control.Tabs()[i], control.Tabs().GetObject(i));
    control.Tabs().Assign(&reversed);
    EXPECT_EQ(Tabs(), (Strings{"B.pas", ">C.pas", "A.pas"}));

    control.Tabs().Clear(); // what is open comes back
    EXPECT_EQ(Text(), "C.pas");
    EXPECT_EQ(Tabs(), (Strings{"A.pas", "B.pas", ">C.pas"}));

    control.Tabs().AddObject("strange", &control);
    control.SetTabIndex(3);
    EXPECT_EQ(Text(), "C.pas");
    EXPECT_FALSE(Ide->ActivateTab("D.pas"));
    control.Tabs().Delete(3);

    Ide->ActivateTab(0); // one in the place of another, which comes back when it is needed
    control.Tabs().Delete(1);
    control.Tabs().Insert(1, "strange");
    Ide->EditWindow().ShowBuffer(Ide->Modules().Items(1).Source());
    EXPECT_EQ(Tabs(), (Strings{"A.pas", "strange", "C.pas", ">B.pas"}));
    control.Tabs().Move(3, 1);
    control.Tabs().Delete(2);

    Ide->ActivateTab(1);
    Ide->Modules().Close(*Ide->CurrentModule()); // its neighbour takes its place
    EXPECT_EQ(Tabs(), (Strings{"A.pas", ">C.pas"}));
    Ide->Modules().Close(*Ide->CurrentModule());
    EXPECT_EQ(Tabs(), Strings{">A.pas"});
    Ide->Modules().Close(*Ide->CurrentModule());
    EXPECT_FALSE(Ide->EditWindow().Visible());
    EXPECT_EQ(Screen()->ActiveForm(), &Ide->MainForm());
}

// --- Closing ----------------------------------------------------------------------------------

TEST_F(ModulesTest, ClosingAsks) {
    const struct {
        TDialogAnswer Answer;
        bool Closed;
        std::string_view File;
    } cases[] = {{IDYES, true, "xabc"}, {IDNO, true, "abc"}, {IDCANCEL, false, "abc"}};
    for (const auto& [answer, closed, file] : cases) {
        OpenText("abc");
        Ide->TypeText("x");
        Os.QueueAnswer(answer);
        EXPECT_EQ(IDEService<IOTAActionServices>()->CloseFile(Path("Unit1.pas")), closed);
        EXPECT_EQ(Ide->Modules().Count(), closed ? 0 : 1);
        EXPECT_EQ(Read("Unit1.pas"), file);
    }
    EXPECT_EQ(Boxes(), Strings(3, "Save changes to " + Path("Unit1.pas") + "?"));
    Ide->Modules().CloseAll(true);
    EXPECT_EQ(Boxes().size(), 3U);
}

TEST_F(ModulesTest, OneFileThatIsKeptOpenKeepsAllOpen) {
    for (const char* const name : {"A.pas", "B.pas", "C.pas"}) {
        OpenText("abc", name);
        Ide->TypeText("x");
    }
    const Strings all = OpenModules();
    // Not wanted, saved, kept open: from the last one on.
    for (const TDialogAnswer answer : {IDNO, IDYES, IDCANCEL}) Os.QueueAnswer(answer);
    EXPECT_FALSE(Ide->Modules().CloseAll());
    EXPECT_EQ(OpenModules(), all);
    EXPECT_EQ(Read("A.pas") + Read("B.pas") + Read("C.pas"), "abcxabcabc");
    // The same where a file cannot be saved.
    std::filesystem::remove(Path("A.pas"));
    std::filesystem::create_directory(Path("A.pas"));
    for (const TDialogAnswer answer : {IDNO, IDYES}) Os.QueueAnswer(answer);
    EXPECT_THROW(Ide->Modules().CloseAll(), EFileError);
    EXPECT_EQ(OpenModules(), all);
    for (const TDialogAnswer answer : {IDNO, IDNO}) Os.QueueAnswer(answer);
    EXPECT_TRUE(Ide->Modules().CloseAll());
    EXPECT_EQ(OpenModules(), Strings{});
    EXPECT_EQ(Read("C.pas"), "abc");
}

TEST_F(ModulesTest, SaveAsTakesTheFormAlong) {
    Write("Unit1.dfm", "object Form1: TForm1");
    OpenText("abc");
    OpenText("", "Other.pas");
    TIdeModule& module = Ide->Modules().Items(0);
    EXPECT_THROW(module.SaveAs(Path("Other.pas")), EInvalidOperation);
    Write("New.dfm", "else's");
    EXPECT_THROW(module.SaveAs(Path("New.pas")), EInvalidOperation); // nobody has asked about that
    EXPECT_EQ(Read("New.dfm"), "else's");
    Write("New.pas", "old");
    module.SaveAs(Path("New.pas"));
    EXPECT_EQ(Read("New.pas") + Read("New.dfm"), "abcobject Form1: TForm1");
    EXPECT_EQ(Editors(module), (Strings{"source New.pas", "form New.dfm"}));
    EXPECT_EQ(Tabs(), (Strings{"New.pas", ">Other.pas"}));
    EXPECT_EQ(Ide->Modules().Find(Path("New.pas")), &module);
    EXPECT_FALSE(Ide->Modules().Find(Path("Unit1.pas")));
}

// --- Projects ---------------------------------------------------------------------------------

TEST_F(ModulesTest, AProjectAndItsUnits) {
    WriteProject("P.dpr");
    Write("main.pas", "unit Main;");
    OpenText("unit Main;", "main.pas");
    auto& project = static_cast<TProjectModule&>(Ide->Modules().OpenProject(Path("P.dpr")));
    EXPECT_EQ(&Ide->Modules().OpenProject(Path("./P.dpr")), &project);
    EXPECT_EQ(OpenModules(), (Strings{"main.pas", "P.dpr"}));
    EXPECT_EQ(Editors(project), (Strings{"source P.dpr", "resource P.RES"}));
    EXPECT_EQ(Tabs(), Strings{">main.pas"});

    const TIntf<IOTAProject> intf = project.ProjectInterface();
    Strings units;
    for (int i = 0; i < intf->GetModuleCount(); ++i) {
        const auto info = intf->GetModule(i);
        units.push_back(info->GetName() + " " + Name(info->GetFileName()) + " " +
                        info->GetFormName() + " " + info->GetDesignClass());
    }
    EXPECT_EQ(units, (Strings{"Main main.pas MainForm ", "Data Data.pas DataModule1 TDataModule"}));

    // The unit that was opened before the project belongs to it.
    const TIntf<IOTAModule> main = intf->GetModule(0)->OpenModule();
    EXPECT_EQ(main, Ide->Modules().Items(0).Interface());
    EXPECT_EQ(main->GetOwnerCount(), 1);
    EXPECT_EQ(main->GetOwner(0), intf);
    EXPECT_FALSE(main->GetOwner(1));
    EXPECT_EQ(intf->GetOwnerCount(), 0);

    // A unit without a file.
    const auto missing = intf->GetModule(1);
    EXPECT_FALSE(missing->OpenModule());
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("Data.pas: no such file or folder"), std::string::npos);

    Ide->Modules().OpenFile(Path("P.dpr"));
    EXPECT_EQ(Tabs(), (Strings{"main.pas", ">P.dpr"}));
    Ide->Modules().Close(project);
    EXPECT_EQ(main->GetOwnerCount(), 0);
    EXPECT_EQ(missing->GetName(), "");
    EXPECT_EQ(intf->GetModuleCount(), 0);
}

TEST_F(ModulesTest, AProjectTakesOverItsOpenSource) {
    WriteProject("P.dpr");
    Ide->Modules().OpenFile(Path("P.dpr"));
    Ide->TypeText("x");
    TSourceBuffer* const buffer = Ide->CurrentBuffer();
    TIdeModule& project = Ide->Modules().OpenProject(Path("P.dpr"));
    EXPECT_EQ(OpenModules(), Strings{"P.dpr"});
    EXPECT_EQ(&project.Source(), buffer);
    EXPECT_EQ(Ide->CurrentModule(), &project);
    EXPECT_TRUE(project.Modified());
    EXPECT_THROW(project.SaveAs(Path("Q.dpr")), EInvalidOperation);
}

TEST_F(ModulesTest, AGroupAndItsProjects) {
    WriteProject("One.dpr");
    WriteProject("sub/Two.dpr");
    const std::string group =
        Write("G.bpg", "PROJECTS = One.exe Two.exe\r\n\r\nOne.exe: One.dpr\r\n\t$(DCC)\r\n\r\n"
                       "Two.exe: sub\\Two.dpr\r\n\t$(DCC)\r\n");
    auto& module = static_cast<TProjectGroupModule&>(Ide->Modules().OpenProject(group));
    EXPECT_EQ(OpenModules(), (Strings{"G.bpg", "One.dpr", "Two.dpr"}));
    const auto intf = Supports<IOTAProjectGroup>(module.Interface());
    ASSERT_TRUE(intf);
    EXPECT_FALSE(Supports<IOTAProject>(intf));
    EXPECT_EQ(intf->GetProjectCount(), 2);
    EXPECT_EQ(intf->GetActiveProject(), intf->GetProject(0));
    EXPECT_EQ(Name(intf->GetActiveProject()->GetFileName()), "One.dpr");
    module.SetActiveProject(*module.Projects()[1]);
    EXPECT_EQ(Name(intf->GetActiveProject()->GetFileName()), "Two.dpr");
    Ide->Modules().Close(*module.Projects()[1]);
    EXPECT_FALSE(intf->GetActiveProject());
    EXPECT_EQ(intf->GetProjectCount(), 1);
    EXPECT_TRUE(Ide->Modules().Close(module));
    EXPECT_EQ(OpenModules(), Strings{});
    EXPECT_EQ(intf->GetProjectCount(), 0);
}

TEST_F(ModulesTest, ProjectsThatCannotBeOpened) {
    WriteProject("One.dpr");
    Write("G.bpg", "PROJECTS = One.exe Two.exe\n\nOne.exe: One.dpr\n\nTwo.exe: Two.dpr\n");
    Write("Bad.dpr", "program\n\n;");
    EXPECT_EQ(ErrorOf([&] { Ide->Modules().OpenProject(Path("G.bpg")); }),
              Path("G.bpg") + ":5: cannot read " + Path("Two.dpr") + ": no such file or folder");
    EXPECT_EQ(ErrorOf([&] { Ide->Modules().OpenProject(Path("Unit1.pas")); }),
              Path("Unit1.pas") + " is neither a project nor a project group");
    EXPECT_EQ(ErrorOf([&] { Ide->Modules().OpenProject(Path("Bad.dpr")); }).find(Path("Bad.dpr:3")),
              0U);
    EXPECT_EQ(OpenModules(), Strings{});
}

} // namespace
} // namespace tarn
