#include "rtl/SameBytes.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cwctype>
#include <random>
#include <vector>

namespace tarn {
namespace {

int Sign(int value) {
    return (value > 0) - (value < 0);
}

std::string Utf8(char32_t c) {
    std::string text;
    const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 63));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 63));
        put(0x80 | (c & 63));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 63));
        put(0x80 | (c >> 6 & 63));
        put(0x80 | (c & 63));
    }
    return text;
}

std::string Printable(std::string_view text) {
    std::string result;
    for (char c : text) result += Format("%.2x ", {static_cast<unsigned char>(c)});
    return result;
}

TEST(Collation, Order) {
    // Each text stands before the next.
    constexpr std::string_view ascending[] = {
        "",           " ",      "!",
        "+",          "_",      "_A",
        "~",          "\x7F",
        "\u00AB", // an opening quotation mark of Latin text
        "\u2013", // a dash
        "\u20AC", // the euro sign
        "0",          "10",     "2",
        "2a",         "9",      "a",
        "A ",         "a_b",    "a1",
        "aa",         "AB",
        "\u00E4", // a with two dots: right behind the plain letter
        "\u00C4b",
        "\u0101", // a with a stroke above
        "b",          "z",
        "\u017Ea", // z with a hook
        "\u00DF",  // sharp s: a letter of its own behind the alphabet
        "\u03B1",  // Greek
        "\u03C9",
        "\u0410", // Cyrillic
        "\u0435",
        "\u0451", // Io stands behind Ie
        "\u0436",     "\u044F",
        "\u3042", // other scripts by their code points
        "\U0001F600",
        "\x80",                                 // bytes that are no UTF-8
        "\xC3",       "\xC3 ",  "\xED\xA0\x80", // half of a surrogate pair
        "\xFF",
    };
    for (const std::string_view& a : ascending)
        for (const std::string_view& b : ascending)
            EXPECT_EQ(Sign(AnsiCompareText(a, b)), (&a > &b) - (&a < &b))
                << Printable(a) << "/ " << Printable(b);
}

TEST(Collation, WithoutCase) {
    EXPECT_TRUE(AnsiSameText("Unit1.PAS", "uNIT1.pas"));
    EXPECT_TRUE(AnsiSameText("\u00C4\u0160\u0178 \u03A3\u0386 \u0416\u0401\u0490",
                             "\u00E4\u0161\u00FF \u03C2\u03AC \u0436\u0451\u0491"));
    EXPECT_FALSE(AnsiSameText("\u00E4", "a"));
    EXPECT_FALSE(AnsiSameText("\u00D7", "\u00F7")); // the signs between the Latin letters
    EXPECT_FALSE(AnsiSameText("[", "{"));
    EXPECT_FALSE(AnsiSameText("a", "a "));
}

/// The C library's table of capitals, as an independent witness.
TEST(Collation, CaseAgreesWithTheCLibrary) {
    const char* const before = std::setlocale(LC_CTYPE, nullptr);
    const std::string saved = before ? before : "C";
    if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "there is no locale C.UTF-8";
    constexpr std::pair<char32_t, char32_t> alphabets[] = {
        {0x41, 0x17F},  {0x1CD, 0x1DC}, {0x1F8, 0x219},   {0x386, 0x3CE},
        {0x400, 0x481}, {0x48A, 0x52F}, {0x1E00, 0x1EFF},
    };
    int pairs = 0;
    for (const auto& [first, last] : alphabets)
        for (char32_t c = first; c <= last; ++c) {
            const auto capital = static_cast<char32_t>(std::towupper(static_cast<std::wint_t>(c)));
            if (capital != c) {
                ++pairs;
                EXPECT_TRUE(AnsiSameText(Utf8(c), Utf8(capital))) << std::hex << std::uint32_t(c);
            }
            // Two neighbours are one letter for the collation only if they are for the library.
            const auto next = static_cast<char32_t>(std::towupper(static_cast<std::wint_t>(c + 1)));
            if (capital != next) {
                EXPECT_FALSE(AnsiSameText(Utf8(c), Utf8(c + 1))) << std::hex << std::uint32_t(c);
            }
        }
    std::setlocale(LC_CTYPE, saved.c_str());
    EXPECT_GT(pairs, 400);
}

/// Texts that try the borders of UTF-8 and of the alphabets more often than chance would.
std::vector<std::string> RandomTexts(std::size_t count) {
    constexpr std::string_view pieces[] = {
        "a",
        "A",
        "z",
        "_",
        "5",
        " ",
        std::string_view("\0", 1),
        "\u00E4",
        "\u00C4",
        "\u00DF",
        "\u0416",
        "\u0436",
        "\u0451",
        "\u03C2",
        "\u20AC",
        "\u00B5",
        "\u039C",
        "\xC3",
        "\x80",
        "\xED\xA0\x80",
        "\xF4\x90\x80\x80",
        "\xE2\x82",
        "\xFF",
        "\uFFFF",
        "\U0010FFFF",
    };
    // Long parts in common, which end within a character or at one.
    constexpr std::string_view starts[] = {"", "Expert1", "Expert12\u0416\u0436",
                                           "\u0416\u0436\xD0"};
    std::mt19937 random(20);
    std::vector<std::string> texts;
    while (texts.size() < count) {
        std::string text(starts[random() % std::size(starts)]);
        for (unsigned i = random() % 5; i > 0; --i)
            if (random() % 4 == 0)
                text += static_cast<char>(random());
            else
                text += pieces[random() % std::size(pieces)];
        texts.push_back(std::move(text));
    }
    return texts;
}

TEST(Collation, IsAStrictWeakOrderAndAgreesWithItsKey) {
    const std::vector<std::string> texts = RandomTexts(150);
    std::vector<std::string> keys;
    keys.reserve(texts.size());
    for (const std::string& text : texts) keys.push_back(AnsiTextKey(text));
    const std::size_t n = texts.size();
    std::vector<int> order(n * n);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            order[i * n + j] = Sign(AnsiCompareText(texts[i], texts[j]));
            ASSERT_EQ(order[i * n + j], Sign(keys[i].compare(keys[j])))
                << Printable(texts[i]) << "/ " << Printable(texts[j]);
        }
    for (std::size_t i = 0; i < n; ++i) {
        EXPECT_EQ(order[i * n + i], 0);
        for (std::size_t j = 0; j < n; ++j) {
            ASSERT_EQ(order[i * n + j], -order[j * n + i]);
            if (order[i * n + j] > 0) continue;
            for (std::size_t k = 0; k < n; ++k) // not above j, and j not above k
                if (order[j * n + k] <= 0) {
                    ASSERT_EQ(order[i * n + k], std::min(order[i * n + j], order[j * n + k]));
                }
        }
    }
}

TEST(Collation, CountsTheBytesInCommon) {
    const std::string text = "0123456789abcdefghij\xFF";
    for (std::size_t size = 0; size <= text.size(); ++size)
        for (std::size_t other = 0; other <= size; ++other) {
            std::string changed = text;
            if (other < size) changed[other] = '-';
            const std::string_view a = std::string_view(text).substr(0, size);
            EXPECT_EQ(SameBytes(a, std::string_view(changed).substr(0, size)), other);
            EXPECT_EQ(SameBytes(a.substr(0, other), a), other);
        }
}

TEST(Collation, BytesOfCompareText) {
    const struct {
        std::string_view A, B;
        int Order;
    } cases[] = {
        {"", "", 0},     {"", "a", -1},    {"abc", "ABC", 0},       {"ab", "ABC", -1},
        {"b", "ABC", 1}, {"[", "a", -1},   {"_", "A", -1},          {"Z", "[", 1},
        {"9", "a", -1},  {"\x80", "z", 1}, {"\u00E4", "\u00C4", 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Sign(CompareText(c.A, c.B)), c.Order) << c.A << " / " << c.B;
        EXPECT_EQ(Sign(CompareText(c.B, c.A)), -c.Order) << c.A << " / " << c.B;
        EXPECT_EQ(SameText(c.A, c.B), c.Order == 0) << c.A << " / " << c.B;
    }
}

} // namespace
} // namespace tarn
