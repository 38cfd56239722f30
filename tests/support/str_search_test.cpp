// Positions of characters, sets and substrings: single cases, then every search against an oracle
// that tries one position after the other.

#include "qsCaseTable.h"
#include "qsStrScan.h"
#include "qsStrSetScan.h"
#include "qsStrUtils.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

bool SameOrPartner(char a, char b) {
    return a == b || a == OtherCase(b);
}
bool Same(char a, char b) {
    return a == b;
}

template <class Matches>
int OraclePos(std::string_view s, int length, Matches matchesAt, int start, bool oneCharacter) {
    const int last = static_cast<int>(s.size()) - length + 1;
    if (start < 1 || (oneCharacter && start > static_cast<int>(s.size()))) return 0;
    for (int pos = start; pos <= last; ++pos)
        if (matchesAt(static_cast<std::size_t>(pos) - 1)) return pos;
    return 0;
}

template <class Matches>
int OraclePosR(std::string_view s, int length, Matches matchesAt, int start) {
    const int size = static_cast<int>(s.size());
    if (start > size) return 0;
    const int last = size - length + 1;
    for (int pos = start == -1 ? last : std::min(start, last); pos >= 1; --pos)
        if (matchesAt(static_cast<std::size_t>(pos) - 1)) return pos;
    return 0;
}

template <class Equal> auto SubAt(std::string_view s, std::string_view sub, Equal equal) {
    return [=](std::size_t at) {
        for (std::size_t i = 0; i < sub.size(); ++i)
            if (!equal(s[at + i], sub[i])) return false;
        return true;
    };
}

TEST(StrSearch, CaseTable) {
    for (int code = 0; code < 256; ++code) {
        int partner = code;
        if ((code >= 'a' && code <= 'z') || code >= 224) partner = code - 32;
        if ((code >= 'A' && code <= 'Z') || (code >= 192 && code <= 223)) partner = code + 32;
        if (code == 184) partner = 168;
        if (code == 168) partner = 184;
        const char c = static_cast<char>(code);
        EXPECT_EQ(CharCode(OtherCase(c)), partner) << code;
        EXPECT_EQ(FoldCase(c), FoldCase(static_cast<char>(partner))) << code;
    }
}

TEST(StrSearch, CharacterPositions) {
    const struct {
        int (*Search)(std::string_view, char, int);
        std::string_view Text;
        char Char;
        int Start;
        int Pos;
    } cases[] = {
        {CharPos, "abc", 'a', 0, 0},      {CharPos, "abc", 'c', 4, 0},
        {CharPos, "abc", 'a', 1, 1},      {CharPos, "abca", 'a', 2, 4},
        {CharPos, "abc", 'A', 1, 0},      {CharPos, "abc", 'a', -1, 0},
        {CharPos, "", 'a', 1, 0},         {CharPos, {"a\0b", 3}, '\0', 1, 2},
        {CharPosI, "abCa", 'c', 1, 3},    {CharPosI, "[{", '{', 1, 2},
        {CharPosI, "\xC6", '\xE6', 1, 1}, {CharPosI, "\xA8", '\xB8', 1, 1},
        {CharPosI, "\xB8", '\xA8', 1, 1}, {CharPosI, "abc", 'B', 4, 0},
        {CharPosR, "abca", 'a', -1, 4},   {CharPosR, "abca", 'a', 3, 1},
        {CharPosR, "abca", 'a', 5, 0},    {CharPosR, "abca", 'a', 0, 0},
        {CharPosR, "abca", 'a', -2, 0},   {CharPosR, "", 'a', -1, 0},
        {CharPosRI, "abCA", 'a', -1, 4},  {CharPosRI, "\xE6 \xC6", '\xE6', 2, 1},
    };
    for (const auto& [search, text, c, start, pos] : cases)
        EXPECT_EQ(search(text, c, start), pos) << text << " '" << c << "' from " << start;
}

TEST(StrSearch, SetPositions) {
    EXPECT_EQ(CharsPos("a;b,c", ",;"), 2);
    EXPECT_EQ(CharsPos("a;b,c", ",;", 3), 4);
    EXPECT_EQ(CharsPos("a;b,c", TCharSet()), 0);
    EXPECT_EQ(CharsPos("a;b,c", ",;", 0), 0);
    EXPECT_EQ(CharsPosR("a;b,c", ",;"), 4);
    EXPECT_EQ(CharsPosR("a;b,c", ",;", 3), 2);
    EXPECT_EQ(CharsPosR("a;b,c", ",;", 6), 0);
    EXPECT_EQ(CharsPos(std::string_view("ab\0", 3), "\0"), 3);
    EXPECT_EQ(CharsPos("xA", "a"), 0); // sets are exact
}

TEST(StrSearch, SubstringPositions) {
    const struct {
        int (*Search)(std::string_view, std::string_view, int);
        std::string_view Text;
        std::string_view Sub;
        int Start;
        int Pos;
    } cases[] = {
        {StringPos, "abcabc", "bc", 1, 2},  {StringPos, "abcabc", "bc", 3, 5},
        {StringPos, "abcabc", "bc", 6, 0},  {StringPos, "abcabc", "bc", 0, 0},
        {StringPos, "abc", "abcd", 1, 0},   {StringPos, "abc", "BC", 1, 0},
        {StringPos, "abc", "", 3, 3},       {StringPos, "abc", "", 4, 4},
        {StringPos, "abc", "", 5, 0},       {StringPos, "", "", 1, 1},
        {StringPosI, "abcABC", "BC", 3, 5}, {StringPosI, "\xC6\xA8x", "\xE6\xB8X", 1, 1},
        {StringPosR, "abcabc", "bc", 4, 2}, {StringPosR, "abcabc", "bc", -1, 5},
        {StringPosR, "abcabc", "bc", 5, 5}, {StringPosR, "abcabc", "bc", 6, 5},
        {StringPosR, "abcabc", "bc", 7, 0}, {StringPosR, "abcabc", "bc", 0, 0},
        {StringPosR, "abc", "abcd", -1, 0}, {StringPosR, "abc", "", -1, 4},
        {StringPosR, "abc", "", 2, 2},      {StringPosR, "abc", "", 0, 0},
        {StringPosR, "", "", -1, 1},        {StringPosRI, "abcABC", "bc", -1, 5},
    };
    for (const auto& [search, text, sub, start, pos] : cases)
        EXPECT_EQ(search(text, sub, start), pos) << text << " '" << sub << "' from " << start;
}

/// Texts of two to four different characters, in which nearly everything nearly matches.
class TRandomTexts {
public:
    std::string Text(std::size_t most) {
        static constexpr std::string_view alphabet = "aAb\xE6\xC6\x80";
        const std::size_t letters = 2 + Below(3);
        std::string text(Below(most + 1), ' ');
        for (char& c : text) c = alphabet[Below(letters)];
        return text;
    }
    std::size_t Below(std::size_t limit) { return FEngine() % limit; }

private:
    std::mt19937 FEngine{42};
};

TEST(StrSearch, EverySearchAgreesWithItsOracle) {
    TRandomTexts random;
    for (int round = 0; round < 20000; ++round) {
        const std::string s = random.Text(round % 10 == 0 ? 300 : 40);
        const std::string sub = random.Text(round % 3 == 0 ? 12 : 3);
        const char c = sub.empty() ? 'b' : sub.front();
        const TCharSet set{std::string_view(sub)};
        const int length = static_cast<int>(sub.size());
        const int start = static_cast<int>(random.Below(s.size() + 5)) - 2;
        SCOPED_TRACE(testing::Message() << "'" << s << "' '" << sub << "' from " << start);

        const auto charAt = [&](auto equal) { return SubAt(s, {&c, 1}, equal); };
        const auto inSet = [&](std::size_t at) { return sub.find(s[at]) != sub.npos; };
        ASSERT_EQ(CharPos(s, c, start), OraclePos(s, 1, charAt(Same), start, true));
        ASSERT_EQ(CharPosI(s, c, start), OraclePos(s, 1, charAt(SameOrPartner), start, true));
        ASSERT_EQ(CharPosR(s, c, start), OraclePosR(s, 1, charAt(Same), start));
        ASSERT_EQ(CharPosRI(s, c, start), OraclePosR(s, 1, charAt(SameOrPartner), start));
        ASSERT_EQ(CharsPos(s, set, start), OraclePos(s, 1, inSet, start, true));
        ASSERT_EQ(CharsPosR(s, set, start), OraclePosR(s, 1, inSet, start));
        const auto exact = SubAt(s, sub, Same);
        const auto folded = SubAt(s, sub, SameOrPartner);
        ASSERT_EQ(StringPos(s, sub, start), OraclePos(s, length, exact, start, false));
        ASSERT_EQ(StringPosI(s, sub, start), OraclePos(s, length, folded, start, false));
        ASSERT_EQ(StringPosR(s, sub, start), OraclePosR(s, length, exact, start));
        ASSERT_EQ(StringPosRI(s, sub, start), OraclePosR(s, length, folded, start));
    }
}

/// Nearly matching texts that are long enough for the steady search to take over.
TEST(StrSearch, NearMatchesInLongTexts) {
    const auto a = [](std::size_t count) { return std::string(count, 'a'); };
    const std::string sub = a(300) + "b" + a(300);
    const std::string upper = std::string(300, 'A') + "B" + std::string(300, 'A');
    const struct {
        std::string Text;
        int First;
        int Last;
    } cases[] = {
        {a(50000), 0, 0},
        {a(20000) + sub + a(20000), 20001, 20001},
        {sub + a(30000) + sub, 1, 30602},
        {a(30000) + "b" + a(299), 0, 0},
        {a(299) + "b" + a(30000), 0, 0},
    };
    for (const auto& [text, first, last] : cases) {
        EXPECT_EQ(StringPos(text, sub), first);
        EXPECT_EQ(StringPosI(text, upper), first);
        EXPECT_EQ(StringPosR(text, sub), last);
        EXPECT_EQ(StringPosRI(text, upper), last);
        EXPECT_EQ(StringPos(text, upper), 0);
    }
}

/// Sets of any size, over texts of any bytes that are long enough for a wide scan.
TEST(StrSearch, WideSetScan) {
    std::mt19937 random(5);
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 200, '\0');
        for (char& c : text) c = static_cast<char>(random());
        TCharSet set;
        for (auto members = random() % (round % 2 == 0 ? 4 : 40); members > 0; --members)
            set.Include(static_cast<char>(random()));
        const auto inSet = [&](std::size_t at) { return set.Contains(text[at]); };
        ASSERT_EQ(CharsPos(text, set), OraclePos(text, 1, inSet, 1, true));
        ASSERT_EQ(CharsPosR(text, set), OraclePosR(text, 1, inSet, -1));
    }
}

/// Both kinds of block must show the same matches in the same order, whichever this machine uses.
template <class Block> class StrScan : public testing::Test {};
#if defined(__SSE2__)
using TBlocks = testing::Types<scan::TWordBlock, scan::TVectorBlock>;
#else
using TBlocks = testing::Types<scan::TWordBlock>;
#endif
TYPED_TEST_SUITE(StrScan, TBlocks, );

TYPED_TEST(StrScan, ShowsEveryMatchInOrder) {
    std::mt19937 random(3);
    const scan::TAnyOf<TypeParam, 2> matcher({'\x01', '\x80'});
    for (int round = 0; round < 500; ++round) {
        std::string text(random() % 200, '\0');
        for (char& c : text) c = "\x01\x80\x81\x02\x7F\xFF"[random() % 6];
        std::vector<std::size_t> expected;
        for (std::size_t at = 0; at < text.size(); ++at)
            if (text[at] == '\x01' || text[at] == '\x80') expected.push_back(at);

        std::vector<std::size_t> shown;
        const auto show = [&](std::size_t at) {
            shown.push_back(at);
            return false;
        };
        scan::ScanUp<TypeParam>(text.data(), text.size(), matcher, show);
        ASSERT_EQ(shown, expected);
        shown.clear();
        scan::ScanDown<TypeParam>(text.data(), text.size(), matcher, show);
        ASSERT_EQ(std::vector<std::size_t>(shown.rbegin(), shown.rend()), expected);
    }
}

} // namespace
} // namespace tarn
