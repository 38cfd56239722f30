#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// How numbers, dates and times are written and read. In a date or time format stand
///   d, m, h, n, s          day, month, hour, minute, second; doubled with a leading zero
///   yy, yyyy               the year with two and with four digits
///   am/pm, ampm            the half of the day; hours are counted to 12 then
///   / and :                the separators
///   'text' or "text"       the text as it is
/// without regard to case; m right behind the hour is the minute. Anything else stands for itself.
struct TFormatSettings {
    std::string DecimalSeparator = ".";
    std::string ThousandSeparator = ",";
    std::string ShortDateFormat = "m/d/yyyy";
    std::string LongTimeFormat = "h:mm:ss AMPM";
    std::string DateSeparator = "/";
    std::string TimeSeparator = ":";
    std::string TimeAMString = "AM";
    std::string TimePMString = "PM";
    /// A year of two digits lies in the century that begins so many years before the present one;
    /// 0 is the present century.
    int TwoDigitYearCenturyWindow = 50;
};

/// The settings of the process. They start as above whatever the user's environment says, so that
/// files and scripts mean the same everywhere; who wants the user's assigns UserFormatSettings.
TFormatSettings& FormatSettings();

/// The settings of the user's environment (LC_ALL, LC_NUMERIC, LC_TIME, LANG); those above when the
/// system does not know its locale. It is asked anew by each call.
TFormatSettings UserFormatSettings();

/// What a locale says about numbers, dates and times; its formats are those of strftime.
struct TLocaleTexts {
    std::string_view DecimalSeparator, ThousandSeparator, DateFormat, TimeFormat;
    std::string_view TimeAMString = {}, TimePMString = {}; ///< empty where hours are counted to 24
};
/// The settings that write and read as the locale does, but for what those cannot say: months are
/// numbers, years have four digits, and a separator that no one types is "/" or ":".
TFormatSettings FormatSettingsOf(const TLocaleTexts& locale);

} // namespace tarn
