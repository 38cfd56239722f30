#include "Windows/TCpuWindow.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

// --- What the panes publish -------------------------------------------------------------------

constexpr TPropInfo DisassemblerProps[] = {
    Published<&TAddressPane::Selected, &TAddressPane::SetSelected>("SelectedAddress"),
    Published<&TDisassemblerView::SelectedLabel>("SelectedLabel"),
    Published<&TDisassemblerView::SelectedSource>("SelectedSource"),
    Published<&TDisassemblerView::SelectedDisassembly>("SelectedDisassembly"),
};
constexpr TPropInfo RegisterProps[] = {Published<&TRegisterView::CurrentRegs>("CurrentRegs")};
constexpr TPropInfo FlagsProps[] = {Published<&TFlagsView::CurrentFlags>("CurrentFlags")};
constexpr TPropInfo DumpProps[] = {
    Published<&TAddressPane::Selected, &TAddressPane::SetSelected>("SelectedOffset"),
    Published<&TDumpView::SelectedData>("SelectedData"),
};
constexpr TPropInfo StackProps[] = {
    Published<&TAddressPane::Selected, &TAddressPane::SetSelected>("SelectedOffset"),
    Published<&TStackView::SelectedData>("SelectedData"),
};

template <std::size_t... I>
constexpr std::array<TPropInfo, sizeof...(I)> PublishRegisters(std::index_sequence<I...>) {
    return {Published<&TCurrentRegs::Value<static_cast<TCpuRegister>(I)>>(CpuRegisters[I].Name)...};
}
template <std::size_t... I>
constexpr std::array<TPropInfo, sizeof...(I)> PublishFlags(std::index_sequence<I...>) {
    return {Published<&TCurrentFlags::Value<static_cast<TCpuFlag>(I)>>(CpuFlags[I].Name)...};
}
constexpr auto RegsProps = PublishRegisters(std::make_index_sequence<CpuRegisterCount>());
constexpr auto CurrentFlagsProps = PublishFlags(std::make_index_sequence<CpuFlagCount>());

} // namespace

constinit const TClassRecord TCpuPane::ClassRecord{"TCpuPane", &TControl::ClassRecord};
constinit const TClassRecord TAddressPane::ClassRecord{"TAddressPane", &TCpuPane::ClassRecord};
constinit const TClassRecord TDisassemblerView::ClassRecord{
    "TDisassemblerView", &TAddressPane::ClassRecord, nullptr, DisassemblerProps};
constinit const TClassRecord TCurrentRegs::ClassRecord{"TCurrentRegs", &TPersistent::ClassRecord,
                                                       nullptr, RegsProps};
constinit const TClassRecord TRegisterView::ClassRecord{"TRegisterView", &TCpuPane::ClassRecord,
                                                        nullptr, RegisterProps};
constinit const TClassRecord TCurrentFlags::ClassRecord{"TCurrentFlags", &TPersistent::ClassRecord,
                                                        nullptr, CurrentFlagsProps};
constinit const TClassRecord TFlagsView::ClassRecord{"TFlagsView", &TCpuPane::ClassRecord, nullptr,
                                                     FlagsProps};
constinit const TClassRecord TDumpView::ClassRecord{"TDumpView", &TAddressPane::ClassRecord,
                                                    nullptr, DumpProps};
constinit const TClassRecord TStackView::ClassRecord{"TStackView", &TAddressPane::ClassRecord,
                                                     nullptr, StackProps};
constinit const TClassRecord TCpuWindow::ClassRecord{"TCpuWindow", &TForm::ClassRecord};

// --- The panes --------------------------------------------------------------------------------

TCpuPane::TCpuPane(TControl& window, std::string_view name, TStoppedState state)
    : TControl(&window), FState(std::move(state)) {
    SetName(name);
    SetParent(&window);
}

void TCpuPane::ShowState(TStoppedState state) {
    FState = std::move(state);
    StateChanged();
}

void TAddressPane::SetSelected(int value) {
    FSelected = static_cast<std::uint32_t>(value);
    StateChanged();
}

TDisassemblerView::TDisassemblerView(TControl& window, TStoppedState state)
    : TAddressPane(window, "DisassemblerView1", std::move(state)) {
    FSelected = FState->Register(rgEIP);
}

void TDisassemblerView::ShowState(TStoppedState state) {
    FSelected = state->Register(rgEIP);
    TAddressPane::ShowState(std::move(state));
}

std::uint32_t TDisassemblerView::RowAt(std::uint32_t address) const {
    return DisassemblyLine(*FState, address).Address;
}

std::uint32_t TDisassemblerView::NextRow(std::uint32_t row) const {
    const std::size_t size = DisassemblyLine(*FState, row).Bytes.size();
    return row + std::max(static_cast<std::uint32_t>(size), 1u);
}

std::string TDisassemblerView::RowText(std::uint32_t row) const {
    const TInstruction line = DisassemblyLine(*FState, row);
    std::string text;
    for (const std::string& above : {line.Label, line.Source})
        if (!above.empty()) text += above + "\n";
    return text + DisassemblyText(line);
}

TRegisterView::TRegisterView(TControl& window, TStoppedState state)
    : TCpuPane(window, "RegisterView", std::move(state)) {}

TFlagsView::TFlagsView(TControl& window, TStoppedState state)
    : TCpuPane(window, "FlagsView", std::move(state)) {}

TDumpView::TDumpView(TControl& window, TStoppedState state)
    : TAddressPane(window, "DumpView", std::move(state)) {
    FSelected = FState->DataAddress();
}

std::string TDumpView::SelectedData() const {
    const auto byte = FState->ByteAt(FSelected);
    return byte ? HexText(*byte, 2) : "??";
}

/// The bytes, and what of them are characters.
std::string TDumpView::RowText(std::uint32_t row) const {
    std::string bytes, characters;
    for (std::uint32_t i = 0; i < RowSize; ++i) {
        const auto byte = FState->ByteAt(row + i);
        bytes += " " + (byte ? HexText(*byte, 2) : "??");
        characters += byte && *byte >= ' ' && *byte < 0x7F ? static_cast<char>(*byte) : '.';
    }
    return HexText(row) + bytes + " " + characters;
}

TStackView::TStackView(TControl& window, TStoppedState state)
    : TAddressPane(window, "StackView", std::move(state)) {
    FSelected = FState->Register(rgESP);
}

void TStackView::ShowState(TStoppedState state) {
    FSelected = state->Register(rgESP);
    TAddressPane::ShowState(std::move(state));
}

std::uint32_t TStackView::RowAt(std::uint32_t address) const {
    return address - (address - FState->Register(rgESP)) % 4;
}

std::string TStackView::EntryText(std::uint32_t address) const {
    const auto entry = FState->EntryAt(address);
    return entry ? HexText(*entry) : "????????";
}

// --- The window -------------------------------------------------------------------------------

TCpuWindow::TCpuWindow(const TStoppedState& state) {
    SetName("DisassemblyView");
    SetCaption("CPU");
    SetBoundsRect({0, 0, 760, 460});
    // The window owns its panes.
    new TDisassemblerView(*this, state);
    new TRegisterView(*this, state);
    new TFlagsView(*this, state);
    new TDumpView(*this, state);
    new TStackView(*this, state);
}

/// Code above the memory dump; registers and flags above the stack.
void TCpuWindow::AlignControls() {
    constexpr int flagsWidth = 60, registersWidth = 120; // pixels, in a font of a usual size
    const int left = std::max(Width() - registersWidth - flagsWidth, 0);
    const int top = Height() * 3 / 5;
    const TRect places[] = {{0, 0, left, top},
                            {left, 0, registersWidth, top},
                            {left + registersWidth, 0, flagsWidth, top},
                            {0, top, left, Height() - top},
                            {left, top, registersWidth + flagsWidth, Height() - top}};
    for (int i = 0; i < std::min(ControlCount(), static_cast<int>(std::size(places))); ++i)
        Controls(i)->SetBoundsRect(places[i]);
}

void TCpuWindow::ShowState(const TStoppedState& state) {
    // A peer may close the window when the first pane changes.
    const TWeak<TCpuWindow> window(this);
    for (int i = 0; window && i < ComponentCount(); ++i)
        if (auto* const pane = ClassCast<TCpuPane>(Components(i))) pane->ShowState(state);
}

} // namespace tarn
