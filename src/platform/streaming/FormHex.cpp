#include "streaming/FormHex.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace tarn {

namespace {

constexpr std::int8_t NoHexDigit = -1;
constexpr auto HexValues = [] {
    std::array<std::int8_t, 256> table{};
    for (std::int8_t& value : table) value = NoHexDigit;
    std::int8_t value = 0;
    for (const unsigned char c : std::string_view("0123456789")) table[c] = value++;
    for (const unsigned char c : std::string_view("ABCDEF")) {
        table[c] = value;
        table[c + ('a' - 'A')] = value++;
    }
    return table;
}();

int HexValue(char c) {
    return HexValues[static_cast<unsigned char>(c)];
}

/// Decodes eight hexadecimal digits, the first one in the lowest byte, to four bytes in that order;
/// false when some are none. All eight are worked at in one word: a sum with a borrowed top bit
/// tells which of the bytes reach a limit.
bool DecodeEightDigits(std::uint64_t digits, std::uint32_t& bytes) {
    constexpr std::uint64_t each = 0x0101010101010101;
    constexpr std::uint64_t tops = each * 0x80;
    const auto reaches = [](std::uint64_t x, int limit) {
        return x + each * static_cast<std::uint64_t>(0x80 - limit);
    };
    const std::uint64_t small = digits | each * 0x20;
    const std::uint64_t numerals = reaches(digits, '0') & ~reaches(digits, '9' + 1) & tops;
    const std::uint64_t letters = reaches(small, 'a') & ~reaches(small, 'f' + 1) & tops;
    if ((digits & tops) != 0 || (numerals | letters) != tops) return false;
    const std::uint64_t values = (digits & each * 0x0F) + (letters >> 7) * 9;
    std::uint64_t pairs = (values << 4 | values >> 8) & 0x00FF00FF00FF00FF;
    pairs = (pairs | pairs >> 8) & 0x0000FFFF0000FFFF;
    bytes = static_cast<std::uint32_t>(pairs | pairs >> 16);
    return true;
}

/// The two digits of each byte.
constexpr auto HexPairs = [] {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> table{};
    for (std::size_t i = 0; i < 256; ++i) table[i] = {digits[i >> 4], digits[i & 15]};
    return table;
}();

} // namespace

std::size_t DecodeFormHex(const char* digits, std::size_t count, char* bytes) {
    std::size_t done = 0;
    constexpr std::size_t batch = sizeof(std::uint32_t);
    if constexpr (std::endian::native == std::endian::little) {
        for (; done + batch <= count; done += batch) {
            std::uint64_t some = 0;
            std::uint32_t decoded = 0;
            std::memcpy(&some, digits + done * 2, sizeof some);
            if (!DecodeEightDigits(some, decoded)) break;
            std::memcpy(bytes + done, &decoded, batch);
        }
    }
    for (; done < count; ++done) {
        const int high = HexValue(digits[done * 2]);
        const int low = HexValue(digits[done * 2 + 1]);
        if ((high | low) < 0) break;
        bytes[done] = static_cast<char>(high << 4 | low);
    }
    return done;
}

void EncodeFormHex(std::string_view bytes, char* digits) {
    for (const char c : bytes) {
        std::memcpy(digits, HexPairs[static_cast<unsigned char>(c)].data(), 2);
        digits += 2;
    }
}

} // namespace tarn
