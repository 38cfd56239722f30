// Finding, copying up to marks, comparing, replacing, words.

#include "qsStrUtils.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>

namespace tarn {
namespace {

TEST(StrUtils, FindGivesPositionAndSuccess) {
    const std::string_view s = "abCabC";
    const TCharSet bs = "bB";
    const struct {
        bool (*Find)(std::string_view s, const TCharSet& set, int& pos);
        int Pos;
    } cases[] = {
        {[](auto t, auto&, int& pos) { return FindCharPos(t, 'a', pos, 2); }, 4},
        {[](auto t, auto&, int& pos) { return FindCharPos(t, 'x', pos); }, 0},
        {[](auto t, auto&, int& pos) { return FindCharPosI(t, 'c', pos); }, 3},
        {[](auto t, auto&, int& pos) { return FindCharPosR(t, 'a', pos); }, 4},
        {[](auto t, auto&, int& pos) { return FindCharPosRI(t, 'c', pos, 5); }, 3},
        {[](auto t, auto& set, int& pos) { return FindCharsPos(t, set, pos, 3); }, 5},
        {[](auto t, auto& set, int& pos) { return FindCharsPosR(t, set, pos, 4); }, 2},
        {[](auto t, auto&, int& pos) { return FindStrPos(t, "bC", pos, 3); }, 5},
        {[](auto t, auto&, int& pos) { return FindStrPos(t, "bc", pos); }, 0},
        {[](auto t, auto&, int& pos) { return FindStrPosI(t, "bc", pos); }, 2},
        {[](auto t, auto&, int& pos) { return FindStrPosR(t, "bC", pos); }, 5},
        {[](auto t, auto&, int& pos) { return FindStrPosRI(t, "bc", pos, 4); }, 2},
        {[](auto t, auto&, int& pos) { return FindStrPosEx(t, "Ca", pos); }, 3},
        {[](auto t, auto&, int& pos) { return FindStrPosEx(t, "", pos); }, 0},
    };
    int row = 0;
    for (const auto& [find, expected] : cases) {
        int pos = -7;
        EXPECT_EQ(find(s, bs, pos), expected != 0) << row;
        EXPECT_EQ(pos, expected) << row++;
    }
}

/// What a copy function did: its result, position and target, which began as "kept".
struct TCopied {
    bool Result;
    int Pos;
    std::string Dest;
    bool operator==(const TCopied&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const TCopied& c) {
        return out << c.Result << " at " << c.Pos << " '" << c.Dest << "'";
    }
};

template <class Copy> TCopied CopyWith(Copy copy) {
    TCopied copied{false, -7, "kept"};
    copied.Result = copy(copied.Dest, copied.Pos);
    return copied;
}

TEST(StrUtils, CopyToChar) {
    const auto forward = [](std::string_view s, char c, int start, bool ignoreCase) {
        return CopyWith([&](auto& d, int& p) { return CopyToChar(s, c, d, start, p, ignoreCase); });
    };
    const auto backward = [](std::string_view s, char c, int start, bool ignoreCase) {
        return CopyWith(
            [&](auto& d, int& p) { return CopyToCharR(s, c, d, start, p, ignoreCase); });
    };
    EXPECT_EQ(forward("ab=cd", '=', 1, false), (TCopied{true, 3, "ab"}));
    EXPECT_EQ(forward("ab=cd", '=', 3, false), (TCopied{true, 3, ""}));
    EXPECT_EQ(forward("ab=cd", 'D', 2, true), (TCopied{true, 5, "b=c"}));
    EXPECT_EQ(forward("ab=cd", 'D', 2, false), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(forward("ab=cd", '=', 4, false), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(backward("ab=cd", '=', -1, false), (TCopied{true, 3, "cd"}));
    EXPECT_EQ(backward("ab=cd", '=', 4, false), (TCopied{true, 3, "c"}));
    EXPECT_EQ(backward("ab=cd", '=', 3, false), (TCopied{true, 3, ""}));
    EXPECT_EQ(backward("ab=cd", 'B', -1, true), (TCopied{true, 2, "=cd"}));
    EXPECT_EQ(backward("ab=cd", 'B', -1, false), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(backward("ab=cd", '=', 6, false), (TCopied{false, 0, "kept"}));
}

TEST(StrUtils, CopyToChars) {
    const auto forward = [](std::string_view s, int start) {
        return CopyWith([&](auto& d, int& p) { return CopyToChars(s, ",;", d, start, p); });
    };
    const auto backward = [](std::string_view s, int start) {
        return CopyWith([&](auto& d, int& p) { return CopyToCharsR(s, ",;", d, start, p); });
    };
    EXPECT_EQ(forward("a,b;c", 3), (TCopied{true, 4, "b"}));
    EXPECT_EQ(forward("a,b;c", 5), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(backward("a,b;c", 3), (TCopied{true, 2, "b"}));
    EXPECT_EQ(backward("a,b;c", 1), (TCopied{false, 0, "kept"}));
}

TEST(StrUtils, CopyToStr) {
    const auto forward = [](std::string_view s, std::string_view sub, int start, bool ignoreCase) {
        return CopyWith(
            [&](auto& d, int& p) { return CopyToStr(s, sub, d, start, p, ignoreCase); });
    };
    const auto backward = [](std::string_view s, std::string_view sub, int start, bool ignoreCase) {
        return CopyWith(
            [&](auto& d, int& p) { return CopyToStrR(s, sub, d, start, p, ignoreCase); });
    };
    const auto first = [](std::string_view s, std::string_view sub) {
        return CopyWith([&](auto& d, int& p) { return CopyToStrEx(s, sub, d, p); });
    };
    EXPECT_EQ(forward("ab:=cd", ":=", 2, false), (TCopied{true, 3, "b"}));
    EXPECT_EQ(forward("abCd", "cD", 1, true), (TCopied{true, 3, "ab"}));
    EXPECT_EQ(forward("abCd", "cD", 1, false), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(forward("abCd", "", 3, false), (TCopied{true, 3, ""}));
    EXPECT_EQ(backward("ab:=cd", ":=", -1, false), (TCopied{true, 3, "cd"}));
    EXPECT_EQ(backward("ab:=cd", ":=", 5, false), (TCopied{true, 3, "c"}));
    EXPECT_EQ(backward("ab:=cd", ":=", 4, false), (TCopied{true, 3, ""}));
    EXPECT_EQ(backward("ab:=cd", ":=", 3, false), (TCopied{true, 3, ""})); // reaches past 3
    EXPECT_EQ(backward("ab:=cd", "B:", -1, true), (TCopied{true, 2, "=cd"}));
    EXPECT_EQ(backward("ab:=cd", ":=", 2, false), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(first("ab:=c:=", ":="), (TCopied{true, 3, "ab"}));
    EXPECT_EQ(first("ab:=c", "x"), (TCopied{false, 0, "kept"}));
    EXPECT_EQ(first("ab:=c", ""), (TCopied{false, 0, "kept"}));
}

TEST(StrUtils, CopyMayTargetItsOwnText) {
    std::string line = "first,second";
    int pos = 0;
    EXPECT_TRUE(CopyToCharR(line, ',', line, -1, pos, false));
    EXPECT_EQ(line, "second");
}

TEST(StrUtils, Comparison) {
    EXPECT_TRUE(CompStr("abc", "abd", 2));
    EXPECT_FALSE(CompStr("abc", "aBc", 3));
    EXPECT_TRUE(CompStr(nullptr, "x", 0));
    EXPECT_TRUE(CompStr("a", "b", -1));
    EXPECT_TRUE(CompStrI("abc\xB8", "aBC\xA8", 4));
    EXPECT_FALSE(CompStrI("abc", "abd", 3));
    EXPECT_TRUE(CompStrI(nullptr, nullptr, -1));
    EXPECT_TRUE(CompString("abc", "abc"));
    EXPECT_FALSE(CompString("abc", "ab"));
    EXPECT_FALSE(CompString("abc", "Abc"));
    EXPECT_TRUE(CompText("abc\xFF", "ABC\xDF"));
    EXPECT_FALSE(CompText("abc", "ABCD"));
    EXPECT_TRUE(CompText("", ""));
}

TEST(StrUtils, Replace) {
    const struct {
        std::string_view Text, Old, New;
        TReplaceParams Params;
        std::string_view FromLeft, FromRight;
    } cases[] = {
        {"aXbXc", "X", "-", {}, "a-bXc", "aXb-c"},
        {"aXbXc", "X", "-", {rpReplaceAll}, "a-b-c", "a-b-c"},
        {"aXbXc", "x", "-", {rpReplaceAll}, "aXbXc", "aXbXc"},
        {"aXbxc", "x", "-", {rpIgnoreCase}, "a-bxc", "aXb-c"},
        {"aXbxc", "x", "", {rpReplaceAll, rpIgnoreCase}, "abc", "abc"},
        {"aaa", "aa", "b", {rpReplaceAll}, "ba", "ab"}, // no occurrence overlaps another
        {"aaa", "aa", "b", {}, "ba", "ab"},
        {"ab", "a", "aa", {rpReplaceAll}, "aab", "aab"}, // inserted text is not searched
        {"bab", "b", "ab", {rpReplaceAll}, "abaab", "abaab"},
        {"abc", "", "x", {rpReplaceAll}, "abc", "abc"}, // nothing to replace
        {"", "a", "x", {rpReplaceAll}, "", ""},
        {"abc", "abc", "", {}, "", ""},
    };
    for (const auto& [text, oldText, newText, params, fromLeft, fromRight] : cases) {
        EXPECT_EQ(StrReplace(text, oldText, newText, params), fromLeft) << text << " " << oldText;
        EXPECT_EQ(StrReplaceR(text, oldText, newText, params), fromRight) << text << " " << oldText;
    }
}

std::string Reversed(std::string_view s) {
    return {s.rbegin(), s.rend()};
}

TEST(StrUtils, ReplaceFromRightIsReplaceOfTheMirroredText) {
    std::mt19937 random(11);
    const auto text = [&](unsigned most) {
        std::string s(random() % (most + 1), ' ');
        for (char& c : s) c = "abA"[random() % 3];
        return s;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::string s = text(60);
        const std::string oldText = text(3);
        const std::string newText = text(4);
        const auto params = TReplaceParams::FromMask(random() % 4);
        ASSERT_EQ(StrReplaceR(s, oldText, newText, params),
                  Reversed(StrReplace(Reversed(s), Reversed(oldText), Reversed(newText), params)))
            << s << " " << oldText << " " << newText;
    }
}

TEST(StrUtils, SkipBlanks) {
    const struct {
        std::string_view Text;
        int Start;
        bool Found;
        int Pos;
    } cases[] = {
        {"  a", 1, true, 3},  {"a b", 2, true, 3},
        {"a", -4, true, 1},   {"   ", 1, false, 4},
        {"", 1, false, 1},    {"ab", 9, false, 3},
        {"ab ", 3, false, 4}, {"\t\r\n\x01\x20!", 1, true, 6},
        {"\xA0", 1, true, 1}, {{"\0a", 2}, 1, true, 2},
    };
    for (const auto& [text, start, found, expected] : cases) {
        int pos = -7;
        EXPECT_EQ(SkipBlanks(text, pos, start), found) << text;
        EXPECT_EQ(pos, expected) << text;
    }
}

TEST(StrUtils, Words) {
    const struct {
        std::string_view Text, Word;
        int Start;
        int Pos; // -7: left as it was
    } cases[] = {
        {"  procedure Foo", "procedure", 5, 12},
        {"  Foo", "  Foo", 1, 6},
        {"  Foo", "Foo", 3, 6},
        {"  Foo", "  Foo", 0, 6},
        {"  Foo", "", 9, 6},
        {"Foo ", "Foo", 1, 4},
        {"a\tb c", "a\tb", 1, 4},
        {"\ta b", "a", 1, 3},
        {" \t ", "", 1, -7},
        {"", "", 1, -7},
    };
    for (const auto& [text, word, start, expected] : cases) {
        int pos = -7;
        EXPECT_EQ(ReadWord(text, pos, start), word) << text;
        EXPECT_EQ(pos, expected) << text;
        std::string got = "old";
        EXPECT_EQ(GetWord(text, got, pos, start), !word.empty()) << text;
        EXPECT_EQ(got, word) << text;
        EXPECT_EQ(NextWord(text, start), word) << text;
    }
}

TEST(StrUtils, FindWordInLineLooksAtTheFirstWord) {
    int pos = -7;
    EXPECT_TRUE(FindWordInLine("  Unit Foo", "uNIT", pos));
    EXPECT_EQ(pos, 7);
    EXPECT_TRUE(FindWordInLine("Foo", "foo", pos));
    EXPECT_FALSE(FindWordInLine("unit Foo", "Foo", pos));
    EXPECT_FALSE(FindWordInLine("  Foo", "Foo", pos)); // read with its blanks: no space follows
    EXPECT_FALSE(FindWordInLine("  ", "", pos));
}

TEST(StrUtils, Cut) {
    const struct {
        int Index, Count;
        std::string_view Rest, Dest;
    } cases[] = {
        {2, 2, "ade", "bc"},
        {1, 5, "", "abcde"},
        {4, 9, "abc", "de"},
        {6, 1, "abcde", ""},
        {9, 1, "abcde", ""},
        {2, 0, "abcde", ""},
        {2, -3, "abcde", ""},
        {0, 2, "bcde", "a"},
        {-5, 3, "abcde", ""},
        {2, INT_MAX, "a", "bcde"},
        {INT_MIN, INT_MIN, "abcde", ""},
    };
    for (const auto& [index, count, rest, dest] : cases) {
        std::string s = "abcde";
        std::string target = "old";
        Cut(s, index, count, target);
        EXPECT_EQ(s, rest) << index << ", " << count;
        EXPECT_EQ(target, dest) << index << ", " << count;
    }
}

} // namespace
} // namespace tarn
