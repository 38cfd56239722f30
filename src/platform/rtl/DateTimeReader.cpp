// Dates and times from texts.

#include "rtl/DateUtils.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tarn {
namespace {

/// The letters d, m and y in the order of the short date format.
std::string DateOrder() {
    std::string order;
    char quote = 0;
    for (const char c : LowerCase(FormatSettings().ShortDateFormat)) {
        if (quote != 0)
            quote = c == quote ? '\0' : quote;
        else if (c == '\'' || c == '"')
            quote = c;
        else if ((c == 'd' || c == 'm' || c == 'y') && order.find(c) == std::string::npos)
            order += c;
    }
    for (const char c : {'m', 'd', 'y'})
        if (order.find(c) == std::string::npos) order += c;
    return order;
}

int FullYear(int shortYear) {
    const int present = DecodeDateTime(Now()).Year;
    const int window = FormatSettings().TwoDigitYearCenturyWindow;
    const int first = window > 0 ? present - window : present / 100 * 100;
    const int year = first / 100 * 100 + shortYear;
    return year < first ? year + 100 : year;
}

/// Reads the parts of a moment off the front of a text.
class TMomentReader {
public:
    explicit TMomentReader(std::string_view text) : FRest(text) {}

    bool ReadDate() {
        const auto separator = [this] {
            return Take(FormatSettings().DateSeparator) || Take("/") || Take("-") || Take(".");
        };
        TNumbers numbers{};
        const std::size_t count = Read(numbers, separator);
        if (count < 2) return false;
        std::string order = DateOrder();
        if (count == 2) {
            std::erase(order, 'y');
            FParts.Year = DecodeDateTime(Now()).Year;
        }
        for (std::size_t i = 0; i < count; ++i) SetDatePart(order[i], numbers[i]);
        return true;
    }

    bool ReadTime() {
        const auto separator = [this] { return Take(FormatSettings().TimeSeparator) || Take(":"); };
        TNumbers numbers{};
        if (Read(numbers, separator) == 0) return false;
        FParts.Hour = numbers[0].Value;
        FParts.Minute = numbers[1].Value;
        FParts.Second = numbers[2].Value;
        return ReadHalfDay();
    }

    bool AtEnd() {
        SkipBlanks();
        return FRest.empty();
    }

    /// None when the text goes on, or when there is no such moment.
    std::optional<TDateTime> Moment() { return AtEnd() ? TryEncodeDateTime(FParts) : std::nullopt; }

private:
    struct TNumber {
        int Value;
        std::ptrdiff_t Digits;
    };
    using TNumbers = std::array<TNumber, 3>;

    void SkipBlanks() {
        FRest.remove_prefix(std::min(FRest.find_first_not_of(" \t"), FRest.size()));
    }

    bool Take(std::string_view mark) {
        SkipBlanks();
        if (mark.empty() || !SameText(FRest.substr(0, mark.size()), mark)) return false;
        FRest.remove_prefix(mark.size());
        return true;
    }

    bool Read(TNumber& number) {
        SkipBlanks();
        if (FRest.starts_with('-')) return false;
        const auto [end, error] =
            std::from_chars(FRest.data(), FRest.data() + FRest.size(), number.Value);
        number.Digits = end - FRest.data();
        FRest.remove_prefix(static_cast<std::size_t>(number.Digits));
        return error == std::errc();
    }

    /// One to three numbers between separators: how many; 0 when one of them is missing.
    template <class F> std::size_t Read(TNumbers& numbers, const F& separator) {
        std::size_t count = 0;
        do {
            if (!Read(numbers[count])) return 0;
            ++count;
        } while (count < numbers.size() && separator());
        return count;
    }

    void SetDatePart(char letter, const TNumber& number) {
        if (letter == 'd')
            FParts.Day = number.Value;
        else if (letter == 'm')
            FParts.Month = number.Value;
        else
            FParts.Year = number.Digits <= 2 ? FullYear(number.Value) : number.Value;
    }

    /// False when the hour does not go with the half of the day.
    bool ReadHalfDay() {
        const TFormatSettings& settings = FormatSettings();
        const bool morning = Take(settings.TimeAMString) || Take("AM");
        const bool evening = !morning && (Take(settings.TimePMString) || Take("PM"));
        if (!morning && !evening) return true;
        if (FParts.Hour < 1 || FParts.Hour > 12) return false;
        FParts.Hour = FParts.Hour % 12 + (evening ? 12 : 0);
        return true;
    }

    std::string_view FRest;
    TDateParts FParts; ///< of day zero, so that a time alone is a fraction
};

std::optional<TDateTime> ReadDateOnly(std::string_view text) {
    TMomentReader reader(text);
    return reader.ReadDate() ? reader.Moment() : std::nullopt;
}

std::optional<TDateTime> ReadTimeOnly(std::string_view text) {
    TMomentReader reader(text);
    return reader.ReadTime() ? reader.Moment() : std::nullopt;
}

std::optional<TDateTime> ReadDateAndTime(std::string_view text) {
    TMomentReader reader(text);
    if (!reader.ReadDate()) return std::nullopt;
    return reader.AtEnd() || reader.ReadTime() ? reader.Moment() : std::nullopt;
}

TDateTime Require(std::optional<TDateTime> moment, std::string_view text, std::string_view what) {
    if (!moment) throw EConvertError(Format("'%s' is not a valid %s", {text, what}));
    return *moment;
}

} // namespace

TDateTime StrToDate(std::string_view text) {
    return Require(ReadDateOnly(text), text, "date");
}

TDateTime StrToTime(std::string_view text) {
    return Require(ReadTimeOnly(text), text, "time");
}

TDateTime StrToDateTime(std::string_view text) {
    const auto moment = ReadDateAndTime(text);
    return Require(moment ? moment : ReadTimeOnly(text), text, "date and time");
}

} // namespace tarn
