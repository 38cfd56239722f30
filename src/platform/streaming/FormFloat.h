#pragma once

#include "streaming/FormSink.h"

#include <string>
#include <string_view>

namespace tarn {

// Floating numbers in the text form of forms. The IDE rounds them: to 15 significant digits where
// it writes them short ("36230.685934838", "1E20"), to 16 with always 18 decimals where it writes
// them fixed ("36230.685934838000000000"; from 1E16 on with an exponent). Here a number is written
// so as long as that reads back to the same value, and with as many digits as it takes otherwise.
//
// Whole numbers of the types without a suffix get ".0" in the short style, since "5" would read
// back as an integer. What is no number is written "+INF", "-INF", "+NAN" or "-NAN": the sign keeps
// them apart from identifiers. The payload of a NaN is lost.

/// The letter behind numbers of vaSingle ("s"), vaCurrency ("c") and vaDate ("d"), 0 for others.
char FormNumberSuffix(TValueType type);

/// Appends the number with its suffix; `type` is vaExtended, vaSingle, vaDouble or vaDate.
void AppendFormFloat(std::string& text, TValueType type, long double value, bool fixed);

/// Appends a vaCurrency with its suffix; the value is in ten-thousandths.
void AppendFormCurrency(std::string& text, std::int64_t value, bool fixed);

/// Reads the whole of a text without suffix as the nearest number of the type: an optional sign,
/// digits with an optional part behind a point, an optional exponent, or one of the signed words
/// above (case does not matter). False for any other text, and for a number that the type cannot
/// hold: too large, or so small that only 0 is left of it.
bool ReadFormFloat(std::string_view text, TValueType type, long double& value);

/// Reads the whole of a text without suffix as a vaCurrency, rounded to whole ten-thousandths.
bool ReadFormCurrency(std::string_view text, std::int64_t& value);

} // namespace tarn
