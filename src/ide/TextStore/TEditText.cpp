#include "TextStore/TEditText.h"

#include <algorithm>
#include <span>
#include <stdexcept>

namespace tarn {

namespace {

std::string_view View(std::span<const char> bytes) {
    return {bytes.data(), bytes.size()};
}

TGapBuffer<char> BufferOf(std::string_view text) {
    TGapBuffer<char> buffer;
    buffer.Insert(0, text);
    return buffer;
}

void CheckSize(std::size_t size) {
    if (size > MaxTextSize)
        throw std::length_error("text of " + std::to_string(size) + " bytes, at most " +
                                std::to_string(MaxTextSize) + " can be edited");
}

std::size_t Excess(std::size_t count, std::size_t over) {
    return count > over ? count - over : 0;
}

/// Runs `apply` on each edit from first to last. When one fails, those before it are applied once
/// more: an exchange is its own inverse, and the big pieces of memory for the way back are there.
template <typename TIterator, typename TApply>
void ApplyAll(TIterator first, TIterator last, TApply apply) {
    TIterator edit = first;
    try {
        for (; edit != last; ++edit) apply(*edit);
    } catch (...) {
        while (edit != first) apply(*--edit);
        throw;
    }
}

void GiveBackMemory(TUndoStep& step) {
    for (TTextEdit& edit : step.Edits) edit.Kept.Shrink();
}

} // namespace

TEditText::TEditText(std::string_view text) : TEditText(BufferOf(text)) {}

TEditText::TEditText(TGapBuffer<char> text) : FText(std::move(text)) {
    CheckSize(Size());
    const TBreakCounts counts = CountBreaks(View(FText.Front(Size())));
    FLineBreak = counts.Prevailing();
    FLines.Reserve(counts.Total());
    UpdateLines(0, 0);
}

char TEditText::CharAt(std::size_t offset) const {
    CheckRange(offset, offset + 1);
    return FText[offset];
}

std::string TEditText::Text(std::size_t from, std::size_t to) const {
    CheckRange(from, to);
    std::string text;
    text.reserve(to - from);
    for (const std::span<const char> piece : FText.Pieces(from, to)) text += View(piece);
    return text;
}

std::array<std::string_view, 2> TEditText::Chunks() const {
    const auto pieces = FText.Pieces(0, Size());
    return {View(pieces[0]), View(pieces[1])};
}

std::size_t TEditText::LineStart(int row) const {
    CheckRow(row);
    return FLines.Start(row);
}

std::size_t TEditText::LineLength(int row) const {
    const std::size_t start = LineStart(row);
    if (row == LineCount()) return Size() - start;
    const std::size_t breakEnd = FLines.Start(row + 1);
    const bool isPair =
        breakEnd - start > 1 && FText[breakEnd - 2] == '\r' && FText[breakEnd - 1] == '\n';
    return breakEnd - start - (isPair ? 2 : 1);
}

std::string TEditText::LineText(int row) const {
    const std::size_t start = LineStart(row);
    return Text(start, start + LineLength(row));
}

std::size_t TEditText::OffsetAt(TTextPos pos) const {
    if (pos.Row < 1) return 0;
    if (pos.Row > LineCount()) return Size();
    const auto column = static_cast<std::size_t>(std::max(pos.Col, 1) - 1);
    return LineStart(pos.Row) + std::min(column, LineLength(pos.Row));
}

TTextPos TEditText::PosAt(std::size_t offset) const {
    offset = std::min(offset, Size());
    const int row = FLines.RowAt(offset);
    return {.Row = row, .Col = static_cast<int>(offset - FLines.Start(row)) + 1};
}

std::size_t TEditText::Replace(std::size_t from, std::size_t to, std::string_view newText,
                               TBreakRule rule) {
    CheckRange(from, to);
    if (from == to && newText.empty()) return from;
    if (FUndo.InGroup()) return ReplaceInGroup(from, to, newText, rule);

    BeginGroup({.Cursor = PosAt(from)});
    try {
        const std::size_t end = ReplaceInGroup(from, to, newText, rule);
        EndGroup({.Cursor = PosAt(end)});
        return end;
    } catch (...) {
        EndGroup({});
        throw;
    }
}

std::size_t TEditText::ReplaceInGroup(std::size_t from, std::size_t to, std::string_view newText,
                                      TBreakRule rule) {
    const TBreakCounts counts = CountBreaks(newText);
    const bool converts = rule == brConvert && !counts.IsOnly(FLineBreak);
    const std::size_t inserted =
        converts ? counts.SizeConverted(newText.size(), FLineBreak) : newText.size();
    CheckSize(Size() - (to - from) + inserted);

    // All that may fail for want of memory comes before the first change.
    FText.Reserve(Excess(inserted, to - from));
    FLines.Reserve(counts.Total());
    Record(from, to, inserted);

    FText.Erase(from, to);
    char* room = FText.Room(from);
    if (converts)
        CopyConverted(newText, FLineBreak, room);
    else
        std::copy(newText.begin(), newText.end(), room);
    FText.Commit(inserted);
    UpdateLines(from, to);
    return from + inserted;
}

/// Notes an edit that is about to be made. One inside what the edit before it put in takes nothing
/// away that was there when the group began, so it only changes the length of that edit.
void TEditText::Record(std::size_t from, std::size_t to, std::size_t inserted) {
    std::vector<TTextEdit>& edits = FUndo.OpenEdits();
    if (!edits.empty() && edits.back().Covers(from, to)) {
        edits.back().Inserted += inserted - (to - from);
        return;
    }
    TTextEdit edit{.At = from, .Inserted = inserted, .Kept = {}};
    edit.Kept.Reserve(to - from);
    for (const std::span<const char> piece : FText.Pieces(from, to))
        edit.Kept.Insert(edit.Kept.Size(), piece);
    edits.push_back(std::move(edit));
    if (edits.size() == 1) FUndo.ForgetUndone();
}

void TEditText::BeginGroup(const TViewState& before, TGroupKind kind) {
    if (!FUndo.InGroup()) FChanges.BeginCommand();
    FUndo.BeginGroup(before, kind);
}

void TEditText::EndGroup(const TViewState& after) {
    if (FUndo.InGroup()) {
        std::vector<TTextEdit>& edits = FUndo.OpenEdits();
        while (!edits.empty() && ChangesNothing(edits.back())) edits.pop_back();
    }
    FUndo.EndGroup(after);
}

bool TEditText::Undo(TViewState& view) {
    CheckNoGroup();
    TUndoStep* step = FUndo.NextUndo();
    if (step == nullptr) return false;
    FChanges.BeginCommand();
    ApplyAll(step->Edits.rbegin(), step->Edits.rend(), [this](TTextEdit& edit) { Exchange(edit); });
    GiveBackMemory(*step);
    FUndo.Undone();
    view = step->Before;
    return true;
}

bool TEditText::Redo(TViewState& view) {
    CheckNoGroup();
    TUndoStep* step = FUndo.NextRedo();
    if (step == nullptr) return false;
    FChanges.BeginCommand();
    ApplyAll(step->Edits.begin(), step->Edits.end(), [this](TTextEdit& edit) { Exchange(edit); });
    GiveBackMemory(*step);
    FUndo.Redone();
    view = step->After;
    return true;
}

/// Swaps what an edit keeps with what it put into the text, byte by byte as far as both go, so
/// that a big edit and its undoing never hold the text a third time.
void TEditText::Exchange(TTextEdit& edit) {
    const std::size_t kept = edit.Kept.Size();
    const std::size_t shared = std::min(kept, edit.Inserted);
    const std::size_t sharedEnd = edit.At + shared;
    const std::size_t oldEnd = edit.At + edit.Inserted;
    FText.Reserve(kept - shared);
    edit.Kept.Reserve(edit.Inserted - shared);
    const std::span<char> ours = edit.Kept.Front(kept);
    FLines.Reserve(CountBreaks(View(ours)).Total());

    const std::span<char> theirs = FText.Front(oldEnd).subspan(edit.At);
    std::swap_ranges(ours.begin(), ours.begin() + static_cast<std::ptrdiff_t>(shared),
                     theirs.begin());
    if (kept > shared) {
        FText.Insert(sharedEnd, ours.subspan(shared));
        edit.Kept.Erase(shared, kept);
    } else {
        edit.Kept.Insert(shared, theirs.subspan(shared));
        FText.Erase(sharedEnd, oldEnd);
    }
    edit.Inserted = kept;
    UpdateLines(edit.At, oldEnd);
}

/// Whether the last edit of the open group has put in just what it took away.
bool TEditText::ChangesNothing(const TTextEdit& edit) const {
    if (edit.Inserted != edit.Kept.Size()) return false;
    std::string_view kept = View(edit.Kept.Front());
    for (const std::span<const char> piece : FText.Pieces(edit.At, edit.At + edit.Inserted)) {
        if (!kept.starts_with(View(piece))) return false;
        kept.remove_prefix(piece.size());
    }
    return true;
}

/// Tells the lines of an edit that ends at the gap.
void TEditText::UpdateLines(std::size_t from, std::size_t oldTo) {
    const std::string_view head = View(FText.Front());
    FChanges.Note(++FRevision, {.Front = from, .Back = Size() - head.size()});
    const bool lfFollows = head.size() < Size() && FText[head.size()] == '\n';
    FLines.Replaced(from, oldTo, head, lfFollows);
}

void TEditText::CheckRange(std::size_t from, std::size_t to) const {
    if (from > to || to > Size())
        throw std::out_of_range("bytes " + std::to_string(from) + " to " + std::to_string(to) +
                                " of a text of " + std::to_string(Size()));
}

void TEditText::CheckRow(int row) const {
    if (row < 1 || row > LineCount())
        throw std::out_of_range("line " + std::to_string(row) + " of " +
                                std::to_string(LineCount()));
}

void TEditText::CheckNoGroup() const {
    if (FUndo.InGroup()) throw std::logic_error("undo or redo within an open group");
}

} // namespace tarn
