#pragma once

#include "rtl/TSet.h"

#include <cstddef>
#include <cstdint>

namespace tarn {

enum THeapFlag : std::uint8_t {
    hfGenerateExceptions, ///< a block that cannot be given raises EOutOfMemory
    hfZeroMemory          ///< bytes that a block did not have before are 0
};
using THeapFlags = TSet<THeapFlag>;

/// A heap of the operating system. Its blocks go with it.
class TSystemHeap {
public:
    TSystemHeap() = default;
    TSystemHeap(const TSystemHeap&) = delete;
    TSystemHeap& operator=(const TSystemHeap&) = delete;
    virtual ~TSystemHeap() = default;

    /// A block of `size` bytes, at least 1. When there is none, null or EOutOfMemory as the flags
    /// say.
    virtual void* Allocate(THeapFlags flags, std::size_t size) = 0;
    /// The block with another size, at least 1, perhaps at another place. When that cannot be the
    /// block stays as it was.
    virtual void* Reallocate(THeapFlags flags, void* block, std::size_t size) = 0;
    /// Frees a block of this heap; null is none.
    virtual void Free(void* block) noexcept = 0;

    /// Gives back what is not in use and returns the size of the largest block that the heap could
    /// give now, bytes; 0, the reason being the system's last error, when there is none.
    virtual std::size_t Compact() = 0;
};

} // namespace tarn
