#include "TMappedFileStream.h"

#include "os/OS.h"
#include "qsLocale.h"
#include "rtl/OSError.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

namespace tarn {

constinit const TClassRecord TMappedFileStream::ClassRecord{"TMappedFileStream",
                                                            &TStream::ClassRecord};

namespace {

enum TSizeError : std::uint16_t {
    seNegative = 50550,
    seNoSizeForNewFile = 50551,
    seReadOnly = 50552,
    seNoSizeForArea = 50553
};

void RefuseIf(bool refused, TSizeError error) {
    if (refused) throw EMFStreamError(LocaleStr(error));
}

bool FileExists(std::string_view name) {
    std::error_code error;
    const auto status = std::filesystem::status(name, error);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

} // namespace

TMappedFileStream::TMappedFileStream(THandle handle, bool mapped, std::int64_t maximumSize,
                                     bool readOnly)
    : FHandle(handle), FName(Format("file handle %d", {handle})), FMaximumSize(maximumSize),
      FReadOnly(readOnly) {
    RequireSize();
    SetMapped(mapped);
}

TMappedFileStream::TMappedFileStream(std::string_view fileName, bool mapped,
                                     std::int64_t maximumSize, bool readOnly)
    : FName(fileName), FMaximumSize(maximumSize), FReadOnly(readOnly) {
    const bool exists = FileExists(fileName);
    RefuseIf(!exists && readOnly, seReadOnly);
    RefuseIf(!exists && maximumSize <= 0, seNoSizeForNewFile);
    RequireSize();
    FHandle = FileOpen(fileName, !exists ? fmCreate : readOnly ? fmOpenRead : fmOpenReadWrite);
    if (FHandle == NoHandle) RaiseLastOSError((exists ? "open " : "create ") + FName);
    FOwnHandle.Reset(FHandle);
    SetMapped(mapped);
}

std::unique_ptr<TMappedFileStream> TMappedFileStream::CreateSys(std::string_view name, bool mapped,
                                                                std::int64_t maximumSize,
                                                                bool readOnly) {
    RefuseIf(maximumSize < 1, seNoSizeForArea);
    std::unique_ptr<TMappedFileStream> stream(
        new TMappedFileStream(TSystemArea(), name, maximumSize, readOnly));
    stream->SetMapped(mapped);
    return stream;
}

void TMappedFileStream::RequireSize() const {
    RefuseIf(FMaximumSize < 0, seNegative);
    RefuseIf(FReadOnly && FMaximumSize > 0, seReadOnly);
}

std::unique_ptr<TSystemMapping> TMappedFileStream::CreateMapping() const {
    const TMapAccess access = FReadOnly ? maReadOnly : maReadWrite;
    if (FIsArea) return OS().Map(TMapArea{FName, FMaximumSize, access});
    return OS().Map(TMapFile{FHandle, FName, FMaximumSize, access});
}

void TMappedFileStream::SetMapped(bool mapped) {
    if (mapped == Mapped()) return;
    FMapping = mapped ? CreateMapping() : nullptr;
    FSize = mapped ? FMapping->Size() : 0;
}

std::int64_t TMappedFileStream::Available(std::int64_t count) const {
    if (FPosition < 0 || count < 0 || FPosition >= FSize) return 0;
    return std::min(count, FSize - FPosition);
}

std::int64_t TMappedFileStream::Read(void* buffer, std::int64_t count) {
    const std::int64_t done = Available(count);
    if (done > 0) FMapping->Read(FPosition, buffer, done);
    FPosition += done;
    return done;
}

std::int64_t TMappedFileStream::Write(const void* buffer, std::int64_t count) {
    const std::int64_t done = FReadOnly ? 0 : Available(count);
    if (done > 0) FMapping->Write(FPosition, buffer, done);
    FPosition += done;
    return done;
}

void TMappedFileStream::SaveToStream(TStream& target) const {
    // Through a buffer: the target must not meet bytes that are gone.
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    for (std::int64_t at = 0; at < FSize;) {
        const std::int64_t part = std::min<std::int64_t>(buffer.size(), FSize - at);
        FMapping->Read(at, buffer.data(), part);
        target.WriteBuffer(buffer.data(), part);
        at += part;
    }
}

void TMappedFileStream::SaveToFile(std::string_view fileName) const {
    // Making it would empty it first.
    if (FHandle != NoHandle && SameFile(FHandle, fileName))
        throw EFCreateError(Format("cannot create %s: it is the mapped file", {fileName}));
    TFileStream file(fileName, fmCreate);
    SaveToStream(file);
}

void TMappedFileStream::FlushView() {
    if (FMapping) FMapping->Flush();
}

} // namespace tarn
