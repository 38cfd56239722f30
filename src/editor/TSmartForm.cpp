#include "TSmartForm.h"

namespace tarn {

constinit const TClassRecord TSmartForm::ClassRecord{"TSmartForm", &TForm::ClassRecord,
                                                     CreateObject<TSmartForm>};

TSmartForm::TSmartForm(TComponent* owner)
    : TForm(owner), FActionList(new TActionList(this)), FSavePlacementAction(new TAction(this)) {
    FActionList->SetName("ActionList");
    FSavePlacementAction->SetName("acSavePlacement");
    FSavePlacementAction->SetActionList(FActionList);
    FSavePlacementAction->OnExecute = TNotifyEvent::Of<&TSmartForm::SavePlacement>(this);
}

void TSmartForm::SetVisible(bool value) {
    const TWeak<TSmartForm> alive(this); // who stores the state may close the form for good
    if (!value && Visible() && AutoSavePlacement) ReadFormData();
    if (alive) TForm::SetVisible(value);
}

} // namespace tarn
