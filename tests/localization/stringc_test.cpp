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

    TOutcome Compile(const std::string& table, const std::string& language = "English",
                     const std::string& output = "rows.inc") {
        std::ofstream(FFolder / "strings.tsv", std::ios::binary) << table;
        return Run("strings.tsv " + language + " " + output, output);
    }
    TOutcome Run(const std::string& arguments, const std::string& output = "rows.inc") {
        const std::string command =
            "cd '" + FFolder.string() + "' && '" STRINGC_PATH "' " + arguments + " 2> errors";
        const int status = std::system(command.c_str()); // NOLINT(cert-env33-c)
        return {WEXITSTATUS(status), ReadFile("errors"),
                std::filesystem::exists(FFolder / output) ? ReadFile(output) : "(none)"};
    }

    std::filesystem::path FFolder;

private:
    std::string ReadFile(const std::string& name) {
        std::ifstream file(FFolder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
};

TEST_F(StringcTest, WritesTheRowsOfOneLanguage) {
    const std::string table = "# comment\n"
                              "id\tEnglish\tGerman\n"
                              "\n"
                              "7\tOpen\t\xC3\x96"
                              "ffnen\n"
                              "# another\n"
                              "50514\tA=\"a\"\\r\\nB\\t\\\\ ?\t2\\r\\n\\\\3\n";
    EXPECT_EQ(
        Compile(table),
        (TOutcome{0, "", "{7, \"Open\"},\n{50514, \"A=\\\"a\\\"\\015\\012B\\011\\\\ ?\"},\n"}));
    EXPECT_EQ(Compile(table, "German"),
              (TOutcome{0, "", "{7, \"\\303\\226ffnen\"},\n{50514, \"2\\015\\012\\\\3\"},\n"}));
}

TEST_F(StringcTest, WritesAResourceScript) {
    const std::string table = "id\tEnglish\tRussian\tLatin\n"
                              "7\tOpen\t\xD0\xAF \\\\\ta\n"
                              "50514\tA=\"a\"\\r\\nB\\t\tA=\"\"?1\\r\\n\\\\n\\t\tb\\r\\n\n";
    EXPECT_EQ(Compile(table, "Russian", "texts.rc"),
              (TOutcome{0, "",
                        "#pragma code_page(65001)\n"
                        "LANGUAGE 25, 1\n"
                        "STRINGTABLE\n"
                        "BEGIN\n"
                        "7, \"\xD0\xAF \\\\\"\n"
                        "50514, \"A=\"\"\"\"?1\\r\\n\\\\n\\t\"\n"
                        "END\n"}));
    EXPECT_EQ(Compile(table, "Latin", "latin.rc"),
              (TOutcome{1, "stringc: no resource language for \"Latin\"\n", "(none)"}));
}

TEST_F(StringcTest, RefusesTranslationsThatDoNotFit) {
    const struct {
        const char* English;
        const char* German;
        const char* Error; ///< empty: the texts fit
    } cases[] = {
        {"%s has %d", "%d of %s", "placeholders: %d %s instead of %s %d"},
        {"%s", "none", "placeholders: none instead of %s"},
        {"none", "%f", "placeholders: %f instead of none"},
        {"%.2f, %-3d", "%.1f, %-3d", "placeholders: %.1f %-3d instead of %.2f %-3d"},
        {"%0:s %1:x", "%1:x %0:s", "placeholders: %1:x %0:s instead of %0:s %1:x"},
        {"%d%%", "%d", "placeholders: %d instead of %d %%"},
        {"%%s", "%%d", ""},
        {"%s", "%%s", "placeholders: %% instead of %s"},
        {"%s %d", "%%s %d", "placeholders: %% %d instead of %s %d"},
        {"0-100%.", "100 % of it, 0%", ""},
        {"one##two", "one two", "number of \"##\": 0 instead of 1"},
        {"one##two", "one####two", "number of \"##\": 2 instead of 1"},
        {"one##two", "o##netwo", ""},
        {"a\\r\\nb\\r\\nc", "a\\r\\nb", "number of \"\\r\\n\": 1 instead of 2"},
        {"a\\r\\nb", "a\\nb", "number of \"\\r\\n\": 0 instead of 1"},
        {"All|*.*", "Alle", "number of \"|\": 0 instead of 1"},
    };
    for (const auto& c : cases) {
        const std::string error = c.Error;
        const std::string table = std::string("id\tEnglish\tLatin\tGerman\n5\t") + c.English +
                                  "\t" + c.English + "\t" + c.German + "\n";
        // Refused whichever language is wanted, the faulty one or another.
        for (const char* language : {"English", "German"}) {
            const TOutcome outcome = Compile(table, language, "rows.rc");
            const std::string told = error.empty() ? "" : "strings.tsv:2: German: " + error + "\n";
            EXPECT_EQ(outcome.Code, error.empty() ? 0 : 1) << table;
            EXPECT_EQ(outcome.Errors, told) << table;
            EXPECT_EQ(outcome.Rows == "(none)", !error.empty()) << table;
            std::filesystem::remove(FFolder / "rows.rc");
        }
    }
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
