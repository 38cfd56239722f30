#include "qsExpShrForm.h"

namespace tarn {
namespace {

constexpr TPropInfo SharedManagerProps[] = {
    Published<&TSharedManager::FormSetting, &TSharedManager::SetFormSetting>("FormSetting"),
};

} // namespace

constinit const TClassRecord TSharedManager::ClassRecord{
    "TSharedManager", &TCustomExpert::ClassRecord, CreateObject<TSharedManager>,
    SharedManagerProps};
constinit const TClassRecord TSharedForm::ClassRecord{"TSharedForm", &TSmartForm::ClassRecord};

void TSharedForm::SetProperties() {
    const TFormSetting& setting = *FManager->FormSetting();
    SavePlacementAction().SetShortCut(TextToShortCut(setting.SavePlacementShortCut));
    PlacementText = setting.FormPlacement;
    AutoSavePlacement = setting.AutoSavePlacement;
}

void TSharedForm::ReadFormData() {
    FManager->FormSetting()->FormPlacement = PlacementText;
}

} // namespace tarn
