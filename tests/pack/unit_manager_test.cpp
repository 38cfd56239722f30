#include "Package.h"
#include "TIde.h"
#include "os/portable/TPortableOS.h"
#include "qsExpMng.h"
#include "units/TUnitForm.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <random>
#include <unistd.h>

namespace tarn {
namespace {

// --- The list as plain data -------------------------------------------------------------------

// Lines as letters, the selected ones in capitals; the tab is the place in the text.
TUnitLines Lines(std::string_view text) {
    TUnitLines lines;
    for (const char c : text)
        lines.push_back({LowerCase({&c, 1}), static_cast<int>(lines.size()), nullptr, c < 'a'});
    return lines;
}

std::string Text(const TUnitLines& lines) {
    std::string text;
    for (const TUnitLine& line : lines)
        text += line.Selected ? UpperCase(line.Caption) : line.Caption;
    return text;
}

TEST(UnitLines, MoveByOnePlace) {
    const struct {
        std::string_view Before, Up, Down;
    } cases[] = {
        {"abc", "abc", "abc"},       {"aBc", "Bac", "acB"},
        {"Abc", "Abc", "bAc"},       {"abC", "aCb", "abC"},
        {"aBCd", "BCad", "adBC"},    {"AbCd", "ACbd", "bAdC"},
        {"ABcDe", "ABDce", "cABeD"}, {"aBcDE", "BaDEc", "acBDE"},
        {"ABC", "ABC", "ABC"},       {"", "", ""},
    };
    for (const auto& [before, up, down] : cases) {
        for (const auto& [isUp, after] : {std::pair(true, up), std::pair(false, down)}) {
            TUnitLines lines = Lines(before);
            EXPECT_EQ(MoveLines(lines, isUp), before != after) << before;
            EXPECT_EQ(Text(lines), after) << before;
        }
    }
}

TEST(UnitLines, DropInFrontOfALine) {
    const struct {
        std::string_view Before;
        int To;
        std::string_view After;
    } cases[] = {{"aBcd", 0, "Bacd"}, {"aBcd", 1, "aBcd"}, {"aBcd", 2, "aBcd"},
                 {"aBcd", 3, "acBd"}, {"aBcd", 4, "acdB"}, {"AbCd", 3, "bACd"},
                 {"AbCd", 2, "bACd"}, {"AbCd", 0, "ACbd"}, {"AbCdE", 4, "bdACE"}};
    for (const auto& [before, to, after] : cases) {
        TUnitLines lines = Lines(before);
        DropLines(lines, to);
        EXPECT_EQ(Text(lines), after) << before << " to " << to;
    }
}

TEST(UnitLines, FollowTheTabs) {
    // A tab is a caption with the number of its companion, 0 for none; "caption=tab" is a line.
    TObject companions[4];
    const auto tabsOf = [&](std::initializer_list<std::string_view> units, TStringList& tabs) {
        for (const std::string_view unit : units) {
            const int number = unit.back() - '0';
            tabs.AddObject(unit.substr(0, 1), number == 0 ? nullptr : &companions[number]);
        }
    };
    const struct {
        std::initializer_list<std::string_view> Before, After;
        std::string_view Lines;
    } cases[] = {
        {{"a1", "b2", "c3"}, {"a1", "b2", "c3"}, "a0 b1 c2"},
        {{"a1", "b2", "c3"}, {"c3", "x0", "a1"}, "a2 c0"},
        {{"a1", "a2", "a3"}, {"a3", "a1", "a2"}, "a1 a2 a0"},
        {{"a1", "b2"}, {"b1", "a2"}, ""}, // other units at the old addresses
        {{"a0", "a0", "b1"}, {"b1", "a0", "a0"}, "a2 a1 b0"},
        {{"a0", "a0", "b1"}, {"b1", "a0"}, "a1 b0"},
        {{"a1", "b2"}, {}, ""},
    };
    for (const auto& c : cases) {
        TStringList before, after;
        tabsOf(c.Before, before);
        tabsOf(c.After, after);
        TUnitLines lines = LinesOfTabs(before);
        FollowTabs(lines, after);
        std::string text;
        for (const TUnitLine& line : lines)
            text += (text.empty() ? "" : " ") + line.Caption + std::to_string(line.Tab);
        EXPECT_EQ(text, c.Lines);
    }
}

/// Whatever is done to the lines, the tabs are the same ones afterwards, those that the lines do
/// not show stand where they stood, and the others stand in the order of the lines.
TEST(UnitLines, TheOrderLosesNoTab) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
    for (int round = 0; round < 300; ++round) {
        std::vector<TObject> companions(1 + random() % 12);
        TStringList tabs;
        for (TObject& companion : companions)
            tabs.AddObject(std::string(1 + random() % 2, static_cast<char>('a' + below(4))),
                           &companion);
        TUnitLines lines = LinesOfTabs(tabs);
        for (int step = 0; step < 6; ++step) {
            for (TUnitLine& line : lines) line.Selected = random() % 3 == 0;
            switch (below(4)) {
            case 0:
                FilterLines(lines, step % 2 == 0 ? "A" : "b");
                break;
            case 1:
                SortLines(lines, random() % 2 == 0);
                break;
            case 2:
                MoveLines(lines, random() % 2 == 0);
                break;
            default:
                DropLines(lines, below(lines.size() + 1));
            }
            std::vector<TObject*> expected;
            std::size_t next = 0;
            for (int i = 0; i < tabs.Count(); ++i) {
                const bool shown =
                    std::any_of(lines.begin(), lines.end(), [&](const TUnitLine& line) {
                        return line.Companion == tabs.GetObject(i);
                    });
                expected.push_back(shown ? lines[next++].Companion : tabs.GetObject(i));
            }
            std::vector<TObject*> found;
            TStringList ordered;
            for (const int tab : OrderTabs(lines, tabs.Count())) {
                found.push_back(tabs.GetObject(tab));
                ordered.AddObject(tabs[tab], tabs.GetObject(tab));
            }
            ASSERT_EQ(found, expected) << "round " << round;
            tabs.Assign(&ordered);
            for (const TUnitLine& line : lines)
                ASSERT_EQ(line.Companion, tabs.GetObject(line.Tab)) << "round " << round;
        }
    }
}

TEST(UnitLines, History) {
    const struct {
        std::string_view Before, Text;
        int Limit;
        std::string_view After;
    } cases[] = {
        {"", "a", 3, "a"},
        {"b,c", "a", 3, "a,b,c"},
        {"b,c,d", "a", 3, "a,b,c"},
        {"b,a,c", "A", 3, "b,a,c"},
        {"b,c,d,e", "b", 3, "b,c,d"}, // one goes at a time
        {"b,c,d,e", "a", 3, "a,b,c,d"},
        {"b,c", "a", 0, ""},
        {"b", "b", -5, ""},
        {"\xC3\xA4", "\xC3\x84", 3, "\xC3\xA4"},
        {"b", "\xFF", 1, "\xFF"},
    };
    for (const auto& c : cases) {
        TStringList history;
        history.SetCommaText(c.Before);
        SaveHistory(history, c.Text, c.Limit);
        EXPECT_EQ(history.GetCommaText(), c.After) << c.Text << " into " << c.Before;
    }
}

TEST(UnitLines, FilterAndSort) {
    const auto found = [](std::string_view text) {
        TUnitLines lines =
            LinesOfTabs(TStringList{"b10.pas", "B9.PAS", "\xC3\x84.pas", "a\xFF", "b9.Pas"});
        FilterLines(lines, text);
        SortLines(lines, false);
        std::string captions;
        for (const TUnitLine& line : lines) captions += line.Caption + " ";
        return captions;
    };
    EXPECT_EQ(found("PaS"), "\xC3\x84.pas b10.pas B9.PAS b9.Pas ");
    EXPECT_EQ(found("9.p"), "B9.PAS b9.Pas ");
    EXPECT_EQ(found("\xC3\xA4"), "\xC3\x84.pas ");
    EXPECT_EQ(found("\xFF"), "a\xFF ");
    EXPECT_EQ(found("\xFE"), "");
}

// --- The window -------------------------------------------------------------------------------

/// Lets a test look around while a message box is open.
class TOpenBoxOS : public TPortableOS {
public:
    TDialogAnswer MessageBox(HWND owner, std::string_view text, std::string_view caption,
                             std::uint32_t flags) override {
        if (WhileOpen) WhileOpen();
        return TPortableOS::MessageBox(owner, text, caption, flags);
    }
    std::function<void()> WhileOpen;
};

class UnitManagerTest : public testing::Test {
protected:
    UnitManagerTest() : FFormerOS(InstallOS(&Os)) {
        Folder = std::filesystem::path(testing::TempDir()) /
                 ("tarn-units-" + std::to_string(::getpid()));
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directories(Folder / "other");
        Os.SetModuleFileName((Folder / "pack.module").string());
        Ide.emplace();
        EXPECT_TRUE(Ide->Packages().Load({InitializePackage, Register, FinalizePackage}));
        Ide->PumpMessages();
    }
    ~UnitManagerTest() override {
        Ide.reset();
        EXPECT_EQ(Os.WindowCount(), 0U);
        InstallOS(FFormerOS);
        std::filesystem::remove_all(Folder);
    }

    TUnitManager& Manager() {
        const TExpObjectList& list = *TExpManager::Instance()->ExpObjects();
        return *ClassCast<TUnitManager>(list.Get(list.IndexOf("UnitManager")).Expert.Get());
    }
    TUnitForm& Form() { return *Manager().Form(); }
    TSourceBuffer& Open(std::string_view name, bool modify = false) {
        const std::filesystem::path file = Folder / name;
        std::ofstream(file, std::ios::binary) << "x\r\n";
        TSourceBuffer& buffer = Ide->Modules().OpenFile(file.string()).Source();
        if (modify) buffer.View()->TypeText("y");
        return buffer;
    }
    void OpenAll(std::initializer_list<std::string_view> names) {
        for (const std::string_view name : names) Open(name);
    }
    TUnitForm& Show() {
        EXPECT_TRUE(Ide->PressKey(TextToShortCut("Ctrl+Shift+Q")));
        return Form();
    }
    /// Selects the lines of these numbers, from 0.
    void Select(std::initializer_list<int> lines) {
        Form().UnitList().ClearSelection();
        for (const int line : lines) Form().UnitList().ClickItem(line, {ssCtrl});
    }
    /// Lets the timer tick that often.
    void Tick(int ticks = 1) {
        for (; ticks > 0 && Os.NextTimer(); --ticks) {
            Os.AdvanceTime(*Os.NextTimer());
            Ide->PumpMessages();
        }
    }

    /// The tabs with a ">" before the current one.
    std::string Tabs() {
        std::string text;
        TTabControl& control = Ide->EditWindow().TabControl();
        for (int i = 0; i < control.Tabs().Count(); ++i)
            text += (i == control.TabIndex() ? ">" : "") + control.Tabs()[i] + " ";
        return text;
    }
    /// The lines of the list with a "*" before each that is selected.
    std::string List() {
        std::string text;
        TListBox& list = Form().UnitList();
        for (int i = 0; i < list.Count(); ++i)
            text += (list.Selected(i) ? "*" : "") + list.Items()[i] + " ";
        return text;
    }
    std::size_t Boxes() const { return Os.Dialogs().size(); }

    TOpenBoxOS Os;
    std::filesystem::path Folder;
    std::optional<TIde> Ide;

private:
    TOperatingSystem* FFormerOS;
};

TEST_F(UnitManagerTest, OrderFollowsTheList) {
    OpenAll({"b.pas", "C.pas", "a.pas", "d.txt"});
    Ide->ActivateTab(1);
    Show();
    EXPECT_EQ(List(), "b.pas *C.pas a.pas d.txt ");
    Select({0});
    Form().SortUnits();
    EXPECT_EQ(Tabs() + "| " + List(), "a.pas b.pas >C.pas d.txt | a.pas b.pas *C.pas d.txt ");
    Form().SortUnits();
    EXPECT_EQ(Tabs() + "| " + List(), "d.txt >C.pas b.pas a.pas | d.txt *C.pas b.pas a.pas ");

    // With a filter on, what it hides stays where it is.
    Manager().FilterPanelVisible = true;
    Form().FilterText().SetText("  .PAS\t");
    Form().FilterUnits();
    EXPECT_EQ(List(), "*C.pas b.pas a.pas ");
    Form().SortUnits();
    EXPECT_EQ(Tabs() + "| " + List(), "d.txt a.pas b.pas >C.pas | a.pas b.pas *C.pas ");
    Select({1});
    Form().MoveItems(true);
    EXPECT_EQ(Tabs() + "| " + List(), "d.txt b.pas a.pas >C.pas | *b.pas a.pas C.pas ");
    Form().FilterText().SetText("");
    Form().FilterUnits();
    EXPECT_EQ(List(), "*d.txt b.pas a.pas C.pas ");
    EXPECT_FALSE(Form().Filtered() || Form().SortedAscending());
    EXPECT_EQ(Manager().HistoryList()->GetCommaText(), ".PAS");

    // The tabs were changed by others meanwhile.
    Ide->Modules().Close(*Ide->Modules().Find((Folder / "b.pas").string()), true);
    Open("e.pas");
    Select({0, 3});
    Form().MoveItems(true);
    EXPECT_EQ(Tabs() + "| " + List(), "d.txt C.pas a.pas >e.pas | *d.txt *C.pas a.pas ");
    EXPECT_FALSE(Form().UnitList().DragItems(1, 3));
    Manager().DragModeAllowed = true;
    Form().SetProperties();
    EXPECT_TRUE(Form().UnitList().DragItems(1, 3));
    EXPECT_EQ(Tabs() + "| " + List(), "a.pas d.txt C.pas >e.pas | a.pas *d.txt *C.pas ");
    EXPECT_EQ(Ide->CurrentBuffer()->FileName(), (Folder / "e.pas").string());
    Form().PopulateUnitList();
    Ide->Modules().Close(*Ide->Modules().Find((Folder / "a.pas").string()), true);
    EXPECT_TRUE(Form().UnitList().DragItems(3, 2)); // in front of C.pas, as the list stood
    EXPECT_EQ(Tabs() + "| " + List(), "d.txt >e.pas C.pas | d.txt *e.pas C.pas ");

    Ide->Modules().CloseAll(true); // and now the tab control is gone
    Form().SortUnits();
    EXPECT_EQ(List(), "");
    TAction command;
    Manager().CheckShownState(&command);
    EXPECT_FALSE(command.Enabled());
    Form().acShow().Execute();
    Form().CloseUnits();
    Form().FilterUnits();
    EXPECT_EQ(List() + Tabs(), "");
}

TEST_F(UnitManagerTest, NamesItsSettings) {
    EXPECT_NE(ExpData().LocalNames.find(
                  "[TUnitManager]\r\n"
                  "DragModeAllowed=Drag selected modules by mouse\r\n"
                  "CloseFormOnShowUnit=Close form on activate##selected unit\r\n"
                  "FilterPanelVisible=Show filter panel\r\n"
                  "JumpToUnitsOnApllyFilter=Move focus to modules list##after filtering\r\n"
                  "HistoryList=Filter history\r\n"
                  "HistoryStoredCount=Maximum lines for history\r\n"
                  "CloseUnitShortCut=Hotkey for closing##selected module\r\n"
                  "FilterUnitsShortCut=Hotkey for filter show\r\n"
                  "MoveDownUnitShortCut=Hotkey for selected units##moving to the right\r\n"
                  "MoveUpUnitShortCut=Hotkey for selected units##moving to the left\r\n"
                  "ShowUnitShortCut=Hotkey for selected unit activation\r\n"
                  "SortUnitsShortCut=Hotkey for modules sort\r\n"),
              std::string::npos);
}

TEST_F(UnitManagerTest, WhatAFilterLeaves) {
    OpenAll({"a.pas", "b.pas"});
    Show();
    Form().acFilter().Execute(); // brings the box only
    EXPECT_TRUE(Manager().FilterPanelVisible && Form().FilterText().Focused());
    const struct {
        std::string_view Text, Found;
        bool Jump, ListFocused;
    } cases[] = {
        {"none", "", true, false}, {"A.", "*a.pas ", false, false}, {"b", "*b.pas ", true, true}};
    for (const auto& [text, found, jump, listFocused] : cases) {
        Manager().JumpToUnitsOnApllyFilter = jump;
        Form().FilterText().SetFocus();
        Form().FilterText().TypeText(text);
        EXPECT_FALSE(Ide->PressKey(VK_DELETE)); // edits the text and closes nothing
        EXPECT_TRUE(Ide->PressKey(VK_RETURN));
        EXPECT_EQ(List(), found);
        EXPECT_TRUE(Form().Filtered());
        EXPECT_EQ(Form().UnitList().Focused(), listFocused);
    }
    EXPECT_EQ(Form().FilterText().Items().GetCommaText(), "b,A.,none");
    // What does something in the box is no command there: F1, F24, ";", Alt+R.
    Form().FilterText().SetFocus();
    EXPECT_TRUE(Form().FilterText().DropDown());
    EXPECT_FALSE(Ide->PressKey(VK_RETURN)); // takes a line of the list that is open
    Form().FilterText().CloseUp();
    for (const auto& [key, command] :
         {std::pair<int, bool>(0x70, true), {0x87, true}, {0xBA, false}, {scAlt | 'R', true}}) {
        Form().acSort().SetShortCut(static_cast<TShortCut>(key));
        const bool before = Form().SortedAscending();
        Ide->PressKey(static_cast<TShortCut>(key));
        EXPECT_EQ(Form().SortedAscending() != before, command) << key;
    }
    Manager().FilterPanelVisible = false;
    Form().SetProperties();
    EXPECT_TRUE(Form().UnitList().Focused());
    EXPECT_TRUE(Ide->PressKey(VK_ESCAPE));
    EXPECT_FALSE(Form().Visible());
    EXPECT_EQ(Screen()->ActiveForm(), &Ide->EditWindow());
    EXPECT_EQ(Tabs(), "a.pas >b.pas ");
}

TEST_F(UnitManagerTest, Shortcuts) {
    OpenAll({"a.pas", "b.pas"});
    Manager().MoveUpUnitShortCut = "no key";
    Manager().ShowUnitShortCut = "";
    Manager().CloseFormOnShowUnit = true;
    Show();
    EXPECT_EQ(Form().acMoveUp().ShortCut(), 0);
    EXPECT_FALSE(Ide->PressKey(TextToShortCut("Alt+Left")));
    Select({0});
    EXPECT_TRUE(Ide->PressKey(TextToShortCut("Alt+Right")));
    EXPECT_EQ(Tabs(), ">b.pas a.pas ");
    EXPECT_TRUE(Form().acShow().Execute());
    EXPECT_EQ(Tabs(), "b.pas >a.pas ") << "the line that was clicked is the second one";
    EXPECT_FALSE(Form().Visible());
    Manager().CloseFormOnShowUnit = false;
    Show();
    Select({0});
    EXPECT_TRUE(Form().acShow().Execute());
    EXPECT_EQ(Tabs(), ">b.pas a.pas ");
    EXPECT_TRUE(Form().Visible());
    Open("c.pas");
    Form().PopulateUnitList();
    Select({1});
    Ide->Modules().Close(*Ide->Modules().Find((Folder / "b.pas").string()), true);
    EXPECT_TRUE(Form().acShow().Execute());
    EXPECT_EQ(Tabs(), ">a.pas c.pas ") << "though its line is another one now";
    Form().acExit().Execute();
    EXPECT_EQ(Screen()->ActiveForm(), &Ide->EditWindow());
    Manager().FormSetting()->FormPlacement = "0,2,-1,-1,-1,-1,10,20,910,420"; // as an icon
    EXPECT_EQ(Show().WindowState(), wsNormal);
}

TEST_F(UnitManagerTest, ClosesByName) {
    OpenAll({"a.pas", "b.pas", "c.pas", "d.pas"});
    Open("e.pas", true);
    Show();
    Select({1, 3, 4});
    Os.QueueAnswer(IDCANCEL); // of e.pas, the last one, which comes first
    Form().CloseUnits();
    EXPECT_FALSE(Form().Closing());
    EXPECT_EQ(Tabs() + "| " + List(), "a.pas c.pas >e.pas | a.pas c.pas *e.pas ");
    EXPECT_TRUE(Form().UnitList().Focused());
    EXPECT_EQ(Boxes(), 1U);

    // A save that fails ends it, and leaves a list that is right.
    std::ofstream(Folder / "e.pas") << "changed by somebody else";
    Select({0, 2});
    Os.QueueAnswer(IDYES);
    EXPECT_THROW(Form().CloseUnits(), EFileError);
    EXPECT_FALSE(Form().Closing());
    EXPECT_EQ(List(), "a.pas c.pas *e.pas ");

    // A source goes with its header.
    std::ofstream(Folder / "u.h") << "x";
    Open("u.cpp").Module().FindSource((Folder / "u.h").string())->Show();
    Form().PopulateUnitList();
    Select({3, 4});
    Form().CloseUnits();
    EXPECT_EQ(List(), "a.pas c.pas *e.pas ");

    // The pack is unloaded by a message that is handled between two units.
    const std::function<void(TMessage&)> unload = [&](TMessage&) { Ide->Packages().Unload(); };
    TMessageWindow window(TWndMethod::Calling(unload));
    Select({0, 1});
    Os.PostMessage(window.Handle(), 1, 0, 0);
    Form().CloseUnits();
    EXPECT_EQ(Tabs(), "a.pas >e.pas ");
}

TEST_F(UnitManagerTest, ClosesOneByOne) {
    OpenAll({"a.pas", "b.pas"});
    Open("other/B.PAS", true);
    Open("c.pas");
    Show();
    Select({0, 1}); // B.PAS is not selected, and is open
    Form().CloseUnits();
    EXPECT_TRUE(Form().Closing());
    EXPECT_FALSE(Form().acClose().Execute());
    Form().CloseUnits(); // does not put them into the queue again
    EXPECT_TRUE(Form().acMoveUp().Execute());
    EXPECT_EQ(Tabs(), "a.pas b.pas B.PAS >c.pas ");

    // It waits while a question of the IDE is open, whoever has asked.
    TForm confirm;
    confirm.SetName("Confirm");
    confirm.Show();
    Tick(3);
    EXPECT_EQ(Tabs(), "a.pas b.pas B.PAS >c.pas ");
    confirm.Hide();
    Tick();
    EXPECT_EQ(Tabs(), "a.pas >B.PAS c.pas ") << "the selected one of that name";
    Tick();
    EXPECT_EQ(Tabs(), ">B.PAS c.pas ");
    EXPECT_TRUE(Form().Closing());
    Tick();
    EXPECT_FALSE(Form().Closing());
    EXPECT_EQ(List(), "*B.PAS c.pas ");
    EXPECT_TRUE(Form().UnitList().Focused());
    EXPECT_FALSE(Os.NextTimer());
    EXPECT_EQ(Boxes(), 0U);
}

TEST_F(UnitManagerTest, NothingElseIsClosedInstead) {
    OpenAll({"a.pas", "b.pas", "c.pas", "other/c.pas", "d.pas"});
    // A tab of somebody else, which the IDE does not show.
    Ide->EditWindow().TabControl().Tabs().Insert(0, "stranger");
    Show();
    Select({0, 1, 2, 3});
    Form().CloseUnits();
    Tick();
    EXPECT_EQ(Tabs(), "stranger a.pas b.pas >c.pas d.pas ");
    Ide->Modules().Close(*Ide->Modules().Find((Folder / "b.pas").string()), true);
    Ide->EditWindow().TabControl().Tabs().Move(1, 3); // a.pas goes to the end
    Open("new.pas");
    Tick(5);
    EXPECT_FALSE(Form().Closing());
    EXPECT_EQ(Tabs(), "stranger c.pas d.pas >new.pas ");
}

TEST_F(UnitManagerTest, TheIdeAsksForEachUnit) {
    Open("a.pas", true);
    Open("other/a.pas", true);
    Open("b.pas", true);
    Show();
    Form().UnitList().SelectAll();
    std::vector<std::string> seen;
    Os.WhileOpen = [&] {
        seen.push_back(Screen()->ActiveForm()->Name() + " " + Tabs());
        Os.AdvanceTime(5000);
        Application()->ProcessMessages(); // ticks come, and wait
    };
    for (const TDialogAnswer answer : {IDNO, IDCANCEL, IDYES}) Os.QueueAnswer(answer);
    Form().CloseUnits();
    Tick(4);
    EXPECT_EQ(seen, (std::vector<std::string>{"Confirm a.pas a.pas >b.pas ",
                                              "Confirm a.pas >a.pas ", "Confirm >a.pas a.pas "}));
    EXPECT_EQ(List(), "*a.pas ");
    EXPECT_FALSE(Form().Closing());

    // The unit is closed otherwise while the question about it is open.
    Open("a.pas");
    Form().PopulateUnitList();
    Form().UnitList().SelectAll();
    Os.WhileOpen = [&] { Ide->Modules().Close(Ide->CurrentBuffer()->Module(), true); };
    Os.QueueAnswer(IDYES);
    Form().CloseUnits();
    Tick(4);
    EXPECT_EQ(Tabs() + List(), "");
}

TEST_F(UnitManagerTest, AProjectGoesOneByOne) {
    std::ofstream(Folder / "P.dpr") << "program P;\r\nuses\r\n  a in 'a.pas';\r\nbegin\r\nend.\r\n";
    OpenAll({"a.pas", "b.pas"});
    Ide->Modules().OpenProject((Folder / "P.dpr").string()).Source().Show();
    Show();
    Select({1, 2});
    Form().CloseUnits();
    EXPECT_EQ(Tabs(), "a.pas b.pas >P.dpr ");
    Ide->Packages().Unload(); // the queue goes with its window
    EXPECT_FALSE(Os.NextTimer());
    Ide->PumpMessages();
    EXPECT_EQ(Tabs(), "a.pas b.pas >P.dpr ");
}

} // namespace
} // namespace tarn
