#include "vcl/TComboBox.h"

namespace tarn {
namespace {

constexpr TPropInfo ComboBoxProps[] = {
    Published<&TComboBox::Style, &TComboBox::SetStyle>("Style", {.Default = csDropDown}),
    Published<&TComboBox::ItemsObject>("Items"),
    Published<&TComboBox::ItemIndex, &TComboBox::SetItemIndex>("ItemIndex", {.Default = -1}),
    Published<&TControl::Text, &TControl::SetText>("Text"),
    Published<&TComboBox::OnChange>("OnChange"),
    Published<&TComboBox::OnClick>("OnClick"),
    Published<&TComboBox::OnDropDown>("OnDropDown"),
};

} // namespace

constinit const TClassRecord TComboBox::ClassRecord{"TComboBox", &TControl::ClassRecord,
                                                    CreateObject<TComboBox>, ComboBoxProps};

TComboBox::TComboBox(TComponent* owner) : TControl(owner) {
    FItems.OnChange = TNotifyEvent::Of<&TComboBox::ItemsChanged>(this);
}

TStrings* TComboBox::ItemsObject() const {
    return &const_cast<TComboBox*>(this)->FItems;
}

void TComboBox::ItemsChanged(TObject*) {
    if (FStyle == csDropDownList)
        Change(ItemIndex(), ItemIndex() < 0 ? std::string_view() : FItems[ItemIndex()]);
    else if (ItemIndex() >= 0 && FItems[ItemIndex()] != Text())
        Change(-1, Text());
    else
        StateChanged();
}

void TComboBox::Change(int index, std::string_view text) {
    FItems.SetCurrent(index);
    TControl::SetText(std::string(text)); // it may be the control's own
}

void TComboBox::SetText(std::string_view value) {
    const bool same = ItemIndex() >= 0 && FItems[ItemIndex()] == value;
    if (FStyle == csDropDown) return Change(same ? ItemIndex() : -1, value);
    for (int i = 0; i < FItems.Count() && !same; ++i)
        if (FItems[i] == value) return SetItemIndex(i);
}

void TComboBox::SetItemIndex(int value) {
    Change(value, FItems.Has(value) ? std::string_view(FItems[value]) : std::string_view());
}

void TComboBox::SetStyle(TComboBoxStyle value) {
    FStyle = value;
    ItemsChanged(this);
}

// --- The user ---------------------------------------------------------------------------------

bool TComboBox::DropDown() {
    if (!CanFocus()) return false;
    const TWeak<TComboBox> alive(this);
    if (const TNotifyEvent handler = FDroppedDown ? TNotifyEvent() : OnDropDown) handler(this);
    if (!alive) return true;
    FDroppedDown = true;
    StateChanged();
    return true;
}

void TComboBox::CloseUp() {
    FDroppedDown = false;
    StateChanged();
}

bool TComboBox::TypeText(std::string_view text) {
    if (!CanFocus() || FStyle == csDropDownList) return false;
    if (text == Text()) return true;
    SetText(text);
    if (const TNotifyEvent handler = OnChange) handler(this);
    return true;
}

bool TComboBox::Choose(int index) {
    if (!CanFocus() || !FItems.Has(index)) return false;
    const bool changed = index != ItemIndex() || FItems[index] != Text();
    FDroppedDown = false;
    SetItemIndex(index);
    const TWeak<TComboBox> alive(this);
    if (const TNotifyEvent handler = changed ? OnChange : TNotifyEvent()) handler(this);
    if (!alive) return true;
    if (const TNotifyEvent handler = OnClick) handler(this);
    return true;
}

bool TComboBox::WantsKey(TShortCut key) const {
    return FDroppedDown && (key == VK_RETURN || key == VK_ESCAPE);
}

} // namespace tarn
