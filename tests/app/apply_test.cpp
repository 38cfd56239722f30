#include "Commands.h"
#include "TextStore/TextFile.h"
#include "app_fixture.h"

#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace {

namespace fs = std::filesystem;

TApplyRequest Request(std::string_view command, std::string_view select = {},
                      std::string_view lines = {}) {
    TApplyRequest request;
    request.Command = command;
    request.Select = select;
    request.Lines = lines;
    return request;
}

/// A file to run a command on.
class ApplyTest : public testing::Test {
protected:
    std::string Path(std::string_view name = "Unit1.pas") const {
        return (Folder.Path() / name).string();
    }
    /// What a command prints for a file of that text, or the error with the file's folder left out.
    std::string Apply(std::string_view text, TApplyRequest request) {
        WriteFile(Path(), text);
        request.File = Path();
        std::string result = "nothing printed";
        std::string error = ErrorOf([&] {
            if (auto printed = ApplyCommand(request)) result = *printed;
        });
        if (error == "none") return result;
        EXPECT_EQ(ReadFile(Path()), text);
        const std::string folder = Folder.Path().string() + "/";
        if (const std::size_t at = error.find(folder); at != std::string::npos)
            error.erase(at, folder.size());
        return error;
    }

    TTempFolder Folder;
};

constexpr std::string_view Sort = "SortLinesItem", Left = "MoveBlockLeftOneItem",
                           Right = "MoveBlockRightTwoItem";

TEST_F(ApplyTest, PrintsTheResult) {
    const struct {
        std::string_view Text, Command, Select, Lines, Expected;
    } cases[] = {
        {"b;\na;\n", Sort, "", "", "a;\nb;\n"},
        {"b;\r\na;", Sort, "", "", "a;\r\nb;"},
        {"b;\na;\n", "sortlinesITEM", "", "", "a;\nb;\n"},
        {"c;\nb;\na;\n", Sort, "", "1-2", "b;\nc;\na;\n"},
        {"c;\nb;\na;", Sort, "", "2-3", "c;\na;\nb;"},
        {"a\nb\nc\n", Right, "", "2", "a\n  b\nc\n"},
        {"a\nb\nc\n", Right, "1:2-2:1", "", "a\nb\nc\n"}, // a blank piece does not move
        {"a\nbc\n", Right, "2:2-2:3", "", "a\nb  c\n"},
        {"a\nbc\n", Right, "2:3-2:2", "", "a\nb  c\n"},
        {" a\n b\n", Left, "", "", "a\nb\n"},
        {"a;\nb;\n", Sort, "", "", "a;\nb;\n"},
    };
    for (const auto& c : cases) {
        const TApplyRequest request = Request(c.Command, c.Select, c.Lines);
        EXPECT_EQ(Apply(c.Text, request), c.Expected) << c.Text << c.Command;
        EXPECT_EQ(ReadFile(Path()), c.Text);
    }
}

TEST_F(ApplyTest, RefusesWithAMessageAndChangesNothing) {
    const std::string commands =
        "FormUnitViewItem, InspectorFormViewItem, ViewCPUItem, MoveBlockLeftOneItem, "
        "MoveBlockLeftTwoItem, MoveBlockRightOneItem, MoveBlockRightTwoItem, "
        "SortLinesItem, UnitManagerItem, SettingItem, AboutFormItem";
    const struct {
        std::string_view Text, Command, Select, Lines;
        std::string Expected;
    } cases[] = {
        {"a\n", Left, "", "", "1 Unit1.pas:1: MoveBlockLeftOneItem refused the selection"},
        {"a;\nb\n", Sort, "", "2", "1 Unit1.pas:2: SortLinesItem refused the selection"},
        {"a\n", "AboutFormItem", "", "",
         "1 Unit1.pas:1: AboutFormItem ended with a message: Quellmark Wizard Pack 1.0"},
        {"", Sort, "", "", "1 Unit1.pas:1: SortLinesItem is not available for this selection"},
        {"a\n", Sort, "1:1-1:1", "",
         "1 Unit1.pas:1: SortLinesItem is not available for this selection"},
        {"a\n", Sort, "1:1-1:3", "", "1 Unit1.pas: place 1:3 is outside the text of 2 lines"},
        {"a\n", Sort, "3:1-1:1", "", "1 Unit1.pas: place 3:1 is outside the text of 2 lines"},
        {"a\n", Sort, "", "1-9", "1 Unit1.pas: place 9:1 is outside the text of 2 lines"},
        {"a\n", Sort, "1-2", "", "2 --select: '1' is no place; write ROW:COLUMN"},
        {"a\n", Sort, "", "2-1", "2 --lines: '2-1' is no place; write FIRST-LAST"},
        {"a\n", "Sort", "", "", "2 unknown command 'Sort'; there are " + commands},
    };
    for (const bool inPlace : {false, true})
        for (const auto& c : cases) {
            TApplyRequest request = Request(c.Command, c.Select, c.Lines);
            request.InPlace = inPlace;
            EXPECT_EQ(Apply(c.Text, request), c.Expected);
        }
}

TEST_F(ApplyTest, WritesInPlaceAndKeepsModeAndLink) {
    fs::create_directory(Folder.Path() / "real");
    WriteFile(Path("real/Unit1.pas"), "b;\r\na;\r\nc");
    ASSERT_EQ(::chmod(Path("real/Unit1.pas").c_str(), 0640), 0);
    fs::create_symlink("real/Unit1.pas", Path("Link.pas"));
    TApplyRequest request = Request(Sort, "", "1-2");
    request.File = Path("Link.pas");
    request.InPlace = true;
    EXPECT_EQ(ApplyCommand(request), std::nullopt);
    EXPECT_EQ(ReadFile(Path("real/Unit1.pas")), "a;\r\nb;\r\nc");
    EXPECT_EQ(fs::read_symlink(Path("Link.pas")), "real/Unit1.pas");
    struct stat info = {};
    ASSERT_EQ(::stat(Path("real/Unit1.pas").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    // Nothing was left beside the file.
    EXPECT_EQ(std::distance(fs::directory_iterator(Folder.Path() / "real"), {}), 1);

    // Sorted already: the file is not written at all.
    const auto before = IdentityOf(Path("real/Unit1.pas"));
    EXPECT_EQ(ApplyCommand(request), std::nullopt);
    EXPECT_EQ(IdentityOf(Path("real/Unit1.pas")), before);
}

TEST_F(ApplyTest, NeedsAFileThatItCanRead) {
    fs::create_directory(Path("folder"));
    fs::create_symlink("loop", Path("loop"));
    const auto kindOf = [this](std::string_view name) {
        TApplyRequest request = Request(Sort);
        request.File = Path(name);
        try {
            ApplyCommand(request);
        } catch (const EFileError& error) {
            EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
            return std::optional(error.Kind());
        }
        return std::optional<TFileErrorKind>();
    };
    EXPECT_EQ(kindOf("missing"), feMissing);
    EXPECT_EQ(kindOf("folder"), feFolder);
    EXPECT_EQ(kindOf("loop"), feIO);
    if (::geteuid() == 0) return; // nothing is closed to root
    WriteFile(Path("closed"), "a;");
    ASSERT_EQ(::chmod(Path("closed").c_str(), 0), 0);
    EXPECT_EQ(kindOf("closed"), feDenied);
}

TEST(BuiltMenu, HoldsEveryCommand) {
    const std::string menu = BuiltMenu();
    for (const std::string_view id : {"MoveBlockLeftOneItem", "SortLinesItem", "AboutFormItem"})
        EXPECT_NE(menu.find("id=" + std::string(id)), std::string::npos) << menu;
}

} // namespace
} // namespace tarn
