#include "vcl/TButton.h"

namespace tarn {
namespace {

constexpr TPropInfo ButtonProps[] = {
    Published<&TButton::Cancel, &TButton::SetCancel>("Cancel", {.Default = false}),
    Published<&TButton::Caption, &TButton::SetCaption>("Caption"),
    Published<&TButton::Default, &TButton::SetDefault>("Default", {.Default = false}),
    Published<&TButton::ModalResultNumber, &TButton::SetModalResultNumber>(
        "ModalResult", {.Default = mrNone, .Type = &ModalResultType}),
    Published<&TButton::OnClick>("OnClick"),
};

} // namespace

constinit const TClassRecord TButton::ClassRecord{"TButton", &TControl::ClassRecord,
                                                  CreateObject<TButton>, ButtonProps};

void TButton::SetDefault(bool value) {
    FDefault = value;
    StateChanged();
}

bool TButton::Click() {
    if (!CanFocus()) return false;
    TForm* const form = ParentForm();
    if (form && ModalResult != mrNone) form->ModalResult = ModalResult;
    if (const TNotifyEvent handler = OnClick) handler(this);
    return true;
}

} // namespace tarn
