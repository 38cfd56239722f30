#include "qsExpShrData.h"

#include "TExpManager.h"
#include "qsErrorLog.h"
#include "qsLocale.h"
#include "rtl/SysUtils.h"

namespace tarn {

// --- Class records ----------------------------------------------------------------------------

namespace {

/// Whether a caption is not that of the current language.
template <class T> bool HasOwnCaption(const TObject& item) {
    return static_cast<const T&>(item).HasOwnCaption();
}

constexpr TPropInfo ExpertInfoProps[] = {
    Published<&TExpertInfo::ShownName>("ExpertNodeName"),
    Published<&TExpertInfo::ExpertName>("ExpertName"),
    Published<&TExpertInfo::Active>("Active", {.Default = true}),
};
constexpr TPropInfo ExpMenuItemDataProps[] = {
    Published<&TExpMenuItemData::ItemID>("ItemID"),
    Published<&TExpMenuItemData::Caption>("Caption", {.IsStored = HasOwnCaption<TExpMenuItemData>}),
    Published<&TExpMenuItemData::ImageIndex>("ImageIndex", {.Default = -1}),
    Published<&TExpMenuItemData::HaveLineBefore>("HaveLineBefore", {.Default = false}),
    Published<&TExpMenuItemData::ShortCutText>("ShortCutText"),
};
constexpr TPropInfo CustomDataItemProps[] = {
    Published<&TCustomDataItem::Caption>("Caption", {.IsStored = HasOwnCaption<TCustomDataItem>}),
    // Again, for its place behind the caption.
    Published<&TWrapperItem::NestedObject>("NestedObject"),
};
/// The collections of the root are stored as blocks, and published for the settings editor.
bool StoredAsBlock(const TObject&) {
    return false;
}
constexpr TPropInfo ExpDataProps[] = {
    Published<&TExpData::ActiveExpertsObject>("ActiveExperts", {.IsStored = StoredAsBlock}),
    Published<&TExpData::MenuDataObject>("MenuData", {.IsStored = StoredAsBlock}),
    Published<&TExpData::CustomDataObject>("CustomData", {.IsStored = StoredAsBlock}),
};
constexpr TPropInfo EditorFormDataProps[] = {
    Published<&TEditorFormData::AutoSaveSetting>("AutoSaveSetting", {.Default = true}),
    Published<&TEditorFormData::SaveSettingShortCut>("SaveSettingShortCut"),
    Published<&TEditorFormData::Setting, &TEditorFormData::SetSetting>("Setting"),
};
constexpr TPropInfo ExpManagerDataProps[] = {
    Published<&TExpManagerData::ExpertVersion>("ExpertVersion"),
    Published<&TExpManagerData::AutoSaveSettings>("AutoSaveSettings", {.Default = true}),
    Published<&TExpManagerData::MainMenuSearchItem>("MainMenuSearchItem"),
    Published<&TExpManagerData::InsertMenuBeforeItem>("InsertMenuBeforeItem", {.Default = true}),
    Published<&TExpManagerData::MenuHaveLineBefore>("MenuHaveLineBefore", {.Default = false}),
    Published<&TExpManagerData::MenuHaveLineAfter>("MenuHaveLineAfter", {.Default = false}),
    Published<&TExpManagerData::ErrorLogAllowed, &TExpManagerData::SetErrorLogAllowed>(
        "ErrorLogAllowed", {.Default = true}),
    Published<&TExpManagerData::MaxLogSize, &TExpManagerData::SetMaxLogSize>("MaxLogSize",
                                                                             {.Default = 50}),
    Published<&TExpManagerData::EditorFormData, &TExpManagerData::SetEditorFormData>(
        "EditorFormData"),
};
constexpr TPropInfo FormSettingProps[] = {
    Published<&TFormSetting::AutoSavePlacement>("AutoSavePlacement", {.Default = false}),
    Published<&TFormSetting::FormPlacement>("FormPlacement"),
    Published<&TFormSetting::SavePlacementShortCut>("SavePlacementShortCut"),
};

} // namespace

constinit const TClassRecord TExpertInfo::ClassRecord{"TExpertInfo", &TSpcItem::ClassRecord,
                                                      CreateObject<TExpertInfo>, ExpertInfoProps};
constinit const TClassRecord TActiveExperts::ClassRecord{
    "TActiveExperts", &TFixedCollection::ClassRecord, CreateObject<TActiveExperts>};
constinit const TClassRecord TExpMenuItemData::ClassRecord{
    "TExpMenuItemData", &TSpcItem::ClassRecord, CreateObject<TExpMenuItemData>,
    ExpMenuItemDataProps};
constinit const TClassRecord TExpMenuData::ClassRecord{
    "TExpMenuData", &TFixedCollection::ClassRecord, CreateObject<TExpMenuData>};
constinit const TClassRecord TCustomDataItem::ClassRecord{
    "TCustomDataItem", &TWrapperItem::ClassRecord, CreateObject<TCustomDataItem>,
    CustomDataItemProps};
constinit const TClassRecord TCustomData::ClassRecord{"TCustomData", &TFreeCollection::ClassRecord,
                                                      CreateObject<TCustomData>};
constinit const TClassRecord TExpData::ClassRecord{"TExpData", &TSpcObject::ClassRecord,
                                                   CreateObject<TExpData>, ExpDataProps};
constinit const TClassRecord TEditorFormData::ClassRecord{
    "TEditorFormData", &TSpcObject::ClassRecord, CreateObject<TEditorFormData>,
    EditorFormDataProps};
constinit const TClassRecord TExpManagerData::ClassRecord{
    "TExpManagerData", &TPersistent::ClassRecord, CreateObject<TExpManagerData>,
    ExpManagerDataProps};
constinit const TClassRecord TFormSetting::ClassRecord{
    "TFormSetting", &TSpcObject::ClassRecord, CreateObject<TFormSetting>, FormSettingProps};

// --- The three collections --------------------------------------------------------------------

std::string TActiveExperts::GetNodeName() {
    return LocaleStr(51121);
}
std::string TExpMenuData::GetNodeName() {
    return LocaleStr(51122);
}
std::string TCustomData::GetNodeName() {
    return LocaleStr(51123);
}

TExpertInfo* TActiveExperts::FindExpert(std::string_view name) const {
    for (int i = 0; i < Count(); ++i)
        if (Get(i)->ExpertName == name) return Get(i);
    return nullptr;
}

void TExpertInfo::Assign(const TPersistent* source) {
    const auto* const info = dynamic_cast<const TExpertInfo*>(source);
    if (!info) {
        TSpcItem::Assign(source);
        return;
    }
    ExpertName = info->ExpertName;
    ExpertNodeName = info->ExpertNodeName;
    Active = info->Active;
}

void TExpMenuItemData::Assign(const TPersistent* source) {
    const auto* const data = dynamic_cast<const TExpMenuItemData*>(source);
    if (!data) {
        TSpcItem::Assign(source);
        return;
    }
    ItemID = data->ItemID;
    Caption = data->Caption;
    DefaultCaption = data->DefaultCaption;
}

std::vector<TWeak<TExpMenuItemData>>& ExpMenuItems() {
    static std::vector<TWeak<TExpMenuItemData>> items;
    return items;
}

void TCustomData::Assign(const TPersistent* source) {
    const auto* const data = dynamic_cast<const TCustomData*>(source);
    if (!data) {
        TFreeCollection::Assign(source);
        return;
    }
    TFreeCollection::Assign(source);
    for (int i = 0; i < Count(); ++i) {
        Get(i)->Caption = data->Get(i)->Caption;
        Get(i)->DefaultCaption = data->Get(i)->DefaultCaption;
    }
}

// --- The root ---------------------------------------------------------------------------------

TActiveExperts* TExpData::ActiveExpertsObject() const {
    return &const_cast<TExpData*>(this)->ActiveExperts;
}
TExpMenuData* TExpData::MenuDataObject() const {
    return &const_cast<TExpData*>(this)->MenuData;
}
TCustomData* TExpData::CustomDataObject() const {
    return &const_cast<TExpData*>(this)->CustomData;
}

std::string TExpData::GetNodeName() {
    return LocaleStr(51120);
}

void TExpData::Assign(const TPersistent* source) {
    const auto* const data = dynamic_cast<const TExpData*>(source);
    if (!data) {
        TSpcObject::Assign(source);
        return;
    }
    ActiveExperts.Assign(&data->ActiveExperts);
    CustomData.Assign(&data->CustomData);
    MenuData.Assign(&data->MenuData);
    UnplacedProps = data->UnplacedProps;
}

void TExpData::DefineProperties(TFiler& filer) {
    TSpcObject::DefineProperties(filer);
    DefineKeyedCollection(filer, "ActiveExperts_", ActiveExperts, false);
    DefineKeyedCollection(filer, "MenuData_", MenuData, false);
    DefineKeyedCollection(filer, "CustomData_", CustomData, true);
}

namespace {

std::unique_ptr<TExpData>& SharedExpData() {
    static std::unique_ptr<TExpData> data;
    return data;
}

} // namespace

TExpData& ExpData() {
    if (!HasExpData()) throw EInvalidOperation("the package is not initialized");
    return *SharedExpData();
}

bool HasExpData() {
    return SharedExpData() != nullptr;
}

void RecreateExpData() {
    FreeExpData();
    SharedExpData() = std::make_unique<TExpData>();
}

void FreeExpData() {
    ExpMenuItems().clear();
    SharedExpData().reset();
}

void AddStoredData(TPersistent* obj, std::string_view name, std::string_view caption,
                   std::string_view localPropNames) {
    TExpData& data = ExpData();
    auto* const item = static_cast<TCustomDataItem*>(data.CustomData.Add(obj, name));
    item->Caption = item->DefaultCaption = caption.empty() ? name : caption;
    if (localPropNames.empty()) return;
    data.LocalNames.insert(0, std::string(localPropNames).append(LineBreak));
}

// --- The manager's settings -------------------------------------------------------------------

std::string TEditorFormData::GetNodeName() {
    return LocaleStr(51125);
}

void TEditorFormData::Assign(const TPersistent* source) {
    const auto* const data = dynamic_cast<const TEditorFormData*>(source);
    if (!data) {
        TSpcObject::Assign(source);
        return;
    }
    AutoSaveSetting = data->AutoSaveSetting;
    SaveSettingShortCut = data->SaveSettingShortCut;
    FSetting->Assign(data->FSetting.get());
}

TExpManagerData::TExpManagerData(TExpManager* manager) : FManager(manager) {
    SetErrorLogAllowed(true);
    SetMaxLogSize(50);
}

TExpManagerData::~TExpManagerData() {
    SetErrorLogAllowed(false);
}

void TExpManagerData::SetErrorLogAllowed(bool value) {
    if (value == FErrorLogAllowed) return;
    FErrorLogAllowed = value;
    if (!FManager) return;
    if (value)
        FManager->HookException();
    else
        FManager->UnHookException();
    ErrorLog().LogAllowed = value;
}

void TExpManagerData::SetMaxLogSize(std::uint32_t value) {
    FMaxLogSize = value;
    if (FManager) ErrorLog().LogLimit = value;
}

std::string TFormSetting::GetNodeName() {
    return LocaleStr(51124);
}

void TFormSetting::Assign(const TPersistent* source) {
    const auto* const setting = dynamic_cast<const TFormSetting*>(source);
    if (!setting) {
        TSpcObject::Assign(source);
        return;
    }
    AutoSavePlacement = setting->AutoSavePlacement;
    FormPlacement = setting->FormPlacement;
    SavePlacementShortCut = setting->SavePlacementShortCut;
}

} // namespace tarn
