#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace tarn {

/// How many bytes at the start and at the end of a text are those of an earlier state of it. Of a
/// text that has not changed both are more than there are.
struct TUnchanged {
    std::size_t Front = std::numeric_limits<std::size_t>::max();
    std::size_t Back = std::numeric_limits<std::size_t>::max();

    bool operator==(const TUnchanged&) const = default;
    void Join(const TUnchanged& other);
};

/// Where a text has changed lately, for those who keep a copy of it. The last commands are told
/// apart; older ones run into each other, so that what the log says of them is less than the truth.
class TChangeLog {
public:
    /// The changes to come are another command's.
    void BeginCommand() { FBegins = true; }
    /// \param revision that the text has after the change
    void Note(std::uint64_t revision, const TUnchanged& change);
    TUnchanged Since(std::uint64_t revision) const;

private:
    struct TSpan {
        std::uint64_t Last = 0; ///< revision
        TUnchanged Change;
    };
    std::array<TSpan, 16> FSpans; ///< from the oldest to the newest
    bool FBegins = true;
};

} // namespace tarn
