#include "Cpu/TMachineState.h"

#include "rtl/SysUtils.h"

namespace tarn {

std::optional<std::uint32_t> TMachineState::EntryAt(std::uint32_t address) const {
    std::uint32_t entry = 0;
    for (std::uint32_t i = 4; i-- > 0;) {
        const auto byte = ByteAt(address + i);
        if (!byte) return std::nullopt;
        entry = entry << 8 | *byte;
    }
    return entry;
}

TInstruction DisassemblyLine(const TMachineState& state, std::uint32_t address) {
    if (auto instruction = state.InstructionAt(address)) return std::move(*instruction);
    TInstruction line;
    line.Address = address;
    if (const auto byte = state.ByteAt(address)) {
        line.Bytes = static_cast<char>(*byte);
        line.Text = "db 0x" + LowerCase(HexText(*byte, 2));
    } else {
        line.Text = "???";
    }
    return line;
}

std::string DisassemblyText(const TInstruction& line) {
    std::string bytes;
    for (const char byte : line.Bytes) bytes += HexText(static_cast<unsigned char>(byte), 2);
    if (bytes.empty()) bytes = "??";
    return Format("%s %-16s %s", {HexText(line.Address), bytes, line.Text});
}

std::string HexText(std::uint32_t value, int digits) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto at = text.rbegin(); at != text.rend(); ++at, value >>= 4)
        *at = "0123456789ABCDEF"[value & 15];
    return text;
}

} // namespace tarn
