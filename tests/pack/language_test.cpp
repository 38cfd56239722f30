// Languages at run time: the registry's values, the submenu, choosing, the modules' dialog.

#include "TPackHarness.h"
#include "qsLocale.h"
#include "qsLocaleSet.h"

namespace tarn {
namespace {

using TStrs = std::vector<std::string>;

constexpr std::string_view Key = "\\Software\\TarnExperts";
constexpr std::string_view DefaultModules =
    "Russian=texp_rus.dll,English=texp_eng.dll,German=texp_ger.dll";

/// The modules' strings without files of the real format: German has a few texts of its own.
class TLanguageOS : public TRecordingOS {
public:
    HMODULE LoadLibrary(std::string_view fileName) override {
        Loaded.emplace_back(ExtractFileName(fileName));
        if (Loaded.back() == "broken.dll") return 0;
        return Loaded.back() == "texp_ger.dll" ? 0x407 : 0x409;
    }
    void FreeLibrary(HMODULE module) override { Freed.push_back(module); }
    std::string LoadString(HMODULE module, int id) override {
        if (module != 0x407) return {};
        switch (id) {
        case 51049:
            return "Einstellungen";
        case 50504:
            return "Standard";
        case 50514:
            return "Russian=Russisch\r\nEnglish=Englisch\r\nGerman=Deutsch";
        default:
            return {};
        }
    }
    TStrs Loaded;
    std::vector<HMODULE> Freed;
};

class TLanguageIDE : public TSmallIDE {
public:
    TLanguageIDE() {
        InstallOS(&LanguageOS);
        LanguageOS.SetModuleFileName((Dir / "pack.module").string());
        LanguageOS.SetRegistryFile((Dir / "registry").string());
    }
    ~TLanguageIDE() {
        Unload();
        InstallOS(&OS);
    }

    void Touch(std::string_view file) { std::ofstream(Dir / file) << "module"; }
    TExpManager& Running() {
        TExpManager* const manager = Start();
        App->ProcessMessages();
        return *manager;
    }
    std::string Stored(std::string_view name) {
        return LanguageOS.ReadRegistryString(Key, name).value_or("(none)");
    }
    /// The language submenu: "*Default (English) - German - Modules...".
    std::string Languages() {
        std::string text;
        TMenuItem& item = *TExpManager::Instance()->LanguageItem();
        for (int i = 0; i < item.Count(); ++i) {
            TMenuItem& entry = *item.Items(i);
            if (i > 0) text += " ";
            const bool marked = entry.Checked();
            if (entry.Action()) {
                EXPECT_EQ(entry.Action()->Checked(), marked);
            }
            text += (marked ? "*" : "") + entry.Caption();
        }
        return text;
    }
    TMenuItem& Entry(std::string_view caption) {
        return *TExpManager::Instance()->LanguageItem()->Find(caption);
    }

    TLanguageOS LanguageOS;
};

TEST(Language, FirstStartWritesTheDefaults) {
    TLanguageIDE ide;
    ide.Running();
    EXPECT_EQ(ide.Stored("ExpLocaleDir"), "");
    EXPECT_EQ(ide.Stored("ExpLocaleModules"), DefaultModules);
    EXPECT_EQ(ide.Stored("ExpCurrentLocale"), "");
    EXPECT_EQ(ide.LanguageOS.Loaded, TStrs{});
    // No module file is there: only the built-in language can be chosen.
    EXPECT_EQ(ide.Languages(), "*Default (English) - Modules...");
}

TEST(Language, StoredValuesWinAndAMissingModuleIsForgotten) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    const std::string german = (ide.Dir / "texp_ger.dll").string();
    for (const bool exists : {true, false}) {
        ide.LanguageOS.WriteRegistryString(Key, "ExpCurrentLocale",
                                           exists ? german : (ide.Dir / "gone.dll").string());
        ide.LanguageOS.WriteRegistryString(Key, "ExpLocaleModules", "German=texp_ger.dll");
        TExpManager& manager = ide.Running();
        EXPECT_EQ(manager.LocaleModules, "German=texp_ger.dll");
        EXPECT_EQ(manager.CurrentLocale, exists ? german : "");
        EXPECT_EQ(LocaleStr(51049), exists ? "Einstellungen" : "Settings");
        ide.Unload();
        EXPECT_EQ(ide.Stored("ExpCurrentLocale"), exists ? german : "");
        EXPECT_EQ(LocaleStr(51049), "Settings");
    }
}

TEST(Language, RegistryThatCannotBeOpened) {
    TLanguageIDE ide;
    ide.LanguageOS.SetRegistryFile(ide.Dir.string()); // a folder
    EXPECT_EQ(ide.Running().LocaleModules, DefaultModules);
    ide.Stop();
    std::filesystem::remove(ide.Dir / "ExpData.spc"); // the settings, which have their own file
    EXPECT_TRUE(std::filesystem::is_empty(ide.Dir));
    EXPECT_EQ(ide.LanguageOS.Dialogs().size(), 0u);
}

TEST(Language, ChoosingAndGoingBack) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    ide.Touch("texp_rus.dll");
    TExpManager& manager = ide.Running();
    EXPECT_EQ(ide.Languages(), "*Default (English) - German Russian - Modules...");
    TakeEvents();
    ide.Entry("German").Click();
    EXPECT_EQ(manager.CurrentLocale, (ide.Dir / "texp_ger.dll").string());
    EXPECT_EQ(ide.Stored("ExpCurrentLocale"), manager.CurrentLocale);
    EXPECT_EQ(LocaleStr(51049), "Einstellungen");
    // Experts are made anew, the menu follows with the posted message.
    EXPECT_EQ(ExpData().MenuData.FindItemID("SettingItem")->GetNodeName(), "Einstellungen");
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.Languages(), "Standard (Englisch) - *Deutsch Russisch - Modules...");
    // The checked language again does nothing, from whichever sender.
    TakeEvents();
    manager.SelectLanguage(&ide.Entry("Deutsch"));
    manager.SelectLanguage(ide.Entry("Deutsch").Action());
    EXPECT_EQ(TakeEvents(), TStrs{});
    // A file that has gone changes nothing.
    std::filesystem::remove(ide.Dir / "texp_rus.dll");
    manager.SelectLanguage(&ide.Entry("Russisch"));
    EXPECT_EQ(TakeEvents(), TStrs{});
    EXPECT_EQ(LocaleStr(51049), "Einstellungen");

    ide.Entry("Standard (Englisch)").Click();
    ide.App->ProcessMessages();
    EXPECT_EQ(manager.CurrentLocale, "");
    EXPECT_EQ(ide.LanguageOS.Freed, std::vector<HMODULE>{0x407});
    EXPECT_EQ(LocaleStr(51049), "Settings");
    EXPECT_EQ(ide.Languages(), "*Default (English) - German - Modules...");
}

TEST(Language, SettingsAreSavedBeforeTheExpertsGo) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    TExpManager& manager = ide.Running();
    ExpManagerSlots().SaveExpData = [](TExpData&, const std::string&) { Log("save"); };
    TakeEvents();
    ide.Entry("German").Click();
    EXPECT_EQ(TakeEvents().front(), "save");
    manager.Data()->AutoSaveSettings = false;
    manager.SelectDefaultLanguage(nullptr);
    for (const std::string& event : TakeEvents()) EXPECT_NE(event, "save");
}

TEST(Language, UnlistedAndBrokenModules) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    ide.Touch("broken.dll");
    ide.LanguageOS.WriteRegistryString(Key, "ExpLocaleModules",
                                       "German=texp_ger.dll,Broken=broken.dll,junk");
    ide.LanguageOS.WriteRegistryString(Key, "ExpCurrentLocale", (ide.Dir / "broken.dll").string());
    TExpManager& manager = ide.Running();
    // A module that cannot be loaded counts as loaded, and its texts fall back.
    EXPECT_TRUE(Locale().ModuleLoaded());
    EXPECT_EQ(Locale().ModuleHandle(), 0u);
    EXPECT_EQ(LocaleStr(51049), "Settings");
    EXPECT_EQ(ide.Languages(), "Default (English) - *Broken German - Modules...");
    manager.LocaleModules = "German=texp_ger.dll";
    manager.CreateLangSubMenu(manager.LanguageItem());
    EXPECT_EQ(ide.Languages(), "Default (English) - German - Modules...");
    EXPECT_EQ(manager.RetranslateLangName("Elvish"), "Elvish");
    EXPECT_EQ(manager.TranslateLangName("Elvish"), "Elvish");
}

TEST(Language, NamesThatAreThereTwiceOrHoldAMark) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    ide.Touch("other.dll");
    ide.LanguageOS.WriteRegistryString(
        Key, "ExpLocaleModules",
        "German=texp_ger.dll,R&D=other.dll,german=other.dll,=other.dll,Empty=");
    TExpManager& manager = ide.Running();
    EXPECT_EQ(ide.Languages(), "*Default (English) - German R&D - Modules...");
    ide.Entry("German").Click();
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.Languages(), "Standard (Englisch) - *Deutsch R&D - Modules...");
    EXPECT_EQ(manager.RetranslateLangName("Deutsch"), "German");
    EXPECT_EQ(manager.RetranslateLangName("deutsch"), "German");
    ide.Entry("R&D").Action()->Execute();
    ide.App->ProcessMessages();
    EXPECT_EQ(ide.Languages(), "Default (English) - German *R&D - Modules...");
}

TEST(Language, AStartWithoutAChoiceLeavesTheFormerModule) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    for (const bool gone : {false, true}) {
        LoadNewLanguage((ide.Dir / "texp_ger.dll").string());
        EXPECT_EQ(LocaleStr(51049), "Einstellungen");
        ide.LanguageOS.WriteRegistryString(Key, "ExpCurrentLocale", gone ? "gone.dll" : "");
        ide.Running();
        EXPECT_FALSE(Locale().ModuleLoaded());
        EXPECT_EQ(LocaleStr(51049), "Settings");
        ide.Unload();
    }
}

TEST(Language, ModulesDialog) {
    TLanguageIDE ide;
    ide.Touch("texp_ger.dll");
    const std::filesystem::path other = ide.Dir / "other";
    std::filesystem::create_directory(other);
    std::ofstream(other / "elf.dll") << "module";
    TExpManager& manager = ide.Running();
    bool confirm = false;
    const auto edit = [&](TForm& form) {
        auto& dialog = dynamic_cast<TLocaleForm&>(form);
        EXPECT_EQ(form.Caption(), "Localization setting");
        TStringGrid& grid = dialog.LocaleGrid();
        EXPECT_EQ(grid.Cell(0, 0) + "|" + grid.Cell(1, 0), "Language|Library");
        EXPECT_EQ(grid.RowCount(), 4);
        ide.LanguageOS.QueueAnswer(IDYES);
        grid.SetRow(1);
        EXPECT_TRUE(form.IsShortCut(scCtrl | 'D'));
        EXPECT_EQ(ide.LanguageOS.Dialogs().back().Text, "Delete Russian?");
        EXPECT_TRUE(form.IsShortCut(scCtrl | 'A'));
        grid.SetCell(0, grid.Row(), " Elvish ");
        grid.SetCell(1, grid.Row(), "elf.dll");
        dialog.acAdd().Execute();
        grid.SetCell(0, grid.Row(), "No library");
        ide.LanguageOS.QueueFolder(other.string());
        EXPECT_TRUE(form.IsShortCut(scCtrl | 'S'));
        EXPECT_TRUE(confirm ? dialog.acOk().Execute() : form.IsShortCut(VK_ESCAPE));
    };
    ide.App->OnModal = TMethod<void(TForm&)>::Calling(edit);
    // The item that opens the dialog lives in the submenu that is rebuilt after it.
    ide.Entry("Modules...").Click();
    EXPECT_EQ(manager.LocaleModules, DefaultModules);
    EXPECT_EQ(manager.LocaleDir, "");
    confirm = true;
    ide.Entry("Modules...").Click();
    EXPECT_EQ(manager.LocaleModules, "English=texp_eng.dll,German=texp_ger.dll,Elvish=elf.dll");
    EXPECT_EQ(ide.Stored("ExpLocaleModules"), manager.LocaleModules);
    EXPECT_EQ(ide.Stored("ExpLocaleDir"), other.string());
    EXPECT_EQ(ide.Languages(), "*Default (English) - Elvish - Modules...");
    // However it is run, it outlives the item and the action that ran it.
    const auto accept = [](TForm& form) { form.ModalResult = mrOk; };
    ide.App->OnModal = TMethod<void(TForm&)>::Calling(accept);
    const auto before = ide.Languages();
    EXPECT_TRUE(ide.Entry("Modules...").Action()->Execute());
    manager.EditLangModules(&ide.Entry("Modules..."));
    ide.Entry("Modules...").Action()->SetShortCut(scCtrl | 'M');
    EXPECT_TRUE(ide.Entry("Modules...").Action()->ActionList()->IsShortCut(scCtrl | 'M'));
    EXPECT_EQ(ide.Languages(), before);
    // Nobody there to answer: cancelled.
    ide.App->OnModal = {};
    ide.Entry("Modules...").Click();
    EXPECT_EQ(ide.Stored("ExpLocaleDir"), other.string());
}

TEST(Language, RowsOfTheModulesDialog) {
    const struct {
        std::string_view Modules, Rows, Read;
    } cases[] = {
        {"", "", ""},
        {"A=a.dll,B=b=c.dll", "[A][a.dll] [B][b=c.dll] ", "A=a.dll,B=b=c.dll"},
        {"junk,=x.dll,C=,==", "[][junk] [][x.dll] [C][] [][=] ", ""},
        {"\" D = d d.dll \"", "[ D ][ d d.dll ] ", "\"D=d d.dll\""},
    };
    TSmallIDE ide;
    for (const auto& c : cases) {
        TLocaleForm form;
        form.SetModules(c.Modules);
        std::string rows;
        TStringGrid& grid = form.LocaleGrid();
        for (int row = 1; row < grid.RowCount(); ++row)
            rows += "[" + grid.Cell(0, row) + "][" + grid.Cell(1, row) + "] ";
        EXPECT_EQ(rows, c.Rows);
        EXPECT_EQ(form.Modules(), c.Read);
        // A row can be deleted only where there is one.
        form.UpdateActions();
        EXPECT_EQ(form.acDelete().Enabled(), !rows.empty());
        EXPECT_EQ(form.ToolBar().Buttons(4)->Enabled(), !rows.empty());
    }
}

TEST(Language, ThePackGoesWhileTheModulesDialogStands) {
    TLanguageIDE ide;
    TExpManager& manager = ide.Running();
    const auto unload = [&](TForm& form) {
        auto& dialog = dynamic_cast<TLocaleForm&>(form);
        dialog.SetModules("Elvish=elf.dll");
        ide.Stop();
        dialog.acOk().Execute();
    };
    ide.App->OnModal = TMethod<void(TForm&)>::Calling(unload);
    manager.LanguageItem()->Find("Modules...")->Click();
    EXPECT_EQ(TExpManager::Instance(), nullptr);
    EXPECT_EQ(ide.Stored("ExpLocaleModules"), DefaultModules);
}

TEST(Registry, KeepsWhatItDoesNotKnow) {
    TLanguageIDE ide;
    TPortableOS& os = ide.LanguageOS;
    const std::filesystem::path file = ide.Dir / "registry";
    std::ofstream(file) << "garbage\n[\\Other]\nA=1\n[\\software\\tarnexperts]\nB = 2\n=\n[x\n";
    EXPECT_TRUE(os.OpenRegistryKey(Key));
    EXPECT_EQ(os.ReadRegistryString(Key, "b"), " 2");
    EXPECT_EQ(os.ReadRegistryString(Key, "A"), std::nullopt);
    EXPECT_TRUE(os.WriteRegistryString(Key, "Path", "c:\\new\r\nline\\"));
    EXPECT_EQ(os.ReadRegistryString(Key, "Path"), "c:\\new\r\nline\\");
    EXPECT_TRUE(os.WriteRegistryString(Key, "B", "3"));
    std::ifstream stream(file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(text, "garbage\n[\\Other]\nA=1\n[\\software\\tarnexperts]\nB=3\n=\n[x\n"
                    "Path=c:\\\\new\\r\\nline\\\\\n");
    // Gone while it runs: made again. Not writable: told, and nothing is left behind.
    std::filesystem::remove(file);
    EXPECT_TRUE(os.WriteRegistryString(Key, "B", "4"));
    EXPECT_EQ(os.ReadRegistryString(Key, "B"), "4");
    const std::filesystem::path link = ide.Dir / "link";
    std::filesystem::create_symlink(ide.Dir / "nowhere", link);
    os.SetRegistryFile(link.string());
    EXPECT_FALSE(os.OpenRegistryKey(Key));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    os.SetRegistryFile("/proc/none/registry");
    EXPECT_FALSE(os.OpenRegistryKey(Key));
    EXPECT_FALSE(os.WriteRegistryString(Key, "B", "4"));
    EXPECT_EQ(os.ReadRegistryString(Key, "B"), std::nullopt);
}

} // namespace
} // namespace tarn
