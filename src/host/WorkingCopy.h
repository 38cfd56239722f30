#pragma once

#include "rtl/TObject.h"

#include <memory>

namespace tarn {

class TExpData;

// A copy of the settings that the settings editor works on: nothing that is done to it reaches an
// expert, a menu or the error log. Saved, it is the settings file that the settings themselves
// would be.

/// Makes what Assign has copied a whole copy of the settings as they are now, saved or not: Assign
/// leaves most of a command's settings out and shares the experts' objects.
void CompleteWorkingCopy(TExpData& copy, const TExpData& settings);

/// A stand-in for an expert's settings object: it has the published properties of that class, under
/// its name, with values of its own. The object itself cannot be made again for this, since an
/// expert registers itself. Objects that it holds are copied by their class's constructor and
/// Assign. Blocks of data beside the published properties are not copied.
/// Raises EInvalidOperation for a class of more than 64 published properties, and for a property of
/// a kind that holds no settings.
std::unique_ptr<TPersistent> NewSettingsCopy(const TPersistent& original);

} // namespace tarn
