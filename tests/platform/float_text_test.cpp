#include "ErrorOf.h"
#include "rtl/FloatText.h"
#include "rtl/FormatSettings.h"
#include "rtl/TObject.h"
#include "rtl/TVariant.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace tarn {
namespace {

constexpr long double Infinity = std::numeric_limits<long double>::infinity();

TEST(FloatText, IsWritten) {
    const std::pair<long double, std::string_view> cases[] = {
        {0, "0"},
        {-0.0L, "0"},
        {0.1, "0.1"},
        {-1250, "-1250"},
        {1.0L / 3, "0.333333333333333"},
        {2.0L / 3, "0.666666666666667"},
        {0.0001, "0.0001"},
        {0.00012345, "0.00012345"},
        {0.00001, "1E-5"},
        {-0.000012345, "-1.2345E-5"},
        {999999999999999, "999999999999999"},
        {999999999999999.6L, "1E15"},
        {1234567890123456, "1.23456789012346E15"},
        {1e300L, "1E300"},
        {1.5e-4000L, "1.5E-4000"},
        {Infinity, "INF"},
        {-Infinity, "-INF"},
        {std::nanl(""), "NAN"},
    };
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(FloatToStr(value), text);
        EXPECT_EQ(FloatToStr(StrToFloat(text)), text);
    }
}

TEST(FloatText, IsRead) {
    const std::pair<std::string_view, long double> cases[] = {
        {" +12 ", 12},    {".5", 0.5L},    {"5.", 5},       {"-1e3", -1000},    {"1E+2", 100},
        {"25E-2", 0.25L}, {"0e999999", 0}, {"1e-99999", 0}, {"-iNf", -Infinity}};
    for (const auto& [text, value] : cases) EXPECT_EQ(StrToFloat(text), value) << text;
    const std::string great = std::string(6000, '9') + "e-1";
    for (const std::string_view text :
         {"", " ", ".", "-", "e5", "1e", "1e+", "1,5", "1.2.3", "1 2", "$1F", "0x1p3", "1e99999",
          "infinity", "--1", great.c_str()})
        EXPECT_EQ(ErrorOf([&] { StrToFloat(text); }),
                  Format("EConvertError: '%s' is not a valid floating point value", {text}));
}

TEST(FloatText, FollowsTheSettings) {
    const TFormatSettings saved = FormatSettings();
    FormatSettings().DecimalSeparator = ",";
    EXPECT_EQ(FloatToStr(-1.5e20L) + "|" + FloatToStr(0.25), "-1,5E20|0,25");
    EXPECT_EQ(StrToFloat("0,25"), 0.25L);
    EXPECT_THROW(StrToFloat("0.25"), EConvertError);
    EXPECT_EQ(Format("%f|%8.3f|%.0f", {1.005, -2.5, 2.5}), "1,00|  -2,500|2");
    FormatSettings() = saved;
    EXPECT_EQ(FloatToFixed(1e300L, 1).size(), 303u);
    EXPECT_EQ(FloatToFixed(-Infinity, 2), "-INF");
}

TEST(FloatText, IsAFixedPoint) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(random());
        const std::string text = FloatToStr(value);
        ASSERT_EQ(FloatToStr(StrToFloat(text)), text);
    }
}

TEST(Integers, AreRead) {
    const struct {
        std::string_view Text;
        std::int64_t Value;
        bool Fits32 = true;
    } cases[] = {
        {" -2147483648", -2147483648LL},
        {"$1f", 31},
        {"0x10", 16},
        {"+7", 7},
        {"-$10", -16},
        {"2147483648", 2147483648LL, false},
        {"$100000000", 4294967296LL, false},
        {"$FFFFFFFFFFFFFFFF", -1, false},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min(), false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(StrToInt64(c.Text), c.Value) << c.Text;
        EXPECT_EQ(StrToIntDef(c.Text, 99), c.Fits32 ? c.Value : 99) << c.Text;
    }
    EXPECT_EQ(StrToInt("$FFFFFFFF"), -1); // the bits of 32
    for (const std::string_view text : {"", "abc", "1 ", "$", "--1", "9223372036854775808"})
        EXPECT_EQ(ErrorOf([&] { StrToInt64(text); }),
                  Format("EConvertError: '%s' is not a valid integer value", {text}));
}

TEST(Variants, Convert) {
    const struct {
        TVariant Value;
        TVariantKind Kind;
        std::int64_t Integer;
        long double Float;
        std::string_view Text;
    } cases[] = {
        {{}, vkEmpty, 0, 0, ""},
        {true, vkBoolean, 1, 1, "True"},
        {-42, vkInteger, -42, -42, "-42"},
        {2.5, vkFloat, 2, 2.5L, "2.5"},
        {-3.5L, vkFloat, -4, -3.5L, "-3.5"},
        {"$10", vkString, 16, 0, "$10"},
        {std::string("7"), vkString, 7, 7, "7"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.Value.Kind(), c.Kind);
        EXPECT_EQ(c.Value.ToInteger(), c.Integer);
        EXPECT_EQ(c.Text == "$10" ? 0 : c.Value.ToFloat(), c.Float);
        EXPECT_EQ(c.Value.ToString(), c.Text);
    }
    TObject object;
    EXPECT_EQ(TVariant(&object).ToObject(), &object);
    EXPECT_EQ(TVariant().ToObject(), nullptr);
    EXPECT_EQ(TVariant(&object), TVariant(&object));
    EXPECT_NE(TVariant(1), TVariant(true));
    const std::pair<std::string, std::string_view> errors[] = {
        {ErrorOf([&] { TVariant(&object).ToInteger(); }), "an object is not an integer"},
        {ErrorOf([&] { TVariant(&object).ToFloat(); }), "an object is not a number"},
        {ErrorOf([&] { TVariant(&object).ToString(); }), "an object is not a text"},
        {ErrorOf([] { TVariant(9.3e18).ToInteger(); }), "'9.3E18' is not an integer"},
        {ErrorOf([] { TVariant(std::nan("")).ToInteger(); }), "'NAN' is not an integer"},
        {ErrorOf([] { TVariant("a").ToObject(); }), "'a' is not an object"},
    };
    for (const auto& [error, message] : errors)
        EXPECT_EQ(error, "EConvertError: " + std::string(message));
}

} // namespace
} // namespace tarn
