#pragma once

#include "qsDataHndl2.h"
#include "qsLocale.h"

namespace tarn {

/// The texts of data handling errors.
enum TDataHandlingStr : int {
    strNoProperty = 50520,
    strUnsupportedKind = 50523,
    strNoEnumValue = 50582,
    strNoSetValue = 50583,
    strNoColor = 50584
};

[[noreturn]] inline void RaiseDataError(TDataHandlingStr id, std::string_view offending = {}) {
    throw EDataHandlingError(Format(LocaleStr(id), {offending}));
}

} // namespace tarn
