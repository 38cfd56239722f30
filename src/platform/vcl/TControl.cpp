#include "vcl/TControl.h"

#include "rtl/SysUtils.h"
#include "streaming/TFiler.h"
#include "vcl/Forms.h"

#include <algorithm>

namespace tarn {
namespace {

bool HasOwnFont(const TObject& instance) {
    return static_cast<const TControl&>(instance).HasFont();
}

bool HasHint(const TObject& instance) {
    return !static_cast<const TControl&>(instance).Hint().empty();
}

constexpr TPropInfo ControlProps[] = {
    Published<&TControl::Left, &TControl::SetLeft>("Left"),
    Published<&TControl::Top, &TControl::SetTop>("Top"),
    Published<&TControl::Width, &TControl::SetWidth>("Width"),
    Published<&TControl::Height, &TControl::SetHeight>("Height"),
    Published<&TControl::Enabled, &TControl::SetEnabled>("Enabled", {.Default = true}),
    Published<&TControl::Visible, &TControl::SetVisible>("Visible", {.Default = true}),
    Published<&TControl::Align, &TControl::SetAlign>("Align", {.Default = alNone}),
    Published<&TControl::Color, &TControl::SetColor>("Color",
                                                     {.Default = clDefault, .Type = &ColorType}),
    Published<&TControl::FontObject>("Font", {.IsStored = HasOwnFont}),
    Published<&TControl::Hint, &TControl::SetHint>("Hint", {.IsStored = HasHint}),
    Published<&TControl::PopupMenu, &TControl::SetPopupMenu>("PopupMenu"),
};

} // namespace

constinit const TClassRecord TControl::ClassRecord{"TControl", &TComponent::ClassRecord,
                                                   CreateObject<TControl>, ControlProps};

TControl::~TControl() {
    if (Peer) Peer->Gone(*this);
    for (TControl* child : FControls) child->FParent = nullptr;
    LeaveParent();
    if (FHandle != 0 && HasOS()) OS().DeallocateHWnd(FHandle);
}

void TControl::SetParent(TControl* parent) {
    if (parent == FParent) return;
    for (const TControl* above = parent; above; above = above->FParent)
        if (above == this) throw EInvalidOperation("a control cannot hold itself");
    LeaveParent();
    FParent = parent;
    if (parent) parent->FControls.push_back(this);
    if (parent) TakePeer(parent->Peer);
    StateChanged();
    RequestAlign();
}

/// With all that it holds.
void TControl::TakePeer(IControlPeer* peer) {
    if (!peer || Peer) return;
    Peer = peer;
    StateChanged();
    for (TControl* child : FControls) child->TakePeer(peer);
}

void TControl::LeaveParent() {
    if (!FParent) return;
    // The newest goes first most of the time.
    std::vector<TControl*>& siblings = FParent->FControls;
    siblings.erase(std::next(std::find(siblings.rbegin(), siblings.rend(), this)).base());
    RequestAlign();
}

void TControl::SetParentComponent(TComponent* parent) {
    if (auto* const control = ClassCast<TControl>(parent); control || !parent) SetParent(control);
}

void TControl::GetChildren(const TGetChildProc& proc, const TComponent* root) const {
    for (TControl* control : FControls)
        if (control->Owner() == root) proc(*control);
    TComponent::GetChildren(proc, root);
}

void TControl::SetChildOrder(TComponent& child, int order) {
    const auto isSibling = [&](const TControl* each) { return each->Owner() == child.Owner(); };
    if (child.GetParentComponent() != this) {
        const auto before = std::count_if(FControls.begin(), FControls.end(), isSibling);
        return TComponent::SetChildOrder(child, order - static_cast<int>(before));
    }
    const auto from = std::find(FControls.begin(), FControls.end(), &child);
    TControl* const control = *from;
    FControls.erase(from);
    const auto to = std::find_if(FControls.begin(), FControls.end(), [&](const TControl* each) {
        return isSibling(each) && order-- <= 0;
    });
    FControls.insert(to, control);
    Realign();
}

TControl* TControl::Controls(int index) const {
    if (index < 0 || index >= ControlCount()) throw EListError(Format(SListIndexError, {index}));
    return FControls[static_cast<std::size_t>(index)];
}

void TControl::SetText(std::string_view value) {
    FText = value;
    StateChanged();
}

void TControl::SetVisible(bool value) {
    FVisible = value;
    StateChanged();
    RequestAlign();
}

void TControl::SetEnabled(bool value) {
    FEnabled = value;
    StateChanged();
}

void TControl::SetBoundsRect(const TRect& value) {
    const TRect before = std::exchange(FBounds, value);
    FBounds.Width = std::max(value.Width, FMinWidth);
    FBounds.Height = std::max(value.Height, FMinHeight);
    const bool resized = FBounds.Width != before.Width || FBounds.Height != before.Height;
    StateChanged();
    if (resized) Realign();
    if (FAlign != alNone) RequestAlign();
}

void TControl::SetMinSize(int width, int height) {
    FMinWidth = width;
    FMinHeight = height;
    SetBoundsRect(FBounds);
}

void TControl::SetBound(int TRect::*bound, int value) {
    TRect bounds = FBounds;
    bounds.*bound = value;
    SetBoundsRect(bounds);
}

TPopupMenu* TControl::PopupMenu() const {
    return FPopupMenu.Get();
}

void TControl::SetPopupMenu(TPopupMenu* value) {
    FPopupMenu = value;
}

/// The font is no part of what the control is until somebody wants another than the system's.
TFont* TControl::FontObject() const {
    if (!FFont) {
        FFont = std::make_unique<TFont>();
        FFont->OnChange = TNotifyEvent::Of<&TControl::TellFontChanged>(const_cast<TControl*>(this));
    }
    return FFont.get();
}

void TControl::SetColor(TColor value) {
    FColor = value;
    StateChanged();
}

void TControl::SetHint(std::string_view value) {
    FHint = value;
    StateChanged();
}

HWND TControl::Handle() {
    if (FHandle == 0) FHandle = OS().AllocateHWnd(TWndMethod::Of<&TControl::Dispatch>(this));
    return FHandle;
}

void TControl::SetWindowProc(TWndMethod value) {
    FWindowProc = value ? value : OwnProc();
}

/// The procedure may take itself out, or free the control.
void TControl::Dispatch(TMessage& message) {
    const TWndMethod procedure = FWindowProc;
    procedure(message);
}

std::intptr_t TControl::Perform(std::uint32_t msg, std::intptr_t wParam, std::intptr_t lParam) {
    TMessage message{msg, wParam, lParam, 0};
    Dispatch(message);
    return message.Result;
}

void TControl::Invalidate() {
    if (Peer) Peer->Invalidate(*this);
}

void TControl::RedrawWindow(std::uint32_t flags) {
    if (Peer) Peer->Redraw(*this, flags);
}

void TControl::WndProc(TMessage& message) {
    if (message.Msg != WM_SETREDRAW)
        message.Result = OS().DefWindowProc(message);
    else if (Peer)
        Peer->SetRedraw(*this, message.WParam != 0);
}

const TFont& TControl::MeasuredFont() const {
    static const TFont systemFont;
    return HasFont() ? *FFont : systemFont;
}

void TControl::StateChanged() {
    if (Peer) Peer->StateChanged(*this);
}

// --- Places -----------------------------------------------------------------------------------

void TControl::SetAlign(TAlign value) {
    FAlign = value;
    StateChanged();
    RequestAlign();
}

void TControl::RequestAlign() {
    if (FParent) FParent->Realign();
}

/// A control that gets its place does not ask for it again.
void TControl::Realign() {
    if (FAligning) return;
    const TScopedValue aligning(FAligning, true);
    AlignControls();
}

namespace {

/// Cuts `size` from the front or the back of an extent and gives the place of what was cut. A
/// control keeps its size where there is no room: that may still come.
void Cut(int& start, int& length, int size, bool atEnd, int& place) {
    place = atEnd ? start + length - size : start;
    if (!atEnd) start += std::min(size, length);
    length = std::max(length - size, 0);
}

/// The part of `rest` along a side for a control of that size, which `rest` loses.
TRect TakePlace(TRect& rest, TAlign side, const TRect& size) {
    TRect place = rest;
    if (side == alTop || side == alBottom) {
        place.Height = std::max(size.Height, 0);
        Cut(rest.Top, rest.Height, place.Height, side == alBottom, place.Top);
    } else if (side == alLeft || side == alRight) {
        place.Width = std::max(size.Width, 0);
        Cut(rest.Left, rest.Width, place.Width, side == alRight, place.Left);
    }
    return place;
}

} // namespace

/// A control may take another height with the width that it gets, such as a bar that wraps: it gets
/// its place by that height then.
void TControl::PlaceInto(TRect& rest, TControl& control) {
    const TRect before = rest;
    const TRect place = TakePlace(rest, control.FAlign, control.FBounds);
    control.SetBoundsRect(place);
    const bool isRow = control.FAlign == alTop || control.FAlign == alBottom;
    if (!isRow || control.Height() == place.Height) return;
    rest = before;
    control.SetBoundsRect(TakePlace(rest, control.FAlign, control.FBounds));
}

void TControl::AlignControls() {
    TRect rest{0, 0, std::max(Width(), 0), std::max(Height(), 0)};
    for (const TAlign side : {alTop, alBottom, alLeft, alRight, alClient})
        for (TControl* control : FControls)
            if (control->FAlign == side && control->FVisible) PlaceInto(rest, *control);
}

// --- Focus ------------------------------------------------------------------------------------

TForm* TControl::ParentForm() {
    for (TControl* each = this; each; each = each->FParent)
        if (auto* const form = ClassCast<TForm>(each)) return form;
    return nullptr;
}

bool TControl::CanFocus() const {
    for (const TControl* each = this; each; each = each->FParent)
        if (!each->FVisible || !each->FEnabled) return false;
    return true;
}

void TControl::SetFocus() {
    TForm* const form = ParentForm();
    if (!form || !CanFocus())
        throw EInvalidOperation(Format("%s %s cannot be focused", {ClassName(), Name()}));
    form->SetActiveControl(this);
    if (Screen()) Screen()->SetActiveForm(form);
}

bool TControl::Focused() {
    TForm* const form = ParentForm();
    return form && form->ActiveControl() == this && Screen() && Screen()->ActiveForm() == form;
}

} // namespace tarn
