#pragma once

#include "Cpu/TMachineState.h"
#include "vcl/Forms.h"

#include <memory>

namespace tarn {

using TStoppedState = std::shared_ptr<const TMachineState>;

/// One pane of the CPU window. Programs read it by its published properties. Whatever its peer
/// does when it hears of a change, the end of the window included, is allowed: a setter does
/// nothing after it has told.
class TCpuPane : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    const TMachineState& State() const { return *FState; }
    /// Shows another stop.
    virtual void ShowState(TStoppedState state);

protected:
    TCpuPane(TControl& window, std::string_view name, TStoppedState state);

    TStoppedState FState; ///< a pane keeps its state alive
};

/// A pane with a selected address: the bits of a 32-bit address in a signed integer, so that one
/// behind $7FFFFFFF is $80000000, the least integer, and one behind $FFFFFFFF, which is -1, is 0.
class TAddressPane : public TCpuPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Selected() const { return static_cast<int>(FSelected); }
    void SetSelected(int value);

    // What a front end shows: rows, each of the addresses from its first one to the next row's.
    /// The first address of the row that holds an address.
    virtual std::uint32_t RowAt(std::uint32_t address) const = 0;
    virtual std::uint32_t NextRow(std::uint32_t row) const = 0;
    std::uint32_t PreviousRow(std::uint32_t row) const { return RowAt(row - 1); }
    /// The row's text; one of several lines has LF between them.
    virtual std::string RowText(std::uint32_t row) const = 0;

protected:
    using TCpuPane::TCpuPane;
    std::uint32_t FSelected = 0;
};

/// The disassembly. The selected address may lie inside an instruction: the texts are those of the
/// instruction that covers it.
class TDisassemblerView : public TAddressPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TDisassemblerView(TControl& window, TStoppedState state);
    void ShowState(TStoppedState state) override; ///< selects the instruction to be executed next

    std::string SelectedLabel() const { return Line().Label; }
    std::string SelectedSource() const { return Line().Source; }
    std::string SelectedDisassembly() const { return DisassemblyText(Line()); }

    std::uint32_t RowAt(std::uint32_t address) const override;
    std::uint32_t NextRow(std::uint32_t row) const override;
    std::string RowText(std::uint32_t row) const override; ///< label and source line above

private:
    TInstruction Line() const { return DisassemblyLine(*FState, FSelected); }
};

/// The registers of the pane that owns the object, a published integer each.
class TCurrentRegs : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCurrentRegs(const TCpuPane& pane) : FPane(pane) {}
    template <TCpuRegister Reg> int Value() const {
        return static_cast<int>(FPane.State().Register(Reg));
    }

private:
    const TCpuPane& FPane;
};

class TRegisterView : public TCpuPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TRegisterView(TControl& window, TStoppedState state);
    TCurrentRegs* CurrentRegs() const { return FRegs.get(); }

private:
    std::unique_ptr<TCurrentRegs> FRegs = std::make_unique<TCurrentRegs>(*this);
};

/// The flags of the pane that owns the object, a published integer each.
class TCurrentFlags : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCurrentFlags(const TCpuPane& pane) : FPane(pane) {}
    template <TCpuFlag Flag> int Value() const {
        return static_cast<int>(FPane.State().Flag(Flag));
    }

private:
    const TCpuPane& FPane;
};

class TFlagsView : public TCpuPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TFlagsView(TControl& window, TStoppedState state);
    TCurrentFlags* CurrentFlags() const { return FFlags.get(); }

private:
    std::unique_ptr<TCurrentFlags> FFlags = std::make_unique<TCurrentFlags>(*this);
};

/// The memory dump, byte by byte. Another stop leaves the selection where it is.
class TDumpView : public TAddressPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TDumpView(TControl& window, TStoppedState state);
    /// The selected byte as two hexadecimal digits; "??" where there is no memory.
    std::string SelectedData() const;

    static constexpr std::uint32_t RowSize = 16; ///< bytes
    std::uint32_t RowAt(std::uint32_t address) const override { return address & ~(RowSize - 1); }
    std::uint32_t NextRow(std::uint32_t row) const override { return row + RowSize; }
    std::string RowText(std::uint32_t row) const override;
};

/// The stack, entry by entry.
class TStackView : public TAddressPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TStackView(TControl& window, TStoppedState state);
    void ShowState(TStoppedState state) override; ///< selects the top of the stack
    /// The selected entry as eight hexadecimal digits, the most significant first; "????????" when
    /// one of its four bytes is missing.
    std::string SelectedData() const { return EntryText(FSelected); }

    std::uint32_t RowAt(std::uint32_t address) const override; ///< entries as ESP has them
    std::uint32_t NextRow(std::uint32_t row) const override { return row + 4; }
    std::string RowText(std::uint32_t row) const override {
        return HexText(row) + " " + EntryText(row);
    }

private:
    std::string EntryText(std::uint32_t address) const;
};

/// The CPU window: the form "DisassemblyView", which shows a stopped program in five panes. It is
/// open only while a program is stopped, see TIde::StopAt.
class TCpuWindow : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCpuWindow(const TStoppedState& state);

    /// Shows another stop in all panes.
    void ShowState(const TStoppedState& state);

protected:
    void AlignControls() override;
};

} // namespace tarn
