#include "vcl/TTextMeasure.h"

#include "rtl/TStrings.h"
#include "rtl/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

namespace tarn {
namespace {

struct TRange {
    char32_t First, Last;
};

// The blocks that are combining or wide as a whole; see the Unicode Character Database,
// EastAsianWidth.txt, for the single characters that are so elsewhere.
constexpr TRange CombiningRanges[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x064B, 0x065F}, {0x1AB0, 0x1AFF},
    {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
};
constexpr TRange WideRanges[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x4DBF},   {0x4E00, 0xA4CF}, {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60}, {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

bool IsIn(std::span<const TRange> ranges, char32_t c) {
    const auto range =
        std::lower_bound(ranges.begin(), ranges.end(), c,
                         [](const TRange& r, char32_t each) { return r.Last < each; });
    return range != ranges.end() && range->First <= c;
}

/// How many columns of ordinary characters the line fills.
std::int64_t Columns(std::string_view line) {
    std::int64_t columns = 0;
    while (!line.empty()) {
        const char32_t c = TakeUtf8(line);
        if (!IsIn(CombiningRanges, c)) columns += IsIn(WideRanges, c) ? 2 : 1;
    }
    return columns;
}

int Pixels(std::int64_t value) {
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

class TPlainMeasure : public ITextMeasure {
public:
    TExtent TextExtent(const TFont& font, std::string_view line) override {
        return {Pixels(Columns(line) * Scaled(ColumnWidth, font)),
                Pixels(Scaled(LineHeight, font))};
    }

private:
    // Of the system's font.
    static constexpr int ColumnWidth = 6, CharHeight = 11, LineHeight = 13;

    static std::int64_t Scaled(int pixels, const TFont& font) {
        const std::int64_t height = font.Height();
        if (height == 0) return pixels;
        const std::int64_t base = height < 0 ? CharHeight : LineHeight;
        const std::int64_t scale = height < 0 ? -height : height;
        return std::max<std::int64_t>((pixels * scale + base / 2) / base, 1);
    }
};

constinit TPlainMeasure PlainMeasure;
constinit ITextMeasure* Installed = nullptr;

} // namespace

ITextMeasure& TextMeasure() {
    return Installed ? *Installed : PlainMeasure;
}

ITextMeasure* InstallTextMeasure(ITextMeasure* measure) {
    return std::exchange(Installed, measure);
}

TExtent MeasureText(const TFont& font, std::string_view text) {
    TExtent extent;
    const auto add = [&](std::string_view line) {
        const TExtent size = TextMeasure().TextExtent(font, line);
        extent.Width = std::max(extent.Width, size.Width);
        extent.Height = Pixels(std::int64_t{extent.Height} + size.Height);
    };
    if (text.empty()) add(text);
    ForEachLine(text, add);
    return extent;
}

} // namespace tarn
