#include "THeapStream.h"

#include "os/OS.h"
#include "rtl/OSError.h"

namespace tarn {

constinit const TClassRecord THeapStream::ClassRecord{"THeapStream", &TMemoryStream::ClassRecord};
constinit const TClassRecord TMemStream::ClassRecord{"TMemStream", &TMemoryStream::ClassRecord,
                                                     CreateObject<TMemStream>};

namespace {

THeapFlags HeapFlags(bool zeroMemory) {
    THeapFlags flags{hfGenerateExceptions};
    if (zeroMemory) flags.Include(hfZeroMemory);
    return flags;
}

} // namespace

// --- THeapStream ------------------------------------------------------------------------------

THeapStream::THeapStream(bool zeroMemory)
    : FHeap(OS().ProcessHeap()), FFlags(HeapFlags(zeroMemory)) {}

THeapStream::THeapStream(std::size_t initialSize, std::size_t maximumSize, bool zeroMemory)
    : FOwnHeap(OS().CreateHeap(initialSize, maximumSize)), FHeap(*FOwnHeap),
      FFlags(HeapFlags(zeroMemory)) {}

THeapStream::~THeapStream() {
    Clear();
}

void* THeapStream::Realloc(std::int64_t& newCapacity) {
    newCapacity = RoundCapacity(newCapacity, MemoryStep);
    if (newCapacity == Capacity()) return Block();
    const auto size = static_cast<std::size_t>(newCapacity);
    if (size == 0) {
        FHeap.Free(Block());
        return nullptr;
    }
    return Block() ? FHeap.Reallocate(FFlags, Block(), size) : FHeap.Allocate(FFlags, size);
}

std::size_t THeapStream::Compact() {
    const std::size_t largest = FHeap.Compact();
    if (largest == 0) RaiseLastOSError("compact the heap");
    return largest;
}

// --- Memory handed from stream to stream ------------------------------------------------------

void MemStreamToBuf(TCustomMemoryStream& stream, TBufInfo& info) {
    info = {stream.Memory(), stream.Size(), stream.Position()};
}

void BufToMemStream(const TBufInfo& info, TCustomMemoryStream& stream) {
    stream.SetPointer(info.Memory, info.Size);
    stream.SetPosition(info.Position);
}

} // namespace tarn
