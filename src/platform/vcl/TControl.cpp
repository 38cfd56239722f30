#include "vcl/TControl.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo ControlProps[] = {
    Published<&TControl::Enabled, &TControl::SetEnabled>("Enabled", {.Default = true}),
    Published<&TControl::Visible, &TControl::SetVisible>("Visible", {.Default = true}),
};

} // namespace

constinit const TClassRecord TControl::ClassRecord{"TControl", &TComponent::ClassRecord,
                                                   CreateObject<TControl>, ControlProps};

TControl::~TControl() {
    for (TControl* child : FControls) child->FParent = nullptr;
    if (FParent) {
        std::erase(FParent->FControls, this);
        RequestAlign();
    }
    if (FHandle != 0 && HasOS()) OS().DeallocateHWnd(FHandle);
}

void TControl::SetParent(TControl* parent) {
    if (parent == FParent) return;
    for (const TControl* above = parent; above; above = above->FParent)
        if (above == this) throw EInvalidOperation("a control cannot hold itself");
    if (FParent) {
        std::erase(FParent->FControls, this);
        RequestAlign();
    }
    FParent = parent;
    if (parent) parent->FControls.push_back(this);
    StateChanged();
    RequestAlign();
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
