// The settings editor: building its tree, the rows of a node, and one change notification. The
// yardstick is a plain Qt form with the same nodes, rows and controls, where Qt is there.

#include "Package.h"
#include "TBenchFolder.h"
#include "TExpManager.h"
#include "TIde.h"
#include "os/portable/TPortableOS.h"
#include "qsExpMng.h"
#include "qsSpcEditor.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <string>

#ifdef TARN_HAS_QT
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QTreeWidget>
#endif

namespace tarn {
namespace {

// --- What is edited ---------------------------------------------------------------------------

class TLeaves : public TCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TLeaves() : TCollection(TClassRef<TCollectionItem>::Of<TSpcItem>()) {}
};
constinit const TClassRecord TLeaves::ClassRecord{"TLeaves", &TCollection::ClassRecord,
                                                  CreateObject<TLeaves>};

enum TShade : std::uint8_t { shLight, shDark };
constexpr std::array<std::string_view, 2> ShadeNames = {"shLight", "shDark"};

} // namespace
template <> inline constexpr TTypeInfo TypeInfoOf<TShade> = EnumType("TShade", ShadeNames);
namespace {

/// An object with as many properties as its record says, of four kinds in turn.
class TWide : public TPersistent {
public:
    explicit TWide(const TClassRecord& record) : FRecord(record) {}
    const TClassRecord& ClassType() const override { return FRecord; }

    std::string Text = "text";
    int Number = 7;
    bool Flag = true;
    TShade Shade = shDark;

private:
    const TClassRecord& FRecord;
};

TPropInfo WideProp(std::size_t index, std::string_view name) {
    switch (index % 4) {
    case 0:
        return Published<&TWide::Text>(name);
    case 1:
        return Published<&TWide::Number>(name);
    case 2:
        return Published<&TWide::Flag>(name);
    default:
        return Published<&TWide::Shade>(name);
    }
}

/// A class that is made while the program runs, and kept to its end.
struct TWideClass {
    explicit TWideClass(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            Props.push_back(WideProp(i, Names.emplace_back("Property" + std::to_string(i))));
        Record.Published = Props;
    }
    std::deque<std::string> Names;
    std::vector<TPropInfo> Props;
    TClassRecord Record{"TWide", &TPersistent::ClassRecord};
};
const TClassRecord& WideRecord(std::int64_t count) {
    static std::map<std::int64_t, std::unique_ptr<TWideClass>> classes;
    auto& made = classes[count];
    if (!made) made = std::make_unique<TWideClass>(static_cast<std::size_t>(count));
    return made->Record;
}

/// A process with an editor whose window is open.
class TEditorWorld {
public:
    explicit TEditorWorld(TPersistent& root) : FBefore(InstallOS(&FOS)) {
        FApp = std::make_unique<TApplication>();
        FEditor = std::make_unique<TSpcEditor>();
        FEditor->FormOptions.Exclude(foModalShowing);
        FEditor->ShowTree(root);
        FApp->ProcessMessages();
    }
    TEditorWorld(const TEditorWorld&) = delete;
    TEditorWorld& operator=(const TEditorWorld&) = delete;
    ~TEditorWorld() {
        FEditor.reset();
        FApp.reset();
        InstallOS(FBefore);
    }
    TSpcEditor& Editor() { return *FEditor; }
    TApplication& App() { return *FApp; }

private:
    TPortableOS FOS;
    TOperatingSystem* FBefore;
    TScreen FScreen;
    std::unique_ptr<TApplication> FApp;
    std::unique_ptr<TSpcEditor> FEditor;
};

// --- The editor -------------------------------------------------------------------------------

void Tree(benchmark::State& state) {
    TLeaves leaves;
    for (std::int64_t i = 1; i < state.range(0); ++i) leaves.Add();
    TEditorWorld world(leaves);
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        world.Editor().BuildTree();
        world.App().ProcessMessages();
    }
    if (world.Editor().Form()->Tree().Items().Count() != state.range(0))
        state.SkipWithError("a node is missing");
    state.SetComplexityN(state.range(0));
}
BENCHMARK(Tree)->Arg(100)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond)->Complexity();

void Rows(benchmark::State& state) {
    TWide wide(WideRecord(state.range(0)));
    TEditorWorld world(wide);
    for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
        world.Editor().CreateNodeControls(&wide);
    if (world.Editor().Controls().Count() != state.range(0))
        state.SkipWithError("a row is missing");
}
BENCHMARK(Rows)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);

void Change(benchmark::State& state) {
    TWide wide(WideRecord(state.range(0)));
    TEditorWorld world(wide);
    TSpcEditor& editor = world.Editor();
    const int count = editor.Controls().Count();
    int row = 0;
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        editor.ControlChange(editor.Controls().Get(row).EModifyObject);
        row = (row + 7919) % count;
    }
    if (!editor.Modified()) state.SkipWithError("no change was seen");
}
BENCHMARK(Change)->Arg(100)->Arg(10'000);

// --- The pack's own tree ------------------------------------------------------------------------

/// Selects all nodes of the pack's settings, one after the other, in the window of "Edit...".
void PackNodes(benchmark::State& state) {
    const TBenchFolder folder;
    TPortableOS os;
    os.SetModuleFileName((folder.Path() / "package").string());
    TOperatingSystem* const before = InstallOS(&os);
    {
        TIde ide;
        ide.Packages().Load({InitializePackage, Register, FinalizePackage});
        ide.PumpMessages();
        int nodes = 0;
        auto modal = [&](TForm& form) {
            ide.PumpMessages();
            TTreeView& tree = dynamic_cast<TSpcForm&>(form).Tree();
            nodes = tree.Items().Count();
            for (auto _ : state) // NOLINT(clang-analyzer-deadcode.DeadStores)
                for (TTreeNode* node = tree.Items().GetFirstNode(); node; node = node->GetNext())
                    tree.SetSelected(node);
        };
        Application()->OnModal = TMethod<void(TForm&)>::Calling(modal);
        TExpManager::Instance()->EditSettings2(nullptr);
        Application()->OnModal = {};
        if (nodes == 0) state.SkipWithError("the window was not shown");
        state.counters["nodes"] = nodes;
    }
    InstallOS(before);
}
BENCHMARK(PackNodes)->Unit(benchmark::kMillisecond);

// --- The yardstick ----------------------------------------------------------------------------

#ifdef TARN_HAS_QT
void StartQt() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1); // NOLINT(concurrency-mt-unsafe): one thread
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    // It stays to the end of the process: Qt does not outlive its own statics.
    static auto* const app = new QApplication(argc, argv);
    benchmark::DoNotOptimize(app);
}

void QtTree(benchmark::State& state) {
    StartQt();
    QTreeWidget tree;
    tree.show();
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        tree.clear();
        auto* const root = new QTreeWidgetItem(&tree, {"TLeaves"});
        for (std::int64_t i = 1; i < state.range(0); ++i)
            new QTreeWidgetItem(root, {QString("TLeaves[%1]").arg(i - 1)});
        root->setExpanded(true);
        QApplication::processEvents();
    }
}
BENCHMARK(QtTree)->Arg(100)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

QWidget* QtControl(std::int64_t index, QWidget* parent) {
    switch (index % 4) {
    case 0:
        return new QLineEdit("text", parent);
    case 1:
        return new QLineEdit("7", parent);
    case 2: {
        auto* const box = new QCheckBox(parent);
        box->setChecked(true);
        return box;
    }
    default: {
        auto* const box = new QComboBox(parent);
        box->addItems({"shLight", "shDark"});
        box->setCurrentIndex(1);
        return box;
    }
    }
}

void QtRows(benchmark::State& state) {
    StartQt();
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        QWidget form;
        QFormLayout layout(&form);
        for (std::int64_t i = 0; i < state.range(0); ++i)
            layout.addRow(QString("Property%1 :").arg(i), QtControl(i, &form));
        form.show();
        QApplication::processEvents();
    }
}
BENCHMARK(QtRows)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);
#endif

} // namespace
} // namespace tarn
