#include "Package.h"
#include "TIde.h"
#include "block/BlockShift.h"
#include "block/qsBlockMng.h"
#include "os/portable/TPortableOS.h"
#include "qsExpMng.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <unistd.h>

// The block tools as a user meets them: in the editor of the embedded IDE, with the pack loaded.

namespace tarn {
namespace {

using namespace std::string_view_literals;

// --- Texts with their selection ---------------------------------------------------------------

// A text and its block in one literal: "[" and "]" stand at the ends of the block, "<" or ">"
// instead at the end that has the cursor; "|" is the cursor without a block; each "~" is a column
// of virtual space, behind the end of its line.
struct TMarked {
    std::string Text;
    TTextPos Start, End;
    bool HasBlock = false;
    bool CursorAtStart = false;
};

TMarked Parse(std::string_view marked) {
    TMarked result;
    TTextPos at;
    for (const char c : marked) {
        switch (c) {
        case '<':
            result.CursorAtStart = true;
            [[fallthrough]];
        case '[':
            result.Start = at;
            break;
        case ']':
        case '>':
            result.End = at;
            result.HasBlock = true;
            break;
        case '|':
            result.Start = result.End = at;
            break;
        case '~':
            ++at.Col;
            break;
        default:
            if (c == '\r' || (c == '\n' && !result.Text.ends_with('\r')))
                at = {at.Row + 1, 1};
            else if (c != '\n')
                ++at.Col;
            result.Text += c;
        }
    }
    return result;
}

/// Puts a mark into the text, `marks` are those already there.
void PutMark(std::string& text, TTextPos place, char mark) {
    std::size_t at = 0;
    const auto isBreak = [&](std::size_t i) { return text[i] == '\r' || text[i] == '\n'; };
    for (int row = 1; row < place.Row && at < text.size(); ++row) {
        while (at < text.size() && !isBreak(at)) ++at;
        at += text.substr(at, 2) == "\r\n" ? 2 : 1;
    }
    int missing = place.Col - 1;
    for (; missing > 0 && at < text.size() && !isBreak(at); --missing) ++at;
    text.insert(at, std::string(static_cast<std::size_t>(missing), '~') + mark);
}

std::string Marked(TSourceView& view) {
    std::string text = view.Buffer().Text().Text();
    if (!view.HasBlock()) {
        PutMark(text, view.Cursor(), '|');
        return text;
    }
    const bool atStart = view.Cursor() == view.BlockStart();
    PutMark(text, view.BlockEnd(), atStart ? ']' : '>');
    PutMark(text, view.BlockStart(), atStart ? '<' : '[');
    return text;
}

/// With control characters and bytes above 127 readable, for messages.
std::string Readable(std::string_view text) {
    return testing::PrintToString(std::string(text));
}

// --- The IDE with the pack --------------------------------------------------------------------

struct TSettings {
    bool TopLeft = false;
    bool Safe = true;
};

class BlockToolsTest : public testing::Test {
protected:
    BlockToolsTest() {
        FFormerOS = InstallOS(&Os);
        Folder = std::filesystem::path(testing::TempDir()) /
                 ("tarn-block-" + std::to_string(::getpid()));
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directories(Folder);
        Os.SetModuleFileName((Folder / "pack.module").string());
        Ide.emplace();
        EXPECT_TRUE(Ide->Packages().Load({InitializePackage, Register, FinalizePackage}));
        Ide->PumpMessages();
    }
    ~BlockToolsTest() override {
        Ide.reset();
        InstallOS(FFormerOS);
        std::filesystem::remove_all(Folder);
    }

    TBlockMng& Expert() {
        const TExpObjectList& list = *TExpManager::Instance()->ExpObjects();
        return *ClassCast<TBlockMng>(list.Get(list.IndexOf("EditorManager")).Expert.Get());
    }

    /// Opens a new file with the text and selects what is marked in it.
    TSourceView& Open(std::string_view marked) {
        const std::string file = (Folder / ("Unit" + std::to_string(++FFiles) + ".pas")).string();
        const TMarked parsed = Parse(marked);
        std::ofstream(file, std::ios::binary) << parsed.Text;
        TSourceView& view = *Ide->Modules().OpenFile(file).Source().View();
        Select(view, parsed);
        return view;
    }
    static void Select(TSourceView& view, const TMarked& marked) {
        if (marked.HasBlock)
            view.Select(marked.Start, marked.End, btNonInclusive, marked.CursorAtStart);
        else
            view.GoTo(marked.Start);
    }
    void Apply(TSettings settings) {
        Expert().MoveCursorTopLeft = settings.TopLeft;
        Expert().SafeStringMoving = settings.Safe;
    }
    /// Presses the default hot key of a command.
    bool Press(TBlockActionID action) {
        constexpr std::string_view keys[] = {"Ctrl+;",       "",       "Ctrl+,",
                                             "Ctrl+Shift+,", "Ctrl+.", "Ctrl+Shift+."};
        return Ide->PressKey(TextToShortCut(keys[action]));
    }

    struct TCase {
        std::string_view Name;
        TBlockActionID Action;
        std::string_view Before;
        std::string_view After;
        TSettings Settings = {};
        int Beeps = 0;
    };
    /// Plays a case by the hot key, then undo and redo.
    void Check(const TCase& c) {
        SCOPED_TRACE(c.Name);
        Apply(c.Settings);
        TSourceView& view = Open(c.Before);
        const std::string text = Parse(c.Before).Text;
        const int beeps = Os.Beeps();
        EXPECT_TRUE(Press(c.Action));
        EXPECT_EQ(Readable(Marked(view)), Readable(c.After));
        EXPECT_EQ(Os.Beeps() - beeps, c.Beeps);
        EXPECT_TRUE(view.Buffer().AutoIndent);
        const bool changed = Parse(c.After).Text != text;
        EXPECT_EQ(view.Buffer().Modified(), changed);
        EXPECT_EQ(Ide->Undo(), changed);
        if (changed) {
            EXPECT_EQ(Readable(Marked(view)), Readable(c.Before));
            EXPECT_FALSE(Ide->Undo());
            EXPECT_TRUE(Ide->Redo());
            EXPECT_EQ(Readable(Marked(view)), Readable(c.After));
        }
        EXPECT_EQ(Os.Dialogs().size(), 0U);
        Ide->Modules().Close(view.Buffer().Module(), true);
    }

    TPortableOS Os;
    std::filesystem::path Folder;
    std::optional<TIde> Ide;

private:
    TOperatingSystem* FFormerOS;
    int FFiles = 0;
};

constexpr TBlockActionID L1 = aiMoveLeftOne, L2 = aiMoveLeftTwo, R1 = aiMoveRightOne,
                         R2 = aiMoveRightTwo;
constexpr TSettings Unsafe{.Safe = false};
constexpr TSettings TopLeft{.TopLeft = true};

// --- Shifting ---------------------------------------------------------------------------------

TEST_F(BlockToolsTest, ShiftsWholeLines) {
    const TCase cases[] = {
        {"right", R1, "[a\r\nb\r\n>c\r\n", " [a\r\n b\r\n>c\r\n"},
        {"right by two", R2, "x\r\n[a\r\n  b\r\n>", "x\r\n  [a\r\n    b\r\n>"},
        {"left", L1, "[ a\r\n  b\r\n>", "[a\r\n b\r\n>"},
        {"left by two", L2, "x\r\n[  a\r\n    b\r\n>y", "x\r\n[a\r\n  b\r\n>y"},
        {"an empty line in the middle", R1, "[a\r\n\r\nb\r\n>", " [a\r\n\r\n b\r\n>"},
        {"blank lines stay to the left", L2, "[  a\r\n \r\n\t\r\n  b\r\n>",
         "[a\r\n \r\n\t\r\nb\r\n>"},
        // The start moves right although its line did not.
        {"an empty line first", R2, "[\r\na\r\n>", "~~[\r\n  a\r\n>"},
        {"an empty line last", R1, "[a\r\n\r\n>b", " [a\r\n\r\n>b"},
        {"tabs are no spaces", L2, "[  a\r\n\tb\r\n  c\r\n>", "[  a\r\n\tb\r\n  c\r\n>", {}, 1},
        {"a tab goes along", R1, "[\ta\r\n>", " [\ta\r\n>"},
        {"too few spaces", L2, "[  a\r\n b\r\n>", "[  a\r\n b\r\n>", {}, 1},
        {"too few in the first line", L1, "[a\r\n b\r\n>", "[a\r\n b\r\n>", {}, 1},
        {"as far as each can go", L2, "[    a\r\n b\r\n\tc\r\n  d\r\n>",
         "[  a\r\nb\r\n\tc\r\nd\r\n>", Unsafe},
        {"none can go", L2, "[a\r\n\tb\r\n>", "[a\r\n\tb\r\n>", Unsafe},
        {"a space before a tab", L2, "[ \ta\r\n>", "[\ta\r\n>", Unsafe},
    };
    for (const TCase& c : cases) Check(c);
}

TEST_F(BlockToolsTest, ShiftsBlocksThatBeginOrEndInsideLines) {
    const TCase cases[] = {
        {"the end moves along", R2, "[a\r\nb>c", "  [a\r\n  b>c"},
        {"one row", R1, "a[b>c", "a <b]c"},
        {"spaces before the block", L2, "a  [b\r\n  c\r\n>", "a[b\r\nc\r\n>"},
        {"more spaces than needed", L1, "a   [b\r\n c\r\n>", "a  [b\r\nc\r\n>"},
        {"spaces on both sides", L2, "a [ b\r\n>", "a[b\r\n>"},
        {"spaces in the block", L2, "a[  b\r\n>", "a[b\r\n>"},
        {"too few spaces before", L2, "a [b\r\n  c\r\n>", "a [b\r\n  c\r\n>", {}, 1},
        {"too few, as far as it can go", L2, "a [b\r\n  c\r\n>", "a[b\r\nc\r\n>", Unsafe},
        {"a tab before the block", L1, "a\t[b\r\n>", "a\t[b\r\n>", {}, 1},
        {"from column 2 to the margin", L2, " [b\r\n>", "[b\r\n>", Unsafe},
        {"from column 3 to the margin", L2, "  [b\r\n>", "[b\r\n>"},
        {"one row after spaces", L2, "a  [b>c", "a<b]c"},
        {"spaces taken from a blank line stay", L1, "a [\r\n b\r\n>", "a[ \r\nb\r\n>"},
        // The end column follows the topmost line that is not blank, whatever its own line did.
        {"the end is in a blank line", R2, "[a\r\n >x", "  [a\r\n x~>"},
        {"the first line moves less", L2, "[ a\r\n  bcd>e", "[a\r\nbcde>", Unsafe},
        {"the first line moves more", L2, "[  a\r\n bc>d", "[a\r\nb>cd", Unsafe},
        {"the first line is blank", L1, "[\r\n  a>b", "[\r\n a>b"},
        {"the end would be left of the margin", L2, "[  a\r\n >b", "[a\r\n> b"},
    };
    for (const TCase& c : cases) Check(c);
}

TEST_F(BlockToolsTest, ShiftsBlankBlocksNowhere) {
    const TCase cases[] = {
        {"right", R1, "[\r\n \r\n>", "~[\r\n \r\n>"},
        {"left", L2, "[ \r\n\t\r\n>", "[ \r\n\t\r\n>"},
        {"the end stays", R2, "[ \r\n  >x", " ~[\r\n  >x"},
        {"one empty line", R1, "a\r\n[\r\n>b", "a\r\n~[\r\n>b"},
        {"one empty line to the left", L1, "a\r\n[\r\n>b", "a\r\n[\r\n>b"},
        {"one empty line, LF", R1, "a\n[\n>b", "a\n~[\n>b"},
        {"a line end alone", R1, "a[\r\n>b", "a~[\r\n>b"},
        {"control characters", R1, "[\x01\x1F\r\n>"sv, "\x01[\x1F\r\n>"sv},
        {"NULs", R2, "[\0\0\0\r\n>"sv, "\0\0[\0\r\n>"sv},
    };
    for (const TCase& c : cases) Check(c);
}

TEST_F(BlockToolsTest, ShiftsAnyBytesAndLineEnds) {
    const TCase cases[] = {
        {"LF", R1, "[a\nb\n>c\n", " [a\n b\n>c\n"},
        {"LF, ending inside a line", R1, "[a\nb>c\n", " [a\n b>c\n"},
        {"CR", L1, "[ a\r b\r>c\r", "[a\rb\r>c\r"},
        {"no line end at the end", R2, "a\r\n[b\r\nc>", "a\r\n  [b\r\n  c>"},
        {"LF among CR LF", R1, "[a\n>b\r\nc\r\n", " [a\r\n>b\r\nc\r\n"},
        {"CR LF among LF", R1, "x\r\n[a\r\nb\n>c\n\ny", "x\r\n [a\n b\n>c\n\ny"},
        {"NULs", R1, "[\0a\r\nb\0\r\n>"sv, " [\0a\r\n b\0\r\n>"sv},
        {"bytes above 127", R2, "[\xC4\xE9\r\n\xFF\r\n>", "  [\xC4\xE9\r\n  \xFF\r\n>"},
        {"no blank",
         L1,
         "[\xA0"
         "a\r\n>",
         "[\xA0"
         "a\r\n>",
         {},
         1},
    };
    for (const TCase& c : cases) Check(c);
}

TEST_F(BlockToolsTest, PutsTheCursorWhereItWasOrTopLeft) {
    const TCase cases[] = {
        {"end", R1, "[a\r\nb\r\n>", " [a\r\n b\r\n>"},
        {"start", R1, "<a\r\nb\r\n]", " <a\r\n b\r\n]"},
        {"end, top left", R1, "[a\r\nb\r\n>", " <a\r\n b\r\n]", TopLeft},
        {"start, top left", R1, "<a\r\nb\r\n]", " <a\r\n b\r\n]", TopLeft},
        {"left, end", L1, "a [b\r\n c>", "a[b\r\nc>"},
        {"left, start", L1, "a <b\r\n c]", "a<b\r\nc]"},
        {"left, end, top left", L1, "a [b\r\n c>", "a<b\r\nc]", TopLeft},
        {"left, start, top left", L1, "a <b\r\n c]", "a<b\r\nc]", TopLeft},
        {"refused, end", L1, "a [b\r\nc\r\n>", "a [b\r\nc\r\n>", {}, 1},
        {"refused, start", L1, "a <b\r\nc\r\n]", "a <b\r\nc\r\n]", {}, 1},
        {"refused, end, top left", L1, "a [b\r\nc\r\n>", "a [b\r\nc\r\n>", TopLeft, 1},
        // Rows are compared: in a block of one row the cursor counts as being at its start.
        {"one row", R1, "[a>", " <a]"},
        {"one row, refused", L1, "[a>", "<a]", {}, 1},
    };
    for (const TCase& c : cases) Check(c);
}

TEST_F(BlockToolsTest, ShiftsBlocksInVirtualSpace) {
    const TCase cases[] = {
        {"the start", R1, "ab~~[\r\nc\r\n>", "ab~~~[\r\n c\r\n>"},
        {"the start, left", L1, "ab~~[\r\n c\r\n>", "ab~~[\r\nc\r\n>"},
        {"the end", R1, "[a\r\nb~~>\r\n", " [a\r\n b~~>\r\n"},
        {"both", R1, "a~[\r\nb~~>\r\n", "a~~[\r\n b~~>\r\n"},
    };
    for (const TCase& c : cases) Check(c);
}

// --- Sorting ----------------------------------------------------------------------------------

TEST_F(BlockToolsTest, Sorts) {
    const TCase cases[] = {
        {"lines", aiSort, "x;\r\n[b;\r\na;\r\n>w;\r\n", "x;\r\n|a;\r\nb;\r\nw;\r\n"},
        {"cursor at the start", aiSort, "<b;\r\na;\r\n]", "|a;\r\nb;\r\n"},
        {"sorted already", aiSort, "[a;\r\nb;\r\n>", "|a;\r\nb;\r\n"},
        {"equal ones keep their order", aiSort, "[a;\r\nA;\r\na;\r\n>", "|a;\r\nA;\r\na;\r\n"},
        {"one row", aiSort, "[b;>", "|b;"},
        {"the initial word does not count", aiSort, "[  procedure B;\r\n  function A;\r\n>",
         "|  function A;\r\n  procedure B;\r\n"},
        {"declarations of several lines", aiSort,
         "[procedure P(a: Integer;\r\n  b: Integer);\r\nprocedure A;\r\n>",
         "|procedure A;\r\nprocedure P(a: Integer;\r\n  b: Integer);\r\n"},
        {"blank lines go", aiSort, "[b;\r\n\r\na;\r\n \r\n>", "|a;\r\nb;\r\n"},
        {"nothing but blank lines", aiSort, "a;\r\n[\r\n \r\n>b;", "a;\r\n|b;"},
        {"the indentation before the block", aiSort, "  [b;\r\n  a;\r\n>", "  |a;\r\n  b;\r\n"},
        {"a deep one", aiSort, "     [b;\r\n a;\r\n>", " a;~~|\r\n     b;\r\n"},
        {"only spaces before the block", aiSort, "x: [b;\r\n a;\r\n>", "x: |a;\r\n b;\r\n"},
        {"no tab before the block", aiSort, "\t[b;\r\na;\r\n>", "\t|a;\r\nb;\r\n"},
        {"ending inside a line", aiSort, "[b;\r\na;> // c\r\nz", "|a;\r\nb; // c\r\nz"},
        {"no line end at the end", aiSort, "[b;\r\na;>", "|a;\r\nb;"},
        {"LF", aiSort, "[b;\na;\n>c;\n", "|a;\nb;\nc;\n"},
        {"CR", aiSort, "[b;\ra;\r>c;\r", "|a;\rb;\rc;\r"},
        {"LF at the end among CR LF", aiSort, "[b;\r\na;\n>c\r\n", "|a;\r\nb;\r\nc\r\n"},
        {"comments", aiSort, "[{ z\r\n;}\r\n(* y\r\n *)\r\n{ a }\r\n// b\r\n// a\r\n>",
         "|(* y\r\n *)\r\n// a\r\n// b\r\n{ a }\r\n{ z\r\n;}\r\n"},
        {"directives", aiSort, "[{$ENDIF}\r\n{$DEFINE A}\r\n>", "|{$DEFINE A}\r\n{$ENDIF}\r\n"},
        {"marks in literals", aiSort, "[b = 'x;y';\r\na = ')';\r\n>",
         "|a = ')';\r\nb = 'x;y';\r\n"},
        {"a literal that ends a line", aiSort, "[b = 'x;'\r\n  + 'y';\r\na;\r\n>",
         "|  + 'y';\r\na;\r\nb = 'x;'\r\n"},
        {"NULs and bytes above 127", aiSort, "[b\0\xE4;\r\na\xFF;\r\n>"sv,
         "|a\xFF;\r\nb\0\xE4;\r\n"sv},
        {"no end", aiSort, "[a;\r\nb\r\n>", "[a;\r\nb\r\n>", {}, 1},
        {"no end, cursor at the start", aiSort, "<b;\r\na\r\n]", "<b;\r\na\r\n]", {}, 1},
        {"no end, inside a line", aiSort, "  [b;\r\na>;", "  [b;\r\na>;", {}, 1},
        {"no end, one row", aiSort, "  [b>;", "  <b];", {}, 1},
        {"no end behind the parameters",
         aiSort,
         "[p(a)\r\n;\r\nb;\r\n>",
         "[p(a)\r\n;\r\nb;\r\n>",
         {},
         1},
        {"an open comment", aiSort, "[b;\r\n{ a;\r\n>", "[b;\r\n{ a;\r\n>", {}, 1},
    };
    for (const TCase& c : cases) Check(c);
}

// --- Blocks that no command works on ----------------------------------------------------------

TEST_F(BlockToolsTest, LeavesColumnBlocksAlone) {
    for (const bool atStart : {false, true})
        for (const TBlockActionID action : {aiSort, L1, L2, R1, R2}) {
            TSourceView& view = Open("  b;\r\n  a;\r\n");
            view.Select({1, 2}, {2, 4}, btColumn, atStart);
            const TViewState state = view.State();
            const int painted = view.PaintCount();
            EXPECT_TRUE(Press(action));
            EXPECT_EQ(view.Buffer().Text().Text(), "  b;\r\n  a;\r\n");
            EXPECT_EQ(view.State(), state);
            EXPECT_FALSE(view.Buffer().Modified());
            EXPECT_EQ(view.PaintCount(), painted + 1);
        }
    EXPECT_EQ(Os.Beeps(), 0);
}

TEST_F(BlockToolsTest, DoesNothingWithoutABlockButShowTheCursor) {
    std::string above;
    for (int i = 0; i < 20; ++i) above += "x;\r\n";
    for (const std::string_view block : {"  |b;", "  [>b;", "  b;~~[~~>"})
        for (const TBlockActionID action : {aiSetup, aiSort, L1, L2, R1, R2}) {
            std::string marked = above;
            marked.append(block).append("\r\n").append(above);
            const std::string text = Parse(marked).Text;
            TSourceView& view = Open(marked);
            view.Scroll(19, 0); // the cursor's row becomes the second one
            ASSERT_EQ(view.TopRow(), 20);
            TSourceView& other = Open("y");
            Ide->ActivateTab(view.Buffer().FileName());
            const TViewState state = view.State();
            const int painted = view.PaintCount();
            EXPECT_FALSE(Expert().CheckState());
            Expert().DoAction(action);
            EXPECT_EQ(view.Buffer().Text().Text(), text);
            EXPECT_EQ(view.State(), state);
            EXPECT_EQ(view.TopRow(), 18);
            EXPECT_EQ(view.PaintCount(), painted + 1);
            EXPECT_FALSE(Ide->Undo());
            Ide->Modules().Close(view.Buffer().Module(), true);
            Ide->Modules().Close(other.Buffer().Module(), true);
        }
    EXPECT_EQ(Os.Beeps(), 0);
}

TEST_F(BlockToolsTest, TheKeysOfDisabledCommandsChangeNothing) {
    TSourceView& view = Open("  |b;\r\n");
    for (const TBlockActionID action : {aiSort, L1, L2, R1, R2}) Press(action);
    EXPECT_EQ(Marked(view), "  |b;\r\n");
    EXPECT_FALSE(view.Buffer().Modified());
    EXPECT_EQ(Os.Beeps(), 0);
}

// --- The view ---------------------------------------------------------------------------------

TEST_F(BlockToolsTest, KeepsTheCursorAwayFromTheEdges) {
    std::string text;
    for (int row = 1; row < 60; ++row) text += "x\n";
    const struct {
        int Top, Cursor, Expected;
    } cases[] = {
        {10, 9, 8},   {10, 10, 8},  {10, 12, 8},  // near the top, or above it
        {10, 13, 10}, {10, 20, 10}, {10, 31, 10}, // well inside
        {10, 32, 12}, {10, 34, 12}, {10, 40, 12}, // near the bottom, or below it
        {1, 1, 1},    {2, 3, 1},    {60, 60, 58}, // the text is left on neither side
    };
    TSourceView& view = Open(text);
    ASSERT_EQ(view.Height(), 25);
    for (const auto& c : cases) {
        view.MoveTo({c.Cursor, 1});
        view.Scroll(c.Top - view.TopRow(), 0);
        Expert().DoAction(aiSetup);
        EXPECT_EQ(view.TopRow(), c.Expected) << "top " << c.Top << ", cursor " << c.Cursor;
        EXPECT_EQ(view.LeftColumn(), 1);
    }
}

/// Writes down which controls are to be painted anew.
class TRecordingPeer : public IControlPeer {
public:
    void Invalidate(TControl& control) override {
        Painted += (Painted.empty() ? "" : " ") + control.Name();
    }
    void Redraw(TControl&, std::uint32_t) override {}
    void StateChanged(TControl&) override {}
    void SetRedraw(TControl&, bool) override {}

    std::string Painted;
};

TEST_F(BlockToolsTest, InvalidatesWhatItHasChanged) {
    TRecordingPeer peer;
    Ide->MainForm().SetName("MainForm");
    Ide->EditWindow().SetName("EditWindow");
    const struct {
        TBlockActionID Action;
        std::string_view Text;
        std::string_view Painted; ///< before the buffer is shown and painted
    } cases[] = {
        {R1, "[a\r\nb\r\n>", "Editor MainForm"},
        {R1, "<a\r\nb\r\n]", "MainForm"},
        {L1, "[ a\r\n b\r\n>", "Editor MainForm"},
        {L1, "< a\r\n b\r\n]", "MainForm"},
        {L1, "[a\r\nb\r\n>", ""},
        {aiSort, "[b;\r\na;\r\n>", "Editor"},
        {aiSort, "<b;\r\na;\r\n]", "Editor"},
        {aiSort, "[a\r\nb\r\n>", ""},
        {aiSetup, "[a\r\nb\r\n>", ""},
    };
    for (const auto& c : cases) {
        Open(c.Text);
        Screen()->SetActiveForm(&Ide->MainForm());
        peer.Painted.clear();
        for (TControl* control :
             {static_cast<TControl*>(&Ide->MainForm()), static_cast<TControl*>(&Ide->EditWindow()),
              &Ide->EditWindow().Editor()})
            control->Peer = &peer;
        Expert().DoAction(c.Action);
        const std::string changed(c.Painted);
        EXPECT_EQ(peer.Painted, changed + (changed.empty() ? "" : " ") + "Editor Editor")
            << Readable(c.Text) << " " << c.Action;
        EXPECT_EQ(Screen()->ActiveForm(), &Ide->EditWindow()); // the buffer was shown
        for (TControl* control :
             {static_cast<TControl*>(&Ide->MainForm()), static_cast<TControl*>(&Ide->EditWindow()),
              &Ide->EditWindow().Editor()})
            control->Peer = nullptr;
    }
}

TEST_F(BlockToolsTest, PutsTheAutomaticIndentBack) {
    for (const bool autoIndent : {false, true})
        for (const TBlockActionID action : {aiSort, R1}) {
            TSourceView& view = Open("  x[b;\r\na;\r\n>");
            view.Buffer().AutoIndent = autoIndent;
            Press(action);
            EXPECT_EQ(view.Buffer().AutoIndent, autoIndent);
            EXPECT_EQ(view.Buffer().Text().Text(),
                      action == R1 ? "  x b;\r\n a;\r\n" : "  xa;\r\nb;\r\n");
        }
}

// --- Which editor -----------------------------------------------------------------------------

/// A source editor that no view shows.
class TEditorWithoutViews : public TInterfacedObject<IOTASourceEditor> {
public:
    std::string GetFileName() override { return {}; }
    TIntf<IOTAModule> GetModule() override { return nullptr; }
    bool GetModified() override { return false; }
    void Show() override {}
    int GetEditViewCount() override { return 0; }
    TIntf<IOTAEditView> GetEditView(int) override { return nullptr; }
};

TEST_F(BlockToolsTest, WorksOnThePreviewersEditorButIsEnabledByTheTopOne) {
    TSourceView& shown = Open("[a\r\nb\r\n>");
    TSourceView& top = Open("|c\r\n");
    OpenEditor() = shown.Buffer().BufferInterface();
    EXPECT_FALSE(Expert().CheckState());
    Expert().DoAction(R1);
    EXPECT_EQ(Marked(shown), " [a\r\n b\r\n>");
    EXPECT_EQ(Ide->CurrentBuffer(), &shown.Buffer());

    top.Buffer().Show();
    Select(top, Parse("[c\r\n>"));
    shown.MoveTo({1, 1});
    EXPECT_TRUE(Expert().CheckState());
    Expert().DoAction(R1);
    EXPECT_EQ(Marked(top), "[c\r\n>");
    EXPECT_EQ(Marked(shown), "| a\r\n b\r\n");

    top.Buffer().Show();
    OpenEditor() = new TEditorWithoutViews;
    Expert().DoAction(R1);
    EXPECT_EQ(Marked(top), " [c\r\n>");
    OpenEditor() = nullptr;
    Expert().DoAction(L1);
    EXPECT_EQ(Marked(top), "[c\r\n>");
}

TEST_F(BlockToolsTest, NeedsAnEditor) {
    TMenuItem item;
    TAction action(nullptr);
    TObject other;
    const auto enabled = [&] {
        for (TObject* sender : {static_cast<TObject*>(&item), static_cast<TObject*>(&action),
                                &other, static_cast<TObject*>(nullptr)})
            Expert().UpdateBlockState(sender);
        EXPECT_EQ(item.Enabled(), action.Enabled());
        EXPECT_EQ(item.Enabled(), Expert().CheckState());
        return item.Enabled();
    };
    EXPECT_FALSE(enabled());
    for (const TBlockActionID command : {aiSort, aiSetup, L1, L2, R1, R2})
        Expert().DoAction(command);

    TSourceView& view = Open("|b;\r\na;\r\n");
    EXPECT_FALSE(enabled());
    view.SelectAll();
    EXPECT_TRUE(enabled());

    Ide->Withhold(IOTAEditorServices::IID);
    EXPECT_FALSE(enabled());
    const int painted = view.PaintCount();
    for (const TBlockActionID command : {aiSort, aiSetup, L1, L2, R1, R2})
        Expert().DoAction(command);
    EXPECT_EQ(Marked(view), "[b;\r\na;\r\n>");
    EXPECT_EQ(view.PaintCount(), painted);
}

// --- Any text, any block ----------------------------------------------------------------------

/// A text that was cut at the ends of a block.
struct TCutText {
    std::string Before, Block, After;

    /// Takes up to `limit` spaces from the end of what stands before the block.
    void TakeSpaces(std::size_t limit) {
        for (; limit > 0 && Before.ends_with(' '); --limit) {
            Before.pop_back();
            Block.insert(0, 1, ' ');
        }
    }
};

TCutText Cut(std::string_view marked) {
    const std::size_t start = marked.find_first_of("[<");
    const std::size_t end = marked.find_first_of("]>");
    TCutText cut{std::string(marked.substr(0, start)),
                 std::string(marked.substr(start + 1, end - start - 1)),
                 std::string(marked.substr(end + 1))};
    for (std::string* part : {&cut.Before, &cut.Block, &cut.After}) std::erase(*part, '~');
    return cut;
}

/// How many columns of virtual space there are before the start of the block.
std::size_t VirtualColumns(std::string_view marked) {
    const std::string_view before = marked.substr(0, marked.find_first_of("[<"));
    return before.size() - (before.find_last_not_of('~') + 1);
}

/// The lines of a text, without their ends.
std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines;
    bool open = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!std::exchange(open, true)) lines.emplace_back();
        if (text[i] != '\r' && text[i] != '\n') {
            lines.back() += text[i];
            continue;
        }
        if (text.substr(i, 2) == "\r\n") ++i;
        open = false;
    }
    return lines;
}

bool IsBlankLine(std::string_view line) {
    return std::all_of(line.begin(), line.end(),
                       [](char c) { return static_cast<unsigned char>(c) <= 32; });
}

/// The break that prevails in a text.
std::string_view PrevailingBreak(std::string_view text) {
    int pairs = 0, lfs = 0, crs = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i, 2) == "\r\n")
            ++pairs, ++i;
        else
            lfs += text[i] == '\n', crs += text[i] == '\r';
    }
    if (pairs >= lfs && pairs >= crs) return "\r\n";
    return lfs >= crs ? "\n" : "\r";
}

/// The whole text after a shift, line by line; nothing when the shift must be refused.
std::optional<std::string> Shifted(std::string_view marked, int count, bool safe) {
    TCutText cut = Cut(marked);
    const std::string_view lineBreak = PrevailingBreak(cut.Before + cut.Block + cut.After);
    if (count < 0 && VirtualColumns(marked) == 0) cut.TakeSpaces(static_cast<std::size_t>(-count));
    std::string result = cut.Before;
    const std::vector<std::string> lines = LinesOf(cut.Block);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string line = lines[i];
        if (!IsBlankLine(line)) {
            if (count > 0) line.insert(0, static_cast<std::size_t>(count), ' ');
            for (int left = count; left < 0; ++left) {
                if (line.front() == ' ')
                    line.erase(0, 1);
                else if (safe)
                    return std::nullopt;
            }
        }
        result += line;
        const bool ended = cut.Block.ends_with('\r') || cut.Block.ends_with('\n');
        if (i + 1 < lines.size() || ended) result += lineBreak;
    }
    return result + cut.After;
}

/// A random text with a random block.
std::string RandomMarked(std::mt19937& random) {
    constexpr std::string_view pieces[] = {"\r\n", "\r\n", "\r", "\n", " ",  " ",
                                           "  ",   "a",    "B;", ";",  "\t", "\0"sv,
                                           "\xE4", "(",    ");", "//", "{",  "}"};
    const auto below = [&](std::size_t n) { return random() % n; };
    std::string text;
    for (std::size_t n = below(40); n > 0; --n) text += pieces[below(std::size(pieces))];
    // A few texts of one kind of line end alone.
    if (const std::size_t kind = below(4); kind < 2)
        std::replace(text.begin(), text.end(), kind == 0 ? '\r' : '\n', ' ');

    std::vector<std::size_t> places; // not inside a CR LF
    for (std::size_t i = 0; i <= text.size(); ++i)
        if (i == 0 || i == text.size() || text.substr(i - 1, 2) != "\r\n") places.push_back(i);
    std::size_t start = places[below(places.size())];
    std::size_t end = places[below(places.size())];
    if (start > end) std::swap(start, end);
    const auto mark = [&](std::size_t at, char sign) {
        const bool atLineEnd = at == text.size() || text[at] == '\r' || text[at] == '\n';
        text.insert(at, std::string(atLineEnd ? below(3) : 0, '~') + sign);
    };
    const bool atStart = below(2) == 0;
    mark(end, atStart ? ']' : '>');
    mark(start, atStart ? '<' : '[');
    return text;
}

TEST_F(BlockToolsTest, ChangesNothingOutsideAnyBlock) {
    std::mt19937 random(41); // NOLINT(cert-msc51-cpp): the same texts in every run
    int shifted = 0, refused = 0, sorted = 0;
    for (int round = 0; round < 400; ++round) {
        const std::string marked = RandomMarked(random);
        TSourceView& view = Open(marked);
        const std::string before = view.Buffer().Text().Text();
        if (!view.HasBlock()) continue;
        for (const TBlockActionID action : {aiSort, L1, L2, R1, R2}) {
            const bool safe = random() % 2 == 0;
            Apply({.TopLeft = random() % 2 == 0, .Safe = safe});
            SCOPED_TRACE(Readable(marked) + (safe ? " safe " : " ") + std::to_string(action));
            Select(view, Parse(marked));
            const TViewState state = view.State();
            const int beeps = Os.Beeps();
            ASSERT_TRUE(Press(action));
            const std::string after = view.Buffer().Text().Text();
            const bool beeped = Os.Beeps() > beeps;

            if (action != aiSort) {
                constexpr int counts[] = {0, 0, -1, -2, 1, 2};
                const auto expected = Shifted(marked, counts[action], safe);
                ASSERT_EQ(Readable(after), Readable(expected.value_or(before)));
                ASSERT_EQ(beeped, !expected.has_value());
                ++(expected ? shifted : refused);
            } else if (beeped) {
                ASSERT_EQ(Readable(after), Readable(before));
                ++refused;
            } else {
                TCutText cut = Cut(marked);
                const std::size_t missing = VirtualColumns(marked);
                if (missing == 0) cut.TakeSpaces(before.size());
                auto lines = LinesOf(cut.Block);
                std::erase_if(lines, IsBlankLine);
                // What comes into virtual space is preceded by the spaces that are missing.
                if (!lines.empty()) cut.Before.append(missing, ' ');
                ASSERT_TRUE(after.starts_with(cut.Before) && after.ends_with(cut.After) &&
                            after.size() >= cut.Before.size() + cut.After.size())
                    << Readable(after);
                const std::size_t size = after.size() - cut.Before.size() - cut.After.size();
                auto sortedLines = LinesOf(after.substr(cut.Before.size(), size));
                std::sort(lines.begin(), lines.end());
                std::sort(sortedLines.begin(), sortedLines.end());
                ASSERT_EQ(sortedLines, lines) << Readable(after);
                ++sorted;
            }

            ASSERT_EQ(Ide->Undo(), after != before);
            ASSERT_EQ(Readable(view.Buffer().Text().Text()), Readable(before));
            if (after != before) {
                ASSERT_EQ(view.State(), state);
            }
        }
        Ide->Modules().Close(view.Buffer().Module(), true);
    }
    // The random texts must reach every branch to mean anything.
    EXPECT_GT(shifted, 300);
    EXPECT_GT(refused, 100);
    EXPECT_GT(sorted, 50);
}

// --- The shift itself -------------------------------------------------------------------------

TEST(BlockShift, KnowsWhichTextsEndWithABreak) {
    const std::pair<std::string_view, bool> cases[] = {
        {"", false},     {"a", false},     {"\r\n", false}, // by the quirk
        {"a\r\n", true}, {"\n\r\n", true}, {"\r\n\r\n", true}, {"\n", true},
        {"\r", true},    {"a\n", true},    {"a\r", true},      {"a\n ", false},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(EndsWithBreak(text), expected) << Readable(text);
}

} // namespace
} // namespace tarn
