#include "vcl/TControl.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo ControlProps[] = {
    Published<&TControl::Left, &TControl::SetLeft>("Left"),
    Published<&TControl::Top, &TControl::SetTop>("Top"),
    Published<&TControl::Width, &TControl::SetWidth>("Width"),
    Published<&TControl::Height, &TControl::SetHeight>("Height"),
    Published<&TControl::Enabled, &TControl::SetEnabled>("Enabled", {.Default = true}),
    Published<&TControl::Visible, &TControl::SetVisible>("Visible", {.Default = true}),
};

} // namespace

constinit const TClassRecord TControl::ClassRecord{"TControl", &TComponent::ClassRecord,
                                                   CreateObject<TControl>, ControlProps};

TControl::~TControl() {
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
    StateChanged();
    RequestAlign();
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
    AlignControls();
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
    FBounds = value;
    StateChanged();
}

void TControl::SetBound(int TRect::*bound, int value) {
    TRect bounds = FBounds;
    bounds.*bound = value;
    SetBoundsRect(bounds);
}

HWND TControl::Handle() {
    if (FHandle == 0) FHandle = OS().AllocateHWnd(TWndMethod::Of<&TControl::WndProc>(this));
    return FHandle;
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

void TControl::StateChanged() {
    if (Peer) Peer->StateChanged(*this);
}

void TControl::RequestAlign() {
    if (FParent) FParent->AlignControls();
}

} // namespace tarn
