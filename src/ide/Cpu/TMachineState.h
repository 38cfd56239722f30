#pragma once

#include "Cpu/TSparseMemory.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// The registers of a 32-bit x86 processor, in the order of the register pane.
enum TCpuRegister : std::uint8_t {
    rgEAX,
    rgEBX,
    rgECX,
    rgEDX,
    rgESI,
    rgEDI,
    rgEBP,
    rgESP,
    rgEIP,
    rgEFL,
    rgCS,
    rgDS,
    rgSS,
    rgES,
    rgFS,
    rgGS
};

struct TCpuRegisterRow {
    std::string_view Name;
    int Digits; ///< hexadecimal ones of its greatest value
};
inline constexpr TCpuRegisterRow CpuRegisters[] = {
    {"EAX", 8}, {"EBX", 8}, {"ECX", 8}, {"EDX", 8}, {"ESI", 8}, {"EDI", 8}, {"EBP", 8}, {"ESP", 8},
    {"EIP", 8}, {"EFL", 8}, {"CS", 4},  {"DS", 4},  {"SS", 4},  {"ES", 4},  {"FS", 4},  {"GS", 4},
};
inline constexpr std::size_t CpuRegisterCount = std::size(CpuRegisters);

/// The flags: bits of EFL, in the order of the flag pane.
enum TCpuFlag : std::uint8_t {
    flCarry,
    flParity,
    flAuxCarry,
    flZero,
    flSign,
    flTrap,
    flInterrupt,
    flDirection,
    flOverflow,
    flIOPL,
    flNestedTask,
    flResume,
    flV86Mode,
    flAlignment,
    flVirtualInterruptFlag,
    flVirtualInterruptPending,
    flID
};

struct TCpuFlagRow {
    std::string_view Name;
    std::string_view Short;
    int Bit;                ///< the lowest one in EFL
    std::uint32_t Mask = 1; ///< of the value, once shifted down
};
inline constexpr TCpuFlagRow CpuFlags[] = {
    {"Carry", "CF", 0},
    {"Parity", "PF", 2},
    {"AuxCarry", "AF", 4},
    {"Zero", "ZF", 6},
    {"Sign", "SF", 7},
    {"Trap", "TF", 8},
    {"Interrupt", "IF", 9},
    {"Direction", "DF", 10},
    {"Overflow", "OF", 11},
    {"IOPL", "IO", 12, 3},
    {"NestedTask", "NF", 14},
    {"Resume", "RF", 16},
    {"V86Mode", "VM", 17},
    {"Alignment", "AC", 18},
    {"VirtualInterruptFlag", "VF", 19},
    {"VirtualInterruptPending", "VP", 20},
    {"ID", "ID", 21},
};
inline constexpr std::size_t CpuFlagCount = std::size(CpuFlags);

/// One instruction, or a byte that is none, as a line of the disassembly.
struct TInstruction {
    static constexpr std::size_t MaxSize = 15; ///< the processor knows none with more bytes

    std::uint32_t Address = 0; ///< of its first byte
    std::string Bytes;         ///< none when there is no memory
    std::string Label;         ///< of a routine or a jump target that begins here, or empty
    std::string Source;        ///< the source line that it was compiled from, or empty
    std::string Text;          ///< mnemonic and operands
};

using TCpuRegisters = std::array<std::uint32_t, CpuRegisterCount>;

/// A stopped 32-bit program: registers, flags, memory and instructions. It never changes; the next
/// stop is another object. Addresses are modulo 2^32: behind FFFFFFFF comes 00000000.
class TMachineState {
public:
    TMachineState(const TMachineState&) = delete;
    TMachineState& operator=(const TMachineState&) = delete;
    virtual ~TMachineState() = default;

    std::uint32_t Register(TCpuRegister reg) const { return FRegisters[reg]; }
    std::uint32_t Flag(TCpuFlag flag) const {
        return Register(rgEFL) >> CpuFlags[flag].Bit & CpuFlags[flag].Mask;
    }
    /// None where the program has no memory.
    std::optional<std::uint8_t> ByteAt(std::uint32_t address) const {
        return FMemory.ByteAt(address);
    }
    /// The entry of four bytes at the address, low byte first; none unless all four are there.
    std::optional<std::uint32_t> EntryAt(std::uint32_t address) const;

    /// The instruction that covers the address; none where no code is known.
    virtual std::optional<TInstruction> InstructionAt(std::uint32_t address) const = 0;

    /// Where the dump pane begins.
    std::uint32_t DataAddress() const { return FDataAddress; }
    /// Where and why the program stands, in one line.
    const std::string& StopText() const { return FStopText; }

protected:
    TMachineState() = default;

    TCpuRegisters FRegisters{};
    TSparseMemory FMemory;
    std::uint32_t FDataAddress = 0;
    std::string FStopText;
};

/// The line of the disassembly that covers the address: the instruction, or a single byte where no
/// code is known, without bytes and as "???" where there is no memory.
TInstruction DisassemblyLine(const TMachineState& state, std::uint32_t address);

/// The line as the CPU window shows it: address, bytes and instruction, for example
/// "00401000 55               push ebp". The address in front makes the texts of two lines differ,
/// also those of equal instructions that follow each other: who steps byte by byte until the text
/// changes sees every line. More than eight bytes push the instruction to the right.
std::string DisassemblyText(const TInstruction& line);

std::string HexText(std::uint32_t value, int digits = 8); ///< upper case, with leading zeros

} // namespace tarn
