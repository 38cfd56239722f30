#include "rtl/FormatSettings.h"

#include <langinfo.h>

#include <clocale>
#include <memory>
#include <type_traits>

namespace tarn {

TFormatSettings& FormatSettings() {
    static TFormatSettings settings;
    return settings;
}

namespace {

/// Calls `visit(conversion, bare, behind)` for each conversion of a strftime format: its letter,
/// whether it is without a leading zero, and the text up to the next one.
template <class F> void ForEachConversion(std::string_view format, F&& visit) {
    constexpr std::string_view flags = "-_0^#EO";
    for (std::size_t mark = format.find('%'); mark < format.size();) {
        const std::size_t letter = format.find_first_not_of(flags, mark + 1);
        if (letter == std::string_view::npos) return;
        const std::string_view given = format.substr(mark + 1, letter - mark - 1);
        mark = format.find('%', letter + 1);
        visit(format[letter], given.find_first_of("-_") != std::string_view::npos,
              format.substr(letter + 1, mark - letter - 1));
    }
}

/// The short date format and its separator; both stay when the locale's has not the three parts.
void SetDate(TFormatSettings& settings, std::string_view format) {
    if (format == "%D") format = "%m/%d/%y";
    if (format == "%F") format = "%Y-%m-%d";
    std::string parts, letters, separator;
    const auto add = [&](std::string_view part) {
        if (letters.find(part.front()) != std::string::npos) return;
        parts.append(parts.empty() ? "" : "/").append(part);
        letters += part.front();
    };
    ForEachConversion(format, [&](char letter, bool bare, std::string_view behind) {
        const std::size_t known = letters.size();
        if (letter == 'd' || letter == 'e')
            add(bare || letter == 'e' ? "d" : "dd");
        else if (letter == 'm' || letter == 'b' || letter == 'B' || letter == 'h')
            add(bare ? "m" : "mm");
        else if (letter == 'y' || letter == 'Y')
            add("yyyy");
        const std::size_t mark = behind.find_first_of("/-.");
        if (known < letters.size() && separator.empty() && mark != std::string_view::npos)
            separator = behind[mark];
    });
    if (letters.size() < 3) return;
    settings.ShortDateFormat = parts;
    if (!separator.empty()) settings.DateSeparator = separator;
}

void SetTime(TFormatSettings& settings, const TLocaleTexts& locale) {
    bool halfDays = false;
    ForEachConversion(locale.TimeFormat, [&](char letter, bool, std::string_view behind) {
        halfDays |= letter == 'I' || letter == 'l' || letter == 'r' || letter == 'p';
        if (behind == ".") settings.TimeSeparator = behind;
    });
    if (halfDays && !locale.TimeAMString.empty() && !locale.TimePMString.empty()) {
        settings.TimeAMString = locale.TimeAMString;
        settings.TimePMString = locale.TimePMString;
    } else
        settings.LongTimeFormat = "hh:mm:ss";
}

} // namespace

TFormatSettings FormatSettingsOf(const TLocaleTexts& locale) {
    TFormatSettings settings;
    if (!locale.DecimalSeparator.empty()) settings.DecimalSeparator = locale.DecimalSeparator;
    settings.ThousandSeparator = locale.ThousandSeparator;
    SetDate(settings, locale.DateFormat);
    SetTime(settings, locale);
    return settings;
}

TFormatSettings UserFormatSettings() {
    // A locale of its own: that of the process stays, which other libraries follow.
    using TLocale = std::remove_pointer_t<locale_t>;
    const std::unique_ptr<TLocale, decltype(&::freelocale)> locale(
        ::newlocale(LC_CTYPE_MASK | LC_NUMERIC_MASK | LC_TIME_MASK, "", nullptr), ::freelocale);
    if (!locale) return {};
    const auto text = [&](nl_item item) { return ::nl_langinfo_l(item, locale.get()); };
    return FormatSettingsOf(
        {text(RADIXCHAR), text(THOUSEP), text(D_FMT), text(T_FMT), text(AM_STR), text(PM_STR)});
}

} // namespace tarn
