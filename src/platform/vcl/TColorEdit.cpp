#include "vcl/TColorEdit.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

constexpr TPropInfo ColorEditProps[] = {
    Published<&TColorEdit::SelectedColor, &TColorEdit::SetSelectedColor>(
        "SelectedColor", {.Default = clBlack, .Type = &ColorType}),
    Published<&TColorEdit::OnChange>("OnChange"),
};

} // namespace

constinit const TClassRecord TColorEdit::ClassRecord{"TColorEdit", &TControl::ClassRecord,
                                                     CreateObject<TColorEdit>, ColorEditProps};

const TStrings& TColorEdit::Items() {
    static TStringList items;
    if (items.IsEmpty())
        for (const TColorName& name : ColorNames()) items.Add(name.Ident);
    return items;
}

void TColorEdit::SetSelectedColor(TColor value) {
    FSelectedColor = value;
    StateChanged();
}

bool TColorEdit::ChooseColor(TColor color) {
    if (!CanFocus()) return false;
    if (color == FSelectedColor) return true;
    SetSelectedColor(color);
    if (const TNotifyEvent handler = OnChange) handler(this);
    return true;
}

bool TColorEdit::TypeText(std::string_view text) {
    try {
        return ChooseColor(StringToColor(Trim(text)));
    } catch (const EConvertError&) {
        return false;
    }
}

} // namespace tarn
