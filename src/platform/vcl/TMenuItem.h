#pragma once

#include "vcl/TAction.h"

namespace tarn {

class TMenu;
class TPopupMenu;

enum TMenuAutoFlag : std::uint8_t { maAutomatic, maManual, maParent };
inline constexpr std::string_view MenuAutoFlagNames[] = {"maAutomatic", "maManual", "maParent"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TMenuAutoFlag> = EnumType("TMenuAutoFlag", MenuAutoFlagNames);

/// The caption without its "&" marks; "&&" stands for one "&".
std::string StripHotkey(std::string_view caption);

/// An item of a menu, and the menu below it. An item frees its subtree, and freeing an item takes
/// it out of its parent.
class TMenuItem : public TComponent, private IActionClient {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TMenuItem(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TMenuItem() override;

    const std::string& Caption() const { return FState.Caption; }
    void SetCaption(std::string_view value);
    bool Enabled() const { return FState.Enabled; }
    void SetEnabled(bool value);
    bool Visible() const { return FState.Visible; }
    void SetVisible(bool value);
    bool Checked() const { return FState.Checked; }
    /// Checking a radio item takes the check from its neighbours of the same group.
    void SetChecked(bool value);
    bool RadioItem() const { return FRadioItem; }
    void SetRadioItem(bool value);
    int GroupIndex() const { return FGroupIndex; }
    void SetGroupIndex(int value);
    int ImageIndex() const { return FState.ImageIndex; }
    void SetImageIndex(int value);
    TShortCut ShortCut() const { return FState.ShortCut; }
    void SetShortCut(TShortCut value);
    const std::string& Hint() const { return FState.Hint; }
    void SetHint(std::string_view value) { FState.Hint = value; }
    /// Whether a front end gives the children's captions hotkeys of its own.
    TMenuAutoFlag AutoHotkeys() const { return FAutoHotkeys; }
    void SetAutoHotkeys(TMenuAutoFlag value) { FAutoHotkeys = value; }

    /// The action that the item shows and runs. Attaching it copies the action's caption, shortcut
    /// and the rest; afterwards the item follows their changes.
    TAction* Action() const { return FAction; }
    void SetAction(TAction* action);

    TNotifyEvent OnClick;

    TMenuItem* Parent() const { return FParent; }
    /// The item above; of the items of a menu's first level the menu.
    TComponent* GetParentComponent() const override;
    void SetParentComponent(TComponent* parent) override;
    int Count() const { return static_cast<int>(FItems.size()); }
    TMenuItem* Items(int index) const; ///< raises EListError outside the list
    /// The item's place in its parent, -1 without one.
    int MenuIndex() const { return FParent ? FParent->IndexOf(this) : -1; }
    int IndexOf(const TMenuItem* item) const;
    /// The first direct item with that caption, without case and without "&" on both sides; null
    /// when there is none, or when the caption is empty.
    TMenuItem* Find(std::string_view caption) const;

    /// The parent takes the item over. Raises EMenuError for an item that is in a menu already,
    /// EListError for a place outside 0..Count.
    void Insert(int index, TMenuItem* item);
    void Add(TMenuItem* item) { Insert(Count(), item); }
    /// Gives the item back to the caller; raises EMenuError when it is not here.
    void Remove(TMenuItem* item);

    bool IsLine() const { return FState.Caption == "-"; }

    /// Runs the item as a user's click does: its own handler when it has one, else its action;
    /// nothing while it is disabled.
    virtual void Click();
    /// Brings the item's action up to date, as a menu does before it is shown.
    void InitiateAction();

protected:
    /// Something that is shown has changed; a menu hands it to its front end.
    void MenuChanged();
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override;
    void SetChildOrder(TComponent& child, int order) override;

private:
    friend class TMenu;
    void ActionChanged(const TActionState& before, const TActionState& after) override;
    void ActionGone() override { FAction = nullptr; }

    TActionState FState;
    TAction* FAction = nullptr;
    TMenuItem* FParent = nullptr;
    TMenu* FMenu = nullptr; ///< set on the root item of a menu
    std::vector<TMenuItem*> FItems;
    bool FRadioItem = false;
    int FGroupIndex = 0;
    TMenuAutoFlag FAutoHotkeys = maParent;
};

/// A separator, without owner and name.
TMenuItem* NewLine();

/// What shows a menu to a user; a front end fills the slot.
class IMenuPeer {
public:
    virtual void MenuChanged(TMenu& menu) = 0;
    /// The menu is to be shown below its PopupComponent, which may be null.
    virtual void Popup(TPopupMenu&) {}

protected:
    ~IMenuPeer() = default;
};

/// A menu: the tree of items below its root.
class TMenu : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TMenu(TComponent* owner = nullptr);
    ~TMenu() override;

    TMenuItem* Items() { return &FRoot; }
    TImageList* Images = nullptr;
    IMenuPeer* Peer = nullptr; ///< null: that of the screen, see TScreen
    IMenuPeer* ShownBy() const;

    /// The first item of that shortcut, depth first; null when none.
    TMenuItem* FindItem(TShortCut shortCut);
    /// Updates the item of that shortcut and clicks it; true when there is such an item, so that
    /// the key goes no further even when the item is disabled.
    bool IsShortCut(TShortCut shortCut);
    /// Brings the actions of all items up to date.
    void InitiateActions();

protected:
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override;
    void SetChildOrder(TComponent& child, int order) override;

private:
    TMenuItem FRoot;
};

/// The menu bar of a form.
class TMainMenu : public TMenu {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TMenu::TMenu;
};

/// A menu that is shown when asked for, such as that of a drop-down button.
class TPopupMenu : public TMenu {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TMenu::TMenu;

    /// Shows the menu for that component: OnPopup, where the items may still be changed, then their
    /// actions' updates, then the front end.
    void Popup(TComponent* component);
    TWeak<TComponent> PopupComponent; ///< of the last Popup

    TNotifyEvent OnPopup;
};

} // namespace tarn
