// Saving and loading lists of objects in each format: the time for each of them must not grow with
// their number.

#include "TObjectStorage.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TStrings.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace tarn {
namespace {

class TSetting : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 0;
    bool Enabled = true;
    std::string Caption;
};
constexpr TPropInfo SettingProps[] = {Published<&TSetting::Size>("Size"),
                                      Published<&TSetting::Enabled>("Enabled"),
                                      Published<&TSetting::Caption>("Caption")};
constinit const TClassRecord TSetting::ClassRecord{"TSetting", &TPersistent::ClassRecord,
                                                   CreateObject<TSetting>, SettingProps};

class TSettings {
public:
    explicit TSettings(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            auto setting = std::make_unique<TSetting>();
            setting->Size = static_cast<int>(i);
            setting->Caption = Format("Setting %d", {i});
            FList.push_back(setting.get());
            FOwned.push_back(std::move(setting));
        }
    }
    TObjectList List() const { return FList; }

private:
    std::vector<std::unique_ptr<TSetting>> FOwned;
    std::vector<TPersistent*> FList;
};

void SaveIn(TObjectStorageFormat format, const TSettings& settings, TStream& stream) {
    TObjectStorage storage;
    storage.SetFormat(format);
    storage.SaveObjects(settings.List(), stream, TStringList());
}

TObjectStorageFormat FormatOf(const benchmark::State& state) {
    return static_cast<TObjectStorageFormat>(state.range(0));
}

void ReportEach(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(1));
    state.SetComplexityN(state.range(1));
}

void SaveAll(benchmark::State& state) {
    const TSettings settings(state.range(1));
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        TMemoryStream stream;
        SaveIn(FormatOf(state), settings, stream);
        benchmark::DoNotOptimize(stream.Memory());
    }
    ReportEach(state);
}

void LoadAll(benchmark::State& state) {
    const TSettings settings(state.range(1));
    TMemoryStream stream;
    SaveIn(FormatOf(state), settings, stream);
    TObjectStorage storage;
    storage.SetFormat(FormatOf(state));
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        stream.SetPosition(0);
        if (!storage.SafeLoadObjects(settings.List(), stream))
            state.SkipWithError("not all objects were loaded");
    }
    ReportEach(state);
}

void Formats(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"format", "objects"})->Unit(benchmark::kMillisecond);
    for (const int format : {osfBin, osfResBin, osfExtBin, osfText})
        for (const int count : {1000, 10000, 100000}) bench->Args({format, count});
}
BENCHMARK(SaveAll)->Apply(Formats);
BENCHMARK(LoadAll)->Apply(Formats);

} // namespace
} // namespace tarn
