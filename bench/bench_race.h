#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>

namespace tarn {

/// Runs ours and its yardstick by turns in the same loop, so that both meet the same machine.
/// Reported are the time of ours, and as counters the nanoseconds of each and their ratio.
template <class Ours, class Yardstick>
void Race(benchmark::State& state, Ours ours, Yardstick yardstick) {
    using TClock = std::chrono::steady_clock;
    const auto seconds = [](auto& run) {
        const auto start = TClock::now();
        auto result = run();
        benchmark::DoNotOptimize(result);
        return std::chrono::duration<double>(TClock::now() - start).count();
    };
    double oursTotal = 0;
    double yardstickTotal = 0;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        const double time = seconds(ours);
        oursTotal += time;
        yardstickTotal += seconds(yardstick);
        state.SetIterationTime(time);
    }
    const double perNanosecond = 1e9 / static_cast<double>(state.iterations());
    state.counters["ours_ns"] = oursTotal * perNanosecond;
    state.counters["yard_ns"] = yardstickTotal * perNanosecond;
    state.counters["ratio"] = oursTotal / yardstickTotal;
}

} // namespace tarn
