#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace tarn {

/// Adds `tarn ini`, which reads and changes INI text files. What the user has chosen goes to
/// `chosen`; calling it raises EScriptError and EFileError.
void AddIniCommand(CLI::App& app, std::function<void()>& chosen);

} // namespace tarn
