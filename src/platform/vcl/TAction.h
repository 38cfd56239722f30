#pragma once

#include "vcl/ShortCuts.h"
#include "vcl/TComponent.h"

namespace tarn {

class TAction;
class TActionList;

/// What an action says to the menu items and controls that show it.
struct TActionState {
    std::string Caption;
    std::string Hint;
    bool Checked = false;
    bool Enabled = true;
    bool Visible = true;
    int ImageIndex = -1;
    TShortCut ShortCut = 0;

    /// Takes over each value of the action that changed, where this one had the value before.
    void Follow(const TActionState& before, const TActionState& after);
};

/// A menu item or control that shows an action and follows its changes.
class IActionClient {
public:
    /// Told after each change; a client follows a value only while its own still equals the value
    /// before.
    virtual void ActionChanged(const TActionState& before, const TActionState& after) = 0;
    /// The action is being freed.
    virtual void ActionGone() = 0;

protected:
    ~IActionClient() = default;
};

/// A command: what it is called, whether it can run now, and what it runs.
class TAction : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TAction(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TAction() override;

    const TActionState& State() const { return FState; }
    const std::string& Caption() const { return FState.Caption; }
    void SetCaption(std::string_view value) { Change(&TActionState::Caption, std::string(value)); }
    const std::string& Hint() const { return FState.Hint; }
    void SetHint(std::string_view value) { Change(&TActionState::Hint, std::string(value)); }
    bool Checked() const { return FState.Checked; }
    void SetChecked(bool value) { Change(&TActionState::Checked, value); }
    bool Enabled() const { return FState.Enabled; }
    void SetEnabled(bool value) { Change(&TActionState::Enabled, value); }
    bool Visible() const { return FState.Visible; }
    void SetVisible(bool value) { Change(&TActionState::Visible, value); }
    int ImageIndex() const { return FState.ImageIndex; }
    void SetImageIndex(int value) { Change(&TActionState::ImageIndex, value); }
    TShortCut ShortCut() const { return FState.ShortCut; }
    void SetShortCut(TShortCut value) { Change(&TActionState::ShortCut, value); }

    TActionList* ActionList() const { return FActionList; }
    void SetActionList(TActionList* list);
    TComponent* GetParentComponent() const override;
    void SetParentComponent(TComponent* parent) override;

    /// Brings the action up to date: OnUpdate, or, without one, disabled while nothing would run.
    void Update();
    /// Updates the action and, when it is enabled, runs OnExecute with the action as the sender;
    /// false when nothing ran.
    bool Execute();

    TNotifyEvent OnExecute;
    TNotifyEvent OnUpdate;
    bool DisableIfNoHandler = true;

    void RegisterClient(IActionClient& client);
    void UnRegisterClient(IActionClient& client);

private:
    template <class V> void Change(V TActionState::*field, V value) {
        if (FState.*field == value) return;
        const TActionState before = FState;
        FState.*field = std::move(value);
        NotifyClients(before);
    }
    void NotifyClients(const TActionState& before);

    TActionState FState;
    TActionList* FActionList = nullptr;
    std::vector<IActionClient*> FClients;
};

/// Runs what a click on a client runs: its own handler, else its action. A handler that is the
/// action's own goes through the action. The client may be freed meanwhile.
/// \return false when the client has neither
bool RunClick(TObject& client, TNotifyEvent onClick, TAction* action);

/// The actions of a form, in the order in which they were put in. The list does not own them.
class TActionList : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TActionList(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TActionList() override;

    int ActionCount() const { return static_cast<int>(FActions.size()); }
    TAction* Actions(int index) const; ///< raises EListError outside the list
    void AddAction(TAction* action);
    void RemoveAction(TAction* action);

    /// Runs the first action of that shortcut; true when there is one, whether it ran or is
    /// disabled.
    bool IsShortCut(TShortCut shortCut);

protected:
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override;
    void SetChildOrder(TComponent& child, int order) override;

private:
    std::vector<TAction*> FActions;
};

/// Pictures by index. Only their number is known here; a front end brings the pictures.
class TImageList : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TImageList(TComponent* owner = nullptr) : TComponent(owner) {}
    int Count = 0;
};

} // namespace tarn
