// What only an editor with a face has: the mouse, drops, composed characters, its own menu. What
// comes of it is in the buffer at once, before anybody else asks.

#include "TEditorDriver.h"

#include <QMenu>
#include <QScrollBar>

namespace tarn {
namespace {

class DesktopEditor : public testing::Test {
protected:
    /// An action of the pop-up menu that is open, by its caption without the key.
    static QAction* MenuItem(const QString& caption) {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) return nullptr;
        for (QAction* const action : menu->actions())
            if (action->text().section('\t', 0, 0).remove('&') == caption) return action;
        return nullptr;
    }
    void Drop(TTextPos at, const QString& text) {
        QMimeData data;
        data.setText(text);
        const QPointF point = Editor.PointOf(at);
        const auto send = [&](auto&& event) {
            QApplication::sendEvent(Editor.Widget().viewport(), &event);
        };
        send(QDragEnterEvent(point.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {}));
        send(QDropEvent(point, Qt::CopyAction, &data, Qt::LeftButton, {}));
    }
    void Compose(const QString& composed, const QString& done) {
        QInputMethodEvent event(composed, {});
        event.setCommitString(done);
        QApplication::sendEvent(&Editor.Widget(), &event);
    }

    TDesktopEditor Editor;
};

TEST_F(DesktopEditor, TheMouseSelects) {
    const struct {
        std::string_view Text;
        TTextPos From, To;
        Qt::KeyboardModifiers Modifiers;
        std::string_view Expected;
    } cases[] = {
        {"abcd\nefgh", {1, 3}, {1, 3}, {}, "1:3"},
        {"abcd\nefgh", {1, 7}, {1, 7}, {}, "1:7"},
        {"abcd\nefgh", {2, 2}, {2, 2}, Qt::ShiftModifier, "2:2 1:1-2:2"},
        {"abcd\r\nefgh", {2, 3}, {1, 2}, {}, "1:2 1:2-2:3"},
        {"abcd\r\nefgh", {1, 2}, {1, 4}, {}, "1:4 1:2-1:4"},
        {"\xC3\xA4\xC3\xA4\n\xFFgh", {1, 3}, {2, 2}, {}, "2:2 1:3-2:2"},
        {"abcd\r\nefgh", {1, 2}, {2, 4}, Qt::AltModifier, "2:4 column 1:2-2:4"},
        {"abcd\r\nefgh", {2, 4}, {1, 2}, Qt::AltModifier, "1:2 column 1:2-2:4"},
        {"abcd\n\xC3\xA4\xFF\txyz\nefghijklm",
         {1, 1},
         {3, 9},
         Qt::AltModifier,
         "3:9 column 1:1-3:9"},
        {"abcd\nef", {1, 3}, {2, 6}, Qt::AltModifier, "2:6 column 1:3-2:6"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.Expected);
        if (Editor.Ide().CurrentBuffer()) Editor.Close();
        Editor.Open(test.Text);
        Editor.Drag(test.From, test.To, test.Modifiers);
        EXPECT_EQ(Editor.Place(), test.Expected); // at once
        Editor.Agree();
        if (test.From == test.To) continue;
        Editor.Drag(test.To, test.To);
        EXPECT_EQ(Editor.View().Cursor(), test.To);
        Editor.Agree();
    }
}

TEST_F(DesktopEditor, IsOneStepForTheUser) {
    const struct {
        std::string_view Name;
        std::function<void()> Do;
        std::string_view Expected;
    } cases[] = {
        {"a word is deleted", [&] { Editor.Do("Ctrl+Backspace"); }, "one  three\r\n|1:5 *"},
        {"words", [&] { Editor.Do("Ctrl+Left"); }, "one two three\r\n|1:5"},
        {"a text is dropped",
         [&] {
             Drop({1, 4}, "x\ny");
         },
         "onex\r\ny two three\r\n|2:2 1:4-2:2 *"},
        {"dropped behind the end",
         [&] {
             Drop({1, 16}, "x");
         },
         "one two three  x\r\n|1:17 1:16-1:17 *"},
        {"composed",
         [&] {
             Compose("a", {});
             Editor.Agree();
             Compose("a\xCC\x88", {});
             Compose({}, "\xC3\xA4");
             Editor.Do("'b");
         },
         "one two\xC3\xA4"
         "b three\r\n|1:11 *"},
        {"put by the middle button",
         [&] {
             auto& mirror = dynamic_cast<TEditorMirror&>(
                 *Editor.Front->MirrorOf(Editor.Ide().EditWindow().Editor()));
             mirror.PasteAt(Editor.PointOf({1, 4}), "\n\xC3\xA4");
         },
         "one\r\n\xC3\xA4 two three\r\n|2:3 *"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.Name);
        Editor.Open("one two three\r\n");
        Editor.Select("1:8");
        test.Do();
        Editor.Agree();
        EXPECT_EQ(Editor.Seen(), test.Expected);
        if (Editor.Buffer().Modified()) Editor.Do("Ctrl+Z");
        EXPECT_EQ(Editor.Text(), "one two three\r\n");
        Editor.Close();
    }
}

TEST_F(DesktopEditor, ItsMenuIsThatOfTheIDE) {
    Editor.Open("ab");
    Editor.Do("'xy");
    const auto open = [&] {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5),
                                Editor.Widget().mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(Editor.Widget().viewport(), &event);
    };
    for (const auto& [item, expected] : {std::pair("Undo", "ab|1:1"), {"Redo", "xyab|1:3 *"}}) {
        open();
        QAction* const action = MenuItem(item);
        ASSERT_TRUE(action && action->isEnabled());
        EXPECT_FALSE(MenuItem("Cut")->isEnabled());
        action->trigger();
        QApplication::activePopupWidget()->close();
        EXPECT_TRUE(QTest::qWaitFor([&, text = expected] { return Editor.Seen() == text; }));
        Editor.Agree();
    }
}

TEST_F(DesktopEditor, ScrollsAndIsSizedByTheUser) {
    std::string text;
    for (int i = 1; i < 150'000; ++i) text += "12345678\n";
    Editor.Open(text + std::string(500, 'x'));
    QsciScintilla& widget = Editor.Widget();
    const QString number(6, '9');
    EXPECT_GE(widget.marginWidth(0), QFontMetrics(widget.font()).horizontalAdvance(number));
    widget.verticalScrollBar()->setValue(1000);
    EXPECT_EQ(Editor.Api()->GetTopRow(), 1001);
    Editor.Agree();
    const QPointF middle = QRectF(widget.viewport()->rect()).center();
    QWheelEvent wheel(middle, widget.viewport()->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                      {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget.viewport(), &wheel);
    EXPECT_GT(Editor.Api()->GetTopRow(), 1001);
    EXPECT_EQ(Editor.Place(), "1:1");
    Editor.Agree();
    // The last column is in sight, and a cursor that is seen still is in a smaller window.
    Editor.Do("Ctrl+End");
    EXPECT_GT(Editor.View().LeftColumn(), 1);
    EXPECT_LT(Editor.PointOf(Editor.View().Cursor()).x(), widget.viewport()->width());
    const int rows = Editor.Height();
    widget.window()->resize(widget.window()->width(), widget.window()->height() - 200);
    Editor.Agree();
    EXPECT_LT(Editor.Height(), rows);
    EXPECT_EQ(Editor.Api()->GetBottomRow(), 150'000);
    Editor.Run([&] { Editor.Api()->Scroll(0, -1'000'000); });
    EXPECT_EQ(Editor.Ask(QsciScintilla::SCI_GETXOFFSET), 0);
    EXPECT_EQ(Editor.View().LeftColumn(), 1);
}

} // namespace
} // namespace tarn
