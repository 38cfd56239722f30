#include "vcl/TToolBar.h"

#include "rtl/SysUtils.h"
#include "vcl/TTextMeasure.h"

#include <algorithm>

namespace tarn {
namespace {

/// The width of a button belongs to its bar.
bool HasOwnWidth(const TObject& instance) {
    return static_cast<const TToolButton&>(instance).IsSeparator();
}

constexpr TPropInfo ToolButtonProps[] = {
    Published<&TToolButton::Caption, &TToolButton::SetCaption>("Caption"),
    Published<&TToolButton::Down, &TToolButton::SetDown>("Down", {.Default = false}),
    Published<&TControl::Hint, &TControl::SetHint>("Hint"),
    Published<&TToolButton::ImageIndex, &TToolButton::SetImageIndex>("ImageIndex", {.Default = -1}),
    Published<&TToolButton::Style, &TToolButton::SetStyle>("Style", {.Default = tbsButton}),
    Published<&TToolButton::Width, &TToolButton::SetWidth>("Width", {.IsStored = HasOwnWidth}),
};

constexpr TPropInfo ToolBarProps[] = {
    Published<&TToolBar::ButtonHeight, &TToolBar::SetButtonHeight>(
        "ButtonHeight", {.Default = TToolBar::DefaultButtonHeight}),
    Published<&TToolBar::ButtonWidth, &TToolBar::SetButtonWidth>(
        "ButtonWidth", {.Default = TToolBar::DefaultButtonWidth}),
    Published<&TToolBar::ShowCaptions, &TToolBar::SetShowCaptions>("ShowCaptions",
                                                                   {.Default = false}),
};

} // namespace

constinit const TClassRecord TToolButton::ClassRecord{"TToolButton", &TControl::ClassRecord,
                                                      CreateObject<TToolButton>, ToolButtonProps};
constinit const TClassRecord TToolBar::ClassRecord{"TToolBar", &TControl::ClassRecord,
                                                   CreateObject<TToolBar>, ToolBarProps};

// --- TToolButton ------------------------------------------------------------------------------

void TToolButton::SetCaption(std::string_view value) {
    SetText(value);
    RequestAlign();
}

void TToolButton::SetDown(bool value) {
    FDown = value;
    StateChanged();
}

void TToolButton::SetImageIndex(int value) {
    FImageIndex = value;
    StateChanged();
}

void TToolButton::SetStyle(TToolButtonStyle value) {
    FStyle = value;
    StateChanged();
    RequestAlign();
}

int TToolButton::Width() const {
    if (IsSeparator()) return FSeparatorWidth;
    const auto* const bar = ClassCast<TToolBar>(Parent());
    int width = bar ? bar->ButtonWidth() : TToolBar::DefaultButtonWidth;
    if (bar && bar->ShowCaptions()) {
        const int caption = MeasureText(bar->MeasuredFont(), StripHotkey(Caption())).Width;
        width = std::max(width, caption + 2 * TToolBar::CaptionMargin);
    }
    return FStyle == tbsDropDown ? width + TToolBar::ArrowWidth : width;
}

void TToolButton::SetWidth(int value) {
    FSeparatorWidth = std::max(value, 0);
    RequestAlign();
}

TActionState TToolButton::State() const {
    return {.Caption = Caption(),
            .Hint = Hint(),
            .Checked = FDown,
            .Enabled = Enabled(),
            .Visible = Visible(),
            .ImageIndex = FImageIndex};
}

void TToolButton::Show(const TActionState& state) {
    SetCaption(state.Caption);
    SetHint(state.Hint);
    SetDown(state.Checked);
    SetEnabled(state.Enabled);
    SetVisible(state.Visible);
    SetImageIndex(state.ImageIndex);
}

void TToolButton::SetAction(TAction* action) {
    if (FAction) FAction->UnRegisterClient(*this);
    FAction = action;
    if (!action) return;
    action->RegisterClient(*this);
    Show(action->State());
}

void TToolButton::ActionChanged(const TActionState& before, const TActionState& after) {
    TActionState state = State();
    state.Follow(before, after);
    Show(state);
}

void TToolButton::InitiateAction() {
    if (FAction) FAction->Update();
}

void TToolButton::Click() {
    if (!CanClick()) return;
    if (FStyle == tbsCheck && !FAction) SetDown(!FDown);
    if (!RunClick(*this, OnClick, FAction)) DropDown();
}

bool TToolButton::DropDown() {
    if (!CanClick() || FStyle != tbsDropDown || !DropdownMenu) return false;
    DropdownMenu->Popup(this);
    return true;
}

// --- TToolBar ---------------------------------------------------------------------------------

int TToolBar::ButtonCount() const {
    int count = 0;
    for (int i = 0; i < ControlCount(); ++i)
        count += ClassCast<TToolButton>(Controls(i)) != nullptr;
    return count;
}

TToolButton* TToolBar::Buttons(int index) const {
    int left = index;
    for (int i = 0; i < ControlCount(); ++i)
        if (auto* const button = ClassCast<TToolButton>(Controls(i)); button && left-- == 0)
            return button;
    throw EListError(Format(SListIndexError, {index}));
}

void TToolBar::SetButtonHeight(int value) {
    FButtonHeight = std::max(value, 0);
    Realign();
}

void TToolBar::SetButtonWidth(int value) {
    FButtonWidth = std::max(value, 0);
    Realign();
}

void TToolBar::SetShowCaptions(bool value) {
    FShowCaptions = value;
    Realign();
}

void TToolBar::SetWrapable(bool value) {
    FWrapable = value;
    Realign();
}

void TToolBar::AlignControls() {
    int left = 0;
    int top = 0;
    for (int i = 0; i < ControlCount(); ++i) {
        TControl& control = *Controls(i);
        if (!control.Visible()) continue;
        const auto* const button = ClassCast<TToolButton>(&control);
        const int width = button ? button->Width() : control.BoundsRect().Width;
        if (FWrapable && left > 0 && left + width > Width()) {
            left = 0;
            top += FButtonHeight;
        }
        control.SetBoundsRect({left, top, width, FButtonHeight});
        // At the start of a further row there is nothing that a separator would part.
        const bool opensRow = left == 0 && top > 0 && button && button->IsSeparator();
        if (!opensRow) left += width;
    }
    if (FWrapable) SetHeight(top + FButtonHeight);
    StateChanged();
}

} // namespace tarn
