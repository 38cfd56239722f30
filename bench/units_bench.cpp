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

/// An IDE with so many units, the pack and the window of the open units.
class TUnitWorld {
public:
    explicit TUnitWorld(std::int64_t units) : FFormerOS(InstallOS(&FOS)) {
        FOS.SetModuleFileName((FFolder.Path() / "package").string());
        FIde = std::make_unique<TIde>();
        FIde->Packages().Load({InitializePackage, Register, FinalizePackage});
        FIde->PumpMessages();
        std::mt19937 random(1);
        for (std::int64_t i = 0; i < units; ++i) {
            const std::string name =
                Format("Unit%x_%d.pas", {static_cast<int>(random() % 100'000), i});
            // The IDE looks through the folder of each unit for its form.
            const std::filesystem::path folder = FFolder.Path() / std::to_string(i / 100);
            std::filesystem::create_directories(folder);
            std::ofstream(folder / name) << "unit;\n";
            FIde->Modules().OpenUnit((folder / name).string());
        }
        FIde->PressKey(TextToShortCut("Ctrl+Shift+Q"));
        const TExpObjectList& list = *TExpManager::Instance()->ExpObjects();
        FManager = ClassCast<TUnitManager>(list.Get(list.IndexOf("UnitManager")).Expert.Get());
    }
    TUnitWorld(const TUnitWorld&) = delete;
    TUnitWorld& operator=(const TUnitWorld&) = delete;
    ~TUnitWorld() {
        FIde.reset();
        InstallOS(FFormerOS);
    }
    TUnitForm& Form() { return *FManager->Form(); }
    TIde& Ide() { return *FIde; }

private:
    TBenchFolder FFolder;
    TPortableOS FOS;
    TOperatingSystem* FFormerOS;
    std::unique_ptr<TIde> FIde;
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

/// All units by their names.
void CloseAll(benchmark::State& state) {
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        auto world = std::make_unique<TUnitWorld>(state.range(0));
        world->Form().UnitList().SelectAll();
        state.ResumeTiming();
        world->Form().CloseUnits();
        state.PauseTiming();
        if (world->Ide().Modules().Count() > 0) state.SkipWithError("not all are closed");
        world.reset();
        state.ResumeTiming();
    }
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
BENCHMARK(CloseAll)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
} // namespace tarn
