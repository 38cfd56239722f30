#pragma once

#include <cstddef>
#include <functional>

namespace tarn {

/// The operations that one run of a property benchmark makes, so that the clock's own time is
/// small.
inline constexpr int PropOperations = 1000;

enum TPropValue { pvInteger, pvString, pvEnum };

/// One way to a property.
struct TPropAccess {
    TPropValue Value;
    bool Write;
    bool Path; ///< of three names, else one name
    bool Text; ///< as text, else as a variant
};

/// Makes PropOperations accesses and returns something that depends on them.
using TPropRun = std::function<std::size_t()>;

/// The yardstick's run; empty when the benchmark is built without it.
TPropRun QtAccess(const TPropAccess& access);
/// The look-up of each of the properties' names in turn.
TPropRun QtLookUp();

} // namespace tarn
