#include "vcl/TPanel.h"

namespace tarn {
namespace {

constexpr TPropInfo PanelProps[] = {
    Published<&TPanel::Caption, &TPanel::SetCaption>("Caption"),
};

} // namespace

constinit const TClassRecord TPanel::ClassRecord{"TPanel", &TControl::ClassRecord,
                                                 CreateObject<TPanel>, PanelProps};

} // namespace tarn
