#pragma once

#include "rtl/TMethod.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Asked for the text of a string id; an empty result means that it has none.
using TLocaleStrEvent = TMethod<std::string(int)>;

/// Where the texts come from besides the package's own table. One per process, see Locale.
class TfrLocale {
public:
    /// May supply a text before anything else is asked. Whoever sets it takes it out again before
    /// the object behind it goes.
    TLocaleStrEvent OnLocaleStr;
};

/// The locale object of the process, created on first use.
TfrLocale& Locale();

/// The text of string `id` in the current language: that of OnLocaleStr, else that of the package's
/// own table; empty when the id exists nowhere. The result is UTF-8.
std::string LocaleStr(int id);

/// The text of string `id` from the package's own table, whatever language is current; "Not found"
/// when it has none.
std::string DefaultLocaleStr(int id);

/// The row `id` of the package's own table. The text lives as long as the program.
std::optional<std::string_view> FindBuiltInStr(int id);

} // namespace tarn
