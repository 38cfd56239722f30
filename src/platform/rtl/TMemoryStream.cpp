#include "rtl/TMemoryStream.h"

#include "rtl/Memory.h"
#include "rtl/OSError.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace tarn {

constinit const TClassRecord TCustomMemoryStream::ClassRecord{"TCustomMemoryStream",
                                                              &TStream::ClassRecord};
constinit const TClassRecord TMemoryStream::ClassRecord{
    "TMemoryStream", &TCustomMemoryStream::ClassRecord, CreateObject<TMemoryStream>};
constinit const TClassRecord TStringStream::ClassRecord{"TStringStream", &TStream::ClassRecord,
                                                        CreateObject<TStringStream>};

namespace {

void RequireSize(std::int64_t size) {
    if (size < 0) throw EStreamError(Format("no stream has a size of %d", {size}));
}

/// Copies what there is of `count` bytes from `position` on and moves it.
std::int64_t ReadFrom(const void* memory, std::int64_t size, std::int64_t& position, void* buffer,
                      std::int64_t count) {
    if (position < 0 || count <= 0 || position >= size) return 0;
    const std::int64_t done = std::min(count, size - position);
    std::memcpy(buffer, static_cast<const char*>(memory) + position,
                static_cast<std::size_t>(done));
    position += done;
    return done;
}

} // namespace

// --- TCustomMemoryStream ----------------------------------------------------------------------

std::int64_t TCustomMemoryStream::Read(void* buffer, std::int64_t count) {
    return ReadFrom(FMemory, FSize, FPosition, buffer, count);
}

void TCustomMemoryStream::SetPointer(void* memory, std::int64_t size) {
    RequireSize(size);
    if (!memory && size > 0) throw EStreamError(Format("%d bytes of no memory", {size}));
    FMemory = memory;
    FSize = size;
}

void TCustomMemoryStream::SaveToStream(TStream& stream) const {
    stream.WriteBuffer(FMemory, FSize);
}

void TCustomMemoryStream::SaveToFile(std::string_view fileName) const {
    TFileStream file(fileName, fmCreate);
    SaveToStream(file);
}

// --- TMemoryStream ----------------------------------------------------------------------------

TMemoryStream::~TMemoryStream() {
    FreeMem(FBlock);
}

std::int64_t TMemoryStream::RoundCapacity(std::int64_t capacity, std::int64_t step) {
    // No object is larger than the difference of two addresses.
    constexpr std::int64_t most = std::numeric_limits<std::ptrdiff_t>::max();
    if (capacity > most - step) throw EOutOfMemory(static_cast<std::uint64_t>(capacity));
    return (capacity + step - 1) / step * step;
}

void* TMemoryStream::ReallocInSteps(std::int64_t& newCapacity, std::int64_t step) {
    newCapacity = RoundCapacity(newCapacity, step);
    if (newCapacity == FCapacity) return FBlock;
    return ReallocMem(FBlock, static_cast<std::size_t>(newCapacity));
}

void* TMemoryStream::Realloc(std::int64_t& newCapacity) {
    constexpr std::int64_t step = 8192;
    return ReallocInSteps(newCapacity, step);
}

void TMemoryStream::SetCapacity(std::int64_t newCapacity) {
    void* const foreign = FMemory == FBlock ? nullptr : FMemory;
    FBlock = Realloc(newCapacity);
    FCapacity = newCapacity;
    if (foreign && FBlock)
        std::memcpy(FBlock, foreign, static_cast<std::size_t>(std::min(FSize, FCapacity)));
    FMemory = FBlock;
}

void TMemoryStream::SetSize(std::int64_t newSize) {
    RequireSize(newSize);
    SetCapacity(newSize);
    FSize = newSize;
    FPosition = std::min(FPosition, newSize);
}

void TMemoryStream::Clear() {
    SetSize(0);
}

std::int64_t TMemoryStream::Write(const void* buffer, std::int64_t count) {
    if (FPosition < 0 || count <= 0) return 0;
    const std::int64_t end = EndOf(FPosition, count);
    if (end > FSize) {
        if (FMemory != FBlock || end > FCapacity) SetCapacity(end);
        if (FPosition > FSize)
            std::memset(Bytes() + FSize, 0, static_cast<std::size_t>(FPosition - FSize));
        FSize = end;
    }
    std::memcpy(Bytes() + FPosition, buffer, static_cast<std::size_t>(count));
    FPosition = end;
    return count;
}

void TMemoryStream::LoadFromStream(TStream& stream) {
    stream.SetPosition(0);
    const std::int64_t count = stream.Size();
    SetSize(count);
    stream.ReadBuffer(FMemory, count);
}

void TMemoryStream::LoadFromFile(std::string_view fileName) {
    TFileStream file(fileName, fmOpenRead | fmShareDenyWrite);
    LoadFromStream(file);
}

// --- TStringStream ----------------------------------------------------------------------------

std::int64_t TStringStream::Read(void* buffer, std::int64_t count) {
    return ReadFrom(FText.data(), Size(), FPosition, buffer, count);
}

std::int64_t TStringStream::Write(const void* buffer, std::int64_t count) {
    if (FPosition < 0 || count <= 0) return 0;
    const std::int64_t end = EndOf(FPosition, count);
    if (end > Size()) Resize(end);
    std::memcpy(FText.data() + FPosition, buffer, static_cast<std::size_t>(count));
    FPosition = end;
    return count;
}

void TStringStream::Resize(std::int64_t size) {
    if (static_cast<std::uint64_t>(size) > FText.max_size())
        throw EOutOfMemory(static_cast<std::uint64_t>(size));
    try {
        FText.resize(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        throw EOutOfMemory(static_cast<std::uint64_t>(size));
    }
}

void TStringStream::SetSize(std::int64_t newSize) {
    RequireSize(newSize);
    Resize(newSize);
    FPosition = std::min(FPosition, newSize);
}

std::string TStringStream::ReadString(std::int64_t count) {
    const std::int64_t left = FPosition < 0 ? 0 : std::max<std::int64_t>(Size() - FPosition, 0);
    std::string text(static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, left)), '\0');
    Read(text.data(), static_cast<std::int64_t>(text.size()));
    return text;
}

} // namespace tarn
