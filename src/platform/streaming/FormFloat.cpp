#include "streaming/FormFloat.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

namespace tarn {

namespace {

constexpr int ShortDigits = 15;   ///< significant digits of the short style
constexpr int FixedDigits = 16;   ///< significant digits of the fixed style
constexpr int FixedDecimals = 18; ///< digits behind the point of the fixed style
/// In the short style smaller numbers get an exponent: this many zeros may follow the point.
constexpr int ShortZeros = 4;

// --- Reading ----------------------------------------------------------------------------------

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether long doubles have the 64 bits of the x87, in which numbers of 19 digits and the powers
/// of ten up to 27 are exact.
constexpr bool HasExtended = std::numeric_limits<long double>::digits == 64;
constexpr auto PowersOfTen = [] {
    std::array<long double, 28> powers{};
    long double power = 1;
    for (long double& entry : powers) {
        entry = power;
        power *= 10;
    }
    return powers;
}();

/// The usual number, a few digits with a point: digits and power of ten are both exact, so that
/// the one operation between them rounds right. False for any other text.
bool ReadExactly(std::string_view text, long double& value) {
    constexpr int maxDigits = 19;
    const std::size_t point = text.find('.');
    const bool hasPoint = point != std::string_view::npos;
    if (hasPoint) text = text.substr(0, text.find_last_not_of('0') + 1);
    const std::size_t decimals = hasPoint ? text.size() - point - 1 : 0;
    if (decimals >= PowersOfTen.size()) return false;
    std::uint64_t digits = 0;
    int count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == point) continue;
        if (!IsDigit(text[i])) return false;
        digits = digits * 10 + static_cast<std::uint64_t>(text[i] - '0');
        if (digits != 0 && ++count > maxDigits) return false;
    }
    value = static_cast<long double>(digits) / PowersOfTen[decimals];
    return true;
}

/// The smallest numbers of all, which lack bits, are out of range for std::from_chars.
bool ReadTiny(std::string_view text, long double& value) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    return stream >> value && value != 0;
}

template <class TFloat> bool ReadAs(std::string_view text, long double& value) {
    TFloat number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ptr != end) return false;
    if (result.ec == std::errc()) {
        value = number;
        return true;
    }
    return std::is_same_v<TFloat, long double> && result.ec == std::errc::result_out_of_range &&
           ReadTiny(text, value);
}

bool ReadWithoutSign(std::string_view text, TValueType type, long double& value) {
    switch (type) {
    case vaSingle:
        return ReadAs<float>(text, value);
    case vaDouble:
    case vaDate:
        return ReadAs<double>(text, value);
    default:
        if (HasExtended && ReadExactly(text, value)) return true;
        return ReadAs<long double>(text, value);
    }
}

// --- Writing ----------------------------------------------------------------------------------

/// A positive number as decimal digits: 0.DIGITS times ten to the power of Point.
struct TDecimal {
    std::array<char, 32> Buffer;
    std::size_t Count = 0;
    int Point = 0;

    std::string_view Digits() const { return {Buffer.data(), Count}; }
    int Decimals() const { return std::max(0, static_cast<int>(Count) - Point); }
};

/// Takes over "d.ddde+xx".
TDecimal FromScientific(std::string_view text) {
    TDecimal result;
    const std::size_t e = text.find('e');
    for (const char c : text.substr(0, e))
        if (c != '.') result.Buffer[result.Count++] = c;
    while (result.Count > 1 && result.Buffer[result.Count - 1] == '0') --result.Count;
    int exponent = 0;
    const std::size_t sign = text[e + 1] == '+' ? 2 : 1; // std::from_chars knows "-" only
    std::from_chars(text.data() + e + sign, text.data() + text.size(), exponent);
    result.Point = exponent + 1;
    return result;
}

/// The digits of a positive number, rounded to `digits` of them.
template <class TFloat> TDecimal Rounded(TFloat value, int digits) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::scientific, digits - 1);
    return FromScientific({buffer.data(), result.ptr});
}

/// The fewest digits from which the number can be read again.
template <class TFloat> TDecimal Shortest(TFloat value) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::scientific);
    return FromScientific({buffer.data(), result.ptr});
}

TDecimal RoundedAs(TValueType type, long double value, int digits) {
    // A single or double is exact as a double, for which the conversion is far faster.
    return type == vaExtended ? Rounded(value, digits)
                              : Rounded(static_cast<double>(value), digits);
}

TDecimal ShortestAs(TValueType type, long double value) {
    if (type == vaSingle) return Shortest(static_cast<float>(value));
    return type == vaExtended ? Shortest(value) : Shortest(static_cast<double>(value));
}

void AppendPlain(std::string& text, const TDecimal& number, int minDecimals) {
    const int point = number.Point;
    const auto whole = static_cast<std::size_t>(std::max(point, 0));
    const std::string_view digits = number.Digits();
    if (whole == 0) text += '0';
    text += digits.substr(0, whole);
    if (whole > digits.size()) text.append(whole - digits.size(), '0');
    const int decimals = std::max(number.Decimals(), minDecimals);
    if (decimals == 0) return;
    text += '.';
    const std::size_t start = text.size();
    if (point < 0) text.append(static_cast<std::size_t>(-point), '0');
    if (whole < digits.size()) text += digits.substr(whole);
    text.append(static_cast<std::size_t>(decimals) - (text.size() - start), '0');
}

void AppendWithExponent(std::string& text, const TDecimal& number) {
    const std::string_view digits = number.Digits();
    text += digits[0];
    if (digits.size() > 1) (text += '.') += digits.substr(1);
    (text += 'E') += std::to_string(number.Point - 1);
}

void AppendDecimal(std::string& text, const TDecimal& number, bool fixed, bool needsPoint) {
    if (fixed) {
        if (number.Point <= FixedDigits && number.Decimals() <= FixedDecimals)
            AppendPlain(text, number, FixedDecimals);
        else
            AppendWithExponent(text, number);
    } else {
        if (number.Point <= ShortDigits && number.Point >= -ShortZeros)
            AppendPlain(text, number, needsPoint ? 1 : 0);
        else
            AppendWithExponent(text, number);
    }
}

/// The digits that the style has for a positive number.
TDecimal StyleDigits(TValueType type, long double value, bool fixed) {
    if (!fixed) return RoundedAs(type, value, ShortDigits);
    const TDecimal number = RoundedAs(type, value, FixedDigits);
    const int digits = FixedDecimals + number.Point; // those before the end of the decimals
    return digits > 0 && digits < FixedDigits ? RoundedAs(type, value, digits) : number;
}

/// The digits that the style has for most extended numbers, without a conversion: a number of so
/// few digits that reads back to the value is the nearest of its kind. False when there is none.
bool QuickStyleDigits(long double value, bool fixed, TDecimal& number) {
    if (!HasExtended || value < 1e-3L || value >= 1e15L) return false;
    const int digits = fixed ? FixedDigits : ShortDigits;
    int point = 0;
    while (value >= PowersOfTen[static_cast<std::size_t>(point)]) ++point;
    const long double scale = PowersOfTen[static_cast<std::size_t>(digits - point)];
    const auto scaled = static_cast<std::uint64_t>(std::llrint(value * scale));
    if (static_cast<long double>(scaled) / scale != value) return false;
    const auto result =
        std::to_chars(number.Buffer.data(), number.Buffer.data() + number.Buffer.size(), scaled);
    number.Count = static_cast<std::size_t>(result.ptr - number.Buffer.data());
    number.Point = point + static_cast<int>(number.Count) - digits;
    while (number.Count > 1 && number.Buffer[number.Count - 1] == '0') --number.Count;
    return true;
}

long double NearestOf(TValueType type, long double value) {
    if (type == vaSingle) return static_cast<float>(value);
    return type == vaExtended ? value : static_cast<double>(value);
}

bool AppendWord(std::string& text, long double value) {
    if (std::isfinite(value)) return false;
    text += std::signbit(value) ? '-' : '+';
    text += std::isnan(value) ? "NAN" : "INF";
    return true;
}

void AppendPositive(std::string& text, TValueType type, long double value, bool fixed) {
    const bool needsPoint = FormNumberSuffix(type) == 0;
    TDecimal number;
    if (value == 0) {
        number.Buffer[number.Count++] = '0';
        return AppendPlain(text, number, fixed ? FixedDecimals : needsPoint ? 1 : 0);
    }
    if (type == vaExtended && QuickStyleDigits(value, fixed, number))
        return AppendDecimal(text, number, fixed, needsPoint);
    const std::size_t start = text.size();
    AppendDecimal(text, StyleDigits(type, value, fixed), fixed, needsPoint);
    long double back = 0;
    if (ReadFormFloat(std::string_view(text).substr(start), type, back) && back == value) return;
    text.resize(start);
    AppendDecimal(text, ShortestAs(type, value), fixed, needsPoint);
}

} // namespace

char FormNumberSuffix(TValueType type) {
    switch (type) {
    case vaSingle:
        return 's';
    case vaCurrency:
        return 'c';
    case vaDate:
        return 'd';
    default:
        return 0;
    }
}

void AppendFormFloat(std::string& text, TValueType type, long double value, bool fixed) {
    if (!AppendWord(text, value)) {
        if (std::signbit(value)) text += '-';
        AppendPositive(text, type, std::fabs(NearestOf(type, value)), fixed);
    }
    if (const char suffix = FormNumberSuffix(type)) text += suffix;
}

void AppendFormCurrency(std::string& text, std::int64_t value, bool fixed) {
    text += std::to_string(value);
    if (fixed) (text += '.').append(FixedDecimals, '0');
    text += FormNumberSuffix(vaCurrency);
}

bool ReadFormFloat(std::string_view text, TValueType type, long double& value) {
    const bool isSigned = !text.empty() && (text[0] == '+' || text[0] == '-');
    const bool isNegative = isSigned && text[0] == '-';
    const std::string_view number = text.substr(isSigned ? 1 : 0);
    if (isSigned && SameText(number, "INF"))
        value = std::numeric_limits<long double>::infinity();
    else if (isSigned && SameText(number, "NAN"))
        value = std::numeric_limits<long double>::quiet_NaN();
    else if (number.empty() || !IsDigit(number[0]) || !ReadWithoutSign(number, type, value))
        return false;
    if (isNegative) value = -value;
    return true;
}

bool ReadFormCurrency(std::string_view text, std::int64_t& value) {
    const char* end = text.data() + text.size();
    const auto whole = std::from_chars(text.data(), end, value);
    if (whole.ec == std::errc() && whole.ptr == end) return true;
    long double number = 0;
    constexpr long double limit = 0x1p63L;
    if (!ReadFormFloat(text, vaExtended, number)) return false;
    number = std::nearbyint(number);
    if (!(number >= -limit && number < limit)) return false;
    value = static_cast<std::int64_t>(number);
    return true;
}

} // namespace tarn
