#include "Cpu/TSparseMemory.h"

namespace tarn {

std::optional<std::uint8_t> TSparseMemory::ByteAt(std::uint32_t address) const {
    const std::uint32_t offset = address % PageSize;
    const auto page = FPages.find(address - offset);
    if (page == FPages.end() || !page->second.Known[offset]) return std::nullopt;
    return page->second.Bytes[offset];
}

TSparseMemory::TPage& TSparseMemory::PageOf(std::uint32_t address) {
    const std::uint32_t start = address - address % PageSize;
    if (const auto page = FPages.find(start); page != FPages.end()) return page->second;
    if (FPages.size() == MaxPages)
        throw ECpuError(Format("more than %d pages of memory", {MaxPages}));
    return FPages[start];
}

void TSparseMemory::Put(std::uint32_t address, std::uint8_t byte) {
    TPage& page = PageOf(address);
    page.Bytes[address % PageSize] = byte;
    page.Known.set(address % PageSize);
}

} // namespace tarn
