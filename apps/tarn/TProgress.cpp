#include "TProgress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace tarn {
namespace {

constexpr std::chrono::milliseconds Interval{100};

} // namespace

TProgress::TProgress(std::chrono::milliseconds delay)
    : FVisible(::isatty(STDERR_FILENO) == 1), FNext(TClock::now() + delay) {}

void TProgress::Show(double share, std::string_view what) {
    if (!FVisible || TClock::now() < FNext) return;
    FNext = TClock::now() + Interval;
    FShown = true;
    constexpr std::size_t most = 60; // the line must not wrap: only one can be cleared
    std::fprintf(stderr, "\r\033[K%3d %% %.*s", static_cast<int>(share * 100),
                 static_cast<int>(std::min(what.size(), most)), what.data());
    std::fflush(stderr);
}

void TProgress::Clear() {
    if (!FShown) return;
    FShown = false;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

} // namespace tarn
