#include "vcl/TFontEdit.h"

#include "rtl/SysUtils.h"
#include "vcl/Forms.h"

namespace tarn {
namespace {

constexpr TPropInfo FontEditProps[] = {
    Published<&TFontEdit::ListInstalledFonts, &TFontEdit::SetListInstalledFonts>(
        "ListInstalledFonts", {.Default = true}),
    Published<&TFontEdit::SelectedFontObject>("SelectedFont"),
    Published<&TFontEdit::OnChange>("OnChange"),
};

} // namespace

constinit const TClassRecord TFontEdit::ClassRecord{"TFontEdit", &TControl::ClassRecord,
                                                    CreateObject<TFontEdit>, FontEditProps};

TFontEdit::TFontEdit(TComponent* owner) : TControl(owner) {
    FSelectedFont.OnChange = TNotifyEvent::Of<&TFontEdit::SelectedFontChanged>(this);
}

TFont* TFontEdit::SelectedFontObject() const {
    return &const_cast<TFontEdit*>(this)->FSelectedFont;
}

void TFontEdit::SetSelectedFont(const TFont& value) {
    FSelectedFont.Assign(&value);
}

void TFontEdit::SetListInstalledFonts(bool value) {
    FListInstalledFonts = value;
    StateChanged();
}

const TStrings& TFontEdit::Items() const {
    static const TStringList none;
    if (!FListInstalledFonts || !Screen()) return none;
    return Screen()->Fonts();
}

std::string TFontEdit::ShownText() const {
    const int size = FSelectedFont.Size();
    std::string text = FSelectedFont.Name();
    if (size == 0) return text;
    if (!text.empty()) text += ", ";
    return text + IntToStr(size);
}

// --- The user ---------------------------------------------------------------------------------

namespace {

bool SameFonts(const TFont& a, const TFont& b) {
    return a.Charset() == b.Charset() && a.Color() == b.Color() && a.Height() == b.Height() &&
           a.Name() == b.Name() && a.Pitch() == b.Pitch() && a.Style() == b.Style();
}

} // namespace

bool TFontEdit::ChooseFont(const TFont& font) {
    if (!CanFocus()) return false;
    if (SameFonts(font, FSelectedFont)) return true;
    SetSelectedFont(font);
    if (const TNotifyEvent handler = OnChange) handler(this);
    return true;
}

bool TFontEdit::ChooseName(std::string_view name) {
    TFont font;
    font.Assign(&FSelectedFont);
    font.SetName(name);
    return ChooseFont(font);
}

bool TFontEdit::ChooseSize(int size) {
    if (size < 1) return false;
    TFont font;
    font.Assign(&FSelectedFont);
    font.SetSize(size);
    return ChooseFont(font);
}

} // namespace tarn
