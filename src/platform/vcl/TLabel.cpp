#include "vcl/TLabel.h"

#include "vcl/TTextMeasure.h"

namespace tarn {
namespace {

// AutoSize before Caption: a caption that is read leaves the bounds that were read alone.
constexpr TPropInfo LabelProps[] = {
    Published<&TLabel::Alignment, &TLabel::SetAlignment>("Alignment", {.Default = taLeftJustify}),
    Published<&TLabel::AutoSize, &TLabel::SetAutoSize>("AutoSize", {.Default = true}),
    Published<&TLabel::Caption, &TLabel::SetCaption>("Caption"),
    Published<&TLabel::FocusControl, &TLabel::SetFocusControl>("FocusControl"),
    Published<&TLabel::OnClick>("OnClick"),
};

} // namespace

constinit const TClassRecord TLabel::ClassRecord{"TLabel", &TControl::ClassRecord,
                                                 CreateObject<TLabel>, LabelProps};

void TLabel::SetText(std::string_view value) {
    TControl::SetText(value);
    AdjustBounds();
}

void TLabel::SetAlignment(TAlignment value) {
    FAlignment = value;
    StateChanged();
}

void TLabel::SetAutoSize(bool value) {
    FAutoSize = value;
    AdjustBounds();
}

void TLabel::FontChanged() {
    TControl::FontChanged();
    AdjustBounds();
}

void TLabel::Loaded() {
    TControl::Loaded();
    AdjustBounds();
}

void TLabel::AdjustBounds() {
    // While the label is read, what is still to come may turn AutoSize off.
    if (!FAutoSize || ComponentState().Contains(csLoading)) return;
    const TExtent extent = MeasureText(MeasuredFont(), Text());
    const int right = Left() + Width();
    SetBoundsRect({FAlignment == taRightJustify ? right - extent.Width : Left(), Top(),
                   extent.Width, extent.Height});
}

bool TLabel::Click() {
    if (!CanFocus()) return false;
    if (const TNotifyEvent handler = OnClick) handler(this);
    return true;
}

} // namespace tarn
