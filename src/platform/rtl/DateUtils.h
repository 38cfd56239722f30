#pragma once

#include "rtl/FormatSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// A moment of local time: days since 30 December 1899, the time of day as the fraction. The days
/// before count down and their fraction counts away from 0: -1.25 is 29 December, 6 o'clock.
using TDateTime = double;

/// A moment taken apart; months and days count from 1, hours from 0 to 23.
struct TDateParts {
    int Year = 1899, Month = 12, Day = 30;
    int Hour = 0, Minute = 0, Second = 0;
    friend bool operator==(const TDateParts&, const TDateParts&) = default;
};

/// The moment of the parts; none when the calendar has no such date or the clock no such time.
std::optional<TDateTime> TryEncodeDateTime(const TDateParts& parts);
/// The moment of the parts. Raises EConvertError when the calendar has no such date or the clock no
/// such time.
TDateTime EncodeDateTime(const TDateParts& parts);
/// To the nearest second. Raises EConvertError for a moment outside the years 1 to 9999.
TDateParts DecodeDateTime(TDateTime moment);

/// The moment in a format of TFormatSettings. Raises EConvertError as DecodeDateTime does.
std::string FormatDateTime(std::string_view format, TDateTime moment);
/// The date in the short date format, the time in the long time format, or both with a blank
/// between; a time of 0 is left out. The texts carry whole seconds.
std::string DateToStr(TDateTime moment);
std::string TimeToStr(TDateTime moment);
std::string DateTimeToStr(TDateTime moment);

// The whole text as a moment, blanks allowed around its parts. Raises EConvertError naming the text
// when it is none.
/// Two or three numbers in the order of the short date format, between them the date separator or
/// one of "/", "-" and ".". Without a year it is the present one, for a year of two digits see
/// TFormatSettings.
TDateTime StrToDate(std::string_view text);
/// Hour, minute and second, of which the latter may be absent, between them the time separator or
/// ":"; behind them the name of the half of the day or "AM" or "PM".
TDateTime StrToTime(std::string_view text);
/// A date, a time, or a date and a time.
TDateTime StrToDateTime(std::string_view text);

/// What tells the time.
using TClock = TDateTime (*)();
/// Replaces the clock of the process and returns the one before; null is the system's.
TClock SetClock(TClock clock);
TDateTime Now();

} // namespace tarn
