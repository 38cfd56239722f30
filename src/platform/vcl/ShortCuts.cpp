#include "vcl/ShortCuts.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

struct TKeyCap {
    TVirtualKey Key;
    std::string_view Name;
};

constexpr TKeyCap KeyCaps[] = {
    {VK_BACK, "BkSp"},   {VK_TAB, "Tab"},    {VK_RETURN, "Enter"}, {VK_ESCAPE, "Esc"},
    {VK_SPACE, "Space"}, {VK_PRIOR, "PgUp"}, {VK_NEXT, "PgDn"},    {VK_END, "End"},
    {VK_HOME, "Home"},   {VK_LEFT, "Left"},  {VK_UP, "Up"},        {VK_RIGHT, "Right"},
    {VK_DOWN, "Down"},   {VK_INSERT, "Ins"}, {VK_DELETE, "Del"},
};

struct TModifier {
    TShortCut Bit;
    std::string_view Prefix;
};

constexpr TModifier Modifiers[] = {{scShift, "Shift+"}, {scCtrl, "Ctrl+"}, {scAlt, "Alt+"}};

std::string KeyToText(TVirtualKey key) {
    for (const TKeyCap& cap : KeyCaps)
        if (cap.Key == key) return std::string(cap.Name);
    if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z')) return {static_cast<char>(key)};
    constexpr TVirtualKey numPad0 = 0x60, f1 = 0x70, f24 = 0x87;
    if (key >= numPad0 && key < numPad0 + 10) return {static_cast<char>('0' + key - numPad0)};
    if (key >= f1 && key <= f24) return std::string("F").append(IntToStr(key - f1 + 1));
    return OS().KeyName(key);
}

} // namespace

std::string ShortCutToText(TShortCut shortCut) {
    const std::string key = KeyToText(ShortCutKey(shortCut));
    if (key.empty()) return {};
    std::string text;
    for (const TModifier& modifier : Modifiers)
        if (shortCut & modifier.Bit) text += modifier.Prefix;
    return text + key;
}

TShortCut TextToShortCut(std::string_view text) {
    unsigned modifiers = 0;
    for (bool found = true; found;) {
        found = false;
        for (const TModifier& modifier : Modifiers)
            if (SameText(text.substr(0, modifier.Prefix.size()), modifier.Prefix)) {
                modifiers |= modifier.Bit;
                text.remove_prefix(modifier.Prefix.size());
                found = true;
            }
    }
    if (text.empty()) return 0;
    for (int key = VK_BACK; key <= 255; ++key)
        if (AnsiSameText(KeyToText(static_cast<TVirtualKey>(key)), text))
            return static_cast<TShortCut>(modifiers | static_cast<unsigned>(key));
    return 0;
}

} // namespace tarn
