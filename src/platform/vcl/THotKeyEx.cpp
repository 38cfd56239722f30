#include "vcl/THotKeyEx.h"

namespace tarn {
namespace {

constexpr TPropInfo HotKeyProps[] = {
    Published<&THotKeyEx::HotKey, &THotKeyEx::SetHotKey>("HotKey",
                                                         {.Default = 0, .Type = &ShortCutType}),
    Published<&THotKeyEx::InvalidKeys>("InvalidKeys",
                                       {.Default = THKInvalidKeys{hcNone, hcShift}.Mask()}),
    Published<&THotKeyEx::Modifiers>("Modifiers", {.Default = THKModifiers{hkAlt}.Mask()}),
    Published<&THotKeyEx::OnChange>("OnChange"),
};

struct THotKeyModifier {
    TShortCut Bit;
    THKModifier Modifier;
};
constexpr THotKeyModifier HotKeyModifiers[] = {
    {scShift, hkShift}, {scCtrl, hkCtrl}, {scAlt, hkAlt}};

constexpr TShortCut ModifierMask = scShift | scCtrl | scAlt;

/// The combination that the modifiers of a shortcut are.
THKInvalidKey CombinationOf(TShortCut key) {
    constexpr struct {
        unsigned Modifiers;
        THKInvalidKey Combination;
    } combinations[] = {
        {0, hcNone},
        {scShift, hcShift},
        {scCtrl, hcCtrl},
        {scAlt, hcAlt},
        {scShift | scCtrl, hcShiftCtrl},
        {scShift | scAlt, hcShiftAlt},
        {scCtrl | scAlt, hcCtrlAlt},
    };
    for (const auto& row : combinations)
        if (row.Modifiers == (key & ModifierMask)) return row.Combination;
    return hcShiftCtrlAlt;
}

} // namespace

constinit const TClassRecord THotKeyEx::ClassRecord{"THotKeyEx", &TControl::ClassRecord,
                                                    CreateObject<THotKeyEx>, HotKeyProps};

void THotKeyEx::SetHotKey(TShortCut value) {
    FHotKey = value;
    StateChanged();
}

TShortCut THotKeyEx::Allowed(TShortCut key) const {
    if (!InvalidKeys.Contains(CombinationOf(key))) return key;
    for (const THotKeyModifier& row : HotKeyModifiers)
        if (Modifiers.Contains(row.Modifier)) key |= row.Bit;
    return key;
}

bool THotKeyEx::PressKey(TShortCut key) {
    if (!CanFocus() || ShortCutKey(key) == 0) return false;
    const bool clears = key == VK_BACK || key == VK_DELETE;
    const TShortCut pressed = clears ? TShortCut{0} : Allowed(key);
    if (pressed == FHotKey) return true;
    SetHotKey(pressed);
    if (const TNotifyEvent handler = OnChange) handler(this);
    return true;
}

} // namespace tarn
