#include "rtl/SysUtils.h"
#include "vcl/TMenuItem.h"

#include <gtest/gtest.h>

#include <functional>

namespace tarn {
namespace {

std::string Captions(const TMenuItem& item) {
    std::string text;
    for (int i = 0; i < item.Count(); ++i) {
        EXPECT_EQ(item.Items(i)->Parent(), &item);
        EXPECT_EQ(item.Items(i)->MenuIndex(), i);
        text += item.Items(i)->Caption();
    }
    return text;
}

TMenuItem* NewItem(TMenuItem& parent, std::string_view caption) {
    auto* const item = new TMenuItem;
    item->SetCaption(caption);
    parent.Add(item);
    return item;
}

/// Writes down what runs.
struct TLog {
    explicit TLog(std::string_view text) : Text(text) {}
    void Handle(TObject* sender) {
        Sender = sender;
        *Log += Text;
    }
    TNotifyEvent Event() { return TNotifyEvent::Of<&TLog::Handle>(this); }
    std::string Text;
    std::string Own;
    std::string* Log = &Own;
    TObject* Sender = nullptr;
};

// --- The tree ---------------------------------------------------------------------------------

TEST(MenuItem, InsertsAndRemoves) {
    TMainMenu menu;
    TMenuItem& root = *menu.Items();
    TMenuItem* const b = NewItem(root, "b");
    TMenuItem* const d = NewItem(root, "d");
    auto* const a = new TMenuItem;
    a->SetCaption("a");
    root.Insert(0, a);
    root.Insert(2, NewLine());
    EXPECT_EQ(Captions(root), "ab-d");
    EXPECT_TRUE(root.Items(2)->IsLine());

    root.Remove(b);
    EXPECT_EQ(Captions(root), "a-d");
    EXPECT_EQ(b->Parent(), nullptr);
    EXPECT_EQ(b->MenuIndex(), -1);
    d->Add(b);
    delete root.Items(1); // from the item's side
    EXPECT_EQ(Captions(root), "ad");
    delete d; // takes its subtree along
    EXPECT_EQ(Captions(root), "a");
}

TEST(MenuItem, Refuses) {
    TMainMenu menu;
    TMenuItem& root = *menu.Items();
    TMenuItem* const a = NewItem(root, "a");
    TMenuItem* const b = NewItem(*a, "b");
    TMenuItem loose;
    EXPECT_THROW(root.Add(b), EMenuError);
    EXPECT_THROW(b->Add(a), EMenuError);
    EXPECT_THROW(b->Add(&root), EMenuError);
    EXPECT_THROW(loose.Add(&loose), EMenuError);
    EXPECT_THROW(root.Remove(b), EMenuError);
    EXPECT_THROW(root.Insert(2, &loose), EListError);
    EXPECT_THROW(root.Insert(-1, &loose), EListError);
    EXPECT_THROW(root.Items(1), EListError);
    EXPECT_EQ(loose.Parent(), nullptr);
    EXPECT_EQ(Captions(root), "a");
    EXPECT_EQ(Captions(*a), "b");
}

TEST(MenuItem, FreedByItsOwnerLeavesItsMenu) {
    TMainMenu menu;
    {
        TComponent owner;
        auto* const item = new TMenuItem(&owner);
        menu.Items()->Add(item);
        NewItem(*item, "below");
    }
    EXPECT_EQ(menu.Items()->Count(), 0);

    TComponent owner;
    {
        TMainMenu shorter;
        shorter.Items()->Add(new TMenuItem(&owner));
    }
    EXPECT_EQ(owner.ComponentCount(), 0);
}

TEST(MenuItem, FindsCaptionsWithoutHotkeys) {
    TMainMenu menu;
    for (const std::string_view caption :
         {"-", "&File", "Sa&ve && close", "file", "\u0424\u0430&\u0439\u043B", ""})
        NewItem(*menu.Items(), caption);
    const struct {
        std::string_view Caption;
        int Index;
    } cases[] = {
        {"File", 1},
        {"FI&LE", 1},
        {"save && Close", 2},
        {"Save & close", -1},
        {"\u0444\u0410\u0419\u041B", 4},
        {"Fil", -1},
        {"-", 0},
        {"", -1},
        {"&", -1},
    };
    for (const auto& c : cases) {
        const TMenuItem* const found = menu.Items()->Find(c.Caption);
        EXPECT_EQ(found ? found->MenuIndex() : -1, c.Index) << c.Caption;
    }
    EXPECT_EQ(StripHotkey("a&&b&c&"), "a&bc");
}

TEST(MenuItem, RadioGroups) {
    TMainMenu menu;
    const auto item = [&](int i) { return menu.Items()->Items(i); };
    const auto checks = [&] {
        std::string text;
        for (int i = 0; i < menu.Items()->Count(); ++i) text += item(i)->Checked() ? '1' : '0';
        return text;
    };
    for (const int group : {0, 0, 1, 1, 0}) {
        TMenuItem* const added = NewItem(*menu.Items(), "x");
        added->SetRadioItem(true);
        added->SetGroupIndex(group);
    }
    item(4)->SetRadioItem(false);
    item(4)->SetChecked(true);
    item(0)->SetChecked(true);
    item(2)->SetChecked(true);
    EXPECT_EQ(checks(), "10101");
    item(1)->SetChecked(true);
    EXPECT_EQ(checks(), "01101");
    item(1)->SetChecked(false);
    EXPECT_EQ(checks(), "00101");
    item(3)->SetChecked(true);
    item(3)->SetGroupIndex(0);
    item(4)->SetRadioItem(true); // a checked item that joins takes the check as well
    EXPECT_EQ(checks(), "00001");
    TAction action;
    action.SetChecked(true);
    item(1)->SetAction(&action);
    EXPECT_EQ(checks(), "01000");
}

// --- Actions ----------------------------------------------------------------------------------

std::string StateText(const TMenuItem& item) {
    return Format("%s|%s|%d%d%d|%d|%x",
                  {item.Caption(), item.Hint(), item.Checked(), item.Enabled(), item.Visible(),
                   item.ImageIndex(), item.ShortCut()});
}

TEST(MenuItem, FollowsItsAction) {
    TAction action;
    action.SetCaption("Cut");
    action.SetHint("cuts");
    action.SetShortCut(scCtrl | 'X');
    TMenuItem item;
    item.SetCaption("own");
    item.SetAction(&action);
    EXPECT_EQ(item.Action(), &action);
    EXPECT_EQ(StateText(item), "Cut|cuts|011|-1|4058");

    action.SetCaption("Snip");
    action.SetHint("snips");
    action.SetChecked(true);
    action.SetEnabled(false);
    action.SetVisible(false);
    action.SetImageIndex(5);
    action.SetShortCut('X');
    EXPECT_EQ(StateText(item), "Snip|snips|100|5|58");

    // A value of the item's own is kept, and the others still follow.
    item.SetCaption("mine");
    item.SetImageIndex(9);
    action.SetCaption("Cut");
    action.SetImageIndex(7);
    action.SetEnabled(true);
    EXPECT_EQ(StateText(item), "mine|snips|110|9|58");

    item.SetAction(nullptr);
    action.SetHint("gone");
    EXPECT_EQ(StateText(item), "mine|snips|110|9|58");
}

TEST(MenuItem, OutlivesItsActionAndTheOtherWayRound) {
    TLog log("x");
    TMenuItem item;
    {
        TAction action;
        action.OnExecute = log.Event();
        item.SetAction(&action);
        {
            TMenuItem second;
            second.SetAction(&action);
        }
        action.SetCaption("still followed");
    }
    EXPECT_EQ(item.Action(), nullptr);
    EXPECT_EQ(item.Caption(), "still followed");
    item.Click();
    item.InitiateAction();
    EXPECT_EQ(log.Own, "");
}

TEST(MenuItem, ClickRunsItsHandlerOrItsAction) {
    TLog own("own "), run("run "), update("update ");
    run.Log = update.Log = &own.Own;
    TAction action;
    TMenuItem item;
    const auto click = [&] {
        own.Own.clear();
        item.Click();
        return own.Own;
    };
    EXPECT_EQ(click(), "");
    action.OnExecute = run.Event();
    action.OnUpdate = update.Event();
    item.SetAction(&action);
    EXPECT_EQ(click(), "update run ");
    EXPECT_EQ(run.Sender, &action);
    item.OnClick = own.Event();
    EXPECT_EQ(click(), "own ");
    EXPECT_EQ(own.Sender, &item);
    item.OnClick = action.OnExecute; // the action's own handler goes through the action
    EXPECT_EQ(click(), "update run ");
    EXPECT_EQ(run.Sender, &action);
    item.SetEnabled(false);
    EXPECT_EQ(click(), "");
}

TEST(Action, ExecuteUpdatesFirst) {
    TLog run("run");
    TAction action;
    EXPECT_FALSE(action.Execute()); // nothing to run, and now it shows
    EXPECT_FALSE(action.Enabled());
    action.SetEnabled(true);
    action.DisableIfNoHandler = false;
    EXPECT_FALSE(action.Execute());
    EXPECT_TRUE(action.Enabled());

    action.OnExecute = run.Event();
    bool allowed = false;
    auto update = [&](TObject* sender) { static_cast<TAction*>(sender)->SetEnabled(allowed); };
    action.OnUpdate = TNotifyEvent::Calling(update);
    EXPECT_FALSE(action.Execute());
    EXPECT_EQ(run.Own, "");
    allowed = true; // a disabled action that may run again by now
    EXPECT_TRUE(action.Execute());
    EXPECT_EQ(run.Own, "run");
}

TEST(Action, HandlersMayFreeWhatTheyAreCalledFrom) {
    auto free = [](TObject* sender) { delete sender; };
    auto* const action = new TAction;
    action->OnExecute = TNotifyEvent::Calling(free);
    TMenuItem item;
    item.SetAction(action);
    item.Click();
    EXPECT_EQ(item.Action(), nullptr);

    TMainMenu menu;
    TMenuItem* const doomed = NewItem(*menu.Items(), "x");
    doomed->SetShortCut('X');
    doomed->OnClick = TNotifyEvent::Calling(free);
    EXPECT_TRUE(menu.IsShortCut('X'));
    EXPECT_EQ(menu.Items()->Count(), 0);
}

TEST(ActionList, HoldsActionsWithoutOwningThem) {
    TAction a, b;
    {
        TActionList first, second;
        a.SetActionList(&first);
        first.AddAction(&b);
        first.AddAction(&b);
        EXPECT_EQ(first.ActionCount(), 2);
        EXPECT_EQ(first.Actions(1), &b);
        second.AddAction(&a); // from one list to the other
        EXPECT_EQ(a.ActionList(), &second);
        EXPECT_EQ(first.ActionCount(), 1);
        EXPECT_THROW(first.Actions(1), EListError);
        first.RemoveAction(&a); // not here
        EXPECT_EQ(a.ActionList(), &second);
        {
            TAction brief;
            brief.SetActionList(&first);
        }
        EXPECT_EQ(first.ActionCount(), 1);
        first.RemoveAction(&b);
        EXPECT_EQ(b.ActionList(), nullptr);
    }
    EXPECT_EQ(a.ActionList(), nullptr);
}

TEST(ActionList, RunsTheFirstActionOfAShortCut) {
    TActionList list;
    TLog first("1"), second("2");
    second.Log = &first.Own;
    TAction a, b;
    for (TAction* action : {&a, &b}) {
        action->SetShortCut(scCtrl | 'K');
        action->SetActionList(&list);
    }
    a.OnExecute = first.Event();
    b.OnExecute = second.Event();
    EXPECT_TRUE(list.IsShortCut(scCtrl | 'K'));
    a.SetEnabled(false);
    EXPECT_TRUE(list.IsShortCut(scCtrl | 'K')); // the disabled one still swallows the key
    EXPECT_FALSE(list.IsShortCut('K'));
    EXPECT_EQ(first.Own, "1");
}

// --- Menus ------------------------------------------------------------------------------------

TEST(Menu, ShortCuts) {
    TMainMenu menu;
    TLog log("x");
    TMenuItem* const file = NewItem(*menu.Items(), "File");
    TMenuItem* const save = NewItem(*file, "Save");
    TMenuItem* const later = NewItem(*menu.Items(), "Save too");
    for (TMenuItem* item : {save, later}) item->SetShortCut(scCtrl | 'S');
    EXPECT_EQ(menu.FindItem(scCtrl | 'S'), save); // depth first
    EXPECT_EQ(menu.FindItem(0), nullptr);
    EXPECT_FALSE(menu.IsShortCut(0));
    EXPECT_FALSE(menu.IsShortCut('S'));

    save->OnClick = log.Event();
    EXPECT_TRUE(menu.IsShortCut(scCtrl | 'S'));
    save->SetEnabled(false);
    EXPECT_TRUE(menu.IsShortCut(scCtrl | 'S'));
    EXPECT_EQ(log.Own, "x");

    // The action is asked before the item is clicked.
    TAction action;
    auto enable = [](TObject* sender) { static_cast<TAction*>(sender)->SetEnabled(true); };
    action.SetEnabled(false);
    action.SetShortCut(scCtrl | 'S');
    action.OnUpdate = TNotifyEvent::Calling(enable);
    action.OnExecute = log.Event();
    save->OnClick = {};
    save->SetAction(&action);
    EXPECT_FALSE(save->Enabled());
    EXPECT_TRUE(menu.IsShortCut(scCtrl | 'S'));
    EXPECT_EQ(log.Own, "xx");
}

TEST(Menu, TellsItsPeerUntilItGoes) {
    struct TPeer : IMenuPeer {
        void MenuChanged(TMenu&) override { ++Changes; }
        int Changes = 0;
    } peer;
    TMenuItem loose;
    {
        TMainMenu menu;
        menu.Peer = &peer;
        TMenuItem* const item = NewItem(*NewItem(*menu.Items(), "a"), "b");
        const std::function<void()> changes[] = {
            [&] { item->SetCaption("c"); },   [&] { item->SetEnabled(false); },
            [&] { item->SetVisible(false); }, [&] { item->SetChecked(true); },
            [&] { item->SetImageIndex(1); },  [&] { item->SetShortCut('X'); },
            [&] { item->Add(&loose); },       [&] { item->Remove(&loose); },
        };
        for (const auto& change : changes) {
            peer.Changes = 0;
            change();
            EXPECT_EQ(peer.Changes, 1) << "change " << (&change - changes);
        }
        loose.SetCaption("not in the menu");
        EXPECT_EQ(peer.Changes, 1);
        delete item;
        EXPECT_EQ(peer.Changes, 2);
    }
    EXPECT_EQ(peer.Changes, 2);
}

} // namespace
} // namespace tarn
