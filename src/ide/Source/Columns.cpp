#include "Source/Columns.h"

#include "rtl/Unicode.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace tarn {
namespace {

/// A character of a line: the columns from..to, seen at the places From..To.
struct TSeenChar {
    int Col, NextCol;
    int Place, NextPlace;
};

/// Walks along the line until stop(character) says so; what lies behind the last character then.
template <class F> TSeenChar FindChar(const TEditText& text, int row, F&& stop) {
    const std::string line = text.LineText(row);
    std::string_view rest = line;
    TSeenChar c{1, 1, 1, 1};
    while (!rest.empty()) {
        c.Place = c.NextPlace;
        c.Col = c.NextCol;
        c.NextPlace += rest.front() == '\t' ? TabSize - (c.Place - 1) % TabSize : 1;
        const std::size_t before = rest.size();
        TakeUtf8(rest);
        c.NextCol += static_cast<int>(before - rest.size());
        if (stop(c)) return c;
    }
    return {c.NextCol, c.NextCol, c.NextPlace, c.NextPlace};
}

/// One less than the greatest integer at most, so that the place behind it is one, too.
int PlaceSum(int a, int b) {
    constexpr int most = std::numeric_limits<int>::max() - 1;
    return a > most - b ? most : a + b;
}

} // namespace

int SeenAt(const TEditText& text, TTextPos pos) {
    const TSeenChar c = FindChar(text, pos.Row, [&](TSeenChar at) { return pos.Col < at.NextCol; });
    return PlaceSum(c.Place, std::max(pos.Col - c.NextCol, 0));
}

TTextPos PosSeenAt(const TEditText& text, int row, int place) {
    // The half of a tab that is nearer to its end belongs to the end.
    const TSeenChar c = FindChar(text, row, [&](TSeenChar at) {
        return place - at.Place < (at.NextPlace - at.Place + 1) / 2;
    });
    return {row, PlaceSum(c.Col, c.Col == c.NextCol ? std::max(place - c.Place, 0) : 0)};
}

TTextPos CharBefore(const TEditText& text, TTextPos pos) {
    const TSeenChar c =
        FindChar(text, pos.Row, [&](TSeenChar at) { return pos.Col <= at.NextCol; });
    return {pos.Row, c.Col == c.NextCol ? std::max(pos.Col - 1, 1) : c.Col};
}

TTextPos CharBehind(const TEditText& text, TTextPos pos) {
    const TSeenChar c = FindChar(text, pos.Row, [&](TSeenChar at) { return pos.Col < at.NextCol; });
    return {pos.Row, c.Col == c.NextCol ? PlaceSum(pos.Col, 1) : c.NextCol};
}

TColumnBlock::TColumnBlock(const TEditText& text, TTextPos anchor, TTextPos cursor)
    : FText(text), FFirstRow(std::min(anchor.Row, cursor.Row)),
      FLastRow(std::max(anchor.Row, cursor.Row)) {
    std::tie(FLeft, FRight) = std::minmax({SeenAt(text, anchor), SeenAt(text, cursor)});
}

} // namespace tarn
