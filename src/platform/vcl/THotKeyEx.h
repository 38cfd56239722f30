#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// The modifier keys that are held down with a key.
enum THKInvalidKey : std::uint8_t {
    hcNone,
    hcShift,
    hcCtrl,
    hcAlt,
    hcShiftCtrl,
    hcShiftAlt,
    hcCtrlAlt,
    hcShiftCtrlAlt
};
inline constexpr std::string_view HKInvalidKeyNames[] = {"hcNone",    "hcShift",       "hcCtrl",
                                                         "hcAlt",     "hcShiftCtrl",   "hcShiftAlt",
                                                         "hcCtrlAlt", "hcShiftCtrlAlt"};
template <>
inline constexpr TTypeInfo TypeInfoOf<THKInvalidKey> = EnumType("THKInvalidKey", HKInvalidKeyNames);
using THKInvalidKeys = TSet<THKInvalidKey>;

enum THKModifier : std::uint8_t {
    hkShift,
    hkCtrl,
    hkAlt,
    hkExt ///< the key of that code beside the number pad, which a shortcut does not tell from it
};
inline constexpr std::string_view HKModifierNames[] = {"hkShift", "hkCtrl", "hkAlt", "hkExt"};
template <>
inline constexpr TTypeInfo TypeInfoOf<THKModifier> = EnumType("THKModifier", HKModifierNames);
using THKModifiers = TSet<THKModifier>;

/// A field in which a key with its modifiers is pressed instead of typed.
class THotKeyEx : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit THotKeyEx(TComponent* owner = nullptr) : TControl(owner) {}

    TShortCut HotKey() const { return FHotKey; } ///< 0 is none
    void SetHotKey(TShortCut value);             ///< any one, also an invalid one
    std::string ShownText() const { return ShortCutToText(FHotKey); }

    /// The combinations that the user cannot press, and what is added to the modifiers of one that
    /// he does.
    THKInvalidKeys InvalidKeys = {hcNone, hcShift};
    THKModifiers Modifiers = {hkAlt};

    /// The user presses a key, which becomes the hot key; Backspace and Del without modifiers leave
    /// none. False, and nothing, for modifiers without a key and while the control is disabled or
    /// hidden.
    bool PressKey(TShortCut key);
    /// Every key is one for the field but those that leave it: Tab, Enter and Esc alone.
    bool WantsKey(TShortCut key) const override {
        return key != VK_TAB && key != VK_RETURN && key != VK_ESCAPE;
    }
    TNotifyEvent OnChange; ///< the user has pressed another hot key

private:
    TShortCut Allowed(TShortCut key) const;

    TShortCut FHotKey = 0;
};

} // namespace tarn
