// The settings file of the pack: what it holds, that every setting of every expert comes back, and
// what becomes of a file that is not wanted or cannot be read.

#include "ErrorOf.h"
#include "Package.h"
#include "TPackHarness.h"
#include "TRandomSettings.h"
#include "TSmallSettings.h"
#include "rtl/SafeFile.h"

#include <algorithm>

namespace tarn {
namespace {

using namespace std::string_literals;
using TStrs = std::vector<std::string>;

/// The pack with all its experts.
struct TWholePack : TSmallIDE {
    TWholePack() { InitializePackage(); }
    TWholePack(const TWholePack&) = delete;
    TWholePack& operator=(const TWholePack&) = delete;
    ~TWholePack() {
        Stop();
        FinalizePackage();
    }
    TExpManager& Running() {
        if (!TExpManager::Instance()) Register();
        return *TExpManager::Instance();
    }
    std::string File() const { return (Dir / "ExpData.spc").string(); }
};

TEST(ExpData, IsStoredLikeThis) {
    TSmallSettings small;
    static_cast<TExpertInfo*>(small.Data.ActiveExperts.Items(1))->Active = false;
    small.Data.MenuData.Get(0)->Caption = "own";
    small.Data.CustomData.Delete(0);
    const std::string binary = small.Saved();
    const std::string front = "sys_bin\0\x09"
                              "1.01 5.00TPF0\x08TExpData\x0A"
                              "ExpertData\x0E"
                              "ActiveExperts_\x0E\1\x0A"
                              "ExpertName\6\x0B"
                              "FirstExpert\6Active\x09\0"s;
    EXPECT_EQ(binary.substr(0, front.size()), front);
    const std::string text = small.Saved(2);
    EXPECT_EQ(text, "sys_txt e_ver: 1.01 d_ver: 5.00\r\n"
                    "-------------------------------\r\n"
                    "object ExpertData: TExpData\r\n"
                    "  ActiveExperts_ = <\r\n"
                    "    item\r\n"
                    "      ExpertName = 'FirstExpert'\r\n"
                    "      Active = True\r\n"
                    "    end\r\n"
                    "    item\r\n"
                    "      ExpertName = 'SecondExpert'\r\n"
                    "      Active = False\r\n"
                    "    end>\r\n"
                    "  MenuData_ = <\r\n"
                    "    item\r\n"
                    "      ItemID = 'SortItem'\r\n"
                    "      Caption = 'own'\r\n"
                    "      ImageIndex = -1\r\n"
                    "      HaveLineBefore = False\r\n"
                    "      ShortCutText = ''\r\n"
                    "    end\r\n"
                    "    item\r\n"
                    "      ItemID = 'AboutItem'\r\n"
                    "      ImageIndex = -1\r\n"
                    "      HaveLineBefore = False\r\n"
                    "      ShortCutText = ''\r\n"
                    "    end>\r\n"
                    "  CustomData_ = <\r\n"
                    "    item\r\n"
                    "      AObjectID = 'FormData'\r\n"
                    "      NestedObject.AutoSavePlacement = False\r\n"
                    "      NestedObject.FormPlacement = ''\r\n"
                    "      NestedObject.SavePlacementShortCut = 'Ctrl+S'\r\n"
                    "    end>\r\n"
                    "end\r\n");
    for (const std::string& each : {binary, text}) {
        TSmallSettings other;
        EXPECT_TRUE(other.Load(each));
        EXPECT_EQ(other.Data.ActiveExperts.Get(0)->GetNodeName(), "shown"); // never the stored one
        other.Data.CustomData.Delete(1);                                    // the manager's
        EXPECT_EQ(other.Saved(2), text);
    }
    // A copy for an editor has all that the original would store.
    TSmallSettings original;
    ASSERT_TRUE(original.Load(text.substr(0, text.size() - 5) + "  Later_ = 5\r\nend\r\n"));
    TExpData copy;
    copy.Assign(&original.Data);
    const std::string copied = TSmallSettings::Saved(copy, 2);
    for (const std::string_view part : {"Later_ = 5", "'AboutItem'", "NestedObject.FormPlacement"})
        EXPECT_NE(copied.find(part), std::string::npos) << part;
}

/// Calls `visit(object, key)` for all that the shared settings hold, items in their order.
template <class F> void ForEachSetting(const F& visit) {
    for (TSpcCollection* const list : {static_cast<TSpcCollection*>(&ExpData().ActiveExperts),
                                       static_cast<TSpcCollection*>(&ExpData().MenuData),
                                       static_cast<TSpcCollection*>(&ExpData().CustomData)})
        for (int i = 0; i < list->Count(); ++i) visit(*list->Items(i), list->GetUpdateName());
}

/// All values of all experts; NestedObject is walked through like any sub-object.
std::string DumpOfSettings() {
    std::string text;
    ForEachSetting([&](TSpcItem& item, const std::string&) {
        text += TRandomSettings::Dump(item, item.GetNodePropName() + '.');
    });
    return text;
}

TEST(ExpData, EverySettingOfEveryExpertComesBack) {
    TWholePack pack;
    ExpManagerSlots().LoadExpData = nullptr; // each re-creation begins with the defaults
    ExpManagerSlots().SaveExpData = nullptr;
    TExpManager& manager = pack.Running();
    const std::string defaults = DumpOfSettings();
    TRandomSettings random(4);
    for (int round = 0; round < 60; ++round) {
        const TObjectStorageFormat format = round % 2 == 0 ? osfBin : osfText;
        random.OnlyUtf8 = format == osfText;
        ForEachSetting([&](TSpcItem& item, const std::string& key) { random.Change(item, key); });
        for (TCollection* const list : {static_cast<TCollection*>(&ExpData().MenuData),
                                        static_cast<TCollection*>(&ExpData().CustomData)})
            for (int i = 0; i < list->Count(); ++i)
                list->Move(i, static_cast<int>(random.Below(static_cast<std::size_t>(i) + 1)));
        const std::string changed = DumpOfSettings();
        SaveExpDataSpc(ExpData(), pack.File(), format);
        if (round % 3 != 0) { // else over what stands there
            manager.RecreateExperts();
            ASSERT_EQ(DumpOfSettings(), defaults);
        }
        ForEachSetting([&](TSpcItem& item, const std::string& key) {
            if (round % 3 == 0) random.Change(item, key);
        });
        ASSERT_TRUE(ReadExpDataFile(ExpData(), pack.File()));
        ASSERT_EQ(DumpOfSettings(), changed) << "round " << round;
    }

    // A newer pack's properties: of each item, of each expert's object, and of the whole.
    SaveExpDataSpc(ExpData(), pack.File(), osfText);
    std::string newer;
    const std::string stored = LoadFileText(pack.File());
    for (std::size_t at = 0; at < stored.size();) {
        const std::size_t end = stored.find("\r\n", at) + 2;
        const std::string line = stored.substr(at, end - at);
        if (line == "    end\r\n" || line == "    end>\r\n")
            newer += "      Zz.Later = 'kept'\r\n      NestedObject.Zz = [coRed]\r\n";
        if (line == "end\r\n") newer += "  Zz_ = <\r\n    item\r\n      A = nil\r\n    end>\r\n";
        newer += line;
        at = end;
    }
    EXPECT_GT(newer.size(), stored.size() + 1000);
    SaveFileText(pack.File(), newer);
    manager.RecreateExperts();
    ASSERT_TRUE(ReadExpDataFile(ExpData(), pack.File()));
    SaveExpDataSpc(ExpData(), pack.File(), osfText);
    EXPECT_EQ(LoadFileText(pack.File()), newer);
}

TEST(ExpData, SettingsOutliveAnExpertThatIsSwitchedOff) {
    TWholePack pack;
    TExpMenuData* menu = &(pack.Running(), ExpData().MenuData);
    const auto block = [] { return ExpData().ActiveExperts.FindExpert("EditorManager"); };
    const auto item = [&] {
        return static_cast<TExpMenuItemData*>(ExpData().MenuData.FindItemID("SortLinesItem"));
    };
    item()->Caption = "My own";
    item()->ShortCutText = "";
    item()->HaveLineBefore = true;
    menu->Move(item()->Index(), 0);
    menu->Move(menu->Count() - 1, 1);
    TPersistent* const own =
        static_cast<TCustomDataItem*>(ExpData().CustomData.FindItemID("EditorManagerData"))
            ->NestedObject();
    TRandomSettings(5).Change(*own);
    const std::string before = DumpOfSettings();
    const auto restart = [&pack] {
        pack.Stop();
        (void)pack.Running();
    };
    restart();
    EXPECT_EQ(DumpOfSettings(), before);
    block()->Active = false;
    restart();
    EXPECT_EQ(item(), nullptr);
    EXPECT_EQ(ExpData().CustomData.FindItemID("EditorManagerData"), nullptr);
    restart();
    block()->Active = true;
    restart();
    EXPECT_EQ(DumpOfSettings(), before);
    pack.OS.QueueAnswer(IDYES);
    item()->Caption = "Lost";
    TExpManager::Instance()->LoadDefaultSettings(nullptr);
    EXPECT_NE(item()->Caption, "Lost");
    EXPECT_NE(item()->Index(), 0);
    EXPECT_FALSE(IdentityOf(pack.File()));
}

TEST(ExpData, AFileThatWouldBeLostIsKeptBeside) {
    TSmallSettings small;
    static_cast<TExpertInfo*>(small.Data.ActiveExperts.Add("UnitManager"))->Active = false;
    const std::string good = small.Saved();
    const auto with = [&good](std::string_view record) {
        return std::string(good).replace(9, 9, record);
    };
    const struct {
        std::string Contents;
        TDialogAnswer Answer;
        int Questions;
        std::string_view Fault; ///< empty: not kept
        bool Loaded;
    } cases[] = {
        {good, IDNO, 0, "", true},
        {good.substr(18), IDNO, 0, "", true}, // without a header nothing is checked
        {small.Saved(2), IDNO, 0, "", true},
        {"", IDNO, 0, "", false},
        {"garbage", IDNO, 0, "offset 0: neither a component stream nor its text", false},
        {good.substr(0, good.size() - 1), IDNO, 0, "the stream ends", false},
        {"object ExpertData: TExpData MenuData_ = 5 end", IDNO, 0, "vaCollection expected", false},
        {"object ExpertData: TExpData MenuData_ = < item ItemID = 'SortLinesItem' ImageIndex = "
         "'one' end > end",
         IDNO, 0, "an integer expected", false}, // of which only the second load takes notice
        {"object ExpertData: TExpData CustomData_ = < item AObjectID = 'ExpManagerData' "
         "NestedObject = nil end > end",
         IDNO, 0, "property NestedObject is read-only", false},
        {with("1.01-5.00"), IDNO, 0, "Version information has incorrect format: 1.01-5.00.", false},
        {with("1.02 5.00"), IDNO, 1, "of a later version, and not wanted", false},
        {with("1.02 5.00"), IDYES, 1, "", true},
        {with("1.01 6.00"), IDNO, 0, "", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.Contents.substr(0, 40)));
        TWholePack pack;
        TStrs log;
        ExpManagerSlots().WriteLogEntry = [&log](TObject*, const std::exception& error) {
            log.emplace_back(error.what());
        };
        pack.WriteSettings(c.Contents);
        for (int i = 0; i < c.Questions; ++i) pack.OS.QueueAnswer(c.Answer);
        for (int start = 0; start < 2; ++start) {
            (void)pack.Running();
            EXPECT_EQ(ExpData().ActiveExperts.FindExpert("UnitManager")->Active, !c.Loaded);
            pack.Stop();
        }
        EXPECT_EQ(pack.OS.Dialogs().size(), static_cast<std::size_t>(c.Questions));
        TStrs kept;
        for (const auto& entry : std::filesystem::directory_iterator(pack.Dir))
            if (entry.path().filename().string().starts_with("ExpData-"))
                kept.push_back(entry.path().string());
        ASSERT_EQ(kept.size(), c.Fault.empty() ? 0U : 1U);
        ASSERT_EQ(log.size(), kept.size());
        if (kept.empty()) continue;
        EXPECT_EQ(LoadFileText(kept[0]), c.Contents);
        EXPECT_TRUE(log[0].starts_with(pack.File() + " could not be read ("));
        EXPECT_TRUE(log[0].ends_with(") and is kept as " + kept[0]));
        EXPECT_NE(log[0].find(c.Fault), std::string::npos) << log[0];
    }
}

TEST(ExpData, NoSaveReplacesWhatCouldNotBeKept) {
    TWholePack pack;
    (void)pack.Running();
    int logged = 0;
    ExpManagerSlots().WriteLogEntry = [&logged](TObject*, const std::exception&) {
        ++logged;
        throw Exception("a full disk");
    };
    // Another program's file comes while the pack runs; its contents count, not who has read it.
    pack.WriteSettings("garbage");
    EXPECT_EQ(ErrorOf([&] { SaveExpDataSpc(ExpData(), pack.File(), osfResBin); }),
              "EWriteError: the saver has no format 0");
    EXPECT_EQ(LoadFileText(pack.File()), "garbage");
    WriteExpDataFile(ExpData(), pack.File());
    EXPECT_EQ(logged, 1); // and kept once only, although the first save has failed
    const auto count = std::distance(std::filesystem::directory_iterator(pack.Dir),
                                     std::filesystem::directory_iterator());
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(ReadExpDataFile(ExpData(), pack.File()));
}

} // namespace
} // namespace tarn
