#pragma once

#include <cstddef>

namespace tarn {

/// Memory whose pages the system may fail to bring: a view of a file.
struct TGuardedRange {
    const void* Begin;
    std::size_t Size; ///< bytes
};

/// Lets GuardedCopy catch the system's signal for a page that it cannot bring. Called once before
/// the first copy; later calls do nothing. Signals that come from elsewhere go on to the handler
/// that was there before.
void InstallCopyGuard();

/// memcpy. False when the system cannot bring a page of the range; some bytes are copied then.
bool GuardedCopy(void* dest, const void* source, std::size_t count,
                 const TGuardedRange& range) noexcept;

} // namespace tarn
