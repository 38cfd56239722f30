// Saving and loading a settings tree, to a file and back, beside QSettings with the same values in
// an INI file. The time for each item must not grow with their number.

#include "TBenchFolder.h"
#include "bench_race.h"
#include "qsSpcMng.h"

#include <memory>
#include <string>

#ifdef TARN_HAS_QT
#include <QSettings>
#endif

namespace tarn {
namespace {

class TCommand : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string ItemID;
    std::string Caption;
    int ImageIndex = -1;
    bool HaveLineBefore = false;
    std::string ShortCutText;
};
constexpr TPropInfo CommandProps[] = {Published<&TCommand::ItemID>("ItemID"),
                                      Published<&TCommand::Caption>("Caption"),
                                      Published<&TCommand::ImageIndex>("ImageIndex"),
                                      Published<&TCommand::HaveLineBefore>("HaveLineBefore"),
                                      Published<&TCommand::ShortCutText>("ShortCutText")};
constinit const TClassRecord TCommand::ClassRecord{"TCommand", &TSpcItem::ClassRecord,
                                                   CreateObject<TCommand>, CommandProps};

class TCommands : public TFixedCollection {
public:
    TCommands() : TFixedCollection(TClassRef<TCollectionItem>::Of<TCommand>()) {}
    std::string GetUpdateName() const override { return "ItemID"; }
};

/// A tree of one collection. The stored order is `backwards` of what the program brings.
class TTree : public TSpcObject {
public:
    TTree(std::int64_t count, bool backwards) {
        for (std::int64_t i = 0; i < count; ++i) {
            const std::int64_t number = backwards ? count - 1 - i : i;
            auto* const item = static_cast<TCommand*>(Commands.Add(Format("Item%d", {number})));
            item->Caption = Format("Do what number %d says", {number});
            item->ImageIndex = static_cast<int>(number);
            item->HaveLineBefore = number % 5 == 0;
            item->ShortCutText = "Ctrl+Shift+K";
        }
    }
    TCommands Commands;

protected:
    void DefineProperties(TFiler& filer) override {
        DefineKeyedCollection(filer, "Commands_", Commands, false);
    }
};

std::string FileName(const TBenchFolder& folder, std::string_view name) {
    return (folder.Path() / name).string();
}

TObjectStorageFormat FormatOf(const benchmark::State& state) {
    return static_cast<TObjectStorageFormat>(state.range(1));
}

/// The saver's own work and that of the file, with its flushes to the disk.
void SaveTree(benchmark::State& state) {
    const TBenchFolder folder;
    TTree tree(state.range(0), false);
    const std::string file = FileName(folder, "tree.spc");
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
        SaveSpc(&tree, file, FormatOf(state));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// All or nothing, and with every item at another place than the stored one.
void LoadTree(benchmark::State& state) {
    const TBenchFolder folder;
    const std::string file = FileName(folder, "tree.spc");
    TTree stored(state.range(0), true);
    SaveSpc(&stored, file, FormatOf(state));
    TObjectSaver saver;
    saver.DetectFormat = true;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        auto tree = std::make_unique<TTree>(state.range(0), false);
        TPersistent* const object = tree.get();
        state.ResumeTiming();
        if (!saver.LoadWhole({&object, 1}, file)) state.SkipWithError("not loaded");
        state.PauseTiming();
        if (tree->Commands.Items(0)->GetNodePropName() !=
            stored.Commands.Items(0)->GetNodePropName())
            state.SkipWithError("not in the stored order");
        tree.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"items", "format"})->Unit(benchmark::kMillisecond);
    for (const int format : {osfBin, osfText})
        for (const int count : {1000, 10000, 100000}) bench->Args({count, format});
}
BENCHMARK(SaveTree)->Apply(Sizes);
BENCHMARK(LoadTree)->Apply(Sizes);

#ifdef TARN_HAS_QT

std::size_t SaveByQt(const TTree& tree, const std::string& file) {
    QSettings settings(QString::fromStdString(file), QSettings::IniFormat);
    for (int i = 0; i < tree.Commands.Count(); ++i) {
        const auto& item = *static_cast<TCommand*>(tree.Commands.Items(i));
        settings.beginGroup(QString::fromStdString(item.ItemID));
        settings.setValue("Caption", QString::fromStdString(item.Caption));
        settings.setValue("ImageIndex", item.ImageIndex);
        settings.setValue("HaveLineBefore", item.HaveLineBefore);
        settings.setValue("ShortCutText", QString::fromStdString(item.ShortCutText));
        settings.endGroup();
    }
    settings.sync();
    return settings.status() == QSettings::NoError;
}

std::size_t LoadByQt(TTree& tree, const std::string& file) {
    QSettings settings(QString::fromStdString(file), QSettings::IniFormat);
    for (int i = 0; i < tree.Commands.Count(); ++i) {
        auto& item = *static_cast<TCommand*>(tree.Commands.Items(i));
        settings.beginGroup(QString::fromStdString(item.ItemID));
        item.Caption = settings.value("Caption").toString().toStdString();
        item.ImageIndex = settings.value("ImageIndex").toInt();
        item.HaveLineBefore = settings.value("HaveLineBefore").toBool();
        item.ShortCutText = settings.value("ShortCutText").toString().toStdString();
        settings.endGroup();
    }
    return static_cast<std::size_t>(tree.Commands.Count());
}

void SaveAgainstQt(benchmark::State& state) {
    const TBenchFolder folder;
    TTree tree(state.range(0), false);
    Race(
        state,
        [&] {
            SaveSpc(&tree, FileName(folder, "tree.spc"), osfBin);
            return 0;
        },
        [&] { return SaveByQt(tree, FileName(folder, "tree.ini")); });
}

void LoadAgainstQt(benchmark::State& state) {
    const TBenchFolder folder;
    TTree tree(state.range(0), false);
    SaveSpc(&tree, FileName(folder, "tree.spc"), osfBin);
    SaveByQt(tree, FileName(folder, "tree.ini"));
    TObjectSaver saver;
    TPersistent* const object = &tree;
    Race(
        state,
        [&] {
            return saver.LoadWhole({&object, 1}, FileName(folder, "tree.spc"));
        },
        [&] { return LoadByQt(tree, FileName(folder, "tree.ini")); });
}

void RaceSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgName("items")->Arg(1000)->Arg(100000)->UseManualTime();
    bench->Unit(benchmark::kMillisecond);
}
BENCHMARK(SaveAgainstQt)->Apply(RaceSizes);
BENCHMARK(LoadAgainstQt)->Apply(RaceSizes);

#endif

} // namespace
} // namespace tarn
