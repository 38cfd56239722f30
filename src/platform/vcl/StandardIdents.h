#pragma once

#include "rtl/TypInfo.h"

namespace tarn {

/// The shape of the mouse pointer: a standard one, at most 0, or the program's own.
using TCursor = std::int16_t;
inline constexpr TTypeInfo CursorType = IntegerType<TCursor>("TCursor");

inline constexpr TCursor crDefault = 0, crNone = -1, crArrow = -2, crCross = -3, crIBeam = -4,
                         crSizeNESW = -6, crSizeNS = -7, crSizeNWSE = -8, crSizeWE = -9,
                         crUpArrow = -10, crHourGlass = -11, crDrag = -12, crNoDrop = -13,
                         crHSplit = -14, crVSplit = -15, crMultiDrag = -16, crSQLWait = -17,
                         crNo = -18, crAppStart = -19, crHelp = -20, crHandPoint = -21,
                         crSizeAll = -22;

/// The character set of a font, as the operating system numbers them.
using TFontCharset = std::uint8_t;
inline constexpr TTypeInfo FontCharsetType = IntegerType<TFontCharset>("TFontCharset");

inline constexpr TFontCharset ANSI_CHARSET = 0, DEFAULT_CHARSET = 1, SYMBOL_CHARSET = 2,
                              MAC_CHARSET = 77, SHIFTJIS_CHARSET = 128, HANGEUL_CHARSET = 129,
                              JOHAB_CHARSET = 130, GB2312_CHARSET = 134, CHINESEBIG5_CHARSET = 136,
                              GREEK_CHARSET = 161, TURKISH_CHARSET = 162, VIETNAMESE_CHARSET = 163,
                              HEBREW_CHARSET = 177, ARABIC_CHARSET = 178, BALTIC_CHARSET = 186,
                              RUSSIAN_CHARSET = 204, THAI_CHARSET = 222, EASTEUROPE_CHARSET = 238,
                              OEM_CHARSET = 255;

/// Lets component streams hold colours, cursors and character sets by their identifiers. An IDE
/// calls it when it starts; to call it again changes nothing.
void RegisterStandardIdents();

} // namespace tarn
