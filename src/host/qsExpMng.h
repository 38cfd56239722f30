#pragma once

// The package's entry and what every expert needs of the host.
#include "TCustomExpert.h"
#include "TExpManager.h"
#include "TExpertRegistry.h"

#include <string>

namespace tarn {

/// Called by the IDE once the package is initialized: makes the manager and hands it to the IDE as
/// a wizard. An error goes to the application's exception handler, and there is no manager then.
/// While there is one, a second call does nothing.
void Register();

/// The error log's entry for an expert that catches an error itself; to be called while the
/// exception is being handled, and does nothing when none is. Errors of the platform's family reach
/// the application's handler anyway and are logged there: for them it does nothing.
void CheckAddErrorLog(TObject* sender);

/// The directory of the package, with its trailing separator.
const std::string& PackageDir();
/// "ExpData.spc", in the package's directory.
const std::string& SettingsFileName();
/// The settings file with its path.
std::string SettingsFile();

// Initialization and finalization of the unit, counted: the first call and the last one count.
void InitializeExpMng();
void FinalizeExpMng();

/// Counts the initializations of a unit, so that it is set up once and torn down once.
class TUnitCounter {
public:
    bool Enter() { return FCount++ == 0; }
    bool Leave() { return FCount > 0 && --FCount == 0; }

private:
    int FCount = 0;
};

} // namespace tarn
