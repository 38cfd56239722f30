#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tarn {

// Property records: names and values of a component stream one after the other, whole as a reader
// has found them.

/// Calls `visit` with each record and its name.
void ForEachPropRecord(
    std::string_view records,
    const std::function<void(std::string_view name, std::string_view record)>& visit);

/// The records `newer`, and before them those of `older` whose names it does not have; without
/// case.
std::string MergedPropRecords(std::string_view older, std::string newer);

} // namespace tarn
