#pragma once

#include "TextStore/TEditText.h"

namespace tarn {

// A column counts bytes. What a user goes by are characters and where they are seen: a well-formed
// UTF-8 sequence is one character and one place wide, any other byte is one by itself, a tab
// reaches to the next tab stop. All rows must be rows of the text.

constexpr int TabSize = 8; ///< places from one tab stop to the next

/// The place, from 1, where a position is seen in its line; in mid-character that of the character.
int SeenAt(const TEditText& text, TTextPos pos);
/// The position between two characters that is seen nearest to a place; in virtual space for a
/// place behind the end of the line.
TTextPos PosSeenAt(const TEditText& text, int row, int place);

/// The position one character back or on, of which virtual space has one in each column. The one
/// before column 1 is column 1.
TTextPos CharBefore(const TEditText& text, TTextPos pos);
TTextPos CharBehind(const TEditText& text, TTextPos pos);

/// What a column block is in each of its rows: all between the places where two corners are seen.
class TColumnBlock {
public:
    TColumnBlock(const TEditText& text, TTextPos anchor, TTextPos cursor);

    int FirstRow() const { return FFirstRow; }
    int LastRow() const { return FLastRow; }
    bool Empty() const { return FLeft == FRight; }
    TTextPos From(int row) const { return PosSeenAt(FText, row, FLeft); }
    TTextPos To(int row) const { return PosSeenAt(FText, row, FRight); }

private:
    const TEditText& FText;
    int FFirstRow, FLastRow;
    int FLeft, FRight; ///< places
};

} // namespace tarn
