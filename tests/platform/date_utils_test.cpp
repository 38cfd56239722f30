#include "ErrorOf.h"
#include "rtl/DateUtils.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <utility>

namespace tarn {
namespace {

TEST(DateUtils, EncodesAndDecodes) {
    const std::pair<TDateParts, TDateTime> cases[] = {
        {{1899, 12, 30, 0, 0, 0}, 0},          {{1899, 12, 31, 6, 0, 0}, 1.25},
        {{1970, 1, 1, 0, 0, 0}, 25569},        {{2000, 2, 29, 12, 0, 0}, 36585.5},
        {{1899, 12, 29, 18, 0, 0}, -1.75},     {{1, 1, 1, 0, 0, 0}, -693593},
        {{9999, 12, 31, 18, 0, 0}, 2958465.75}};
    for (const auto& [parts, moment] : cases) {
        EXPECT_EQ(EncodeDateTime(parts), moment);
        EXPECT_EQ(DecodeDateTime(moment), parts);
    }
    // A fraction counts away from day zero, and the last half second of a day is the next day.
    EXPECT_EQ(DecodeDateTime(-0.25), DecodeDateTime(0.25));
    EXPECT_EQ(DecodeDateTime(-2 - 86399.6 / 86400), (TDateParts{1899, 12, 29}));
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
         {-693594.0, 2958466.0, 2958465.999999, 1e300, std::numeric_limits<double>::quiet_NaN()})
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

/// The settings and the clock as they are, given back at the end.
class DateTexts : public testing::Test {
protected:
    DateTexts() {
        FClock = SetClock([] { return EncodeDateTime({2026, 7, 4}); });
    }
    ~DateTexts() override {
        FormatSettings() = FSettings;
        SetClock(FClock);
    }

private:
    TFormatSettings FSettings = FormatSettings();
    TClock FClock;
};

TEST_F(DateTexts, AreReadAndWritten) {
    TFormatSettings german;
    german.ShortDateFormat = "dd/mm/yyyy";
    german.LongTimeFormat = "hh:nn:ss";
    german.DateSeparator = ".";
    TFormatSettings iso;
    iso.ShortDateFormat = "'day 'yyyy-mm-dd";
    iso.LongTimeFormat = "h:n am/pm";
    iso.TimeSeparator = "h";
    iso.TimeAMString = "vorm.";
    iso.TimePMString = "nachm.";
    iso.TwoDigitYearCenturyWindow = 0;
    const struct {
        const TFormatSettings& Settings;
        std::string_view Text;
        TDateParts Parts;
        std::string_view Written; ///< as DateTimeToStr does
    } cases[] = {
        {{}, "7/14/2026", {2026, 7, 14}, "7/14/2026"},
        {{}, " 07-14-2026  3:05:09 pm ", {2026, 7, 14, 15, 5, 9}, "7/14/2026 3:05:09 PM"},
        {{}, "7/14 12:00AM", {2026, 7, 14}, "7/14/2026"},
        {{}, "7.14.2026 0:00:01", {2026, 7, 14, 0, 0, 1}, "7/14/2026 12:00:01 AM"},
        {{}, "7/14 0:01", {2026, 7, 14, 0, 1}, "7/14/2026 12:01:00 AM"},
        {{}, "2/29/24 12 pm", {2024, 2, 29, 12}, "2/29/2024 12:00:00 PM"},
        {{}, "1/1/75", {2075, 1, 1}, "1/1/2075"},
        {{}, "1/1/76", {1976, 1, 1}, "1/1/1976"},
        {{}, "1/1/0076 23:59", {76, 1, 1, 23, 59}, "1/1/0076 11:59:00 PM"},
        {{}, "15:30", {1899, 12, 30, 15, 30}, "12/30/1899 3:30:00 PM"},
        {{}, "12/28/1899 18:00", {1899, 12, 28, 18}, "12/28/1899 6:00:00 PM"},
        {german, "14.7.2026 3:05", {2026, 7, 14, 3, 5}, "14.07.2026 03:05:00"},
        {german, "14/7", {2026, 7, 14}, "14.07.2026"},
        {iso, "2026-7-14 3h05 Nachm.", {2026, 7, 14, 15, 5}, "day 2026-07-14 3h5 nachm."},
        {iso, "7-14 3h05 pm", {2026, 7, 14, 15, 5}, "day 2026-07-14 3h5 nachm."},
        {iso, "76/7/14 9:05 am", {2076, 7, 14, 9, 5}, "day 2076-07-14 9h5 vorm."},
    };
    for (const auto& c : cases) {
        FormatSettings() = c.Settings;
        const TDateTime moment = StrToDateTime(c.Text);
        EXPECT_EQ(DecodeDateTime(moment), c.Parts) << c.Text;
        EXPECT_EQ(DateTimeToStr(moment), c.Written);
    }
    FormatSettings() = german;
    EXPECT_EQ(StrToDate("14.7.26"), EncodeDateTime({2026, 7, 14}));
    EXPECT_EQ(StrToTime("6"), 0.25);
    EXPECT_EQ(DateToStr(1.5) + "|" + TimeToStr(-1.5), "31.12.1899|12:00:00");
}

TEST_F(DateTexts, AreRefused) {
    for (const std::string_view text :
         {"", "x", "7/", "7/14/2026/1", "2/29/2026", "13/1/2026", "7/-1/2026", "7/14/2026x",
          "7/14/2026 24:00", "1:60", "1:00:60", "0:30 am", "13:00 pm", "1:00 xm", "1::2", "1:2:3:4",
          "99999999999/1/1"}) {
        EXPECT_EQ(ErrorOf([&] { StrToDateTime(text); }),
                  Format("EConvertError: '%s' is not a valid date and time", {text}));
        EXPECT_EQ(ErrorOf([&] { StrToDate(text); }),
                  Format("EConvertError: '%s' is not a valid date", {text}));
    }
    EXPECT_EQ(ErrorOf([] { StrToDate("7/14/2026 1:00"); }),
              "EConvertError: '7/14/2026 1:00' is not a valid date");
    EXPECT_EQ(ErrorOf([] { StrToDate("7"); }), "EConvertError: '7' is not a valid date");
    EXPECT_EQ(ErrorOf([] { StrToTime("7/14/2026"); }),
              "EConvertError: '7/14/2026' is not a valid time");
}

TEST_F(DateTexts, FollowALocale) {
    const struct {
        TLocaleTexts Locale;
        std::string_view Settings; ///< the separators of numbers, and a moment
    } cases[] = {
        {{".", ",", "%m/%d/%Y", "%r", "AM", "PM"}, ".|,|07/04/2026 3:05:09 PM"},
        {{",", ".", "%d.%m.%Y", "%T", "", ""}, ",|.|04.07.2026 15:05:09"},
        {{",", "\xE2\x80\xAF", "%-d. %-m. %Y", "%H:%M:%S"}, ",|\xE2\x80\xAF|4.7.2026 15:05:09"},
        {{".", ",", "%Y\xEB\x85\x84 %m\xEC\x9B\x94 %d", "%p %I:%M:%S", "am", "pm"},
         ".|,|2026/07/04 3:05:09 pm"},
        {{",", "", "%e.%B.%y", "%H.%M.%S", "ap.", "ip."}, ",||4.07.2026 15.05.09"},
        {{".", "", "%D", "%r"}, ".||07/04/2026 15:05:09"}, // without names for the halves
        {{".", "", "%F", "%I %p", "a", "p"}, ".||2026-07-04 3:05:09 p"},
        {{".", ",", "%a. %d/%h/%Ey %d", "%T"}, ".|,|04/07/2026 15:05:09"},
        {{".", "", "%d.%m-%Y", "%T"}, ".||04.07.2026 15:05:09"},
        {{"", "", "%m-%d", "%"}, ".||7/4/2026 15:05:09"}, // no year
        {{"", "", "", ""}, ".||7/4/2026 15:05:09"},
    };
    const TDateTime moment = EncodeDateTime({2026, 7, 4, 15, 5, 9});
    for (const auto& c : cases) {
        const TFormatSettings settings = FormatSettings() = FormatSettingsOf(c.Locale);
        const std::string text = DateTimeToStr(moment);
        EXPECT_EQ(settings.DecimalSeparator + "|" + settings.ThousandSeparator + "|" + text,
                  c.Settings);
        EXPECT_EQ(StrToDateTime(text), moment) << text;
    }
}

TEST_F(DateTexts, FollowTheUser) {
    const char* const present = std::getenv("LC_ALL");
    const std::string saved = present ? present : "";
    const auto written = [](const char* locale) {
        ::setenv("LC_ALL", locale, 1);
        FormatSettings() = UserFormatSettings();
        return DateTimeToStr(1.5);
    };
    EXPECT_EQ(written("C"), "12/31/1899 12:00:00");
    EXPECT_EQ(written("no_SUCH"), "12/31/1899 12:00:00 PM");
    present ? ::setenv("LC_ALL", saved.c_str(), 1) : ::unsetenv("LC_ALL");
}

TEST_F(DateTexts, ClockOfTheSystem) {
    EXPECT_EQ(Now(), EncodeDateTime({2026, 7, 4}));
    SetClock(nullptr);
    EXPECT_GT(Now(), 45000);
}

} // namespace
} // namespace tarn
