// The pack's menu: building it, tearing it down and dispatching its commands.

#include "TExpManager.h"
#include "TFinally.h"
#include "qsErrorLog.h"
#include "qsExpMng.h"
#include "qsLocale.h"
#include "vcl/Forms.h"

namespace tarn {
namespace {

/// Where the menu goes: a place among the items of one menu.
struct TMenuPlace {
    TMenuItem* Root;
    int Index = -1; ///< -1 when the search text matches nothing
};

/// The item that the search text names: on the top level, or else a child in the first top-level
/// menu that has one.
TMenuPlace FindPlace(TMenuItem* root, std::string_view searchText) {
    if (const TMenuItem* const found = root->Find(searchText)) return {root, root->IndexOf(found)};
    for (int i = 0; i < root->Count(); ++i) {
        TMenuItem* const top = root->Items(i);
        if (const TMenuItem* const found = top->Find(searchText)) return {top, top->IndexOf(found)};
    }
    return {root, -1};
}

} // namespace

TActionList* TExpManager::IDEActionList() {
    const auto services = IDEService<INTAServices>();
    return services ? services->GetActionList() : nullptr;
}

// --- Building ---------------------------------------------------------------------------------

void TExpManager::CreateExpertMenu() {
    // However it comes to be built again, there is one menu.
    DeleteExpertMenu();
    AddTopMMenuItem();
    AddMMenuItems();
}

void TExpManager::AddTopMMenuItem() {
    const auto services = IDEService<INTAServices>();
    TMainMenu* const mainMenu = services ? services->GetMainMenu() : nullptr;
    if (!mainMenu || !services->GetActionList()) return;

    TMenuPlace place = FindPlace(mainMenu->Items(), FData->MainMenuSearchItem);
    const bool found = place.Index >= 0;
    if (!found) place.Index = std::max(place.Root->Count() - 1, 0);
    const bool before = !found || FData->InsertMenuBeforeItem;

    FActions.emplace();
    FSettingActions.emplace();
    FLanguageActions.emplace();
    auto* const top = new TExpMenuItem;
    FTopItem = top;
    top->SetName("qsTarnExpMenu");
    top->SetCaption("T&arnExperts");
    top->OnClick = TNotifyEvent::Of<&TExpManager::ExpMenuClick>(this);
    place.Root->Insert(before ? place.Index : place.Index + 1, top);

    if (found && FData->MenuHaveLineBefore) {
        FLineBeforeItem = NewLine();
        place.Root->Insert(top->MenuIndex(), FLineBeforeItem.Get());
    }
    if (found && FData->MenuHaveLineAfter) {
        FLineAfterItem = NewLine();
        place.Root->Insert(top->MenuIndex() + 1, FLineAfterItem.Get());
    }
}

void TExpManager::AddMMenuItems() {
    TActionList* const actionList = IDEActionList();
    if (!FTopItem || !FActions || !actionList) return;
    FItemCounter = 1;
    TExpMenuData& menu = ExpData().MenuData;
    // A command that an expert adds while it is told about another waits for the next build.
    const int count = menu.Count();
    FExecProcs.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        TExpMenuItemData* const data = menu.Get(i);
        if (data->HaveLineBefore) {
            auto* const line = new TExpMenuItem;
            line->SetCaption("-");
            FTopItem->Add(line);
        }
        TAction* const action = NewAction(data->Caption, actionList, *FActions);
        action->SetShortCut(TextToShortCut(data->ShortCutText));
        action->OnUpdate = data->OnUpdate;
        FExecProcs[static_cast<std::size_t>(i)] = {action, data->OnExecute};

        // The log or the keyboard services may fail before the menu has it.
        auto owned = std::make_unique<TExpMenuItem>();
        TExpMenuItem* const item = owned.get();
        NameItem(*item);
        item->ItemID = data->ItemID;
        item->SetAction(action);
        ReportDisputedKey(*data, action->ShortCut());
        FKeyBind.AddKey(item, action->ShortCut());
        item->SetImageIndex(data->ImageIndex);
        FTopItem->Add(owned.release());
        MenuNotify(item, data);
    }
}

/// Has the log name a command whose key one before has already, once. In the editor and in the menu
/// the first one has it.
void TExpManager::ReportDisputedKey(const TExpMenuItemData& data, TShortCut key) {
    if (key == 0) return;
    for (int i = 0; i < FTopItem->Count(); ++i) {
        const auto* const other = ClassCast<TExpMenuItem>(FTopItem->Items(i));
        if (!other || other->ShortCut() != key) continue;
        const std::string dispute = Format("the commands %s and %s have one key, %s",
                                           {other->ItemID, data.ItemID, ShortCutToText(key)});
        if (FDisputes.insert(dispute).second) WriteLogEntry(this, Exception(dispute));
        return;
    }
}

void TExpManager::NameItem(TMenuItem& item) {
    item.SetName("qsTarnExpMenuItem" + IntToStr(FItemCounter++));
}

TAction* TExpManager::NewAction(std::string_view caption, TActionList* actionList,
                                TActions& actions) {
    auto* const action = new TAction;
    actions.emplace_back(action);
    action->SetCaption(caption);
    action->OnExecute = TNotifyEvent::Of<&TExpManager::CommonExpertExecProc>(this);
    action->SetActionList(actionList);
    return action;
}

TExpMenuItem* TExpManager::CreateNewItem(std::string_view caption, TNotifyEvent proc,
                                         TMenuItem* parent, TActionList* actionList,
                                         TActions& actions) {
    auto* const item = new TExpMenuItem;
    if (proc) {
        TAction* const action = NewAction(caption, actionList, actions);
        FExecProcs.push_back({action, proc});
        item->SetAction(action);
    } else
        item->SetCaption(caption);
    NameItem(*item);
    item->SetRadioItem(true);
    parent->Add(item);
    return item;
}

void TExpManager::CreateSettingSubMenu(TMenuItem* item) {
    TActionList* const list = IDEActionList();
    if (!list || !item || !FSettingActions) return;
    ClearItems(item, *FSettingActions);
    item->SetAutoHotkeys(maManual);
    CreateNewItem(LocaleStr(51050), TNotifyEvent::Of<&TExpManager::EditSettings2>(this), item, list,
                  *FSettingActions)
        ->SetImageIndex(36);
    CreateNewItem(LocaleStr(51051), TNotifyEvent::Of<&TExpManager::LoadDefaultSettings>(this), item,
                  list, *FSettingActions);
    item->Add(NewLine());
    FLanguageItem = CreateNewItem(LocaleStr(50500), {}, item, list, *FSettingActions);
    CreateLangSubMenu(FLanguageItem.Get());
}

// --- Tearing down -----------------------------------------------------------------------------

void TExpManager::DeleteExpertMenu() {
    // The bindings go before the items that they click. Whatever the IDE says to that, none of the
    // items stays: their handlers are about to end.
    const TFinally items([this] { DeleteMenuItems(); });
    FKeyBind.Clear();
}

void TExpManager::DeleteMenuItems() {
    for (TWeak<TMenuItem>* item : {&FTopItem, &FLineBeforeItem, &FLineAfterItem})
        delete item->Get();
    for (std::optional<TActions>* list : {&FSettingActions, &FLanguageActions, &FActions}) {
        if (*list) FreeActions(**list);
        list->reset();
    }
}

void TExpManager::FreeActions(TActions& actions) {
    for (const TWeak<TAction>& action : actions) delete action.Get();
    actions.clear();
}

void TExpManager::ClearItems(TMenuItem* item, TActions& actions) {
    for (int i = item->Count() - 1; i >= 0; --i) delete item->Items(i);
    FreeActions(actions);
}

void TExpManager::DisconnectExperts() {
    // The menu outlives the experts until it is rebuilt: its commands run nothing meanwhile, but
    // for the manager's own.
    const auto foreign = [this](const TNotifyEvent& event) { return event.Data() != this; };
    for (TExecProc& entry : FExecProcs)
        if (foreign(entry.Proc)) entry.Proc = {};
    for (const std::optional<TActions>* list : {&FActions, &FSettingActions, &FLanguageActions})
        if (*list)
            for (const TWeak<TAction>& action : **list)
                if (action && foreign(action->OnUpdate)) action->OnUpdate = {};
    const auto disconnect = [&](auto& self, TMenuItem& item) -> void {
        if (auto* const own = ClassCast<TExpMenuItem>(&item)) own->OnMenuOpen = {};
        if (foreign(item.OnClick)) item.OnClick = {};
        for (int i = 0; i < item.Count(); ++i) self(self, *item.Items(i));
    };
    if (FTopItem) disconnect(disconnect, *FTopItem);
    if (!HasExpData()) return;
    // A menu that is built before the new experts have set their handlers has none.
    const TExpMenuData& menu = ExpData().MenuData;
    for (int i = 0; i < menu.Count(); ++i)
        for (TNotifyEvent* event : {&menu.Get(i)->OnExecute, &menu.Get(i)->OnUpdate})
            if (foreign(*event)) *event = {};
}

// --- Rebuilding -------------------------------------------------------------------------------

void TExpManager::DoApplySettings() {
    Post(CM_APPLYSETTINGS);
}

/// Marks a rebuild. At its end, whatever happens, the keyboard layout is given back, and a rebuild
/// that was asked for meanwhile is posted.
class TExpManager::TRebuildGuard {
public:
    explicit TRebuildGuard(TExpManager& manager) : FManager(manager) {
        FManager.FRebuilding = true;
        FManager.SetEngLayout();
    }
    TRebuildGuard(const TRebuildGuard&) = delete;
    TRebuildGuard& operator=(const TRebuildGuard&) = delete;
    ~TRebuildGuard() {
        FManager.FRebuilding = false;
        FManager.SetActiveLayout();
        if (std::exchange(FManager.FRebuildAgain, false)) FManager.DoApplySettings();
    }

private:
    TExpManager& FManager;
};

void TExpManager::BuildMenu() {
    // A rebuild that is under way makes the menu anyway.
    if (FRebuilding) return;
    const TRebuildGuard guard(*this);
    CreateExpertMenu();
}

void TExpManager::ApplySettings() {
    if (FRebuilding) {
        FRebuildAgain = true;
        return;
    }
    const TRebuildGuard guard(*this);
    DeleteExpertMenu();
    Application()->ProcessMessages();
    // One of the messages may have ended the pack.
    if (FState == msDown) return;
    // A restore that was posted before may just have been handled.
    if (OS().GetKeyboardLayout() != LayoutUSEnglish) SetEngLayout();
    CreateExpertMenu();
    Application()->ProcessMessages();
}

// --- Running ----------------------------------------------------------------------------------

void TExpManager::ExpMenuClick(TObject* sender) {
    if (!FLayoutPending) SetEngLayout();
    // The layout is owed to the next change of the active form, whatever a handler raises.
    const TFinally pending([this] { FLayoutPending = true; });
    if (auto* const item = ClassCast<TMenuItem>(sender))
        for (int i = item->Count() - 1; i >= 0; --i)
            if (auto* const child = ClassCast<TExpMenuItem>(item->Items(i));
                child && child->OnMenuOpen)
                child->OnMenuOpen(child);
}

void TExpManager::CommonExpertExecProc(TObject* sender) {
    const TAction* action = ClassCast<TAction>(sender);
    if (const auto* const item = ClassCast<TMenuItem>(sender)) action = item->Action();
    if (const TNotifyEvent proc = FindExecProc(action)) proc(sender);
}

TNotifyEvent TExpManager::FindExecProc(const TAction* action) const {
    if (action)
        for (const TExecProc& entry : FExecProcs)
            if (entry.Action == action) return entry.Proc;
    return {};
}

void TExpManager::PrivateExpertExecProc(TObject* sender, TNotifyEvent proc) {
    if (proc) proc(sender);
}

} // namespace tarn
