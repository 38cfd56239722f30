// Sorting declarations beside a bare stable sort of the same lines, and dropping a long run of
// blank lines beside a copy of the list.

#include "bench_race.h"
#include "qsSourceLines.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

/// Declarations in random order; every fourth one has a second line.
std::vector<std::string> Declarations(std::int64_t count) {
    static constexpr std::string_view heads[] = {"  procedure ", "  function ", "  property ",
                                                 "  constructor "};
    static constexpr std::string_view parts[] = {"Get", "Set", "Item", "Index", "View", "Editor"};
    std::mt19937 random(9);
    std::vector<std::string> lines;
    for (std::int64_t i = 0; i < count; ++i) {
        std::string line(heads[random() % std::size(heads)]);
        for (int part = 0; part < 3; ++part) line += parts[random() % std::size(parts)];
        line += std::to_string(random() % 1000) + "(Sender: TObject;";
        if (i % 4 == 0) {
            lines.push_back(line);
            line = "    Value";
        }
        lines.push_back(line + " Index: Integer);");
    }
    return lines;
}

template <class Less> void BM_SortDeclarations(benchmark::State& state, Less less) {
    const std::vector<std::string> lines = Declarations(state.range(0));
    TStringList source;
    for (const std::string& line : lines) source.Add(line);
    // Both sort a fresh copy of the lines, which both times include.
    Race(
        state,
        [&] {
            TStringList list;
            list.Assign(&source);
            int index = 0;
            return SortDeclarations(list, index);
        },
        [&] {
            std::vector<std::string> copy = lines;
            std::stable_sort(copy.begin(), copy.end(), less);
            return copy.size();
        });
    state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(BM_SortDeclarations, AnsiCompareText,
                  [](const std::string& a, const std::string& b) {
                      return AnsiCompareText(a, b) < 0;
                  })
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->UseManualTime()
    ->Complexity(benchmark::oNLogN);
BENCHMARK_CAPTURE(BM_SortDeclarations, Bytes, std::less<std::string>())
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->UseManualTime()
    ->Complexity(benchmark::oNLogN);

void BM_DeleteBlankLines(benchmark::State& state) {
    TStringList source;
    for (std::int64_t i = 0; i < state.range(0); ++i) source.Add(" ");
    for (std::int64_t i = 0; i < state.range(0); ++i) source.Add("  procedure A(Sender: TObject);");
    const auto copyThen = [&](auto act) {
        TStringList list;
        list.Assign(&source);
        return act(list);
    };
    const auto deleteBlankLines = [](TStringList& list) {
        int index = 0;
        return DeleteBlankLines(list, index);
    };
    Race(
        state, [&] { return copyThen(deleteBlankLines); },
        [&] { return copyThen([](TStringList& list) { return list.Count() > 0; }); });
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_DeleteBlankLines)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->UseManualTime()
    ->Complexity(benchmark::oN);

} // namespace
} // namespace tarn
