#include "vcl/TDateTimePicker.h"

#include "rtl/SysUtils.h"

#include <cmath>

namespace tarn {
namespace {

/// DateTime says it already.
bool NeverStored(const TObject&) {
    return false;
}

constexpr TPropInfo DateTimePickerProps[] = {
    Published<&TDateTimePicker::Date, &TDateTimePicker::SetDate>(
        "Date", {.Type = &DateType, .IsStored = NeverStored}),
    Published<&TDateTimePicker::DateTime, &TDateTimePicker::SetDateTime>("DateTime",
                                                                         {.Type = &DateTimeType}),
    Published<&TDateTimePicker::Kind, &TDateTimePicker::SetKind>("Kind", {.Default = dtkDate}),
    Published<&TDateTimePicker::Time, &TDateTimePicker::SetTime>(
        "Time", {.Type = &TimeType, .IsStored = NeverStored}),
    Published<&TDateTimePicker::OnChange>("OnChange"),
};

/// The moment, or 0 for one that the calendar does not have.
TDateTime InCalendar(TDateTime moment) {
    try {
        DecodeDateTime(moment);
        return moment;
    } catch (const EConvertError&) {
        return 0;
    }
}

/// Whole days and a part of a day, which counts away from 0.
TDateTime Joined(TDateTime date, TDateTime time) {
    return date < 0 ? date - time : date + time;
}

} // namespace

constinit const TClassRecord TDateTimePicker::ClassRecord{
    "TDateTimePicker", &TControl::ClassRecord, CreateObject<TDateTimePicker>, DateTimePickerProps};

void TDateTimePicker::SetKind(TDateTimeKind value) {
    FKind = value;
    StateChanged();
}

void TDateTimePicker::SetDateTime(TDateTime value) {
    FDateTime = value;
    StateChanged();
}

TDateTime TDateTimePicker::Date() const {
    return std::trunc(InCalendar(FDateTime));
}

void TDateTimePicker::SetDate(TDateTime value) {
    SetDateTime(Joined(std::trunc(value), Time()));
}

TDateTime TDateTimePicker::Time() const {
    const TDateTime moment = InCalendar(FDateTime);
    return std::fabs(moment - std::trunc(moment));
}

void TDateTimePicker::SetTime(TDateTime value) {
    SetDateTime(Joined(Date(), std::fabs(value - std::trunc(value))));
}

std::string TDateTimePicker::ShownText() const {
    try {
        return FKind == dtkDate ? DateToStr(FDateTime) : TimeToStr(FDateTime);
    } catch (const EConvertError&) {
        return {};
    }
}

bool TDateTimePicker::Choose(TDateTimeKind kind, TDateTime part) {
    if (!CanFocus() || kind != FKind) return false;
    const TDateTime before = FDateTime;
    kind == dtkDate ? SetDate(part) : SetTime(part);
    if (before == FDateTime) return true;
    if (const TNotifyEvent handler = OnChange) handler(this);
    return true;
}

bool TDateTimePicker::ChooseDate(int year, int month, int day) {
    const auto date = TryEncodeDateTime({.Year = year, .Month = month, .Day = day});
    return date && Choose(dtkDate, *date);
}

bool TDateTimePicker::ChooseTime(int hour, int minute, int second) {
    const auto time = TryEncodeDateTime({.Hour = hour, .Minute = minute, .Second = second});
    return time && Choose(dtkTime, *time);
}

bool TDateTimePicker::TypeText(std::string_view text) {
    try {
        return Choose(FKind, FKind == dtkDate ? StrToDate(text) : StrToTime(text));
    } catch (const EConvertError&) {
        return false;
    }
}

} // namespace tarn
