// Where a text could be lost: by keys that go to a question, by the end of the program, by saving.

#include "Modules/TIdeModule.h"
#include "TEditorMirror.h"
#include "TQtDialogs.h"
#include "TTestFolder.h"
#include "TWorkbench.h"
#include "WithNext.h"

#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include <fstream>

namespace tarn {
namespace {

class Safety : public testing::Test {
protected:
    Safety() {
        Session.OS().SetModuleFileName(Folder.File("package"));
        Bench.emplace(Session);
        Bench->Start();
    }
    TIde& Ide() { return Session.Ide(); }
    std::string Write(const std::string& name, std::string_view text) const {
        std::ofstream(Folder.File(name), std::ios::binary) << text;
        return Folder.File(name);
    }

    TTestFolder Folder;
    TQtDialogs Dialogs;
    TSession Session{&Dialogs};
    std::optional<TWorkbench> Bench;
};

/// A question has its keys to itself, and no other window comes with it.
TEST_F(Safety, AKeyThatGoesToAQuestionIsNoCommand) {
    Bench->Open(Write("A.pas", "a"));
    Ide().TypeText("1");
    int windows = 0;
    WithNext<QMessageBox>([&](QMessageBox& box) {
        QApplication::processEvents();
        for (const QWidget* const window : QApplication::topLevelWidgets())
            windows += window->isVisible();
        QTest::keyClick(box.focusWidget(), Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(box.focusWidget(), Qt::Key_Escape);
    });
    EXPECT_FALSE(Ide().Modules().CloseAll());
    EXPECT_EQ(windows, 2);
    EXPECT_EQ(Ide().CurrentBuffer()->Text().Text(), "1a");
}

TEST_F(Safety, AKeyDoesNotCloseWhatIsBeingOpened) {
    const std::string text(16 << 20, '\n');
    bool pressed = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        auto* const bar = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
        if (!bar || bar->value() < 140 || std::exchange(pressed, true)) return;
        QTest::keyClick(bar->findChild<QPushButton*>(), Qt::Key_F4, Qt::ControlModifier);
    });
    watch.start(0);
    Bench->Open(Write("Long.pas", text));
    EXPECT_TRUE(pressed);
    ASSERT_TRUE(Ide().CurrentBuffer());
    EXPECT_TRUE(Ide().CurrentBuffer()->Text().Text() == text);
}

} // namespace
} // namespace tarn
