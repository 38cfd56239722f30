#pragma once

#include <cstdint>
#include <functional>

namespace tarn {

/// Follows what this thread reads with LoadFileInto and the like, as long as the object lives.
class TScopedReadProgress {
public:
    /// Gets the bytes read so far and the size of the file, after each megabyte or so. False gives
    /// the reading up: the reader raises EAbort.
    using TStep = std::function<bool(std::uint64_t done, std::uint64_t size)>;

    explicit TScopedReadProgress(TStep step);
    TScopedReadProgress(const TScopedReadProgress&) = delete;
    TScopedReadProgress& operator=(const TScopedReadProgress&) = delete;
    ~TScopedReadProgress();

    /// What follows this thread's reading; null when nothing does.
    static const TStep* Current();

private:
    TStep FStep;
    const TStep* FBefore;
};

} // namespace tarn
