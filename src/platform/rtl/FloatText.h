#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// The number in up to 15 significant digits, without zeros at its end: plain ("-0.5", "1250") from
/// 0.0001 to below 10 to the power of 15, else with an exponent ("1.5E15", "1E-5"); "INF", "-INF"
/// and "NAN" for what is no number. The decimal separator is that of the format settings.
std::string FloatToStr(long double value);

/// The number with so many decimals, 0 to 18, none of them in an exponent; see FloatToStr for the
/// separator and for what is no number.
std::string FloatToFixed(long double value, int decimals);

/// The number that the whole text is, blanks at its ends allowed: digits, the decimal separator of
/// the format settings, digits, an exponent; or what FloatToStr writes. A number that is too small
/// for a float is 0. Raises EConvertError naming the text when it is none or too great.
long double StrToFloat(std::string_view text);

} // namespace tarn
