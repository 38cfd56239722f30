#include "vcl/TFont.h"

namespace tarn {
namespace {

bool HasName(const TObject& instance) {
    return !static_cast<const TFont&>(instance).Name().empty();
}

constexpr TPropInfo FontProps[] = {
    Published<&TFont::Charset, &TFont::SetCharset>(
        "Charset", {.Default = DEFAULT_CHARSET, .Type = &FontCharsetType}),
    Published<&TFont::Color, &TFont::SetColor>("Color",
                                               {.Default = clWindowText, .Type = &ColorType}),
    Published<&TFont::Height, &TFont::SetHeight>("Height", {.Default = 0}),
    Published<&TFont::Name, &TFont::SetName>("Name", {.IsStored = HasName}),
    Published<&TFont::Pitch, &TFont::SetPitch>("Pitch", {.Default = fpDefault}),
    Published<&TFont::Style, &TFont::SetStyle>("Style", {.Default = 0}),
};

} // namespace

constinit const TClassRecord TFont::ClassRecord{"TFont", &TPersistent::ClassRecord,
                                                CreateObject<TFont>, FontProps};

void TFont::Assign(const TPersistent* source) {
    const auto* const font = dynamic_cast<const TFont*>(source);
    if (!font) return TPersistent::Assign(source);
    FData = font->FData;
    if (OnChange) OnChange(this);
}

} // namespace tarn
