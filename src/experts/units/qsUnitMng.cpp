#include "units/qsUnitMng.h"

#include "qsExpMng.h"
#include "qsLocale.h"
#include "qsOTAUtils.h"
#include "units/TUnitForm.h"

namespace tarn {
namespace {

constexpr TPropInfo UnitManagerProps[] = {
    Published<&TUnitManager::DragModeAllowed>("DragModeAllowed", {.Default = false}),
    Published<&TUnitManager::CloseFormOnShowUnit>("CloseFormOnShowUnit", {.Default = false}),
    Published<&TUnitManager::FilterPanelVisible>("FilterPanelVisible", {.Default = false}),
    Published<&TUnitManager::JumpToUnitsOnApllyFilter>("JumpToUnitsOnApllyFilter",
                                                       {.Default = false}),
    Published<&TUnitManager::HistoryList, &TUnitManager::SetHistoryList>("HistoryList"),
    Published<&TUnitManager::HistoryStoredCount>("HistoryStoredCount", {.Default = 10}),
    Published<&TUnitManager::CloseUnitShortCut>("CloseUnitShortCut", {.Type = &ShortCutStringType}),
    Published<&TUnitManager::FilterUnitsShortCut>("FilterUnitsShortCut",
                                                  {.Type = &ShortCutStringType}),
    Published<&TUnitManager::MoveDownUnitShortCut>("MoveDownUnitShortCut",
                                                   {.Type = &ShortCutStringType}),
    Published<&TUnitManager::MoveUpUnitShortCut>("MoveUpUnitShortCut",
                                                 {.Type = &ShortCutStringType}),
    Published<&TUnitManager::ShowUnitShortCut>("ShowUnitShortCut", {.Type = &ShortCutStringType}),
    Published<&TUnitManager::SortUnitsShortCut>("SortUnitsShortCut", {.Type = &ShortCutStringType}),
};

/// The properties in their order with the string ids of their captions.
struct TCaption {
    std::string_view Prop;
    int Id;
};
constexpr TCaption Captions[] = {
    {"DragModeAllowed", 51243},      {"CloseFormOnShowUnit", 51244},
    {"FilterPanelVisible", 51245},   {"JumpToUnitsOnApllyFilter", 51246},
    {"HistoryList", 51247},          {"HistoryStoredCount", 51248},
    {"CloseUnitShortCut", 51249},    {"FilterUnitsShortCut", 51260},
    {"MoveDownUnitShortCut", 51261}, {"MoveUpUnitShortCut", 51262},
    {"ShowUnitShortCut", 51263},     {"SortUnitsShortCut", 51264},
};

} // namespace

constinit const TClassRecord TUnitManager::ClassRecord{
    "TUnitManager", &TSharedManager::ClassRecord, CreateObject<TUnitManager>, UnitManagerProps};

TUnitManager::TUnitManager() {
    std::string captions = "[TUnitManager]";
    for (const TCaption& caption : Captions)
        captions += Format("\r\n%s=%s", {caption.Prop, LocaleStr(caption.Id)});
    AddStoredData(this, "UnitManagerData", LocaleStr(51141), captions);
}

TUnitManager::~TUnitManager() {
    delete FForm.Get();
}

void TUnitManager::Init(TGetItemData getItemData) {
    ExpMenuItems().clear();
    TExpMenuItemData* const data = getItemData("UnitManagerItem");
    ExpMenuItems().emplace_back(data);
    data->Caption = LocaleStr(51010);
    data->ShortCutText = "Ctrl+Shift+Q";
    data->OnExecute = TNotifyEvent::Of<&TUnitManager::ShowUnits>(this);
    data->OnUpdate = TNotifyEvent::Of<&TUnitManager::CheckShownState>(this);
}

TUnitForm* TUnitManager::Form() const {
    return FForm.Get();
}

void TUnitManager::ShowUnits(TObject*) {
    if (!FForm) FForm = new TUnitForm(nullptr, this);
    FForm->PopulateUnitList();
    FForm->Open();
}

void TUnitManager::CheckShownState(TObject* sender) {
    EnableCommand(sender, FindEditorTabControl() != nullptr);
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeUnitMng() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TUnitManager>(), 5, "UnitManager", 51141);
}

void FinalizeUnitMng() {
    Counter().Leave();
}

} // namespace tarn
