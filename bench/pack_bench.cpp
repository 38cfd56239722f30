// The pack as a whole: start-up until the menu stands, and block commands on large texts, through
// menu, dispatch, editor and undo.

#include "Package.h"
#include "TBenchFolder.h"
#include "TIde.h"
#include "bench_race.h"
#include "block/BlockShift.h"
#include "os/portable/TPortableOS.h"
#include "qsExpMng.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace tarn {
namespace {

const TIdePackage Pack{InitializePackage, Register, FinalizePackage};

/// The operating system layer and an IDE on it.
struct TWorld {
    TWorld() : Former(InstallOS(&OS)), Ide(std::make_unique<TIde>()) {}
    TWorld(const TWorld&) = delete;
    TWorld& operator=(const TWorld&) = delete;
    ~TWorld() {
        Ide.reset();
        InstallOS(Former);
    }
    TPortableOS OS;
    TOperatingSystem* Former;
    std::unique_ptr<TIde> Ide;
};

/// From the package's initialization until its menu has been built from the posted message, without
/// a settings file and with the one that the pack has saved.
void StartUp(benchmark::State& state) {
    const bool withFile = state.range(0) != 0;
    const TBenchFolder folder;
    TWorld world;
    world.OS.SetModuleFileName((folder.Path() / "package").string());
    if (withFile) {
        world.Ide->Packages().Load(Pack);
        world.Ide->Packages().Unload();
    }
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        if (std::filesystem::exists(folder.Path() / "ExpData.spc") != withFile)
            state.SkipWithError("not the start that was meant");
        world.Ide->Packages().Load(Pack);
        world.Ide->PumpMessages();
        state.PauseTiming();
        if (!TExpManager::Instance()->TopItem()) state.SkipWithError("no menu");
        world.Ide->Packages().Unload();
        if (!withFile) std::filesystem::remove(folder.Path() / "ExpData.spc");
        state.ResumeTiming();
    }
}
BENCHMARK(StartUp)->ArgName("settings")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// Source-like lines: indents of an even number of blanks from 2, some lines blank.
std::string SourceText(std::int64_t lines) {
    std::mt19937 random(1);
    std::string text;
    for (std::int64_t line = 0; line < lines; ++line) {
        if (random() % 10 != 0)
            text.append(2 + 2 * (random() % 6), ' ').append(20 + random() % 40, 'x');
        text += "\r\n";
    }
    return text;
}

std::size_t PeakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

/// Shifts the whole text by the menu command, against a pass that copies the text.
/// ratio: one shift in such copies; memory: the peak above what stood before, in texts, with the
/// text in the editor, the undo step and the copy of the yardstick.
void ShiftBlock(benchmark::State& state) {
    const std::string text = SourceText(state.range(0));
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("tarn-bench-" + std::to_string(::getpid()));
    std::ofstream(file, std::ios::binary) << text;
    const std::size_t before = PeakBytes();
    TWorld world;
    world.Ide->Packages().Load(Pack);
    world.Ide->PumpMessages();
    world.Ide->Modules().OpenFile(file.string());
    TSourceView& view = *world.Ide->CurrentView();
    TMenuItem* const right = world.Ide->MainForm().Menu->FindItem(scCtrl | 0xBE);
    TMenuItem* const left = world.Ide->MainForm().Menu->FindItem(scCtrl | 0xBC);
    bool toTheRight = false;
    Race(
        state,
        [&] {
            toTheRight = !toTheRight;
            view.Select({1, 1}, {static_cast<int>(state.range(0)) + 1, 1});
            return world.Ide->ClickMenuItem(toTheRight ? *right : *left);
        },
        [&] { return std::string(text); });
    if (world.OS.Beeps() > 0) state.SkipWithError("refused");
    state.counters["memory"] =
        static_cast<double>(PeakBytes() - before) / static_cast<double>(text.size());
    state.SetComplexityN(state.range(0));
    std::filesystem::remove(file);
}

/// The transformation alone.
void ShiftTextOnly(benchmark::State& state) {
    const std::string text = SourceText(state.range(0));
    Race(
        state, [&] { return ShiftText(text, 1, true)->Text.size(); },
        [&] { return std::string(text); });
    state.SetComplexityN(state.range(0));
}

BENCHMARK(ShiftTextOnly)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(ShiftBlock)
    ->Arg(1'000'000)
    ->Iterations(1)
    ->Repetitions(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tarn
