// Every script prints in the workbench what it prints on the command line.

#include "TFrontEnd.h"
#include "TScript.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarn {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

const fs::path Folder = fs::path(TARN_SOURCE_DIR) / "tests/scripts";

std::vector<std::string> ScriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(Folder))
        if (entry.path().extension() == ".tarn") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class WorkbenchScripts : public testing::TestWithParam<std::string> {};

TEST_P(WorkbenchScripts, PrintTheSame) {
    std::string printed;
    TScript script(Folder, [&](std::string_view text) { printed += text; });
    TFrontEnd frontEnd(script.Session(), true);
    frontEnd.Flush();
    QWidget* const window = frontEnd.WidgetOf(script.Session().Ide().MainForm());
    ASSERT_TRUE(window);
    window->show();
    script.OnStatement = [&] {
        frontEnd.Flush();
        QApplication::processEvents();
    };
    script.Play(ReadAll(Folder / (GetParam() + ".tarn")));
    EXPECT_EQ(printed, ReadAll(Folder / (GetParam() + ".out")));
}

INSTANTIATE_TEST_SUITE_P(All, WorkbenchScripts, testing::ValuesIn(ScriptNames()),
                         [](const auto& info) { return info.param; });

} // namespace
} // namespace tarn

/// Without windows that anybody sees, unless what is tested is how they stand on a display.
int main(int argc, char** argv) {
    const bool onDisplay = qgetenv("QT_QPA_PLATFORM") == "xcb";
    if (!onDisplay) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (!onDisplay) GTEST_FLAG_SET(filter, "-OnDisplay.*");
    testing::InitGoogleTest(&argc, argv);
    int result = RUN_ALL_TESTS();
    // A filter that fits no test would pass for a success.
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) result = 1;
    // What waits for the next event to be freed is no leak.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return result;
}
