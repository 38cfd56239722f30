#include "vcl/StandardIdents.h"

#include "rtl/SysUtils.h"
#include "streaming/TFiler.h"
#include "vcl/Graphics.h"

namespace tarn {
namespace {

struct TIdent {
    std::string_view Name;
    std::int32_t Value;
};

constexpr TIdent Cursors[] = {
    {"crDefault", crDefault},     {"crNone", crNone},           {"crArrow", crArrow},
    {"crCross", crCross},         {"crIBeam", crIBeam},         {"crSizeNESW", crSizeNESW},
    {"crSizeNS", crSizeNS},       {"crSizeNWSE", crSizeNWSE},   {"crSizeWE", crSizeWE},
    {"crUpArrow", crUpArrow},     {"crHourGlass", crHourGlass}, {"crDrag", crDrag},
    {"crNoDrop", crNoDrop},       {"crHSplit", crHSplit},       {"crVSplit", crVSplit},
    {"crMultiDrag", crMultiDrag}, {"crSQLWait", crSQLWait},     {"crNo", crNo},
    {"crAppStart", crAppStart},   {"crHelp", crHelp},           {"crHandPoint", crHandPoint},
    {"crSizeAll", crSizeAll},     {"crSize", crSizeAll}, // its former name
};

constexpr TIdent Charsets[] = {
    {"ANSI_CHARSET", ANSI_CHARSET},
    {"DEFAULT_CHARSET", DEFAULT_CHARSET},
    {"SYMBOL_CHARSET", SYMBOL_CHARSET},
    {"MAC_CHARSET", MAC_CHARSET},
    {"SHIFTJIS_CHARSET", SHIFTJIS_CHARSET},
    {"HANGEUL_CHARSET", HANGEUL_CHARSET},
    {"JOHAB_CHARSET", JOHAB_CHARSET},
    {"GB2312_CHARSET", GB2312_CHARSET},
    {"CHINESEBIG5_CHARSET", CHINESEBIG5_CHARSET},
    {"GREEK_CHARSET", GREEK_CHARSET},
    {"TURKISH_CHARSET", TURKISH_CHARSET},
    {"VIETNAMESE_CHARSET", VIETNAMESE_CHARSET},
    {"HEBREW_CHARSET", HEBREW_CHARSET},
    {"ARABIC_CHARSET", ARABIC_CHARSET},
    {"BALTIC_CHARSET", BALTIC_CHARSET},
    {"RUSSIAN_CHARSET", RUSSIAN_CHARSET},
    {"THAI_CHARSET", THAI_CHARSET},
    {"EASTEUROPE_CHARSET", EASTEUROPE_CHARSET},
    {"OEM_CHARSET", OEM_CHARSET},
};

/// The functions of a table; of two names for a value the first is written.
template <const auto& Table> bool ValueOf(std::string_view ident, std::int32_t& value) {
    for (const TIdent& row : Table) {
        if (!SameText(row.Name, ident)) continue;
        value = row.Value;
        return true;
    }
    return false;
}

template <const auto& Table> bool IdentOf(std::int32_t value, std::string& ident) {
    for (const TIdent& row : Table) {
        if (row.Value != value) continue;
        ident = row.Name;
        return true;
    }
    return false;
}

} // namespace

void RegisterStandardIdents() {
    RegisterIntegerConsts(ColorType, IdentToColor, ColorToIdent);
    RegisterIntegerConsts(CursorType, ValueOf<Cursors>, IdentOf<Cursors>);
    RegisterIntegerConsts(FontCharsetType, ValueOf<Charsets>, IdentOf<Charsets>);
}

} // namespace tarn
