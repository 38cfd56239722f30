// How the windows stand on a display with a window manager.

#include "Cpu.h"
#include "Settings.h"
#include "TWorkbenchHarness.h"

namespace tarn {
namespace {

class OnDisplay : public TWorkbenchTest {
protected:
    QWidget& MainWindow() { return Bench->Window(); }
    QWidget& UnitWindow() {
        for (int i = 0; i < Screen()->FormCount(); ++i)
            if (Screen()->Forms(i)->Name() == "UnitForm") return WidgetOf(*Screen()->Forms(i));
        throw Exception("no unit manager");
    }
    void ShowUnits() {
        Press("Ctrl+Shift+Q");
        Wait([&] { return UnitWindow().isActiveWindow(); });
        Settle();
    }
    /// Whether the window has the keys, and its form is the active one.
    void ExpectActive(QWidget& window, const char* form) {
        Wait([&] { return window.isActiveWindow(); });
        EXPECT_EQ(ActiveName(), form);
    }
};

TEST_F(OnDisplay, TheActiveWindowIsTheActiveForm) {
    Open({"A.pas", "B.pas"});
    ShowUnits();
    ExpectActive(UnitWindow(), "UnitForm");
    MainWindow().activateWindow(); // as by a click on its frame
    ExpectActive(MainWindow(), "EditWindow_0");
    Type("x");
    EXPECT_EQ(Text(), "xtext");
    UnitWindow().activateWindow();
    ExpectActive(UnitWindow(), "UnitForm");
    Press("Up");
    DoubleClick(ListArea("UnitList"), LinePlace("UnitList", 0));
    ExpectActive(MainWindow(), "EditWindow_0");
    EXPECT_EQ(Tabs(), "*A.pas B.pas");
    Press("Ctrl+Shift+Q");
    ExpectActive(UnitWindow(), "UnitForm");
    Press("Esc");
    ExpectActive(MainWindow(), "EditWindow_0");
}

TEST_F(OnDisplay, FocusComesBackFromModalWindows) {
    Open({"A.pas"});
    ShowUnits();
    Then([this](QWidget& window) {
        ExpectActive(window, "TSpcForm");
        EXPECT_FALSE(UnitWindow().isActiveWindow());
        UnitWindow().activateWindow(); // is refused
        Settle();
        EXPECT_EQ(ActiveName(), "TSpcForm");
        ThenAnswer("OK");
        Session.OS().MessageBox(0, "Text", "Title", MB_OK);
        ExpectActive(window, "TSpcForm");
        Press("Esc");
    });
    ClickMenu({"TarnExperts", "Settings", "Edit..."});
    ExpectActive(UnitWindow(), "UnitForm"); // as before
    Press("Esc");
    ExpectActive(MainWindow(), "EditWindow_0");
    Type("x");
    EXPECT_EQ(Text(), "xtext");
}

TEST_F(OnDisplay, PlacesDoNotDrift) {
    Open({"A.pas"});
    ShowUnits();
    TForm& form = Form();
    QWidget& window = UnitWindow();
    const TRect first = form.BoundsRect();
    for (int i = 0; i < 3; ++i) {
        Press("Esc");
        Wait([&] { return !window.isVisible() && MainWindow().isActiveWindow(); });
        ShowUnits();
        EXPECT_EQ(form.BoundsRect(), first) << i;
    }
    // The user moves and resizes it.
    window.move(321, 234);
    window.resize(500, 333);
    Wait([&] { return form.Width() == 500 && form.Height() == 333; });
    Settle();
    const TRect moved = form.BoundsRect();
    EXPECT_EQ(moved, (TRect{window.x(), window.y(), 500, 333}));
    Press("Ctrl+S"); // stores the place
    Press("Esc");
    Session.StopPack();
    Session.StartPack();
    Settle();
    ShowUnits();
    EXPECT_EQ(Form().BoundsRect(), moved);
}

TEST_F(OnDisplay, IconsAndCaptureOnTop) {
    Open({"A.pas"});
    Session.Ide().StopAt(LoadStoppedProgram({.File = TARN_SOURCE_DIR "/examples/sum.cpu"}));
    Settle();
    Wait([&] { return WidgetOf(*Session.Ide().CpuWindow()).isActiveWindow(); });
    Press("Ctrl+W");
    EXPECT_EQ(ActiveName(), "CPUForm");
    QWidget& capture = WidgetOf(Form());
    EXPECT_TRUE(capture.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    Wait([&] { return capture.isActiveWindow(); });
    capture.showMinimized();
    Wait([&] { return capture.isMinimized(); });
    Settle();
    EXPECT_EQ(capture.isVisible(), true);
    MainWindow().activateWindow();
    Wait([&] { return MainWindow().isActiveWindow(); });
    Then([this](QWidget& window) { // which it does not hide
        EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        Press("Esc");
    });
    Session.OS().MessageBox(0, "Text", "Title", MB_OK);
    Wait([&] { return MainWindow().isActiveWindow(); });
    Press("Ctrl+W"); // brings it back
    Wait([&] { return !capture.isMinimized(); });
}

TEST_F(OnDisplay, ClosingTheMainWindowAsks) {
    Open({"A.pas"});
    Type("x");
    ThenAnswer("Cancel");
    MainWindow().close();
    Settle();
    EXPECT_TRUE(MainWindow().isVisible());
    EXPECT_EQ(Tabs(), "*A.pas");
    ThenAnswer("No");
    MainWindow().close();
    Settle();
    EXPECT_EQ(Session.Ide().Modules().Count(), 0);
    EXPECT_EQ(ReadFile("A.pas"), "text");
}

} // namespace
} // namespace tarn
