#pragma once

#include "os/OS.h"
#include "vcl/ShortCuts.h"
#include "vcl/TComponent.h"
#include "vcl/TFont.h"

namespace tarn {

class TControl;
class TForm;
class TPopupMenu;

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
    /// The control is being freed: it is known by its address alone.
    virtual void Gone(TControl&) {}

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

/// Where a control stands in its parent: at its own place, along a side, or in what the sides
/// leave.
enum TAlign : std::uint8_t { alNone, alTop, alBottom, alLeft, alRight, alClient };
inline constexpr std::string_view AlignNames[] = {"alNone", "alTop",   "alBottom",
                                                  "alLeft", "alRight", "alClient"};
template <> inline constexpr TTypeInfo TypeInfoOf<TAlign> = EnumType("TAlign", AlignNames);

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

    virtual const std::string& Text() const { return FText; }
    virtual void SetText(std::string_view value);
    bool Visible() const { return FVisible; }
    virtual void SetVisible(bool value);
    bool Enabled() const { return FEnabled; }
    void SetEnabled(bool value);
    const TRect& BoundsRect() const { return FBounds; }
    void SetBoundsRect(const TRect& value);
    /// No place makes the control smaller than that, in pixels. One that is grows at once.
    void SetMinSize(int width, int height);
    int Left() const { return FBounds.Left; }
    void SetLeft(int value) { SetBound(&TRect::Left, value); }
    int Top() const { return FBounds.Top; }
    void SetTop(int value) { SetBound(&TRect::Top, value); }
    int Width() const { return FBounds.Width; }
    void SetWidth(int value) { SetBound(&TRect::Width, value); }
    int Height() const { return FBounds.Height; }
    void SetHeight(int value) { SetBound(&TRect::Height, value); }

    /// A control along a side keeps its height, or width, and takes the rest from its parent: first
    /// those at the top and the bottom, then left and right, each side's first control outermost.
    TAlign Align() const { return FAlign; }
    void SetAlign(TAlign value);

    /// What a front end writes the control's text with, made when it is first asked for.
    TFont& Font() { return *FontObject(); }
    TFont* FontObject() const; ///< published as "Font", stored once it was asked for
    bool HasFont() const { return FFont != nullptr; }
    /// The font to measure texts with: the control's own, or else the system's.
    const TFont& MeasuredFont() const;
    /// The colour of the control's surface; clDefault is what a front end gives its kind.
    TColor Color() const { return FColor; }
    void SetColor(TColor value);
    /// What a front end shows while the mouse rests on the control.
    const std::string& Hint() const { return FHint; }
    void SetHint(std::string_view value);

    /// The menu that a front end shows for a click of the second mouse button.
    TPopupMenu* PopupMenu() const;
    void SetPopupMenu(TPopupMenu* value);

    /// The form that holds the control, at any depth; null when none does. A form is its own.
    TForm* ParentForm();
    /// Whether the control and all that hold it are shown and enabled.
    bool CanFocus() const;
    /// Makes the control the active one of its form, and that the active form. Raises
    /// EInvalidOperation when it cannot be focused or is in no form.
    void SetFocus();
    /// Whether keys go to the control: it is the active one of the active form.
    bool Focused();
    /// Whether the control itself has a use for a key that would click its form's default or cancel
    /// button otherwise.
    virtual bool WantsKey(TShortCut) const { return false; }

    /// Brings the control's action up to date, when it has one.
    virtual void InitiateAction() {}

    /// The control's window, made on first use.
    HWND Handle();
    bool HandleAllocated() const { return FHandle != 0; }

    /// What all messages to the control go to, at first its own procedure. One that takes its place
    /// calls the former one for what it does not handle itself. To set none puts the control's own
    /// back.
    const TWndMethod& WindowProc() const { return FWindowProc; }
    void SetWindowProc(TWndMethod value);
    /// Hands a message to the window procedure at once, also before there is a window, and returns
    /// its result.
    std::intptr_t Perform(std::uint32_t msg, std::intptr_t wParam = 0, std::intptr_t lParam = 0);

    /// Has the front end show what has changed.
    void StateChanged();
    void Invalidate();
    void RedrawWindow(std::uint32_t flags);

    /// A control takes that of its parent over, and a form that of the screen, see TScreen.
    IControlPeer* Peer = nullptr;

protected:
    virtual void WndProc(TMessage& message);
    virtual void FontChanged() { StateChanged(); }
    /// Places the child controls, here those with an Align; called when one has come, gone, or been
    /// shown or hidden, and when the size has changed.
    virtual void AlignControls();
    /// Has the parent place its controls anew.
    void RequestAlign();
    /// Places the child controls, unless that is being done.
    void Realign();
    /// The controls first, in their order, then what TComponent knows.
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override;
    void SetChildOrder(TComponent& child, int order) override;

private:
    void SetBound(int TRect::*bound, int value);
    void LeaveParent();
    static void PlaceInto(TRect& rest, TControl& control);
    void TakePeer(IControlPeer* peer);
    void Dispatch(TMessage& message);
    void TellFontChanged(TObject*) { FontChanged(); }
    TWndMethod OwnProc() { return TWndMethod::Of<&TControl::WndProc>(this); }

    TControl* FParent = nullptr;
    std::vector<TControl*> FControls;
    std::string FText;
    TRect FBounds;
    int FMinWidth = 0;
    int FMinHeight = 0;
    bool FVisible = true;
    bool FEnabled = true;
    bool FAligning = false; ///< the places of the child controls are being given
    TAlign FAlign = alNone;
    TWeak<TPopupMenu> FPopupMenu;
    mutable std::unique_ptr<TFont> FFont;
    TColor FColor = clDefault;
    std::string FHint;
    TWndMethod FWindowProc = OwnProc();
    HWND FHandle = 0;
};

} // namespace tarn
