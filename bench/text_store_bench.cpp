// The text store against its yardstick, a plain copy of the same text in the same run. The
// counter times_copy is how many such copies an operation takes.

#include "TextStore/TEditText.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

using TClock = std::chrono::steady_clock;

double Seconds(const std::function<void()>& work) {
    const TClock::time_point start = TClock::now();
    work();
    return std::chrono::duration<double>(TClock::now() - start).count();
}

/// The best of some copies of the text into fresh memory, in seconds.
double CopySeconds(const std::string& text) {
    double best = 1e9;
    for (int run = 0; run < 5; ++run)
        best = std::min(best, Seconds([&] { benchmark::DoNotOptimize(std::string(text).data()); }));
    return best;
}

/// Runs `work` on a text made anew for each run, and sets its time against a copy of the text.
void Measure(benchmark::State& state, const std::string& text,
             const std::function<void(TEditText&)>& work) {
    double best = 1e9;
    while (state.KeepRunning()) {
        TEditText store(text);
        const double seconds = Seconds([&] { work(store); });
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
    }
    state.counters["times_copy"] = best / CopySeconds(text);
}

/// Source-like lines of 0 to 78 bytes.
std::string SourceText(std::size_t lines, std::string_view lineBreak) {
    std::mt19937 random(1);
    std::string text;
    for (std::size_t line = 0; line < lines; ++line) {
        text.append(random() % 79, 'x');
        text += lineBreak;
    }
    return text;
}

void Load(benchmark::State& state) {
    const std::string text = SourceText(1'000'000, "\r\n");
    Measure(state, text, [&](TEditText&) { benchmark::DoNotOptimize(TEditText(text).Size()); });
}

/// All lines but the first and the last replaced by lines of a byte more.
void ReplaceBlock(benchmark::State& state, std::string_view newBreak, bool andUndo) {
    const auto lines = static_cast<std::size_t>(state.range(0));
    const std::string text = SourceText(lines, "\r\n");
    std::string newText;
    TEditText lineSource(text);
    for (int row = 2; row < lineSource.LineCount() - 1; ++row)
        newText.append(" ").append(lineSource.LineText(row)).append(newBreak);
    Measure(state, text, [&](TEditText& store) {
        TViewState view;
        const std::size_t from = store.LineStart(2);
        const std::size_t to = store.LineStart(store.LineCount() - 1);
        store.Replace(from, to, newText, brConvert);
        if (andUndo) store.Undo(view);
    });
}

void GetText(benchmark::State& state) {
    const std::string text = SourceText(1'000'000, "\r\n");
    Measure(state, text, [](TEditText& store) { benchmark::DoNotOptimize(store.Text().data()); });
}

/// One byte after the other changed all over a text of 100 MB, each edit a step of its own.
void ScatteredEdits(benchmark::State& state, bool inOrder) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::string text = SourceText(2'500'000, "\r\n");
    std::mt19937 random(2);
    std::vector<std::size_t> places(count);
    for (std::size_t& place : places) place = random() % text.size();
    if (inOrder) std::sort(places.begin(), places.end());
    Measure(state, text, [&](TEditText& store) {
        for (std::size_t edit = 0; edit < count; ++edit)
            store.Replace(places[edit], places[edit], "\n");
    });
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}

/// Typing at one place in the middle of a text of 100 MB.
void Typing(benchmark::State& state) {
    const std::string text = SourceText(2'500'000, "\r\n");
    Measure(state, text, [](TEditText& store) {
        std::size_t place = store.Size() / 2;
        TViewState view;
        for (int stroke = 0; stroke < 100'000; ++stroke) {
            store.BeginGroup(view, gkTyping);
            place = store.Replace(place, place, stroke % 40 == 0 ? "\r\n" : "x");
            view.Cursor = store.PosAt(place);
            store.EndGroup(view);
        }
    });
    state.SetItemsProcessed(state.iterations() * 100'000);
}

void Timed(benchmark::internal::Benchmark* bench) {
    bench->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(Load)->Apply(Timed);
BENCHMARK(GetText)->Apply(Timed);
BENCHMARK_CAPTURE(ReplaceBlock, same_breaks, "\r\n", false)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Apply(Timed);
BENCHMARK_CAPTURE(ReplaceBlock, converted, "\n", false)->Arg(1'000'000)->Apply(Timed);
BENCHMARK_CAPTURE(ReplaceBlock, and_undone, "\r\n", true)->Arg(1'000'000)->Apply(Timed);
BENCHMARK_CAPTURE(ScatteredEdits, in_order, true)->Arg(100'000)->Apply(Timed);
BENCHMARK_CAPTURE(ScatteredEdits, at_random, false)->Arg(500)->Apply(Timed);
BENCHMARK(Typing)->Apply(Timed);

} // namespace
} // namespace tarn
