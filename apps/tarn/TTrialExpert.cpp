#include "TTrialExpert.h"

#include "TExpertRegistry.h"
#include "rtl/SysUtils.h"

namespace tarn {

constinit const TClassRecord TTrialExpert::ClassRecord{"TTrialExpert", &TCustomExpert::ClassRecord,
                                                       CreateObject<TTrialExpert>};

void TTrialExpert::Init(TGetItemData getItemData) {
    Pass("init");
    TExpMenuItemData* const item = getItemData("TrialItem");
    item->Caption = "Trial";
    item->OnExecute = TNotifyEvent::Of<&TTrialExpert::Run>(this);
    item->OnUpdate = TNotifyEvent::Of<&TTrialExpert::Update>(this);
}

void TTrialExpert::Pass(std::string_view place) {
    if (SameText(place, FailsIn)) throw Exception(Format("the trial expert fails in %s", {place}));
}

void RegisterTrialExpert() {
    RegisterExpClass(TExpertClass::Of<TTrialExpert>(), ExpertSlotCount, "TrialExpert", -1);
}

} // namespace tarn
