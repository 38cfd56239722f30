// Properties by name: finding one in a class chain of 40, reading and writing an integer, a string
// and an enumeration, by name and by a path of three names; beside Qt's object properties where Qt
// is installed.

#include "prop_bench.h"
#include "bench_race.h"
#include "qsDataHndl2.h"

#include <array>
#include <string>

namespace tarn {

enum TShade : std::uint8_t { shLight, shMiddle, shDark };
inline constexpr std::string_view ShadeNames[] = {"shLight", "shMiddle", "shDark"};
template <> inline constexpr TTypeInfo TypeInfoOf<TShade> = EnumType("TShade", ShadeNames);

namespace {

class TBase : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    int Value = 0;
};
class TNode : public TBase {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TNode* Child = nullptr;
    int Width = 640;
    std::string Caption = "Orchard";
    TShade Shade = shMiddle;
};

constexpr TPropInfo BaseProps[] = {
    Published<&TBase::Value>("Align"),       Published<&TBase::Value>("Anchors"),
    Published<&TBase::Value>("Left"),        Published<&TBase::Value>("Top"),
    Published<&TBase::Value>("Height"),      Published<&TBase::Value>("Enabled"),
    Published<&TBase::Value>("Visible"),     Published<&TBase::Value>("Hint"),
    Published<&TBase::Value>("ShowHint"),    Published<&TBase::Value>("Font"),
    Published<&TBase::Value>("Color"),       Published<&TBase::Value>("Cursor"),
    Published<&TBase::Value>("TabOrder"),    Published<&TBase::Value>("TabStop"),
    Published<&TBase::Value>("PopupMenu"),   Published<&TBase::Value>("DragMode"),
    Published<&TBase::Value>("DragKind"),    Published<&TBase::Value>("DragCursor"),
    Published<&TBase::Value>("HelpContext"), Published<&TBase::Value>("ParentFont"),
    Published<&TBase::Value>("ParentColor"), Published<&TBase::Value>("ParentShowHint"),
    Published<&TBase::Value>("BiDiMode"),    Published<&TBase::Value>("Constraints"),
    Published<&TBase::Value>("BorderStyle"), Published<&TBase::Value>("BorderWidth"),
    Published<&TBase::Value>("AutoSize"),    Published<&TBase::Value>("AutoScroll"),
    Published<&TBase::Value>("Alignment"),   Published<&TBase::Value>("Layout"),
    Published<&TBase::Value>("WordWrap"),    Published<&TBase::Value>("ReadOnly"),
    Published<&TBase::Value>("MaxLength"),   Published<&TBase::Value>("HideSelection"),
    Published<&TBase::Value>("WantTabs"),    Published<&TBase::Value>("WantReturns"),
};
constexpr TPropInfo NodeProps[] = {
    Published<&TNode::Child>("Child"),
    Published<&TNode::Width>("Width"),
    Published<&TNode::Caption>("Caption"),
    Published<&TNode::Shade>("Shade"),
};
constinit const TClassRecord TBase::ClassRecord{"TBase", &TPersistent::ClassRecord, nullptr,
                                                BaseProps};
constinit const TClassRecord TNode::ClassRecord{"TNode", &TBase::ClassRecord, nullptr, NodeProps};

struct TChain {
    TChain() {
        Root.Child = &Middle;
        Middle.Child = &Leaf;
    }
    TNode Root, Middle, Leaf;
};

/// What is written: two values by turns.
struct TRow {
    std::string_view Name, Path;
    std::array<TVariant, 2> Values;
    std::array<std::string_view, 2> Texts;
};
const std::array<TRow, 3>& Rows() {
    static const std::array<TRow, 3> rows{{
        {"Width", "Child.Child.Width", {640, 480}, {"640", "480"}},
        {"Caption", "Child.Child.Caption", {"Orchard", "Garden"}, {"Orchard", "Garden"}},
        {"Shade", "Child.Child.Shade", {shLight, shDark}, {"shLight", "shDark"}},
    }};
    return rows;
}

std::size_t Weight(const TVariant& value) {
    return static_cast<std::size_t>(value.Kind());
}

TPropRun OwnAccess(TChain& chain, const TPropAccess& access) {
    const TRow& row = Rows()[access.Value];
    TNode& root = chain.Root;
    const std::string_view path = access.Path ? row.Path : row.Name;
    const auto repeat = [](auto once) {
        return [once] {
            std::size_t sum = 0;
            for (std::size_t i = 0; i < PropOperations; ++i) sum += once(i);
            return sum;
        };
    };
    if (access.Write && access.Text)
        return repeat([&root, &row, path](std::size_t i) {
            SetPropByText(root, path, row.Texts[i % 2]);
            return i;
        });
    if (access.Write)
        return repeat([&root, &row, path](std::size_t i) {
            SetPropByVariant(root, path, row.Values[i % 2]);
            return i;
        });
    if (access.Text)
        return repeat([&root, path](std::size_t) { return GetPropAsText(root, path).size(); });
    return repeat([&root, path](std::size_t) { return Weight(GetPropAsVariant(root, path)); });
}

/// Ours alone or beside the yardstick; the counters are nanoseconds of one operation.
void Measure(benchmark::State& state, const TPropRun& ours, const TPropRun& yardstick) {
    if (yardstick) {
        Race(state, ours, yardstick);
        for (const char* const name : {"ours_ns", "yard_ns"})
            state.counters[name].value /= PropOperations;
        return;
    }
    Race(state, ours, [] { return 0; });
    const double time = state.counters["ours_ns"].value / PropOperations;
    state.counters.clear();
    state.counters["ours_ns"] = time;
}

void Access(benchmark::State& state) {
    const TPropAccess access{static_cast<TPropValue>(state.range(0)), state.range(1) != 0,
                             state.range(2) != 0, state.range(3) != 0};
    TChain chain;
    Measure(state, OwnAccess(chain, access), QtAccess(access));
}
BENCHMARK(Access)
    ->ArgNames({"kind", "write", "path", "text"})
    ->ArgsProduct({{pvInteger, pvString, pvEnum}, {0, 1}, {0, 1}, {0, 1}})
    ->UseManualTime();

/// Every name of the class chain in turn.
void LookUp(benchmark::State& state) {
    std::vector<std::string_view> names;
    ForEachProp(TNode::ClassRecord, [&](const TPropInfo& prop) { names.push_back(prop.Name); });
    const auto ours = [&names] {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < PropOperations; ++i)
            sum += TNode::ClassRecord.FindProp(names[i % names.size()])->Name.size();
        return sum;
    };
    Measure(state, ours, QtLookUp());
}
BENCHMARK(LookUp)->UseManualTime();

/// A path that the caller keeps.
void KeptPath(benchmark::State& state) {
    TChain chain;
    TPropRef width("Child.Child.Width");
    const auto ours = [&] {
        std::size_t sum = 0;
        for (int i = 0; i < PropOperations; ++i) {
            TObject* owner = &chain.Root;
            const TPropInfo* const prop = width.Find(owner);
            sum += Weight(GetPropAsVariant(*owner, *prop));
        }
        return sum;
    };
    Measure(state, ours, {});
}
BENCHMARK(KeptPath)->UseManualTime();

} // namespace

#ifndef TARN_HAS_QT
TPropRun QtAccess(const TPropAccess&) {
    return {};
}
TPropRun QtLookUp() {
    return {};
}
#endif

} // namespace tarn
