#include "rtl/FileIO.h"

#include "rtl/SysUtils.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarn {
namespace {

constexpr THandle NoHandle = -1;

int OpenFlags(TFileMode mode) {
    switch (mode) {
    case fmCreate:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case fmAppend:
        // A pipe without a reader is an error then and does not wait for one.
        return O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK;
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

void RaiseLastInOutError(std::string_view what) {
    std::string reason = std::generic_category().message(errno);
    reason.replace(0, 1, LowerCase(reason.substr(0, 1)));
    throw EInOutError(Format("cannot %s: %s", {what, reason}));
}

TFile::TFile(std::string_view name, TFileMode mode)
    : FName(name), FHandle(Retry([&] {
          constexpr mode_t everybody = 0666; // less the process's mask
          return ::open(FName.c_str(), OpenFlags(mode) | O_CLOEXEC, everybody);
      })) {
    if (FHandle == NoHandle) Fail(mode == fmRead ? "read" : "write to");
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
        const ssize_t got = Retry([&] { return ::read(FHandle, buffer.data(), buffer.size()); });
        if (got < 0) Fail("read");
        if (got == 0) return text;
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

void TFile::Write(std::string_view data) {
    // The system takes all at once unless its device is about to be full.
    while (!data.empty()) {
        const ssize_t put = Retry([&] { return ::write(FHandle, data.data(), data.size()); });
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
