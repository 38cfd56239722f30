#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// What differs between two texts line by line, in the unified form with three lines of context;
/// empty when they are equal. Line ends count, though CR LF, LF and CR are shown alike.
std::string UnifiedDiff(std::string_view before, std::string_view after,
                        std::string_view nameBefore, std::string_view nameAfter);

} // namespace tarn
