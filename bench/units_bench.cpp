// The unit manager over many open units: each operation with what it does to the window's list and
// the editor's tabs.

#include "Package.h"
#include "TBenchFolder.h"
#include "TIde.h"
#include "os/portable/TPortableOS.h"
#include "qsExpMng.h"
#include "units/TUnitForm.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

namespace tarn {
namespace {

constexpr std::int64_t UnitsInFolder = 100;

/// An IDE with the pack, and so many files of units that are not open yet.
class TUnitWorld {
public:
    /// \param inFolder the most units of one folder: the IDE looks through it for each unit's form
    explicit TUnitWorld(std::int64_t units, std::int64_t inFolder = UnitsInFolder)
        : FFormerOS(InstallOS(&FOS)) {
        FOS.SetModuleFileName((FFolder.Path() / "package").string());
        FIde = std::make_unique<TIde>();
        FIde->Packages().Load({InitializePackage, Register, FinalizePackage});
        FIde->PumpMessages();
        std::mt19937 random(1);
        for (std::int64_t i = 0; i < units; ++i) {
            const std::string name =
                Format("Unit%x_%d.pas", {static_cast<int>(random() % 100'000), i});
            const std::filesystem::path folder = FFolder.Path() / std::to_string(i / inFolder);
            std::filesystem::create_directories(folder);
            std::ofstream(folder / name) << "unit;\n";
            FFiles.push_back((folder / name).string());
        }
        const TExpObjectList& list = *TExpManager::Instance()->ExpObjects();
        FManager = ClassCast<TUnitManager>(list.Get(list.IndexOf("UnitManager")).Expert.Get());
    }
    TUnitWorld(const TUnitWorld&) = delete;
    TUnitWorld& operator=(const TUnitWorld&) = delete;
    ~TUnitWorld() {
        FIde.reset();
        InstallOS(FFormerOS);
    }
    void OpenUnits() {
        for (const std::string& file : FFiles) FIde->Modules().OpenUnit(file);
    }
    /// The window of the open units.
    TUnitForm& Form() {
        if (!FManager->Form()) FIde->PressKey(TextToShortCut("Ctrl+Shift+Q"));
        return *FManager->Form();
    }
    TIde& Ide() { return *FIde; }

private:
    TBenchFolder FFolder;
    TPortableOS FOS;
    TOperatingSystem* FFormerOS;
    std::unique_ptr<TIde> FIde;
    std::vector<std::string> FFiles;
    TUnitManager* FManager = nullptr;
};

using TOperation = void (*)(TUnitForm& form);

void Fill(TUnitForm& form) {
    form.PopulateUnitList();
}
/// A tenth of the units is left.
void Filter(TUnitForm& form) {
    form.FilterText().SetText("7.PAS");
    form.FilterUnits();
}
void Sort(TUnitForm& form) {
    form.SortUnits();
}
void WriteOrder(TUnitForm& form) {
    form.AssignItems();
}
void MoveEverySecond(TUnitForm& form) {
    for (int i = 0; i < form.UnitList().Count(); ++i) form.UnitList().SetSelected(i, i % 2 == 1);
    form.MoveItems(true);
}

/// With what the edit window does when it is asked for its tabs afterwards.
void Units(benchmark::State& state, TOperation operation) {
    TUnitWorld world(state.range(0));
    world.OpenUnits();
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        world.Form().PopulateUnitList();
        state.ResumeTiming();
        operation(world.Form());
        benchmark::DoNotOptimize(world.Ide().EditWindow().Tabs());
    }
    if (world.Ide().EditWindow().Tabs().size() != static_cast<std::size_t>(state.range(0)))
        state.SkipWithError("a tab is lost");
}

/// One run of `operation` on a world of its own, which `prepare` has made ready.
template <class P, class O>
void Once(benchmark::State& state, std::int64_t inFolder, P prepare, O operation) {
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        auto world = std::make_unique<TUnitWorld>(state.range(0), inFolder);
        prepare(*world);
        state.ResumeTiming();
        const bool done = operation(*world);
        state.PauseTiming();
        if (!done) state.SkipWithError("not all units are open, or closed");
        world.reset();
        state.ResumeTiming();
    }
}

void OpenAll(benchmark::State& state, std::int64_t inFolder) {
    Once(
        state, inFolder, [](TUnitWorld&) {},
        [&](TUnitWorld& world) {
            world.OpenUnits();
            return world.Ide().Modules().Count() == state.range(0);
        });
}

/// All units by their names, in the order of opening or in another one.
void CloseAll(benchmark::State& state, bool sorted) {
    const auto prepare = [=](TUnitWorld& world) {
        world.OpenUnits();
        if (sorted) world.Form().SortUnits();
        world.Form().UnitList().SelectAll();
    };
    Once(state, UnitsInFolder, prepare, [](TUnitWorld& world) {
        world.Form().CloseUnits();
        return world.Ide().Modules().Count() == 0;
    });
}

void Sizes(benchmark::internal::Benchmark* bench) {
    // To open the units takes longer than to work on them: that is done once each.
    bench->Arg(1'000)->Arg(10'000)->Iterations(20)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(Units, Fill, Fill)->Apply(Sizes);
BENCHMARK_CAPTURE(Units, Filter, Filter)->Apply(Sizes);
BENCHMARK_CAPTURE(Units, Sort, Sort)->Apply(Sizes);
BENCHMARK_CAPTURE(Units, WriteOrder, WriteOrder)->Apply(Sizes);
BENCHMARK_CAPTURE(Units, MoveEverySecond, MoveEverySecond)->Apply(Sizes);

void OnceEach(benchmark::internal::Benchmark* bench) {
    bench->Arg(1'000)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(OpenAll, InManyFolders, UnitsInFolder)->Apply(OnceEach);
BENCHMARK_CAPTURE(OpenAll, InOneFolder, 1'000'000)->Apply(OnceEach);
BENCHMARK_CAPTURE(CloseAll, AsOpened, false)->Apply(OnceEach);
BENCHMARK_CAPTURE(CloseAll, Sorted, true)->Apply(OnceEach);

} // namespace
} // namespace tarn
