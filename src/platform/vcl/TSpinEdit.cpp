#include "vcl/TSpinEdit.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

/// The number says it already.
bool NeverStored(const TObject&) {
    return false;
}

constexpr TPropInfo SpinEditProps[] = {
    Published<&TSpinEdit::Increment>("Increment", {.Default = 1}),
    Published<&TSpinEdit::MaxValue, &TSpinEdit::SetMaxValue>("MaxValue"),
    Published<&TSpinEdit::MinValue, &TSpinEdit::SetMinValue>("MinValue"),
    Published<&TControl::Text, &TControl::SetText>("Text", {.IsStored = NeverStored}),
    Published<&TSpinEdit::Value, &TSpinEdit::SetValue>("Value"),
};

} // namespace

constinit const TClassRecord TSpinEdit::ClassRecord{"TSpinEdit", &TEdit::ClassRecord,
                                                    CreateObject<TSpinEdit>, SpinEditProps};

int TSpinEdit::Limited(std::int64_t value) const {
    using TLimits = std::numeric_limits<int>;
    const bool limited = FMinValue != FMaxValue;
    const std::int64_t least = limited ? FMinValue : TLimits::min();
    const std::int64_t most = limited ? FMaxValue : TLimits::max();
    return static_cast<int>(std::max(std::min(value, most), least));
}

int TSpinEdit::Value() const {
    return Limited(StrToIntDef(Text(), FMinValue));
}

void TSpinEdit::SetValue(int value) {
    SetText(IntToStr(Limited(value)));
}

void TSpinEdit::SetMinValue(int value) {
    FMinValue = value;
    StateChanged();
}

void TSpinEdit::SetMaxValue(int value) {
    FMaxValue = value;
    StateChanged();
}

bool TSpinEdit::Step(int count) {
    if (ReadOnly() || !CanFocus()) return false;
    SetValue(Limited(Value() + std::int64_t{count} * Increment));
    return true;
}

} // namespace tarn
