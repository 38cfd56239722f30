#include "preview/qsInspectorView.h"

#include "preview/TSelectorForm.h"
#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TInspectorViewMng::ClassRecord{
    "TInspectorViewMng", &TSharedManager::ClassRecord, CreateObject<TInspectorViewMng>};

TInspectorViewMng::TInspectorViewMng() {
    AddStoredData(this, "InspectorFormViewData", LocaleStr(51127), "[TInspectorViewMng]");
}

TInspectorViewMng::~TInspectorViewMng() {
    delete FForm.Get();
}

void TInspectorViewMng::Init(TGetItemData getItemData) {
    ExpMenuItems().clear();
    TExpMenuItemData* const data = getItemData("InspectorFormViewItem");
    ExpMenuItems().emplace_back(data);
    data->Caption = LocaleStr(51127);
    data->OnExecute = TNotifyEvent::Of<&TInspectorViewMng::ShowList>(this);
}

void TInspectorViewMng::ShowList(TObject*) {
    if (!FForm) FForm = new TSelectorForm(this);
    FForm->OpenList();
}

TSelectorForm* TInspectorViewMng::Form() const {
    return FForm.Get();
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
