#include "Cpu/Emulator.h"

namespace tarn {

// The emulator of a build without Unicorn and Capstone.

bool HasEmulator() {
    return false;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the emulator takes the program over
std::shared_ptr<const TMachineState> RunProgram(TProgram, const TRunOptions&) {
    throw ECpuError("this build cannot run programs: it was made without Unicorn and Capstone");
}

} // namespace tarn
