#include "Cpu/TDisassembler.h"

#include <algorithm>
#include <capstone/capstone.h>

namespace tarn {

static_assert(sizeof(csh) == sizeof(std::size_t));

TDisassembler::TDisassembler(const TSparseMemory& memory, std::set<std::uint32_t> known)
    : FMemory(memory), FKnown(std::move(known)) {
    csh handle = 0;
    if (cs_open(CS_ARCH_X86, CS_MODE_32, &handle) != CS_ERR_OK)
        throw ECpuError("the disassembler does not start");
    FHandle = handle;
    // Runs of pages: each begins a block.
    std::uint64_t end = 0;
    for (const auto& [start, page] : memory.Pages()) {
        if (start != end || start == 0) FKnown.insert(start);
        end = std::uint64_t{start} + TSparseMemory::PageSize;
    }
}

TDisassembler::~TDisassembler() {
    csh handle = FHandle;
    cs_close(&handle);
}

std::optional<TInstruction> TDisassembler::Decode(std::uint32_t address, std::uint64_t end) const {
    std::array<std::uint8_t, TInstruction::MaxSize> bytes{};
    std::size_t size = 0;
    for (; size < bytes.size() && address + size < end; ++size) {
        const auto byte = FMemory.ByteAt(static_cast<std::uint32_t>(address + size));
        if (!byte) break;
        bytes[size] = *byte;
    }
    cs_insn* found = nullptr;
    if (cs_disasm(FHandle, bytes.data(), size, address, 1, &found) == 0) return std::nullopt;
    TInstruction instruction;
    instruction.Address = address;
    instruction.Bytes.assign(bytes.begin(), bytes.begin() + found->size);
    instruction.Text = found->mnemonic;
    if (found->op_str[0] != '\0') instruction.Text.append(" ").append(found->op_str);
    cs_free(found, 1);
    return instruction;
}

const TDisassembler::TBlock& TDisassembler::BlockAt(std::uint32_t start) const {
    const auto [place, isNew] = FBlocks.try_emplace(start);
    TBlock& block = place->second;
    if (!isNew) return block;
    const auto next = FKnown.upper_bound(start);
    block.End = next == FKnown.end() ? std::uint64_t{1} << 32 : *next;
    for (std::uint64_t at = start;
         at < block.End && FMemory.ByteAt(static_cast<std::uint32_t>(at));) {
        const auto instruction = Decode(static_cast<std::uint32_t>(at), block.End);
        if (instruction) block.Starts.push_back(instruction->Address);
        at += instruction ? instruction->Bytes.size() : 1;
    }
    return block;
}

std::optional<TInstruction> TDisassembler::InstructionAt(std::uint32_t address) const {
    if (!FMemory.ByteAt(address)) return std::nullopt;
    // A known beginning stands at or before every byte of memory.
    const TBlock& block = BlockAt(*std::prev(FKnown.upper_bound(address)));
    const auto behind = std::upper_bound(block.Starts.begin(), block.Starts.end(), address);
    if (behind == block.Starts.begin()) return std::nullopt;
    auto instruction = Decode(*std::prev(behind), block.End);
    if (!instruction || address - instruction->Address >= instruction->Bytes.size())
        return std::nullopt;
    return instruction;
}

} // namespace tarn
