#include "Diff.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <vector>

namespace tarn {
namespace {

std::string Diff(std::string_view before, std::string_view after) {
    return UnifiedDiff(before, after, "a", "b");
}

TEST(UnifiedDiff, ShowsWhatDiffers) {
    const struct {
        std::string_view Before, After, Expected;
    } cases[] = {
        {"", "", ""},
        {"a\n", "a\n", ""},
        {"", "a\n", "@@ -0,0 +1,1 @@\n+a\n"},
        {"a\n", "", "@@ -1,1 +0,0 @@\n-a\n"},
        {"a\nb\nc\n", "a\nx\nc\n", "@@ -1,3 +1,3 @@\n a\n-b\n+x\n c\n"},
        {"a\n", "a", "@@ -1,1 +1,1 @@\n-a\n+a\n\\ no line end\n"},
        {"a\r\n", "a\n", "@@ -1,1 +1,1 @@\n-a\n+a\n"}, // line ends count
        {"a\rb\r", "a\rc\r", "@@ -1,2 +1,2 @@\n a\n-b\n+c\n"},
        {"1\n2\n3\n4\n5\n6\n", "1\n2\n3\n4\n5\n6\n7\n", "@@ -4,3 +4,4 @@\n 4\n 5\n 6\n+7\n"},
        // Six lines between two changes join them, seven do not.
        {"x\n1\n2\n3\n4\n5\n6\nx\n", "1\n2\n3\n4\n5\n6\n",
         "@@ -1,8 +1,6 @@\n-x\n 1\n 2\n 3\n 4\n 5\n 6\n-x\n"},
        {"x\n1\n2\n3\n4\n5\n6\n7\nx\n", "1\n2\n3\n4\n5\n6\n7\n",
         "@@ -1,4 +1,3 @@\n-x\n 1\n 2\n 3\n@@ -6,4 +5,3 @@\n 5\n 6\n 7\n-x\n"},
    };
    for (const auto& [before, after, expected] : cases)
        EXPECT_EQ(Diff(before, after),
                  expected.empty() ? "" : "--- a\n+++ b\n" + std::string(expected));
}

using TLines = std::vector<std::string>;

TLines LinesOf(const std::string& text) {
    TLines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// Applies a diff to the lines of a text; the counts of each hunk must be those of its lines.
TLines Applied(const TLines& before, const std::string& diff) {
    TLines result;
    std::size_t at = 0; // in `before`
    std::size_t restA = 0, restB = 0;
    const TLines lines = LinesOf(diff);
    for (std::size_t i = 2; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (line[0] == '@') {
            EXPECT_EQ(restA + restB, 0U);
            std::size_t startA = 0, startB = 0;
            EXPECT_EQ(std::sscanf(line.c_str(), "@@ -%zu,%zu +%zu,%zu @@", &startA, &restA, &startB,
                                  &restB),
                      4);
            for (const std::size_t start = restA > 0 ? startA - 1 : startA; at < start; ++at)
                result.push_back(before.at(at));
            EXPECT_EQ(result.size(), restB > 0 ? startB - 1 : startB);
            continue;
        }
        if (line[0] != '+') {
            EXPECT_EQ(before.at(at++), line.substr(1));
            --restA;
        }
        if (line[0] != '-') {
            result.push_back(line.substr(1));
            --restB;
        }
    }
    EXPECT_EQ(restA + restB, 0U);
    for (; at < before.size(); ++at) result.push_back(before[at]);
    return result;
}

TEST(UnifiedDiff, LeadsFromOneTextToTheOther) {
    std::mt19937 random(3); // NOLINT(cert-msc51-cpp): the same texts in every run
    const auto text = [&](std::size_t letters) {
        std::string lines;
        for (std::size_t n = random() % 40; n > 0; --n)
            lines.append(1, static_cast<char>('a' + random() % letters)).append("\n");
        return lines;
    };
    for (int round = 0; round < 1000; ++round) {
        const std::size_t letters = 1 + random() % 12;
        const std::string before = text(letters);
        const std::string after = text(letters);
        EXPECT_EQ(Applied(LinesOf(before), Diff(before, after)), LinesOf(after)) << before << "to\n"
                                                                                 << after;
    }
}

TEST(UnifiedDiff, ReplacesTheMiddleOfTextsThatHaveNothingInCommon) {
    std::string before = "same\n", after = "same\n";
    for (int i = 0; i < 3000; ++i) {
        before += "a" + std::to_string(i) + "\n";
        after += "b" + std::to_string(i) + "\n";
    }
    const std::string diff = Diff(before + "end\n", after + "end\n");
    EXPECT_EQ(Applied(LinesOf(before + "end\n"), diff), LinesOf(after + "end\n"));
}

} // namespace
} // namespace tarn
