// One contract for both editors behind the Open Tools API, the one without a face and that of the
// workbench: what a user and the pack do to them has the same outcome, and what the workbench shows
// is what its buffer has, after each thing done.

#include "TEditorDriver.h"

#include <random>

namespace tarn {
namespace {

std::unique_ptr<TEditorDriver> MakeEditor(bool desktop) {
    if (desktop) return std::make_unique<TDesktopEditor>();
    return std::make_unique<THeadlessEditor>();
}

class EditorContract : public testing::TestWithParam<bool> {
protected:
    EditorContract() : Owner(MakeEditor(GetParam())), Editor(*Owner) {}

    std::unique_ptr<TEditorDriver> Owner;
    TEditorDriver& Editor;
};

// --- What is done to a text -------------------------------------------------------------------

struct TCase {
    std::string_view Name;
    std::string_view Text;
    std::string_view Do;       ///< where the cursor stands or what is selected, then steps
    std::string_view Expected; ///< text|cursor block, with * when modified
    int Undos = 1;             ///< steps that take all back
};

// The two bytes of a letter with dots, and one that belongs to no character.
#define A_UML "\xC3\xA4"
#define STRAY "\xFF"

const TCase Cases[] = {
    // The pack's block tools.
    {"right by one", "a\r\n\r\nb\r\n", "1:1-4:1 Ctrl+.", " a\r\n\r\n b\r\n|4:1 1:2-4:1 *"},
    {"right by two", "a\r\nb", "1:1-2:2 Ctrl+Shift+.", "  a\r\n  b|2:4 1:3-2:4 *"},
    {"left by one", "  a\r\n b", "1:1-2:3 Ctrl+,", " a\r\nb|2:2 1:1-2:2 *"},
    {"left by two", "    a\r\n   b\r\n", "1:1-3:1 Ctrl+Shift+,", "  a\r\n b\r\n|3:1 1:1-3:1 *"},
    {"left is refused", "a\r\n b\r\n", "1:1-3:1 Ctrl+,", "a\r\n b\r\n|3:1 1:1-3:1", 0},
    {"a tab is no space", "\ta\r\n", "1:1-2:1 Ctrl+,", "\ta\r\n|2:1 1:1-2:1", 0},
    {"twice are two steps", "a\r\n", "1:1-2:1 Ctrl+. Ctrl+.", "  a\r\n|2:1 1:3-2:1 *", 2},
    {"right of wide characters and bytes", A_UML "\n" STRAY "b\n", "1:1-3:1 Ctrl+.",
     " " A_UML "\n " STRAY "b\n|3:1 1:2-3:1 *"},
    {"right of mixed line ends", "a\r\nb\nc\r\nd", "1:1-3:2 Ctrl+.",
     " a\r\n b\r\n c\r\nd|3:3 1:2-3:3 *"},
    {"right of a block in mid-line", "ab\tc\r\n", "1:2-1:5 Ctrl+.", "a b\tc\r\n|1:3 1:3-1:6 *"},
    {"sorting", "procedure B;\r\nfunction A: Integer;\r\n", "1:1-3:1 Ctrl+;",
     "function A: Integer;\r\nprocedure B;\r\n|1:1 *"},
    {"no block", "a\r\n", "1:1 Ctrl+.", "a\r\n|1:1", 0},
    {"a column block", "ab\r\ncd", "1:1|2:2 Ctrl+. Ctrl+;", "ab\r\ncd|2:2 column 1:1-2:2", 0},
    // Moves.
    {"by characters", "a" A_UML "b" STRAY "\t", "1:1 Right Right Right Right Right",
     "a" A_UML "b" STRAY "\t|1:7", 0},
    {"back by characters", A_UML STRAY "\t", "1:5 Left Left Left Left", A_UML STRAY "\t|1:1", 0},
    {"up and down as it is seen", "\tab\n" A_UML A_UML "cdefghijkl\n", "1:3 Down",
     "\tab\n" A_UML A_UML "cdefghijkl\n|2:12", 0},
    {"into a tab", "abc\n\tx\n", "1:4 Down", "abc\n\tx\n|2:1", 0},
    {"near the end of a tab", "abcd\n\tx\n", "1:5 Down", "abcd\n\tx\n|2:2", 0},
    {"move behind the end", "ab\ncd", "1:3 Right Right Down", "ab\ncd|2:5", 0},
    {"to the ends", "ab\ncd", "1:2 End Shift+Home Ctrl+End", "ab\ncd|2:3", 0},
    {"a block over lines", "ab\r\ncd", "1:2 Shift+Down Shift+Right", "ab\r\ncd|2:3 1:2-2:3", 0},
    {"a block from behind the end", "ab\r\ncd", "1:5 Shift+Down", "ab\r\ncd|2:5 1:5-2:5", 0},
    {"a block of nothing but the space behind the end", "ab", "1:5 Shift+Right", "ab|1:6", 0},
    {"in mid-character", A_UML "b", "1:2 Right", A_UML "b|1:3", 0},
    {"all", "a\r\nb\n", "1:1 Ctrl+A", "a\r\nb\n|3:1 1:1-3:1", 0},
    {"a column block by keys", "abcd\nefgh\n", "1:2 Alt+Shift+Down Alt+Shift+Right Alt+Shift+Right",
     "abcd\nefgh\n|2:4 column 1:2-2:4", 0},
    {"a column block to the left and up", "abcd\nefgh\n", "2:4 Alt+Shift+Up Alt+Shift+Left",
     "abcd\nefgh\n|1:3 column 1:3-2:4", 0},
    // Column blocks as they are seen.
    {"columns over tabs", "abcdefghijk\n\txyz\n12345678901", "1:8|3:11 Del",
     "abcdefgk\n\tz\n12345671|1:8 *"},
    {"columns over characters", "abcd\n" A_UML A_UML "cd\n" STRAY "bcd", "1:2|3:4 Del",
     "ad\n" A_UML "d\n" STRAY "d|1:2 *"},
    {"columns of the other diagonal", "abcd\nefgh", "1:4|2:2 Del", "ad\neh|1:2 *"},
    {"columns behind the ends", "abcdef\nab\n\nabcdef", "1:4|4:6 'x", "abcxf\nab\n\nabcf|1:5 *"},
    {"columns all behind the ends", "a\nb\n", "1:4|2:6 'x", "a  x\nb\n|1:5 *"},
    {"typing over columns", "abcd\r\nefgh\r\n", "1:2|2:4 'xy", "axyd\r\neh\r\n|1:4 *"},
    {"copied columns", "abcd\nefgh", "1:2|2:4 Ctrl+C Ctrl+End Ctrl+V",
     "abcd\nefghbc\n    fg|3:7 *"},
    {"columns of many widths", "ab\n" A_UML "\n\n\tx\n1\n2\n3\n", "1:1|4:3 Ctrl+C Down Home Ctrl+V",
     "ab\n" A_UML "\n\n\tx\nab       1\n" A_UML "        2\n         3\n\tx|8:3 *"},
    {"columns over columns", "abcd\nefgh",
     "1:1|2:3 Ctrl+X Right Alt+Shift+Down Alt+Shift+Right Ctrl+V", "cab\ngef|2:4 *", 2},
    {"columns behind the ends again", "ab\ncd\n\n", "1:1|2:2 Ctrl+C Right Right Right Ctrl+V",
     "ab\ncd  a\n    c\n|3:6 *"},
    // Typing.
    {"a run is one step", "", "1:1 'a" A_UML "b", "a" A_UML "b|1:5 *"},
    {"a move ends the run", "", "1:1 'ab Left 'c", "acb|1:3 *", 2},
    {"behind the end", "ab\r\n", "1:5 'x", "ab  x\r\n|1:6 *"},
    {"over a block", "a\r\nb", "1:2-2:1 'x", "axb|1:3 *"},
    {"over all", "a\r\nb\n\xFF", "1:1 Ctrl+A 'x", "x|1:2 *"},
    {"a key of the pack as text", "a", "1:2 '.;", "a.;|1:4 *"},
    {"a tab stop", "a" A_UML "b", "1:4 Tab", "a" A_UML "      b|1:10 *"},
    // Lines.
    {"Enter indents", " \tab", "1:5 Return 'c", " \tab\r\n \tc|2:4 *", 2},
    {"Enter takes the prevailing break", "a\nb\nc\r\nd", "3:2 Return", "a\nb\nc\n\r\nd|4:1 *"},
    {"Enter within CR", "  a\r  b", "1:3 Shift+Return", "  \r  a\r  b|2:3 *"},
    {"Enter behind the end", "a", "1:5 Return", "a\r\n|2:1 *"},
    {"Backspace joins", "a\r\nb", "2:1 Backspace", "ab|1:2 *"},
    {"Backspace takes a character", A_UML STRAY, "1:4 Backspace Shift+Backspace", "|1:1 *", 2},
    {"Backspace behind the end", "a", "1:5 Backspace", "a|1:4", 0},
    {"Delete joins", "a\r\nb", "1:2 Del", "ab|1:2 *"},
    {"Delete joins only one end", "a\r\r\nb", "1:2 Del", "a\r\nb|1:2 *"},
    {"Delete brings the next line", "a\nb", "1:4 Del", "a  b|1:4 *"},
    {"Delete takes a character", A_UML "b", "1:1 Del", "b|1:1 *"},
    {"Delete at the end", "a", "1:2 Del", "a|1:2", 0},
    {"joining CR and LF", "a\rb\nc", "2:1-2:2 Del", "a\r\nc|2:1 *"},
    // The clipboard.
    {"cut", "a\r\nb\r\n", "1:1-2:1 Ctrl+X", "b\r\n|1:1 *"},
    {"cut and paste by the other keys", "a\r\nb", "1:1-2:1 Shift+Del Ctrl+End Shift+Ins",
     "ba\r\n|2:1 *", 2},
    {"foreign line ends", "a\nb\n", "1:1-3:1 Ctrl+Ins Ctrl+End Ctrl+V", "a\nb\na\nb\n|5:1 *"},
    {"stray bytes", STRAY A_UML "\n", "1:1-2:1 Ctrl+C Ctrl+End Ctrl+V",
     STRAY A_UML "\n" STRAY A_UML "\n|3:1 *"},
    {"undo and redo by other keys", "", "1:1 'a Left 'b Alt+Backspace Alt+Backspace Ctrl+Y",
     "a|1:2 *"},
};

TEST_P(EditorContract, OutcomeUndoRedoAndTheSavedFile) {
    for (const TCase& test : Cases) {
        SCOPED_TRACE(test.Name);
        Editor.Open(test.Text);
        QStringList steps = FromText(test.Do).split(' ');
        Editor.Select(steps.takeFirst());
        const std::string text = Editor.Text();
        EXPECT_EQ(text, test.Text);
        std::string before = Editor.Place();
        for (const QString& step : steps) {
            if (Editor.Text() == text) before = Editor.Place();
            Editor.Do(step);
        }
        const std::string after = Editor.Seen();
        EXPECT_EQ(after, test.Expected);
        int undos = 0;
        for (; Editor.Text() != text; ++undos) Editor.Do("Ctrl+Z");
        EXPECT_EQ(undos, test.Undos);
        Editor.Do("Ctrl+Z"); // there is nothing behind the first step
        EXPECT_EQ(Editor.Text(), text);
        if (undos > 0) {
            EXPECT_EQ(Editor.Place(), before);
            for (; undos > 0; --undos) Editor.Do("Ctrl+Shift+Z");
            EXPECT_EQ(Editor.Seen(), after);
        }
        Editor.Do("Ctrl+S");
        EXPECT_EQ(TEditorDriver::Read(Editor.Buffer().FileName()), Editor.Text());
        Editor.Close();
    }
}

// --- What is seen -----------------------------------------------------------------------------

std::string Lines(int count) {
    std::string text;
    for (int i = 1; i < count; ++i) text += std::to_string(i) + "\r\n";
    return text;
}

TEST_P(EditorContract, TheRowsThatAreSeen) {
    Editor.Open(Lines(300));
    const int rows = Editor.Height();
    const auto scroll = [&](int by) { return [=, this] { Editor.Api()->Scroll(by, 0); }; };
    const auto press = [&](const char* key) { return [=, this] { Editor.Do(key); }; };
    const struct {
        std::function<void()> Do;
        int Top;
    } steps[] = {
        {scroll(-2), 1},
        {scroll(30), 31},
        {[&] { Editor.Api()->GetPosition()->Move(200, 3); }, 31}, // scrolls nothing
        {press("Right"), 200 - rows + 1},
        {press("PgUp"), 200 - 2 * rows + 1},
        {press("Shift+PgDown"), 200 - rows + 1},
        {press("Ctrl+Shift+."), 200 - rows + 3}, // the pack keeps away from the edges
        {press("Ctrl+End"), 300 - rows + 1},
        {scroll(1'000'000), 300},
        {press("Up"), 299},
        {press("Ctrl+Home"), 1},
        {scroll(100), 101},
        {press("Ctrl+A"), 300 - rows + 1},
        {press("Del"), 1},
    };
    int number = 0;
    for (const auto& [run, top] : steps) {
        SCOPED_TRACE(number++);
        Editor.Run(run);
        EXPECT_EQ(Editor.Api()->GetTopRow(), top);
    }
}

TEST_P(EditorContract, EachFileKeepsItsPlaceAndItsUndo) {
    const std::string_view names[] = {"A.pas", "B.cpp", "C.pas"};
    int row = 20;
    for (const std::string_view name : names) {
        Editor.Open(Lines(200 + row), name);
        Editor.Run([&] { Editor.View().GoTo({row += 30, 2}); });
        Editor.Do("'x");
        Editor.Do("Shift+Left");
        Editor.Run([&] { Editor.Api()->Scroll(row / 10, 2); });
    }
    std::vector<std::string> before;
    const auto seen = [&] {
        return Editor.Seen() + std::to_string(Editor.View().TopRow()) + "," +
               std::to_string(Editor.View().LeftColumn());
    };
    for (int round = 0; round < 2; ++round)
        for (std::size_t i = 0; i < 3; ++i) {
            Editor.Run([&] { Editor.Ide().ActivateTab(names[i]); });
            if (round == 0)
                before.push_back(seen());
            else
                EXPECT_EQ(seen(), before[i]);
        }
    EXPECT_NE(before[0].substr(before[0].find('|')), before[2].substr(before[2].find('|')));
    for (const std::string_view name : names) {
        Editor.Run([&] { Editor.Ide().ActivateTab(name); });
        Editor.Do("Ctrl+Z");
        EXPECT_FALSE(Editor.Buffer().Modified());
        Editor.Close();
        Editor.Agree();
    }
}

TEST_P(EditorContract, AFileThatComesInThePlaceOfAnother) {
    for (const std::string_view text : {"one", "two", "six"}) {
        Editor.Open(text, std::string(text) + ".pas");
        EXPECT_EQ(Editor.Seen(), std::string(text) + "|1:1");
        Editor.Close(); // and nothing is shown before the next one is open
    }
}

// --- Anything -----------------------------------------------------------------------------------

/// What comes of many steps chosen by chance, after each of them.
std::vector<std::string> Walk(TEditorDriver& editor, unsigned seed) {
    static const char* const keys[] = {"Left",
                                       "Right",
                                       "Up",
                                       "Down",
                                       "Home",
                                       "End",
                                       "Shift+Left",
                                       "Shift+Right",
                                       "Shift+Up",
                                       "Shift+Down",
                                       "Shift+End",
                                       "Alt+Shift+Left",
                                       "Alt+Shift+Right",
                                       "Alt+Shift+Up",
                                       "Alt+Shift+Down",
                                       "Ctrl+A",
                                       "Ctrl+X",
                                       "Ctrl+C",
                                       "Ctrl+V",
                                       "Ctrl+V",
                                       "Del",
                                       "Backspace",
                                       "Return",
                                       "Return",
                                       "Tab",
                                       "'a b",
                                       ("'" A_UML),
                                       "'\xE2\x82\xAC\xF0\x9D\x84\x9E",
                                       "Ctrl+.",
                                       "Ctrl+Shift+.",
                                       "Ctrl+,",
                                       "Ctrl+Shift+,",
                                       "Ctrl+;",
                                       "Ctrl+Z",
                                       "Ctrl+Z",
                                       "Ctrl+Shift+Z"};
    std::mt19937 random(seed);
    const auto any = [&](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    editor.Open("begin\r\n\tx := 1;\n  " A_UML STRAY "\ty\rend.\r\n\xE2\x82\xAC\xE2\x82 z");
    std::vector<std::string> seen;
    while (seen.size() < 300 && !testing::Test::HasFailure()) {
        const auto place = [&] {
            const TEditText& text = editor.Buffer().Text();
            return PosSeenAt(text, 1 + any(text.LineCount()), 1 + any(20));
        };
        const int key = any(static_cast<int>(std::size(keys)) + 6);
        if (key < static_cast<int>(std::size(keys)))
            editor.Do(keys[key]);
        else
            editor.Run([&] {
                const TTextPos from = place(), to = place();
                editor.View().MoveTo(from);
                if (key % 3 > 0)
                    editor.View().ExtendTo(to, key % 3 == 1 ? btColumn : btNonInclusive);
                editor.View().ScrollIntoView();
            });
        seen.push_back((key < static_cast<int>(std::size(keys)) ? keys[key] : "select") +
                       (": " + editor.Seen()));
    }
    return seen;
}

TEST(EditorsTogether, DoTheSameWhateverIsDone) {
    for (unsigned seed = 1; seed <= 5 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        const std::vector<std::string> expected = Walk(*MakeEditor(false), seed);
        const std::vector<std::string> seen = Walk(*MakeEditor(true), seed);
        for (std::size_t i = 0; i < seen.size() && !HasFailure(); ++i)
            EXPECT_EQ(seen[i], expected[i]) << "step " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Both, EditorContract, testing::Bool(),
                         [](const auto& info) { return info.param ? "Desktop" : "Headless"; });

} // namespace
} // namespace tarn
