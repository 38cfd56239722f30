#pragma once

#include <csignal>
#include <sys/resource.h>

namespace tarn {

/// Makes every write behind `bytes` of a file fail, as a full disk does.
class TFileSizeLimit {
public:
    explicit TFileSizeLimit(rlim_t bytes) : FOldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &FOld);
        const rlimit limit{bytes, FOld.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    TFileSizeLimit(const TFileSizeLimit&) = delete;
    TFileSizeLimit& operator=(const TFileSizeLimit&) = delete;
    ~TFileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &FOld);
        std::signal(SIGXFSZ, FOldHandler);
    }

private:
    void (*FOldHandler)(int);
    rlimit FOld{};
};

} // namespace tarn
