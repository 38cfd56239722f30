#pragma once

#include "vcl/TControl.h"
#include "vcl/TMenuItem.h"

namespace tarn {

enum TToolButtonStyle : std::uint8_t {
    tbsButton,
    tbsCheck,    ///< stays down or up with each click
    tbsDropDown, ///< has an arrow beside it that drops a menu down
    tbsSeparator,
    tbsDivider, ///< a separator with a line in it
};
inline constexpr std::string_view ToolButtonStyleNames[] = {"tbsButton", "tbsCheck", "tbsDropDown",
                                                            "tbsSeparator", "tbsDivider"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TToolButtonStyle> = EnumType("TToolButtonStyle",
                                                                   ToolButtonStyleNames);

/// A button of a tool bar, or the space between two.
class TToolButton : public TControl, private IActionClient {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TToolButton(TComponent* owner = nullptr) : TControl(owner) {}
    ~TToolButton() override { SetAction(nullptr); }

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value);
    bool Down() const { return FDown; }
    void SetDown(bool value);
    int ImageIndex() const { return FImageIndex; }
    void SetImageIndex(int value);
    TToolButtonStyle Style() const { return FStyle; }
    void SetStyle(TToolButtonStyle value);
    bool IsSeparator() const { return FStyle == tbsSeparator || FStyle == tbsDivider; }
    /// In pixels: a separator's own width, else that of the bar's buttons, or what the caption
    /// takes when the bar shows captions and that is more, with the arrow's.
    int Width() const;
    void SetWidth(int value); ///< of a separator; at least 0

    /// The action that the button shows and runs. Attaching it copies the action's caption and the
    /// rest; afterwards the button follows their changes.
    TAction* Action() const { return FAction; }
    void SetAction(TAction* action);
    void InitiateAction() override;

    TWeak<TPopupMenu> DropdownMenu; ///< of a drop-down button

    TNotifyEvent OnClick;

    /// Runs the button as a user's click does: its own handler when it has one, else its action,
    /// else its menu drops down. A check button without an action changes its state first; with one
    /// it shows that of the action. Nothing while the button is disabled or hidden.
    void Click();
    /// Shows the menu, as a click on the arrow does; false when there is none to show now.
    bool DropDown();

private:
    bool CanClick() const { return Enabled() && Visible() && !IsSeparator(); }
    TActionState State() const;
    void Show(const TActionState& state);
    void ActionChanged(const TActionState& before, const TActionState& after) override;
    void ActionGone() override { FAction = nullptr; }

    TAction* FAction = nullptr;
    bool FDown = false;
    int FImageIndex = -1;
    TToolButtonStyle FStyle = tbsButton;
    int FSeparatorWidth = 8;
};

/// A row of buttons and other controls, from left to right in the order in which they came. Hidden
/// ones leave no gap and keep their place.
class TToolBar : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    static constexpr int DefaultButtonWidth = 23, DefaultButtonHeight = 22, ArrowWidth = 13;
    static constexpr int CaptionMargin = 8; ///< on each side

    explicit TToolBar(TComponent* owner = nullptr) : TControl(owner) {}

    /// The buttons among the bar's controls, the separators and the hidden ones included.
    int ButtonCount() const;
    TToolButton* Buttons(int index) const; ///< raises EListError outside the list

    int ButtonHeight() const { return FButtonHeight; } ///< pixels, at least 0
    void SetButtonHeight(int value);
    int ButtonWidth() const { return FButtonWidth; } ///< pixels, at least 0
    void SetButtonWidth(int value);
    bool ShowCaptions() const { return FShowCaptions; }
    void SetShowCaptions(bool value);
    /// Whether controls that find no room begin another row; the bar is as high as its rows then.
    bool Wrapable() const { return FWrapable; }
    void SetWrapable(bool value);

    TWeak<TImageList> Images; ///< the pictures of the buttons

protected:
    void AlignControls() override;

private:
    int FButtonHeight = DefaultButtonHeight;
    int FButtonWidth = DefaultButtonWidth;
    bool FShowCaptions = false;
    bool FWrapable = false;
};

} // namespace tarn
