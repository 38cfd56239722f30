#pragma once

#include "rtl/TypInfo.h"
#include "streaming/FormSink.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// "vaInt8"; "value type 57" for a byte that is none.
std::string ValueTypeName(TValueType type);

constexpr bool IsInteger(TValueType type) {
    return type == vaInt8 || type == vaInt16 || type == vaInt32 || type == vaInt64;
}
constexpr bool IsText(TValueType type) {
    return type == vaString || type == vaLString || type == vaWString || type == vaUTF8String;
}
constexpr bool IsFloat(TValueType type) {
    return type == vaExtended || type == vaSingle || type == vaDouble || type == vaDate;
}

/// The type that takes the least room for an integer.
TValueType IntegerTypeOf(std::int64_t value);
/// vaString up to 255 bytes, else vaLString.
TValueType StringTypeOf(std::size_t length);
/// vaFalse, vaTrue, vaNil and vaNull for their names, in any case; else vaIdent.
TValueType IdentTypeOf(std::string_view ident);
/// The name of vaFalse, vaTrue, vaNil and vaNull; empty for other types.
std::string_view NameOfValue(TValueType type);

/// Whether the bytes are UTF-8, surrogates left out.
bool IsUtf8Text(std::string_view text);
bool IsAscii(std::string_view text);
/// UTF-16 from its bytes and as bytes, little end first.
std::u16string Utf16OfBytes(std::string_view bytes);
std::string BytesOfUtf16(std::u16string_view text);

/// The ordinal of an enumeration's name, without case; false when it has none of that name.
bool FindOrdinal(const TTypeInfo& type, std::string_view name, std::int64_t& ordinal);
/// The name of an ordinal; empty when it has none.
std::string_view NameOfOrdinal(const TTypeInfo& type, std::int64_t ordinal);

/// How many units of the stored integer a currency of 1 has.
inline constexpr long double CurrencyUnit = 10000;

/// A floating value of 80 bits, whatever the processor calls by that name: the mantissa with its
/// leading bit; sign and exponent with an excess of 16383.
struct TExtendedBits {
    std::uint64_t Mantissa;
    std::uint16_t SignExponent;
};

// Floating values from and to their bits. Everything but the payload of a NaN is kept; a value that
// the narrower type does not hold is rounded.
long double ExtendedValue(TExtendedBits bits);
long double DoubleValue(std::uint64_t bits);
long double SingleValue(std::uint32_t bits);
TExtendedBits ExtendedBits(long double value);
std::uint64_t DoubleBits(long double value);
std::uint32_t SingleBits(long double value);

} // namespace tarn
