// The pack's hot keys and menus, by keys and clicks.

#include "Cpu.h"
#include "Settings.h"
#include "TWorkbenchHarness.h"

namespace tarn {
namespace {

class WorkbenchKeys : public TWorkbenchTest {
protected:
    static constexpr std::string_view Source = "unit A;\r\n  b;\r\n  a;\r\nend.";
    void SetUp() override {
        Open({"A.pas"}, Source);
        Session.Ide().RunCommand([&] { Buffer().View()->Select({2, 1}, {4, 1}); });
        Settle();
    }
};

TEST_F(WorkbenchKeys, EachHotKeyOfTheEditor) {
    const struct {
        const char* Key;
        std::string_view Text;
    } rows[] = {
        {"Ctrl+.", "unit A;\r\n   b;\r\n   a;\r\nend."},
        {"Ctrl+Shift+>", "unit A;\r\n    b;\r\n    a;\r\nend."},
        {"Ctrl+,", "unit A;\r\n b;\r\n a;\r\nend."},
        {"Ctrl+Shift+<", "unit A;\r\nb;\r\na;\r\nend."},
        {"Ctrl+;", "unit A;\r\n  a;\r\n  b;\r\nend."},
    };
    for (const auto& row : rows) {
        Press(row.Key);
        EXPECT_EQ(Text(), row.Text) << row.Key;
        Press("Ctrl+Z"); // one step
        EXPECT_EQ(Text(), Source) << row.Key;
        EXPECT_EQ(Buffer().View()->BlockText(), "  b;\r\n  a;\r\n") << row.Key;
    }
}

TEST_F(WorkbenchKeys, HotKeysThatOpenWindowsAndWorkInThem) {
    Press("Ctrl+W");
    EXPECT_EQ(ActiveName(), "EditWindow_0"); // no program has stopped
    Session.Ide().StopAt(LoadStoppedProgram({.File = TARN_SOURCE_DIR "/examples/sum.cpu"}));
    Settle();
    Press("Ctrl+W");
    EXPECT_EQ(ActiveName(), "CPUForm");
    Press("Esc");
    EXPECT_NE(ActiveName(), "CPUForm");
    Press("Ctrl+Shift+Q");
    EXPECT_EQ(ActiveName(), "UnitForm");
    // What is in front has no such key: the main window's menu has.
    Press("Ctrl+.");
    EXPECT_EQ(Text(), "unit A;\r\n   b;\r\n   a;\r\nend.");
    Press({"Esc", "Ctrl+,"});
    EXPECT_EQ(Text(), Source);
}

TEST_F(WorkbenchKeys, KeysOfTheUsersChoiceComeBeforeAccessKeysAndCharacters) {
    for (const char* const key : {"Alt+F", "Ctrl+Alt+,", "Ctrl+Alt+Q", "F8", "Shift+F12"}) {
        SetSetting("MenuData.SortLinesItem.ShortCutText", key);
        TExpManager::Instance()->DoApplySettings();
        Settle();
        Press(key);
        EXPECT_FALSE(QApplication::activePopupWidget()) << key;
        EXPECT_EQ(Text(), "unit A;\r\n  a;\r\n  b;\r\nend.") << key;
        Press("Ctrl+Z");
        EXPECT_EQ(Text(), Source) << key;
    }
    Press("Alt+F"); // is the menu's again
    EXPECT_TRUE(QApplication::activePopupWidget());
    Press({"Esc", "Esc"});
    Type("x");
    EXPECT_EQ(Text(), "unit A;\r\nxend.");
}

TEST_F(WorkbenchKeys, KeysThatAreNobodysDoNothing) {
    for (const char* const key :
         {"Alt+N", "Alt+Shift+N", "Alt+1", "Ctrl+D", "Ctrl+L", "Ctrl+T", "Ctrl+U", "Ctrl+Shift+L",
          "Ctrl+Shift+U", "Ctrl+Alt+1", "Meta+Q"}) {
        Press(key);
        EXPECT_EQ(Text(), Source) << key;
    }
    for (const Qt::Key key : {Qt::Key_0, Qt::Key_Equal}) // as some displays tell it
        QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), key, QString(QChar(key)),
                            Qt::ControlModifier);
    EXPECT_EQ(Text(), Source);
}

/// An item of the pack's menu, and what it does.
struct TMenuRow {
    QStringList Path;
    std::string Form;  ///< that is active then
    std::string Shown; ///< its text: of a message box, else its caption
};
const TMenuRow MenuRows[] = {
    {{"TarnExperts", "Unit manager"}, "UnitForm", "Unit manager"},
    {{"TarnExperts", "Manager of the open windows"},
     "InspectorFormViewForm",
     "Manager of the open windows"},
    {{"TarnExperts", "About..."}, "", "Quellmark Wizard Pack 1.0"},
    {{"TarnExperts", "Settings", "Edit..."}, "TSpcForm", "Specification"},
    {{"TarnExperts", "Settings", "Language", "Modules..."}, "LocaleForm", "Localization "},
};

class WorkbenchMenus : public WorkbenchKeys {
protected:
    /// What becomes of an item, chosen by `choose`; the window is closed by Esc.
    template <class F> void Expect(const TMenuRow& row, F&& choose) {
        std::string shown;
        const bool isModal = row.Form == "TSpcForm" || row.Form == "LocaleForm";
        if (row.Form.empty())
            Then([&](QWidget& window) {
                auto* const box = qobject_cast<QMessageBox*>(&window);
                shown = box ? ToText(box->text()) : "no message box";
                Press("Return");
            });
        else if (isModal)
            Then([&](QWidget& window) {
                EXPECT_EQ(ActiveName(), row.Form);
                EXPECT_TRUE(window.isModal());
                EXPECT_GT(window.width(), 200);
                const QPoint middle = Bench->Window().frameGeometry().center();
                EXPECT_LE((window.frameGeometry().center() - middle).manhattanLength(), 2);
                shown = ToText(window.windowTitle()).substr(0, 13);
                Press("Esc");
            });
        choose();
        Wait([&] { return !QApplication::activeModalWidget(); });
        if (!row.Form.empty() && !isModal) {
            EXPECT_EQ(ActiveName(), row.Form);
            shown = ToText(QApplication::activeWindow()->windowTitle());
            Press("Esc");
        }
        EXPECT_EQ(shown, row.Shown);
        EXPECT_EQ(ActiveName(), "EditWindow_0"); // as before
    }
};

TEST_F(WorkbenchMenus, ByMouse) {
    for (const TMenuRow& row : MenuRows) Expect(row, [&] { ClickMenu(row.Path); });
    ClickMenu({"TarnExperts", "Sorting"});
    EXPECT_EQ(Text(), "unit A;\r\n  a;\r\n  b;\r\nend.");
}

TEST_F(WorkbenchMenus, ByKeysAlone) {
    for (const TMenuRow& row : MenuRows)
        Expect(row, [&] {
            Press("Alt+A"); // T&arnExperts
            EnterPopup(row.Path.mid(1));
        });
    Press("Alt+A");
    EnterPopup({"Move block right (2 pos)"});
    EXPECT_EQ(Text(), "unit A;\r\n    b;\r\n    a;\r\nend.");
}

} // namespace
} // namespace tarn
