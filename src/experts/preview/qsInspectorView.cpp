#include "preview/qsInspectorView.h"

#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TInspectorViewMng::ClassRecord{
    "TInspectorViewMng", &TCustomExpert::ClassRecord, CreateObject<TInspectorViewMng>};

TInspectorViewMng::TInspectorViewMng() {
    AddStoredData(this, "InspectorFormViewData", LocaleStr(51127), "[TInspectorViewMng]");
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeInspectorView() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TInspectorViewMng>(), 2, "InspectorFormView", 51127);
}

void FinalizeInspectorView() {
    Counter().Leave();
}

} // namespace tarn
