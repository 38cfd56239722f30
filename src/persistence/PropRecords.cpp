#include "PropRecords.h"

#include "rtl/SysUtils.h"
#include "streaming/TReader.h"

#include <unordered_set>

namespace tarn {

void ForEachPropRecord(
    std::string_view records,
    const std::function<void(std::string_view name, std::string_view record)>& visit) {
    TReader reader(records);
    while (reader.BytesLeft() > 0) {
        const auto at = static_cast<std::size_t>(reader.Position());
        const std::string name = reader.ReadStr();
        reader.SkipValue();
        visit(name, records.substr(at, static_cast<std::size_t>(reader.Position()) - at));
    }
}

std::string MergedPropRecords(std::string_view older, std::string newer) {
    if (older.empty()) return newer;
    std::unordered_set<std::string> names;
    ForEachPropRecord(
        newer, [&](std::string_view name, std::string_view) { names.insert(LowerCase(name)); });
    std::string merged;
    ForEachPropRecord(older, [&](std::string_view name, std::string_view record) {
        if (names.count(LowerCase(name)) == 0) merged += record;
    });
    return merged + newer;
}

} // namespace tarn
