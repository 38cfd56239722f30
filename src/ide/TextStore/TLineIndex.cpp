#include "TextStore/TLineIndex.h"

#include "TextStore/LineBreaks.h"

namespace tarn {

namespace {

/// Writes the starts of the lines that begin behind a break byte of head from `at` on. May write
/// one start more than it counts; gives the count.
std::size_t WriteStarts(std::string_view head, std::size_t at, bool lfFollows, int* starts) {
    int* next = starts;
    ForEachBreakByte(head.substr(at), [&](std::size_t index) {
        const std::size_t after = at + index + 1;
        const bool beforeLf = after < head.size() ? head[after] == '\n' : lfFollows;
        *next = static_cast<int>(after);
        next += head[after - 1] == '\n' || !beforeLf ? 1 : 0;
    });
    return static_cast<std::size_t>(next - starts);
}

} // namespace

TLineIndex::TLineIndex() {
    const int start = 0;
    FStarts.Insert(0, {&start, 1});
}

int TLineIndex::RowAt(std::size_t offset) const {
    return static_cast<int>(FirstLineFrom(offset + 1));
}

void TLineIndex::Reserve(std::size_t breaks) {
    FStarts.Reserve(breaks + 2); // a CR before the edit may get free, WriteStarts writes one ahead
}

void TLineIndex::Replaced(std::size_t from, std::size_t to, std::string_view head, bool lfFollows) {
    // Whether a line starts at an offset hangs on the bytes on both sides of it. So the starts at
    // from..to, both included, are in doubt, and no other. Offset 0 always starts a line.
    const std::size_t firstDoubt = from > 0 ? from : 1;
    const std::size_t line = FirstLineFrom(firstDoubt);
    const std::size_t endLine = FirstLineFrom(to + 1);
    MoveStep(line);
    FStarts.Erase(line, endLine);
    const std::size_t count = WriteStarts(head, firstDoubt - 1, lfFollows, FStarts.Room(line));
    FStarts.Commit(count);
    FStepLine = line + count;
    FStep += static_cast<int>(head.size()) - static_cast<int>(to);
    if (FStepLine == FStarts.Size()) FStep = 0;
}

std::size_t TLineIndex::FirstLineFrom(std::size_t offset) const {
    std::size_t low = 0;
    std::size_t high = FStarts.Size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (StartAt(middle) < offset)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

void TLineIndex::MoveStep(std::size_t line) {
    if (line >= FStepLine) {
        Shift(FStepLine, line, FStep);
    } else if (FStepLine - line <= FStarts.Size() - FStepLine) {
        Shift(line, FStepLine, -FStep);
    } else { // cheaper to pay what is owed
        Shift(FStepLine, FStarts.Size(), FStep);
        FStep = 0;
    }
    FStepLine = line;
}

void TLineIndex::Shift(std::size_t fromLine, std::size_t toLine, int by) {
    if (by == 0) return;
    for (const std::span<int> piece : FStarts.Pieces(fromLine, toLine))
        for (int& start : piece) start += by;
}

} // namespace tarn
