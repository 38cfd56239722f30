#include "os/portable/GuardedCopy.h"

#include <atomic>
#include <csetjmp>
#include <csignal>
#include <cstring>
#include <setjmp.h> // NOLINT(modernize-deprecated-headers): sigsetjmp is no part of csetjmp
#include <signal.h> // NOLINT(modernize-deprecated-headers): nor sigaction of csignal

namespace tarn {
namespace {

struct TGuard {
    sigjmp_buf Jump;
    const char* Begin;
    const char* End;
};

/// The copy that runs in this thread.
constinit thread_local TGuard* ActiveGuard = nullptr;

struct sigaction FormerAction {};

/// Does what would have been done without us.
void PassOn(int signal, siginfo_t* info, void* context) {
    if (FormerAction.sa_flags & SA_SIGINFO) {
        FormerAction.sa_sigaction(signal, info, context);
    } else if (FormerAction.sa_handler != SIG_DFL && FormerAction.sa_handler != SIG_IGN) {
        FormerAction.sa_handler(signal);
    } else if (info->si_code > 0 || FormerAction.sa_handler == SIG_DFL) {
        // A fault comes again at once when its instruction is repeated, a sent signal does not. The
        // system does not let a fault be ignored.
        std::signal(signal, SIG_DFL);
        if (info->si_code <= 0) std::raise(signal);
    }
}

void HandleFault(int signal, siginfo_t* info, void* context) {
    TGuard* const guard = ActiveGuard;
    const auto* const address = static_cast<const char*>(info->si_addr);
    if (guard && info->si_code > 0 && address >= guard->Begin && address < guard->End)
        siglongjmp(guard->Jump, 1);
    PassOn(signal, info, context);
}

bool Install() {
    struct sigaction action {};
    action.sa_sigaction = HandleFault;
    // The handler is left by a jump that does not restore the signal mask: the signal must not be
    // blocked in it.
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    ::sigemptyset(&action.sa_mask);
    return ::sigaction(SIGBUS, &action, &FormerAction) == 0;
}

} // namespace

void InstallCopyGuard() {
    [[maybe_unused]] static const bool installed = Install();
}

bool GuardedCopy(void* dest, const void* source, std::size_t count,
                 const TGuardedRange& range) noexcept {
    TGuard guard; // NOLINT(cppcoreguidelines-pro-type-member-init): sigsetjmp fills it
    guard.Begin = static_cast<const char*>(range.Begin);
    guard.End = guard.Begin + range.Size;
    if (sigsetjmp(guard.Jump, 0) != 0) {
        ActiveGuard = nullptr;
        return false;
    }
    ActiveGuard = &guard;
    // The compiler must not move the copy out from between the two marks.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    std::memcpy(dest, source, count);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    ActiveGuard = nullptr;
    return true;
}

} // namespace tarn
