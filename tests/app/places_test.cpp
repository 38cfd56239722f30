#include "Places.h"
#include "app_fixture.h"

namespace tarn {
namespace {

std::string Text(TTextPos place) {
    return std::to_string(place.Row) + ":" + std::to_string(place.Col);
}
std::string Text(std::pair<TTextPos, TTextPos> range) {
    return Text(range.first) + "-" + Text(range.second);
}
std::string Text(std::pair<int, int> rows) {
    return std::to_string(rows.first) + "-" + std::to_string(rows.second);
}

/// The result of a call as text, or its error.
template <class F> std::string ResultOf(F&& call) {
    std::string result;
    const std::string error = ErrorOf([&] { result = Text(call()); });
    return error == "none" ? result : error;
}

TEST(Places, AreRowAndColumn) {
    const std::string form = "' is no place; write ROW:COLUMN";
    const std::pair<std::string, std::string> cases[] = {
        {"1:1", "1:1"},
        {"12:345", "12:345"},
        {"2147483647:1", "2147483647:1"},
        {"2147483648:1", "2 '2147483648:1" + form},
        {"0:1", "2 '0:1" + form},
        {"1:0", "2 '1:0" + form},
        {"-1:1", "2 '-1:1" + form},
        {"+1:1", "2 '+1:1" + form},
        {"1", "2 '1" + form},
        {"1:", "2 '1:" + form},
        {":1", "2 ':1" + form},
        {"1:1:1", "2 '1:1:1" + form},
        {"1: 1", "2 '1: 1" + form},
        {"", "2 '" + form},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ResultOf([&] { return ParsePlace(c.first); }), c.second) << c.first;
}

TEST(Places, RangesAreTwoPlaces) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"1:1-2:3", "1:1-2:3"},
        {"2:3-1:1", "2:3-1:1"}, // the order tells nothing
        {"1:1", "2 '1:1' is no place; write ROW:COLUMN-ROW:COLUMN"},
        {"1-2", "2 '1' is no place; write ROW:COLUMN"},
        {"1:1-2", "2 '2' is no place; write ROW:COLUMN"},
        {"1:1-2:2-3:3", "2 '2:2-3:3' is no place; write ROW:COLUMN"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ResultOf([&] { return ParseRange(c.first); }), c.second) << c.first;
}

TEST(Places, RowsAreOneOrTwoNumbers) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"3", "3-3"},
        {"3-5", "3-5"},
        {"5-3", "2 '5-3' is no place; write FIRST-LAST"},
        {"0-3", "2 '0-3' is no place; write FIRST-LAST"},
        {"3-", "2 '3-' is no place; write FIRST-LAST"},
        {"a", "2 'a' is no place; write FIRST-LAST"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ResultOf([&] { return ParseRows(c.first); }), c.second) << c.first;
}

TEST(Places, StandInTheTextUpToTheEndOfTheirLine) {
    const TEditText text("ab\r\n\nc");
    for (const TTextPos inside : {TTextPos{1, 1}, {1, 3}, {2, 1}, {3, 2}})
        EXPECT_EQ(ErrorOf([&] { CheckPlace(text, inside); }), "none") << Text(inside);
    for (const TTextPos outside : {TTextPos{1, 4}, {2, 2}, {3, 3}, {4, 1}})
        EXPECT_EQ(ErrorOf([&] { CheckPlace(text, outside); }),
                  "1 place " + Text(outside) + " is outside the text of 3 lines");
}

TEST(Places, WholeRowsTakeTheirLineEndsAlong) {
    const struct {
        std::string_view Text;
        int First, Last;
        std::string_view Expected;
    } cases[] = {
        {"ab\r\ncd\r\n", 1, 1, "1:1-2:1"},
        {"ab\r\ncd\r\n", 1, 2, "1:1-3:1"},
        {"ab\r\ncd\r\n", 2, 3, "2:1-3:1"}, // the empty line behind the last line end
        {"ab\r\ncd", 2, 2, "2:1-2:3"},
        {"", 1, 1, "1:1-1:1"},
        {"ab", 1, 2, "1 place 2:1 is outside the text of 1 lines"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ResultOf([&] { return WholeRows(TEditText(c.Text), c.First, c.Last); }),
                  c.Expected);
}

} // namespace
} // namespace tarn
