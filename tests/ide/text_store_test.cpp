#include "TextStore/TEditText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using TLines = std::vector<std::string>;

// ---- the oracle: the same rules on a plain string, written for clarity alone ----

struct TPlainLine {
    std::size_t Start;
    std::string Text;
    bool operator==(const TPlainLine&) const = default;
};
using TPlainLines = std::vector<TPlainLine>;

void PrintTo(const TPlainLine& line, std::ostream* out) {
    *out << line.Start << ":" << ::testing::PrintToString(line.Text);
}

TPlainLines SplitPlain(const std::string& text) {
    TPlainLines lines{{0, ""}};
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\r' && text[at] != '\n') {
            lines.back().Text += text[at];
            continue;
        }
        if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ++at;
        lines.push_back({at + 1, ""});
    }
    return lines;
}

std::string ConvertPlain(const std::string& text, TLineBreak lineBreak) {
    std::string result;
    for (const TPlainLine& line : SplitPlain(text)) {
        if (line.Start > 0) result += LineBreakText(lineBreak);
        result += line.Text;
    }
    return result;
}

TPlainLines LinesOf(const TEditText& text) {
    TPlainLines lines;
    for (int row = 1; row <= text.LineCount(); ++row)
        lines.push_back({text.LineStart(row), text.LineText(row)});
    return lines;
}

/// The whole state of a text against the oracle's: bytes, pieces, line starts, positions.
void ExpectIs(const TEditText& text, const std::string& expected) {
    ASSERT_EQ(text.Text(), expected);
    const auto chunks = text.Chunks();
    ASSERT_EQ(std::string(chunks[0]).append(chunks[1]), expected);
    const TPlainLines lines = SplitPlain(expected);
    ASSERT_EQ(LinesOf(text), lines) << ::testing::PrintToString(expected);
    std::size_t line = 0;
    for (std::size_t at = 0; at <= expected.size(); ++at) {
        while (line + 1 < lines.size() && lines[line + 1].Start <= at) ++line;
        const TTextPos pos{static_cast<int>(line) + 1,
                           static_cast<int>(at - lines[line].Start) + 1};
        ASSERT_EQ(text.PosAt(at), pos) << "offset " << at;
        ASSERT_EQ(text.OffsetAt(pos), std::min(at, lines[line].Start + lines[line].Text.size()));
    }
}

std::string RandomText(std::mt19937& random, std::string_view alphabet, std::size_t maxSize) {
    std::string text(random() % (maxSize + 1), ' ');
    for (char& byte : text) byte = alphabet[random() % alphabet.size()];
    return text;
}

// ---- line breaks ----

TEST(TextStore, SplitsLinesAtEveryKindOfBreak) {
    const std::pair<std::string, TLines> cases[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a\r\n", {"a", ""}},
        {"a\r\nb", {"a", "b"}},
        {"a\rb\nc", {"a", "b", "c"}},
        {"\r\r\n\n", {"", "", "", ""}},
        {"\n\r", {"", "", ""}},
        {"a\0b\r\n\xFF\xFE"s, {"a\0b"s, "\xFF\xFE"}},
        {"1234567\r\n12345678\r\n", {"1234567", "12345678", ""}},   // breaks across words of 8
        {"\x8A\x8D\x0B\x0C\x0E\x09", {"\x8A\x8D\x0B\x0C\x0E\x09"}}, // a bit away from a break
    };
    for (const auto& [text, lines] : cases) {
        const TEditText store(text);
        TLines got;
        for (const TPlainLine& line : LinesOf(store)) got.push_back(line.Text);
        EXPECT_EQ(got, lines) << ::testing::PrintToString(text);
    }
}

TEST(TextStore, TakesTheMostFrequentBreakAsPrevailing) {
    const std::pair<std::string, TLineBreak> cases[] = {
        {"", lbCrLf},         {"abc", lbCrLf},        {"\n", lbLf},
        {"\r", lbCr},         {"a\r\nb\n", lbCrLf},   {"\n\r", lbLf},
        {"\r\r\n", lbCrLf},   {"\r\n\r\r", lbCr},     {"\r\n\n\nx", lbLf},
        {"\r\n\n\r", lbCrLf}, {"\n\n\r\r\r\n", lbLf}, {"\r\r\n\r\n\n\n\r\r", lbCr},
    };
    for (const auto& [text, lineBreak] : cases)
        EXPECT_EQ(TEditText(text).LineBreak(), lineBreak) << ::testing::PrintToString(text);
}

TEST(TextStore, KeepsThePrevailingBreakOfTheLoadedText) {
    TEditText text("a\n");
    text.Replace(0, 2, "\r\n\r\n");
    text.Replace(0, 0, "x\ry\r\n", brConvert);
    EXPECT_EQ(text.Text(), "x\ny\n\r\n\r\n");
}

TEST(TextStore, CountsAndConvertsBreaksLikeTheOracle) {
    std::mt19937 random(11);
    const std::string_view alphabets[] = {"\r\n", "\n", "\r\nab\x0B\x0C\x8A\x8D"};
    for (int run = 0; run < 600; ++run) {
        const std::string text = RandomText(random, alphabets[run % 3], 900);
        for (const TLineBreak lineBreak : {lbCrLf, lbLf, lbCr}) {
            const std::string expected = ConvertPlain(text, lineBreak);
            const TBreakCounts counts = CountBreaks(text);
            std::string got(counts.SizeConverted(text.size(), lineBreak), '?');
            ASSERT_EQ(got.size(), expected.size());
            CopyConverted(text, lineBreak, got.data());
            ASSERT_EQ(got, expected);
            ASSERT_EQ(counts.IsOnly(lineBreak), text == expected);
            ASSERT_EQ(counts.Total() + 1, SplitPlain(text).size());
        }
    }
}

TEST(TextStore, JoinsAndSplitsPairsAtTheBordersOfAnEdit) {
    struct TCase {
        std::string Text;
        std::size_t From, To;
        std::string NewText;
    };
    const TCase cases[] = {
        {"a\rb", 2, 2, "\n"},       // a pair is made behind a CR
        {"a\nb", 1, 1, "\r"},       // and before an LF
        {"a\r\nb", 2, 2, "x"},      // a pair is torn by an insertion
        {"a\r\nb", 2, 3, ""},       // loses its LF
        {"a\r\nb", 1, 2, ""},       // loses its CR
        {"a\rx\nb", 2, 3, ""},      // a removal makes a pair
        {"\r\n\r\n", 1, 3, ""},     // the halves of two pairs make one
        {"\r\n\r\n", 1, 3, "\n\r"}, // the same bytes once more
        {"\r\n", 1, 1, "\r\n"},     // a pair within a pair
        {"\n", 0, 0, "\r"},         {"\r", 1, 1, "\n"}, {"\r\n", 0, 2, ""},
    };
    for (const TCase& edit : cases) {
        TEditText text(edit.Text);
        std::string expected = edit.Text;
        expected.replace(edit.From, edit.To - edit.From, edit.NewText);
        text.Replace(edit.From, edit.To, edit.NewText);
        ExpectIs(text, expected);
        TViewState view;
        text.Undo(view);
        ExpectIs(text, edit.Text);
    }
}

// ---- positions ----

TEST(TextStore, ClampsPositions) {
    const TEditText text("ab\tc\r\n\nxyz");
    const std::pair<TTextPos, std::size_t> offsets[] = {
        {{1, 1}, 0},  {{1, 4}, 3}, {{1, 5}, 4},  {{1, 6}, 4},  {{1, 999}, 4},
        {{2, 1}, 6},  {{2, 7}, 6}, {{3, 1}, 7},  {{3, 4}, 10}, {{3, 99}, 10},
        {{4, 1}, 10}, {{0, 9}, 0}, {{-3, 1}, 0}, {{1, -5}, 0}, {{3, 0}, 7},
    };
    for (const auto& [pos, offset] : offsets)
        EXPECT_EQ(text.OffsetAt(pos), offset) << pos.Row << ":" << pos.Col;
    EXPECT_EQ(text.PosAt(5), (TTextPos{1, 6})) << "between CR and LF";
    EXPECT_EQ(text.PosAt(1000), (TTextPos{3, 4}));
    EXPECT_EQ(text.CharAt(2), '\t');
    EXPECT_EQ(text.Text(1, 6), "b\tc\r\n");
}

TEST(TextStore, RefusesWhatLiesOutsideTheText) {
    TEditText text("ab\ncd");
    EXPECT_THROW(text.LineStart(0), std::out_of_range);
    EXPECT_THROW(text.LineText(3), std::out_of_range);
    EXPECT_THROW(text.CharAt(5), std::out_of_range);
    EXPECT_THROW(text.Text(3, 2), std::out_of_range);
    EXPECT_THROW(text.Text(0, 6), std::out_of_range);
    EXPECT_THROW(text.Replace(4, 6, "x"), std::out_of_range);
    EXPECT_THROW(text.Replace(2, 1, "x"), std::out_of_range);
    ExpectIs(text, "ab\ncd");
    EXPECT_FALSE(text.CanUndo());
}

// ---- undo ----

TViewState ViewAt(int row, int col) {
    return {.Cursor = {row, col}};
}

/// One command: a group around one replacement.
void Command(TEditText& text, std::size_t from, std::size_t to, std::string_view newText,
             TGroupKind kind = gkCommand) {
    text.BeginGroup({.Cursor = text.PosAt(to)}, kind);
    const std::size_t end = text.Replace(from, to, newText);
    text.EndGroup({.Cursor = text.PosAt(end)});
}

void Type(TEditText& text, std::size_t at, std::string_view keys) {
    for (const char key : keys) {
        Command(text, at, at, {&key, 1}, gkTyping);
        ++at;
    }
}

/// The texts that one undo after the other brings up, the present one first.
TLines UndoAll(TEditText& text) {
    TLines texts{text.Text()};
    TViewState view;
    while (text.Undo(view)) texts.push_back(text.Text());
    return texts;
}

TEST(TextStoreUndo, BringsTextCursorAndBlockBackAsOneStep) {
    TEditText text("one\ntwo\nthree\n");
    const TViewState before{{3, 1}, {1, 1}, {3, 1}, 2, true};
    const TViewState after{{3, 9}, {1, 2}, {3, 2}, 2, true};
    text.BeginGroup(before);
    text.Replace(0, 0, " ");
    text.BeginGroup(ViewAt(9, 9)); // what a part of the command saw does not matter
    text.Replace(5, 5, " ");
    text.EndGroup(ViewAt(8, 8));
    text.Replace(0, 4, "");
    text.EndGroup(after);
    EXPECT_EQ(text.Text(), "\n two\nthree\n");

    TViewState view;
    EXPECT_FALSE(text.Redo(view));
    ASSERT_TRUE(text.Undo(view));
    ExpectIs(text, "one\ntwo\nthree\n");
    EXPECT_EQ(view, before);
    EXPECT_FALSE(text.Undo(view));
    EXPECT_EQ(view, before) << "untouched when there is nothing to undo";
    ASSERT_TRUE(text.Redo(view));
    ExpectIs(text, "\n two\nthree\n");
    EXPECT_EQ(view, after);
}

TEST(TextStoreUndo, MakesAStepOfAnEditOutsideAGroup) {
    TEditText text("ab\ncd");
    text.Replace(1, 4, "\n\nx");
    TViewState view;
    ASSERT_TRUE(text.Undo(view));
    EXPECT_EQ(view, ViewAt(1, 2));
    ASSERT_TRUE(text.Redo(view));
    EXPECT_EQ(view, ViewAt(3, 2));
}

TEST(TextStoreUndo, LeavesNoStepOfAGroupThatChangesNothing) {
    TEditText text("b\r\na\r\n");
    Command(text, 0, 0, "");
    Command(text, 0, 6, "b\r\na\r\n");
    text.BeginGroup({});
    text.Replace(3, 3, "xyz");
    text.Replace(3, 6, "");
    text.EndGroup({});
    EXPECT_EQ(UndoAll(text), (TLines{"b\r\na\r\n"}));
    EXPECT_FALSE(text.Modified());
    Command(text, 0, 6, "b\r\nA\r\n");
    EXPECT_EQ(UndoAll(text), (TLines{"b\r\nA\r\n", "b\r\na\r\n"}));
}

TEST(TextStoreUndo, JoinsTypingUntilSomethingComesBetween) {
    struct TCase {
        const char* What;
        void (*Between)(TEditText&);
        TLines Texts;
    };
    const TCase cases[] = {
        {"nothing", [](TEditText&) {}, {"abcd-", "-"}},
        {"cursor moved away",
         [](TEditText& text) { Type(text, 3, "!"); },
         {"abcd-!", "ab-!", "ab-", "-"}},
        {"a command",
         [](TEditText& text) { Command(text, 2, 3, "+"); },
         {"abcd+", "ab+", "ab-", "-"}},
        {"a command that ends where the typing goes on",
         [](TEditText& text) { Command(text, 1, 2, "B"); },
         {"aBcd-", "aB-", "ab-", "-"}},
        {"a command without effect",
         [](TEditText& text) { Command(text, 0, 0, ""); },
         {"abcd-", "ab-", "-"}},
        {"the editor says so", [](TEditText& text) { text.EndTyping(); }, {"abcd-", "ab-", "-"}},
        {"saving", [](TEditText& text) { text.MarkSaved(); }, {"abcd-", "ab-", "-"}},
        {"undo and redo",
         [](TEditText& text) {
             TViewState view;
             text.Undo(view);
             text.Redo(view);
         },
         {"abcd-", "ab-", "-"}},
        {"a typed character taken back",
         [](TEditText& text) {
             Command(text, 1, 2, "", gkTyping);
             Type(text, 1, "b");
         },
         {"abcd-", "-"}},
    };
    for (const TCase& test : cases) {
        TEditText text("-");
        Type(text, 0, "ab");
        test.Between(text);
        Type(text, 2, "cd");
        EXPECT_EQ(UndoAll(text), test.Texts) << test.What;
    }
}

TEST(TextStoreUndo, KnowsTheSavedState) {
    TEditText text("x");
    TViewState view;
    const auto modified = [&](auto step) {
        step();
        return text.Modified();
    };
    const auto undo = [&] { text.Undo(view); };
    const auto redo = [&] { text.Redo(view); };
    const auto edit = [&] { Command(text, 0, 0, "a"); };
    const auto editOther = [&] { Command(text, 0, 0, "b"); };
    const auto save = [&] { text.MarkSaved(); };
    EXPECT_FALSE(text.Modified());
    EXPECT_TRUE(modified(edit));
    EXPECT_FALSE(modified(undo));
    EXPECT_TRUE(modified(redo));
    EXPECT_FALSE(modified(save));
    EXPECT_TRUE(modified(edit));
    EXPECT_FALSE(modified(undo));
    EXPECT_TRUE(modified(undo));
    EXPECT_TRUE(modified(editOther)) << "as many steps as when saved, but another text";
    EXPECT_TRUE(modified(undo)) << "the saved text can no longer be reached";
    EXPECT_FALSE(modified(save));
    text.BeginGroup({});
    EXPECT_FALSE(text.Modified()) << "a group alone is no change";
    EXPECT_TRUE(modified([&] { text.Replace(0, 0, "y"); })) << "within the group";
    text.EndGroup({});
    EXPECT_FALSE(modified(undo));
    text.MarkModified();
    EXPECT_TRUE(text.Modified());
    EXPECT_TRUE(modified(redo));
    EXPECT_FALSE(modified(save));
}

TEST(TextStoreUndo, RefusesUndoAndSavingInAnOpenGroup) {
    TEditText text("x");
    TViewState view;
    EXPECT_THROW(text.EndGroup({}), std::logic_error);
    text.BeginGroup({});
    text.Replace(0, 1, "y");
    EXPECT_THROW(text.Undo(view), std::logic_error);
    EXPECT_THROW(text.Redo(view), std::logic_error);
    EXPECT_THROW(text.MarkSaved(), std::logic_error);
    text.EndGroup({});
    EXPECT_EQ(UndoAll(text), (TLines{"y", "x"}));
}

// ---- everything at once, against the oracle ----

struct TRandomEdits {
    const char* Name;
    std::string_view Alphabet;
    std::size_t LoadSize;
    std::size_t EditSize;
    std::size_t Spread; // bytes around the last edit where the next one starts
    int Commands;
};

/// A text beside the texts and views that its steps lead through.
class TTwin {
public:
    TTwin(const TRandomEdits& param, unsigned seed)
        : FParam(param), FRandom(seed), FTexts{RandomText(FRandom, param.Alphabet, param.LoadSize)},
          FText(FTexts[0]) {}

    void DoCommand() {
        std::string plain = FTexts[FPresent];
        FText.BeginGroup(FViews[FPresent]);
        const std::size_t edits = FRandom() % 4;
        for (std::size_t edit = 0; edit < edits; ++edit) DoEdit(plain);
        if (edits > 0 && plain == FTexts[FPresent]) { // a step that shows
            FText.Replace(plain.size(), plain.size(), "#");
            plain += '#';
        }
        const TViewState after = ViewAt(static_cast<int>(FRandom() % 1000), 1);
        FText.EndGroup(after);
        if (edits == 0) return;
        ++FPresent;
        FTexts.resize(FPresent);
        FViews.resize(FPresent);
        FTexts.push_back(plain);
        FViews.push_back(after);
    }
    void Undo() {
        const bool can = FPresent > 0;
        if (can) --FPresent;
        ExpectStep(&TEditText::Undo, can);
    }
    void Redo() {
        const bool can = FPresent + 1 < FTexts.size();
        if (can) ++FPresent;
        ExpectStep(&TEditText::Redo, can);
    }
    void UndoAndRedoAll() {
        while (FPresent > 0) Undo();
        Undo();
        while (FPresent + 1 < FTexts.size()) Redo();
        Redo();
    }
    void Random() {
        switch (FRandom() % 8) {
        case 0:
            return Undo();
        case 1:
            return Redo();
        default:
            DoCommand();
        }
        Check();
    }

private:
    void DoEdit(std::string& plain) {
        const std::size_t low = FPlace - std::min(FPlace, FParam.Spread);
        const std::size_t from = std::min(low + FRandom() % (2 * FParam.Spread), plain.size());
        const std::size_t to = std::min(from + FRandom() % (FParam.EditSize + 1), plain.size());
        const std::string newText = RandomText(FRandom, FParam.Alphabet, FParam.EditSize);
        const TBreakRule rule = FRandom() % 3 == 0 ? brConvert : brKeep;
        const std::string inserted =
            rule == brConvert ? ConvertPlain(newText, FText.LineBreak()) : newText;
        plain.replace(from, to - from, inserted);
        ASSERT_EQ(FText.Replace(from, to, newText, rule), from + inserted.size());
        FPlace = from;
    }
    void ExpectStep(bool (TEditText::*step)(TViewState&), bool can) {
        TViewState view = FViews[FPresent];
        view.BlockStyle = can ? 99 : view.BlockStyle; // to be overwritten
        ASSERT_EQ((FText.*step)(view), can);
        EXPECT_EQ(view, FViews[FPresent]);
        Check();
    }
    void Check() {
        const std::string& now = FTexts[FPresent];
        ExpectIs(FText, now);
        EXPECT_EQ(FText.Modified(), FPresent > 0);
        // Who follows the text looks only at what is not said to be unchanged.
        const TUnchanged same = FText.UnchangedSince(FSeenAt);
        const std::size_t most = std::min(now.size(), FSeen.size());
        const std::size_t front = std::min(same.Front, most);
        const std::size_t back = std::min(same.Back, most - front);
        ASSERT_EQ(now.substr(0, front), FSeen.substr(0, front));
        ASSERT_EQ(now.substr(now.size() - back), FSeen.substr(FSeen.size() - back));
        if (FRandom() % 3 > 0) return;
        FSeen = now;
        FSeenAt = FText.Revision();
    }

    const TRandomEdits& FParam;
    std::mt19937 FRandom;
    TLines FTexts; // after each step that stands or can be done again; the loaded one first
    std::vector<TViewState> FViews{{}};
    TEditText FText;
    std::string FSeen; ///< by one who follows the text, and what it was called then
    std::uint64_t FSeenAt = 0;
    std::size_t FPresent = 0;
    std::size_t FPlace = 0;
};

TEST(TextStore, AgreesWithAPlainStringThroughEditsUndoAndRedo) {
    const TRandomEdits table[] = {
        {"almost only breaks", "\r\n", 12, 4, 20, 120},
        {"a few bytes between breaks", "\r\n\r\nab\0\xFF"sv, 60, 12, 30, 120},
        {"many lines, edits near each other", "\r\n     x", 1500, 8, 25, 60},
        {"many lines, edits all over", "\n     \r", 1500, 8, 900, 60},
        {"blocks of lines", "\r\nabcdefghijklmnopqrstu", 1500, 700, 900, 60},
    };
    for (const TRandomEdits& param : table) {
        for (unsigned seed = 1; seed <= 5; ++seed) {
            SCOPED_TRACE(std::string(param.Name) + ", seed " + std::to_string(seed));
            TTwin twin(param, seed);
            for (int command = 0; command < param.Commands; ++command) twin.Random();
            twin.UndoAndRedoAll();
            if (HasFailure()) return;
        }
    }
}

TEST(TextStore, TellsWhereItHasChangedSinceARevision) {
    TEditText text(std::string(1000, 'a'));
    constexpr TUnchanged nothing;
    EXPECT_EQ(text.UnchangedSince(text.Revision()), nothing);
    const std::uint64_t loaded = text.Revision();
    text.Replace(100, 110, "bbb"); // from both ends: 100 and 890 bytes
    const std::uint64_t first = text.Revision();
    text.BeginGroup({});
    for (int i = 0; i < 100; ++i) text.Replace(800, 800, "c");
    text.Replace(500, 500, "d");
    text.EndGroup({});
    EXPECT_EQ(text.UnchangedSince(first), (TUnchanged{500, 193})); // the command's alone
    EXPECT_EQ(text.UnchangedSince(loaded), (TUnchanged{100, 193}));
    EXPECT_EQ(text.UnchangedSince(text.Revision()), nothing);
    const std::uint64_t second = text.Revision();
    TViewState view;
    text.Undo(view);
    EXPECT_EQ(text.UnchangedSince(second), (TUnchanged{500, 193}));
    // Of what lies many commands back, less is said than is true; never more.
    const std::uint64_t undone = text.Revision();
    for (int i = 0; i < 40; ++i) text.Replace(900, 900, "e");
    EXPECT_EQ(text.UnchangedSince(undone), (TUnchanged{0, 0}));
    EXPECT_EQ(text.UnchangedSince(text.Revision() - 3), (TUnchanged{900, 130}));
}

} // namespace
} // namespace tarn
