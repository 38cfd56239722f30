#pragma once

#include <climits>
#include <compare>
#include <cstddef>

namespace tarn {

/// The longest text in bytes: each of its rows and columns is still an int.
inline constexpr std::size_t MaxTextSize = INT_MAX - 1;

/// A place in a text: row and column from 1. A column is a byte of the line, a tab is one column.
/// A column behind the end of the line is virtual space, where a cursor may stand.
struct TTextPos {
    int Row = 1;
    int Col = 1;

    auto operator<=>(const TTextPos&) const = default; // NOLINT(modernize-use-nullptr)
};

/// What a user sees of an edit view besides the text. The text store keeps it with each undo step
/// and hands it back; it looks at nothing in it.
struct TViewState {
    TTextPos Cursor = {};
    TTextPos BlockStart = {};
    TTextPos BlockEnd = {};
    int BlockStyle = 0;
    bool BlockValid = false;

    bool operator==(const TViewState&) const = default;
};

} // namespace tarn
