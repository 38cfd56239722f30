#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace tarn {

/// Adds `tarn form`, which converts, shows and changes form files. What the user has chosen goes to
/// `chosen`; calling it raises EScriptError and EFileError.
void AddFormCommand(CLI::App& app, std::function<void()>& chosen);

} // namespace tarn
