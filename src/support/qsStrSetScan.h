#pragma once

/// Searching a long text for a set of characters with the wide registers that many processors have.
/// Internal to the string utilities: positions are 0-based, std::string_view::npos means none.

#include "TCharSet.h"

#include <cstddef>
#include <string_view>

namespace tarn::scan {

/// Whether this processor can do it. Without, the functions below may not be called.
bool HasWideSetScan();
std::size_t WideFirstOf(std::string_view text, const TCharSet& set);
std::size_t WideLastOf(std::string_view text, const TCharSet& set);

} // namespace tarn::scan
