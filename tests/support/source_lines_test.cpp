// Finding lines and dropping blank ones.

#include "qsSourceLines.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

using TLines = std::vector<std::string>;

TLines SourceLinesOf(const TStrings& strings) {
    TLines lines;
    for (int i = 0; i < strings.Count(); ++i) lines.push_back(strings.Get(i));
    return lines;
}

TEST(SourceLines, SkipBlankLines) {
    const TStringList list{"", "a", " \t", "\x01", "b", ""};
    const struct {
        int Index;
        bool Found;
        int After;
    } cases[] = {{0, true, 1},  {1, true, 1},  {2, true, 4},   {4, true, 4},
                 {6, false, 6}, {9, false, 9}, {-1, false, -1}};
    for (const auto& [start, found, after] : cases) {
        int index = start;
        EXPECT_EQ(SkipBlankLines(list, index), found) << start;
        EXPECT_EQ(index, after) << start;
    }
    int index = 5;
    EXPECT_THROW(SkipBlankLines(list, index), EStringListError);
    EXPECT_EQ(index, 5);
}

TEST(SourceLines, DeleteBlankLines) {
    const struct {
        int Index;
        bool Found;
        TLines After;
    } cases[] = {
        {0, true, {"a", "", " ", "b", ""}},      {1, true, {"", "a", "", " ", "b", ""}},
        {2, true, {"", "a", "b", ""}},           {5, false, {"", "a", "", " ", "b"}},
        {6, false, {"", "a", "", " ", "b", ""}}, {-1, false, {"", "a", "", " ", "b", ""}},
    };
    for (const auto& [start, found, after] : cases) {
        TStringList list{"", "a", "", " ", "b", ""};
        int index = start;
        EXPECT_EQ(DeleteBlankLines(list, index), found) << start;
        EXPECT_EQ(index, start);
        EXPECT_EQ(SourceLinesOf(list), after) << start;
    }
}

TEST(SourceLines, LongBlankRunsGoWithOneMoveOfTheRest) {
    TStringList list;
    TObject companion;
    list.Add("a");
    for (int i = 0; i < 100000; ++i) list.Add(" ");
    for (int i = 0; i < 100000; ++i) list.AddObject("b", &companion);
    int index = 1;
    EXPECT_TRUE(DeleteBlankLines(list, index));
    ASSERT_EQ(list.Count(), 100001);
    EXPECT_EQ(list.Get(0), "a");
    for (int i = 1; i < list.Count(); ++i) {
        ASSERT_EQ(list.Get(i), "b");
        ASSERT_EQ(list.GetObject(i), &companion);
    }
    TStringList sorted;
    for (int i = 0; i < 20; ++i) sorted.Add(std::string(static_cast<std::size_t>(i), ' '));
    sorted.Add("b");
    sorted.SetSorted(true);
    index = 0;
    EXPECT_TRUE(DeleteBlankLines(sorted, index));
    EXPECT_EQ(SourceLinesOf(sorted), TLines{"b"});
}

TEST(SourceLines, FindLine) {
    const struct {
        char Char;
        bool Found;
        int Index, After, Pos; // Pos -7: left as it was
        TLines Lines;          // blank lines met on the way are gone
    } cases[] = {
        {';', true, 0, 1, 5, {"begin", "a; b;", "", "c;", ""}}, // the last one in the line
        {';', true, 3, 3, 2, {"", "begin", "a; b;", "c;", ""}},
        {'#', false, 0, 3, 0, {"begin", "a; b;", "c;"}},
        {';', false, 5, 5, -7, {"", "begin", "a; b;", "", "c;"}},
        {';', false, 9, 9, -7, {"", "begin", "a; b;", "", "c;", ""}},
        {';', false, -1, -1, -7, {"", "begin", "a; b;", "", "c;", ""}},
    };
    for (const auto& [c, found, start, after, expectedPos, lines] : cases) {
        TStringList list{"", "begin", "a; b;", "", "c;", ""};
        int index = start;
        int pos = -7;
        EXPECT_EQ(FindLine(list, c, index, pos), found) << start;
        EXPECT_EQ(index, after) << start;
        EXPECT_EQ(pos, expectedPos) << start;
        EXPECT_EQ(SourceLinesOf(list), lines) << start;
    }
}

TEST(SourceLines, FindLineEx) {
    TStringList list{"(*", " ", "a *) b *)", "*)", "\t"};
    int index = 0;
    int pos = 0;
    EXPECT_TRUE(FindLineEx(list, "*)", index, pos));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(pos, 8);
    index = 2;
    EXPECT_FALSE(FindLineEx(list, "(*", index, pos));
    EXPECT_EQ(SourceLinesOf(list), (TLines{"(*", "a *) b *)", "*)"}));
}

TEST(SourceLines, FindWordInLines) {
    const TStringList list{"unit A;", "", "uses B;", "  End. "};
    int index = 0;
    EXPECT_TRUE(FindWordInLines("USES", list, index));
    EXPECT_EQ(index, 2);
    EXPECT_TRUE(FindWordInLines("end.", list, index));
    EXPECT_EQ(index, 3);
    index = 1;
    EXPECT_FALSE(FindWordInLines("unit", list, index));
    EXPECT_EQ(index, 1);
    index = 0;
    EXPECT_THROW(FindWordInLines("x", TStringList{"a b", " "}, index), EStringListError);
}

} // namespace
} // namespace tarn
