#include "rtl/TStream.h"

#include "rtl/OSError.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>
#include <vector>

namespace tarn {

constinit const TClassRecord TStream::ClassRecord{"TStream", &TObject::ClassRecord};
constinit const TClassRecord THandleStream::ClassRecord{"THandleStream", &TStream::ClassRecord};
constinit const TClassRecord TFileStream::ClassRecord{"TFileStream", &THandleStream::ClassRecord};

namespace {

template <class E> [[noreturn]] void RaiseReason(std::string_view what, std::string_view name) {
    throw E(Format("cannot %s %s: %s", {what, name, SysErrorMessage(errno)}));
}

/// Calls `transfer(done)` until `count` bytes are done; it returns those of one call.
template <class F> std::int64_t RepeatTransfer(std::int64_t count, F&& transfer) {
    std::int64_t done = 0;
    while (done < count) {
        const std::int64_t now = transfer(done);
        if (now <= 0) break;
        done += now;
    }
    return done;
}

} // namespace

// --- TStream ----------------------------------------------------------------------------------

std::int64_t TStream::Size() {
    const std::int64_t position = Position();
    const std::int64_t size = Seek(0, soFromEnd);
    SetPosition(position);
    return size;
}

void TStream::SetSize(std::int64_t) {
    throw EStreamError(Format("the size of a %s is fixed", {ClassName()}));
}

void TStream::ReadBuffer(void* buffer, std::int64_t count) {
    const std::int64_t done = RepeatTransfer(
        count, [&](std::int64_t at) { return Read(static_cast<char*>(buffer) + at, count - at); });
    if (done != count) throw EReadError(Format("stream read error: %d of %d bytes", {done, count}));
}

void TStream::WriteBuffer(const void* buffer, std::int64_t count) {
    const std::int64_t done = RepeatTransfer(count, [&](std::int64_t at) {
        return Write(static_cast<const char*>(buffer) + at, count - at);
    });
    if (done != count)
        throw EWriteError(Format("stream write error: %d of %d bytes", {done, count}));
}

std::int64_t TStream::CopyFrom(TStream& source, std::int64_t count) {
    if (count == 0) {
        source.SetPosition(0);
        count = source.Size();
    }
    constexpr std::int64_t maxBuffer = 65536;
    std::vector<char> buffer(
        static_cast<std::size_t>(std::clamp<std::int64_t>(count, 1, maxBuffer)));
    for (std::int64_t left = count; left != 0;) {
        const std::int64_t part = std::min(left, maxBuffer);
        source.ReadBuffer(buffer.data(), part);
        WriteBuffer(buffer.data(), part);
        left -= part;
    }
    return count;
}

void TStream::RaiseOutOfRange(std::int64_t position, std::int64_t count) {
    throw EStreamError(Format("stream position out of range: %d bytes from %d", {count, position}));
}

// --- THandleStream ----------------------------------------------------------------------------

std::string THandleStream::Name() const {
    return Format("file handle %d", {FHandle});
}

std::int64_t THandleStream::Read(void* buffer, std::int64_t count) {
    if (count <= 0) return 0;
    const std::int64_t done = FileRead(FHandle, buffer, count);
    if (done < 0) RaiseReason<EReadError>("read", Name());
    return done;
}

std::int64_t THandleStream::Write(const void* buffer, std::int64_t count) {
    const std::int64_t done = FileWrite(FHandle, buffer, count);
    if (done < 0) RaiseReason<EWriteError>("write to", Name());
    return done;
}

std::int64_t THandleStream::Seek(std::int64_t offset, TSeekOrigin origin) {
    constexpr int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off_t position = ::lseek(FHandle, offset, whence[origin]);
    if (position < 0) RaiseReason<EStreamError>("seek in", Name());
    return position;
}

void THandleStream::SetSize(std::int64_t newSize) {
    if (::ftruncate(FHandle, newSize) != 0) RaiseReason<EStreamError>("set the size of", Name());
    SetPosition(newSize);
}

// --- TFileStream ------------------------------------------------------------------------------

TFileStream::TFileStream(std::string_view fileName, TFileMode mode)
    : THandleStream(FileOpen(fileName, mode)), FFileName(fileName) {
    if (Handle() != NoHandle) return;
    if ((mode & fmCreate) == fmCreate) RaiseReason<EFCreateError>("create", fileName);
    RaiseReason<EFOpenError>("open", fileName);
}

TFileStream::~TFileStream() {
    ::close(Handle());
}

} // namespace tarn
