#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// A moment of local time: days since 30 December 1899, the time of day as the fraction.
using TDateTime = double;

/// A moment taken apart; months and days count from 1, hours from 0 to 23.
struct TDateParts {
    int Year = 1899, Month = 12, Day = 30;
    int Hour = 0, Minute = 0, Second = 0;
    friend bool operator==(const TDateParts&, const TDateParts&) = default;
};

/// The moment of the parts. Raises EConvertError when the calendar has no such date or the clock no
/// such time.
TDateTime EncodeDateTime(const TDateParts& parts);
/// To the nearest second. Raises EConvertError for a moment outside the years 1 to 9999.
TDateParts DecodeDateTime(TDateTime moment);

/// How dates and times are written. In a format text stand
///   d, m, h, n, s          day, month, hour, minute, second; doubled with a leading zero
///   yy, yyyy               the year with two and with four digits
///   am/pm, ampm            the half of the day; hours are counted to 12 then
///   / and :                the separators
///   'text' or "text"       the text as it is
/// without regard to case; m right behind the hour is the minute. Anything else stands for itself.
struct TFormatSettings {
    std::string ShortDateFormat = "m/d/yyyy";
    std::string LongTimeFormat = "h:mm:ss AMPM";
    std::string DateSeparator = "/";
    std::string TimeSeparator = ":";
    std::string TimeAMString = "AM";
    std::string TimePMString = "PM";
};

/// The settings of the process.
TFormatSettings& FormatSettings();

std::string FormatDateTime(std::string_view format, TDateTime moment);
/// The short date format, a blank, the long time format.
std::string DateTimeToStr(TDateTime moment);

/// What tells the time.
using TClock = TDateTime (*)();
/// Replaces the clock of the process and returns the one before; null is the system's.
TClock SetClock(TClock clock);
TDateTime Now();

} // namespace tarn
