// The string table compiler as a tool: a table in, rows or messages and an exit code out.
// STRINGC_PATH is the tool's path, given by the build.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct TOutcome {
    int Code;
    std::string Errors; ///< with the table's folder taken out
    std::string Rows;   ///< "(none)" when no output was written

    friend bool operator==(const TOutcome&, const TOutcome&) = default;
    friend std::ostream& operator<<(std::ostream& out, const TOutcome& o) {
        return out << "exit " << o.Code << "\n" << o.Errors << o.Rows;
    }
};

class StringcTest : public testing::Test {
protected:
    StringcTest()
        : FFolder(std::filesystem::temp_directory_path() /
                  ("stringc_test." + std::to_string(getpid()))) {
        std::filesystem::create_directories(FFolder);
    }
    ~StringcTest() override { std::filesystem::remove_all(FFolder); }

    TOutcome Compile(const std::string& table, const std::string& language = "English") {
        std::ofstream(FFolder / "strings.tsv", std::ios::binary) << table;
        return Run("strings.tsv " + language + " rows.inc");
    }
    TOutcome Run(const std::string& arguments) {
        const std::string command =
            "cd '" + FFolder.string() + "' && '" STRINGC_PATH "' " + arguments + " 2> errors";
        const int status = std::system(command.c_str()); // NOLINT(cert-env33-c)
        return {WEXITSTATUS(status), ReadFile("errors"),
                std::filesystem::exists(FFolder / "rows.inc") ? ReadFile("rows.inc") : "(none)"};
    }

private:
    std::string ReadFile(const char* name) {
        std::ifstream file(FFolder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    std::filesystem::path FFolder;
};

TEST_F(StringcTest, WritesTheRowsOfOneLanguage) {
    const std::string table = "# comment\n"
                              "id\tEnglish\tGerman\n"
                              "\n"
                              "7\tOpen\t\xC3\x96"
                              "ffnen\n"
                              "# another\n"
                              "50514\tA=\"a\"\\r\\nB\\t\\\\ ?\t2\\\\3\n";
    EXPECT_EQ(
        Compile(table),
        (TOutcome{0, "", "{7, \"Open\"},\n{50514, \"A=\\\"a\\\"\\015\\012B\\011\\\\ ?\"},\n"}));
    EXPECT_EQ(Compile(table, "German"),
              (TOutcome{0, "", "{7, \"\\303\\226ffnen\"},\n{50514, \"2\\\\3\"},\n"}));
}

TEST_F(StringcTest, RefusesBadTables) {
    const struct {
        const char* Rows;
        const char* Errors;
    } cases[] = {
        {"5\ta\n5\tb\n", "strings.tsv:3: id 5 stands twice\n"},
        {"6\ta\n5\tb\n", "strings.tsv:3: id 5 stands after 6\n"},
        {"5\ta\\qb\n", "strings.tsv:2: bad escape \"\\q\"; there are \\r \\n \\t \\\\\n"},
        {"5\ta\\\n", "strings.tsv:2: bad escape \"\\\"; there are \\r \\n \\t \\\\\n"},
        {"5\t\n", "strings.tsv:2: empty text\n"},
        {"5\n", "strings.tsv:2: 1 fields instead of 2\n"},
        {"5\ta\tb\n", "strings.tsv:2: 3 fields instead of 2\n"},
        {"5x\ta\n", "strings.tsv:2: \"5x\" is not an id from 1 to 65535\n"},
        {"0\ta\n", "strings.tsv:2: \"0\" is not an id from 1 to 65535\n"},
        {"99999999999\ta\n", "strings.tsv:2: \"99999999999\" is not an id from 1 to 65535\n"},
        {"5\ta\r\n", "strings.tsv:2: control character in the text; write \\r, \\n or \\t\n"},
        {"5\ta\xFF\n", "strings.tsv:2: text is not UTF-8\n"},
        {"5\t\xC3\n", "strings.tsv:2: text is not UTF-8\n"},
        {"5\t\xED\xA0\x80\n", "strings.tsv:2: text is not UTF-8\n"},
        {"# nothing else\n", "strings.tsv:2: no texts\n"},
        {"5\t\n6\tb\n6\tc\n", "strings.tsv:2: empty text\nstrings.tsv:4: id 6 stands twice\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Compile(std::string("id\tEnglish\n") + c.Rows), (TOutcome{1, c.Errors, "(none)"}))
            << c.Rows;
}

TEST_F(StringcTest, RefusesAnEmptyTextOfAnotherLanguage) {
    EXPECT_EQ(Compile("id\tEnglish\tGerman\n5\ta\t\n"),
              (TOutcome{1, "strings.tsv:2: empty text\n", "(none)"}));
}

TEST_F(StringcTest, RefusesBadHeadersFilesAndUsage) {
    EXPECT_EQ(Compile("5\ta\n"),
              (TOutcome{1, "strings.tsv:1: the header must begin with \"id\"\n", "(none)"}));
    EXPECT_EQ(Compile("id\tEnglish\n5\ta\n", "Latin"),
              (TOutcome{1, "strings.tsv:1: no column \"Latin\"\n", "(none)"}));
    EXPECT_EQ(Compile(""), (TOutcome{1, "strings.tsv:1: no texts\n", "(none)"}));
    EXPECT_EQ(Run("missing.tsv English rows.inc"),
              (TOutcome{1, "stringc: cannot read missing.tsv\n", "(none)"}));
    EXPECT_EQ(Run(". English rows.inc"), (TOutcome{1, "stringc: cannot read .\n", "(none)"}));
    EXPECT_EQ(Compile("id\tEnglish\n5\ta\n").Code, 0);
    const std::string rows = "{5, \"a\"},\n";
    EXPECT_EQ(Run("strings.tsv English no/such/rows.inc"),
              (TOutcome{1, "stringc: cannot write no/such/rows.inc\n", rows}));
    EXPECT_EQ(Run("strings.tsv English"),
              (TOutcome{2, "usage: stringc TABLE LANGUAGE OUTPUT\n", rows}));
}

} // namespace
