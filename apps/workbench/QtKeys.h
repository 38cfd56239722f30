#pragma once

#include "vcl/ShortCuts.h"

class QKeyEvent;

namespace tarn {

/// The key of an event with its modifiers; 0 for one without a virtual key code, such as a modifier
/// alone. Keys of signs are those of a US keyboard.
TShortCut ShortCutOf(const QKeyEvent& event);

/// Whether the key has a character that can be seen, be it typed by it or not.
bool HasCharacter(const QKeyEvent& event);
/// Whether the key types a character, and so is no command's.
bool IsTyped(const QKeyEvent& event);

} // namespace tarn
