#pragma once

#include "os/OS.h"
#include "vcl/TComponent.h"

namespace tarn {

class TControl;

inline constexpr std::uint32_t WM_SETREDRAW = 11;

// The flags of a redraw call.
inline constexpr std::uint32_t RDW_INVALIDATE = 1, RDW_ALLCHILDREN = 128, RDW_UPDATENOW = 256;

/// What shows a control to a user; a front end fills the slot of each control that it mirrors.
class IControlPeer {
public:
    virtual void Invalidate(TControl& control) = 0;
    /// \param flags RDW_... values
    virtual void Redraw(TControl& control, std::uint32_t flags) = 0;
    /// Text, bounds, visibility or another state of the control has changed.
    virtual void StateChanged(TControl& control) = 0;
    /// Painting of the control is held back or goes on.
    virtual void SetRedraw(TControl& control, bool on) = 0;

protected:
    ~IControlPeer() = default;
};

/// The place of a control in its parent, in pixels.
struct TRect {
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    friend bool operator==(const TRect&, const TRect&) = default;
};

/// A visible component with a window of its own and child controls.
class TControl : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TControl(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TControl() override;

    TControl* Parent() const { return FParent; }
    void SetParent(TControl* parent);
    int ControlCount() const { return static_cast<int>(FControls.size()); }
    TControl* Controls(int index) const; ///< raises EListError outside the list

    TComponent* GetParentComponent() const override { return FParent; }
    /// Nothing for a component that is no control.
    void SetParentComponent(TComponent* parent) override;

    const std::string& Text() const { return FText; }
    void SetText(std::string_view value);
    bool Visible() const { return FVisible; }
    virtual void SetVisible(bool value);
    bool Enabled() const { return FEnabled; }
    void SetEnabled(bool value);
    const TRect& BoundsRect() const { return FBounds; }
    void SetBoundsRect(const TRect& value);
    int Left() const { return FBounds.Left; }
    void SetLeft(int value) { SetBound(&TRect::Left, value); }
    int Top() const { return FBounds.Top; }
    void SetTop(int value) { SetBound(&TRect::Top, value); }
    int Width() const { return FBounds.Width; }
    void SetWidth(int value) { SetBound(&TRect::Width, value); }
    int Height() const { return FBounds.Height; }
    void SetHeight(int value) { SetBound(&TRect::Height, value); }

    /// Brings the control's action up to date, when it has one.
    virtual void InitiateAction() {}

    /// The control's window, made on first use.
    HWND Handle();
    bool HandleAllocated() const { return FHandle != 0; }

    void Invalidate();
    void RedrawWindow(std::uint32_t flags);

    IControlPeer* Peer = nullptr;

protected:
    virtual void WndProc(TMessage& message);
    void StateChanged();
    /// Places the child controls; called when one has come, gone, or been shown or hidden.
    virtual void AlignControls() {}
    /// Has the parent place its controls anew.
    void RequestAlign();
    /// The controls first, in their order, then what TComponent knows.
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override;
    void SetChildOrder(TComponent& child, int order) override;

private:
    void SetBound(int TRect::*bound, int value);
    void LeaveParent();

    TControl* FParent = nullptr;
    std::vector<TControl*> FControls;
    std::string FText;
    TRect FBounds;
    bool FVisible = true;
    bool FEnabled = true;
    HWND FHandle = 0;
};

} // namespace tarn
