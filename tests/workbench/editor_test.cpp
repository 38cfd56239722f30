// The source editor of the workbench and the buffer behind it, which never disagree.

#include "Source/TSourceBuffer.h"
#include "TEditorMirror.h"
#include "TFrontEnd.h"
#include "TTestFolder.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>

#include <fstream>

namespace tarn {
namespace {

/// A file in the workbench's editor.
class WorkbenchEditor : public testing::Test {
protected:
    WorkbenchEditor() : Front(Session) {
        const std::filesystem::path file = std::filesystem::path(Folder.Path()) / "Unit1.pas";
        std::ofstream(file, std::ios::binary) << "unit A;\r\nbegin\n\xFF \xC3\xA4\rend.";
        Session.Ide().Modules().OpenFile(file.string());
        Front.Flush();
        Front.WidgetOf(Session.Ide().MainForm())->show();
        Front.Flush();
        QApplication::processEvents();
    }

    TSourceBuffer& Buffer() { return *Session.Ide().CurrentBuffer(); }
    QsciScintilla& View() {
        auto* const mirror = Front.MirrorOf(Session.Ide().EditWindow().Editor());
        return static_cast<QsciScintilla&>(*mirror->Widget());
    }
    /// The bytes that the widget shows.
    std::string Shown() {
        const auto size =
            static_cast<std::size_t>(View().SendScintilla(QsciScintilla::SCI_GETLENGTH));
        const auto* const bytes = static_cast<const char*>(
            View().SendScintillaPtrResult(QsciScintilla::SCI_GETCHARACTERPOINTER));
        return {bytes, size};
    }
    void Press(int key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&View(), &press);
        Front.Flush();
    }

    TTestFolder Folder;
    TSession Session;
    TFrontEnd Front;
};

TEST_F(WorkbenchEditor, ShowsTheBytesAndTakesWhatIsTyped) {
    const std::string text = Buffer().Text().Text();
    EXPECT_EQ(Shown(), text); // whatever the line ends and the encoding
    View().SendScintilla(QsciScintilla::SCI_GOTOPOS, 7);
    QApplication::processEvents();
    EXPECT_EQ(Buffer().View()->Cursor(), (TTextPos{1, 8}));
    for (const QChar c : QString("ab")) Press(c.toUpper().unicode(), c);
    EXPECT_EQ(Buffer().Text().LineText(1), "unit A;ab");
    EXPECT_EQ(Shown(), Buffer().Text().Text());
    EXPECT_EQ(Buffer().View()->Cursor(), (TTextPos{1, 10}));
    // Typing is one step, and undo is the buffer's.
    EXPECT_TRUE(Session.Ide().Undo());
    Front.Flush();
    EXPECT_EQ(Shown(), text);
    EXPECT_EQ(Buffer().Text().Text(), text);
    Press(Qt::Key_Backspace);
    EXPECT_EQ(Buffer().Text().LineText(1), "unit A");
    EXPECT_EQ(Shown(), Buffer().Text().Text());
}

TEST_F(WorkbenchEditor, FollowsTheBuffer) {
    Session.Ide().RunCommand([&] {
        Buffer().Text().Replace(0, 4, "library");
        Buffer().View()->Select({2, 1}, {3, 1});
    });
    Front.Flush();
    EXPECT_EQ(Shown(), Buffer().Text().Text());
    EXPECT_EQ(View().selectedText(), "begin\n");
    // A column block, into the space behind the ends of lines, and back.
    Buffer().View()->Select({1, 3}, {4, 12}, btColumn);
    Front.Flush();
    EXPECT_TRUE(View().SendScintilla(QsciScintilla::SCI_SELECTIONISRECTANGLE));
    EXPECT_EQ(View().SendScintilla(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARETVIRTUALSPACE),
              12 - 1 - 4);
    QApplication::processEvents();
    EXPECT_EQ(Buffer().View()->BlockStyle(), btColumn);
    EXPECT_EQ(Buffer().View()->Cursor(), (TTextPos{4, 12}));
    // Selected in the widget.
    View().SendScintilla(QsciScintilla::SCI_SETSELECTIONMODE, QsciScintilla::SC_SEL_STREAM);
    View().SendScintilla(QsciScintilla::SCI_SETSEL, 5ul, 0l);
    QApplication::processEvents();
    EXPECT_EQ(Buffer().View()->BlockText(), "libra");
    EXPECT_EQ(Buffer().View()->Cursor(), (TTextPos{1, 1}));
}

} // namespace
} // namespace tarn
