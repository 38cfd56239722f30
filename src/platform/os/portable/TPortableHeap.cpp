#include "os/portable/TPortableHeap.h"

#include "rtl/Memory.h"
#include "rtl/OSError.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <malloc.h>
#include <unistd.h>
#include <utility>

namespace tarn {

TPortableHeap::~TPortableHeap() {
    for (void* const block : FBlocks) FreeMem(block);
}

void* TPortableHeap::Resize(void* block, std::size_t size) {
    const std::size_t oldSize = MemSize(block);
    if (FMaximumSize > 0 && size > oldSize && size - oldSize > FMaximumSize - FUsed)
        throw EOutOfMemory(size);
    // A new block has its place in the set first: once it is there nothing may fail.
    const auto place = FBlocks.insert(block).first;
    void* const moved = ReallocMem(block, size);
    if (moved != block) {
        auto node = FBlocks.extract(place);
        node.value() = moved;
        FBlocks.insert(std::move(node));
    }
    FUsed += size - oldSize;
    return moved;
}

void* TPortableHeap::Allocate(THeapFlags flags, std::size_t size) {
    return Reallocate(flags, nullptr, size);
}

void* TPortableHeap::Reallocate(THeapFlags flags, void* block, std::size_t size) {
    const std::size_t oldSize = MemSize(block);
    try {
        auto* const bytes = static_cast<char*>(Resize(block, size));
        if (flags.Contains(hfZeroMemory) && size > oldSize)
            std::memset(bytes + oldSize, 0, size - oldSize);
        return bytes;
    } catch (const EOutOfMemory&) {
        if (flags.Contains(hfGenerateExceptions)) throw;
        errno = ENOMEM;
        return nullptr;
    }
}

void TPortableHeap::Free(void* block) noexcept {
    if (FBlocks.erase(block) == 0) return;
    FUsed -= MemSize(block);
    FreeMem(block);
}

std::size_t TPortableHeap::Compact() {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
    if (FMaximumSize == 0)
        return static_cast<std::size_t>(::sysconf(_SC_AVPHYS_PAGES)) *
               static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    errno = ENOMEM; // what a zero means
    return FMaximumSize - FUsed;
}

} // namespace tarn
