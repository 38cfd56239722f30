#pragma once

#include <exception>
#include <functional>
#include <string>

namespace tarn {

class TExpData;
class TExpManager;
class TMenuItem;
class TObject;

/// The places where the manager hands over to services that may be absent. An empty slot means the
/// built-in default: nothing is loaded, nothing is saved, nothing is logged.
struct TExpManagerSlots {
    /// Loads the settings tree from an existing file that is not empty, all or nothing; false when
    /// the file could not be read.
    std::function<bool(TExpData& data, const std::string& fileName)> LoadExpData;
    std::function<void(TExpData& data, const std::string& fileName)> SaveExpData;
    /// Gives the settings editor the routine that writes a settings object to a file; called when
    /// the package is initialized.
    std::function<void()> InstallSaveRoutine;

    /// Reads the language settings and loads the chosen language.
    std::function<void(TExpManager& manager)> ProcessLocalization;
    std::function<void(TExpManager& manager)> SaveLocalization;
    /// Fills the "Language" submenu.
    std::function<void(TExpManager& manager, TMenuItem& item)> CreateLangSubMenu;

    /// Appends an entry to the error log.
    std::function<void(TObject* sender, const std::exception& error)> WriteLogEntry;
};

/// The slots of the process. They stay filled over shut-down and a new start.
TExpManagerSlots& ExpManagerSlots();

} // namespace tarn
