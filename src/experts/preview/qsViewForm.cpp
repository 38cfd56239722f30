#include "preview/qsViewForm.h"

#include "preview/TPreviewForm.h"
#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {
namespace {

constexpr TPropInfo ViewFormMngProps[] = {
    Published<&TViewFormMng::CloseFormOnShowUnit>("CloseFormOnShowUnit", {.Default = true}),
};

} // namespace

constinit const TClassRecord TViewFormMng::ClassRecord{
    "TViewFormMng", &TSharedManager::ClassRecord, CreateObject<TViewFormMng>, ViewFormMngProps};

TViewFormMng::TViewFormMng() {
    AddStoredData(this, "FormUnitViewData", LocaleStr(51128),
                  "[TViewFormMng]\r\nCloseFormOnShowUnit=" + LocaleStr(51244));
}

TViewFormMng::~TViewFormMng() {
    delete FForm.Get();
}

void TViewFormMng::Init(TGetItemData getItemData) {
    ExpMenuItems().clear();
    TExpMenuItemData* const data = getItemData("FormUnitViewItem");
    ExpMenuItems().emplace_back(data);
    data->Caption = LocaleStr(51128);
    data->OnExecute = TNotifyEvent::Of<&TViewFormMng::ShowList>(this);
    data->OnUpdate = TNotifyEvent::Of<&TViewFormMng::UpdateMenuState>(this);
}

void TViewFormMng::ShowList(TObject*) {
    if (!FForm) FForm = new TPreviewForm(this);
    FForm->OpenList();
}

void TViewFormMng::UpdateMenuState(TObject* sender) {
    EnableCommand(sender, GetActiveProject() != nullptr);
}

TPreviewForm* TViewFormMng::Form() const {
    return FForm.Get();
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeViewForm() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TViewFormMng>(), 1, "FormUnitView", 51128);
}

void FinalizeViewForm() {
    Counter().Leave();
}

} // namespace tarn
