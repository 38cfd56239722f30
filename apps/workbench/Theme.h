#pragma once

#include <cstdint>

namespace tarn {

/// What colours the program has: those of the desktop, or its own.
enum TTheme : std::uint8_t { thSystem, thLight, thDark };
void ApplyTheme(TTheme theme);

} // namespace tarn
