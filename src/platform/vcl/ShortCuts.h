#pragma once

#include "os/OS.h"
#include "rtl/TSet.h"
#include "rtl/TypInfo.h"

#include <string>
#include <string_view>

namespace tarn {

/// A key with its modifiers: the virtual key code in the low byte, the modifiers above; 0 is none.
using TShortCut = std::uint16_t;
/// The type of a shortcut property, to be named in the options of its row.
inline constexpr TTypeInfo ShortCutType = IntegerType<TShortCut>("TShortCut");

inline constexpr TShortCut scShift = 0x2000;
inline constexpr TShortCut scCtrl = 0x4000;
inline constexpr TShortCut scAlt = 0x8000;

inline constexpr TVirtualKey VK_BACK = 0x08, VK_TAB = 0x09, VK_RETURN = 0x0D, VK_ESCAPE = 0x1B,
                             VK_SPACE = 0x20, VK_PRIOR = 0x21, VK_NEXT = 0x22, VK_END = 0x23,
                             VK_HOME = 0x24, VK_LEFT = 0x25, VK_UP = 0x26, VK_RIGHT = 0x27,
                             VK_DOWN = 0x28, VK_INSERT = 0x2D, VK_DELETE = 0x2E;

constexpr TVirtualKey ShortCutKey(TShortCut shortCut) {
    return static_cast<TVirtualKey>(shortCut & 0xFF);
}

/// The modifier keys that are held down with a click.
enum TShiftKey : std::uint8_t { ssShift, ssAlt, ssCtrl };
using TShiftState = TSet<TShiftKey>;

/// Settings that hold the text of a shortcut.
inline constexpr TTypeInfo ShortCutStringType = {"TShortCutString", tkLString};

/// The text of a shortcut, for example "Shift+Ctrl+Del"; empty when its key has no name. Keys that
/// give a sign are called as the active keyboard layout names them.
std::string ShortCutToText(TShortCut shortCut);
/// The shortcut of a text, in any order of the modifiers and without case; 0 when it is none under
/// the active keyboard layout.
TShortCut TextToShortCut(std::string_view text);

} // namespace tarn
