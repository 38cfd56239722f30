#include "rtl/SameBytes.h"
#include "rtl/SysUtils.h"
#include "rtl/Unicode.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace tarn {
namespace {

/// One character and how many bytes it takes.
struct TDecoded {
    char32_t Char;
    int Size;
};

/// The bytes that are no UTF-8 stand behind the last code point, each by itself.
constexpr char32_t StrayByte = 0x110000;
/// Behind the blocks of punctuation, currency, arrows, mathematics, boxes and other signs.
constexpr char32_t EndOfMarks = 0x2C00;

TDecoded Decode(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    const int size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    const char32_t least = size == 4 ? 0x10000 : size == 3 ? 0x800 : 0x80;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < static_cast<std::size_t>(size))
        return {StrayByte + lead, 1};
    char32_t value = lead & (0x7Fu >> size);
    for (int i = 1; i < size; ++i) {
        const unsigned char next = byte(static_cast<std::size_t>(i));
        if ((next & 0xC0) != 0x80) return {StrayByte + lead, 1};
        value = (value << 6) | (next & 0x3Fu);
    }
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < least || value > 0x10FFFF || surrogate) return {StrayByte + lead, 1};
    return {value, size};
}

/// A stretch of small letters, each `Distance` behind its capital. At distance 1 capitals and small
/// letters alternate, and every second character is a small one.
struct TSmallLetters {
    char32_t First, Last;
    int Distance;
};

constexpr TSmallLetters SmallLetters[] = {
    // Latin
    {0xB5, 0xB5, -743}, // the micro sign is a Greek letter
    {0xE0, 0xF6, 32},
    {0xF8, 0xFE, 32},
    {0xFF, 0xFF, -121},
    {0x101, 0x12F, 1},
    {0x131, 0x131, 232}, // the dotless i
    {0x133, 0x137, 1},
    {0x13A, 0x148, 1},
    {0x14B, 0x177, 1},
    {0x17A, 0x17E, 1},
    {0x17F, 0x17F, 300}, // the long s
    {0x1A1, 0x1A5, 1},
    {0x1B0, 0x1B0, 1},
    {0x1CE, 0x1DC, 1},
    {0x1DF, 0x1EF, 1},
    {0x1F5, 0x1F5, 1},
    {0x1F9, 0x21F, 1},
    {0x223, 0x233, 1},
    // Greek
    {0x3AC, 0x3AC, 38},
    {0x3AD, 0x3AF, 37},
    {0x3B1, 0x3C1, 32},
    {0x3C2, 0x3C2, 31}, // the final sigma
    {0x3C3, 0x3CB, 32},
    {0x3CC, 0x3CC, 64},
    {0x3CD, 0x3CE, 63},
    // Cyrillic
    {0x430, 0x44F, 32},
    {0x450, 0x45F, 80},
    {0x461, 0x481, 1},
    {0x48B, 0x4BF, 1},
    {0x4C2, 0x4CE, 1},
    {0x4CF, 0x4CF, 15},
    {0x4D1, 0x52F, 1},
    // Latin again, with more than one accent
    {0x1E01, 0x1E95, 1},
    {0x1E9B, 0x1E9B, 59},
    {0x1EA1, 0x1EFF, 1},
};

/// The capital letter of a small letter of the Latin, Greek or Cyrillic script; else the character.
char32_t Capital(char32_t c) {
    const TSmallLetters* row = std::upper_bound(
        std::begin(SmallLetters), std::end(SmallLetters), c,
        [](char32_t x, const TSmallLetters& letters) { return x < letters.First; });
    if (row == std::begin(SmallLetters)) return c;
    --row;
    if (c > row->Last || (row->Distance == 1 && (c - row->First) % 2 != 0)) return c;
    return static_cast<char32_t>(static_cast<int>(c) - row->Distance);
}

/// Whether a character beyond ASCII is punctuation, a sign or a blank instead of a letter.
constexpr bool IsMark(char32_t c) {
    const bool latin1 = c < 0xC0 && c != 0xAA && c != 0xB5 && c != 0xBA;
    return latin1 || c == 0xD7 || c == 0xF7 || (c >= 0x2000 && c < EndOfMarks);
}

/// Where the accented Latin letters and the Cyrillic Io stand among the plain ones: right behind
/// their base letter, as dictionaries have them. The low half tells the letters of one base apart.
constexpr std::uint32_t MarkBits = 9;
constexpr std::uint32_t DigitBase = EndOfMarks + 1;
constexpr std::uint32_t LetterBase = 0x400;
constexpr std::uint32_t Behind(char32_t base, std::uint32_t mark) {
    return ((static_cast<std::uint32_t>(base) + LetterBase) << MarkBits) | mark;
}

/// Base letters of U+00C0 to U+00DE; '.' where the letter stands alone.
constexpr std::string_view Latin1Bases = "AAAAAAACEEEEIIIIDNOOOOO.OUUUUY.";
/// Base letters of U+0100 to U+017F.
constexpr std::string_view LatinABases =
    "AAAAAACCCCCCCCDDDDEEEEEEEEEEGGGGGGGGHHHHIIIIIIIIIIIIJJKKKLLLLLLLLLLNNNNNNNNNOOOOOOOO"
    "RRRRRRSSSSSSSSTTTTTTUUUUUUUUUUUUWWYYYZZZZZZS";
static_assert(Latin1Bases.size() == 0xDF - 0xC0 && LatinABases.size() == 0x80);

/// The weight of a character: marks, then digits, then letters, then stray bytes. Always below
/// 2^30 and never 0, so that the end of a text comes first.
std::uint32_t Weight(char32_t c) {
    c = Capital(c);
    if (c < 0x80) {
        if (c >= '0' && c <= '9') return DigitBase + static_cast<std::uint32_t>(c);
        if (c >= 'A' && c <= 'Z') return Behind(c, 0);
        return static_cast<std::uint32_t>(c) + 1;
    }
    if (IsMark(c)) return static_cast<std::uint32_t>(c) + 1;
    if (c >= 0xC0 && c <= 0xDE && Latin1Bases[c - 0xC0] != '.')
        return Behind(static_cast<char32_t>(Latin1Bases[c - 0xC0]),
                      static_cast<std::uint32_t>(c - 0xBF));
    if (c >= 0x100 && c < 0x180)
        return Behind(static_cast<char32_t>(LatinABases[c - 0x100]),
                      static_cast<std::uint32_t>(c - 0xBF));
    if (c == 0x401) return Behind(0x415, 1);
    return Behind(c, 0);
}

constexpr auto AsciiWeights = [] {
    std::array<std::uint32_t, 128> weights{};
    for (char32_t c = 0; c < 128; ++c) {
        const char32_t up = c >= 'a' && c <= 'z' ? c - 32 : c;
        if (up >= '0' && up <= '9')
            weights[c] = DigitBase + static_cast<std::uint32_t>(up);
        else if (up >= 'A' && up <= 'Z')
            weights[c] = Behind(up, 0);
        else
            weights[c] = static_cast<std::uint32_t>(up) + 1;
    }
    return weights;
}();

/// Takes the first character off a text that is not empty.
std::uint32_t NextWeight(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        text.remove_prefix(1);
        return AsciiWeights[first];
    }
    const TDecoded decoded = Decode(text);
    text.remove_prefix(static_cast<std::size_t>(decoded.Size));
    return Weight(decoded.Char);
}

} // namespace

int AnsiCompareText(std::string_view a, std::string_view b) {
    // An ASCII byte is a character of its own whatever stands around it: behind the last one that
    // both texts share, a character begins in both.
    std::size_t same = SameBytes(a, b);
    while (same > 0 && static_cast<unsigned char>(a[same - 1]) >= 0x80) --same;
    a.remove_prefix(same);
    b.remove_prefix(same);
    while (!a.empty() && !b.empty()) {
        const std::uint32_t x = NextWeight(a);
        const std::uint32_t y = NextWeight(b);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.empty() && b.empty()) return 0;
    return a.empty() ? -1 : 1;
}

bool AnsiSameText(std::string_view a, std::string_view b) {
    return a == b || AnsiCompareText(a, b) == 0;
}

namespace {

/// Mixes text into a hash, eight bytes at a time.
class THasher {
public:
    void PutByte(unsigned char byte) {
        FWord = FWord << 8 | byte;
        if (++FBytes % 8 == 0) Mix(FWord);
    }
    void Mix(std::uint64_t word) {
        // Multiplying and shifting brings every bit into the low ones.
        FHash = (FHash ^ word) * 0x9E3779B97F4A7C15u;
        FHash ^= FHash >> 32;
    }
    bool OnWord() const { return FBytes % 8 == 0; }
    std::size_t Finish() {
        Mix(FWord);
        Mix(FBytes);
        return static_cast<std::size_t>(FHash);
    }

private:
    std::uint64_t FHash = 0, FWord = 0, FBytes = 0;
};

} // namespace

std::size_t AnsiTextHash(std::string_view text) {
    // An ASCII character counts as its capital, any other one as a mark and its weight.
    constexpr unsigned char otherMark = 0xFF;
    THasher hasher;
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        if (first < 0x80) {
            text.remove_prefix(1);
            hasher.PutByte(first >= 'a' && first <= 'z' ? first - 32 : first);
            continue;
        }
        const TDecoded decoded = Decode(text);
        text.remove_prefix(static_cast<std::size_t>(decoded.Size));
        const char32_t capital = Capital(decoded.Char);
        if (capital < 0x80) {
            hasher.PutByte(static_cast<unsigned char>(capital));
            continue;
        }
        const std::uint32_t weight = Weight(capital);
        hasher.PutByte(otherMark);
        for (int shift = 0; shift < 32; shift += 8)
            hasher.PutByte(static_cast<unsigned char>(weight >> shift & 0xFF));
    }
    return hasher.Finish();
}

std::string AnsiUpperCase(std::string_view text) {
    std::string capitals;
    capitals.reserve(text.size());
    while (!text.empty()) {
        const TDecoded decoded = Decode(text);
        const bool ascii = decoded.Char >= 'a' && decoded.Char <= 'z';
        const char32_t capital = ascii ? decoded.Char - 'a' + 'A' : Capital(decoded.Char);
        if (capital == decoded.Char)
            capitals.append(text.substr(0, static_cast<std::size_t>(decoded.Size)));
        else if (capital < 0x80)
            capitals += static_cast<char>(capital);
        else
            // The capitals of all these scripts are in the first plane.
            capitals += Utf16ToUtf8(std::u16string(1, static_cast<char16_t>(capital)));
        text.remove_prefix(static_cast<std::size_t>(decoded.Size));
    }
    return capitals;
}

std::string AnsiTextKey(std::string_view text) {
    // Ordered and free of prefixes: one byte for an ASCII mark, a digit or a plain Latin letter,
    // two for an accented Latin letter, three for another mark, five for any other character.
    constexpr unsigned asciiMarks = 0x80, marks = 0x81, digits = 0x82, letters = 0x90,
                       others = 0xD0;
    std::string key;
    key.reserve(text.size());
    const auto put = [&key](std::uint32_t byte) { key += static_cast<char>(byte & 0xFF); };
    while (!text.empty()) {
        const std::uint32_t weight = NextWeight(text);
        const std::uint32_t letter = (weight >> MarkBits) - LetterBase - 'A';
        if (weight <= asciiMarks)
            put(weight);
        else if (weight < DigitBase) {
            put(marks);
            put(weight >> 8);
            put(weight);
        } else if (weight < Behind(0, 0))
            put(digits + weight - DigitBase - '0');
        else if (letter < 26) {
            const std::uint32_t mark = weight & ((1u << MarkBits) - 1);
            put(letters + 2 * letter + (mark ? 1 : 0));
            if (mark) put(mark);
        } else {
            put(others);
            for (int shift = 24; shift >= 0; shift -= 8) put(weight >> shift);
        }
    }
    return key;
}

} // namespace tarn
