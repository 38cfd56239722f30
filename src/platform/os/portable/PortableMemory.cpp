// Heaps and mappings.

#include "os/portable/TPortableHeap.h"
#include "os/portable/TPortableMapping.h"
#include "os/portable/TPortableOS.h"
#include "rtl/Memory.h"
#include "rtl/OSError.h"

#include <cerrno>

namespace tarn {

TSystemHeap& TPortableOS::ProcessHeap() {
    // Never freed: blocks may be in use until the process ends.
    static auto* const heap = new TPortableHeap;
    return *heap;
}

std::unique_ptr<TSystemHeap> TPortableOS::CreateHeap(std::size_t initialSize,
                                                     std::size_t maximumSize) {
    if (maximumSize > 0 && initialSize > maximumSize) RaiseOSError("create a heap", EINVAL);
    // The general allocator keeps nothing in stock: the memory is only asked for.
    FreeMem(GetMem(initialSize));
    return std::make_unique<TPortableHeap>(maximumSize);
}

std::unique_ptr<TSystemMapping> TPortableOS::Map(const TMapFile& file) {
    return std::make_unique<TPortableMapping>(file);
}

std::unique_ptr<TSystemMapping> TPortableOS::Map(const TMapArea& area) {
    return std::make_unique<TPortableMapping>(area);
}

} // namespace tarn
