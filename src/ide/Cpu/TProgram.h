#pragma once

#include "Cpu/TSparseMemory.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A 32-bit x86 program as it lies in memory before its first instruction. What its segments leave
/// of a page of 4 KB is zeros.
struct TProgram {
    static constexpr std::size_t MaxFileSize = 16 << 20;
    static constexpr std::uint32_t DefaultBase = 0x00401000;

    TSparseMemory Memory;
    std::uint32_t Entry = 0;       ///< of the first instruction
    std::uint32_t DataAddress = 0; ///< of the first segment that is written to, else of the first
    std::map<std::uint32_t, std::string> Labels; ///< of code, by address

    /// The address of a label; none when the program has none of that name.
    std::optional<std::uint32_t> AddressOf(std::string_view label) const;

    /// A program that is nothing but its bytes.
    /// \param base where they lie
    static TProgram FromBytes(std::string_view bytes, std::uint32_t base = DefaultBase);
    /// The loadable segments and the symbols of a 32-bit ELF executable for the 80386, statically
    /// linked: there is neither a loader of shared libraries nor a system under it.
    static TProgram FromElf(std::string_view file);
    static bool IsElf(std::string_view file) {
        return file.starts_with("\x7F"
                                "ELF");
    }
    // All three raise ECpuError with the reason.
};

} // namespace tarn
