#pragma once

#include "rtl/SysUtils.h"

#include <exception>
#include <string>

namespace tarn {

/// "CLASS: message" of what the call raises; empty when it raises nothing.
template <class F> std::string ErrorOf(F&& call) {
    try {
        call();
    } catch (const std::exception& error) {
        return std::string(ExceptionClassName(error)) + ": " + error.what();
    }
    return {};
}

} // namespace tarn
