#include "vcl/TEllipsisLabel.h"

#include "rtl/SysUtils.h"
#include "rtl/TStrings.h"
#include "rtl/Unicode.h"
#include "vcl/TTextMeasure.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr std::string_view Ellipsis = "...";

/// Where the characters of a text begin.
std::vector<std::size_t> CharStarts(std::string_view text) {
    std::vector<std::size_t> starts;
    for (std::string_view rest = text; !rest.empty(); TakeUtf8(rest))
        starts.push_back(text.size() - rest.size());
    return starts;
}

bool Fits(const TFont& font, std::string_view line, int width) {
    return TextMeasure().TextExtent(font, line).Width <= width;
}

std::string Shortened(const TFont& font, std::string_view line, int width) {
    if (Fits(font, line, width)) return std::string(line);
    const auto shown = [&](std::size_t end) {
        return std::string(line.substr(0, end)) + std::string(Ellipsis);
    };
    const std::vector<std::size_t> ends = CharStarts(line);
    const auto tooFar = std::partition_point(
        ends.begin(), ends.end(), [&](std::size_t end) { return Fits(font, shown(end), width); });
    return shown(tooFar == ends.begin() ? 0 : *std::prev(tooFar));
}

} // namespace

constinit const TClassRecord TEllipsisLabel::ClassRecord{"TEllipsisLabel", &TLabel::ClassRecord,
                                                         CreateObject<TEllipsisLabel>};

std::string TEllipsisLabel::ShownText() const {
    const TFont& font = MeasuredFont();
    if (MeasureText(font, Caption()).Width <= Width()) return Caption();
    std::string text;
    ForEachLine(Caption(), [&](std::string_view line) {
        text += Shortened(font, line, Width()) + std::string(LineBreak);
    });
    text.resize(text.size() - LineBreak.size());
    return text;
}

} // namespace tarn
