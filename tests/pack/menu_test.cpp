// The pack's menu: its place, its items, its dispatch and its rebuilding.

#include "TPackHarness.h"

namespace tarn {
namespace {

using TStrs = std::vector<std::string>;

/// The captions of the top level and of the Tools menu: "File Edit [pack] Tools(Options) Help".
std::string Outline(const TSmallIDE& ide) {
    std::string text;
    for (int i = 0; i < ide.Menu->Items()->Count(); ++i) {
        const TMenuItem& item = *ide.Menu->Items()->Items(i);
        if (i > 0) text += ' ';
        if (item.Name() == "qsTarnExpMenu") {
            text += "[pack]";
            continue;
        }
        text += StripHotkey(item.Caption());
        if (item.Caption() != "&Tools") continue;
        text += '(';
        for (int j = 0; j < item.Count(); ++j) {
            const TMenuItem& child = *item.Items(j);
            if (j > 0) text += ' ';
            text += child.Name() == "qsTarnExpMenu" ? "[pack]" : StripHotkey(child.Caption());
        }
        text += ')';
    }
    return text;
}

TEST(Menu, Placement) {
    const struct {
        std::string Search;
        bool Before, LineBefore, LineAfter;
        std::string_view Expected;
    } cases[] = {
        {"Tools", true, false, false, "File Edit [pack] Tools(Options...) Help"},
        {"&tOOLS", true, false, false, "File Edit [pack] Tools(Options...) Help"},
        {"Tools", false, false, false, "File Edit Tools(Options...) [pack] Help"},
        {"Tools", true, true, true, "File Edit - [pack] - Tools(Options...) Help"},
        {"Help", false, true, true, "File Edit Tools(Options...) Help - [pack] -"},
        {"options...", true, true, false, "File Edit Tools(- [pack] Options...) Help"},
        {"Options...", false, false, true, "File Edit Tools(Options... [pack] -) Help"},
        // What matches nothing goes before the last top-level item, whatever the settings say.
        {"Nothing", false, true, true, "File Edit Tools(Options...) [pack] Help"},
        {"", false, true, true, "File Edit Tools(Options...) [pack] Help"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Search);
        TSmallIDE ide;
        const std::string untouched = Outline(ide);
        TExpManagerData& data = *ide.Start()->Data();
        data.MainMenuSearchItem = c.Search;
        data.InsertMenuBeforeItem = c.Before;
        data.MenuHaveLineBefore = c.LineBefore;
        data.MenuHaveLineAfter = c.LineAfter;
        ide.App->ProcessMessages();
        EXPECT_EQ(Outline(ide), c.Expected);
        // Again, and once more while it stands: still one menu.
        TExpManager::Instance()->ApplySettings();
        TExpManager::Instance()->CreateExpertMenu();
        EXPECT_EQ(Outline(ide), c.Expected);
        ide.Stop();
        EXPECT_EQ(Outline(ide), untouched);
        EXPECT_EQ(ide.Actions->ActionCount(), 0);
    }
}

TEST(Menu, WithoutServicesOrItems) {
    const struct {
        bool MainMenu, ActionList;
    } cases[] = {{false, true}, {true, false}, {false, false}};
    for (const auto& c : cases) {
        TSmallIDE ide;
        ide.HasMainMenu = c.MainMenu;
        ide.HasActionList = c.ActionList;
        const std::string untouched = ide.MenuText();
        ide.Start();
        ide.App->ProcessMessages();
        EXPECT_EQ(ide.MenuText(), untouched);
        EXPECT_EQ(ide.OS.Dialogs().size(), 0u);
    }
    TSmallIDE ide;
    while (ide.Menu->Items()->Count() > 0) delete ide.Menu->Items()->Items(0);
    ide.Start();
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.Menu->Items()->Items(0)->Name(), "qsTarnExpMenu");
}

TEST(Menu, ItemsNamesAndSubmenu) {
    TSmallIDE ide;
    ide.Start();
    ExpData().MenuData.Get(0)->HaveLineBefore = true;
    // The experts are told before the manager, which brings the submenu.
    TTestExpert::OnNotify = [] {
        const TMenuItem& top = *TExpManager::Instance()->TopItem();
        EXPECT_EQ(top.Items(top.Count() - 1)->Count(), 0);
    };
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.MenuText(), "&File\n"
                              "&Edit\n"
                              "T&arnExperts (qsTarnExpMenu)\n"
                              "  -\n"
                              "  Command A (qsTarnExpMenuItem1)\n"
                              "  Command B (qsTarnExpMenuItem2)\n"
                              "  -\n"
                              "  Settings (qsTarnExpMenuItem3)\n"
                              "    Edit... (qsTarnExpMenuItem4)\n"
                              "    Load default (qsTarnExpMenuItem5)\n"
                              "    -\n"
                              "    Language (qsTarnExpMenuItem6)\n"
                              "      Default (English) (qsTarnExpMenuItem7)\n"
                              "      -\n"
                              "      Modules... (qsTarnExpMenuItem8)\n"
                              "  About... (qsTarnExpMenuItem9)\n"
                              "&Tools\n"
                              "  &Options...\n"
                              "&Help\n");
    TExpManager& manager = *TExpManager::Instance();
    TMenuItem& settings = *manager.TopItem()->Items(4);
    EXPECT_EQ(settings.AutoHotkeys(), maManual);
    EXPECT_EQ(settings.ImageIndex(), -1);
    EXPECT_EQ(settings.Items(0)->ImageIndex(), 36);
    EXPECT_TRUE(settings.Items(0)->RadioItem() && settings.Items(3)->RadioItem());
    EXPECT_FALSE(settings.RadioItem() || settings.Items(2)->RadioItem());
    EXPECT_EQ(manager.TopItem()->Items(5)->ImageIndex(), 50);
    EXPECT_EQ(manager.LanguageItem(), settings.Items(3));
    EXPECT_EQ(ide.Actions->ActionCount(), 8);
    // Made again, the submenu replaces itself.
    manager.CreateSettingSubMenu(&settings);
    EXPECT_EQ(settings.Count(), 4);
    EXPECT_EQ(ide.Actions->ActionCount(), 8);
}

TEST(Menu, DispatchFindsTheProcedure) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    ide.App->ProcessMessages();
    TMenuItem& item = *manager.TopItem()->Items(1);
    TakeEvents();
    item.Click();
    manager.CommonExpertExecProc(&item);
    EXPECT_EQ(TTestExpert::Sender, &item);
    manager.CommonExpertExecProc(item.Action());
    EXPECT_EQ(TTestExpert::Sender, item.Action());
    manager.CommonExpertExecProc(nullptr);
    manager.CommonExpertExecProc(manager.TopItem());
    EXPECT_EQ(TakeEvents(), (TStrs{"B.Update", "B.Run", "B.Run", "B.Run"}));
    // An action that the IDE frees takes its entry along, even when another gets its place.
    delete item.Action();
    EXPECT_EQ(item.Action(), nullptr);
    item.Click();
    TAction stranger;
    EXPECT_FALSE(manager.FindExecProc(&stranger));
    EXPECT_FALSE(manager.FindExecProc(nullptr));
    const auto run = [](TObject*) { Log("private"); };
    pPrivateExecProc(&item, TNotifyEvent::Calling(run));
    pPrivateExecProc(&item, {});
    EXPECT_EQ(TakeEvents(), TStrs{"private"});
    manager.ShowAbout(nullptr);
    EXPECT_EQ(ide.LastDialog(), "Quellmark Wizard Pack 1.0");
}

TEST(Menu, OpeningTellsChildrenLastFirst) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    ide.App->ProcessMessages();
    const auto opened = [](TObject* sender) { Log(static_cast<TMenuItem*>(sender)->Name()); };
    for (int i : {0, 1})
        static_cast<TExpMenuItem*>(manager.TopItem()->Items(i))->OnMenuOpen =
            TNotifyEvent::Calling(opened);
    TakeEvents();
    manager.TopItem()->Click();
    EXPECT_EQ(TakeEvents(), (TStrs{"qsTarnExpMenuItem2", "qsTarnExpMenuItem1"}));
    // Freed experts are not told.
    manager.RecreateExperts();
    TakeEvents();
    manager.TopItem()->Click();
    EXPECT_EQ(TakeEvents(), TStrs{});
}

TEST(Menu, RebuildWhileARebuildPumpsMessages) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    // The start-up's message and two requests wait while the first rebuild runs.
    manager.DoApplySettings();
    manager.DoApplySettings();
    manager.ApplySettings();
    EXPECT_EQ(Outline(ide), "File Edit [pack] Tools(Options...) Help");
    ExpData().MenuData.Get(0)->Caption = "Renamed";
    manager.DoApplySettings();
    manager.ApplySettings();
    EXPECT_EQ(manager.TopItem()->Items(0)->Caption(), "Renamed");
    EXPECT_EQ(ide.Actions->ActionCount(), 8);
    ide.App->ProcessMessages();
    EXPECT_EQ(Outline(ide), "File Edit [pack] Tools(Options...) Help");
}

TEST(Menu, ExpertsMayDoAnythingWhenToldOfAnItem) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    bool first = true;
    TTestExpert::OnNotify = [&] {
        if (!std::exchange(first, false)) return;
        // A new command, and a rebuild that is handled at once.
        TTestExpert::GetItemData("Late")->Caption = "Late";
        manager.DoApplySettings();
        ide.App->ProcessMessages();
    };
    ide.OS.SendMessage(manager.MessageWindow(), CM_BUILDMENU, 0, 0);
    EXPECT_EQ(manager.TopItem()->Count(), 5);
    ide.App->ProcessMessages();
    EXPECT_EQ(Outline(ide), "File Edit [pack] Tools(Options...) Help");
    EXPECT_EQ(manager.TopItem()->Count(), 6);
    EXPECT_EQ(manager.TopItem()->Items(5)->Caption(), "Late");
    EXPECT_EQ(ide.Actions->ActionCount(), 9);
}

TEST(Menu, FailureWhileBuildingOrOpening) {
    constexpr HKL russian = 0x419;
    TSmallIDE ide;
    ide.OS.ActivateKeyboardLayout(russian);
    TExpManager& manager = *ide.Start();
    TTestExpert::FailIn = "B.MenuNotification";
    for (const bool rebuild : {false, true}) {
        if (rebuild) manager.DoApplySettings();
        ide.App->ProcessMessages();
        EXPECT_EQ(ide.LastDialog(), "MenuNotification failed in B");
        EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
        EXPECT_EQ(Outline(ide), "File Edit [pack] Tools(Options...) Help");
    }
    TTestExpert::FailIn.clear();
    manager.DoApplySettings();
    ide.App->ProcessMessages();
    EXPECT_EQ(manager.TopItem()->Count(), 5);
    EXPECT_EQ(ide.Actions->ActionCount(), 8);

    const auto fail = [](TObject*) { throw Exception("no"); };
    static_cast<TExpMenuItem*>(manager.TopItem()->Items(0))->OnMenuOpen =
        TNotifyEvent::Calling(fail);
    EXPECT_THROW(manager.TopItem()->Click(), Exception);
    ide.Main->Show();
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);

    // What a command raises passes on to whoever ran it.
    for (const std::string where : {"A.Run", "A.Update"}) {
        TTestExpert::FailIn = where;
        EXPECT_THROW(manager.TopItem()->Items(0)->Click(), Exception);
    }
}

TEST(Menu, TheIDEMayFreeTheMenuFirst) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    ide.App->ProcessMessages();
    FreeObject(manager.TopItem());
    EXPECT_EQ(manager.TopItem(), nullptr);
    manager.ApplySettings();
    EXPECT_NE(manager.TopItem(), nullptr);
    delete ide.Menu;
    ide.Menu = nullptr;
    ide.Main->Menu = nullptr;
    ide.HasMainMenu = false;
    ide.Stop();
    EXPECT_EQ(ide.Actions->ActionCount(), 0);
}

TEST(Menu, SettingsTakeEffectWithARebuild) {
    TSmallIDE ide;
    TExpManager& manager = *ide.Start();
    ide.App->ProcessMessages();
    TExpMenuItemData& data = *ExpData().MenuData.Get(0);
    data.Caption = "New caption";
    data.ShortCutText = "no key";
    data.ImageIndex = 3;
    EXPECT_EQ(manager.TopItem()->Items(0)->Caption(), "Command A");
    manager.DoApplySettings();
    ide.App->ProcessMessages();
    const TMenuItem& item = *manager.TopItem()->Items(0);
    EXPECT_EQ(item.Caption(), "New caption");
    EXPECT_EQ(item.ShortCut(), 0);
    EXPECT_EQ(item.ImageIndex(), 3);
}

} // namespace
} // namespace tarn
