#include "rtl/FloatText.h"

#include "rtl/FormatSettings.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tarn {
namespace {

constexpr int SignificantDigits = 15;
constexpr int LeastPlainExponent = -4; ///< of the first digit

struct TNamedFloat {
    std::string_view Name;
    long double Value;
};
constexpr TNamedFloat NamedFloats[] = {
    {"NAN", std::numeric_limits<long double>::quiet_NaN()},
    {"INF", std::numeric_limits<long double>::infinity()},
    {"-INF", -std::numeric_limits<long double>::infinity()},
};

std::string_view NameOfFloat(long double value) {
    return NamedFloats[std::isnan(value) ? 0 : value > 0 ? 1 : 2].Name;
}

/// Most numbers come from a double: its own conversion is the faster one.
template <std::size_t Size>
std::string_view Digits(std::array<char, Size>& buffer, long double value, std::chars_format form,
                        int precision) {
    char* const end = buffer.data() + Size;
    const auto narrow = static_cast<double>(value);
    const auto result = static_cast<long double>(narrow) == value
                            ? std::to_chars(buffer.data(), end, narrow, form, precision)
                            : std::to_chars(buffer.data(), end, value, form, precision);
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

/// "digits" with a decimal separator behind the first `whole` of them, zeros where digits lack.
std::string Plain(std::string_view digits, int whole) {
    const std::string& separator = FormatSettings().DecimalSeparator;
    const int count = static_cast<int>(digits.size());
    const auto zeros = [](int n) { return std::string(static_cast<std::size_t>(n), '0'); };
    if (whole <= 0) return "0" + separator + zeros(-whole) + std::string(digits);
    if (whole >= count) return std::string(digits) + zeros(whole - count);
    const auto head = static_cast<std::size_t>(whole);
    return std::string(digits.substr(0, head)) + separator + std::string(digits.substr(head));
}

} // namespace

std::string FloatToStr(long double value) {
    if (!std::isfinite(value)) return std::string(NameOfFloat(value));
    if (value == 0) return "0";
    // "d.dddE+xx", taken apart
    std::array<char, 64> buffer{};
    const std::string_view text =
        Digits(buffer, std::fabs(value), std::chars_format::scientific, SignificantDigits - 1);
    const std::size_t mark = text.find('e');
    std::string digits(text.substr(0, 1));
    digits += text.substr(2, mark - 2);
    digits.erase(digits.find_last_not_of('0') + 1);
    int exponent = 0;
    const std::string_view power = text.substr(mark + (text[mark + 1] == '+' ? 2 : 1));
    std::from_chars(power.data(), power.data() + power.size(), exponent);

    const std::string sign = value < 0 ? "-" : "";
    if (exponent >= LeastPlainExponent && exponent < SignificantDigits)
        return sign + Plain(digits, exponent + 1);
    const std::string mantissa = digits.size() > 1 ? Plain(digits, 1) : digits;
    return sign + mantissa + "E" + IntToStr(exponent);
}

std::string FloatToFixed(long double value, int decimals) {
    if (!std::isfinite(value)) return std::string(NameOfFloat(value));
    std::array<char, std::numeric_limits<long double>::max_exponent10 + 32> buffer{};
    std::string text(Digits(buffer, value, std::chars_format::fixed, std::clamp(decimals, 0, 18)));
    const std::size_t point = text.find('.');
    if (point != std::string::npos) text.replace(point, 1, FormatSettings().DecimalSeparator);
    return text;
}

namespace {

/// Reads a number's parts off the front of a text.
class TFloatScanner {
public:
    explicit TFloatScanner(std::string_view text) : FRest(text) {}

    /// False when the whole text is no number.
    bool Run() {
        Sign();
        const bool whole = Digits();
        bool fraction = false;
        if (Take(FormatSettings().DecimalSeparator)) {
            FPlain += '.';
            fraction = Digits();
        }
        if (!whole && !fraction) return false;
        if (Take("E") || Take("e")) {
            FPlain += 'e';
            FSmall = Sign();
            if (!Digits()) return false;
        }
        return FRest.empty();
    }

    /// The number with a point as its separator.
    const std::string& PlainText() const { return FPlain; }
    /// Whether the number cannot be too great: it has a negative exponent and not too many digits.
    bool IsSmall() const {
        return FSmall && FPlain.size() < std::numeric_limits<long double>::max_exponent10;
    }

private:
    bool Take(std::string_view mark) {
        if (mark.empty() || !FRest.starts_with(mark)) return false;
        FRest.remove_prefix(mark.size());
        return true;
    }

    bool Sign() {
        const bool negative = Take("-");
        if (negative)
            FPlain += '-';
        else
            Take("+");
        return negative;
    }

    bool Digits() {
        const std::size_t count = std::min(FRest.find_first_not_of("0123456789"), FRest.size());
        FPlain += FRest.substr(0, count);
        FRest.remove_prefix(count);
        return count > 0;
    }

    std::string_view FRest;
    std::string FPlain;
    bool FSmall = false;
};

} // namespace

long double StrToFloat(std::string_view text) {
    const std::string_view trimmed = Trim(text);
    TFloatScanner scanner(trimmed);
    if (scanner.Run()) {
        const std::string& plain = scanner.PlainText();
        long double value = 0;
        const auto error = std::from_chars(plain.data(), plain.data() + plain.size(), value).ec;
        if (error == std::errc()) return value;
        if (error == std::errc::result_out_of_range && scanner.IsSmall()) return 0;
    }
    for (const TNamedFloat& named : NamedFloats)
        if (SameText(named.Name, trimmed)) return named.Value;
    throw EConvertError(Format("'%s' is not a valid floating point value", {text}));
}

} // namespace tarn
