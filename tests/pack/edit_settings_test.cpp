// "Edit..." on the pack with all its experts: what reaches the file and the settings, and what does
// not.

#include "ExpDataFile.h"
#include "Package.h"
#include "TPackHarness.h"
#include "WorkingCopy.h"
#include "qsAppUtils.h"
#include "rtl/SafeFile.h"
#include "vcl/TCheckBox.h"
#include "vcl/TEdit.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tarn {
namespace {

using TPath = std::vector<std::string_view>;

const TPath Sorting{"Experts menu", "Sorting"};
const TPath ManagersOwn{"Special settings", "Experts manager"};
const TPath EditorForm{"Special settings", "Experts manager", "Editor form settings"};

/// An item of the menu that no expert of this pack has.
constexpr std::string_view OtherPacks = "object ExpertData: TExpData\r\n"
                                        "  MenuData_ = <\r\n"
                                        "    item\r\n"
                                        "      ItemID = 'OfANewerPack'\r\n"
                                        "      Caption = 'Kept'\r\n"
                                        "    end>\r\n"
                                        "end\r\n";

/// The running pack, whose settings file is a text, and a user of the editor.
class TEditSettings : public testing::Test, protected TSmallIDE {
protected:
    TEditSettings() {
        WriteSettings(OtherPacks);
        InitializePackage();
        Register();
        App->ProcessMessages();
    }
    ~TEditSettings() override {
        Stop();
        FinalizePackage();
    }

    static TExpManager& Manager() { return *TExpManager::Instance(); }
    /// "Edit...", in which the user does that and then closes the window.
    void Edit(const std::function<void(TSpcForm&)>& user = [](TSpcForm&) {}) {
        const auto modal = [&](TForm& form) {
            const TWeak<TForm> open(&form);
            App->ProcessMessages();
            user(static_cast<TSpcForm&>(form));
            if (open && form.ModalResult == mrNone) form.Close();
        };
        App->OnModal = TMethod<void(TForm&)>::Calling(modal);
        const TIntf<IOTAWizard> alive(&Manager());
        Manager().EditSettings2(nullptr);
        App->OnModal = {};
        App->ProcessMessages();
    }
    static TTreeNode& Node(TSpcForm& form, const TPath& path) {
        TTreeNode* node = form.Tree().Items().GetFirstNode();
        for (const std::string_view caption : path) {
            node = node->GetFirstChild();
            while (node && node->Text() != caption) node = node->GetNextSibling();
            if (!node) throw Exception("no node " + std::string(caption));
        }
        return *node;
    }
    /// The control of a row of the node, which is selected.
    template <class C = TEdit>
    static C& Row(TSpcForm& form, const TPath& path, std::string_view prop) {
        form.Tree().SetSelected(&Node(form, path));
        const TControlList& rows = form.Editor().Controls();
        for (int i = 0; i < rows.Count(); ++i)
            if (rows.Get(i).EPropInfo->Name == prop) return dynamic_cast<C&>(*rows.Get(i).EControl);
        throw Exception("no row " + std::string(prop));
    }
    static void Type(TEdit& edit, std::string_view text) {
        edit.SelectAll();
        edit.TypeText(text);
    }

    /// All settings as a text, with those that no expert of this pack has.
    std::string Settings() const {
        const std::string file = (Dir / "all.stx").string();
        SaveExpDataSpc(ExpData(), file, osfText);
        return ReadFileEx(file);
    }
    std::string File() const { return ReadFileEx(SettingsFile()); }
    static std::string Replaced(std::string text, std::string_view from, std::string_view to) {
        const std::size_t at = text.find(from);
        if (at == text.npos) throw Exception("no " + std::string(from));
        return text.replace(at, from.size(), to);
    }
};

TEST_F(TEditSettings, OneChangedCaptionIsAllThatChanges) {
    // Set while the pack ran, and not saved: what the editor shows, and what it saves.
    static_cast<TExpMenuItemData*>(ExpData().MenuData.FindItemID("SortLinesItem"))->ImageIndex = 9;
    Manager().Data()->MenuHaveLineAfter = true;
    Manager().Data()->EditorFormData()->AutoSaveSetting = false;
    const std::string before = Settings();
    OS.QueueAnswer(IDYES);
    Edit([](TSpcForm& form) {
        EXPECT_EQ(Row(form, Sorting, "ImageIndex").Text(), "9");
        EXPECT_TRUE(Row<TCheckBox>(form, ManagersOwn, "MenuHaveLineAfter").Checked());
        Type(Row(form, Sorting, "Caption"), "Order");
    });
    const std::string mark = "ItemID = 'SortLinesItem'\r\n";
    const std::string expected = Replaced(before, mark, mark + "      Caption = 'Order'\r\n");
    EXPECT_NE(before.find("'OfANewerPack'"), before.npos);
    EXPECT_EQ(File(), expected);
    EXPECT_EQ(Settings(), expected);
    EXPECT_NE(MenuText().find("Order"), std::string::npos);
    EXPECT_EQ(LastDialog(), "Save changes in specification?");
}

TEST_F(TEditSettings, TheRowsHaveCaptionsAndHideWhatIsNotTheUsers) {
    std::string rows;
    Edit([&](TSpcForm& form) {
        for (const TPath& path :
             {TPath{"Installed experts", "Unit editor expert"}, Sorting, ManagersOwn, EditorForm}) {
            form.Tree().SetSelected(&Node(form, path));
            const TControlList& list = form.Editor().Controls();
            for (int i = 0; i < list.Count(); ++i)
                rows += list.Get(i).Label->Caption() + (list.Get(i).EControl->Enabled() ? "" : "!");
            rows += "\n";
        }
    });
    EXPECT_EQ(rows, "Active :\n"
                    "menu item’s text :Picture index for menu item :Separator before\r\nmenu item :"
                    "Hotkeys \r\nfor menu item call :\n"
                    "Caption :Current library version :!Experts settings autosave\r\non exit :"
                    "Menu item in \r\nDelphi/C++Builder main menu :"
                    "Insert experts menu \r\nbefore found menu item :"
                    "Separator\r\nbefore experts menu item :Separator\r\nafter experts menu item :"
                    "Error log allowed :Maximal size of the logfile,\r\nkilobytes :\n"
                    "Form properties autosave :Hotkey for\r\nform properties save :\n");
}

TEST_F(TEditSettings, NothingIsSwitchedWhileItIsEditedAndNoKeepsAll) {
    Manager().Data()->EditorFormData()->AutoSaveSetting = false;
    const std::string settings = Settings(), file = File(), menu = MenuText();
    const TExceptionEvent handler = App->OnException;
    const auto nothingSwitched = [&] {
        EXPECT_TRUE(ErrorLog().LogAllowed);
        EXPECT_EQ(ErrorLog().LogLimit, 50U);
        EXPECT_TRUE(App->OnException == handler);
        EXPECT_EQ(Settings(), settings);
    };
    for (const bool closes : {true, false}) { // the key takes back as well
        SCOPED_TRACE(closes);
        if (closes) OS.QueueAnswer(IDNO);
        Edit([&](TSpcForm& form) {
            EXPECT_TRUE(Row<TCheckBox>(form, ManagersOwn, "ErrorLogAllowed").Click());
            Type(Row(form, ManagersOwn, "MaxLogSize"), "7");
            Type(Row(form, Sorting, "Caption"), "Lost"); // the rows before are in the copy
            form.Tree().SetSelected(&Node(form, {}));
            nothingSwitched();
            if (closes) return;
            EXPECT_TRUE(form.IsShortCut(scCtrl | 'U'));
            App->ProcessMessages();
            EXPECT_EQ(Row(form, ManagersOwn, "MaxLogSize").Text(), "50");
        });
        nothingSwitched();
        EXPECT_EQ(File(), file);
        EXPECT_EQ(MenuText(), menu);
        EXPECT_EQ(OS.Dialogs().size(), 1U); // the one question
    }
    // A node whose row cannot be written is not left, and the row can be mended.
    Edit([&](TSpcForm& form) {
        TEdit& size = Row(form, ManagersOwn, "MaxLogSize");
        Type(size, "1-");
        EXPECT_THROW(form.Tree().SetSelected(&Node(form, Sorting)), EConvertError);
        EXPECT_EQ(form.Tree().Selected(), &Node(form, ManagersOwn));
        EXPECT_TRUE(size.Focused());
        EXPECT_EQ(size.Text(), "1-");
        Type(size, "50");
        EXPECT_TRUE(form.Tree().SetSelected(&Node(form, Sorting)));
        OS.QueueAnswer(IDCANCEL);
        EXPECT_FALSE(form.Close());
        OS.QueueAnswer(IDNO);
    });
    EXPECT_EQ(Settings(), settings);
}

TEST_F(TEditSettings, NoFileIsMadeWithoutASave) {
    RemoveFile(SettingsFile());
    OS.QueueAnswer(IDNO);
    Edit([](TSpcForm& form) { Type(Row(form, Sorting, "Caption"), "Lost"); });
    EXPECT_FALSE(std::filesystem::exists(SettingsFile()));
    OS.QueueAnswer(IDYES);
    Edit([](TSpcForm& form) { Type(Row(form, Sorting, "Caption"), "Kept"); });
    EXPECT_TRUE(File().starts_with("sys_bin")); // unless there is a text already
}

TEST_F(TEditSettings, ThePackMayGoWhileTheWindowStands) {
    const std::string file = File();
    Manager().Data()->AutoSaveSettings = false;
    Edit([&](TSpcForm& form) {
        Type(Row(form, Sorting, "Caption"), "Lost");
        Stop();
    });
    EXPECT_EQ(TExpManager::Instance(), nullptr);
    EXPECT_EQ(Scr->FormCount(), 1);
    EXPECT_EQ(File(), file);
    EXPECT_TRUE(OS.Dialogs().empty());
}

/// What is allocated; 0 where nobody counts that. The sanitizer finds leaks by itself.
std::int64_t HeapBytes() {
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
    return static_cast<std::int64_t>(mallinfo2().uordblks);
#else
    return 0;
#endif
}

TEST_F(TEditSettings, OpenedAThousandTimesItLeavesNothingBehind) {
    constexpr int times = 1'000, smallestBlock = 16;
    const auto left = [&] {
        return Format("%d forms, %d components, %d windows, %d messages",
                      {Scr->FormCount(), Manager().Editor()->ComponentCount(),
                       static_cast<int>(OS.WindowCount()), static_cast<int>(OS.PendingMessages())});
    };
    const auto look = [](TSpcForm& form) { form.Tree().SetSelected(&Node(form, EditorForm)); };
    Edit(look);
    const std::string before = left(), settings = Settings();
    const std::int64_t heap = HeapBytes();
    for (int i = 0; i < times; ++i) Edit(look);
    EXPECT_LT(HeapBytes() - heap, times * smallestBlock); // no block is left each time
    EXPECT_EQ(left(), before);
    EXPECT_EQ(Settings(), settings);
}

TEST_F(TEditSettings, TheWindowsStateIsKeptAsTheSettingsSay) {
    TEditorFormData& data = *Manager().Data()->EditorFormData();
    const auto widen = [](int width) { return [width](TSpcForm& form) { form.SetWidth(width); }; };
    data.AutoSaveSetting = false;
    Edit(widen(700));
    EXPECT_EQ(data.Setting()->Count(), 0);
    data.AutoSaveSetting = true; // looked at when it opens
    Edit(widen(710));
    EXPECT_EQ(data.Setting()->GetTextStr(),
              "Left=0\r\nTop=0\r\nWidth=710\r\nHeight=500\r\nState=0\r\n"
              "TreeWidth=200\r\nLabelAreaWidth=100\r\n");
    data.AutoSaveSetting = false;
    data.SaveSettingShortCut = "Ctrl+K";
    Edit([&](TSpcForm& form) {
        EXPECT_EQ(form.Width(), 710);
        form.SetWidth(720);
        EXPECT_TRUE(form.IsShortCut(scCtrl | 'K'));
        form.SetWidth(730);
    });
    EXPECT_EQ(data.Setting()->Value("Width"), "720");
    data.Setting()->SetTextStr("Width=many\r\nHeight=430\r\njunk\r\n");
    Edit([](TSpcForm& form) { EXPECT_EQ(form.BoundsRect(), (TRect{0, 0, 800, 430})); });
    // The window closes after the file was saved, which is then loaded.
    OS.QueueAnswer(IDYES);
    Edit([](TSpcForm& form) {
        Type(Row(form, Sorting, "Caption"), "Order");
        form.SetWidth(740);
        EXPECT_TRUE(form.IsShortCut(scCtrl | 'K'));
    });
    EXPECT_EQ(Manager().Data()->EditorFormData()->Setting()->Value("Width"), "740");
}

// --- The stand-in for an expert's settings ----------------------------------------------------

class TPlainSettings : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Number = 1;
};
constexpr TPropInfo PlainProps[] = {Published<&TPlainSettings::Number>("Number")};
constinit const TClassRecord TPlainSettings::ClassRecord{
    "TPlainSettings", &TPersistent::ClassRecord, nullptr, PlainProps};

class TOddSettings : public TPlainSettings {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Twice() const { return Number * 2; }
    TStrings* Lines() const { return FLines.get(); }
    void SetLines(TStrings* value) { FLines->Assign(value); }

private:
    std::unique_ptr<TStringList> FLines = std::make_unique<TStringList>();
};
bool IsOdd(const TObject& object) {
    return static_cast<const TOddSettings&>(object).Number % 2 != 0;
}
constexpr TPropInfo OddProps[] = {
    Published<&TOddSettings::Twice>("Twice"),
    Published<&TOddSettings::Lines, &TOddSettings::SetLines>("Lines"),
    Published<&TPlainSettings::Number>("Number", {.IsStored = IsOdd}), // again, for its place
};
constinit const TClassRecord TOddSettings::ClassRecord{"TOddSettings", &TPlainSettings::ClassRecord,
                                                       nullptr, OddProps};

TEST(WorkingCopy, StandsInUnderTheNameOfTheClass) {
    TOddSettings odd;
    odd.Lines()->Add("a");
    const std::unique_ptr<TPersistent> copy = NewSettingsCopy(odd);
    std::string props(copy->ClassName());
    ForEachProp(copy->ClassType(), [&](const TPropInfo& prop) {
        props += Format(" %s%s%s", {prop.Name, prop.Set ? "" : " read-only",
                                    prop.IsStored ? " asks another class" : ""});
    });
    EXPECT_EQ(props, "TOddSettings Twice read-only Lines Number");
    const TPropInfo& lines = *copy->ClassType().FindProp("Lines");
    TStringList more;
    more.SetCommaText("b,c");
    TObject* value = &more;
    lines.Set(*copy, &value);
    lines.Get(*copy, &value);
    EXPECT_NE(value, &more); // it keeps the one that it has
    EXPECT_EQ(static_cast<TStrings*>(value)->GetCommaText(), "b,c");
    EXPECT_EQ(odd.Lines()->GetCommaText(), "a");
}

} // namespace
} // namespace tarn
