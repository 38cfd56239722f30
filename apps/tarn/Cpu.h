#pragma once

#include "Windows/TCpuWindow.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// A stopped program as the command line and the scripts name it: the file of a recording, or of a
/// program with where to stop.
struct TCpuSource {
    std::string File = {};
    bool IsProgram = false;
    // Of a program alone. Addresses are hexadecimal, or labels of an ELF file.
    std::optional<std::string> Base = std::nullopt; ///< where the bytes lie that are no ELF file
    std::optional<std::string> Entry =
        std::nullopt; ///< the first instruction, unless the program's own
    std::optional<std::string> Until = std::nullopt; ///< the instruction to stop at
    std::optional<int> Steps =
        std::nullopt; ///< instructions at most; as many when there is no Until
};

/// Reads the recording, or loads the program and runs it. With neither Until nor Steps a program
/// stands at its entry.
/// Raises EScriptError: what is no address or label with the exit code for wrong usage, a file
/// that cannot be read with that for input and output, what is no recording or program, or a build
/// without an emulator, with that for refused.
TStoppedState LoadStoppedProgram(const TCpuSource& source);

/// An address: up to eight hexadecimal digits, "$" or "0x" allowed in front; none when it is none.
std::optional<std::uint32_t> ParseAddress(std::string_view text);

/// The pane of that name: disassembly, registers, flags, dump, stack. Raises EScriptError.
TCpuPane& FindCpuPane(TCpuWindow& window, std::string_view name);

/// What a pane shows, read as other programs do, by its published properties: of the disassembly,
/// the dump and the stack at the selection. Whole lines.
std::string CpuPaneText(TCpuPane& pane);

} // namespace tarn
