#include "rtl/DateUtils.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <utility>

namespace tarn {
namespace {

using namespace std::chrono;

constexpr sys_days DayZero = year{1899} / December / 30;
constexpr double SecondsPerDay = 86400;

TClock ReplacedClock = nullptr;

} // namespace

std::optional<TDateTime> TryEncodeDateTime(const TDateParts& parts) {
    const auto between = [](int value, int least, int most) {
        return value >= least && value <= most;
    };
    const year_month_day date{year{parts.Year}, month{static_cast<unsigned>(parts.Month)},
                              day{static_cast<unsigned>(parts.Day)}};
    if (!between(parts.Year, 1, 9999) || !between(parts.Month, 1, 12) ||
        !between(parts.Day, 1, 31) || !date.ok() || !between(parts.Hour, 0, 23) ||
        !between(parts.Minute, 0, 59) || !between(parts.Second, 0, 59))
        return std::nullopt;
    const auto days = static_cast<double>((sys_days(date) - DayZero).count());
    const double time = ((parts.Hour * 60 + parts.Minute) * 60 + parts.Second) / SecondsPerDay;
    return days < 0 ? days - time : days + time;
}

TDateTime EncodeDateTime(const TDateParts& parts) {
    if (const auto moment = TryEncodeDateTime(parts)) return *moment;
    throw EConvertError(
        Format("there is no moment %d-%d-%d %d:%d:%d",
               {parts.Year, parts.Month, parts.Day, parts.Hour, parts.Minute, parts.Second}));
}

TDateParts DecodeDateTime(TDateTime moment) {
    constexpr sys_days least = year{1} / January / 1, most = year{9999} / December / 31;
    double days = std::trunc(moment);
    double seconds = std::round(std::fabs(moment - days) * SecondsPerDay);
    if (seconds >= SecondsPerDay) {
        seconds = 0;
        ++days;
    }
    // Written so that a moment that is no number is refused as well.
    if (!(days >= (least - DayZero).count() && days <= (most - DayZero).count()))
        throw EConvertError("a moment is outside the years 1 to 9999");
    const year_month_day date(DayZero + std::chrono::days(static_cast<int>(days)));
    const int second = static_cast<int>(seconds);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            second / 3600,
            second / 60 % 60,
            second % 60};
}

namespace {

constexpr std::string_view HalfDayMarks[] = {"am/pm", "ampm"};

/// Walks over a format text.
class TDateFormatter {
public:
    TDateFormatter(std::string_view format, const TDateParts& parts)
        : FFormat(format), FParts(parts) {}

    std::string Run() {
        FHalfDays = HasHalfDayMark();
        for (std::size_t at = 0; at < FFormat.size();) at += Append(FFormat.substr(at));
        return std::move(FResult);
    }

private:
    static std::size_t HalfDayMarkAt(std::string_view rest) {
        for (const std::string_view mark : HalfDayMarks)
            if (SameText(rest.substr(0, mark.size()), mark)) return mark.size();
        return 0;
    }

    /// The length of the quoted text at the front, quotes included; 0 when there is none.
    static std::size_t QuotedAt(std::string_view rest) {
        if (rest.front() != '\'' && rest.front() != '"') return 0;
        const std::size_t end = rest.find(rest.front(), 1);
        return end == std::string_view::npos ? rest.size() : end + 1;
    }

    bool HasHalfDayMark() const {
        for (std::size_t at = 0; at < FFormat.size();) {
            const std::string_view rest = FFormat.substr(at);
            if (HalfDayMarkAt(rest) > 0) return true;
            const std::size_t quoted = QuotedAt(rest);
            at += quoted > 0 ? quoted : 1;
        }
        return false;
    }

    /// Appends what stands at the front of `rest` and returns its length there.
    std::size_t Append(std::string_view rest) {
        if (const std::size_t length = QuotedAt(rest)) {
            const bool closed = length > 1 && rest[length - 1] == rest.front();
            FResult += rest.substr(1, length - (closed ? 2 : 1));
            return length;
        }
        if (const std::size_t length = HalfDayMarkAt(rest)) {
            const TFormatSettings& settings = FormatSettings();
            FResult += FParts.Hour < 12 ? settings.TimeAMString : settings.TimePMString;
            return length;
        }
        const std::string letter = LowerCase(rest.substr(0, 1));
        std::size_t length = 1;
        while (length < rest.size() && SameText(rest.substr(length, 1), letter)) ++length;
        if (AppendPart(letter.front(), length)) {
            FBehindHour = letter == "h";
            return length;
        }
        AppendOther(rest.front());
        return 1;
    }

    bool AppendPart(char letter, std::size_t length) {
        const auto number = [&](int value, int digits) {
            FResult += Format(digits == 4 ? "%.4d" : digits == 2 ? "%.2d" : "%d", {value});
            return true;
        };
        const int digits = length > 1 ? 2 : 1;
        switch (letter) {
        case 'y':
            return length > 2 ? number(FParts.Year, 4) : number(FParts.Year % 100, 2);
        case 'm':
            return number(FBehindHour ? FParts.Minute : FParts.Month, digits);
        case 'd':
            return number(FParts.Day, digits);
        case 'h':
            return number(FHalfDays ? (FParts.Hour + 11) % 12 + 1 : FParts.Hour, digits);
        case 'n':
            return number(FParts.Minute, digits);
        case 's':
            return number(FParts.Second, digits);
        default:
            return false;
        }
    }

    void AppendOther(char c) {
        if (c == '/')
            FResult += FormatSettings().DateSeparator;
        else if (c == ':')
            FResult += FormatSettings().TimeSeparator;
        else
            FResult += c;
    }

    std::string_view FFormat;
    TDateParts FParts;
    bool FHalfDays = false;
    bool FBehindHour = false; ///< the last part was the hour
    std::string FResult;
};

} // namespace

std::string FormatDateTime(std::string_view format, TDateTime moment) {
    return TDateFormatter(format, DecodeDateTime(moment)).Run();
}

std::string DateToStr(TDateTime moment) {
    return FormatDateTime(FormatSettings().ShortDateFormat, moment);
}

std::string TimeToStr(TDateTime moment) {
    return FormatDateTime(FormatSettings().LongTimeFormat, moment);
}

std::string DateTimeToStr(TDateTime moment) {
    const TDateParts parts = DecodeDateTime(moment);
    const bool midnight = parts.Hour == 0 && parts.Minute == 0 && parts.Second == 0;
    return midnight ? DateToStr(moment) : DateToStr(moment) + " " + TimeToStr(moment);
}

TClock SetClock(TClock clock) {
    return std::exchange(ReplacedClock, clock);
}

TDateTime Now() {
    if (ReplacedClock) return ReplacedClock();
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    // A leap second shows as the second before.
    return EncodeDateTime({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                           local.tm_min, std::min(local.tm_sec, 59)});
}

} // namespace tarn
