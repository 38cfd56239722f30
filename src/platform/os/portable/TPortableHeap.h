#pragma once

#include "os/TSystemHeap.h"

#include <cstddef>
#include <set>

namespace tarn {

/// A heap over the general allocator. The bytes of its blocks count against its maximum, their
/// management does not.
class TPortableHeap : public TSystemHeap {
public:
    /// \param maximumSize bytes; 0 is a heap that grows as the system lets it
    explicit TPortableHeap(std::size_t maximumSize = 0) : FMaximumSize(maximumSize) {}
    ~TPortableHeap() override;

    void* Allocate(THeapFlags flags, std::size_t size) override;
    void* Reallocate(THeapFlags flags, void* block, std::size_t size) override;
    void Free(void* block) noexcept override;
    /// A heap that grows answers with the memory that the system has free.
    std::size_t Compact() override;

private:
    void* Resize(void* block, std::size_t size);

    std::set<void*> FBlocks;
    std::size_t FMaximumSize;
    std::size_t FUsed = 0;
};

} // namespace tarn
