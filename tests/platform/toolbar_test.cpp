#include "rtl/SysUtils.h"
#include "vcl/TToolBar.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace tarn {
namespace {

/// A bar of six buttons, and what ran.
class ToolBar : public testing::Test {
protected:
    ToolBar() {
        for (const TToolButtonStyle style :
             {tbsButton, tbsSeparator, tbsDropDown, tbsDivider, tbsCheck, tbsButton}) {
            auto* const button = new TToolButton(&Owner);
            button->SetStyle(style);
            button->SetParent(Bar.get());
        }
    }

    /// "left+width" of the buttons that are seen.
    std::string Places() const {
        std::string text;
        for (int i = 0; i < Bar->ButtonCount(); ++i) {
            const TRect& bounds = Bar->Buttons(i)->BoundsRect();
            if (!Bar->Buttons(i)->Visible()) continue;
            EXPECT_EQ(bounds.Top, 0);
            EXPECT_EQ(bounds.Height, Bar->ButtonHeight());
            text += Format("%d+%d ", {bounds.Left, bounds.Width});
        }
        return text;
    }

    TComponent Owner;
    std::unique_ptr<TToolBar> Bar = std::make_unique<TToolBar>();
};

TEST_F(ToolBar, PlacesItsButtonsInARow) {
    const auto button = [&](int i) { return Bar->Buttons(i); };
    TToolBar other;
    TControl edit;
    edit.SetBoundsRect({5, 5, 60, 9});
    const struct {
        std::string_view What;
        std::function<void()> Do;
        std::string_view Places;
    } steps[] = {
        {"as made", [] {}, "0+23 23+8 31+36 67+8 75+23 98+23 "},
        {"bar's sizes", [&] { Bar->SetButtonWidth(30), Bar->SetButtonHeight(10); },
         "0+30 30+8 38+43 81+8 89+30 119+30 "},
        {"separator's width", [&] { button(1)->SetWidth(2), button(3)->SetWidth(-1); },
         "0+30 30+2 32+43 75+0 75+30 105+30 "},
        {"button's width", [&] { button(0)->SetWidth(99); }, "0+30 30+2 32+43 75+0 75+30 105+30 "},
        {"hidden", [&] { button(2)->SetVisible(false); }, "0+30 30+2 32+0 32+30 62+30 "},
        {"shown in its place", [&] { button(2)->SetVisible(true); },
         "0+30 30+2 32+43 75+0 75+30 105+30 "},
        {"style", [&] { button(2)->SetStyle(tbsButton); }, "0+30 30+2 32+30 62+0 62+30 92+30 "},
        {"freed", [&] { delete button(2); }, "0+30 30+2 32+0 32+30 62+30 "},
        {"another control", [&] { edit.SetParent(Bar.get()); }, "0+30 30+2 32+0 32+30 62+30 "},
        {"to another bar and back",
         [&] {
             TToolButton* const moved = button(0);
             moved->SetParent(&other);
             EXPECT_EQ(Places(), "0+2 2+0 2+30 32+30 ");
             moved->SetParent(Bar.get());
         },
         "0+2 2+0 2+30 32+30 122+30 "},
    };
    for (const auto& step : steps) {
        step.Do();
        EXPECT_EQ(Places(), step.Places) << step.What;
    }
    EXPECT_EQ(edit.BoundsRect(), (TRect{62, 0, 60, 10}));
    EXPECT_EQ(Bar->ButtonCount(), 5);
    EXPECT_THROW(Bar->Buttons(5), EListError);
    EXPECT_THROW(Bar->Buttons(-1), EListError);
    const TPropInfo& width = *TToolButton::ClassRecord.FindProp("Width");
    EXPECT_TRUE(width.IsStored(*button(0)));  // a separator
    EXPECT_FALSE(width.IsStored(*button(4))); // a button
    Bar.reset();                              // the buttons are the owner's
    EXPECT_EQ(Owner.ComponentCount(), 5);
}

/// With the measure that needs no fonts a character takes 6 pixels.
TEST_F(ToolBar, WrapsAndMakesRoomForCaptions) {
    TControl form;
    form.SetBoundsRect({0, 0, 130, 100});
    TControl rest(&form);
    Bar->SetParent(&form);
    rest.SetParent(&form);
    Bar->SetAlign(alTop);
    rest.SetAlign(alClient);
    const auto rows = [&] {
        std::string text;
        for (int i = 0; i < Bar->ButtonCount(); ++i) {
            const TRect& at = Bar->Buttons(i)->BoundsRect();
            text += Format("%d:%d+%d ", {at.Top / Bar->ButtonHeight(), at.Left, at.Width});
        }
        return text + Format("%d %d", {Bar->Height(), rest.Top()});
    };
    Bar->SetWrapable(true);
    EXPECT_EQ(rows(), "0:0+23 0:23+8 0:31+36 0:67+8 0:75+23 0:98+23 22 22");
    Bar->SetShowCaptions(true);
    Bar->Buttons(0)->SetCaption("&Refresh"); // 42 and two margins
    EXPECT_EQ(rows(), "0:0+58 0:58+8 0:66+36 0:102+8 1:0+23 1:23+23 44 44");
    form.SetWidth(60);
    EXPECT_EQ(rows(), "0:0+58 1:0+8 1:0+36 1:36+8 2:0+23 2:23+23 66 66");
    form.SetWidth(300);
    EXPECT_EQ(rows(), "0:0+58 0:58+8 0:66+36 0:102+8 0:110+23 0:133+23 22 22");
    Bar->SetWrapable(false);
    form.SetWidth(60);
    EXPECT_EQ(rows(), "0:0+58 0:58+8 0:66+36 0:102+8 0:110+23 0:133+23 22 22");
    Bar->SetParent(nullptr);
}

TEST_F(ToolBar, ButtonsFollowTheirAction) {
    const auto state = [](const TToolButton& button) {
        return Format("%s|%s|%d%d%d|%d", {button.Caption(), button.Hint(), button.Down(),
                                          button.Enabled(), button.Visible(), button.ImageIndex()});
    };
    TToolButton& button = *Bar->Buttons(0);
    auto action = std::make_unique<TAction>();
    action->SetCaption("Add");
    action->SetHint("adds");
    button.SetImageIndex(3);
    button.SetAction(action.get());
    EXPECT_EQ(state(button), "Add|adds|011|-1");
    button.SetCaption("mine");
    action->SetCaption("Insert");
    action->SetHint("inserts");
    action->SetChecked(true);
    action->SetEnabled(false);
    action->SetVisible(false);
    action->SetImageIndex(5);
    EXPECT_EQ(state(button), "mine|inserts|100|5");
    EXPECT_EQ(Bar->Buttons(1)->BoundsRect().Left, 0); // the row closes up
    { // a button that goes first is not told any more
        TToolButton brief;
        brief.SetAction(action.get());
    }
    action->SetEnabled(true);
    action.reset();
    EXPECT_EQ(button.Action(), nullptr);
    button.SetVisible(true);
    button.Click();
    EXPECT_EQ(state(button), "mine|inserts|111|5");
}

TEST_F(ToolBar, Clicks) {
    enum : std::uint8_t { OnClick = 1, Action = 2, Same = 4, Menu = 8, Off = 16, Hidden = 32 };
    const struct {
        int Button, With;
        std::string_view Ran;
        bool Down = false;
    } cases[] = {
        {0, OnClick, "click "},
        {0, Action, "update action "},
        {0, OnClick | Action, "click "},
        {0, Action | Same, "update action "},
        {0, Menu, ""},
        {0, OnClick | Off, ""},
        {0, OnClick | Hidden, ""},
        {1, OnClick, ""},
        {2, Menu, "popup item shown "},
        {2, Action | Menu, "update action "},
        {2, Menu | Off, ""},
        {3, OnClick, ""},
        {4, OnClick, "click ", true},
        {4, Action, "update action "}, // the action does not check itself
        {4, Off, ""},
    };
    std::string ran;
    const auto note = [&](std::string_view text) {
        return [&ran, text](TObject*) { ran.append(text) += " "; };
    };
    auto onClick = note("click"), execute = note("action"), update = note("update"),
         popup = note("popup"), item = note("item");
    struct TPeer : IMenuPeer {
        void MenuChanged(TMenu&) override {}
        void Popup(TPopupMenu& menu) override {
            *Ran += "shown ";
            Below = menu.PopupComponent.Get();
        }
        std::string* Ran = nullptr;
        TComponent* Below = nullptr;
    } peer;
    peer.Ran = &ran;
    TAction itemAction;
    itemAction.OnUpdate = TNotifyEvent::Calling(item);
    TPopupMenu menu;
    menu.Items()->Add(new TMenuItem);
    menu.Items()->Items(0)->SetAction(&itemAction);
    menu.OnPopup = TNotifyEvent::Calling(popup);
    menu.Peer = &peer;
    for (const auto& c : cases) {
        TAction action;
        action.OnExecute = TNotifyEvent::Calling(execute);
        action.OnUpdate = TNotifyEvent::Calling(update);
        TToolButton& button = *Bar->Buttons(c.Button);
        button.SetDown(false);
        button.SetAction(c.With & Action ? &action : nullptr);
        button.OnClick = c.With & OnClick ? TNotifyEvent::Calling(onClick)
                         : c.With & Same  ? action.OnExecute
                                          : TNotifyEvent();
        button.DropdownMenu = c.With & Menu ? &menu : nullptr;
        button.SetEnabled(!(c.With & Off));
        button.SetVisible(!(c.With & Hidden));
        ran.clear();
        button.Click();
        EXPECT_EQ(ran, c.Ran) << c.Button << " with " << c.With;
        EXPECT_EQ(button.Down(), c.Down) << c.Button << " with " << c.With;
        const bool drops = c.Button == 2 && !(c.With & Off);
        EXPECT_EQ(button.DropDown(), drops) << c.Button << " with " << c.With;
    }
    EXPECT_EQ(peer.Below, Bar->Buttons(2));
}

TEST_F(ToolBar, HandlersMayFreeWhatTheyAreCalledFrom) {
    auto free = [](TObject* sender) { delete sender; };
    for (const int i : {4, 0}) { // the check button changes before its handler runs
        Bar->Buttons(i)->OnClick = TNotifyEvent::Calling(free);
        Bar->Buttons(i)->Click();
    }
    EXPECT_EQ(Bar->ButtonCount(), 4);
    auto* const menu = new TPopupMenu;
    menu->OnPopup = TNotifyEvent::Calling(free);
    Bar->Buttons(1)->DropdownMenu = menu;
    EXPECT_TRUE(Bar->Buttons(1)->DropDown());
    EXPECT_FALSE(Bar->Buttons(1)->DropDown());
}

} // namespace
} // namespace tarn
