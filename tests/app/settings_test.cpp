#include "Settings.h"
#include "TSession.h"
#include "app_fixture.h"

namespace tarn {
namespace {

std::string Get(std::string_view path) {
    std::string value;
    const std::string error = ErrorOf([&] { value = GetSetting(path); });
    return error == "none" ? value : error;
}
std::string Set(std::string_view path, std::string_view value) {
    return ErrorOf([&] { SetSetting(path, value); });
}

constexpr std::string_view Objects =
    "ExpManagerData, FormUnitViewData, InspectorFormViewData, CPUViewData, EditorManagerData, "
    "UnitManagerData";

TEST(Settings, NeedThePack) {
    TSession session;
    EXPECT_EQ(Get("EditorManagerData.SafeStringMoving"), "1 the pack is not started");
    ASSERT_TRUE(session.StartPack());
    EXPECT_EQ(Get("EditorManagerData.SafeStringMoving"), "True");
    session.StopPack();
    EXPECT_EQ(Set("EditorManagerData.SafeStringMoving", "False"), "1 the pack is not started");
}

TEST(Settings, AreFoundByPathWithoutCase) {
    TSession session;
    ASSERT_TRUE(session.StartPack());
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"EditorManagerData.MoveCursorTopLeft", "False"},
        {"editormanagerdata.safestringmoving", "True"},
        {"CustomData.EditorManagerData.SafeStringMoving", "True"},
        {"MenuData.SortLinesItem.ShortCutText", "Ctrl+;"},
        {"MENUDATA.sortlinesitem.CAPTION", "Sorting"},
        {"MenuData.SortLinesItem.ImageIndex", "-1"},
        {"ActiveExperts.EditorManager.Active", "True"},
        {"ExpManagerData.MainMenuSearchItem", "Tools"},
        {"ExpManagerData.MaxLogSize", "50"},
        {"ExpManagerData.EditorFormData.SaveSettingShortCut", "Ctrl+S"},
    };
    for (const auto& [path, expected] : cases) EXPECT_EQ(Get(path), expected) << path;
}

TEST(Settings, AreSetFromText) {
    TSession session;
    ASSERT_TRUE(session.StartPack());
    const struct {
        std::string_view Path, Value, Read;
    } cases[] = {
        {"EditorManagerData.SafeStringMoving", "false", "False"},
        {"MenuData.SortLinesItem.Caption", "", ""},
        {"MenuData.SortLinesItem.Caption", "a.b \xE4", "a.b \xE4"},
        {"MenuData.SortLinesItem.ImageIndex", "7", "7"},
        {"MenuData.SortLinesItem.ImageIndex", "-1", "-1"},
        {"ExpManagerData.EditorFormData.AutoSaveSetting", "False", "False"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Set(c.Path, c.Value), "none") << c.Path;
        EXPECT_EQ(Get(c.Path), c.Read) << c.Path;
    }
}

TEST(Settings, ErrorsNameWhatThereIs) {
    TSession session;
    ASSERT_TRUE(session.StartPack());
    const std::string objects(Objects);
    const std::string items = "MoveBlockLeftOneItem, MoveBlockLeftTwoItem, MoveBlockRightOneItem, "
                              "MoveBlockRightTwoItem, SortLinesItem, SettingItem, AboutFormItem";
    const std::string formData = "AutoSaveSetting, SaveSettingShortCut, Setting";
    const std::pair<std::string_view, std::string> paths[] = {
        {"", "2 there is no ''; there are " + objects + ", ActiveExperts, MenuData"},
        {"Editor.Safe",
         "2 there is no 'Editor'; there are " + objects + ", ActiveExperts, MenuData"},
        {"CustomData.Editor", "2 there is no 'Editor'; there are " + objects},
        {"MenuData", "2 'MenuData' names no setting"},
        {"MenuData.Sort", "2 there is no 'Sort'; there are " + items},
        {"EditorManagerData",
         "2 'EditorManagerData' needs a property: MoveCursorTopLeft, SafeStringMoving"},
        {"EditorManagerData.Safe",
         "2 there is no property 'Safe'; there are MoveCursorTopLeft, SafeStringMoving"},
        {"EditorManagerData.SafeStringMoving.X", "2 'SafeStringMoving' has no properties"},
        {"ExpManagerData.EditorFormData",
         "2 'ExpManagerData.EditorFormData' needs a property: " + formData},
    };
    for (const auto& [path, expected] : paths) EXPECT_EQ(Get(path), expected) << path;

    EXPECT_EQ(Set("EditorManagerData.SafeStringMoving", "maybe"),
              "2 'maybe' is no value; there are False, True");
    EXPECT_EQ(Set("MenuData.SortLinesItem.ImageIndex", "9999999999"),
              "2 'MenuData.SortLinesItem.ImageIndex': '9999999999' is not a valid integer value");
    EXPECT_EQ(Set("ExpManagerData.EditorFormData", "x"),
              "2 'ExpManagerData.EditorFormData' needs a property: " + formData);
    EXPECT_EQ(Get("EditorManagerData.SafeStringMoving"), "True");
    EXPECT_EQ(Get("MenuData.SortLinesItem.ImageIndex"), "-1");
}

} // namespace
} // namespace tarn
