#pragma once

#include <exception>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {

/// A copy of this process that ends with what `body` returns.
class TChild {
public:
    template <class F> explicit TChild(const F& body) : FProcess(::fork()) {
        if (FProcess == 0) ::_exit(Run(body));
    }
    /// Waits for the end; -1 when the child ended in another way.
    int Wait() const {
        int status = 0;
        return ::waitpid(FProcess, &status, 0) == FProcess && WIFEXITED(status)
                   ? WEXITSTATUS(status)
                   : -1;
    }

private:
    template <class F> static int Run(const F& body) {
        try {
            return body();
        } catch (const std::exception&) {
            return 99;
        }
    }

    pid_t FProcess;
};

} // namespace tarn
