// The registry of expert classes, the list of live experts, the settings data.

#include "Package.h"
#include "TPackHarness.h"
#include "qsAppUtils.h"
#include "qsExpShrForm.h"

namespace tarn {
namespace {

class TThirdExpert : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
constinit const TClassRecord TThirdExpert::ClassRecord{"TThirdExpert", &TCustomExpert::ClassRecord,
                                                       CreateObject<TThirdExpert>};

TEST(ExpertRegistry, Refusals) {
    TSmallIDE ide;
    ide.Initialize(); // TTestExpert "ExpertA" in 1, TOtherExpert "ExpertB" in 7
    const auto third = TExpertClass::Of<TThirdExpert>();
    const struct {
        TExpertClass ExpClass;
        int Index;
        std::string_view Name;
        std::string_view Error;
    } cases[] = {
        {third, 0, "X", "List index out of bounds (0)"},
        {third, 101, "X", "List index out of bounds (101)"},
        {third, -5, "X", "List index out of bounds (-5)"},
        // The slot is tested before class and name.
        {TExpertClass::Of<TTestExpert>(), 1, "ExpertA", "Expert’s group 1 is already defined."},
        {TExpertClass::Of<TTestExpert>(), 2, "X",
         "Expert of class TTestExpert is already defined."},
        {third, 2, "ExpertB", "Expert’s name ExpertB is already defined."},
        // One walk: on slot 1 the name fits before the class fits on slot 7.
        {TExpertClass::Of<TOtherExpert>(), 2, "ExpertA",
         "Expert’s name ExpertA is already defined."},
        // The class is tested before the name of the same slot.
        {TExpertClass::Of<TTestExpert>(), 2, "ExpertA",
         "Expert of class TTestExpert is already defined."},
    };
    for (const auto& c : cases) {
        try {
            RegisterExpClass(c.ExpClass, c.Index, c.Name, -1);
            ADD_FAILURE() << "accepted: " << c.Error;
        } catch (const EExpMngError& error) {
            EXPECT_EQ(error.Message(), c.Error);
        }
    }
    // Names are compared exactly, and slot 100 is the last one.
    RegisterExpClass(third, 100, "experta", -1);
    EXPECT_EQ(ExpertSlot(100)->Caption(), "experta");
}

TEST(Package, RegistersTheExpertsInTheirSlots) {
    const struct {
        int Slot;
        std::string_view Class, Name, Caption, Stored, Template;
    } experts[] = {
        {1, "TViewFormMng", "FormUnitView", "Project forms/units preview", "FormUnitViewData",
         "[TViewFormMng]"},
        {2, "TInspectorViewMng", "InspectorFormView", "Manager of the open windows",
         "InspectorFormViewData", "[TInspectorViewMng]"},
        {3, "TCPUFormMng", "CPUView", "CPU window data scan", "CPUViewData", "[TCPUFormMng]"},
        {4, "TBlockMng", "EditorManager", "Unit editor expert", "EditorManagerData", "[TBlockMng]"},
        {5, "TUnitManager", "UnitManager", "Manager of the open units", "UnitManagerData",
         "[TUnitManager]"},
    };
    TSmallIDE ide;
    InitializePackage();
    InitializePackage(); // counted
    FinalizePackage();
    Register();
    ASSERT_NE(TExpManager::Instance(), nullptr);
    EXPECT_EQ(ExpData().ActiveExperts.Count(), 5);
    EXPECT_EQ(TExpManager::Instance()->ExpObjects()->Count(), 5);
    EXPECT_EQ(ExpData().CustomData.Get(0)->AObjectID, "ExpManagerData");
    std::size_t place = ExpData().LocalNames.size();
    for (const auto& e : experts) {
        ASSERT_NE(ExpertSlot(e.Slot), nullptr);
        EXPECT_EQ(ExpertSlot(e.Slot)->ExpClass.Name(), e.Class);
        EXPECT_EQ(ExpertSlot(e.Slot)->Name, e.Name);
        TExpertInfo& info = *ExpData().ActiveExperts.Get(e.Slot - 1);
        EXPECT_EQ(info.ExpertName, e.Name);
        EXPECT_EQ(info.GetNodeName(), e.Caption);
        EXPECT_TRUE(info.Active);
        EXPECT_EQ(ExpData().CustomData.Get(e.Slot)->AObjectID, e.Stored);
        // The captions of the newest expert stand first.
        const std::size_t found = ExpData().LocalNames.find(e.Template);
        EXPECT_LT(found, place) << e.Class;
        place = found;
    }
    ide.Stop();
    FinalizePackage();
    EXPECT_FALSE(HasExpData());
}

TEST(Package, FailingUnitUndoesTheOthers) {
    TSmallIDE ide;
    ide.Initialize(); // slot 1 is taken
    EXPECT_THROW(InitializePackage(), EExpMngError);
    EXPECT_TRUE(HasExpData());
    ide.Unload();
    EXPECT_FALSE(HasExpData());
    InitializePackage();
    EXPECT_EQ(ExpertSlot(1)->Name, "FormUnitView");
    EXPECT_EQ(ExpertSlot(5)->Name, "UnitManager");
    FinalizePackage();
    EXPECT_EQ(ExpertSlot(5), nullptr);
}

TEST(ExpObjectList, KeepsRecordsNotExperts) {
    TThirdExpert one;
    TThirdExpert two;
    TExpObjectList list;
    EXPECT_EQ(list.Add(&one, "Name"), 0);
    EXPECT_EQ(list.Add(&two, "name"), 1);
    EXPECT_EQ(list.Add(&one, "name"), 2);
    EXPECT_EQ(list.IndexOf("name"), 1);
    EXPECT_EQ(list.IndexOf("NAME"), -1);
    EXPECT_EQ(list.IndexOf(&one), 0);
    list.Delete(0);
    EXPECT_EQ(list.IndexOf(&one), 1);
    EXPECT_EQ(list.Get(0).Expert.Get(), &two);
    EXPECT_THROW(list.Get(2), EListError);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(CustomExpert, InterfacesAreNotCounted) {
    TThirdExpert expert;
    void* found = nullptr;
    EXPECT_EQ(expert.QueryInterface(ICustomExpert::IID, found), S_OK);
    EXPECT_EQ(found, static_cast<ICustomExpert*>(&expert));
    EXPECT_EQ(expert.QueryInterface(IOTAWizard::IID, found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(expert._AddRef(), -1);
    EXPECT_EQ(expert._Release(), -1);
}

TEST(ExpData, StoredDataAndCaptions) {
    TSmallIDE ide;
    ide.Initialize();
    auto first = std::make_unique<TThirdExpert>();
    TThirdExpert second;
    AddStoredData(first.get(), "One", "First", "[A]");
    AddStoredData(&second, "Two", "", "");
    AddStoredData(&second, "Three", "Third", "[B]\r\nC=D");
    const TCustomData& custom = ExpData().CustomData;
    ASSERT_EQ(custom.Count(), 3);
    EXPECT_EQ(custom.Get(0)->GetNodeName(), "First");
    EXPECT_EQ(custom.Get(1)->GetNodeName(), "Two");
    EXPECT_EQ(ExpData().LocalNames, "[B]\r\nC=D\r\n[A]\r\n");
    // A second object of one name takes the first one's item.
    AddStoredData(&second, "one", "Changed", "");
    ASSERT_EQ(custom.Count(), 3);
    EXPECT_EQ(custom.Get(0)->NestedObject(), &second);
    EXPECT_EQ(custom.Get(0)->AObjectID, "One");
    // The tree only refers to the objects.
    AddStoredData(first.get(), "Four", "", "");
    first.reset();
    EXPECT_EQ(custom.Get(3)->NestedObject(), nullptr);
}

TEST(ExpData, AssignAndNodeNames) {
    TSmallIDE ide;
    ide.Initialize();
    TExpManager* const manager = (Register(), TExpManager::Instance());
    TExpMenuItemData* const item = ExpData().MenuData.Get(0);
    item->HaveLineBefore = true;
    item->ImageIndex = 9;
    TExpData copy;
    manager->ReCreateSpc(nullptr, copy);
    ASSERT_EQ(copy.MenuData.Count(), ExpData().MenuData.Count());
    EXPECT_EQ(copy.MenuData.Get(0)->ItemID, item->ItemID);
    EXPECT_EQ(copy.MenuData.Get(0)->Caption, item->Caption);
    // A menu item copies its identifier and caption only.
    EXPECT_EQ(copy.MenuData.Get(0)->ImageIndex, -1);
    EXPECT_FALSE(copy.MenuData.Get(0)->HaveLineBefore);
    EXPECT_EQ(copy.ActiveExperts.Get(1)->ExpertName, "ExpertB");
    EXPECT_EQ(copy.CustomData.Get(0)->NestedObject(), manager->Data());
    TThirdExpert other;
    EXPECT_THROW(copy.Assign(&other), EConvertError);

    EXPECT_EQ(copy.GetNodeName(), "Experts settings");
    EXPECT_EQ(copy.ActiveExperts.GetNodeName(), "Installed experts");
    EXPECT_EQ(copy.MenuData.GetNodeName(), "Experts menu");
    EXPECT_EQ(copy.CustomData.GetNodeName(), "Special settings");
    EXPECT_EQ(copy.CustomData.Get(0)->GetNodeName(), "Experts manager");
    EXPECT_EQ(manager->Data()->EditorFormData()->GetNodeName(), "Editor form settings");
    EXPECT_EQ(TFormSetting().GetNodeName(), "Expert form settings");
    EXPECT_FALSE(copy.NeedsTranslate() || item->NeedsTranslate() || item->NeedsIterate());
}

TEST(ExpData, DefaultsAndCopies) {
    const TExpManagerData data;
    EXPECT_EQ(data.ExpertVersion + "|" + data.MainMenuSearchItem, "1.0|Tools");
    EXPECT_TRUE(data.AutoSaveSettings && data.InsertMenuBeforeItem && data.ErrorLogAllowed());
    EXPECT_FALSE(data.MenuHaveLineBefore || data.MenuHaveLineAfter);
    EXPECT_EQ(data.MaxLogSize(), 50u);

    TExpertInfo info;
    info.ExpertName = "Name";
    info.ExpertNodeName = "Node";
    info.Active = false;
    TExpertInfo infoCopy;
    infoCopy.Assign(&info);
    EXPECT_EQ(infoCopy.ExpertName + "|" + infoCopy.ExpertNodeName, "Name|Node");
    EXPECT_FALSE(infoCopy.Active);

    TEditorFormData form;
    EXPECT_EQ(form.SaveSettingShortCut, "Ctrl+S");
    EXPECT_TRUE(form.AutoSaveSetting);
    form.AutoSaveSetting = false;
    form.SaveSettingShortCut = "Ctrl+Q";
    form.Setting()->Add("line");
    data.EditorFormData()->Assign(&form);
    EXPECT_FALSE(data.EditorFormData()->AutoSaveSetting);
    EXPECT_EQ(data.EditorFormData()->SaveSettingShortCut, "Ctrl+Q");
    EXPECT_EQ(data.EditorFormData()->Setting()->GetTextStr(), "line\r\n");
}

TEST(SharedForm, TakesAndGivesItsPlacement) {
    TSmallIDE ide;
    TSharedManager expert;
    EXPECT_EQ(expert.FormSetting()->SavePlacementShortCut, "Ctrl+S");
    EXPECT_FALSE(expert.FormSetting()->AutoSavePlacement);
    TFormSetting stored;
    stored.AutoSavePlacement = true;
    stored.FormPlacement = "0,1,-1,-1,-1,-1,10,20,110,220";
    stored.SavePlacementShortCut = "Ctrl+P";
    expert.SetFormSetting(&stored);
    EXPECT_THROW(expert.SetFormSetting(nullptr), EConvertError);
    TSharedForm form(nullptr, &expert);
    form.SetProperties();
    EXPECT_EQ(form.BoundsRect(), (TRect{10, 20, 100, 200}));
    EXPECT_TRUE(form.AutoSavePlacement);
    form.SetLeft(11);
    EXPECT_TRUE(form.IsShortCut(scCtrl | 'P'));
    const auto left = [&] { return expert.FormSetting()->FormPlacement.substr(16, 2); };
    EXPECT_EQ(left(), "11");
    // On the screen, it gives its place back before that is saved, and when it goes.
    form.Show();
    form.SetLeft(12);
    EXPECT_EQ(expert.StoredFormSetting()->FormPlacement, GetWinPlacement(form));
    form.SetLeft(13);
    form.Hide();
    EXPECT_EQ(left(), "13");
    EXPECT_EQ(form.PlacementText, expert.FormSetting()->FormPlacement);
    // Hidden, it leaves alone what is stored.
    expert.FormSetting()->FormPlacement = "1,2";
    form.Hide();
    EXPECT_EQ(expert.StoredFormSetting()->FormPlacement, "1,2");
    form.SetProperties();
    EXPECT_EQ(form.Left(), 13);
}

TEST(ExpData, StoredValuesReachTheEditorAndTheListIsFilledOnce) {
    TSmallIDE ide;
    ide.WriteSettings("x");
    ExpManagerSlots().LoadExpData = [](TExpData& data, const std::string&) {
        auto* const own = ClassCast<TExpManagerData>(data.CustomData.Get(0)->NestedObject());
        own->EditorFormData()->AutoSaveSetting = false;
        return true;
    };
    TExpManager* const manager = ide.Start();
    EXPECT_EQ(manager->Editor()->FormOptions, TSpcEditor::BaseFormOptions);
    manager->FillPresentList();
    EXPECT_EQ(ExpData().ActiveExperts.FindExpert("experta"), nullptr);
    ASSERT_EQ(ExpData().ActiveExperts.Count(), 2);
    EXPECT_EQ(ExpData().ActiveExperts.Get(1)->GetNodeName(), "Unit editor expert");
}

TEST(ExpData, EditorIsPreparedAndLocalized) {
    TSmallIDE ide;
    TExpManager* const manager = ide.Start();
    TExpertEditor& editor = *manager->Editor();
    // The window's state is kept among the manager's settings, those of a re-creation too.
    manager->RecreateExperts();
    TStringList state;
    state.SetTextStr("Left=1");
    editor.WriteFormSetting("section", "ident", state);
    EXPECT_EQ(manager->Data()->EditorFormData()->Setting()->GetTextStr(), "Left=1\r\n");
    state.Clear();
    editor.ReadFormSetting("section", "ident", state);
    EXPECT_EQ(state.GetTextStr(), "Left=1\r\n");
    EXPECT_EQ(editor.Manager, manager);
    EXPECT_EQ(editor.SpcFileName(), PackageDir() + "ExpData.spc");
    EXPECT_EQ(editor.InvisibleProps()->Count(), 8);
    EXPECT_EQ(editor.DisabledProps()->GetTextStr(), "TExpManagerData.ExpertVersion\r\n");
    EXPECT_TRUE(editor.FormOptions.Contains(foAutoSaveParams));
    EXPECT_EQ(editor.TranslatingTable()->GetTextStr(),
              "[TExpManagerData]\r\nExpertVersion=Current library version\r\n"
              "AutoSaveSettings=Experts settings autosave##on exit\r\n"
              "MainMenuSearchItem=Menu item in ##Delphi/C++Builder main menu\r\n"
              "InsertMenuBeforeItem=Insert experts menu ##before found menu item\r\n"
              "MenuHaveLineBefore=Separator##before experts menu item\r\n"
              "MenuHaveLineAfter=Separator##after experts menu item\r\n"
              "ErrorLogAllowed=Error log allowed\r\n"
              "MaxLogSize=Maximal size of the logfile,##kilobytes\r\n\r\n"
              "[TExpertInfo]\r\nActive=Active\r\n"
              "[TExpMenuItemData]\r\nCaption=menu item’s text\r\n"
              "ImageIndex=Picture index for menu item\r\n"
              "HaveLineBefore=Separator before##menu item\r\n"
              "ShortCutText=Hotkeys ##for menu item call\r\n"
              "[TFormSetting]\r\nAutoSavePlacement=Autosave##form position\r\n"
              "FormPlacement=Save form##position\r\n"
              "SavePlacementShortCut=Hotkey for##form position save\r\n"
              "[TEditorFormData]\r\nAutoSaveSetting=Form properties autosave\r\n"
              "SaveSettingShortCut=Hotkey for##form properties save\r\n"
              "Setting=Save form properties\r\n");
}

} // namespace
} // namespace tarn
