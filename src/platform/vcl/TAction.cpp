#include "vcl/TAction.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo ActionProps[] = {
    Published<&TAction::Caption, &TAction::SetCaption>("Caption"),
    Published<&TAction::Checked, &TAction::SetChecked>("Checked", {.Default = false}),
    Published<&TAction::Enabled, &TAction::SetEnabled>("Enabled", {.Default = true}),
    Published<&TAction::Hint, &TAction::SetHint>("Hint"),
    Published<&TAction::ImageIndex, &TAction::SetImageIndex>("ImageIndex", {.Default = -1}),
    Published<&TAction::ShortCut, &TAction::SetShortCut>("ShortCut", {.Default = 0}),
    Published<&TAction::Visible, &TAction::SetVisible>("Visible", {.Default = true}),
};

} // namespace

constinit const TClassRecord TAction::ClassRecord{"TAction", &TComponent::ClassRecord,
                                                  CreateObject<TAction>, ActionProps};
constinit const TClassRecord TActionList::ClassRecord{"TActionList", &TComponent::ClassRecord,
                                                      CreateObject<TActionList>};
constinit const TClassRecord TImageList::ClassRecord{"TImageList", &TComponent::ClassRecord,
                                                     CreateObject<TImageList>};

void TActionState::Follow(const TActionState& before, const TActionState& after) {
    const auto follow = [&](auto field) {
        if (this->*field == before.*field) this->*field = after.*field;
    };
    follow(&TActionState::Caption);
    follow(&TActionState::Hint);
    follow(&TActionState::Checked);
    follow(&TActionState::Enabled);
    follow(&TActionState::Visible);
    follow(&TActionState::ImageIndex);
    follow(&TActionState::ShortCut);
}

bool RunClick(TObject& client, TNotifyEvent onClick, TAction* action) {
    if (onClick && !(action && onClick == action->OnExecute))
        onClick(&client);
    else if (action)
        action->Execute();
    else
        return false;
    return true;
}

// --- TAction ----------------------------------------------------------------------------------

TAction::~TAction() {
    SetActionList(nullptr);
    while (!FClients.empty()) {
        IActionClient* const client = FClients.back();
        FClients.pop_back();
        client->ActionGone();
    }
}

void TAction::SetActionList(TActionList* list) {
    if (list == FActionList) return;
    if (FActionList) std::exchange(FActionList, nullptr)->RemoveAction(this);
    FActionList = list;
    if (list) list->AddAction(this);
}

TComponent* TAction::GetParentComponent() const {
    return FActionList;
}

void TAction::SetParentComponent(TComponent* parent) {
    SetActionList(ClassCast<TActionList>(parent));
}

void TAction::Update() {
    if (OnUpdate)
        OnUpdate(this);
    else if (DisableIfNoHandler && !OnExecute)
        SetEnabled(false);
}

bool TAction::Execute() {
    Update();
    // The handler may free the action: it is copied first.
    const TNotifyEvent handler = OnExecute;
    if (!Enabled() || !handler) return false;
    handler(this);
    return true;
}

void TAction::RegisterClient(IActionClient& client) {
    FClients.push_back(&client);
}

void TAction::UnRegisterClient(IActionClient& client) {
    std::erase(FClients, &client);
}

void TAction::NotifyClients(const TActionState& before) {
    for (IActionClient* client : FClients) client->ActionChanged(before, FState);
}

// --- TActionList ------------------------------------------------------------------------------

TActionList::~TActionList() {
    while (!FActions.empty()) FActions.back()->SetActionList(nullptr);
}

TAction* TActionList::Actions(int index) const {
    if (index < 0 || index >= ActionCount()) throw EListError(Format(SListIndexError, {index}));
    return FActions[static_cast<std::size_t>(index)];
}

void TActionList::AddAction(TAction* action) {
    if (std::find(FActions.begin(), FActions.end(), action) != FActions.end()) return;
    FActions.push_back(action);
    action->SetActionList(this);
}

void TActionList::RemoveAction(TAction* action) {
    if (std::erase(FActions, action) > 0) action->SetActionList(nullptr);
}

void TActionList::GetChildren(const TGetChildProc& proc, const TComponent* root) const {
    for (TAction* action : FActions)
        if (action->Owner() == root) proc(*action);
}

void TActionList::SetChildOrder(TComponent& child, int order) {
    const auto from = std::find(FActions.begin(), FActions.end(), &child);
    if (from == FActions.end()) return;
    TAction* const action = *from;
    FActions.erase(from);
    FActions.insert(FActions.begin() + std::clamp(order, 0, ActionCount()), action);
}

bool TActionList::IsShortCut(TShortCut shortCut) {
    for (TAction* action : FActions)
        if (action->ShortCut() == shortCut) {
            action->Execute();
            return true;
        }
    return false;
}

} // namespace tarn
