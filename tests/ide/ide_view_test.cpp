#include "ide_fixture.h"

#include <climits>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

// --- The block, as the Open Tools API sees it -------------------------------------------------

class BlockTest : public IdeTest {
protected:
    void Open(std::string_view text) {
        OpenText(text);
        const TIntf<IOTAEditView> view = IDEService<IOTAEditorServices>()->GetTopView();
        Position = view->GetPosition();
        Block = view->GetBlock();
    }
    std::string BlockSeen() const {
        return PosText({Block->GetStartingRow(), Block->GetStartingColumn()}) + "-" +
               PosText({Block->GetEndingRow(), Block->GetEndingColumn()}) +
               (Block->GetIsValid() ? " " : " none ") + Block->GetText();
    }

    TIntf<IOTAEditPosition> Position;
    TIntf<IOTAEditBlock> Block;
};

TEST_F(BlockTest, LiesBetweenAnchorAndCursor) {
    Open("alpha\r\nbe\r\n\r\ngamma");
    const struct {
        TTextPos From, To;
        std::string_view Expected;
    } cases[] = {
        {{1, 2}, {1, 4}, "1:2-1:4 lp"},
        {{1, 4}, {1, 2}, "1:2-1:4 lp"},
        {{2, 1}, {1, 4}, "1:4-2:1 ha\r\n"},
        {{1, 1}, {3, 1}, "1:1-3:1 alpha\r\nbe\r\n"},
        {{1, 3}, {1, 3}, "1:3-1:3 none "},
        {{2, 2}, {2, 9}, "2:2-2:9 e"},         // the end in virtual space
        {{2, 5}, {2, 9}, "2:5-2:9 none "},     // nothing but virtual space
        {{2, 5}, {4, 2}, "2:5-4:2 \r\n\r\ng"}, // the start in virtual space
        {{4, 1}, {99, 1}, "4:1-4:1 none "},    // the last line is the nearest
        {{0, -5}, {1, INT_MAX}, "1:1-1:2147483646 alpha"},
    };
    for (const auto& [from, to, expected] : cases) {
        Position->Move(from.Row, from.Col);
        Block->Extend(to.Row, to.Col);
        EXPECT_EQ(BlockSeen(), expected) << PosText(from) << " to " << PosText(to);
    }
}

TEST_F(BlockTest, MoveDropsAndExtendKeepsTheAnchor) {
    Open("alpha\nbeta");
    EXPECT_EQ(BlockSeen(), "1:1-1:1 none ");
    EXPECT_TRUE(Block->Extend(1, 3));
    EXPECT_TRUE(Block->Extend(2, 2));
    EXPECT_EQ(BlockSeen(), "1:1-2:2 alpha\nb");
    EXPECT_TRUE(Position->Move(2, 3));
    EXPECT_EQ(BlockSeen(), "2:3-2:3 none ");
    Block->Extend(1, 5);
    EXPECT_TRUE(Position->MoveRelative(0, -1));
    EXPECT_EQ(BlockSeen(), "1:4-1:4 none ");
    EXPECT_FALSE(Position->MoveRelative(0, INT_MIN));
    EXPECT_FALSE(Position->MoveRelative(INT_MAX, 0));
    EXPECT_EQ(BlockSeen(), "2:1-2:1 none ");
    EXPECT_FALSE(Block->Extend(3, 1));
}

TEST_F(BlockTest, StylesOfADriver) {
    Open("alpha\nbe\ngamma");
    const struct {
        TOTABlockType Style;
        TTextPos From, To;
        std::string_view Expected;
    } cases[] = {
        {btColumn, {1, 2}, {3, 4}, "1:2-3:4 lp\r\ne\r\nam"},
        {btColumn, {1, 4}, {3, 2}, "1:2-3:4 lp\r\ne\r\nam"}, // the other diagonal
        {btColumn, {1, 2}, {3, 2}, "1:2-3:2 none "},
        {btColumn, {2, 8}, {3, 9}, "2:8-3:9 \r\n"},
        {btLine, {1, 3}, {2, 1}, "1:1-3:1 alpha\nbe\n"},
        {btLine, {3, 2}, {3, 2}, "3:1-3:6 gamma"},
        {btInclusive, {1, 1}, {1, 2}, "1:1-1:3 al"},
    };
    for (const auto& [style, from, to, expected] : cases)
        for (const bool atStart : {false, true}) {
            TSourceView& view = *Ide->CurrentView();
            view.Select(from, to, style, atStart);
            EXPECT_EQ(Block->GetStyle(), style);
            EXPECT_EQ(BlockSeen(), expected);
            EXPECT_EQ(view.Cursor(), atStart ? from : to);
        }
}

TEST_F(BlockTest, CharacterAtTheCursor) {
    Open("a\tb\nc\r\n");
    const struct {
        TTextPos At;
        char Expected;
    } cases[] = {{{1, 1}, 'a'}, {{1, 2}, '\t'}, {{1, 4}, '\r'}, {{1, 50}, '\r'},
                 {{2, 1}, 'c'}, {{2, 2}, '\r'}, {{3, 1}, '\r'}};
    for (const auto& [at, expected] : cases) {
        Position->Move(at.Row, at.Col);
        EXPECT_EQ(Position->GetCharacter(), expected) << PosText(at);
    }
}

// --- Inserting --------------------------------------------------------------------------------

struct TInsertCase {
    std::string_view Text;
    TTextPos From, To; ///< the block; empty when they are equal
    std::string_view Inserted;
    bool AutoIndent;
    std::string_view Expected; ///< text|cursor
};

constexpr TInsertCase InsertCases[] = {
    {"ab", {1, 2}, {1, 2}, "xy", false, "axyb|1:4"},
    {"abcd", {1, 2}, {1, 4}, "x", false, "axd|1:3"},
    {"abcd", {1, 4}, {1, 2}, "", false, "ad|1:2"},
    {"a\r\nb", {1, 2}, {1, 2}, "1\n2\r3", false, "a1\r\n2\r\n3\r\nb|3:2"},
    {"a\nb", {1, 1}, {2, 2}, "1\r\n2\r\n", false, "1\n2\n|3:1"},
    {"ab", {1, 5}, {1, 5}, "x", false, "ab  x|1:6"},
    {"ab", {1, 5}, {1, 5}, "", false, "ab|1:5"},
    {"ab", {1, 5}, {1, 5}, "\n", false, "ab\r\n|2:1"},
    {"ab\r\ncd", {1, 5}, {2, 2}, "x", false, "ab  xd|1:6"},
    {"ab\r\ncd", {1, 5}, {2, 2}, "\r\nx", false, "ab\r\nxd|2:2"},
    {"ab\r\ncd", {1, 5}, {2, 2}, "", false, "abd|1:5"},
    {"  ab", {1, 5}, {1, 5}, "x\ny\nz", true, "  abx\r\n  y\r\n  z|3:4"},
    {" \tab", {1, 2}, {1, 2}, "x\ny", true, " x\r\n y\tab|2:3"}, // indentation up to the cursor
    {"  ab", {1, 5}, {1, 5}, "x\ny", false, "  abx\r\ny|2:2"},
};

TEST_F(BlockTest, InsertTextReplacesTheBlock) {
    int number = 0;
    for (const TInsertCase& test : InsertCases) {
        SCOPED_TRACE(number++);
        Open(test.Text);
        const TIntf<IOTABufferOptions> options =
            IDEService<IOTAEditorServices>()->GetTopBuffer()->GetBufferOptions();
        EXPECT_TRUE(options->GetAutoIndent());
        options->SetAutoIndent(test.AutoIndent);
        Position->Move(test.From.Row, test.From.Col);
        if (test.From != test.To) Block->Extend(test.To.Row, test.To.Col);
        Position->InsertText(test.Inserted);
        EXPECT_EQ(Seen(), test.Expected);
        EXPECT_FALSE(Block->GetIsValid());
        Ide->Modules().CloseAll(true);
    }
}

TEST_F(BlockTest, InsertTextReplacesAColumnBlockAtItsTopLeft) {
    Open("alpha\nbe\ngamma");
    Ide->RunCommand([&] {
        Ide->CurrentView()->Select({1, 2}, {3, 4}, btColumn);
        Position->InsertText("__");
    });
    EXPECT_EQ(Seen(), "a__ha\nb\ngma|1:4");
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Seen(), "alpha\nbe\ngamma|1:1");
}

TEST_F(BlockTest, ReplacesAMillionLinesInOneStep) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i) text += "  line\r\n";
    Open(text);
    Ide->RunCommand([&] { Ide->CurrentView()->SelectAll(); });
    const std::string block = Block->GetText();
    EXPECT_EQ(block, text);
    Ide->CurrentBuffer()->AutoIndent = false;
    Ide->RunCommand([&] { Position->InsertText(std::string(text.rbegin(), text.rend())); });
    EXPECT_EQ(Ide->CurrentView()->Cursor().Row, 2'000'001); // each "\n\r" is two breaks
    EXPECT_TRUE(Ide->Undo());
    EXPECT_TRUE(Text() == text);
    EXPECT_EQ(PosText(Ide->CurrentView()->BlockEnd()), "1000001:1");
}

// --- Scrolling --------------------------------------------------------------------------------

TEST_F(BlockTest, Scrolling) {
    std::string text;
    for (int i = 1; i < 100; ++i) text += "x\n"; // 100 lines
    Open(text);
    const TIntf<IOTAEditView> view = IDEService<IOTAEditorServices>()->GetTopView();
    const auto top = [&] {
        EXPECT_EQ(view->GetBottomRow(), view->GetTopRow() + 24);
        return view->GetTopRow();
    };
    EXPECT_EQ(top(), 1);
    view->Scroll(-2, 0);
    EXPECT_EQ(top(), 1);
    view->Scroll(INT_MAX, 0);
    EXPECT_EQ(top(), 100);
    Position->Move(50, 1); // does not scroll, and neither does the block
    Block->Extend(2, 1);
    EXPECT_EQ(top(), 100);
    Ide->CurrentView()->GoTo({50, 1});
    EXPECT_EQ(top(), 50);
    Ide->CurrentView()->GoTo({80, 1});
    EXPECT_EQ(top(), 56);
    Ide->PressKey(VK_PRIOR);
    EXPECT_EQ(top(), 31);
    EXPECT_EQ(PosText(Ide->CurrentView()->Cursor()), "55:1");
    Ide->PressKey(scCtrl | 'A'); // the text shrinks below the top row
    Ide->PressKey(VK_DELETE);
    EXPECT_EQ(top(), 1);
}

// --- The editor's keys ------------------------------------------------------------------------

struct TKeyCase {
    std::string_view Text;
    TTextPos At;
    std::vector<TShortCut> Keys;
    std::string_view Expected; ///< text|cursor|block
};

TEST_F(IdeTest, EditorKeys) {
    const TKeyCase cases[] = {
        {"ab\ncd", {1, 1}, {VK_RIGHT, VK_DOWN}, "ab\ncd|2:2"},
        {"ab\ncd", {2, 1}, {VK_LEFT, VK_UP, VK_UP}, "ab\ncd|1:1"},
        {"ab\ncd", {1, 9}, {VK_RIGHT}, "ab\ncd|1:10"},
        {"ab\ncd", {1, 2}, {VK_END, VK_DOWN, VK_HOME}, "ab\ncd|2:1"},
        {"ab\ncd", {1, 2}, {scCtrl | VK_END}, "ab\ncd|2:3"},
        {"ab\ncd", {2, 2}, {scCtrl | VK_HOME}, "ab\ncd|1:1"},
        {"ab\ncd", {1, 2}, {scShift | VK_RIGHT, scShift | VK_DOWN}, "ab\ncd|2:3|1:2-2:3"},
        {"ab\ncd", {2, 2}, {scShift | scCtrl | VK_HOME}, "ab\ncd|1:1|1:1-2:2"},
        {"ab\ncd", {2, 2}, {scShift | VK_UP, VK_LEFT}, "ab\ncd|1:1"},
        {"ab", {1, 2}, {VK_BACK}, "b|1:1"},
        {"ab\r\ncd", {2, 1}, {VK_BACK}, "abcd|1:3"},
        {"ab", {1, 1}, {VK_BACK}, "ab|1:1"},
        {"ab", {1, 9}, {VK_BACK}, "ab|1:8"},
        {"ab", {1, 1}, {VK_DELETE}, "b|1:1"},
        {"ab\r\ncd", {1, 3}, {VK_DELETE}, "abcd|1:3"},
        {"ab\r\ncd", {1, 5}, {VK_DELETE}, "ab  cd|1:5"},
        {"ab", {1, 3}, {VK_DELETE}, "ab|1:3"},
        {"abcd", {1, 2}, {scShift | VK_RIGHT, scShift | VK_RIGHT, VK_DELETE}, "ad|1:2"},
        {"abcd", {1, 4}, {scShift | VK_LEFT, scShift | VK_LEFT, VK_BACK}, "ad|1:2"},
        {"ab", {1, 2}, {VK_TAB}, "a       b|1:9"},
        {"", {1, 9}, {VK_TAB}, "                |1:17"},
        {"\tab\n", {1, 3}, {VK_RETURN}, "\ta\n\tb\n|2:2"},
        {"  ab", {1, 2}, {VK_RETURN}, " \r\n  ab|2:2"},
        {"ab", {1, 2}, {VK_INSERT}, "ab|1:2"},
        {"ab", {1, 1}, {scCtrl | 'A', scCtrl | 'C', VK_END, scCtrl | 'V'}, "abab|1:5"},
        {"ab", {1, 1}, {scCtrl | 'A', scCtrl | 'X', scCtrl | 'V', scCtrl | 'V'}, "abab|1:5"},
    };
    int number = 0;
    for (const TKeyCase& test : cases) {
        SCOPED_TRACE(number++);
        OpenText(test.Text).GoTo(test.At);
        for (const TShortCut key : test.Keys) EXPECT_TRUE(Ide->PressKey(key));
        EXPECT_EQ(Seen(), test.Expected);
        Ide->Modules().CloseAll(true);
    }
}

TEST_F(IdeTest, TypingIndentsAndConvertsBreaks) {
    OpenText("if a\n").GoTo({1, 5});
    EXPECT_TRUE(Ide->TypeText(" then\r\n  b;\nc"));
    EXPECT_EQ(Seen(), "if a then\n  b;\n  c\n|3:4");
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Seen(), "if a\n|1:5");
}

// --- Undo -------------------------------------------------------------------------------------

TEST_F(IdeTest, UndoBringsTextCursorAndBlockBack) {
    TSourceView& view = OpenText("one two three");
    view.Select({1, 5}, {1, 8}, btNonInclusive, true);
    const auto command = [&] {
        view.MoveTo({1, 1});
        view.InsertText(">");
        view.MoveTo({1, 6});
        view.ExtendTo({1, 9});
        view.InsertText("2");
        view.MoveTo({1, 1});
        view.ExtendTo({1, 2});
    };
    EXPECT_TRUE(Ide->RunCommand(command));
    const std::string before = "one two three|1:5|1:5-1:8";
    const std::string after = ">one 2 three|1:2|1:1-1:2";
    EXPECT_EQ(Seen(), after);

    view.GoTo({1, 3}); // what the user does in between is no step
    EXPECT_TRUE(Ide->PressKey(scCtrl | 'Z'));
    EXPECT_EQ(Seen(), before);
    EXPECT_FALSE(Ide->Undo());
    EXPECT_TRUE(Ide->PressKey(scShift | scCtrl | 'Z'));
    EXPECT_EQ(Seen(), after);
    EXPECT_FALSE(Ide->Redo());
}

TEST_F(IdeTest, CommandsWithoutChangeLeaveNoStep) {
    TSourceView& view = OpenText("abc");
    Ide->RunCommand([&] {
        view.Select({1, 1}, {1, 3});
        view.InsertText("ab");
    });
    EXPECT_FALSE(Ide->CurrentBuffer()->Modified());
    EXPECT_FALSE(Ide->Undo());
}

TEST_F(IdeTest, OneStepInEachBufferOfACommand) {
    TSourceView& first = OpenText("1", "A.pas");
    const std::string second = Write("B.pas", "2");
    Ide->RunCommand([&] {
        first.InsertText("x");
        TSourceView& other = *Ide->Modules().OpenFile(second).Source().View();
        other.InsertText("y");
        Ide->RunCommand([&] { other.InsertText("z"); }); // belongs to the outer one
        first.InsertText("x");
    });
    EXPECT_EQ(Seen(), "yz2|1:3");
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Seen(), "2|1:1");
    EXPECT_FALSE(Ide->Undo());
    EXPECT_TRUE(Ide->ActivateTab(0));
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Seen(), "1|1:1");
}

TEST_F(IdeTest, AFailingCommandIsShownAndIsOneStep) {
    TSourceView& view = OpenText("abc");
    EXPECT_FALSE(Ide->RunCommand([&] {
        view.InsertText("1");
        view.InsertText("2");
        throw Exception("half way");
    }));
    EXPECT_EQ(Boxes(), Strings{"half way"});
    EXPECT_EQ(Text(), "12abc");
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Text(), "abc");
    EXPECT_FALSE(Ide->InCommand());
}

TEST_F(IdeTest, TypingStepsJoinOnRequestOnly) {
    OpenText("");
    Ide->TypeText("a", gkTyping);
    Ide->TypeText("b", gkTyping);
    Ide->TypeText("c");
    EXPECT_EQ(Text(), "abc");
    Ide->Undo();
    EXPECT_EQ(Text(), "ab");
    Ide->Undo();
    EXPECT_EQ(Text(), "");
}

} // namespace
} // namespace tarn
