#pragma once

#include "os/OS.h"
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
    TfrLocale() = default;
    TfrLocale(const TfrLocale&) = delete;
    TfrLocale& operator=(const TfrLocale&) = delete;
    ~TfrLocale();

    /// May supply a text before anything else is asked. Whoever sets it takes it out again before
    /// the object behind it goes.
    TLocaleStrEvent OnLocaleStr;

    /// Frees the language module in use and loads another; an empty name only frees. A kept quirk:
    /// a module that cannot be loaded counts as loaded, and every text of it falls back to the
    /// package's own.
    void LoadNewLanguage(std::string_view fileName);
    HMODULE ModuleHandle() const { return FModuleHandle; }
    bool ModuleLoaded() const { return FModuleLoaded; }

    /// Whether the host is the IDE for Pascal, told by the name of its program.
    bool IsDelphiHost() const;

private:
    HMODULE FModuleHandle = 0;
    bool FModuleLoaded = false;
};

/// The locale object of the process, created on first use.
TfrLocale& Locale();
/// Frees the locale object and the language module with it.
void FreeLocale();

/// Locale().LoadNewLanguage.
void LoadNewLanguage(std::string_view fileName);

/// The text of string `id` in the current language: that of OnLocaleStr, else that of the language
/// module, else that of the package's own table; empty when the id exists nowhere. UTF-8.
std::string LocaleStr(int id);

/// The text of string `id` from the package's own table, whatever language is current; "Not found"
/// when it has none.
std::string DefaultLocaleStr(int id);

/// The row `id` of the package's own table. The text lives as long as the program.
std::optional<std::string_view> FindBuiltInStr(int id);

} // namespace tarn
