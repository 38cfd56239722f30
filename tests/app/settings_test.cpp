#include "ExpDataFile.h"
#include "Settings.h"
#include "TSession.h"
#include "app_fixture.h"
#include "qsExpShrData.h"
#include "vcl/Graphics.h"

namespace tarn {
namespace {

/// The pack with a package directory of its own, which holds no settings at first.
struct TPack {
    TTempFolder Folder;
    TRunningPack Session{nullptr, Folder.Path().string()};
};

std::string Get(std::string_view path) {
    std::string value;
    const std::string error = ErrorOf([&] { value = GetSetting(path); });
    return error == "none" ? value : error;
}
std::string Set(std::string_view path, std::string_view value) {
    return ErrorOf([&] { SetSetting(path, value); });
}

enum TFruit : std::uint8_t { frApple, frPear };
constexpr std::string_view FruitNames[] = {"frApple", "frPear"};

} // namespace

template <> inline constexpr TTypeInfo TypeInfoOf<TFruit> = EnumType("TFruit", FruitNames);

namespace {

class TPlainItem : public TCollectionItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    std::string Text = "plain";
};

/// One setting of each kind whose text is not simply its value.
class TAnySettings : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TColor Known = clRed;
    TColor Custom = 0xC8D0D4;
    char Sign = '\x1';
    TSet<TFruit> Basket{frPear};
    double Number = 0.1;
    std::string Text = " \"a\\b\"\xE4\r\n\t";
    std::string Caption = "its own";
    TStrings* Lines() const { return FLines.get(); }
    void SetLines(TStrings* lines) { FLines->Assign(lines); }
    TCollection* Items() const { return FItems.get(); }

private:
    std::unique_ptr<TStringList> FLines = std::make_unique<TStringList>();
    std::unique_ptr<TCollection> FItems =
        std::make_unique<TCollection>(TClassRef<TCollectionItem>::Of<TPlainItem>());
};

constexpr TPropInfo PlainItemProps[] = {Published<&TPlainItem::Text>("Text")};
constexpr TPropInfo AnySettingsProps[] = {
    Published<&TAnySettings::Known>("Known", {.Type = &ColorType}),
    Published<&TAnySettings::Custom>("Custom", {.Type = &ColorType}),
    Published<&TAnySettings::Sign>("Sign"),
    Published<&TAnySettings::Basket>("Basket"),
    Published<&TAnySettings::Number>("Number"),
    Published<&TAnySettings::Text>("Text"),
    Published<&TAnySettings::Caption>("Caption"),
    Published<&TAnySettings::Lines, &TAnySettings::SetLines>("Lines"),
    Published<&TAnySettings::Items>("Items"),
};
constinit const TClassRecord TPlainItem::ClassRecord{"TPlainItem", &TCollectionItem::ClassRecord,
                                                     CreateObject<TPlainItem>, PlainItemProps};
constinit const TClassRecord TAnySettings::ClassRecord{
    "TAnySettings", &TPersistent::ClassRecord, CreateObject<TAnySettings>, AnySettingsProps};

TEST(Settings, NeedThePack) {
    TPack pack;
    EXPECT_EQ(Get("EditorManagerData.SafeStringMoving"), "True");
    pack.Session.StopPack();
    EXPECT_EQ(Get("EditorManagerData.SafeStringMoving"), "1 the pack is not started");
    EXPECT_EQ(Set("EditorManagerData.SafeStringMoving", "False"), "1 the pack is not started");
}

TEST(Settings, OfASessionAreSavedOnlyWhenItIsTold) {
    const TTempFolder folder;
    const auto file = folder.Path() / "ExpData.spc";
    for (const bool saves : {false, true}) {
        {
            TRunningPack session(nullptr, folder.Path().string());
            if (saves) session.LetPackSave();
            SetSetting("ExpManagerData.MaxLogSize", "7");
        }
        EXPECT_EQ(std::filesystem::exists(file), saves);
    }
    const TRunningPack session(nullptr, folder.Path().string());
    EXPECT_EQ(Get("ExpManagerData.MaxLogSize"), "7");
    EXPECT_TRUE(!ExpManagerSlots().SaveExpData);
}

TEST(Settings, AreSetByPathWithoutCase) {
    const TPack pack;
    TAnySettings any;
    AddStoredData(&any, "Any.Thing", "", "");
    const struct {
        std::string_view Path, Value, Read;
    } cases[] = {
        {"EditorManagerData.SafeStringMoving", "false", "False"},
        {"CUSTOMDATA.editormanagerdata.safestringmoving", "TRUE", "True"},
        {"CustomData.EditorManagerData.Caption", "Editor", "Editor"},
        {"MenuData.SortLinesItem.Caption", "", ""},
        {"MenuData.SortLinesItem.Caption", "a.b \xE4", "a.b \xE4"},
        {"menudata.SORTLINESITEM.imageindex", "7", "7"},
        {"ActiveExperts.UnitManager.Active", "False", "False"},
        {"ExpManagerData.EditorFormData.Setting", "[a]\r\n\r\nb", "[a]\n\nb\n"},
        {"Any.Thing.Custom", "clBlue", "clBlue"},
        {"Any.Thing.Known", "$00010203", "$00010203"},
        {"Any.Thing.Basket", "[frApple, frPear]", "[frApple,frPear]"},
        {"Any.Thing.Caption", "nested", "nested"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Set(c.Path, c.Value), "none") << c.Path;
        EXPECT_EQ(Get(c.Path), c.Read) << c.Path;
    }
    EXPECT_EQ(any.Caption, "nested");
    EXPECT_EQ(any.Known, 0x010203);
}

// Each line of the list set again, in another tree as in this one, changes nothing.
TEST(Settings, ListedCanBeSetAgain) {
    const TPack pack;
    TAnySettings any;
    AddStoredData(&any, "Any.Thing", "", "");
    any.Lines()->Add("one");
    any.Items()->Add();
    EXPECT_EQ(ListSettings("any.thing"),
              "CustomData.Any.Thing.AObjectID=Any.Thing\n"
              "CustomData.Any.Thing.Known=clRed\n"
              "CustomData.Any.Thing.Custom=$00C8D0D4\n"
              "CustomData.Any.Thing.Sign=\"\\x01\"\n"
              "CustomData.Any.Thing.Basket=[frPear]\n"
              "CustomData.Any.Thing.Number=0.1\n"
              "CustomData.Any.Thing.Text=\" \\\"a\\\\b\\\"\\xE4\\r\\n\\t\"\n"
              "CustomData.Any.Thing.Caption=its own\n"
              "CustomData.Any.Thing.Lines=\"one\\n\"\n"
              "CustomData.Any.Thing.Items.0.Text=plain\n");
    EXPECT_EQ(ListSettings("menudata.SortLinesItem.Caption"),
              "MenuData.SortLinesItem.Caption=Sorting\n");
    const std::string all = ListSettings("");
    EXPECT_EQ(all.substr(all.size() - ListSettings("Any.Thing").size()), ListSettings("Any.Thing"));

    const auto saved = [&] {
        WriteExpDataFile(ExpData(), (pack.Folder.Path() / "saved").string());
        return ReadFile(pack.Folder.Path() / "saved");
    };
    const std::string before = saved();
    for (const bool fresh : {false, true}) {
        if (fresh) {
            any.Known = any.Custom = clBlack;
            any.Sign = 'a';
            any.Basket = {};
            any.Number = 1;
            any.Text = any.Caption = "changed";
            any.Lines()->Clear();
            SetSetting("MenuData.SortLinesItem.Caption", "changed");
            EXPECT_NE(saved(), before);
        }
        TStringList lines;
        lines.SetTextStr(all);
        for (int i = 0; i < lines.Count(); ++i) {
            const std::string_view line = lines[i];
            const std::size_t at = line.find('=');
            EXPECT_EQ(Set(line.substr(0, at), SettingOfShown(line.substr(at + 1))), "none") << line;
        }
        EXPECT_EQ(saved(), before);
        EXPECT_EQ(ListSettings(""), all);
    }
}

TEST(Settings, AreShownOnOneLine) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},
        {"a b=c", "a b=c"},
        {R"(C:\x "y")", R"(C:\x "y")"},
        {"gr\xC3\xBCn", "gr\xC3\xBCn"},
        {" a", R"(" a")"},
        {"a ", R"("a ")"},
        {R"("a)", R"("\"a")"},
        {"a\\\n", R"("a\\\n")"},
        {"\xFF", R"("\xFF")"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(ShownSetting(text), shown);
        EXPECT_EQ(SettingOfShown(shown), text);
    }
    EXPECT_EQ(ErrorOf([] { (void)SettingOfShown("\"a\" b"); }),
              "2 a value in quotes ends with the second of them");
}

TEST(Settings, ErrorsNameWhatThereIs) {
    const TPack pack;
    ExpData().MenuData.UnplacedItems.push_back({"Gone.Item", 0, ""});
    const std::string all = ListSettings("");
    const std::string objects =
        "; there are ExpManagerData, FormUnitViewData, InspectorFormViewData, CPUViewData, "
        "EditorManagerData, UnitManagerData";
    const std::pair<std::string_view, std::string> paths[] = {
        {"Nothing", "2 there is no 'Nothing'" + objects + ", ActiveExperts, MenuData, CustomData"},
        {"CustomData.Nothing.x", "2 there is no 'Nothing' in CustomData" + objects},
        {"MenuDate.SortLinesItem", "2 there is no 'MenuDate'; is MenuData meant?"},
        {"sortlinesitem.Caption",
         "2 there is no 'sortlinesitem'; is MenuData.SortLinesItem meant?"},
        {"MenuData.SortLineItem.Caption",
         "2 there is no 'SortLineItem' in MenuData; is SortLinesItem meant?"},
        {"MenuData.gone.item.Caption",
         "2 MenuData.gone: no active expert has it; its settings are kept"},
        {"EditorManagerData.SafeStringMove",
         "2 there is no 'SafeStringMove' in CustomData.EditorManagerData; is SafeStringMoving "
         "meant?"},
        {"EditorManagerData.SafeStringMoving.X",
         "2 CustomData.EditorManagerData.SafeStringMoving has nothing below it"},
        {"ExpManagerData.EditorFormData",
         "2 CustomData.ExpManagerData.EditorFormData is no setting; below it there are "
         "AutoSaveSetting, SaveSettingShortCut, Setting"},
        {"FormUnitViewData.x.y", "2 there is no 'x' in CustomData.FormUnitViewData; there are "
                                 "AObjectID, Caption, FormSetting, CloseFormOnShowUnit"},
    };
    for (const auto& [path, expected] : paths) {
        EXPECT_EQ(Get(path), expected) << path;
        EXPECT_EQ(Set(path, "1"), expected) << path;
    }
    TAnySettings any;
    AddStoredData(&any, "Any", "", "");
    const struct {
        std::string_view Path, Value, Error;
    } values[] = {
        {"EditorManagerData.SafeStringMoving", "maybe",
         "2 CustomData.EditorManagerData.SafeStringMoving: maybe is unacceptable value for type.; "
         "wanted is one of False, True"},
        {"MenuData.SortLinesItem.ImageIndex", "9999999999",
         "2 MenuData.SortLinesItem.ImageIndex: '9999999999' is not a valid integer value; wanted "
         "is a whole number from -2147483648 to 2147483647"},
        {"Any.Custom", "clNavi",
         "2 CustomData.Any.Custom: clNavi is unacceptable value for TColor.; wanted is a name such "
         "as clRed, "
         "or a number such as $00C8D0D4"},
        {"Any.Basket", "[frPlum]",
         "2 CustomData.Any.Basket: frPlum is unacceptable value for type.; wanted is any of "
         "frApple, frPear in brackets, with commas between"},
        {"MenuData.SortLinesItem.ItemID", "Other",
         "2 MenuData.SortLinesItem.ItemID cannot be changed; it is SortLinesItem"},
        {"ActiveExperts.CPUView.ExpertNodeName", "x",
         "2 ActiveExperts.CPUView.ExpertNodeName cannot be changed; it is CPU window data scan"},
        {"ExpManagerData.ExpertVersion", "2.0",
         "2 CustomData.ExpManagerData.ExpertVersion cannot be changed; it is 1.0"},
    };
    for (const auto& c : values) EXPECT_EQ(Set(c.Path, c.Value), c.Error);
    EXPECT_EQ(ListSettings("").substr(0, all.size()), all);
}

} // namespace
} // namespace tarn
