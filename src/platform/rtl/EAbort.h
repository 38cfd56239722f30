#pragma once

#include "rtl/SysUtils.h"

namespace tarn {

struct TAbortTag {
    static constexpr std::string_view Name = "EAbort";
};

/// Ends a command that the user no longer wants: the application's handler shows it to nobody.
using EAbort = TNamedException<TAbortTag>;

} // namespace tarn
