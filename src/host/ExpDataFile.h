#pragma once

#include "qsSpcMng.h"

#include <functional>
#include <string>
#include <string_view>

namespace tarn {

class TExpData;

// The settings file: a data header with the version record, and the shared settings object under
// the name "ExpertData".
//
// The process remembers which file it has read or written last. Another one that it cannot read is
// never lost by a save: its contents are kept beside under a dated name, with a line in the error
// log.

/// Loads the settings, all or nothing and without a word; false when the file cannot be read, or
/// when the user does not want one of a later version. That is asked once for each file.
bool ReadExpDataFile(TExpData& data, const std::string& fileName);
/// Saves the settings in the binary format. Raises EFileError; the file is as it was then.
void WriteExpDataFile(TExpData& data, const std::string& fileName);
/// The same, unless nothing was changed since the settings were read and another program has saved
/// its own meanwhile, which are kept then.
void WriteExpDataFileOnExit(TExpData& data, const std::string& fileName);
/// Saves the settings without the properties that a TFilteringWriter would leave out by `filter`:
/// the next load over fresh settings gives them their defaults.
void WriteExpDataPart(TExpData& data, const std::string& fileName,
                      const std::function<bool(const TPersistent&, std::string_view)>& filter);
/// Why the last load of the file, as it stands now, failed; empty when it did not.
std::string ExpDataFault(const std::string& fileName);

/// Saves a tree as WriteExpDataFile does, in another format if need be.
void SaveExpDataSpc(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format);
/// Has the settings editor save by SaveExpDataSpc.
void InstallSaveSpcRoutine();
/// Forgets what is known of the files.
void ForgetExpDataFiles();

} // namespace tarn
