#pragma once

#include "vcl/Forms.h"

#include <functional>
#include <map>
#include <string>

namespace tarn {

/// A pane of a CPU window of our own: published properties over plain data, and a record of how it
/// was painted.
class TStubPane : public TControl, private IControlPeer {
public:
    TStubPane(TForm& window, std::string_view name) : TControl(&window) {
        SetName(name);
        SetParent(&window);
        Peer = this;
    }
    void SetPlace(std::int32_t value) {
        Place = value;
        SeenPainting = SeenPainting || Painting;
        if (OnMove) OnMove();
    }
    std::int32_t GetPlace() const { return Place; }

    std::int32_t Place = 0;
    std::function<void()> OnMove;
    bool Painting = true;
    bool SeenPainting = false; ///< it was painted while the place moved
    int Suspended = 0;         ///< how often painting was held back

private:
    void Invalidate(TControl&) override {}
    void Redraw(TControl&, std::uint32_t) override {}
    void StateChanged(TControl&) override {}
    void SetRedraw(TControl&, bool on) override {
        Painting = on;
        Suspended += !on;
    }
};

struct TStubCode {
    int Size;
    std::string Text, Label, Source;
};

class TStubDisassembly : public TStubPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    using TStubPane::TStubPane;

    std::string Label() const { return At().Label; }
    std::string Source() const { return At().Source; }
    std::string Disassembly() const { return At().Text; }
    std::map<std::uint32_t, TStubCode> Code; ///< by its first address

private:
    /// What covers the place; empty where there is nothing.
    TStubCode At() const {
        const auto place = static_cast<std::uint32_t>(Place);
        auto next = Code.upper_bound(place);
        if (next == Code.begin()) return {};
        --next;
        const bool covers = place - next->first < static_cast<std::uint32_t>(next->second.Size);
        return covers ? next->second : TStubCode{};
    }
};

class TStubData : public TStubPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    using TStubPane::TStubPane;

    std::string Data() const {
        const auto found = Cells.find(static_cast<std::uint32_t>(Place));
        return found == Cells.end() ? Empty : found->second;
    }
    std::map<std::uint32_t, std::string> Cells;
    std::string Empty = "00";
};

namespace stub {

inline constexpr TPropInfo DisassemblyProps[] = {
    Published<&TStubPane::GetPlace, &TStubPane::SetPlace>("SelectedAddress"),
    Published<&TStubDisassembly::Label>("SelectedLabel"),
    Published<&TStubDisassembly::Source>("SelectedSource"),
    Published<&TStubDisassembly::Disassembly>("SelectedDisassembly"),
};
inline constexpr TPropInfo DataProps[] = {
    Published<&TStubPane::GetPlace, &TStubPane::SetPlace>("SelectedOffset"),
    Published<&TStubData::Data>("SelectedData"),
};

} // namespace stub

inline constinit const TClassRecord TStubDisassembly::ClassRecord{
    "TStubDisassembly", &TControl::ClassRecord, nullptr, stub::DisassemblyProps};
inline constinit const TClassRecord TStubData::ClassRecord{"TStubData", &TControl::ClassRecord,
                                                           nullptr, stub::DataProps};

/// A CPU window of our own with the panes that are read line by line.
class TStubCpuWindow : public TForm {
public:
    TStubCpuWindow()
        : Disassembly(new TStubDisassembly(*this, "DisassemblerView1")),
          Dump(new TStubData(*this, "DumpView")), Stack(new TStubData(*this, "StackView")) {
        SetName("DisassemblyView");
        Show();
    }
    TStubDisassembly* Disassembly;
    TStubData* Dump;
    TStubData* Stack;
};

} // namespace tarn
