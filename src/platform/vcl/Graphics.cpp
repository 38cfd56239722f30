#include "vcl/Graphics.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TColorName Names[] = {
    {"clBlack", clBlack},
    {"clMaroon", clMaroon},
    {"clGreen", clGreen},
    {"clOlive", clOlive},
    {"clNavy", clNavy},
    {"clPurple", clPurple},
    {"clTeal", clTeal},
    {"clGray", clGray},
    {"clSilver", clSilver},
    {"clRed", clRed},
    {"clLime", clLime},
    {"clYellow", clYellow},
    {"clBlue", clBlue},
    {"clFuchsia", clFuchsia},
    {"clAqua", clAqua},
    {"clWhite", clWhite},
    {"clScrollBar", clScrollBar},
    {"clBackground", clBackground},
    {"clActiveCaption", clActiveCaption},
    {"clInactiveCaption", clInactiveCaption},
    {"clMenu", clMenu},
    {"clWindow", clWindow},
    {"clWindowFrame", clWindowFrame},
    {"clMenuText", clMenuText},
    {"clWindowText", clWindowText},
    {"clCaptionText", clCaptionText},
    {"clActiveBorder", clActiveBorder},
    {"clInactiveBorder", clInactiveBorder},
    {"clAppWorkSpace", clAppWorkSpace},
    {"clHighlight", clHighlight},
    {"clHighlightText", clHighlightText},
    {"clBtnFace", clBtnFace},
    {"clBtnShadow", clBtnShadow},
    {"clGrayText", clGrayText},
    {"clBtnText", clBtnText},
    {"clInactiveCaptionText", clInactiveCaptionText},
    {"clBtnHighlight", clBtnHighlight},
    {"cl3DDkShadow", cl3DDkShadow},
    {"cl3DLight", cl3DLight},
    {"clInfoText", clInfoText},
    {"clInfoBk", clInfoBk},
    {"clNone", clNone},
    {"clDefault", clDefault},
};

} // namespace

std::span<const TColorName> ColorNames() {
    return Names;
}

bool ColorToIdent(TColor color, std::string& ident) {
    const auto* const found =
        std::find_if(std::begin(Names), std::end(Names),
                     [color](const TColorName& name) { return name.Color == color; });
    if (found == std::end(Names)) return false;
    ident = found->Ident;
    return true;
}

bool IdentToColor(std::string_view ident, TColor& color) {
    const auto* const found =
        std::find_if(std::begin(Names), std::end(Names),
                     [ident](const TColorName& name) { return SameText(name.Ident, ident); });
    if (found == std::end(Names)) return false;
    color = found->Color;
    return true;
}

std::string ColorToString(TColor color) {
    std::string text;
    return ColorToIdent(color, text) ? text : Format("$%.8x", {color});
}

TColor StringToColor(std::string_view text) {
    TColor color = 0;
    return IdentToColor(text, color) ? color : StrToInt(text);
}

} // namespace tarn
