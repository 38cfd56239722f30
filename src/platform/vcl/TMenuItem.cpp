#include "vcl/TMenuItem.h"

#include "rtl/SysUtils.h"
#include "vcl/Forms.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo MenuItemProps[] = {
    Published<&TMenuItem::Caption, &TMenuItem::SetCaption>("Caption"),
    Published<&TMenuItem::Checked, &TMenuItem::SetChecked>("Checked", {.Default = false}),
    Published<&TMenuItem::Enabled, &TMenuItem::SetEnabled>("Enabled", {.Default = true}),
    Published<&TMenuItem::GroupIndex, &TMenuItem::SetGroupIndex>("GroupIndex", {.Default = 0}),
    Published<&TMenuItem::Hint, &TMenuItem::SetHint>("Hint"),
    Published<&TMenuItem::ImageIndex, &TMenuItem::SetImageIndex>("ImageIndex", {.Default = -1}),
    Published<&TMenuItem::RadioItem, &TMenuItem::SetRadioItem>("RadioItem", {.Default = false}),
    Published<&TMenuItem::ShortCut, &TMenuItem::SetShortCut>("ShortCut", {.Default = 0}),
    Published<&TMenuItem::Visible, &TMenuItem::SetVisible>("Visible", {.Default = true}),
    Published<&TMenuItem::AutoHotkeys, &TMenuItem::SetAutoHotkeys>("AutoHotkeys",
                                                                   {.Default = maParent}),
};

} // namespace

constinit const TClassRecord TMenuItem::ClassRecord{"TMenuItem", &TComponent::ClassRecord,
                                                    CreateObject<TMenuItem>, MenuItemProps};
constinit const TClassRecord TMenu::ClassRecord{"TMenu", &TComponent::ClassRecord};
constinit const TClassRecord TMainMenu::ClassRecord{"TMainMenu", &TMenu::ClassRecord,
                                                    CreateObject<TMainMenu>};
constinit const TClassRecord TPopupMenu::ClassRecord{"TPopupMenu", &TMenu::ClassRecord,
                                                     CreateObject<TPopupMenu>};

std::string StripHotkey(std::string_view caption) {
    std::string result;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&' && ++i == caption.size()) break;
        result += caption[i];
    }
    return result;
}

// --- TMenuItem --------------------------------------------------------------------------------

TMenuItem::~TMenuItem() {
    if (FParent) FParent->Remove(this);
    while (!FItems.empty()) delete FItems.back();
    SetAction(nullptr);
}

void TMenuItem::SetCaption(std::string_view value) {
    FState.Caption = value;
    MenuChanged();
}

void TMenuItem::SetEnabled(bool value) {
    FState.Enabled = value;
    MenuChanged();
}

void TMenuItem::SetVisible(bool value) {
    FState.Visible = value;
    MenuChanged();
}

void TMenuItem::SetChecked(bool value) {
    FState.Checked = value;
    if (value && FRadioItem && FParent)
        for (TMenuItem* item : FParent->FItems)
            if (item != this && item->FRadioItem && item->FGroupIndex == FGroupIndex)
                item->FState.Checked = false;
    MenuChanged();
}

void TMenuItem::SetRadioItem(bool value) {
    FRadioItem = value;
    SetChecked(Checked());
}

void TMenuItem::SetGroupIndex(int value) {
    FGroupIndex = value;
    SetChecked(Checked());
}

void TMenuItem::SetImageIndex(int value) {
    FState.ImageIndex = value;
    MenuChanged();
}

void TMenuItem::SetShortCut(TShortCut value) {
    FState.ShortCut = value;
    MenuChanged();
}

void TMenuItem::SetAction(TAction* action) {
    if (FAction) FAction->UnRegisterClient(*this);
    FAction = action;
    if (!action) return;
    action->RegisterClient(*this);
    FState = action->State();
    SetChecked(Checked());
}

void TMenuItem::ActionChanged(const TActionState& before, const TActionState& after) {
    const bool checked = FState.Checked;
    FState.Follow(before, after);
    if (FState.Checked != checked)
        SetChecked(FState.Checked);
    else
        MenuChanged();
}

TMenuItem* TMenuItem::Items(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return FItems[static_cast<std::size_t>(index)];
}

int TMenuItem::IndexOf(const TMenuItem* item) const {
    const auto found = std::find(FItems.begin(), FItems.end(), item);
    return found == FItems.end() ? -1 : static_cast<int>(found - FItems.begin());
}

TMenuItem* TMenuItem::Find(std::string_view caption) const {
    const std::string wanted = StripHotkey(caption);
    if (wanted.empty()) return nullptr;
    for (TMenuItem* item : FItems)
        if (AnsiSameText(StripHotkey(item->Caption()), wanted)) return item;
    return nullptr;
}

void TMenuItem::Insert(int index, TMenuItem* item) {
    if (item->FParent)
        throw EMenuError(Format("menu item %s is in a menu already", {item->Caption()}));
    for (const TMenuItem* above = this; above; above = above->FParent)
        if (above == item) throw EMenuError("a menu item cannot hold itself");
    if (index < 0 || index > Count()) throw EListError(Format(SListIndexError, {index}));
    FItems.insert(FItems.begin() + index, item);
    item->FParent = this;
    MenuChanged();
}

void TMenuItem::Remove(TMenuItem* item) {
    const int index = IndexOf(item);
    if (index < 0) throw EMenuError("the menu item is not in this menu");
    FItems.erase(FItems.begin() + index);
    item->FParent = nullptr;
    MenuChanged();
}

TComponent* TMenuItem::GetParentComponent() const {
    if (FParent && FParent->FMenu) return FParent->FMenu;
    return FParent;
}

void TMenuItem::SetParentComponent(TComponent* parent) {
    if (FParent) FParent->Remove(this);
    if (auto* const item = ClassCast<TMenuItem>(parent)) item->Add(this);
    if (auto* const menu = ClassCast<TMenu>(parent)) menu->Items()->Add(this);
}

void TMenuItem::GetChildren(const TGetChildProc& proc, const TComponent*) const {
    for (TMenuItem* item : FItems) proc(*item);
}

void TMenuItem::SetChildOrder(TComponent& child, int order) {
    auto* const item = ClassCast<TMenuItem>(&child);
    if (!item || IndexOf(item) < 0) return;
    Remove(item);
    Insert(std::clamp(order, 0, Count()), item);
}

void TMenuItem::Click() {
    if (Enabled()) RunClick(*this, OnClick, FAction);
}

void TMenuItem::InitiateAction() {
    if (FAction) FAction->Update();
}

void TMenuItem::MenuChanged() {
    TMenuItem* root = this;
    while (root->FParent) root = root->FParent;
    if (!root->FMenu) return;
    if (IMenuPeer* const peer = root->FMenu->ShownBy()) peer->MenuChanged(*root->FMenu);
}

TMenuItem* NewLine() {
    auto* const line = new TMenuItem;
    line->SetCaption("-");
    return line;
}

// --- TMenu ------------------------------------------------------------------------------------

TMenu::TMenu(TComponent* owner) : TComponent(owner) {
    FRoot.FMenu = this;
}

TMenu::~TMenu() {
    // The front end is not told about the end of every item.
    FRoot.FMenu = nullptr;
}

namespace {

TMenuItem* FindBelow(TMenuItem& parent, TShortCut shortCut) {
    for (int i = 0; i < parent.Count(); ++i) {
        TMenuItem* const item = parent.Items(i);
        if (item->ShortCut() == shortCut) return item;
        if (TMenuItem* const below = FindBelow(*item, shortCut)) return below;
    }
    return nullptr;
}

} // namespace

void TMenu::GetChildren(const TGetChildProc& proc, const TComponent* root) const {
    FRoot.GetChildren(proc, root);
}

void TMenu::SetChildOrder(TComponent& child, int order) {
    FRoot.SetChildOrder(child, order);
}

IMenuPeer* TMenu::ShownBy() const {
    return Peer || !Screen() ? Peer : Screen()->MenuPeer;
}

TMenuItem* TMenu::FindItem(TShortCut shortCut) {
    return shortCut == 0 ? nullptr : FindBelow(FRoot, shortCut);
}

bool TMenu::IsShortCut(TShortCut shortCut) {
    TMenuItem* const item = FindItem(shortCut);
    if (!item) return false;
    item->InitiateAction();
    item->Click();
    return true;
}

void TMenu::InitiateActions() {
    const auto update = [](auto& self, TMenuItem& item) -> void {
        item.InitiateAction();
        for (int i = 0; i < item.Count(); ++i) self(self, *item.Items(i));
    };
    update(update, FRoot);
}

void TPopupMenu::Popup(TComponent* component) {
    const TWeak<TPopupMenu> alive(this);
    PopupComponent = component;
    if (const TNotifyEvent handler = OnPopup) handler(this);
    if (!alive) return;
    InitiateActions();
    if (IMenuPeer* const peer = alive ? ShownBy() : nullptr) peer->Popup(*this);
}

} // namespace tarn
