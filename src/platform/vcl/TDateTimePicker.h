#pragma once

#include "rtl/DateUtils.h"
#include "vcl/TControl.h"

namespace tarn {

enum TDateTimeKind : std::uint8_t { dtkDate, dtkTime };
inline constexpr std::string_view DateTimeKindNames[] = {"dtkDate", "dtkTime"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TDateTimeKind> = EnumType("TDateTimeKind", DateTimeKindNames);

/// Shows the date or the time of day of a moment and lets the user choose that part of it; the
/// other part stays as it is, to the bit where a moment can hold both.
class TDateTimePicker : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TDateTimePicker(TComponent* owner = nullptr) : TControl(owner) {}

    TDateTimeKind Kind() const { return FKind; }
    void SetKind(TDateTimeKind value);

    /// What was set, be it a moment of the calendar or not, until the user chooses another.
    TDateTime DateTime() const { return FDateTime; }
    void SetDateTime(TDateTime value);
    /// The whole days and the part of a day of the moment; 0 for what is none. To set one keeps the
    /// other.
    TDateTime Date() const;
    void SetDate(TDateTime value);
    TDateTime Time() const;
    void SetTime(TDateTime value);

    /// The shown part as DateToStr or TimeToStr writes it; empty for what is no moment of the
    /// calendar.
    std::string ShownText() const;

    // What the user does. False, and nothing, while the control is disabled or hidden.
    bool ChooseDate(int year, int month, int day);     ///< false also for no date, and with dtkTime
    bool ChooseTime(int hour, int minute, int second); ///< false also for no time, and with dtkDate
    bool TypeText(std::string_view text); ///< false also for a text that is not of the kind

    TNotifyEvent OnChange; ///< the user has chosen another moment

private:
    bool Choose(TDateTimeKind kind, TDateTime part);

    TDateTimeKind FKind = dtkDate;
    TDateTime FDateTime = 0;
};

} // namespace tarn
