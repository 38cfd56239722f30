#pragma once

#include "rtl/TObject.h"
#include "vcl/Graphics.h"
#include "vcl/StandardIdents.h"

namespace tarn {

enum TFontPitch : std::uint8_t { fpDefault, fpVariable, fpFixed };
inline constexpr std::string_view FontPitchNames[] = {"fpDefault", "fpVariable", "fpFixed"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TFontPitch> = EnumType("TFontPitch", FontPitchNames);

enum TFontStyle : std::uint8_t { fsBold, fsItalic, fsUnderline, fsStrikeOut };
inline constexpr std::string_view FontStyleNames[] = {"fsBold", "fsItalic", "fsUnderline",
                                                      "fsStrikeOut"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TFontStyle> = EnumType("TFontStyle", FontStyleNames);
using TFontStyles = TSet<TFontStyle>;

/// What a front end is to write a control's text with. A pitch without a name is the system's font
/// of that pitch.
class TFont : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TFontCharset Charset() const { return FData.Charset; }
    void SetCharset(TFontCharset value) { Change(&TData::Charset, value); }
    TColor Color() const { return FData.Color; }
    void SetColor(TColor value) { Change(&TData::Color, value); }
    /// In pixels: below 0 that of the characters, above 0 that of a line; 0 the system's.
    int Height() const { return FData.Height; }
    void SetHeight(int value) { Change(&TData::Height, value); }
    /// In points, of 96 pixels to 72: that of the characters, or below 0 that of a line; 0 the
    /// system's. What is set comes back unless it is beyond what Height holds.
    int Size() const;
    void SetSize(int value);
    const std::string& Name() const { return FData.Name; } ///< empty: the system's font
    void SetName(std::string_view value) { Change(&TData::Name, std::string(value)); }
    TFontPitch Pitch() const { return FData.Pitch; }
    void SetPitch(TFontPitch value) { Change(&TData::Pitch, value); }
    TFontStyles Style() const { return FData.Style; }
    void SetStyle(TFontStyles value) { Change(&TData::Style, value); }

    /// Copies another font, but for its OnChange.
    void Assign(const TPersistent* source) override;

    TNotifyEvent OnChange;

private:
    struct TData {
        TFontCharset Charset = DEFAULT_CHARSET;
        TColor Color = clWindowText;
        int Height = 0;
        std::string Name;
        TFontPitch Pitch = fpDefault;
        TFontStyles Style;
    };
    template <class V> void Change(V TData::*field, V value) {
        if (FData.*field == value) return;
        FData.*field = std::move(value);
        if (OnChange) OnChange(this);
    }

    TData FData;
};

} // namespace tarn
