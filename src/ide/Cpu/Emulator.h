#pragma once

#include "Cpu/TMachineState.h"
#include "Cpu/TProgram.h"

#include <memory>

namespace tarn {

struct TRunOptions {
    static constexpr std::uint32_t DefaultSteps = 1'000'000;
    static constexpr std::uint32_t MaxSteps = 10'000'000;

    std::optional<std::uint32_t> Until =
        std::nullopt;                    ///< stop before the instruction at this address
    std::uint32_t Steps = DefaultSteps;  ///< instructions at most, each repetition of one counts
    std::uint32_t StackTop = 0x00130000; ///< of a stack of 64 KB; its last 16 bytes are above ESP
};

/// Whether this build has the emulator and the disassembler: the libraries Unicorn and Capstone.
bool HasEmulator();

/// Runs the program from its entry and gives the state in which it stops; a program that does not
/// get as far as told is no error, the state's StopText says why. It runs alone on its processor:
/// flat segments with selectors of 0, no protection of memory, no system: an interrupt, a system
/// call or an exception stops it at its instruction.
/// Raises ECpuError when this build has no emulator, or the program leaves no room for the stack.
std::shared_ptr<const TMachineState> RunProgram(TProgram program, const TRunOptions& options);

} // namespace tarn
