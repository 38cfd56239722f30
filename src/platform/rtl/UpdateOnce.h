#pragma once

#include <utility>

namespace tarn {

/// Runs `change` between BeginUpdate and EndUpdate of a list, so that it reports one change in all.
/// EndUpdate is called even when `change` raises.
template <class T, class F> void UpdateOnce(T& list, F&& change) {
    list.BeginUpdate();
    try {
        std::forward<F>(change)();
    } catch (...) {
        list.EndUpdate();
        throw;
    }
    list.EndUpdate();
}

} // namespace tarn
