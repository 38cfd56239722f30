#include "streaming/FormValues.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace tarn {
namespace {

constexpr std::string_view TypeNames[] = {
    "vaNull",    "vaList",  "vaInt8",       "vaInt16",  "vaInt32",    "vaExtended",
    "vaString",  "vaIdent", "vaFalse",      "vaTrue",   "vaBinary",   "vaSet",
    "vaLString", "vaNil",   "vaCollection", "vaSingle", "vaCurrency", "vaDate",
    "vaWString", "vaInt64", "vaUTF8String", "vaDouble",
};
static_assert(std::size(TypeNames) == vaDouble + 1);

struct TNamedValue {
    std::string_view Name;
    TValueType Type;
};
constexpr TNamedValue NamedValues[] = {
    {"False", vaFalse}, {"True", vaTrue}, {"nil", vaNil}, {"Null", vaNull}};

template <class T> bool Holds(std::int64_t value) {
    return value == static_cast<T>(value);
}

constexpr unsigned SignBit = 0x8000;
constexpr int MaxExponent = 0x7FFF; ///< infinities and NaNs
constexpr int Excess = 16383;
constexpr int MantissaBits = 64;

} // namespace

std::string ValueTypeName(TValueType type) {
    return type < std::size(TypeNames) ? std::string(TypeNames[type])
                                       : Format("value type %d", {int{type}});
}

TValueType IntegerTypeOf(std::int64_t value) {
    if (Holds<std::int8_t>(value)) return vaInt8;
    if (Holds<std::int16_t>(value)) return vaInt16;
    return Holds<std::int32_t>(value) ? vaInt32 : vaInt64;
}

TValueType StringTypeOf(std::size_t length) {
    return length <= 255 ? vaString : vaLString;
}

TValueType IdentTypeOf(std::string_view ident) {
    for (const TNamedValue& value : NamedValues)
        if (SameText(value.Name, ident)) return value.Type;
    return vaIdent;
}

std::string_view NameOfValue(TValueType type) {
    for (const TNamedValue& value : NamedValues)
        if (value.Type == type) return value.Name;
    return {};
}

// --- Texts ------------------------------------------------------------------------------------

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsUtf8Text(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at++]);
        if (first < 0x80) continue;
        const int more = std::countl_one(first) - 1;
        if (more < 1 || more > 3 || text.size() - at < static_cast<std::size_t>(more)) return false;
        std::uint32_t character = first & (0x3Fu >> more);
        for (int i = 0; i < more; ++i) {
            const auto next = static_cast<unsigned char>(text[at++]);
            if ((next & 0xC0) != 0x80) return false;
            character = character << 6 | (next & 0x3F);
        }
        constexpr std::uint32_t least[] = {0x80, 0x800, 0x10000};
        const bool surrogate = character >= 0xD800 && character < 0xE000;
        if (character < least[more - 1] || character > 0x10FFFF || surrogate) return false;
    }
    return true;
}

std::u16string Utf16OfBytes(std::string_view bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                        static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
    return text;
}

std::string BytesOfUtf16(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

// --- Enumerations -----------------------------------------------------------------------------

bool FindOrdinal(const TTypeInfo& type, std::string_view name, std::int64_t& ordinal) {
    const auto found = std::find_if(type.Names.begin(), type.Names.end(),
                                    [name](std::string_view each) { return SameText(each, name); });
    if (found == type.Names.end()) return false;
    ordinal = type.MinValue + (found - type.Names.begin());
    return true;
}

std::string_view NameOfOrdinal(const TTypeInfo& type, std::int64_t ordinal) {
    const std::int64_t at = ordinal - type.MinValue;
    if (at < 0 || at >= static_cast<std::int64_t>(type.Names.size())) return {};
    return type.Names[static_cast<std::size_t>(at)];
}

// --- Floating values --------------------------------------------------------------------------

long double ExtendedValue(TExtendedBits bits) {
    const int exponent = bits.SignExponent & MaxExponent;
    long double value = 0;
    if (exponent != MaxExponent)
        value = std::ldexp(static_cast<long double>(bits.Mantissa),
                           std::max(exponent, 1) - Excess - (MantissaBits - 1));
    else if (bits.Mantissa << 1 == 0)
        value = std::numeric_limits<long double>::infinity();
    else
        value = std::numeric_limits<long double>::quiet_NaN();
    return std::copysign(value, bits.SignExponent & SignBit ? -1.0L : 1.0L);
}

TExtendedBits ExtendedBits(long double value) {
    constexpr std::uint64_t leading = std::uint64_t{1} << (MantissaBits - 1);
    const unsigned sign = std::signbit(value) ? SignBit : 0;
    const auto made = [sign](std::uint64_t mantissa, int exponent) {
        return TExtendedBits{mantissa, static_cast<std::uint16_t>(sign | unsigned(exponent))};
    };
    if (std::isnan(value)) return made(leading | leading >> 1, MaxExponent);
    if (std::isinf(value)) return made(leading, MaxExponent);
    int exponent = 0;
    const long double fraction = std::frexp(std::fabs(value), &exponent); // in [0.5, 1)
    if (fraction == 0) return made(0, 0);
    // Values below the least normal one share its exponent and have no leading bit.
    const int biased = std::max(exponent - 1 + Excess, 0);
    const int shift = biased > 0 ? 0 : exponent - 2 + Excess;
    if (biased >= MaxExponent) return made(leading, MaxExponent);
    return made(static_cast<std::uint64_t>(std::ldexp(fraction, MantissaBits + shift)), biased);
}

long double DoubleValue(std::uint64_t bits) {
    return std::bit_cast<double>(bits);
}
long double SingleValue(std::uint32_t bits) {
    return std::bit_cast<float>(bits);
}
std::uint64_t DoubleBits(long double value) {
    return std::bit_cast<std::uint64_t>(static_cast<double>(value));
}
std::uint32_t SingleBits(long double value) {
    return std::bit_cast<std::uint32_t>(static_cast<float>(value));
}

} // namespace tarn
