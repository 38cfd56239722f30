#include "SettingsForm.h"
#include "TScript.h"
#include "app_fixture.h"
#include "qsPropTypes.h"
#include "qsSpcEdPro.h"

namespace tarn {
namespace {

enum TFruit : std::uint8_t { frApple, frPear };
constexpr std::string_view FruitNames[] = {"frApple", "frPear"};

} // namespace
template <> inline constexpr TTypeInfo TypeInfoOf<TFruit> = EnumType("TFruit", FruitNames);
namespace {

/// Settings with a control of each class.
class TBasketData : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string Name;
    TFruit Fruit = frApple;
    TSet<TFruit> Basket;
    TSpinInt Count = 5;
    TColor Color = 0;
    TDateTime Day = 0;
    float Clock = 0;
    TShortCut Key = 0;
    TFont* Font() const { return FFont.get(); }
    TCheckStrings* Checks() const { return FChecks.get(); }
    TPictureEx* Picture() const { return FPicture.get(); }

private:
    std::unique_ptr<TFontEx> FFont = std::make_unique<TFontEx>();
    std::unique_ptr<TCheckStrings> FChecks = std::make_unique<TCheckStrings>();
    std::unique_ptr<TPictureEx> FPicture = std::make_unique<TPictureEx>();
};
constexpr TPropInfo BasketProps[] = {
    Published<&TBasketData::Name>("Name"),
    Published<&TBasketData::Fruit>("Fruit"),
    Published<&TBasketData::Basket>("Basket"),
    Published<&TBasketData::Count>("Count", {.Type = &SpinIntType}),
    Published<&TBasketData::Color>("Color", {.Type = &ColorType}),
    Published<&TBasketData::Day>("Day", {.Type = &DateTimeType}),
    Published<&TBasketData::Clock>("Clock", {.Type = &TimeType}),
    Published<&TBasketData::Key>("Key", {.Type = &ShortCutType}),
    Published<&TBasketData::Font>("Font"),
    Published<&TBasketData::Checks>("Checks"),
    Published<&TBasketData::Picture>("Picture"),
};
constinit const TClassRecord TBasketData::ClassRecord{"TBasketData", &TPersistent::ClassRecord,
                                                      CreateObject<TBasketData>, BasketProps};

/// Where the row stands is the editor's own matter.
std::string WithoutPlaces(const std::string& rows) {
    std::string text;
    TStringList lines;
    lines.SetTextStr(rows);
    for (int i = 0; i < lines.Count(); ++i) {
        const std::string& line = lines[i];
        const std::size_t from = line.find(' ', line.find(" : ") + 3);
        text += line.substr(0, from) + line.substr(line.find(' ', line.find('x', from))) + "\n";
    }
    return text;
}

TEST(SettingsForm, RowsAreUsedAsAUserDoes) {
    TSession session;
    TBasketData data;
    TSpcEditorPro editor;
    editor.FormOptions.Exclude(foModalShowing);
    editor.DisabledProps()->Add("TBasketData.Name");
    data.Checks()->SetTextStr("one\r\ntwo");
    EXPECT_EQ(ErrorOf([] { (void)SettingsTreeText(); }), "1 the settings editor is not in front");
    editor.ShowTree(data);
    session.Ide().PumpMessages();
    EXPECT_EQ(SettingsTreeText(), "* TBasketData\n");

    const struct {
        std::string_view Row, Action, Arg, Error;
    } cases[] = {
        {"fruit", "choose", "FRPEAR", "none"},
        {"Fruit", "choose", "frPlum",
         "2 the row 'Fruit' has no item 'frPlum'; there are frApple, frPear"},
        {"Basket", "check", "frPear", "none"},
        {"Count", "step", "-2", "none"},
        {"Count", "paste", "40", "none"},
        {"Count", "step", "2", "none"},
        {"Color", "choose", "clRed", "none"},
        {"Color", "type", "no colour", "1 the row 'Color' does not take that"},
        {"Day", "date", "2024-02-29", "none"},
        {"Day", "date", "2023-02-29", "1 the row 'Day' does not take that"},
        {"Clock", "time", "13:45:10", "none"},
        {"Key", "key", "Ctrl+Alt+K", "none"},
        {"Key", "key", "Hyper", "2 'Hyper' is no key"},
        {"Font", "choose", "Arial", "none"},
        {"Font", "size", "12", "none"},
        {"Checks", "menu", "Delete line", "1 'Delete line' is disabled"}, // none is chosen yet
        {"Checks", "check", "two", "none"},
        {"Checks", "choose", "one", "none"},
        {"Checks", "menu", "Delete line", "none"},
        {"Checks", "menu", "Sort",
         "2 the menu 'TCheckListBox' has no item 'Sort'; there are Add line, Insert line, "
         "Delete line, Clear, Edit text, Load from file, Save to file"},
        {"Picture", "dblclick", "", "none"}, // nobody chooses a file
        {"Picture", "menu", "Clear clipboard", "none"},
        {"Name", "label", "", "none"},
        {"Name", "type", "x", "1 the row 'Name' is disabled"},
        {"Name", "step", "1",
         "2 the row 'Name', a TEdit, has no 'step'; there are type, paste, "
         "label, menu, dblclick"},
        {"Name", "type", "", "2 type takes one text"},
        {"Nome", "label", "",
         "2 there is no row 'Nome'; there are Name, Fruit, Basket, Count, Color, Day, Clock, Key, "
         "Font, Checks, Picture"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args{std::string(c.Action)};
        if (!c.Arg.empty()) args.emplace_back(c.Arg);
        EXPECT_EQ(ErrorOf([&] { UseSettingsRow(session, c.Row, args); }), c.Error)
            << c.Row << " " << c.Action << " " << c.Arg;
    }
    EXPECT_EQ(WithoutPlaces(SettingsRowsText()),
              "Name : TEdit disabled =\n"
              "Fruit : TComboBox = frPear\n"
              "Basket : TCheckListBox = [ ] frApple, [x] frPear\n"
              "Count : TSpinEdit = 42\n"
              "Color : TColorEdit = clRed\n"
              "Day : TDateTimePicker = 2/29/2024\n"
              "Clock : TDateTimePicker = 1:45:10 PM\n"
              "Key : THotKeyEx = Ctrl+Alt+K\n"
              "Font : TFontEdit = Arial, 12\n"
              "Checks : TCheckListBox = [x] two\n"
              "Picture : TSpcImage = no picture\n");
    EXPECT_EQ(ErrorOf([&] { ClickSettingsNode(session, "TBasketData|Lid"); }),
              "2 there is no node 'Lid'");
    EXPECT_EQ(ErrorOf([&] { ClickSettingsNode(session, "Lid"); }),
              "2 there is no node 'Lid'; there are TBasketData");
    session.OS().QueueAnswer(IDCANCEL);
    EXPECT_EQ(ErrorOf([&] { CloseSettingsForm(session); }), "1 the window stays open");
    session.OS().QueueAnswer(IDYES);
    EXPECT_TRUE(CloseSettingsForm(session));
    EXPECT_FALSE(CloseSettingsForm(session));
    EXPECT_EQ(data.Basket, TSet<TFruit>{frPear});
    EXPECT_EQ(data.Count, 42);
}

TEST(SettingsForm, SpeaksTheLanguageOfNow) {
    const std::filesystem::path folder = std::filesystem::path(TARN_PROGRAM).parent_path();
    if (!std::filesystem::exists(folder / "texp_ger.dll"))
        GTEST_SKIP() << "built without language libraries";
    std::string printed;
    TScript(folder, [&](std::string_view text) { printed += text; })
        .Play("registry ExpLocaleDir \"" + folder.string() +
              "\"\n"
              "start\npump\n"
              "click \"TarnExperts|Settings|Language|German\"\npump\n"
              "click \"TarnExperts|Einstellungen|Bearbeiten...\"\n"
              "node Expertenmenü\nprint tree\n"
              "node \"Installierte Experten|Experte für den Unit-Editor\"\nprint rows\n"
              "row Aktiv click\npress Esc\nprint dialogs\n");
    EXPECT_EQ(printed, "  Experteneinstellungen\n"
                       "    Installierte Experten +\n"
                       "*   Expertenmenü +\n"
                       "    Spezielle Einstellungen +\n"
                       "Aktiv : TCheckBox 2,0 13x17 = checked\n"
                       "[Embedded IDE] Änderungen an der Spezifikation speichern? -> cancel\n");
}

} // namespace
} // namespace tarn
