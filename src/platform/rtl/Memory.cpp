#include "rtl/Memory.h"

#include "rtl/OSError.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace tarn {
namespace {

/// What stands in front of a block's bytes.
struct alignas(std::max_align_t) THeader {
    std::size_t Size;   ///< of the block, without this
    std::size_t Mapped; ///< bytes of the pages that are the block's own; 0 in the C library's heap
};

constexpr std::size_t MappedFrom = std::size_t{128} * 1024;
constexpr std::size_t MaxSize = std::numeric_limits<std::ptrdiff_t>::max() / 2;

THeader* HeaderOf(void* block) {
    return static_cast<THeader*>(block) - 1;
}

std::size_t WholePages(std::size_t size) {
    static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return (size + page - 1) / page * page;
}

void* Finish(void* memory, std::size_t size, std::size_t mapped) {
    auto* const header = new (memory) THeader{size, mapped};
    return header + 1;
}

void* MapPages(std::size_t length) {
    void* const pages =
        ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return pages == MAP_FAILED ? nullptr : pages;
}

void* RemapPages(THeader* header, std::size_t length) {
    void* const pages = ::mremap(header, header->Mapped, length, MREMAP_MAYMOVE);
    return pages == MAP_FAILED ? nullptr : pages;
}

/// Mapped pages with another size. Growth takes half as many addresses again where the system lets
/// it: pages that nobody touches cost nothing.
void* ResizeMapped(THeader* header, std::size_t size) {
    const std::size_t needed = WholePages(sizeof(THeader) + size);
    const bool grows = size > header->Size;
    if (grows && needed <= header->Mapped) return Finish(header, size, header->Mapped);
    std::size_t length = grows ? WholePages(std::max(needed, header->Mapped / 2 * 3)) : needed;
    void* pages = RemapPages(header, length);
    if (!pages && length > needed) pages = RemapPages(header, length = needed);
    return pages ? Finish(pages, size, length) : nullptr;
}

void* TryGet(std::size_t size) {
    const bool mapped = size >= MappedFrom;
    const std::size_t length = sizeof(THeader) + size;
    void* const memory = mapped ? MapPages(WholePages(length)) : std::malloc(length);
    return memory ? Finish(memory, size, mapped ? WholePages(length) : 0) : nullptr;
}

/// Between the C library's heap and pages of the block's own: the one copy of a growing block.
void* Migrate(void* block, std::size_t size) {
    void* const moved = TryGet(size);
    if (!moved) return nullptr;
    std::memcpy(moved, block, std::min(size, HeaderOf(block)->Size));
    FreeMem(block);
    return moved;
}

void* TryRealloc(void* block, std::size_t size) {
    THeader* const header = HeaderOf(block);
    const bool mapped = size >= MappedFrom;
    if (mapped != (header->Mapped != 0)) return Migrate(block, size);
    if (mapped) return ResizeMapped(header, size);
    void* const memory = std::realloc(header, sizeof(THeader) + size);
    return memory ? Finish(memory, size, 0) : nullptr;
}

} // namespace

void* GetMem(std::size_t size) {
    return ReallocMem(nullptr, size);
}

void* ReallocMem(void* block, std::size_t size) {
    if (size == 0) {
        FreeMem(block);
        return nullptr;
    }
    void* result = nullptr;
    if (size <= MaxSize) result = block ? TryRealloc(block, size) : TryGet(size);
    if (!result) throw EOutOfMemory(size);
    return result;
}

void FreeMem(void* block) noexcept {
    if (!block) return;
    THeader* const header = HeaderOf(block);
    if (header->Mapped)
        ::munmap(header, header->Mapped);
    else
        std::free(header);
}

std::size_t MemSize(const void* block) {
    return block ? (static_cast<const THeader*>(block) - 1)->Size : 0;
}

} // namespace tarn
