#pragma once

#include <exception>
#include <utility>

namespace tarn {

/// Steps each of which is made whatever those before it have raised.
class TAllSteps {
public:
    template <class F> void Run(F&& step) {
        try {
            std::forward<F>(step)();
        } catch (...) {
            if (!FFirst) FFirst = std::current_exception();
        }
    }
    /// Raises the first error; without this call none passes on.
    void Finish() {
        if (FFirst) std::rethrow_exception(std::exchange(FFirst, nullptr));
    }

private:
    std::exception_ptr FFirst;
};

} // namespace tarn
