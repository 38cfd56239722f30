#include "vcl/TFont.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace tarn {
namespace {

bool HasName(const TObject& instance) {
    return !static_cast<const TFont&>(instance).Name().empty();
}

/// The size is the height in another unit.
bool Never(const TObject&) {
    return false;
}

constexpr TPropInfo FontProps[] = {
    Published<&TFont::Charset, &TFont::SetCharset>(
        "Charset", {.Default = DEFAULT_CHARSET, .Type = &FontCharsetType}),
    Published<&TFont::Color, &TFont::SetColor>("Color",
                                               {.Default = clWindowText, .Type = &ColorType}),
    Published<&TFont::Height, &TFont::SetHeight>("Height", {.Default = 0}),
    Published<&TFont::Name, &TFont::SetName>("Name", {.IsStored = HasName}),
    Published<&TFont::Pitch, &TFont::SetPitch>("Pitch", {.Default = fpDefault}),
    Published<&TFont::Size, &TFont::SetSize>("Size", {.IsStored = Never}),
    Published<&TFont::Style, &TFont::SetStyle>("Style", {.Default = 0}),
};

} // namespace

constinit const TClassRecord TFont::ClassRecord{"TFont", &TPersistent::ClassRecord,
                                                CreateObject<TFont>, FontProps};

namespace {

constexpr int DotsPerInch = 96, PointsPerInch = 72;

/// -value * factor / divisor, rounded to the nearest with halves away from 0.
int Negated(int value, int factor, int divisor) {
    const std::int64_t product = -std::int64_t{value} * factor;
    const std::int64_t half = product < 0 ? -divisor / 2 : divisor / 2;
    constexpr std::int64_t least = std::numeric_limits<int>::min();
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp((product + half) / divisor, least, most));
}

} // namespace

int TFont::Size() const {
    return Negated(FData.Height, PointsPerInch, DotsPerInch);
}

void TFont::SetSize(int value) {
    SetHeight(Negated(value, DotsPerInch, PointsPerInch));
}

void TFont::Assign(const TPersistent* source) {
    const auto* const font = dynamic_cast<const TFont*>(source);
    if (!font) return TPersistent::Assign(source);
    FData = font->FData;
    if (OnChange) OnChange(this);
}

} // namespace tarn
