#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn {

/// The line breaks of a text. CR LF is always one break, never two.
enum TLineBreak : std::uint8_t { lbCrLf, lbLf, lbCr };

/// The bytes of a line break.
std::string_view LineBreakText(TLineBreak lineBreak);

/// How often each line break occurs in a text.
struct TBreakCounts {
    std::size_t CrLf = 0;
    std::size_t Lf = 0;
    std::size_t Cr = 0;

    bool operator==(const TBreakCounts&) const = default;

    std::size_t Total() const { return CrLf + Lf + Cr; }
    /// The most frequent break; of equals CR LF before LF before CR, so CR LF for no break at all.
    TLineBreak Prevailing() const;
    /// Whether there is no other break than this one.
    bool IsOnly(TLineBreak lineBreak) const;
    /// The size in bytes that a text of `size` bytes with these breaks has once all its breaks
    /// are `lineBreak`.
    std::size_t SizeConverted(std::size_t size, TLineBreak lineBreak) const;
};

TBreakCounts CountBreaks(std::string_view text);

/// Writes `text` to `out` with every line break turned into `lineBreak`. `out` holds the bytes
/// that SizeConverted gives and does not overlap the text.
void CopyConverted(std::string_view text, TLineBreak lineBreak, char* out);

/// Calls visit(index) for every CR and every LF of the text, in order. Looks at eight bytes at a
/// time: source lines are too short for a search call on each to pay.
template <typename TVisit> void ForEachBreakByte(std::string_view text, TVisit visit) {
    std::size_t at = 0;
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t each = 0x0101010101010101;
        // Sets the top bit of each byte that is not 0.
        const auto nonZero = [](std::uint64_t bytes) {
            return ((bytes & (each * 0x7F)) + each * 0x7F) | bytes;
        };
        for (; at + 8 <= text.size(); at += 8) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, text.data() + at, 8);
            const std::uint64_t misses =
                nonZero(bytes ^ (each * '\n')) & nonZero(bytes ^ (each * '\r'));
            std::uint64_t hits = ~misses & (each * 0x80);
            for (; hits != 0; hits &= hits - 1)
                visit(at + static_cast<std::size_t>(std::countr_zero(hits)) / 8);
        }
    }
    for (; at < text.size(); ++at)
        if (text[at] == '\n' || text[at] == '\r') visit(at);
}

} // namespace tarn
