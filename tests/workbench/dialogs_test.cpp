// Message boxes, questions for a text, a file, a folder, and the window of the language modules.

#include "TWorkbenchHarness.h"
#include "vcl/TStringGrid.h"

namespace tarn {
namespace {

using WorkbenchDialogs = TWorkbenchTest;

TEST_F(WorkbenchDialogs, EachAnswerOfAMessageBox) {
    const struct {
        std::uint32_t Flags;
        const char* Answer;
        TDialogAnswer Result;
    } rows[] = {
        {MB_OK | MB_ICONERROR, "OK", IDOK},
        {MB_OK, "Esc", IDOK},
        {MB_OK, "x", IDOK},
        {MB_OK, "Return", IDOK},
        {MB_YESNO, "Yes", IDYES},
        {MB_YESNO, "No", IDNO},
        {MB_YESNO, "Esc", IDNO},
        {MB_YESNO, "x", IDNO},
        {MB_YESNO, "Return", IDYES},
        {MB_YESNO | MB_DEFBUTTON2, "Return", IDNO},
        {MB_YESNOCANCEL, "Yes", IDYES},
        {MB_YESNOCANCEL, "No", IDNO},
        {MB_YESNOCANCEL, "Cancel", IDCANCEL},
        {MB_YESNOCANCEL, "Esc", IDCANCEL},
        {MB_YESNOCANCEL, "x", IDCANCEL},
        {MB_YESNOCANCEL, "Alt+N", IDNO},
    };
    for (const auto& row : rows) {
        ThenAnswer(row.Answer);
        EXPECT_EQ(Session.OS().MessageBox(0, "<b>Text</b>", "Title", row.Flags), row.Result)
            << row.Flags << row.Answer;
    }
    EXPECT_EQ(Asked.substr(0, 12), "<b>Text</b>\n"); // no markup
}

TEST_F(WorkbenchDialogs, KeysOfABoxAreNotThoseOfTheWindowsBehind) {
    Open({"A.pas"}, "a\r\nb");
    Session.Ide().RunCommand([&] { Buffer().View()->Select({1, 1}, {2, 1}); });
    Settle();
    Then([this](QWidget&) { Press({"Ctrl+.", "Ctrl+Shift+Q", "Esc"}); });
    Session.OS().MessageBox(0, "Text", "Title", MB_YESNO);
    EXPECT_EQ(Text(), "a\r\nb");
    EXPECT_EQ(ActiveName(), "EditWindow_0");
    Press("Ctrl+.");
    EXPECT_EQ(Text(), " a\r\nb");
}

TEST_F(WorkbenchDialogs, TextsAndFiles) {
    const auto input = [&](const char* answer) {
        ThenType("new", answer);
        return Session.OS().InputText("Title", "Prompt", "old").value_or("-");
    };
    EXPECT_EQ(input("Return"), "new");
    EXPECT_EQ(input("OK"), "new");
    EXPECT_EQ(input("Cancel"), "-");
    EXPECT_EQ(input("Esc"), "-");

    WriteFile("there.txt", "x");
    WriteFile("too.txt", "x");
    const std::string filter = "Texts (*.txt)|*.txt|All files(*.*)|*.*";
    const auto choose = [&](bool save, const std::string& name, const char* answer) {
        ThenType(FromText(name), answer);
        const auto files = Session.OS().ChooseFiles({.Save = save,
                                                     .Filter = filter,
                                                     .DefaultExt = ".txt",
                                                     .OverwritePrompt = save,
                                                     .Several = !save,
                                                     .InitialDir = Folder.Path()});
        std::string names;
        for (const std::string& file : files)
            names += std::filesystem::path(file).filename().string() + " ";
        return names.empty() ? "-" : names.substr(0, names.size() - 1);
    };
    EXPECT_EQ(choose(false, "there.txt", "Return"), "there.txt");
    EXPECT_EQ(choose(false, "\"there.txt\" \"too.txt\"", "Return"), "there.txt too.txt");
    EXPECT_EQ(choose(false, "there.txt", "Esc"), "-");
    EXPECT_EQ(choose(false, "there.txt", "Cancel"), "-");
    EXPECT_EQ(choose(true, "other", "Save"), "other.txt");
    EXPECT_EQ(choose(true, "there.txt", "Esc"), "-");
    ThenType(FromText(Folder.Path()), "Choose");
    EXPECT_EQ(Session.OS().SelectDirectory("Title", "/").value_or("-"), Folder.Path());
    ThenType(FromText(Folder.Path()), "Esc");
    EXPECT_EQ(Session.OS().SelectDirectory("Title", "/").value_or("-"), "-");
}

TEST_F(WorkbenchDialogs, UnitsOfAProjectAreChosenFromAList) {
    const auto list = [](QWidget& window) { return window.findChild<QListWidget*>(); };
    Press("Ctrl+F12"); // there is no project
    for (const char* const name : {"A.pas", "B.pas", "C.pas"}) WriteFile(name, "text");
    Bench->Open(WriteFile("P.dpr", "program P;\nuses A in 'A.pas', B in 'B.pas', C in 'C.pas';\n"
                                   "begin end."));
    EXPECT_TRUE(Bench->Window().statusBar()->currentMessage().contains("P.dpr"));
    Settle();
    Then([&](QWidget& window) {
        ASSERT_TRUE(list(window));
        EXPECT_EQ(list(window)->count(), 3);
        EXPECT_TRUE(list(window)->hasFocus());
        Press({"Down", "Shift+Down"});
        Press("Return");
    });
    Press("Ctrl+F12");
    Wait([&] { return Tabs() == "B.pas *C.pas"; });
    Then([&](QWidget& window) {
        const QListWidgetItem* const first = list(window)->item(0);
        DoubleClick(*list(window)->viewport(), list(window)->visualItemRect(first).center());
    });
    ClickMenu({"View", "Units..."});
    Wait([&] { return Tabs() == "B.pas *A.pas C.pas" || Tabs() == "B.pas C.pas *A.pas"; });
    Then([&](QWidget&) { Press("Esc"); });
    Press("Ctrl+F12");
}

TEST_F(WorkbenchDialogs, LanguageModulesAreTypedIntoTheGrid) {
    Then([this](QWidget&) {
        EXPECT_EQ(Component<TStringGrid>("LocaleGrid").RowCount(), 4);
        Press("Ctrl+A"); // a new row
        auto& grid = static_cast<QTableWidget&>(Widget("LocaleGrid"));
        EXPECT_EQ(grid.currentRow(), 3);
        const auto cell = [&](int col) { return grid.visualItemRect(grid.item(3, col)).center(); };
        DoubleClick(*grid.viewport(), cell(0));
        Type("Elvish");
        Press("Return");
        DoubleClick(*grid.viewport(), cell(1));
        Type("elf");
        Press({"Left", "Left"});
        Type("x"); // where the caret is
        EXPECT_EQ(Component<TStringGrid>("LocaleGrid").Cell(1, 4), "exlf");
        Click("tbOk"); // while the text is being typed
    });
    ClickMenu({"TarnExperts", "Settings", "Language", "Modules..."});
    Wait([&] { return ActiveName() == "IdeMainForm"; });
    const std::string modules = ReadFile("registry");
    EXPECT_NE(modules.find("Elvish=exlf"), std::string::npos) << modules;
    Then([this](QWidget&) {
        auto& grid = static_cast<QTableWidget&>(Widget("LocaleGrid"));
        Click(*grid.viewport(), grid.visualItemRect(grid.item(3, 0)).center());
        ThenAnswer("Yes");
        Press("Ctrl+D");
        EXPECT_EQ(grid.rowCount(), 3);
        Press("Esc");
    });
    ClickMenu({"TarnExperts", "Settings", "Language", "Modules..."});
    Wait([&] { return ActiveName() == "IdeMainForm"; });
    EXPECT_EQ(ReadFile("registry"), modules); // cancelled
}

} // namespace
} // namespace tarn
