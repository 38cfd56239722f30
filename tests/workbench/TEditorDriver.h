#pragma once

#include "QtKeys.h"
#include "Source/TSourceBuffer.h"
#include "TEditorMirror.h"
#include "TFrontEnd.h"
#include "TTestFolder.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QtTest>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

namespace tarn {

/// An editor of the IDE with the pack loaded, driven by what a user does and seen through the Open
/// Tools API.
class TEditorDriver {
public:
    TEditorDriver() {
        Session.OS().SetModuleFileName(Folder.File("package"));
        EXPECT_TRUE(Session.StartPack());
        Ide().PumpMessages(); // the keys of the pack come with its menu
    }
    TEditorDriver(const TEditorDriver&) = delete;
    TEditorDriver& operator=(const TEditorDriver&) = delete;
    virtual ~TEditorDriver() = default;

    TIde& Ide() { return Session.Ide(); }
    TSourceBuffer& Buffer() { return *Ide().CurrentBuffer(); }
    TSourceView& View() { return *Buffer().View(); }
    std::string Text() { return Buffer().Text().Text(); }
    TIntf<IOTAEditView> Api() { return IDEService<IOTAEditorServices>()->GetTopView(); }
    int Height() { return Api()->GetBottomRow() - Api()->GetTopRow() + 1; }

    /// Opens a new file.
    TSourceBuffer& Open(std::string_view bytes, std::string_view name = "Unit1.pas") {
        const std::string file = Folder.File(name);
        std::ofstream(file, std::ios::binary) << bytes;
        TSourceBuffer& buffer = Ide().Modules().OpenFile(file).Source();
        Agree();
        return buffer;
    }
    void Close() { Ide().Modules().Close(Buffer().Module(), true); }
    static std::string Read(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// A key by its name, or with a quote in front text that is typed.
    void Do(const QString& step) {
        if (step.startsWith('\'')) {
            for (const char32_t c : step.sliced(1).toUcs4()) Type(QString::fromUcs4(&c, 1));
        } else {
            const QKeySequence keys(step);
            EXPECT_EQ(keys.count(), 1) << ToText(step);
            Press(keys[0].key(), keys[0].keyboardModifiers());
        }
        Agree();
    }
    /// Puts the cursor to ROW:COL, or selects ROW:COL-ROW:COL, with "|" a column block.
    void Select(const QString& block) {
        const QStringList numbers = block.split(QRegularExpression("[^0-9]"));
        const auto pos = [&](int i) {
            return TTextPos{numbers[i].toInt(), numbers[i + 1].toInt()};
        };
        Run([&] {
            if (numbers.size() == 2)
                View().GoTo(pos(0));
            else
                View().Select(pos(0), pos(2), block.contains('|') ? btColumn : btNonInclusive);
        });
    }
    /// Something that the pack does, as one command.
    void Run(const std::function<void()>& command) {
        Ide().RunCommand(command);
        Agree();
    }
    /// The cursor, the block and whether the buffer is modified.
    std::string Place() {
        const TIntf<IOTAEditPosition> at = Api()->GetPosition();
        const TIntf<IOTAEditBlock> block = Api()->GetBlock();
        const auto pos = [](int row, int col) {
            return std::to_string(row) + ":" + std::to_string(col);
        };
        std::string place = pos(at->GetRow(), at->GetColumn());
        if (block->GetIsValid())
            place += (block->GetStyle() == btColumn ? " column " : " ") +
                     pos(block->GetStartingRow(), block->GetStartingColumn()) + "-" +
                     pos(block->GetEndingRow(), block->GetEndingColumn());
        return place + (Api()->GetBuffer()->GetModified() ? " *" : "");
    }
    std::string Seen() { return Text() + "|" + Place(); }

    /// Checks that what is shown is what the buffer has.
    virtual void Agree() {}

    TTestFolder Folder;
    TSession Session;

protected:
    virtual void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) = 0;
    virtual void Type(const QString& character) = 0;
};

/// The editor without a face.
class THeadlessEditor final : public TEditorDriver {
protected:
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) override {
        Ide().PressKey(ShortCutOf(QKeyEvent(QEvent::KeyPress, key, modifiers)));
    }
    void Type(const QString& character) override { Ide().TypeText(ToText(character), gkTyping); }
};

/// The editor of the workbench.
class TDesktopEditor final : public TEditorDriver {
public:
    TDesktopEditor() {
        QApplication::clipboard()->clear();
        Front = std::make_unique<TFrontEnd>(Session);
        Front->Flush();
        QWidget* const window = Front->WidgetOf(Ide().MainForm());
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    ~TDesktopEditor() override {
        Session.StopPack();
        while (Ide().CurrentBuffer()) Close();
    }

    QsciScintilla& Widget() {
        return static_cast<QsciScintilla&>(*Front->WidgetOf(Ide().EditWindow().Editor()));
    }
    long Ask(unsigned message, unsigned long first = 0, long second = 0) {
        return Widget().SendScintilla(message, first, second);
    }
    /// Where a position is seen in the viewport.
    QPoint PointOf(TTextPos pos) {
        const auto offset = static_cast<long>(Buffer().Text().OffsetAt(pos));
        const auto beyond = pos.Col - 1 - static_cast<int>(Buffer().Text().LineLength(pos.Row));
        const long width =
            Widget().SendScintilla(QsciScintilla::SCI_TEXTWIDTH, QsciScintilla::STYLE_DEFAULT, " ");
        const long x = Ask(QsciScintilla::SCI_POINTXFROMPOSITION, 0, offset);
        const long y = Ask(QsciScintilla::SCI_POINTYFROMPOSITION, 0, offset);
        return {static_cast<int>(x + std::max(beyond, 0) * width), static_cast<int>(y + 3)};
    }
    /// Drags the mouse with a button held down; clicks where both places are the same.
    void Drag(TTextPos from, TTextPos to, Qt::KeyboardModifiers modifiers = {},
              Qt::MouseButton button = Qt::LeftButton) {
        QWidget* const viewport = Widget().viewport();
        QTest::mousePress(viewport, button, modifiers, PointOf(from));
        // On its way the mouse passes more than one place.
        for (const QPoint over : {QPoint(2, 0), QPoint(0, 0)}) {
            if (from == to) break;
            const QPoint at = PointOf(to) + over;
            QMouseEvent move(QEvent::MouseMove, at, viewport->mapToGlobal(at), Qt::NoButton, button,
                             modifiers);
            QApplication::sendEvent(viewport, &move);
        }
        QTest::mouseRelease(viewport, button, modifiers, PointOf(to));
    }

    void Agree() override {
        const std::string before = Ide().CurrentBuffer() ? Seen() : std::string();
        Front->Flush();
        QApplication::processEvents();
        if (!Ide().CurrentBuffer()) {
            EXPECT_EQ(Shown(0, Length()), "");
            return;
        }
        EXPECT_EQ(Seen(), before); // showing changes nothing
        EXPECT_TRUE(Shown(0, Length()) == Text())
            << testing::PrintToString(Shown(0, Length())) << " is shown of " << Seen();
        const TViewState state = View().State();
        const bool column = View().BlockStyle() == btColumn;
        EXPECT_EQ(Ask(QsciScintilla::SCI_SELECTIONISRECTANGLE) != 0, column);
        if (column) {
            ExpectPlace(QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHOR,
                        QsciScintilla::SCI_GETRECTANGULARSELECTIONANCHORVIRTUALSPACE,
                        state.BlockStart);
            ExpectPlace(QsciScintilla::SCI_GETRECTANGULARSELECTIONCARET,
                        QsciScintilla::SCI_GETRECTANGULARSELECTIONCARETVIRTUALSPACE, state.Cursor);
        } else {
            ExpectPlace(QsciScintilla::SCI_GETANCHOR,
                        QsciScintilla::SCI_GETSELECTIONNANCHORVIRTUALSPACE,
                        state.BlockValid ? state.BlockStart : state.Cursor);
            ExpectPlace(QsciScintilla::SCI_GETCURRENTPOS,
                        QsciScintilla::SCI_GETSELECTIONNCARETVIRTUALSPACE, state.Cursor);
        }
        EXPECT_EQ(SelectedText(), Api()->GetBlock()->GetText()) << Seen();
        EXPECT_EQ(Ask(QsciScintilla::SCI_GETFIRSTVISIBLELINE) + 1, Api()->GetTopRow());
        EXPECT_EQ(Ask(QsciScintilla::SCI_LINESONSCREEN), Height());
    }

    std::unique_ptr<TFrontEnd> Front;

protected:
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) override {
        QTest::keyClick(&Widget(), key, modifiers);
    }
    void Type(const QString& character) override {
        const char16_t unit = character.toUpper().front().unicode();
        const Qt::Key key = unit < 0x80 ? static_cast<Qt::Key>(unit) : Qt::Key_unknown;
        QTest::sendKeyEvent(QTest::Click, &Widget(), key, character, Qt::NoModifier);
    }

private:
    long Length() { return Ask(QsciScintilla::SCI_GETLENGTH); }
    std::string Shown(long from, long to) {
        const auto* const bytes = static_cast<const char*>(
            Widget().SendScintillaPtrResult(QsciScintilla::SCI_GETCHARACTERPOINTER));
        return {bytes + from, bytes + std::max(from, to)};
    }
    /// The bytes that are highlighted, rows of a column block joined as the block's are.
    std::string SelectedText() {
        std::vector<std::pair<long, long>> ranges;
        const auto count = static_cast<unsigned long>(Ask(QsciScintilla::SCI_GETSELECTIONS));
        for (unsigned long i = 0; i < count; ++i)
            ranges.emplace_back(Ask(QsciScintilla::SCI_GETSELECTIONNSTART, i),
                                Ask(QsciScintilla::SCI_GETSELECTIONNEND, i));
        std::sort(ranges.begin(), ranges.end());
        std::string text;
        for (const auto& [from, to] : ranges) {
            if (from != ranges[0].first && Api()->GetBlock()->GetIsValid()) text += "\r\n";
            text += Shown(from, to);
        }
        return text;
    }
    void ExpectPlace(unsigned offset, unsigned beyond, TTextPos pos) {
        const TEditText& text = Buffer().Text();
        const long at = Ask(offset);
        TTextPos shown = text.PosAt(static_cast<std::size_t>(at));
        // Both see the same characters and tabs before it.
        if (shown.Col == 1 || CharBehind(text, CharBefore(text, shown)) == shown) {
            EXPECT_EQ(Ask(QsciScintilla::SCI_GETCOLUMN, static_cast<unsigned long>(at)) + 1,
                      SeenAt(text, shown));
        }
        shown.Col += static_cast<int>(Ask(beyond));
        EXPECT_TRUE(shown == pos) << shown.Row << ":" << shown.Col << " is shown of " << Seen();
    }
};

} // namespace tarn
