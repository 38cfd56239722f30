#pragma once

#include <string>

namespace tarn {

class TConsoleDialogs;

// The languages of the pack for the user of the program, whose choice is kept in the registry. A
// console shows the dialogs of the IDE and the pack; the package directory has the libraries.

/// The languages that can be chosen, one a line, the current one with a *; modules whose file is
/// missing are named as such.
std::string ListLanguages(TConsoleDialogs* console, const std::string& packageDir);
/// Chooses a language by its internal name or the name shown, or "Default". Raises EScriptError
/// naming those there are, or when the choice cannot be kept.
void UseLanguage(const std::string& name, TConsoleDialogs* console, const std::string& packageDir);

/// What a language library lacks beside the built-in texts.
struct TLanguageCheck {
    std::string Report; ///< one line for each fault, or one that all is well
    bool Faultless = true;
};

/// Compares the strings of a library with the built-in ones: missing ids, other placeholders.
/// Raises EScriptError when the file cannot be read as such a library.
TLanguageCheck CheckLanguage(const std::string& file);

/// Another registry file than the user's own, for the commands above.
void SetRegistryFile(const std::string& file);

} // namespace tarn
