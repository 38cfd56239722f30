#pragma once

#include "os/TSystemHeap.h"
#include "rtl/TMemoryStream.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tarn {

/// The step in which the memory streams of this library grow, bytes. It is smaller than the
/// platform's own on purpose.
inline constexpr std::int64_t MemoryStep = 4096;

/// A memory stream whose block comes from a heap of the operating system. A block that the heap
/// cannot give raises EOutOfMemory.
class THeapStream : public TMemoryStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// On the heap of the process.
    /// \param zeroMemory whether memory that is new to the block is filled with zeros
    explicit THeapStream(bool zeroMemory = false);
    /// On a new heap, which goes with the stream. Raises EOSError.
    /// \param maximumSize bytes; 0 is a heap that grows
    THeapStream(std::size_t initialSize, std::size_t maximumSize, bool zeroMemory);
    ~THeapStream() override;

    /// Compacts the heap and returns the size of its largest free block, bytes. Raises EOSError
    /// when it has none.
    std::size_t Compact();
    bool SharedHeap() const { return !FOwnHeap; } ///< whether it is the heap of the process

protected:
    void* Realloc(std::int64_t& newCapacity) override;

private:
    std::unique_ptr<TSystemHeap> FOwnHeap;
    TSystemHeap& FHeap;
    THeapFlags FFlags;
};

/// A memory stream over the general allocator.
class TMemStream : public TMemoryStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

protected:
    void* Realloc(std::int64_t& newCapacity) override {
        return ReallocInSteps(newCapacity, MemoryStep);
    }
};

/// A memory stream's memory, which stays the stream's, with size and position in bytes.
struct TBufInfo {
    void* Memory = nullptr;
    std::int64_t Size = 0;
    std::int64_t Position = 0;

    friend bool operator==(const TBufInfo&, const TBufInfo&) = default;
};

void MemStreamToBuf(TCustomMemoryStream& stream, TBufInfo& info);
/// Points a stream at the memory, without copying it, and restores the position. The memory stays
/// its owner's: the stream neither frees nor reallocates it, see TMemoryStream.
/// Raises EStreamError for a negative size, or one without memory.
void BufToMemStream(const TBufInfo& info, TCustomMemoryStream& stream);

} // namespace tarn
