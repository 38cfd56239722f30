#include "os/portable/TPortableMapping.h"

#include "os/portable/GuardedCopy.h"
#include "rtl/OSError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn {
namespace {

std::int64_t FileSize(THandle file, const std::string& name) {
    struct stat status {};
    if (::fstat(file, &status) != 0) RaiseLastOSError("tell the size of " + name);
    return status.st_size;
}

/// Best effort: what failed before is what matters.
void Shrink(THandle file, std::int64_t size) {
    [[maybe_unused]] const int result = ::ftruncate(file, size);
}

/// Makes a file longer, with its place on the disk where the file system can promise that: a view
/// of a place that the disk does not have would fail when it is written to.
void Grow(THandle file, const std::string& name, std::int64_t oldSize, std::int64_t newSize) {
    int result = ::fallocate(file, 0, oldSize, newSize - oldSize);
    if (result != 0 && (errno == EOPNOTSUPP || errno == ENOSYS))
        result = ::ftruncate(file, newSize);
    if (result != 0) RaiseLastOSError("make " + name + " longer");
}

} // namespace

TPortableMapping::TPortableMapping(const TMapFile& file) : FName(file.Name) {
    const std::int64_t oldSize = FileSize(file.Handle, FName);
    const std::int64_t size = file.MaximumSize > 0 ? file.MaximumSize : oldSize;
    if (size == 0) throw EOSError("cannot map " + FName + ": the file is empty", EINVAL);
    FFile.Reset(::fcntl(file.Handle, F_DUPFD_CLOEXEC, 0));
    if (FFile.Get() == NoHandle) RaiseLastOSError("map " + FName);
    try {
        if (size > oldSize) Grow(FFile.Get(), FName, oldSize, size);
        Map(FFile.Get(), size, file.Access);
    } catch (...) {
        if (size > oldSize) Shrink(FFile.Get(), oldSize);
        throw;
    }
    FSize = std::min(FileSize(FFile.Get(), FName), size);
}

TPortableMapping::TPortableMapping(const TMapArea& area)
    : FArea(std::in_place, area.Name, area.Size),
      FName(area.Name.empty() ? "a memory area" : "memory area " + area.Name) {
    Map(FArea->Handle(), FileSize(FArea->Handle(), FName), area.Access);
    FSize = std::min(area.Size, static_cast<std::int64_t>(FViewSize));
}

TPortableMapping::~TPortableMapping() {
    ::munmap(FView, FViewSize);
}

void TPortableMapping::Map(THandle handle, std::int64_t size, TMapAccess access) {
    InstallCopyGuard();
    FViewSize = static_cast<std::size_t>(size);
    const int protection = access == maReadOnly ? PROT_READ : PROT_READ | PROT_WRITE;
    // A size that the address type does not hold is one that the system could not map either.
    void* const view = std::in_range<std::size_t>(size)
                           ? ::mmap(nullptr, FViewSize, protection, MAP_SHARED, handle, 0)
                           : (errno = ENOMEM, MAP_FAILED);
    if (view == MAP_FAILED) RaiseLastOSError("map " + FName);
    FView = static_cast<std::byte*>(view);
}

void TPortableMapping::Read(std::int64_t offset, void* buffer, std::int64_t count) const {
    if (count == 0) return;
    const auto size = static_cast<std::size_t>(count);
    if (!GuardedCopy(buffer, FView + offset, size, {FView, FViewSize})) RaiseLost("read", offset);
    // The rest of the file's last page reads as zeros, without a fault: who reads lost bytes has a
    // zero at the end. Others need not ask the system for the file's size.
    if (static_cast<const std::byte*>(buffer)[size - 1] == std::byte{0})
        RequireBytes("read", offset, count);
}

void TPortableMapping::Write(std::int64_t offset, const void* buffer, std::int64_t count) {
    // What is written to the rest of the file's last page would be lost without a fault.
    RequireBytes("write to", offset, count);
    if (!GuardedCopy(FView + offset, buffer, static_cast<std::size_t>(count), {FView, FViewSize}))
        RaiseLost("write to", offset);
}

void TPortableMapping::RequireBytes(std::string_view verb, std::int64_t offset,
                                    std::int64_t count) const {
    if (FFile.Get() != NoHandle && FileSize(FFile.Get(), FName) - count < offset)
        RaiseLost(verb, offset);
}

void TPortableMapping::RaiseLost(std::string_view verb, std::int64_t offset) const {
    throw EOSError(Format("cannot %s %s at offset %d: its bytes are lost, the file has been "
                          "shortened or the disk is full or broken",
                          {verb, FName, offset}),
                   EIO);
}

void TPortableMapping::Flush() {
    if (::msync(FView, FViewSize, MS_SYNC) != 0) RaiseLastOSError("flush " + FName);
}

} // namespace tarn
