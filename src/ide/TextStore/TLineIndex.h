#pragma once

#include "TextStore/TGapBuffer.h"

#include <cstddef>
#include <string_view>

namespace tarn {

/// Where the lines of a text start. Offsets are 0-based, rows count from 1; there is always a
/// first line, and a text that ends with a line break has one more, empty, last line.
///
/// The starts behind the last edit are owed a common shift, the step, instead of being rewritten
/// by every edit: an edit only pays for the lines between it and the one before. (The technique of
/// Scintilla's Partitioning.)
class TLineIndex {
public:
    /// The index of an empty text.
    TLineIndex();

    int Count() const { return static_cast<int>(FStarts.Size()); }
    /// Where line `row` starts; row is in 1..Count.
    std::size_t Start(int row) const { return StartAt(static_cast<std::size_t>(row) - 1); }
    /// The line that holds the byte at `offset`, its break included.
    int RowAt(std::size_t offset) const;

    /// Makes sure that Replaced does not ask for memory when text with so many breaks comes in.
    void Reserve(std::size_t breaks);
    /// Follows an edit: the old bytes from..to have become those of `head` from `from` on, where
    /// `head` is the new text up to the end of the edit; lfFollows tells whether an LF comes next.
    void Replaced(std::size_t from, std::size_t to, std::string_view head, bool lfFollows);

private:
    std::size_t StartAt(std::size_t line) const {
        const int start = FStarts[line] + (line < FStepLine ? 0 : FStep);
        return static_cast<std::size_t>(start);
    }
    std::size_t FirstLineFrom(std::size_t offset) const;
    void MoveStep(std::size_t line);
    void Shift(std::size_t fromLine, std::size_t toLine, int by);

    TGapBuffer<int> FStarts; // from FStepLine on, FStep less than the truth
    std::size_t FStepLine = 1;
    int FStep = 0; // bytes
};

} // namespace tarn
