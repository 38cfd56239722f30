#include "vcl/TCheckBox.h"

namespace tarn {
namespace {

constexpr TPropInfo CheckBoxProps[] = {
    Published<&TCheckBox::Caption, &TCheckBox::SetCaption>("Caption"),
    Published<&TCheckBox::Checked, &TCheckBox::SetChecked>("Checked", {.Default = false}),
    Published<&TCheckBox::OnClick>("OnClick"),
};

} // namespace

constinit const TClassRecord TCheckBox::ClassRecord{"TCheckBox", &TControl::ClassRecord,
                                                    CreateObject<TCheckBox>, CheckBoxProps};

void TCheckBox::SetChecked(bool value) {
    FChecked = value;
    StateChanged();
}

bool TCheckBox::Click() {
    if (!CanFocus()) return false;
    SetChecked(!FChecked);
    if (const TNotifyEvent handler = OnClick) handler(this);
    return true;
}

} // namespace tarn
