#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace tarn {

/// Adds `tarn settings`, which shows and changes the settings of the pack in a package directory;
/// the result is to have an option for that. What the user has chosen goes to `chosen`; calling it
/// raises EScriptError and EFileError. `packageDir` is read then.
CLI::App* AddSettingsCommand(CLI::App& app, const std::string& packageDir,
                             std::function<void()>& chosen);

} // namespace tarn
