#pragma once

#include "Cpu/TMachineState.h"

#include <map>
#include <set>
#include <vector>

namespace tarn {

/// The instructions in a memory, found by Capstone. Where one begins cannot be told from the bytes
/// before it: decoding goes on from instruction to instruction, and begins anew at each address
/// that is known to begin one, and where a run of memory begins. A byte that begins no instruction,
/// or one that runs into a known beginning, is none itself.
class TDisassembler {
public:
    /// \param memory outlives the object and does not change
    /// \param known the known beginnings of instructions
    TDisassembler(const TSparseMemory& memory, std::set<std::uint32_t> known);
    TDisassembler(const TDisassembler&) = delete;
    TDisassembler& operator=(const TDisassembler&) = delete;
    ~TDisassembler();

    /// The instruction that covers the address: address, bytes and text.
    std::optional<TInstruction> InstructionAt(std::uint32_t address) const;

private:
    struct TBlock { ///< from a known beginning to the next
        std::uint64_t End = 0;
        std::vector<std::uint32_t> Starts; ///< of its instructions, ascending
    };

    std::optional<TInstruction> Decode(std::uint32_t address, std::uint64_t end) const;
    const TBlock& BlockAt(std::uint32_t start) const;

    const TSparseMemory& FMemory;
    std::set<std::uint32_t> FKnown;
    mutable std::map<std::uint32_t, TBlock>
        FBlocks; ///< by their first address, as they are asked for
    std::size_t FHandle = 0;
};

} // namespace tarn
