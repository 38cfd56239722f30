#pragma once

#include "TextStore/LineBreaks.h"
#include "TextStore/TChangeLog.h"
#include "TextStore/TGapBuffer.h"
#include "TextStore/TLineIndex.h"
#include "TextStore/TTextPos.h"
#include "TextStore/TUndoLog.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// What becomes of the line breaks of new text: kept byte for byte, or turned into the one that
/// prevails.
enum TBreakRule : std::uint8_t { brKeep, brConvert };

/// The text of an editor buffer: the bytes of a file as they are, their lines, and undo.
///
/// Line breaks are CR LF, lone CR and lone LF, in any mixture; nothing else about the bytes
/// matters. Lines are 1..LineCount, a text that ends with a line break has one more, empty, last
/// line. Offsets are 0-based. An offset or a row outside the text raises std::out_of_range, unless
/// told otherwise.
class TEditText {
public:
    explicit TEditText(std::string_view text = {});
    /// Takes the bytes over without a copy.
    explicit TEditText(TGapBuffer<char> text);

    std::size_t Size() const { return FText.Size(); }
    char CharAt(std::size_t offset) const;
    std::string Text() const { return Text(0, Size()); }
    std::string Text(std::size_t from, std::size_t to) const;
    /// The whole text in two pieces, of which either may be empty; valid until the next change.
    std::array<std::string_view, 2> Chunks() const;

    int LineCount() const { return FLines.Count(); }
    std::size_t LineStart(int row) const;
    /// The bytes of a line, its break not among them.
    std::size_t LineLength(int row) const;
    std::string LineText(int row) const;

    /// The offset of a position, of the end of its line for one in virtual space. Positions above
    /// or below the text give its start and its end.
    std::size_t OffsetAt(TTextPos pos) const;
    /// The position of an offset; one behind the text counts as its end. The LF of a CR LF lies
    /// in virtual space.
    TTextPos PosAt(std::size_t offset) const;

    /// The line break that was most frequent in the text as it was loaded; of equals CR LF before
    /// LF before CR.
    TLineBreak LineBreak() const { return FLineBreak; }

    /// Replaces the bytes from..to with newText and gives the offset behind it. Outside a group
    /// it is a step of its own. newText must not lie in this text.
    /// Raises std::length_error above MaxTextSize, std::bad_alloc; then nothing has changed.
    std::size_t Replace(std::size_t from, std::size_t to, std::string_view newText,
                        TBreakRule rule = brKeep);

    /// Begins and ends what the user undoes as one step; groups nest, the outermost counts. A
    /// group that leaves the text as it was leaves no step. A typing group continues the step of
    /// the typing group before it while the view is as that one left it and no other group, undo,
    /// save or EndTyping came between.
    void BeginGroup(const TViewState& before, TGroupKind kind = gkCommand);
    void EndGroup(const TViewState& after);
    void EndTyping() { FUndo.EndTyping(); }

    bool CanUndo() const { return FUndo.CanUndo(); }
    bool CanRedo() const { return FUndo.CanRedo(); }
    /// Takes the last step back, or does it again, and gives the view to go with the text. False,
    /// with view untouched, when there is no step.
    /// Raises std::logic_error in a group, std::bad_alloc; then nothing has changed.
    bool Undo(TViewState& view);
    bool Redo(TViewState& view);

    /// Another number after each change of the text, for those who follow it.
    std::uint64_t Revision() const { return FRevision; }
    /// What the text has kept of the one with that revision. Exact for the last few commands and
    /// cautious for what is older.
    TUnchanged UnchangedSince(std::uint64_t revision) const { return FChanges.Since(revision); }

    /// Whether the text differs, by its steps, from the loaded or the saved one.
    bool Modified() const { return FUndo.Modified(); }
    /// Raises std::logic_error in a group.
    void MarkSaved() { FUndo.MarkSaved(); }
    /// Makes the text count as modified until it is saved, whatever is undone.
    void MarkModified() { FUndo.MarkModified(); }

private:
    std::size_t ReplaceInGroup(std::size_t from, std::size_t to, std::string_view newText,
                               TBreakRule rule);
    void Record(std::size_t from, std::size_t to, std::size_t inserted);
    void Exchange(TTextEdit& edit);
    bool ChangesNothing(const TTextEdit& edit) const;
    void UpdateLines(std::size_t from, std::size_t oldTo);
    void CheckRange(std::size_t from, std::size_t to) const;
    void CheckRow(int row) const;
    void CheckNoGroup() const;

    TGapBuffer<char> FText;
    TLineIndex FLines;
    TLineBreak FLineBreak = lbCrLf;
    std::uint64_t FRevision = 0;
    TChangeLog FChanges;
    TUndoLog FUndo;
};

} // namespace tarn
