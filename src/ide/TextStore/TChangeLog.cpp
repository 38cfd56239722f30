#include "TextStore/TChangeLog.h"

#include <algorithm>
#include <utility>

namespace tarn {

void TUnchanged::Join(const TUnchanged& other) {
    Front = std::min(Front, other.Front);
    Back = std::min(Back, other.Back);
}

void TChangeLog::Note(std::uint64_t revision, const TUnchanged& change) {
    if (std::exchange(FBegins, false)) {
        FSpans[1].Change.Join(FSpans[0].Change);
        std::move(FSpans.begin() + 1, FSpans.end(), FSpans.begin());
        FSpans.back() = {};
    }
    FSpans.back().Change.Join(change);
    FSpans.back().Last = revision;
}

TUnchanged TChangeLog::Since(std::uint64_t revision) const {
    TUnchanged result;
    for (const TSpan& span : FSpans)
        if (span.Last > revision) result.Join(span.Change);
    return result;
}

} // namespace tarn
