#include "TextStore/TUndoLog.h"

#include <iterator>
#include <stdexcept>

namespace tarn {

void TUndoLog::BeginGroup(const TViewState& before, TGroupKind kind) {
    if (FDepth == 0) {
        const bool goesOn = kind == gkTyping && FTypingGoesOn && FDone.back().After == before;
        if (!goesOn) FDone.push_back({.Before = before, .After = before, .Edits = {}});
        FKind = kind;
    }
    ++FDepth;
}

void TUndoLog::EndGroup(const TViewState& after) {
    if (FDepth == 0) throw std::logic_error("end of an undo group that was not begun");
    if (--FDepth > 0) return;
    const bool changed = !FDone.back().Edits.empty();
    if (changed)
        FDone.back().After = after;
    else
        FDone.pop_back();
    FTypingGoesOn = changed && FKind == gkTyping;
}

void TUndoLog::ForgetUndone() {
    FUndone.clear();
    if (FSavedAt >= DoneCount()) FSavedAt.reset();
}

void TUndoLog::Undone() {
    EndTyping();
    FUndone.splice(FUndone.end(), FDone, std::prev(FDone.end()));
}

void TUndoLog::Redone() {
    EndTyping();
    FDone.splice(FDone.end(), FUndone, std::prev(FUndone.end()));
}

void TUndoLog::MarkSaved() {
    if (InGroup()) throw std::logic_error("text marked as saved within an open undo group");
    EndTyping();
    FSavedAt = DoneCount();
}

} // namespace tarn
