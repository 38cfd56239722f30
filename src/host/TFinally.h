#pragma once

#include <utility>

namespace tarn {

/// Runs an action at the end of a scope, however it is left. The action raises nothing.
template <class F> class TFinally {
public:
    explicit TFinally(F action) : FAction(std::move(action)) {}
    TFinally(const TFinally&) = delete;
    TFinally& operator=(const TFinally&) = delete;
    ~TFinally() { FAction(); }

private:
    F FAction;
};

} // namespace tarn
