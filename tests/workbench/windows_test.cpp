// The windows of the pack: the open units, the CPU capture.

#include "Cpu.h"
#include "Settings.h"
#include "TWorkbenchHarness.h"
#include "vcl/TComboBox.h"
#include "vcl/TMemo.h"

namespace tarn {
namespace {

class WorkbenchUnits : public TWorkbenchTest {
protected:
    void SetUp() override {
        Open({"A.pas", "B.pas", "C.pas", "D.pas"});
        Press("Ctrl+Shift+Q");
        ASSERT_EQ(ActiveName(), "UnitForm");
        ASSERT_EQ(Units(), "A.pas B.pas C.pas *D.pas");
    }
    std::string Units() { return Lines("UnitList"); }
    void Toggle(const QString& setting) {
        ThenPopup({setting});
        AskForMenu(ListArea("UnitList"));
    }
};

TEST_F(WorkbenchUnits, SelectsByMouseAndKeys) {
    const auto click = [this](int line, Qt::KeyboardModifiers keys = {}) {
        return [this, line, keys] { ClickLine("UnitList", line, keys); };
    };
    const auto press = [this](const char* key) { return [this, key] { Press(key); }; };
    const struct {
        std::function<void()> Do;
        const char* Lines;
    } rows[] = {
        {click(1), "A.pas *B.pas C.pas D.pas"},
        {click(3, Qt::ControlModifier), "A.pas *B.pas C.pas *D.pas"},
        {click(1, Qt::ControlModifier), "A.pas B.pas C.pas *D.pas"},
        {click(0), "*A.pas B.pas C.pas D.pas"},
        {click(2, Qt::ShiftModifier), "*A.pas *B.pas *C.pas D.pas"},
        {press("Down"), "A.pas B.pas C.pas *D.pas"},
        {press("Home"), "*A.pas B.pas C.pas D.pas"},
        {press("Shift+Down"), "*A.pas *B.pas C.pas D.pas"},
        {press("End"), "A.pas B.pas C.pas *D.pas"},
        {press("Up"), "A.pas B.pas *C.pas D.pas"},
        {press("b"), "A.pas *B.pas C.pas D.pas"},
        {press("Ctrl+A"), "*A.pas *B.pas *C.pas *D.pas"},
        {press("PgUp"), "*A.pas B.pas C.pas D.pas"},
    };
    for (const auto& row : rows) {
        row.Do();
        EXPECT_EQ(Units(), row.Lines) << &row - rows;
    }
}

TEST_F(WorkbenchUnits, MovesAndSortsByKeysAndButtons) {
    ClickLine("UnitList", 0);
    Press("Alt+Right");
    EXPECT_EQ(Units(), "B.pas *A.pas C.pas D.pas");
    EXPECT_EQ(Tabs(), "B.pas A.pas C.pas *D.pas");
    ClickLine("UnitList", 3, Qt::ControlModifier);
    Press("Alt+Left");
    EXPECT_EQ(Units(), "*A.pas B.pas *D.pas C.pas");
    Click("tbMoveDown");
    EXPECT_EQ(Units(), "B.pas *A.pas C.pas *D.pas");
    Click("tbMoveUp");
    EXPECT_EQ(Units(), "*A.pas B.pas *D.pas C.pas");
    Press("Alt+R");
    EXPECT_EQ(Units(), "A.pas B.pas C.pas *D.pas");
    Click("tbSort");
    EXPECT_EQ(Units(), "*D.pas C.pas B.pas A.pas");
    EXPECT_EQ(Tabs(), "*D.pas C.pas B.pas A.pas");
    Click("tbExit");
    EXPECT_EQ(ActiveName(), "EditWindow_0");
}

TEST_F(WorkbenchUnits, DragsLines) {
    QWidget& area = ListArea("UnitList");
    const auto drag = [&](int from, QPoint to) { Drag(area, LinePlace("UnitList", from), to); };
    drag(3, LinePlace("UnitList", 0));
    EXPECT_EQ(Units(), "A.pas B.pas C.pas *D.pas"); // the setting is off
    Toggle("Drag modules by mouse");
    drag(3, LinePlace("UnitList", 0));
    EXPECT_EQ(Units(), "*D.pas A.pas B.pas C.pas");
    EXPECT_EQ(Tabs(), "*D.pas A.pas B.pas C.pas");
    ClickLine("UnitList", 1, Qt::ControlModifier);
    EXPECT_EQ(Units(), "*D.pas *A.pas B.pas C.pas");
    drag(1, {LinePlace("UnitList", 0).x(), area.height() - 2}); // behind the last
    EXPECT_EQ(Units(), "B.pas C.pas *D.pas *A.pas");
    drag(2, {-30, LinePlace("UnitList", 0).y()}); // out of the list
    EXPECT_EQ(Units(), "B.pas C.pas *D.pas *A.pas");
    ClickLine("UnitList", 2); // no drag: one of several is clicked
    EXPECT_EQ(Units(), "B.pas C.pas *D.pas A.pas");
    EXPECT_EQ(Tabs(), "B.pas C.pas *D.pas A.pas");
}

TEST_F(WorkbenchUnits, ShowsAndCloses) {
    DoubleClick(ListArea("UnitList"), LinePlace("UnitList", 1));
    EXPECT_EQ(ActiveName(), "EditWindow_0");
    EXPECT_EQ(Tabs(), "A.pas *B.pas C.pas D.pas");
    Type("x");
    Press("Ctrl+Shift+Q");
    ClickLine("UnitList", 0, Qt::ControlModifier);
    EXPECT_EQ(Units(), "*A.pas *B.pas C.pas D.pas");
    Then([this](QWidget& box) { // about B.pas
        int windows = 0;
        for (const QWidget* const each : QApplication::topLevelWidgets())
            windows += each->isVisible();
        EXPECT_EQ(windows, 3); // the question stands in one alone
        EXPECT_TRUE(box.isActiveWindow());
        Press("Esc");
    });
    Press("Del");
    EXPECT_EQ(Units(), "*B.pas C.pas D.pas");
    ThenAnswer("No");
    Press("Del");
    EXPECT_EQ(Tabs(), "*C.pas D.pas");
    EXPECT_EQ(Asked, "Save changes to " + Folder.File("B.pas") + "?\n");
    // One at a time, by a timer: a name that two units have.
    std::filesystem::create_directory(Folder.File("other"));
    Open({"other/C.pas"});
    Press("Ctrl+Shift+Q");
    ClickLine("UnitList", 0);
    ClickLine("UnitList", 2, Qt::ControlModifier);
    Press("Del");
    Wait([&] { return Tabs() == "*D.pas" && ActiveName() == "UnitForm"; });
    EXPECT_EQ(Units(), "*D.pas");
}

TEST_F(WorkbenchUnits, FiltersByWhatIsTyped) {
    Press("Alt+F");
    auto& field = static_cast<QComboBox&>(Widget("FilterText"));
    ASSERT_TRUE(field.isVisible());
    ASSERT_TRUE(field.hasFocus());
    Type("bx");
    Press({"Backspace", "Home", "Del"}); // none of them is the list's
    EXPECT_EQ(Units(), "A.pas B.pas C.pas *D.pas");
    Type("B.");
    Press("Return");
    EXPECT_EQ(Units(), "*B.pas");
    EXPECT_EQ(GetSetting("UnitManagerData.HistoryList"), "B.\n");
    EXPECT_EQ(field.count(), 1);
    // Nothing is added to what was typed, though the history has a longer text.
    Press({"Home", "Shift+End"});
    Type("B");
    EXPECT_EQ(field.currentText(), "B");
    Press({"Backspace", "Alt+F"});
    EXPECT_EQ(Units(), "*A.pas B.pas C.pas D.pas");
    // The keys that edit a text are the field's, not the source's.
    QApplication::clipboard()->setText("D.");
    Press({"Ctrl+V", "Ctrl+A", "Ctrl+C", "Ctrl+X", "Shift+Ins", "Ctrl+Z"});
    EXPECT_EQ(Text(), "text");
    EXPECT_EQ(field.currentText(), "");
    // From the list that drops down.
    Press("Alt+Down");
    Wait([&] { return field.view()->isVisible(); });
    QTest::keyClick(field.view(), Qt::Key_Home);
    QTest::keyClick(field.view(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Component<TComboBox>("FilterText").Text(), "B.");
    Press("Return");
    EXPECT_EQ(Units(), "*B.pas");
    Click(ListArea("UnitList"));
    Press("Tab"); // and the list has the Del key again
    ClickLine("UnitList", 0);
    Press("Del");
    EXPECT_EQ(Units(), "A.pas C.pas *D.pas");
}

TEST_F(WorkbenchUnits, ClosesWhenAUnitIsShown) {
    Toggle("Form close on module activation");
    Toggle("Show filter panel");
    EXPECT_TRUE(Widget("FilterText").isVisible());
    ClickLine("UnitList", 1);
    Press("Alt+S");
    EXPECT_EQ(Tabs(), "A.pas *B.pas C.pas D.pas");
    EXPECT_EQ(ActiveName(), "EditWindow_0");
    EXPECT_EQ(GetSetting("UnitManagerData.CloseFormOnShowUnit"), "True");
}

class WorkbenchCapture : public TWorkbenchTest {
protected:
    void SetUp() override {
        Session.Ide().StopAt(LoadStoppedProgram({.File = TARN_SOURCE_DIR "/examples/sum.cpu"}));
        Settle();
        Press("Ctrl+W");
        ASSERT_EQ(ActiveName(), "CPUForm");
    }
    /// Chooses in the menu of a tool button, by a click on its arrow.
    void Choose(std::string_view button, const QString& item) {
        auto& view = static_cast<QToolButton&>(Widget(button));
        ThenPopup({item});
        Click(view, {view.width() - 4, view.height() / 2});
    }
    int MemoLines() { return Component<TMemo>("Memo").Lines().Count(); }
};

TEST_F(WorkbenchCapture, CapturesPanesAndCopies) {
    Choose("tbGetData", "Program stack");
    Click("tbGetData");
    auto& memo = static_cast<QPlainTextEdit&>(Widget("Memo"));
    EXPECT_EQ(MemoLines(), 10);
    EXPECT_EQ(ToText(memo.toPlainText().replace("\n", "\r\n")), Component<TMemo>("Memo").Text());
    Then([this](QWidget&) { // how many lines
        EXPECT_EQ(ActiveName(), "StrCountForm");
        Press({"Home", "Shift+End"});
        Type("3");
        Press("Up");
        Press("Return");
    });
    Choose("tbStrCount", "Custom...");
    Click("tbGetData");
    EXPECT_EQ(MemoLines(), 4);
    EXPECT_EQ(GetSetting("CPUViewData.ReadLineCount"), "4");
    Then([this](QWidget&) {
        Type("9");
        Press("Esc");
    });
    Choose("tbStrCount", "Custom...");
    EXPECT_EQ(GetSetting("CPUViewData.ReadLineCount"), "4");
    // What is copied is on the desktop's clipboard.
    Click(*memo.viewport());
    Press({"Ctrl+A", "Ctrl+C"});
    EXPECT_EQ(ToText(QApplication::clipboard()->text()), Component<TMemo>("Memo").Text());
}

} // namespace
} // namespace tarn
