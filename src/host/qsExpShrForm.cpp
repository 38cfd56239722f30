#include "qsExpShrForm.h"

#include "TExpManager.h"
#include "qsAppUtils.h"

namespace tarn {
namespace {

constexpr TPropInfo SharedManagerProps[] = {
    Published<&TSharedManager::StoredFormSetting, &TSharedManager::SetFormSetting>("FormSetting"),
};

} // namespace

constinit const TClassRecord TSharedManager::ClassRecord{
    "TSharedManager", &TCustomExpert::ClassRecord, CreateObject<TSharedManager>,
    SharedManagerProps};
constinit const TClassRecord TSharedForm::ClassRecord{"TSharedForm", &TSmartForm::ClassRecord};

TFormSetting* TSharedManager::StoredFormSetting() const {
    if (FForm && FForm->Visible() && FForm->AutoSavePlacement) FForm->ReadFormData();
    return FFormSetting.get();
}

TSharedForm::TSharedForm(TComponent* owner, TSharedManager* manager)
    : TSmartForm(owner), FManager(manager) {
    FManager->FForm = this;
}

void TSharedForm::SetProperties() {
    const TFormSetting& setting = *FManager->FormSetting();
    SavePlacementAction().SetShortCut(TextToShortCut(setting.SavePlacementShortCut));
    PlacementText = setting.FormPlacement;
    AutoSavePlacement = setting.AutoSavePlacement;
    if (PlacementText.empty()) return;
    try {
        SetWinPlacement(*this, PlacementText);
    } catch (const EConvertError&) {
        return; // an old or damaged text: the form stays where it is
    }
}

void TSharedForm::ReadFormData() {
    PlacementText = GetWinPlacement(*this);
    FManager->FormSetting()->FormPlacement = PlacementText;
}

void TSharedForm::Open() {
    if (!Visible()) SetProperties();
    if (WindowState() == wsMinimized) SetWindowState(wsNormal);
    Show();
}

TAction* TSharedForm::NewAction(std::string_view name, std::string_view caption,
                                TNotifyEvent execute, TShortCut shortCut) {
    auto* const action = new TAction(this);
    action->SetName(name);
    action->SetCaption(caption);
    action->SetHint(caption);
    action->SetShortCut(shortCut);
    action->OnExecute = execute;
    action->SetActionList(&ActionList());
    return action;
}

void TSharedForm::RunCommand(TObject* sender, TNotifyEvent command) {
    if (pPrivateExecProc) pPrivateExecProc(sender, command);
}

} // namespace tarn
