#include "qsLocale.h"

#include "rtl/SysUtils.h"
#include "vcl/Forms.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

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

// --- The locale object ------------------------------------------------------------------------

TfrLocale::~TfrLocale() {
    if (FModuleLoaded && HasOS()) OS().FreeLibrary(FModuleHandle);
}

void TfrLocale::LoadNewLanguage(std::string_view fileName) {
    if (std::exchange(FModuleLoaded, false)) OS().FreeLibrary(std::exchange(FModuleHandle, 0));
    if (fileName.empty()) return;
    // The quirk: 32 is the only result that counts as a failure, though a failed load gives 0.
    constexpr HMODULE failed = 32;
    FModuleHandle = OS().LoadLibrary(fileName);
    FModuleLoaded = FModuleHandle != failed;
}

bool TfrLocale::IsDelphiHost() const {
    return Application() && UpperCase(ExtractFileName(Application()->ExeName)) == "DELPHI32.EXE";
}

namespace {

std::unique_ptr<TfrLocale>& TheLocale() {
    static std::unique_ptr<TfrLocale> locale;
    return locale;
}

} // namespace

TfrLocale& Locale() {
    if (!TheLocale()) TheLocale() = std::make_unique<TfrLocale>();
    return *TheLocale();
}

void FreeLocale() {
    TheLocale().reset();
}

void LoadNewLanguage(std::string_view fileName) {
    Locale().LoadNewLanguage(fileName);
}

// --- The texts --------------------------------------------------------------------------------

std::optional<std::string_view> FindBuiltInStr(int id) {
    if (id < FirstId || id > LastId) return std::nullopt;
    const TRowNumber row = RowOfId[id - FirstId];
    if (row == NoRow) return std::nullopt;
    return StringRows[row].Text;
}

std::string LocaleStr(int id) {
    const TfrLocale& locale = Locale();
    if (locale.OnLocaleStr) {
        std::string text = locale.OnLocaleStr(id);
        if (!text.empty()) return text;
    }
    if (locale.ModuleLoaded()) {
        std::string text = OS().LoadString(locale.ModuleHandle(), id);
        if (!text.empty()) return text;
    }
    return std::string(FindBuiltInStr(id).value_or(std::string_view()));
}

std::string DefaultLocaleStr(int id) {
    return std::string(FindBuiltInStr(id).value_or("Not found"));
}

} // namespace tarn
