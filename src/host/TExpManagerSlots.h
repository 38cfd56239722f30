#pragma once

#include "ExpDataFile.h"
#include "qsErrorLog.h"

#include <exception>
#include <functional>
#include <string>

namespace tarn {

class TExpData;
class TExpManager;
class TMenuItem;
class TObject;

/// TExpManager::ProcessLocalization and TExpManager::SaveLocalization.
void ReadLanguageSettings(TExpManager& manager);
void WriteLanguageSettings(TExpManager& manager);

/// The places where the manager hands over to services that may be absent or replaced. With an
/// empty slot nothing is loaded, nothing is saved, nothing is logged.
struct TExpManagerSlots {
    /// Loads the settings tree from an existing file that is not empty, all or nothing; false when
    /// the file could not be read.
    std::function<bool(TExpData& data, const std::string& fileName)> LoadExpData = ReadExpDataFile;
    std::function<void(TExpData& data, const std::string& fileName)> SaveExpData =
        WriteExpDataFileOnExit;
    /// Gives the settings editor the routine that writes a settings object to a file; called when
    /// the package is initialized.
    std::function<void()> InstallSaveRoutine = InstallSaveSpcRoutine;

    /// Where the language settings come from at the start and go to at the end: the registry.
    std::function<void(TExpManager& manager)> ProcessLocalization = ReadLanguageSettings;
    std::function<void(TExpManager& manager)> SaveLocalization = WriteLanguageSettings;

    /// Appends an entry to the error log; called while that is allowed.
    std::function<void(TObject* sender, const std::exception& error)> WriteLogEntry =
        AppendLogEntry;
};

/// The slots of the process. They stay filled over shut-down and a new start.
TExpManagerSlots& ExpManagerSlots();

} // namespace tarn
