#include "rtl/DateUtils.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace tarn {
namespace {

TEST(DateUtils, EncodesAndDecodes) {
    const std::pair<TDateParts, TDateTime> cases[] = {
        {{1899, 12, 30, 0, 0, 0}, 0},          {{1899, 12, 31, 6, 0, 0}, 1.25},
        {{1970, 1, 1, 0, 0, 0}, 25569},        {{2000, 2, 29, 12, 0, 0}, 36585.5},
        {{1899, 12, 29, 18, 0, 0}, -0.25},     {{1, 1, 1, 0, 0, 0}, -693593},
        {{9999, 12, 31, 18, 0, 0}, 2958465.75}};
    for (const auto& [parts, moment] : cases) {
        EXPECT_EQ(EncodeDateTime(parts), moment);
        EXPECT_EQ(DecodeDateTime(moment), parts);
    }
    for (int second = 0; second < 86400; second += 7) {
        const TDateParts parts{2026, 7, 14, second / 3600, second / 60 % 60, second % 60};
        ASSERT_EQ(DecodeDateTime(EncodeDateTime(parts)), parts);
    }
    const TDateParts refused[] = {{2026, 2, 29, 0, 0, 0},   {0, 1, 1, 0, 0, 0},
                                  {10000, 1, 1, 0, 0, 0},   {2026, 13, 1, 0, 0, 0},
                                  {2026, 1, -255, 0, 0, 0}, {2026, 1, 1, 24, 0, 0},
                                  {2026, 1, 1, 0, 60, 0},   {2026, 1, 1, 0, 0, -1}};
    for (const TDateParts& parts : refused) EXPECT_THROW(EncodeDateTime(parts), EConvertError);
    for (const TDateTime moment :
         {-693594.0, 2958466.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW(DecodeDateTime(moment), EConvertError);
}

TEST(DateUtils, Formats) {
    const TDateTime moment = EncodeDateTime({2026, 7, 4, 15, 5, 9});
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"m/d/yyyy", "7/4/2026"},
        {"dd.mm.yy", "04.07.26"},
        {"YYYY-MM-DD hh:mm:ss", "2026-07-04 15:05:09"},
        {"h:m:s", "15:5:9"},
        {"h 'h' m", "15 h 5"},
        {"mm hh nn m", "07 15 05 7"},
        {"hh:nn am/pm", "03:05 PM"},
        {"h 'ampm'", "15 ampm"},
        {"'d\"m' \"y'd\" d", "d\"m y'd 4"},
        {"'open d", "open d"},
        {"", ""},
        {"% ?", "% ?"},
    };
    for (const auto& [format, text] : cases)
        EXPECT_EQ(FormatDateTime(format, moment), text) << format;
    const std::pair<int, std::string_view> halves[] = {{0, "12 AM"},  {1, "1 AM"},  {11, "11 AM"},
                                                       {12, "12 PM"}, {13, "1 PM"}, {23, "11 PM"}};
    for (const auto& [hour, text] : halves)
        EXPECT_EQ(FormatDateTime("h ampm", EncodeDateTime({2026, 1, 1, hour, 0, 0})), text);
}

TEST(DateUtils, SettingsAndClock) {
    const TFormatSettings saved = FormatSettings();
    const TClock system = SetClock([] { return EncodeDateTime({2026, 7, 4, 0, 0, 0}); });
    EXPECT_EQ(DateTimeToStr(Now()), "7/4/2026 12:00:00 AM");
    FormatSettings().ShortDateFormat = "dd/mm/yyyy";
    FormatSettings().LongTimeFormat = "hh:mm";
    FormatSettings().DateSeparator = ".";
    FormatSettings().TimeSeparator = "h";
    EXPECT_EQ(DateTimeToStr(Now()), "04.07.2026 00h00");
    FormatSettings() = saved;
    SetClock(system);
    EXPECT_GT(Now(), 45000);
}

} // namespace
} // namespace tarn
