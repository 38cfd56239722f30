#pragma once

#include "TIde.h"

#include <string_view>
#include <utility>

namespace tarn {

// Places in a text as the command line and the scripts write them. What is no place raises
// EScriptError with the exit code for wrong usage; a place outside the text the one for refused.

/// "R:C", 1-based row and column.
TTextPos ParsePlace(std::string_view text);
/// "R:C-R:C".
std::pair<TTextPos, TTextPos> ParseRange(std::string_view text);
/// "A-B" or "A", rows.
std::pair<int, int> ParseRows(std::string_view text);

/// Raises unless the place is in the text; the column behind the end of a line is.
void CheckPlace(const TEditText& text, TTextPos place);
/// From the start of the first row to the start of the row behind the last one, or to the end of
/// the text. Raises unless the rows are in the text.
std::pair<TTextPos, TTextPos> WholeRows(const TEditText& text, int first, int last);

} // namespace tarn
