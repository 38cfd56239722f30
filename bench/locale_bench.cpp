// Texts by id, against the bare binary search in a sorted table of the same size.

#include "os/portable/TPortableOS.h"
#include "qsLocale.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace tarn {
namespace {

/// Every id of the table in a fixed random order, so that no branch can be guessed.
std::vector<int> ShuffledIds() {
    std::vector<int> ids;
    for (int id = 50500; id < 52000; ++id)
        if (FindBuiltInStr(id)) ids.push_back(id);
    std::shuffle(ids.begin(), ids.end(), std::mt19937(1));
    return ids;
}

template <class F> void EachId(benchmark::State& state, F look) {
    const std::vector<int> ids = ShuffledIds();
    std::size_t i = 0;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        benchmark::DoNotOptimize(look(ids[i]));
        if (++i == ids.size()) i = 0;
    }
}

void BM_BinarySearch(benchmark::State& state) {
    std::vector<std::pair<int, std::string_view>> rows;
    for (const int id : ShuffledIds()) rows.emplace_back(id, *FindBuiltInStr(id));
    std::sort(rows.begin(), rows.end());
    EachId(state, [&](int id) {
        return std::lower_bound(rows.begin(), rows.end(), id,
                                [](const auto& row, int wanted) { return row.first < wanted; })
            ->second;
    });
}
BENCHMARK(BM_BinarySearch);

void BM_FindBuiltInStr(benchmark::State& state) {
    EachId(state, FindBuiltInStr);
}
BENCHMARK(BM_FindBuiltInStr);

void BM_LocaleStr(benchmark::State& state) {
    EachId(state, LocaleStr);
}
BENCHMARK(BM_LocaleStr);

/// The same from a language library, which is read once.
void BM_LocaleStrOfModule(benchmark::State& state) {
    TPortableOS os;
    TOperatingSystem* const former = InstallOS(&os);
    LoadNewLanguage(TARN_LANGUAGE_DIR "/texp_ger.dll");
    if (Locale().ModuleHandle() == 0) state.SkipWithError("built without language libraries");
    EachId(state, LocaleStr);
    FreeLocale();
    InstallOS(former);
}
BENCHMARK(BM_LocaleStrOfModule);

} // namespace
} // namespace tarn
