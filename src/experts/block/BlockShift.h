#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Whether a block's text ends with a line break of its own. A kept quirk: a text of exactly CR LF
/// does not count. A lone CR or LF at the end does, so that no line break is lost.
bool EndsWithBreak(std::string_view text);

/// Takes the final CR LF off lines joined to `after` when the text that they were split from did
/// not end with a break. By the quirk a single empty line, CR LF before and after, keeps its break.
void DropAddedBreak(std::string_view before, std::string& after);

/// A shifted text and the shift of its topmost line that is not blank, in columns; 0 when all lines
/// are blank.
struct TShiftedText {
    std::string Text;
    int Shift = 0;
};

/// Shifts the lines of a text by `count` columns, below 0 to the left. Blank lines stay as they
/// are. To the left, a line loses up to |count| leading spaces; with `safe`, one line that is not
/// blank with fewer refuses the whole shift, and there is no result. Each line of the result ends
/// with CR LF; the last one does when the text ends with a break. One pass over the text.
std::optional<TShiftedText> ShiftText(std::string_view text, int count, bool safe);

} // namespace tarn
