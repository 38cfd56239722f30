#include "qsLocale.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace tarn {

namespace {

struct TStringRow {
    int Id;
    std::string_view Text;
};

// Generated from the string table, ascending by id.
constexpr TStringRow StringRows[] = {
#include "StringTable.inc"
};

constexpr int FirstId = std::begin(StringRows)->Id;
constexpr int LastId = std::rbegin(StringRows)->Id;

using TRowNumber = std::uint16_t;
constexpr TRowNumber NoRow = 0xFFFF;
static_assert(std::size(StringRows) < NoRow);

/// The row of each id from FirstId to LastId. The ids lie close together, so that two bytes for
/// each make the look-up one step.
constexpr auto RowOfId = [] {
    std::array<TRowNumber, LastId - FirstId + 1> rows{};
    rows.fill(NoRow);
    for (std::size_t i = 0; i < std::size(StringRows); ++i)
        rows[StringRows[i].Id - FirstId] = static_cast<TRowNumber>(i);
    return rows;
}();

} // namespace

TfrLocale& Locale() {
    static TfrLocale locale;
    return locale;
}

std::optional<std::string_view> FindBuiltInStr(int id) {
    if (id < FirstId || id > LastId) return std::nullopt;
    const TRowNumber row = RowOfId[id - FirstId];
    if (row == NoRow) return std::nullopt;
    return StringRows[row].Text;
}

std::string LocaleStr(int id) {
    if (const TLocaleStrEvent handler = Locale().OnLocaleStr) {
        std::string text = handler(id);
        if (!text.empty()) return text;
    }
    return std::string(FindBuiltInStr(id).value_or(std::string_view()));
}

std::string DefaultLocaleStr(int id) {
    return std::string(FindBuiltInStr(id).value_or("Not found"));
}

} // namespace tarn
