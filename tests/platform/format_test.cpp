#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace tarn {
namespace {

constexpr std::int64_t Int64Min = std::numeric_limits<std::int64_t>::min();

TEST(Format, Placeholders) {
    const struct {
        std::string Actual, Expected;
    } cases[] = {
        {Format("", {}), ""},
        {Format("100%%", {}), "100%"},
        {Format("%%s%s%%", {"x"}), "%sx%"},
        {Format("%s and %s", {"one", std::string("two")}), "one and two"},
        {Format("%s", {std::string_view("a\0b", 3)}), std::string("a\0b", 3)},
        {Format("[%5s][%-5s][%2s]", {"ab", "cd", "long"}), "[   ab][cd   ][long]"},
        {Format("[%.2s][%5.1s][%.0s]", {"abc", "def", "ghi"}), "[ab][    d][]"},
        {Format("%d %d %d", {0, -7, Int64Min}), "0 -7 -9223372036854775808"},
        {Format("[%4d][%-4d][%.3d][%.3d][%6.3d]", {7, 7, 7, -7, -7}),
         "[   7][7   ][007][-007][  -007]"},
        {Format("%u %u %u", {7u, -1, Int64Min}), "7 4294967295 9223372036854775808"},
        {Format("%x %x %.4x %x %x", {255, 0, 255, -1, -0x80000001LL}),
         "FF 0 00FF FFFFFFFF FFFFFFFF7FFFFFFF"},
        {Format("%f %.0f %.3f [%8.1f][%-6.1f]", {1.005, 2.5, -0.0625, 3.14, 2.0}),
         "1.00 2 -0.062 [     3.1][2.0   ]"},
        {Format("%1:s %0:s", {"a", "b"}), "b a"},
        // Behind an index the arguments go on from there.
        {Format("%2:s %s %0:s %s", {"a", "b", "c", "d"}), "c d a b"},
        {Format("%1:-4d|%0:4d|", {1, 2}), "2   |   1|"},
        {Format("%0:s%0:s%0:s", {"ab"}), "ababab"},
        {Format("%d%%", {50}), "50%"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.Actual, c.Expected);
}

TEST(Format, RefusesWhatDoesNotFit) {
    const struct {
        std::string_view Format;
        std::initializer_list<TVarRec> Args;
    } cases[] = {
        {"%s", {}},
        {"%s %s", {"one"}},
        {"%1:s", {"one"}},
        {"%d", {"text"}},
        {"%s", {1}},
        {"%f", {1}},
        {"%d", {1.5}},
        {"%q", {1}},
        {"%", {1}},
        {"%5", {1}},
        {"% d", {1}},
        {"%1:", {1, 2}},
        {"%-", {1}},
        {"%99999999999d", {1}},
        {"%2000000000:d", {1}},
        {"%x", {"FF"}},
        {"%99999999999:d", {1}},
    };
    for (const auto& c : cases) {
        try {
            ADD_FAILURE() << c.Format << " gave " << Format(c.Format, c.Args);
        } catch (const EConvertError& error) {
            EXPECT_EQ(error.Message(),
                      "format '" + std::string(c.Format) + "' does not fit its arguments");
            EXPECT_EQ(error.ClassName(), "EConvertError");
        }
    }
}

TEST(SysUtils, StrToInt) {
    const struct {
        std::string_view Text;
        std::optional<std::int32_t> Value;
    } cases[] = {
        {"0", 0},
        {"-0", 0},
        {"+12", 12},
        {"  -12", -12},
        {"007", 7},
        {"2147483647", 2147483647},
        {"2147483648", {}},
        {"-2147483648", std::numeric_limits<std::int32_t>::min()},
        {"-2147483649", {}},
        {"99999999999999999999", {}},
        {"$1F", 31},
        {"0X1f", 31},
        {"-$10", -16},
        {"$FFFFFFFF", -1},
        {"$100000000", {}},
        {"", {}},
        {" ", {}},
        {"-", {}},
        {"--1", {}},
        {"+-1", {}},
        {"$", {}},
        {"0x", {}},
        {"$-1", {}},
        {"1 ", {}},
        {"1.5", {}},
        {"12a", {}},
        {"- 1", {}},
    };
    for (const auto& c : cases) {
        std::optional<std::int32_t> value;
        std::string message;
        try {
            value = StrToInt(c.Text);
        } catch (const EConvertError& error) {
            message = error.Message();
        }
        EXPECT_EQ(value, c.Value) << c.Text;
        const std::string refusal = "'" + std::string(c.Text) + "' is not a valid integer value";
        EXPECT_EQ(message, c.Value ? "" : refusal);
    }
    EXPECT_EQ(IntToStr(Int64Min), "-9223372036854775808");
}

TEST(SysUtils, TrimAndCase) {
    EXPECT_EQ(Trim("\t a b\r\n\0"), "a b");
    EXPECT_EQ(Trim(" \x01 "), "");
    EXPECT_EQ(Trim("\xA0x\xA0"), "\xA0x\xA0");
    EXPECT_EQ(UpperCase("aZ[{\xC3\xA4"), "AZ[{\xC3\xA4");
    EXPECT_EQ(LowerCase("AZ[{\xC3\x84"), "az[{\xC3\x84");
}

TEST(SysUtils, FileNames) {
    const struct {
        std::string_view Name, Path, File, Ext;
        std::string Changed;
    } cases[] = {
        {"", "", "", "", ".x"},
        {"Unit1", "", "Unit1", "", "Unit1.x"},
        {"Unit1.pas", "", "Unit1.pas", ".pas", "Unit1.x"},
        {"C:\\src\\Unit1.pas", "C:\\src\\", "Unit1.pas", ".pas", "C:\\src\\Unit1.x"},
        {"/src/lib.d/Unit1", "/src/lib.d/", "Unit1", "", "/src/lib.d/Unit1.x"},
        {"a\\b/c.d.e", "a\\b/", "c.d.e", ".e", "a\\b/c.d.x"},
        {"a/b\\c.", "a/b\\", "c.", ".", "a/b\\c.x"},
        {"dir/", "dir/", "", "", "dir/.x"},
        {"/.profile", "/", ".profile", ".profile", "/.x"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ExtractFilePath(c.Name), c.Path);
        EXPECT_EQ(ExtractFileName(c.Name), c.File);
        EXPECT_EQ(ExtractFileExt(c.Name), c.Ext);
        EXPECT_EQ(ChangeFileExt(c.Name, ".x"), c.Changed);
    }
    EXPECT_EQ(ChangeFileExt("a.pas", ""), "a");
}

TEST(Errors, ClassNames) {
    EXPECT_EQ(ExceptionClassName(EListError("x")), "EListError");
    EXPECT_EQ(ExceptionClassName(Exception("x")), "Exception");
    EXPECT_EQ(ExceptionClassName(std::out_of_range("x")), "External exception");
    try {
        throw EMenuError(std::string_view("low"));
    } catch (const Exception& error) {
        EXPECT_EQ(error.ClassName(), "EMenuError");
        EXPECT_EQ(error.Message(), "low");
    }
}

} // namespace
} // namespace tarn
