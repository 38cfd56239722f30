#include "rtl/FileIO.h"

#include "rtl/OSError.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn {
namespace {

int OpenFlags(TFileMode mode) {
    switch (mode & ~0x70) { // without the share flag
    case fmCreate:
        return O_RDWR | O_CREAT | O_TRUNC;
    case fmAppend:
        // A pipe without a reader is an error then and does not wait for one.
        return O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK;
    case fmOpenReadWrite:
        return O_RDWR;
    case fmOpenWrite:
        return O_WRONLY;
    default:
        return O_RDONLY;
    }
}

/// Repeats a system call that a signal has interrupted.
template <class F> auto Retry(F&& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

} // namespace

THandle FileOpen(std::string_view name, TFileMode mode) {
    // The system would open what stands in front of a NUL.
    if (name.find('\0') != std::string_view::npos) {
        errno = EINVAL;
        return NoHandle;
    }
    constexpr mode_t everybody = 0666; // less the process's mask
    const std::string text(name);
    return Retry([&] { return ::open(text.c_str(), OpenFlags(mode) | O_CLOEXEC, everybody); });
}

std::int64_t FileRead(THandle handle, void* buffer, std::int64_t count) {
    return Retry([&] { return ::read(handle, buffer, static_cast<std::size_t>(count)); });
}

std::int64_t FileWrite(THandle handle, const void* buffer, std::int64_t count) {
    const auto* const bytes = static_cast<const char*>(buffer);
    // The system takes all at once unless its device is about to be full.
    std::int64_t done = 0;
    while (done < count) {
        const auto left = static_cast<std::size_t>(count - done);
        const ssize_t put = Retry([&] { return ::write(handle, bytes + done, left); });
        if (put < 0) return done > 0 ? done : -1;
        done += put;
    }
    return done;
}

bool SameFile(THandle handle, std::string_view name) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(handle, &opened) == 0 && ::stat(std::string(name).c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

void TOwnedHandle::Reset(THandle handle) {
    if (FHandle != NoHandle) ::close(FHandle);
    FHandle = handle;
}

void RaiseLastInOutError(std::string_view what) {
    throw EInOutError(Format("cannot %s: %s", {what, SysErrorMessage(errno)}));
}

TFile::TFile(std::string_view name, TFileMode mode) : FName(name), FHandle(FileOpen(name, mode)) {
    if (FHandle == NoHandle) Fail(mode == fmOpenRead ? "read" : "write to");
}

TFile::~TFile() {
    if (FHandle != NoHandle) ::close(FHandle);
}

void TFile::Fail(std::string_view what) const {
    RaiseLastInOutError(std::string(what) + " " + FName);
}

std::uint64_t HandleSize(THandle handle) {
    struct stat status {};
    if (::fstat(handle, &status) != 0) RaiseLastInOutError("tell the size of an open file");
    return static_cast<std::uint64_t>(status.st_size);
}

std::uint64_t TFile::Size() const {
    struct stat status {};
    if (::fstat(FHandle, &status) != 0) Fail("tell the size of");
    return static_cast<std::uint64_t>(status.st_size);
}

std::string TFile::ReadAll() {
    std::string text;
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    for (;;) {
        const std::int64_t got = FileRead(FHandle, buffer.data(), buffer.size());
        if (got < 0) Fail("read");
        if (got == 0) return text;
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

void TFile::Write(std::string_view data) {
    while (!data.empty()) {
        const std::int64_t put =
            FileWrite(FHandle, data.data(), static_cast<std::int64_t>(data.size()));
        if (put < 0) Fail("write to");
        data.remove_prefix(static_cast<std::size_t>(put));
    }
}

void TFile::Clear() {
    if (::ftruncate(FHandle, 0) != 0) Fail("empty");
}

void TFile::Close() {
    if (::close(std::exchange(FHandle, NoHandle)) != 0) Fail("close");
}

} // namespace tarn
