// Start-up, shut-down and re-creation: the exact order of their steps.

#include "TPackHarness.h"
#include "qsDialogs.h"

namespace tarn {
namespace {

using TStrs = std::vector<std::string>;

constexpr std::string_view WholeStartUp = "0 1 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18";
constexpr std::string_view WholeShutDown = "0 1 3 4 5 6 7 8 9 10 11";

/// Fills every slot with a recorder.
void RecordSlots(bool loads = true) {
    ExpManagerSlots().ProcessLocalization = [](TExpManager& manager) {
        Log(Format("ProcessLocalization data=%d", {manager.Data() ? 1 : 0}));
    };
    ExpManagerSlots().LoadExpData = [loads](TExpData& data, const std::string&) {
        Log(Format("Load experts=%d items=%d",
                   {data.ActiveExperts.Count(), data.MenuData.Count()}));
        return loads;
    };
    ExpManagerSlots().SaveExpData = [](TExpData& data, const std::string&) {
        Log(Format("Save items=%d", {data.MenuData.Count()}));
    };
    ExpManagerSlots().SaveLocalization = [](TExpManager& manager) {
        Log(Format("SaveLocalization data=%d", {manager.Data() ? 1 : 0}));
    };
    ExpManagerSlots().WriteLogEntry = [](TObject* sender, const std::exception& error) {
        Log(Format("log %s: %s [%s|%s]",
                   {sender->ClassName(), error.what(), ErrorLog().ConstructorTrace,
                    ErrorLog().DestructorTrace}));
    };
}

TEST(LifeCycle, StepsInOrder) {
    TSmallIDE ide;
    ide.WriteSettings("something");
    RecordSlots();
    ide.Initialize();
    ide.OS.Recording = true;
    Register();
    EXPECT_EQ(TakeEvents(),
              (TStrs{"ProcessLocalization data=0", "AllocateHWnd", "Load experts=2 items=0",
                     "A.Create", "B.Create", "A.Init", "B.Init", "Load experts=2 items=4",
                     "A.Load(true)", "B.Load(true)", "PostMessage C003"}));
    EXPECT_EQ(ErrorLog().ConstructorTrace, WholeStartUp);
    EXPECT_EQ(ErrorLog().CreatedExperts, "ExpertB\r\nExpertA");
    EXPECT_EQ(ErrorLog().DestructorTrace, "");
    ASSERT_EQ(ide.Wizards.size(), 1u);
    EXPECT_EQ(ide.Wizards[0]->GetIDString(), "Tarn&QS.ServiceDelphiWizards");
    EXPECT_EQ(ide.Wizards[0]->GetName(), "Quellmark Wizard Pack");
    EXPECT_EQ(ide.Wizards[0]->GetState().Mask(), 1u);
    EXPECT_EQ(TExpManager::Instance()->GetMenuText(), "Test ...");
    EXPECT_EQ(DialogCaption(), "Small IDE");
    EXPECT_TRUE(pPrivateExecProc);
    EXPECT_EQ(TExpManager::Instance()->TopItem(), nullptr);

    ide.App->ProcessMessages();
    EXPECT_EQ(TakeEvents(), (TStrs{"layout 409", "A.MenuNotification ItemA qsTarnExpMenuItem1",
                                   "B.MenuNotification ItemA qsTarnExpMenuItem1",
                                   "A.MenuNotification ItemB qsTarnExpMenuItem2",
                                   "B.MenuNotification ItemB qsTarnExpMenuItem2",
                                   "A.MenuNotification SettingItem qsTarnExpMenuItem3",
                                   "B.MenuNotification SettingItem qsTarnExpMenuItem3",
                                   "A.MenuNotification AboutFormItem qsTarnExpMenuItem7",
                                   "B.MenuNotification AboutFormItem qsTarnExpMenuItem7",
                                   "PostMessage C002", "layout 409"}));

    ide.Stop();
    EXPECT_EQ(TakeEvents(), (TStrs{"DeallocateHWnd", "Save items=4", "B.Destroy", "A.Destroy",
                                   "SaveLocalization data=0"}));
    EXPECT_EQ(ErrorLog().DestructorTrace, WholeShutDown);
    EXPECT_EQ(ErrorLog().DeletedExperts, "ExpertA\r\nExpertB");
    EXPECT_FALSE(ide.App->OnException);
    EXPECT_FALSE(ide.Scr->OnActiveFormChange);
    EXPECT_FALSE(pPrivateExecProc);
    EXPECT_EQ(TExpManager::Instance(), nullptr);
    EXPECT_EQ(ide.Actions->ActionCount(), 0);

    ide.Unload();
    EXPECT_EQ(ErrorLog().DestructorTrace + PackageDir() + SettingsFileName(), "");
    EXPECT_FALSE(HasExpData());
    EXPECT_EQ(ExpertSlot(1), nullptr);
}

TEST(LifeCycle, SettingsFileMissingEmptyOrUnreadable) {
    const struct {
        const char* Name;
        bool Exists;
        std::string_view Text;
        bool Loads;
        std::string Load;
    } cases[] = {
        {"missing", false, "", true, "A.Load(false)"},
        {"empty", true, "", true, "A.Load(false)"},
        {"unreadable", true, "x", false, "A.Load(false)"},
        {"good", true, "x", true, "A.Load(true)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        TSmallIDE ide;
        if (c.Exists) ide.WriteSettings(c.Text);
        ExpManagerSlots().LoadExpData = [&c](TExpData&, const std::string&) {
            if (TExpManager::Instance()) TExpManager::Instance()->Data()->ExpertVersion = "0.7";
            return c.Loads;
        };
        TExpManager* const manager = ide.Start();
        ASSERT_NE(manager, nullptr);
        const TStrs events = TakeEvents();
        EXPECT_EQ(std::count(events.begin(), events.end(), c.Load), 1);
        manager->DoRecreateExperts();
        EXPECT_EQ(manager->Data()->ExpertVersion, "1.0");
    }
}

TEST(LifeCycle, InactiveExpertTakesNoPart) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    ExpManagerSlots().LoadExpData = [](TExpData& data, const std::string&) {
        data.ActiveExperts.FindExpert("ExpertA")->Active = false;
        return true;
    };
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    for (const std::string& event : TakeEvents()) EXPECT_NE(event.substr(0, 2), "A.") << event;
    EXPECT_EQ(manager->ExpObjects()->Count(), 1);
    EXPECT_EQ(ide.MenuText().find("Command A"), std::string::npos);
    EXPECT_NE(ide.MenuText().find("Command B"), std::string::npos);
}

TEST(LifeCycle, ExpertWithoutSettingsItemIsNotConstructed) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    ExpManagerSlots().LoadExpData = [](TExpData& data, const std::string&) {
        data.ActiveExperts.Clear();
        return true;
    };
    ASSERT_NE(ide.Start(), nullptr);
    EXPECT_EQ(TakeEvents(), TStrs{});
}

TEST(LifeCycle, FailingStartUpSavesAndRegistersNothing) {
    const struct {
        std::string FailIn;
        std::string_view Trace;
        TStrs Lived;
    } cases[] = {
        {"A.Create", "0 1 3 4 5 6 7 8 9", {}},
        {"B.Create", "0 1 3 4 5 6 7 8 9", {"A.Destroy"}},
        {"A.Init", "0 1 3 4 5 6 7 8 9 10 11", {"B.Destroy", "A.Destroy"}},
        {"B.Load", "0 1 3 4 5 6 7 8 9 10 11 12 13 14", {"B.Destroy", "A.Destroy"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.FailIn);
        TSmallIDE ide;
        RecordSlots();
        ide.Initialize();
        TTestExpert::FailIn = c.FailIn;
        Register();
        TTestExpert::FailIn.clear();
        TStrs events = TakeEvents();
        const auto logged = std::find_if(events.begin(), events.end(),
                                         [](const auto& e) { return e.starts_with("log "); });
        ASSERT_NE(logged, events.end());
        // The whole trace is there when the error is handed on, and nothing is torn down before.
        EXPECT_NE(logged->find("[" + std::string(c.Trace) + "|]"), std::string::npos) << *logged;
        EXPECT_EQ(logged->substr(0, 16), "log TExpManager:");
        // A half-made expert has destroyed itself before that.
        TStrs after(logged + 1, events.end());
        EXPECT_EQ(after, c.Lived);
        EXPECT_EQ(ide.Wizards.size(), 0u);
        EXPECT_EQ(ide.OS.Dialogs().size(), 1u);
        EXPECT_FALSE(ide.App->OnException);
        EXPECT_FALSE(ide.Scr->OnActiveFormChange);
        EXPECT_EQ(TExpManager::Instance(), nullptr);
        EXPECT_EQ(ide.OS.PendingMessages(), 0u);
        // The next start works.
        Register();
        EXPECT_NE(TExpManager::Instance(), nullptr);
    }
}

TEST(LifeCycle, FailingShutDownGoesOn) {
    TSmallIDE ide;
    RecordSlots();
    ide.Start();
    ide.App->ProcessMessages();
    TakeEvents();
    ExpManagerSlots().SaveExpData = [](TExpData&, const std::string&) {
        throw Exception("disk full");
    };
    TTestExpert::FailIn = "B.BeforeDestruction";
    ide.Stop();
    // The first error is logged with the trace so far; the second is not shown.
    EXPECT_EQ(TakeEvents(),
              (TStrs{"log TExpManager: disk full [" + std::string(WholeStartUp) + "|0 1 3]",
                     "B.Destroy", "A.Destroy", "SaveLocalization data=0"}));
    EXPECT_EQ(ide.OS.Dialogs().size(), 1u);
    EXPECT_EQ(ErrorLog().DestructorTrace, "0 1 3 5 7 8 9 10 11");
    EXPECT_EQ(ErrorLog().DeletedExperts, "ExpertA\r\nExpertB");
    EXPECT_FALSE(ide.App->OnException);
}

TEST(LifeCycle, AutoSaveSwitchedOff) {
    TSmallIDE ide;
    RecordSlots();
    ide.Start()->Data()->AutoSaveSettings = false;
    TakeEvents();
    ide.Stop();
    EXPECT_EQ(TakeEvents(), (TStrs{"B.Destroy", "A.Destroy", "SaveLocalization data=0"}));
    EXPECT_EQ(ErrorLog().DestructorTrace, WholeShutDown);
}

TEST(LifeCycle, Recreation) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    RecordSlots();
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    TakeEvents();
    manager->DoRecreateExperts();
    EXPECT_EQ(TakeEvents(), (TStrs{"B.Destroy", "A.Destroy", "Load experts=2 items=0", "A.Create",
                                   "B.Create", "A.Init", "B.Init", "Load experts=2 items=4",
                                   "A.Load(true)", "B.Load(true)"}));
    EXPECT_EQ(ide.Scr->Cursor(), crDefault);
    EXPECT_EQ(ide.OS.PendingMessages(), 1u);

    // Between the two the old menu stands, and its commands reach nobody.
    TMenuItem* const command = manager->TopItem()->Items(0);
    command->InitiateAction();
    command->Click();
    EXPECT_EQ(TakeEvents(), TStrs{});
    ide.App->ProcessMessages();
    TakeEvents();
    manager->TopItem()->Items(0)->Click();
    EXPECT_EQ(TakeEvents(), (TStrs{"A.Update", "A.Run"}));

    // An error abandons the rest and gives the cursor back.
    TTestExpert::FailIn = "B.Create";
    EXPECT_THROW(manager->DoRecreateExperts(), Exception);
    EXPECT_EQ(ide.Scr->Cursor(), crDefault);
    EXPECT_EQ(ide.OS.PendingMessages(), 0u);
    manager->TopItem()->Items(0)->Click();
    TTestExpert::FailIn.clear();
    manager->DoRecreateExperts();
    EXPECT_EQ(manager->ExpObjects()->Count(), 2);
}

TEST(LifeCycle, LoadDefaultAsksAndForgetsTheFile) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    RecordSlots();
    TExpManager* const manager = ide.Start();
    TakeEvents();
    ide.OS.QueueAnswer(IDNO);
    manager->LoadDefaultSettings(nullptr);
    EXPECT_EQ(TakeEvents(), TStrs{});
    EXPECT_EQ(ide.LastDialog(), "Load default expert’s settings?");
    EXPECT_TRUE(std::filesystem::exists(ide.Dir / "ExpData.spc"));
    ide.OS.QueueAnswer(IDYES);
    manager->LoadDefaultSettings(nullptr);
    EXPECT_FALSE(std::filesystem::exists(ide.Dir / "ExpData.spc"));
    EXPECT_EQ(TakeEvents(), (TStrs{"B.Destroy", "A.Destroy", "A.Create", "B.Create", "A.Init",
                                   "B.Init", "A.Load(false)", "B.Load(false)"}));
    EXPECT_EQ(ide.Scr->Cursor(), crDefault);
}

TEST(LifeCycle, KeyboardLayoutAlwaysComesBack) {
    constexpr HKL russian = 0x419;
    TSmallIDE ide;
    ide.OS.ActivateKeyboardLayout(russian);
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    // Hot keys are read under the US layout, whatever the user's is.
    EXPECT_EQ(manager->TopItem()->Items(0)->ShortCut(), scCtrl | 0xBA);
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);

    // The menu opens: US until the active form changes.
    manager->ExpMenuClick(manager->TopItem());
    manager->ExpMenuClick(manager->TopItem());
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), LayoutUSEnglish);
    EXPECT_TRUE(manager->LayoutPending());
    // A rebuild meanwhile must not take the US layout for the user's.
    manager->ApplySettings();
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
    EXPECT_EQ(manager->TopItem()->Items(0)->ShortCut(), scCtrl | 0xBA);
    ide.Main->Show();
    EXPECT_FALSE(manager->LayoutPending());
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);

    // Shut-down with a restore still owed.
    manager->ExpMenuClick(manager->TopItem());
    ide.Stop();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
}

TEST(LifeCycle, ActiveFormHookKeepsTheFormerHandler) {
    TSmallIDE ide;
    const auto former = [](TObject* sender) { Log("former " + std::string(sender->ClassName())); };
    ide.Scr->OnActiveFormChange = TNotifyEvent::Calling(former);
    const TNotifyEvent saved = ide.Scr->OnActiveFormChange;
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    TakeEvents();
    manager->ExpMenuClick(manager->TopItem());
    ide.OS.Recording = true;
    ide.Main->Show();
    EXPECT_EQ(TakeEvents(), (TStrs{"former TScreen", "PostMessage C002"}));
    ide.Stop();
    EXPECT_EQ(ide.Scr->OnActiveFormChange, saved);
}

TEST(LifeCycle, ErrorLogSwitch) {
    TSmallIDE ide;
    const auto former = [](TObject*, const std::exception& error) {
        Log(std::string("former ") + error.what());
    };
    ide.App->OnException = TExceptionEvent::Calling(former);
    const TExceptionEvent saved = ide.App->OnException;
    TExpManager* const manager = ide.Start();
    const auto fail = [&ide] {
        try {
            throw Exception("oops");
        } catch (...) {
            ide.App->HandleException(nullptr);
        }
        return TakeEvents();
    };
    TakeEvents();
    EXPECT_TRUE(ErrorLog().LogAllowed);
    EXPECT_EQ(ErrorLog().LogLimit, 50u);
    EXPECT_NE(ide.App->OnException, saved);
    EXPECT_EQ(fail(), TStrs{"former oops"});
    manager->Data()->SetErrorLogAllowed(true);
    EXPECT_EQ(fail(), TStrs{"former oops"});
    manager->Data()->SetErrorLogAllowed(false);
    EXPECT_FALSE(ErrorLog().LogAllowed);
    EXPECT_EQ(ide.App->OnException, saved);
    manager->Data()->SetErrorLogAllowed(true);
    manager->Data()->SetMaxLogSize(7);
    EXPECT_EQ(ErrorLog().LogLimit, 7u);
    // A copy that belongs to no manager switches nothing.
    { TExpManagerData copy; }
    EXPECT_TRUE(ErrorLog().LogAllowed);
    // An error while writing does not hide the first one.
    ExpManagerSlots().WriteLogEntry = [](TObject*, const std::exception&) {
        throw Exception("log is full");
    };
    EXPECT_EQ(fail(), TStrs{"former oops"});
    EXPECT_EQ(ide.LastDialog(), "log is full");
    ide.Stop();
    EXPECT_EQ(ide.App->OnException, saved);
}

TEST(LifeCycle, UnitsAreCounted) {
    TSmallIDE ide;
    ide.Initialize();
    TExpData* const data = &ExpData();
    InitializeExpMng();
    EXPECT_EQ(&ExpData(), data);
    FinalizeExpMng();
    EXPECT_TRUE(HasExpData());
}

} // namespace
} // namespace tarn
