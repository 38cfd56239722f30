#pragma once

#include "rtl/TypInfo.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

/// A colour: red in the lowest byte, green, blue; or one of the system's colours, whose highest bit
/// is set and whose low byte is the system's number of it; or clNone or clDefault.
using TColor = std::int32_t;

/// The type of a colour property: `Published<&T::Color>("Color", {.Type = &ColorType})`.
inline constexpr TTypeInfo ColorType = IntegerType<TColor>("TColor");

constexpr TColor SystemColor(unsigned number) {
    return static_cast<TColor>(0x80000000u | number);
}

struct TColorName {
    std::string_view Ident;
    TColor Color;
};

inline constexpr TColor clBlack = 0x000000, clMaroon = 0x000080, clGreen = 0x008000,
                        clOlive = 0x008080, clNavy = 0x800000, clPurple = 0x800080,
                        clTeal = 0x808000, clGray = 0x808080, clSilver = 0xC0C0C0, clRed = 0x0000FF,
                        clLime = 0x00FF00, clYellow = 0x00FFFF, clBlue = 0xFF0000,
                        clFuchsia = 0xFF00FF, clAqua = 0xFFFF00, clWhite = 0xFFFFFF;
inline constexpr TColor clScrollBar = SystemColor(0), clBackground = SystemColor(1),
                        clActiveCaption = SystemColor(2), clInactiveCaption = SystemColor(3),
                        clMenu = SystemColor(4), clWindow = SystemColor(5),
                        clWindowFrame = SystemColor(6), clMenuText = SystemColor(7),
                        clWindowText = SystemColor(8), clCaptionText = SystemColor(9),
                        clActiveBorder = SystemColor(10), clInactiveBorder = SystemColor(11),
                        clAppWorkSpace = SystemColor(12), clHighlight = SystemColor(13),
                        clHighlightText = SystemColor(14), clBtnFace = SystemColor(15),
                        clBtnShadow = SystemColor(16), clGrayText = SystemColor(17),
                        clBtnText = SystemColor(18), clInactiveCaptionText = SystemColor(19),
                        clBtnHighlight = SystemColor(20), cl3DDkShadow = SystemColor(21),
                        cl3DLight = SystemColor(22), clInfoText = SystemColor(23),
                        clInfoBk = SystemColor(24);
inline constexpr TColor clNone = 0x1FFFFFFF, clDefault = 0x20000000;

/// The colours that have an identifier, in the order in which lists show them.
std::span<const TColorName> ColorNames();

/// The identifier of the colour; false, and `ident` untouched, when it has none.
bool ColorToIdent(TColor color, std::string& ident);
/// The colour of the identifier, without case; false, and `color` untouched, when there is none.
bool IdentToColor(std::string_view ident, TColor& color);

/// The identifier of the colour, or its number as "$00BBGGRR": a text that keeps every colour.
std::string ColorToString(TColor color);
/// The colour of an identifier or of a number as StrToInt reads it, which raises EConvertError.
TColor StringToColor(std::string_view text);

} // namespace tarn
