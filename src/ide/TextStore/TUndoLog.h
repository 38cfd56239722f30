#pragma once

#include "TextStore/TGapBuffer.h"
#include "TextStore/TTextPos.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <vector>

namespace tarn {

/// One replacement in a text. Only the bytes that left the text are kept; those that came are in
/// the text as long as the edit stands. Undoing exchanges the two, and so does doing it again.
struct TTextEdit {
    std::size_t At = 0;       // 0-based offset
    std::size_t Inserted = 0; // bytes of the text from At on
    TGapBuffer<char> Kept;

    bool Covers(std::size_t from, std::size_t to) const {
        return At <= from && to <= At + Inserted;
    }
};

/// All edits of one command, and what the user saw before and after it.
struct TUndoStep {
    TViewState Before;
    TViewState After;
    std::vector<TTextEdit> Edits;
};

/// What a group of edits is to the user: a command of its own, or a piece of typing that continues
/// the step of the typing before it.
enum TGroupKind : std::uint8_t { gkCommand, gkTyping };

/// The steps that can be undone and done again, and which of the states between them is saved.
class TUndoLog {
public:
    /// Opens a group, or a group in the open one; only the outermost counts. A typing group goes
    /// on with the last step if that is typing, nothing came between, and the view is as it was
    /// left.
    void BeginGroup(const TViewState& before, TGroupKind kind);
    /// Closes a group; one without edits leaves no step.
    /// Raises std::logic_error when no group is open.
    void EndGroup(const TViewState& after);
    bool InGroup() const { return FDepth > 0; }
    /// Lets the next typing start a step of its own.
    void EndTyping() { FTypingGoesOn = false; }

    /// The edits of the open group, in the order they were made.
    std::vector<TTextEdit>& OpenEdits() { return FDone.back().Edits; }
    /// Tells that the open group has got its first edit: what was undone is gone, and so is the
    /// saved state if it lies there.
    void ForgetUndone();

    /// The step that the next undo or redo works on; null when there is none.
    TUndoStep* NextUndo() { return DoneCount() > 0 ? &FDone.back() : nullptr; }
    TUndoStep* NextRedo() { return FUndone.empty() ? nullptr : &FUndone.back(); }
    /// Passes the step of NextUndo on to NextRedo, and the other way round.
    void Undone();
    void Redone();

    bool CanUndo() const { return DoneCount() > 0; }
    bool CanRedo() const { return !FUndone.empty(); }

    bool Modified() const { return FSavedAt != DoneCount(); }
    /// Raises std::logic_error in a group: a step is saved whole or not at all.
    void MarkSaved();
    void MarkModified() { FSavedAt.reset(); }

private:
    /// The steps that changed something: all but the open one before its first edit.
    std::size_t DoneCount() const {
        return FDone.size() - (!FDone.empty() && FDone.back().Edits.empty() ? 1 : 0);
    }

    std::list<TUndoStep> FDone; // with the step of the open group; lists hand steps on unmoved
    std::list<TUndoStep> FUndone;
    std::optional<std::size_t> FSavedAt = 0; // the done steps of the saved text, none: out of reach
    int FDepth = 0;
    TGroupKind FKind = gkCommand;
    bool FTypingGoesOn = false;
};

} // namespace tarn
