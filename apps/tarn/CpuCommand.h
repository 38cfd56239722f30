#pragma once

#include <functional>
#include <vector>

namespace CLI {
class App;
}

namespace tarn {

/// Adds `tarn cpu`, which prints what the pack captures from the panes of the CPU window. What the
/// user has chosen goes to `chosen`; calling it raises EScriptError.
void AddCpuCommand(CLI::App& app, std::function<void()>& chosen);

/// The command line with `cpu -- PROGRAM` as `cpu --program PROGRAM`, so that options may stand
/// behind the program. Other command lines stay as they are.
std::vector<const char*> WithProgramOption(int argc, const char* const* argv);

} // namespace tarn
