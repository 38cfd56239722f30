#include "vcl/TLabel.h"

namespace tarn {
namespace {

constexpr TPropInfo LabelProps[] = {
    Published<&TLabel::Caption, &TLabel::SetCaption>("Caption"),
    Published<&TLabel::FocusControl, &TLabel::SetFocusControl>("FocusControl"),
};

} // namespace

constinit const TClassRecord TLabel::ClassRecord{"TLabel", &TControl::ClassRecord,
                                                 CreateObject<TLabel>, LabelProps};

} // namespace tarn
