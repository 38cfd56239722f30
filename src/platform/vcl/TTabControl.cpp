#include "vcl/TTabControl.h"

namespace tarn {

constinit const TClassRecord TTabControl::ClassRecord{"TTabControl", &TControl::ClassRecord,
                                                      CreateObject<TTabControl>};

TTabControl::TTabControl(TComponent* owner) : TControl(owner) {
    FTabs.OnChange = TNotifyEvent::Of<&TTabControl::TabsChanged>(this);
}

void TTabControl::SetTabIndex(int value) {
    FTabIndex = value >= 0 && value < FTabs.Count() ? value : -1;
    StateChanged();
}

void TTabControl::TabsChanged(TObject*) {
    SetTabIndex(FTabIndex);
}

} // namespace tarn
