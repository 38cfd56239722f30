#pragma once

#include "rtl/SysUtils.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace tarn {

struct TCpuErrorTag {
    static constexpr std::string_view Name = "ECpuError";
};
/// A recording or program that cannot be read, or a program that cannot be run.
using ECpuError = TNamedException<TCpuErrorTag>;

/// The memory of a 32-bit program: any bytes of its address space, by pages of 4 KB.
class TSparseMemory {
public:
    static constexpr std::uint32_t PageSize = 4096;
    static constexpr std::size_t MaxPages = 4096; ///< 16 MB

    struct TPage {
        std::array<std::uint8_t, PageSize> Bytes{};
        std::bitset<PageSize> Known;
    };

    std::optional<std::uint8_t> ByteAt(std::uint32_t address) const;
    /// Raises ECpuError when the memory would need more than MaxPages.
    void Put(std::uint32_t address, std::uint8_t byte);
    /// The page that holds the address, made when there is none. Raises like Put.
    TPage& PageOf(std::uint32_t address);
    /// The pages by the addresses of their first bytes.
    const std::map<std::uint32_t, TPage>& Pages() const { return FPages; }

private:
    std::map<std::uint32_t, TPage> FPages;
};

} // namespace tarn
