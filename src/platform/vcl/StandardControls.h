#pragma once

namespace tarn {

/// Makes the controls, menus, actions and timers known by their class names, so that the text of a
/// form that holds them can be read. To call it again changes nothing.
void RegisterStandardControls();

} // namespace tarn
