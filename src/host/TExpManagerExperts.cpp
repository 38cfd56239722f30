// The manager's side of the experts' life cycle.

#include "TExpManager.h"
#include "qsDialogs.h"
#include "qsErrorLog.h"
#include "qsExpMng.h"
#include "qsLocale.h"
#include "rtl/SafeFile.h"
#include "vcl/Forms.h"

namespace tarn {
namespace {

/// Puts a name before the others; names are joined by CR LF, with none at the end.
void PrependName(std::string& names, std::string_view name) {
    if (!names.empty()) names.insert(0, LineBreak);
    names.insert(0, name);
}

} // namespace

void TExpManager::RegisterExpObject(TCustomExpert* expert, std::string_view name) {
    if (FExpObjects->IndexOf(expert) < 0) FExpObjects->Add(expert, name);
}

void TExpManager::CreateExpObjects() {
    ErrorLog().CreatedExperts.clear();
    FExpObjects->Clear();
    for (int i = 1; i <= ExpertSlotCount; ++i) {
        const TExpertSlot* const slot = ExpertSlot(i);
        if (!slot) continue;
        const TExpertInfo* const info = ExpData().ActiveExperts.FindExpert(slot->Name);
        if (!info || !info->Active) continue;
        std::unique_ptr<TCustomExpert> expert = slot->ExpClass.Create();
        RegisterExpObject(expert.get(), slot->Name);
        (void)expert.release(); // freed by DeleteExpObjects
        PrependName(ErrorLog().CreatedExperts, slot->Name);
    }
}

void TExpManager::ForEachExpert(const std::function<void(ICustomExpert&)>& visit) {
    for (int i = 0; FExpObjects && i < FExpObjects->Count(); ++i)
        if (TCustomExpert* const object = FExpObjects->Get(i).Expert.Get())
            if (auto* const expert = ObjectInterface<ICustomExpert>(*object)) visit(*expert);
}

TExpMenuItemData* TExpManager::GetItemData(std::string_view itemID) {
    TExpMenuData& menu = ExpData().MenuData;
    TSpcItem* item = menu.FindItemID(itemID);
    if (!item) item = menu.Add(itemID);
    return static_cast<TExpMenuItemData*>(item);
}

void TExpManager::InitExperts() {
    const auto getItemData = TGetItemData::Of<&TExpManager::GetItemData>(this);
    ForEachExpert([&](ICustomExpert& expert) { expert.Init(getItemData); });
    Init(getItemData);
    // What stands there now is the language's; a stored one is loaded over it.
    const TExpMenuData& menu = ExpData().MenuData;
    for (int i = 0; i < menu.Count(); ++i) menu.Get(i)->DefaultCaption = menu.Get(i)->Caption;
}

void TExpManager::LoadNotify(bool loaded) {
    ForEachExpert([&](ICustomExpert& expert) { expert.Load(loaded); });
}

void TExpManager::MenuNotify(TMenuItem* menuItem, TExpMenuItemData* itemData) {
    ForEachExpert([&](ICustomExpert& expert) { expert.MenuNotification(menuItem, itemData); });
    MenuNotification(menuItem, itemData);
}

void TExpManager::DeleteExpObjects() {
    ErrorLog().DeletedExperts.clear();
    if (!FExpObjects) return;
    DisconnectExperts();
    std::exception_ptr first;
    while (FExpObjects->Count() > 0) {
        // The entry goes first: nobody is to visit an expert that is about to go.
        const TExpObjectInfo info = FExpObjects->Get(FExpObjects->Count() - 1);
        FExpObjects->Delete(FExpObjects->Count() - 1);
        try {
            FreeObject(info.Expert.Get());
        } catch (...) {
            if (!first) first = std::current_exception();
        }
        PrependName(ErrorLog().DeletedExperts, info.Name);
    }
    if (first) std::rethrow_exception(first);
}

void TExpManager::RecreateExperts() {
    FState = msSettingUp;
    // The old object gives the exception handler back before the new one takes it.
    FreeData();
    CreateData();
    DeleteExpObjects();
    RecreateExpData();
    FillPresentList();
    StoreOwnData();
    LoadExpData();
    LocalizeEditor();
    CreateExpObjects();
    InitExperts();
    LocalizeEditor();
    FState = msRunning;
}

namespace {

/// The hourglass, for as long as the object lives.
class THourGlass {
public:
    THourGlass() { Screen()->SetCursor(crHourGlass); }
    THourGlass(const THourGlass&) = delete;
    THourGlass& operator=(const THourGlass&) = delete;
    ~THourGlass() { Screen()->SetCursor(crDefault); }
};

} // namespace

void TExpManager::DoRecreateExperts() {
    const THourGlass hourGlass;
    RecreateExperts();
    LoadAndNotify();
    DoApplySettings();
}

void TExpManager::LoadDefaultSettings(TObject*) {
    // The IDE may let the wizard go while the question stands.
    const TIntf<IOTAWizard> alive(this);
    if (!QueryDialog(LocaleStr(51106)) || FState == msDown) return;
    const THourGlass hourGlass;
    RemoveFile(SettingsFile());
    RecreateExperts();
    LoadNotify(false);
    DoApplySettings();
}

// --- The manager's own commands ---------------------------------------------------------------

void TExpManager::Init(TGetItemData getItemData) {
    TExpMenuItemData* const setting = getItemData("SettingItem");
    setting->Caption = LocaleStr(51049);
    setting->HaveLineBefore = true;
    TExpMenuItemData* const about = getItemData("AboutFormItem");
    about->Caption = LocaleStr(51061);
    about->ImageIndex = 50;
    about->OnExecute = TNotifyEvent::Of<&TExpManager::ShowAbout>(this);
}

void TExpManager::MenuNotification(TMenuItem* menuItem, TExpMenuItemData* itemData) {
    if (SameText(itemData->ItemID, "SettingItem")) CreateSettingSubMenu(menuItem);
}

void TExpManager::ShowAbout(TObject*) {
    ShowInfo("%s %s", {GetName(), FData->ExpertVersion});
}

} // namespace tarn
