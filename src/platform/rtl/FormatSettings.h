#pragma once

#include <string>

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

/// The settings of the process. They start as above whatever the user's environment says; who wants
/// others assigns them.
TFormatSettings& FormatSettings();

} // namespace tarn
