#include "Diff.h"
#include "TScript.h"
#include "app_fixture.h"

#include <algorithm>
#include <ostream>
#include <vector>

// Plays each script of tests/scripts, and the tour of the example, and compares all that it prints
// with the file NAME.out in tests/scripts.

namespace tarn {
namespace {

namespace fs = std::filesystem;

struct TScenario {
    fs::path Script;
    fs::path Expected;

    friend void PrintTo(const TScenario& scenario, std::ostream* out) {
        *out << scenario.Script.filename().string();
    }
};

std::vector<TScenario> AllScenarios() {
    const fs::path source = TARN_SOURCE_DIR;
    const fs::path folder = source / "tests" / "scripts";
    std::vector<TScenario> all{{source / "examples" / "tour.tarn", folder / "tour.out"}};
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == ".tarn")
            all.push_back({entry.path(), fs::path(entry.path()).replace_extension(".out")});
    std::sort(all.begin(), all.end(),
              [](const TScenario& a, const TScenario& b) { return a.Script < b.Script; });
    return all;
}

class Scripts : public testing::TestWithParam<TScenario> {};

TEST_P(Scripts, PrintsWhatIsExpected) {
    const TScenario& scenario = GetParam();
    const std::string script = ReadFile(scenario.Script);
    const auto statements = ParseScript(script);
    ASSERT_TRUE(std::any_of(statements.begin(), statements.end(), [](const TStatement& statement) {
        return statement.Verb == "print" || statement.Verb == "expect";
    })) << "a script that looks at nothing cannot fail";
    const std::string expected = ReadFile(scenario.Expected);
    ASSERT_FALSE(expected.empty()) << scenario.Expected << " is missing or empty";

    std::string printed;
    try {
        TScript(scenario.Script.parent_path(), [&](std::string_view text) {
            printed += text;
        }).Play(script);
    } catch (const EScriptError& error) {
        ADD_FAILURE() << scenario.Script.string() << ":" << error.what();
    }
    EXPECT_EQ(UnifiedDiff(expected, printed, "expected", "printed"), "");
}

INSTANTIATE_TEST_SUITE_P(All, Scripts, testing::ValuesIn(AllScenarios()),
                         [](const testing::TestParamInfo<TScenario>& info) {
                             return info.param.Script.stem().string();
                         });

TEST(ScriptsFolder, HasNoOutputWithoutItsScript) {
    const auto all = AllScenarios();
    for (const fs::directory_entry& entry :
         fs::directory_iterator(all.back().Expected.parent_path()))
        if (entry.path().extension() == ".out") {
            const bool known = std::any_of(all.begin(), all.end(), [&](const TScenario& scenario) {
                return scenario.Expected == entry.path();
            });
            EXPECT_TRUE(known) << entry.path();
        }
}

} // namespace
} // namespace tarn
