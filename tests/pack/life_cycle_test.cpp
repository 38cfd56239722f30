// Start-up, shut-down and re-creation: the exact order of their steps.

#include "TPackHarness.h"
#include "qsDialogs.h"
#include "qsLocale.h"

namespace tarn {
namespace {

using TStrs = std::vector<std::string>;

constexpr std::string_view WholeStartUp = "0 1 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18";
constexpr std::string_view WholeShutDown = "0 1 3 4 5 6 7 8 9 10 11";

/// Raises when that is where the test wants a failure.
void FailHere(std::string_view where) {
    if (TTestExpert::FailIn == where) throw Exception("failure in " + std::string(where));
}

/// Fills every slot with a recorder.
void RecordSlots(bool loads = true) {
    ExpManagerSlots().ProcessLocalization = [](TExpManager& manager) {
        Log(Format("ProcessLocalization data=%d", {manager.Data() ? 1 : 0}));
        FailHere("ProcessLocalization");
    };
    ExpManagerSlots().LoadExpData = [loads](TExpData& data, const std::string&) {
        Log(Format("Load experts=%d items=%d",
                   {data.ActiveExperts.Count(), data.MenuData.Count()}));
        FailHere(data.MenuData.Count() == 0 ? "first load" : "second load");
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
                                   "A.MenuNotification AboutFormItem qsTarnExpMenuItem9",
                                   "B.MenuNotification AboutFormItem qsTarnExpMenuItem9",
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

/// What of the manager exists, one letter each: exception handler, stored settings, window, list of
/// experts, editor (captioned, prepared), form hook, published manager, menu; a number is the
/// experts listed.
std::string Existing(const TExpManager& manager) {
    const TExpertEditor* const editor = manager.Editor();
    const TExpObjectList* const experts = manager.ExpObjects();
    const TCustomData& custom = ExpData().CustomData;
    const std::pair<bool, char> parts[] = {
        {Application()->OnException && manager.Data(), 'x'},
        {manager.Data() && custom.Count() > 0 && custom.Get(0)->NestedObject() == manager.Data(),
         's'},
        {manager.MessageWindow() != 0, 'w'},
        {experts, 'l'},
        {editor, 'e'},
        {editor && !editor->TranslatingTable()->IsEmpty(), 'c'},
        {editor && !editor->SpcFileName().empty(), 'p'},
        {static_cast<bool>(Screen()->OnActiveFormChange), 'h'},
        {TExpManager::Instance() && pPrivateExecProc, 'i'},
        {manager.TopItem(), 'm'},
    };
    std::string text = ": ";
    for (const auto& [exists, letter] : parts)
        if (exists) text += letter;
    if (experts && experts->Count() > 0) text += IntToStr(experts->Count());
    return text;
}

TEST(LifeCycle, WhatExistsAtEachStep) {
    TSmallIDE ide;
    ide.WriteSettings("something");
    RecordSlots();
    const auto localization = ExpManagerSlots().ProcessLocalization;
    ExpManagerSlots().ProcessLocalization = [&](TExpManager& manager) {
        EventSuffix = [&manager] { return Existing(manager); };
        localization(manager);
    };
    // The first text of each step that asks for one: list, own data, own items, editor captions.
    const auto text = [](int id) -> std::string {
        for (int first : {51140, 51126, 51049, 51142})
            if (id == first) Log(Format("text %d", {id}));
        return {};
    };
    Locale().OnLocaleStr = TLocaleStrEvent::Calling(text);
    ide.Initialize();
    ide.OS.Recording = true;
    Register();
    EXPECT_EQ(
        TakeEvents(),
        (TStrs{"ProcessLocalization data=0: ", "AllocateHWnd: x", "text 51140: xwle",
               "text 51126: xwle", "Load experts=2 items=0: xswle", "A.Create: xswle",
               "B.Create: xswle1", "A.Init: xswle2", "B.Init: xswle2", "text 51049: xswle2",
               "text 51142: xswle2", "Load experts=2 items=4: xswlecp2", "A.Load(true): xswlecp2",
               "B.Load(true): xswlecp2", "PostMessage C003: xswlecp2"}));
    ide.App->ProcessMessages();
    TakeEvents();

    TExpManager::Instance()->RecreateExperts();
    EXPECT_EQ(TakeEvents(),
              (TStrs{"B.Destroy: xwlecphim1", "A.Destroy: xwlecphim", "text 51140: xwlecphim",
                     "text 51126: xwlecphim", "Load experts=2 items=0: xswlecphim",
                     "text 51142: xswlecphim", "A.Create: xswlecphim", "B.Create: xswlecphim1",
                     "A.Init: xswlecphim2", "B.Init: xswlecphim2", "text 51049: xswlecphim2",
                     "text 51142: xswlecphim2"}));

    ide.Stop();
    Locale().OnLocaleStr = {};
    EventSuffix = nullptr;
    EXPECT_EQ(TakeEvents(),
              (TStrs{"DeallocateHWnd: xslecphm2", "Save items=4: xslecphm2", "B.Destroy: xslecph1",
                     "A.Destroy: xslecph", "SaveLocalization data=0: "}));
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
        {"first load", "0 1 3 4 5 6 7 8", {}},
        {"A.Create", "0 1 3 4 5 6 7 8 9", {}},
        {"B.Create", "0 1 3 4 5 6 7 8 9", {"A.Destroy"}},
        {"A.Init", "0 1 3 4 5 6 7 8 9 10 11", {"B.Destroy", "A.Destroy"}},
        {"second load", "0 1 3 4 5 6 7 8 9 10 11 12 13 14", {"B.Destroy", "A.Destroy"}},
        {"B.Load", "0 1 3 4 5 6 7 8 9 10 11 12 13 14", {"B.Destroy", "A.Destroy"}},
        {"no IDE", WholeStartUp, {"B.Destroy", "A.Destroy"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.FailIn);
        TSmallIDE ide;
        ide.WriteSettings("x");
        RecordSlots();
        ide.Initialize();
        TTestExpert::FailIn = c.FailIn;
        const TIntf<IInterface> services(IDEServices().Get());
        if (c.FailIn == "no IDE") SetIDEServices(nullptr);
        Register();
        SetIDEServices(services);
        TTestExpert::FailIn.clear();
        TStrs events = TakeEvents();
        const auto logged = std::find_if(events.begin(), events.end(),
                                         [](const auto& e) { return e.starts_with("log "); });
        ASSERT_NE(logged, events.end());
        // The whole trace is there when the error is handed on, and nothing is torn down before.
        EXPECT_NE(logged->find("[" + std::string(c.Trace) + "|]"), std::string::npos) << *logged;
        EXPECT_EQ(logged->substr(0, 16), "log TExpManager:");
        // A half-made expert has destroyed itself before that. Nothing is saved.
        TStrs after(logged + 1, events.end());
        EXPECT_EQ(after, c.Lived);
        EXPECT_EQ(ErrorLog().ConstructorTrace + "|" + ErrorLog().DestructorTrace,
                  std::string(c.Trace) + "|0 1 3 5 6 7 8 9 10");
        EXPECT_EQ(ide.Wizards.size(), 0u);
        EXPECT_EQ(ide.OS.Dialogs().size(), 1u);
        EXPECT_FALSE(ide.App->OnException);
        EXPECT_FALSE(ide.Scr->OnActiveFormChange);
        EXPECT_EQ(TExpManager::Instance(), nullptr);
        EXPECT_EQ(ide.OS.PendingMessages(), 0u);
        EXPECT_EQ(ide.OS.WindowCount(), 1u); // the application's
        // The next start works.
        Register();
        EXPECT_NE(TExpManager::Instance(), nullptr);
    }
}

TEST(LifeCycle, FailingLocalizationIsHandedOnWithoutTheLog) {
    TSmallIDE ide;
    RecordSlots();
    ide.Initialize();
    TTestExpert::FailIn = "ProcessLocalization";
    Register();
    EXPECT_EQ(TakeEvents(), TStrs{"ProcessLocalization data=0"});
    EXPECT_EQ(ide.LastDialog(), "failure in ProcessLocalization");
    EXPECT_EQ(ErrorLog().ConstructorTrace, "0");
    EXPECT_EQ(TExpManager::Instance(), nullptr);
}

TEST(LifeCycle, ASecondStartBeginsAnew) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    RecordSlots();
    // The first start fails when both experts have given their commands.
    TTestExpert::FailIn = "B.Load";
    ide.Start();
    TTestExpert::FailIn.clear();
    ExpManagerSlots().LoadExpData = [](TExpData& data, const std::string&) {
        data.ActiveExperts.FindExpert("ExpertA")->Active = false;
        return true;
    };
    Register();
    ide.App->ProcessMessages();
    ASSERT_NE(TExpManager::Instance(), nullptr);
    EXPECT_EQ(ide.MenuText().find("Command A"), std::string::npos);
    EXPECT_EQ(ExpData().LocalNames, TExpManager::Instance()->GetLocalPropNames() + "\r\n");
}

TEST(LifeCycle, ThereIsOneManager) {
    TSmallIDE ide;
    TExpManager* const manager = ide.Start();
    TakeEvents();
    Register();
    EXPECT_EQ(TExpManager::Instance(), manager);
    EXPECT_EQ(ide.Wizards.size(), 1u);
    EXPECT_EQ(TakeEvents(), TStrs{});
    ide.Stop();
    EXPECT_FALSE(ide.App->OnException);
    // The next one begins with traces of its own.
    Register();
    EXPECT_NE(TExpManager::Instance(), nullptr);
    EXPECT_EQ(ErrorLog().ConstructorTrace, WholeStartUp);
    EXPECT_EQ(ErrorLog().DestructorTrace + ErrorLog().DeletedExperts, "");
}

TEST(LifeCycle, ReleasedWithoutNotice) {
    TSmallIDE ide;
    RecordSlots();
    ide.Start(); // the menu's message is still queued
    TakeEvents();
    ide.Wizards.clear();
    EXPECT_EQ(TakeEvents(),
              (TStrs{"Save items=4", "B.Destroy", "A.Destroy", "SaveLocalization data=0"}));
    EXPECT_EQ(ErrorLog().DestructorTrace, WholeShutDown);
    EXPECT_EQ(ide.OS.PendingMessages(), 0u);
}

TEST(LifeCycle, LetGoDuringARebuild) {
    constexpr HKL russian = 0x419;
    TSmallIDE ide;
    ide.OS.ActivateKeyboardLayout(russian);
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    const std::string before = ide.MenuText();
    // The message that ends the pack is handled while the rebuild handles messages.
    const auto end = [&ide](TMessage&) { ide.Unload(); };
    const TMessageWindow ending(TWndMethod::Calling(end));
    manager->DoApplySettings();
    ide.OS.PostMessage(ending.Handle(), 0, 0, 0);
    manager->DoApplySettings();
    ide.App->ProcessMessages();
    EXPECT_EQ(TExpManager::Instance(), nullptr);
    EXPECT_NE(ide.MenuText(), before);
    EXPECT_EQ(ide.MenuText().find("qsTarn"), std::string::npos);
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
    EXPECT_EQ(ide.OS.PendingMessages(), 0u);
    EXPECT_EQ(ide.OS.Dialogs().size(), 0u);
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
    // The manager's own commands still run.
    TMenuItem* const loadDefault = manager->TopItem()->Items(3)->Items(1);
    loadDefault->Click();
    EXPECT_EQ(ide.LastDialog(), "Load default expert’s settings?");
    TTestExpert::FailIn.clear();
    manager->DoRecreateExperts();
    EXPECT_EQ(manager->ExpObjects()->Count(), 2);
    ide.Stop();
    EXPECT_EQ(ErrorLog().DeletedExperts, "ExpertA\r\nExpertB");
}

TEST(LifeCycle, FailedRecreationSavesNothingUntilOneSucceeds) {
    for (const std::string where : {"B.BeforeDestruction", "first load", "A.Create", "B.Init"}) {
        for (const bool repaired : {false, true}) {
            SCOPED_TRACE(where + (repaired ? " repaired" : ""));
            TSmallIDE ide;
            ide.WriteSettings("x");
            RecordSlots();
            TExpManager* const manager = ide.Start();
            ide.App->ProcessMessages();
            TTestExpert::FailIn = where;
            EXPECT_THROW(manager->DoRecreateExperts(), Exception);
            TTestExpert::FailIn.clear();
            EXPECT_EQ(ide.Scr->Cursor(), crDefault);
            if (repaired) manager->DoRecreateExperts();
            // Whatever menu is built, it reaches no expert that is gone.
            manager->ApplySettings();
            TakeEvents();
            const int items = manager->TopItem()->Count();
            for (int i = 0; i < items; ++i) manager->TopItem()->Items(i)->Click();
            TakeEvents();
            ide.Stop();
            const TStrs events = TakeEvents();
            EXPECT_EQ(std::count(events.begin(), events.end(), "Save items=4"), repaired ? 1 : 0);
            EXPECT_FALSE(ide.App->OnException);
        }
    }
}

/// Lists itself when there is a manager, and may fail afterwards.
class TSelfListed : public TTestExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TSelfListed() : TTestExpert("S") {
        if (TExpManager* const manager = TExpManager::Instance())
            manager->RegisterExpObject(this, "Self");
        FailHere("S.listed");
    }
};
constinit const TClassRecord TSelfListed::ClassRecord{"TSelfListed", &TTestExpert::ClassRecord,
                                                      CreateObject<TSelfListed>};

TEST(LifeCycle, ExpertThatListsItself) {
    TSmallIDE ide;
    ide.Initialize();
    RegisterExpClass(TExpertClass::Of<TSelfListed>(), 9, "ExpertS", -1);
    Register();
    TExpManager* const manager = TExpManager::Instance();
    TakeEvents();
    manager->RecreateExperts();
    ASSERT_EQ(manager->ExpObjects()->Count(), 3);
    EXPECT_EQ(manager->ExpObjects()->Get(2).Name, "Self");
    // One that fails after it has listed itself is neither told nor freed again.
    TTestExpert::FailIn = "S.listed";
    EXPECT_THROW(manager->RecreateExperts(), Exception);
    manager->LoadNotify(false);
    TakeEvents();
    ide.Stop();
    EXPECT_EQ(TakeEvents(), (TStrs{"B.Destroy", "A.Destroy"}));
}

TEST(LifeCycle, EditingTheSettings) {
    const struct {
        const char* Name;
        bool Changes, Fails, Unloads;
        int Loads;
    } cases[] = {
        {"unchanged", false, false, false, 0},
        {"changed", true, false, false, 2},
        {"failing", true, true, false, 0},
        {"the pack goes meanwhile", true, false, true, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        TSmallIDE ide;
        ide.WriteSettings("x");
        TExpManager* const manager = ide.Start();
        int loads = 0;
        ExpManagerSlots().LoadExpData = [&](TExpData&, const std::string&) {
            ++loads;
            EXPECT_EQ(OwnerWnd(), ide.App->Handle());
            EXPECT_EQ(ide.Scr->Cursor(), crHourGlass);
            return true;
        };
        auto modal = [&](TForm& form) {
            TSpcEditor& editor = dynamic_cast<TSpcForm&>(form).Editor();
            EXPECT_EQ(&editor, manager->Editor());
            EXPECT_EQ(editor.SpcRoot(), &ExpData());
            SetOwnerWnd(77);
            EXPECT_EQ(OwnerWnd(), 77u);
            EXPECT_EQ(c.Changes && editor.Save(), c.Changes);
            if (c.Unloads) ide.Stop();
            if (c.Fails) throw Exception("no window");
        };
        ide.App->OnModal = TMethod<void(TForm&)>::Calling(modal);
        ide.App->ProcessMessages();
        TMenuItem* const edit = manager->TopItem()->Items(3)->Items(0);
        EXPECT_EQ(edit->Caption(), "Edit...");
        if (c.Fails)
            EXPECT_THROW(edit->Click(), Exception);
        else
            edit->Click();
        EXPECT_EQ(loads, c.Loads);
        EXPECT_EQ(TExpManager::Instance() == nullptr, c.Unloads);
        EXPECT_EQ(OwnerWnd(), ide.App->Handle());
        EXPECT_EQ(ide.Scr->Cursor(), crDefault);
        EXPECT_EQ(ide.OS.PendingMessages(), c.Loads > 0 ? 1u : 0u);
    }
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
    // Opened again before the form changes, the menu leaves the layout alone.
    manager->ExpMenuClick(manager->TopItem());
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
    ide.Main->Show();
    EXPECT_FALSE(manager->LayoutPending());
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);

    // A restore that is handled while a rebuild pumps messages must not reach the hot keys.
    manager->ExpMenuClick(manager->TopItem());
    ide.Main->Hide();
    manager->ApplySettings();
    EXPECT_EQ(manager->TopItem()->Items(0)->ShortCut(), scCtrl | 0xBA);
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);

    // Shut-down with a restore still owed.
    manager->ExpMenuClick(manager->TopItem());
    ide.Stop();
    EXPECT_EQ(ide.OS.GetKeyboardLayout(), russian);
}

TEST(LifeCycle, MessagesOfTheHiddenWindow) {
    TSmallIDE ide;
    TExpManager* const manager = ide.Start();
    EXPECT_EQ(ide.OS.SendMessage(manager->MessageWindow(), CM_BUILDMENU, 5, 0), 0);
    EXPECT_NE(manager->TopItem(), nullptr);
    // Any other message has its default result.
    EXPECT_EQ(ide.OS.SendMessage(manager->MessageWindow(), 0xC004, 5, 0), 0xC009);
    EXPECT_EQ(ide.OS.SendMessage(manager->MessageWindow(), 0xC000, 5, 0), 0xC005);
}

TEST(LifeCycle, RebuildStepsInOrder) {
    TSmallIDE ide;
    TExpManager* const manager = ide.Start();
    ide.App->ProcessMessages();
    TakeEvents();
    EventSuffix = [manager] { return manager->TopItem() ? "" : " without menu"; };
    const auto handle = [](TMessage& message) { Log(Format("message %d", {message.WParam})); };
    const TMessageWindow window(TWndMethod::Calling(handle));
    int posted = 1;
    ide.OS.PostMessage(window.Handle(), 0, posted, 0);
    TTestExpert::OnNotify = [&] { ide.OS.PostMessage(window.Handle(), 0, ++posted, 0); };
    ExpData().MenuData.Delete(3);
    ExpData().MenuData.Delete(2);
    ExpData().MenuData.Delete(1);
    ide.OS.Recording = true;
    manager->ApplySettings();
    ide.OS.Recording = false;
    EXPECT_EQ(TakeEvents(), (TStrs{"layout 409", "message 1 without menu",
                                   "A.MenuNotification ItemA qsTarnExpMenuItem1", "PostMessage 0",
                                   "B.MenuNotification ItemA qsTarnExpMenuItem1", "PostMessage 0",
                                   "message 2", "message 3", "PostMessage C002"}));
    EventSuffix = nullptr;
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
    // Nothing is owed any more.
    ide.Main->Hide();
    EXPECT_EQ(TakeEvents(), TStrs{"former TScreen"});
    ide.OS.Recording = false;
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
    // A re-creation takes the same place again.
    manager->RecreateExperts();
    TakeEvents();
    EXPECT_EQ(fail(), TStrs{"former oops"});
    ide.Stop();
    EXPECT_EQ(ide.App->OnException, saved);
}

TEST(LifeCycle, UnitsAreCounted) {
    TSmallIDE ide;
    int installed = 0;
    ExpManagerSlots().InstallSaveRoutine = [&] { ++installed; };
    ide.Initialize();
    EXPECT_EQ(PackageDir(), ide.Dir.string() + "/");
    TExpData* const data = &ExpData();
    InitializeExpMng();
    EXPECT_EQ(&ExpData(), data);
    FinalizeExpMng();
    EXPECT_TRUE(HasExpData());
    EXPECT_EQ(installed, 1);
}

TEST(Dialogs, FlagsAndAnswers) {
    TSmallIDE ide;
    SetDialogCaption("Caption");
    const struct {
        std::function<int()> Show;
        std::uint32_t Flags;
        int Result;
        std::string_view Text;
    } cases[] = {
        {[] { return ShowError("e %d", {1}), 0; }, 16, 0, "e 1"},
        {[] { return ShowInfo("i %d", {2}), 0; }, 64, 0, "i 2"},
        {[] { return ShowWarning("w %d", {3}), 0; }, 48, 0, "w 3"},
        {[] { return QueryDialog("q %d", {4}) ? 1 : 0; }, 36, 1, "q 4"},
        {[] { return QueryDialogEx("x %d", {5}); }, 35, IDYES, "x 5"},
        {[] { return WarningDialog("v %d", {6}) ? 1 : 0; }, 52, 1, "v 6"},
        // A question mark, as for QueryDialogEx.
        {[] { return WarningDialogEx("y %d", {7}); }, 35, IDYES, "y 7"},
        {[] { return ShowInfo("100%"), 0; }, 64, 0, "100%"},
    };
    for (const auto& c : cases) {
        ide.OS.QueueAnswer(IDYES);
        EXPECT_EQ(c.Show(), c.Result);
        EXPECT_EQ(ide.OS.Dialogs().back().Flags, c.Flags) << c.Text;
        EXPECT_EQ(ide.LastDialog(), c.Text);
        EXPECT_EQ(ide.OS.Dialogs().back().Caption, "Caption");
    }
    ide.OS.QueueAnswer(IDNO);
    EXPECT_FALSE(QueryDialog("?"));
}

} // namespace
} // namespace tarn
