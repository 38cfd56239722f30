#include "os/portable/TNamedArea.h"

#include "rtl/OSError.h"

#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn {
namespace {

constexpr mode_t OwnerOnly = 0600;

/// One name a user and area: what a name of the system cannot hold is written %XX.
std::string SystemName(std::string_view name) {
    std::string result = "/tarn-" + std::to_string(::getuid()) + "-";
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = byte < 0x80 && (std::isalnum(byte) || c == '.' || c == '_' || c == '-');
        if (plain)
            result += c;
        else
            result.append(1, '%')
                .append(1, "0123456789ABCDEF"[byte >> 4])
                .append(1, "0123456789ABCDEF"[byte & 15]);
    }
    return result;
}

/// Takes a lock, waiting for it unless told not to; false when it cannot be had.
bool Lock(THandle handle, int operation) {
    int result = ::flock(handle, operation);
    while (result != 0 && errno == EINTR) result = ::flock(handle, operation);
    return result == 0;
}

} // namespace

TNamedArea::TNamedArea(std::string_view name, std::int64_t size)
    : FName("memory area " + std::string(name)), FProcess(::getpid()) {
    if (name.empty()) {
        FName = "a memory area";
        FHandle = ::memfd_create("tarn", MFD_CLOEXEC);
        if (FHandle == NoHandle || ::ftruncate(FHandle, size) != 0) Fail("make");
        return;
    }
    FPathName = SystemName(name);
    // An area that its last user has just removed is tried anew.
    do {
        Close();
        FHandle = ::shm_open(FPathName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, OwnerOnly);
        if (FHandle == NoHandle) Fail("open");
    } while (!TryJoin(size));
}

/// Becomes a user of the opened area; false when it is one that nobody else can find any more.
bool TNamedArea::TryJoin(std::int64_t size) {
    if (Lock(FHandle, LOCK_EX | LOCK_NB)) {
        // Alone: what is there is new or was left by users that died.
        if (::ftruncate(FHandle, 0) != 0 || ::ftruncate(FHandle, size) != 0) Fail("make");
    } else if (errno != EWOULDBLOCK) {
        Fail("lock");
    }
    if (!Lock(FHandle, LOCK_SH)) Fail("lock");
    struct stat status {};
    if (::fstat(FHandle, &status) != 0) Fail("ask for the size of");
    return status.st_nlink > 0;
}

void TNamedArea::Close() noexcept {
    if (FHandle == NoHandle) return;
    if (!FPathName.empty() && FProcess == ::getpid() && Lock(FHandle, LOCK_EX | LOCK_NB)) {
        struct stat status {};
        // A removed area's name may be another's by now.
        if (::fstat(FHandle, &status) == 0 && status.st_nlink > 0) ::shm_unlink(FPathName.c_str());
    }
    ::close(std::exchange(FHandle, NoHandle));
}

void TNamedArea::Fail(std::string_view what) {
    const int reason = errno;
    Close();
    RaiseOSError(std::string(what) + " " + FName, reason);
}

TNamedArea::~TNamedArea() {
    Close();
}

} // namespace tarn
