#include "TextStore/LineBreaks.h"

#include <algorithm>

namespace tarn {

std::string_view LineBreakText(TLineBreak lineBreak) {
    switch (lineBreak) {
    case lbLf:
        return "\n";
    case lbCr:
        return "\r";
    default:
        return "\r\n";
    }
}

TLineBreak TBreakCounts::Prevailing() const {
    if (CrLf >= std::max(Lf, Cr)) return lbCrLf;
    return Lf >= Cr ? lbLf : lbCr;
}

bool TBreakCounts::IsOnly(TLineBreak lineBreak) const {
    switch (lineBreak) {
    case lbLf:
        return Lf == Total();
    case lbCr:
        return Cr == Total();
    default:
        return CrLf == Total();
    }
}

std::size_t TBreakCounts::SizeConverted(std::size_t size, TLineBreak lineBreak) const {
    return size - (2 * CrLf + Lf + Cr) + Total() * LineBreakText(lineBreak).size();
}

TBreakCounts CountBreaks(std::string_view text) {
    // Counters of a byte, emptied before they run over, let the compiler count 16 bytes at once.
    constexpr std::size_t blockSize = 255;
    std::size_t cr = text.starts_with('\r') ? 1 : 0;
    std::size_t lf = text.starts_with('\n') ? 1 : 0;
    std::size_t pairs = 0;
    for (std::size_t block = 1; block < text.size(); block += blockSize) {
        const std::size_t end = std::min(block + blockSize, text.size());
        std::uint8_t blockCr = 0;
        std::uint8_t blockLf = 0;
        std::uint8_t blockPairs = 0;
        for (std::size_t at = block; at < end; ++at) {
            const std::uint8_t isLf = text[at] == '\n';
            const std::uint8_t followsCr = text[at - 1] == '\r';
            blockCr += text[at] == '\r';
            blockLf += isLf;
            blockPairs += isLf & followsCr;
        }
        cr += blockCr;
        lf += blockLf;
        pairs += blockPairs;
    }
    return {.CrLf = pairs, .Lf = lf - pairs, .Cr = cr - pairs};
}

void CopyConverted(std::string_view text, TLineBreak lineBreak, char* out) {
    const std::string_view breakText = LineBreakText(lineBreak);
    std::size_t lineStart = 0;
    ForEachBreakByte(text, [&](std::size_t at) {
        const bool endsPair = text[at] == '\n' && at > 0 && text[at - 1] == '\r';
        if (!endsPair) { // its CR has written the break already
            out = std::copy_n(text.data() + lineStart, at - lineStart, out);
            out = std::copy(breakText.begin(), breakText.end(), out);
        }
        lineStart = at + 1;
    });
    std::copy_n(text.data() + lineStart, text.size() - lineStart, out);
}

} // namespace tarn
