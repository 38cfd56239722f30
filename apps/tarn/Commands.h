#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

class TConsoleDialogs;

// The commands of the program. Each raises EScriptError or EFileError; the message names the place.
// The dialogs of the IDE and the pack are shown on the console that a command is given; without one
// their text is in the message. The package directory is the one of PackageFolder.

/// Plays a script, "-" for standard input; prints to standard output.
void RunScript(const std::string& file, TConsoleDialogs* console = nullptr);

/// What `tarn apply` is told.
struct TApplyRequest {
    std::string Command; ///< the identifier of a menu item
    std::string File;    ///< "-" for standard input
    std::string Select;  ///< "R:C-R:C"; empty when not given
    std::string Lines;   ///< "A-B"; empty when not given; without either the whole text is meant
    bool InPlace = false;
    std::string PackageDir;
};

/// Runs one command of the pack on a file and gives the resulting bytes, or writes them back.
/// A refused command changes nothing.
std::optional<std::string> ApplyCommand(const TApplyRequest& request,
                                        TConsoleDialogs* console = nullptr);

/// The main menu as the pack builds it.
std::string BuiltMenu(const std::string& packageDir = {}, TConsoleDialogs* console = nullptr);

/// The error log in the directory of the package; no text when there is no log.
std::optional<std::string> ErrorLogText(const std::string& packageDir);
/// Empties the log; false when there is none.
bool ClearErrorLog(const std::string& packageDir);

/// Prints to standard output. Raises EScriptError.
void WriteOut(std::string_view text);

/// The whole program.
int TarnMain(int argc, char** argv);

} // namespace tarn
