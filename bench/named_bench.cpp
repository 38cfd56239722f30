// Named strings in quick-search mode beside a map from names to line numbers.

#include "TNamedStrings.h"
#include "bench_race.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

/// Different names like those of settings, in random order, each with its line "NAME=VALUE".
struct TNames {
    explicit TNames(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i)
            Names.push_back(Format("Expert%d.Width", {i * 7919 % 1000003}));
        std::mt19937 random(3);
        std::shuffle(Names.begin(), Names.end(), random);
        for (const std::string& name : Names) Lines.push_back(Format("%s=%s", {name, name}));
        Asked = Names;
        std::shuffle(Asked.begin(), Asked.end(), random);
        if (Asked.size() > MostAsked) Asked.resize(MostAsked);
    }
    static constexpr std::size_t MostAsked = 100000;
    std::vector<std::string> Names, Lines;
    std::vector<std::string> Asked; ///< names in another order
};

using TMap = std::map<std::string, int>;

TMap MapOf(const std::vector<std::string>& names) {
    TMap map;
    for (const std::string& name : names) map.emplace(name, static_cast<int>(map.size()));
    return map;
}

void Prepare(benchmark::State& state) {
    const TNames names(state.range(0));
    TNamedStrings list;
    list.SetNamesAnsiComparing(state.range(1) != 0);
    for (const std::string& line : names.Lines) list.Add(line);
    Race(
        state, [&] { return list.PrepareSearchTable(), list.Count(); },
        [&] { return MapOf(names.Names).size(); });
}

void LookUp(benchmark::State& state) {
    const TNames names(state.range(0));
    TNamedStrings list;
    list.SetNamesAnsiComparing(state.range(1) != 0);
    for (const std::string& line : names.Lines) list.Add(line);
    list.EnterQuickSearchMode();
    const TMap map = MapOf(names.Names);
    Race(
        state,
        [&] {
            std::int64_t sum = 0;
            int index = 0;
            for (const std::string& name : names.Asked)
                if (list.FindByName(name, index)) sum += index;
            return sum;
        },
        [&] {
            std::int64_t sum = 0;
            for (const std::string& name : names.Asked) sum += map.find(name)->second;
            return sum;
        });
}

/// Lines that are added one by one while the mode is on, in random order of their names.
void AddInMode(benchmark::State& state) {
    const TNames names(state.range(0));
    Race(
        state,
        [&] {
            TNamedStrings list;
            list.SetNamesAnsiComparing(state.range(1) != 0);
            list.EnterQuickSearchMode();
            for (const std::string& line : names.Lines) list.Add(line);
            return list.Count();
        },
        [&] {
            std::vector<std::string> lines;
            TMap map;
            for (std::size_t i = 0; i < names.Names.size(); ++i) {
                lines.push_back(names.Lines[i]);
                map.emplace(names.Names[i], static_cast<int>(i));
            }
            return map.size();
        });
}

const std::vector<std::vector<std::int64_t>> SizesAndComparing = {{1000, 100000, 1000000}, {1, 0}};
BENCHMARK(Prepare)->ArgNames({"names", "ansi"})->ArgsProduct(SizesAndComparing)->UseManualTime();
BENCHMARK(LookUp)->ArgNames({"names", "ansi"})->ArgsProduct(SizesAndComparing)->UseManualTime();
BENCHMARK(AddInMode)
    ->ArgNames({"names", "ansi"})
    ->ArgsProduct({{1000, 100000}, {1, 0}})
    ->UseManualTime();

} // namespace
} // namespace tarn
