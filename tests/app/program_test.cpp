#include "TTerminal.h"
#include "app_fixture.h"

#include <cstdlib>
#include <sys/wait.h>

// The built program as a shell sees it: output, messages and exit codes.

namespace tarn {
namespace {

class ProgramTest : public testing::Test {
protected:
    /// What a run leaves behind as "CODE|standard output|standard error", with the test's folder
    /// called DIR.
    std::string Run(const std::string& arguments, std::string_view input = {}) {
        Write("stdin", input);
        const std::string result = Start(arguments, "stdin", "stderr");
        return WithoutFolder(result + ReadFile(Folder.Path() / "stderr"));
    }
    /// The same at a terminal where the input was typed ahead, without its echo.
    std::string RunAtTerminal(const std::string& arguments, std::string_view typed) {
        TTerminal terminal;
        if (!terminal.IsOpen()) return "no terminal";
        terminal.Type(typed);
        const std::string result = Start(arguments, terminal.Name(), terminal.Name());
        return WithoutFolder(result + terminal.Shown());
    }
    void Write(std::string_view name, std::string_view text) {
        WriteFile(Folder.Path() / name, text);
    }

    TTempFolder Folder;

private:
    std::string WithoutFolder(std::string text) const {
        const std::string folder = Folder.Path().string();
        for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos;)
            text.replace(at, folder.size(), "DIR");
        return text;
    }
    /// "CODE|standard output|"
    std::string Start(const std::string& arguments, const std::string& input,
                      const std::string& errors) {
        const std::string command = "cd " + Folder.Path().string() + " && '" TARN_PROGRAM "' " +
                                    arguments + " <" + input + " >stdout 2>" + errors;
        const int status = std::system(command.c_str()); // NOLINT(cert-env33-c)
        return std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + "|" +
               ReadFile(Folder.Path() / "stdout") + "|";
    }
};

TEST_F(ProgramTest, RunsScripts) {
    Write("good.tarn", "say hello\n");
    Write("refused.tarn", "say hello\n\nundo\nsay never\n");
    Write("wrong.tarn", "say hello\njump\n");
    Write("malformed.tarn", "say hello\nsay \"open\n");
    Write("io.tarn", "open Nothing.pas\n");
    Write("expect.tarn", "file a.pas\n| b\nopen a.pas\nexpect text\n| a\n");
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"run good.tarn", "0|hello\n|"},
        {"run refused.tarn", "1|hello\n|tarn: refused.tarn:3: there is nothing to undo\n"},
        {"run wrong.tarn",
         "2|hello\n|tarn: wrong.tarn:2: unknown verb 'jump'; tarn run --help lists them\n"},
        {"run malformed.tarn",
         "2||tarn: malformed.tarn:2: missing \" at the end of a quoted word\n"},
        {"run io.tarn",
         "3||tarn: io.tarn:1: cannot read DIR/Nothing.pas: no such file or folder\n"},
        {"run expect.tarn", "1||tarn: expect.tarn:4: not as expected\n--- expected\n+++ found\n"
                            "@@ -1,1 +1,1 @@\n-a\n+b\n"},
        {"run missing.tarn", "3||tarn: cannot read missing.tarn: no such file or folder\n"},
        {"run .", "3||tarn: cannot read .: is a folder\n"},
    };
    for (const auto& [arguments, expected] : cases)
        EXPECT_EQ(Run(std::string(arguments)), expected) << arguments;
    EXPECT_EQ(Run("run -", "say hello\nstop\n"),
              "1|hello\n|tarn: <stdin>:2: the pack is not started\n");
}

TEST_F(ProgramTest, IsAFilter) {
    EXPECT_EQ(Run("apply SortLinesItem -", "b;\r\na;\r\n"), "0|a;\r\nb;\r\n|");
    EXPECT_EQ(Run("apply MoveBlockRightOneItem - --lines 2", "a\nb\nc"), "0|a\n b\nc|");
    EXPECT_EQ(Run("apply MoveBlockLeftOneItem - --select 2:1-2:2", "a\nb\n"),
              "1||tarn: <stdin>:2: MoveBlockLeftOneItem refused the selection\n");
    EXPECT_EQ(Run("apply SortLinesItem - -i", "b;\n"),
              "2||tarn: standard input cannot be changed in place\n");
    Write("Unit1.pas", "b;\na;\n");
    EXPECT_EQ(Run("apply SortLinesItem -i Unit1.pas"), "0||");
    EXPECT_EQ(ReadFile(Folder.Path() / "Unit1.pas"), "a;\nb;\n");
    EXPECT_EQ(Run("apply SortLinesItem Nothing.pas"),
              "3||tarn: cannot read DIR/Nothing.pas: no such file or folder\n");
}

TEST_F(ProgramTest, ShowsDialogs) {
    Write("a.pas", "b");
    Write("close.tarn", "open a.pas\ntype x\nclose\nprint file a.pas\n");
    constexpr std::string_view prompt =
        "Embedded IDE: question: Save changes to DIR/a.pas?\n[y]es / [n]o / [c]ancel: ";
    const std::string closed = "0|\"b\"\n|";
    const std::string open = "1||";
    const std::string refused = "tarn: close.tarn:3: the file stays open\n";
    EXPECT_EQ(Run("run close.tarn"), open + refused);
    EXPECT_EQ(Run("run --ask close.tarn", "n\n"),
              open + std::string(prompt) + "cancel\n" + refused);
    const std::string about = "Embedded IDE: information: Quellmark Wizard Pack 1.0\n";
    EXPECT_EQ(Run("apply AboutFormItem -", "a\n"),
              open + about + "tarn: <stdin>:1: AboutFormItem ended with a message\n");

    const std::string atTerminal = RunAtTerminal("run --ask close.tarn", "what?\nn\n");
    if (atTerminal == "no terminal") GTEST_SKIP() << "no pseudo terminal to be had";
    EXPECT_EQ(atTerminal, closed + std::string(prompt) + "[y]es / [n]o / [c]ancel: ");
    EXPECT_EQ(RunAtTerminal("run --ask close.tarn", "\n"),
              open + std::string(prompt) + "cancel\n" + refused);
}

TEST_F(ProgramTest, PrintsAndClearsTheLog) {
    constexpr std::string_view none = "0||tarn: there is no error log\n";
    const std::filesystem::path file = Folder.Path() / "ExpError.log";
    EXPECT_EQ(Run("log --package-dir ."), none);
    EXPECT_EQ(Run("log --clear --package-dir ."), none);
    EXPECT_FALSE(std::filesystem::exists(file));
    Write("ExpError.log", "\r\n[ now ]\r\noops\r\n");
    EXPECT_EQ(Run("log --package-dir ."), "0|\r\n[ now ]\r\noops\r\n|");
    EXPECT_EQ(Run("log --package-dir . --clear"), "0||");
    EXPECT_EQ(ReadFile(file), "");
    EXPECT_EQ(Run("log --package-dir ."), "0||");
    EXPECT_EQ(Run("log --package-dir stdin"), "3||tarn: cannot read stdin: is no folder\n");
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(Run("log --package-dir ."), "3||tarn: cannot read ./ExpError.log: is a folder\n");
    EXPECT_EQ(Run("log --package-dir . --clear"),
              "3||tarn: cannot write to ./ExpError.log: is a directory\n");
}

TEST_F(ProgramTest, ExplainsItsUsage) {
    for (const std::string_view arguments : {"--help", "run --help", "apply --help", "menu"})
        EXPECT_EQ(Run(std::string(arguments)).substr(0, 2), "0|") << arguments;
    EXPECT_EQ(Run("--version").substr(0, 7), "0|tarn ");
    for (const std::string_view arguments :
         {"", "jump", "run", "run a b", "apply SortLinesItem", "menu x", "--jump",
          "apply SortLinesItem - --lines 1 --select 1:1-2:1"}) {
        const std::string result = Run(std::string(arguments));
        EXPECT_EQ(result.substr(0, 9), "2||tarn: ") << result;
        EXPECT_EQ(std::count(result.begin(), result.end(), '\n'), 1) << result;
    }
}

TEST_F(ProgramTest, Languages) {
    EXPECT_EQ(Run("lang --registry reg use Elvish").substr(0, 2), "2|");
    EXPECT_EQ(Run("lang --registry /proc/none/reg use Default").substr(0, 2), "3|");
    EXPECT_EQ(Run("lang check Nothing.dll").substr(0, 2), "3|");
    Write("text.dll", "no library");
    EXPECT_EQ(Run("lang check text.dll"), "3||tarn: text.dll: not a Windows library\n");

    const std::filesystem::path folder = std::filesystem::path(TARN_PROGRAM).parent_path();
    const std::string german = (folder / "texp_ger.dll").string();
    if (!std::filesystem::exists(german)) GTEST_SKIP() << "built without language libraries";
    for (const std::string_view library : {"texp_eng.dll", "texp_ger.dll", "texp_rus.dll"}) {
        const std::string file = (folder / library).string();
        EXPECT_TRUE(Run("lang check '" + file + "'").starts_with("0|" + file + ": ok, "));
    }
    EXPECT_EQ(Run("lang --registry reg"),
              "0|* Default (English)\n  English\n  German\n  Russian\n|");
    EXPECT_EQ(Run("lang --registry reg use german"), "0||");
    EXPECT_EQ(Run("lang --registry reg"),
              "0|  Standard (Englisch)\n* Deutsch\n  Englisch\n  Russisch\n|");
    // Names of the current language count as well; the environment names the registry, too.
    EXPECT_EQ(Run("lang --registry reg use Russisch"), "0||");
    EXPECT_EQ(Run("lang --registry reg use default"), "0||");
    EXPECT_EQ(Run("lang --registry reg").substr(0, 21), "0|* Default (English)");
}

TEST_F(ProgramTest, ReadsAndChangesIniText) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"none.ini sections", "3||tarn: cannot read none.ini: no such file or folder\n"},
        {"none.ini sort", "3||tarn: cannot read none.ini: no such file or folder\n"},
        {"a.ini set View Left 12", "0||"},
        {"a.ini set view -- top -5", "0||"},
        {"a.ini set Files 'a b' 'c = d'", "0||"},
        {"a.ini get VIEW LEFT", "0|12\n|"},
        {"a.ini get View Right", "1||tarn: a.ini: there is no key Right in section [View]\n"},
        {"a.ini get 'No\ne' Right", "1||tarn: a.ini: there is no section [No\\ne]\n"},
        {"a.ini rename View Left Zoom", "0||"},
        {"a.ini rename View Left Zoom", "1||tarn: a.ini: there is no key Left in section [View]\n"},
        {"a.ini sections", "0|View\nFiles\n|"},
        {"a.ini sort", "0||"},
        {"a.ini keys View", "0|top\nZoom\n|"},
        {"a.ini keys None", "1||tarn: a.ini: there is no section [None]\n"},
        {"a.ini delete View top", "0||"},
        {"a.ini delete View top", "1||tarn: a.ini: there is no key top in section [View]\n"},
        {"a.ini delete none", "1||tarn: a.ini: there is no section [none]\n"},
    };
    for (const auto& [arguments, expected] : cases)
        EXPECT_EQ(Run("ini " + std::string(arguments)), expected) << arguments;
    EXPECT_EQ(ReadFile(Folder.Path() / "a.ini"),
              "[Files]\r\na b=c = d\r\n\r\n[View]\r\nZoom=12\r\n\r\n");
    // The mark of UTF-8 is not part of the first line, and is no line left out.
    Write("mark.ini", "\xEF\xBB\xBF[S]\r\na=1\r\n");
    EXPECT_EQ(Run("ini mark.ini set S b 2"), "0||");
    EXPECT_EQ(Run("ini a.ini delete view"), "0||");
    EXPECT_FALSE(std::filesystem::exists(Folder.Path() / "a.ini~"));

    constexpr std::string_view commented = "early=1\n; why\n[S]\na=1\n";
    Write("b.ini", commented);
    EXPECT_EQ(Run("ini b.ini set S b 2"), "0||tarn: b.ini: 2 left out: comments and lines before "
                                          "any section; the former file is b.ini~\n");
    EXPECT_EQ(ReadFile(Folder.Path() / "b.ini"), "[S]\r\na=1\r\nb=2\r\n\r\n");
    EXPECT_EQ(ReadFile(Folder.Path() / "b.ini~"), commented);
}

TEST_F(ProgramTest, ConvertsAndChangesForms) {
    constexpr std::string_view text =
        "object A: TA\r\n  Left = 5\r\n  inherited B: TB [1]\r\n"
        "    Text = 'one'\r\n  end\r\n  object TC\r\n  end\r\nend\r\n";
    Write("a.dfm", text);
    Write("loose.dfm", "object A: TA\n  Left =  5\nend\n");
    Write("cut.dfm", "object A: TA\n  Left = \nend\n");
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"show a.dfm", "0|A: TA\n  inherited B: TB [1]\n  TC\n|"},
        {"show a.dfm b", "0|inherited B: TB [1]\n|"},
        {"show a.dfm Left", "1||tarn: a.dfm: A.Left is no object\n"},
        {"get a.dfm b", "0|inherited B: TB [1]\n  Text = 'one'\nend\n|"},
        {"get a.dfm B.Text", "0|'one'\n|"},
        {"get a.dfm B.Txet", "1||tarn: a.dfm: A.B has no Txet; is Text meant?\n"},
        {"check a.dfm", "0|a.dfm: ok\n|"},
        {"check a.dfm loose.dfm", "1|a.dfm: ok\nloose.dfm: line 2: Left =  5 becomes Left = 5\n|"
                                  "tarn: 1 of 2 files differ or cannot be read\n"},
        {"check none.dfm", "3|cannot read none.dfm: no such file or folder\n|"
                           "tarn: 1 of 1 files differ or cannot be read\n"},
        {"convert none.dfm", "3||tarn: cannot read none.dfm: no such file or folder\n"},
        {"convert a.dfm none/b.dfm", "3||tarn: cannot write none/b.dfm: no such file or folder\n"},
        {"convert stdin", "1||tarn: stdin: is no form file: it is empty\n"},
        {"convert a.dfm", "0||"}, // in place
        {"convert a.dfm --to Binary", "0||"},
        {"convert a.dfm b.dfm", "0||"},
        {"set a.dfm b.text -i -- \"-it's\"", "0||"},
        {"set a.dfm Left -i one two", "2||tarn: The following argument was not expected: two\n"},
        {"set a.dfm Left \"'1'\" -i",
         "1||tarn: a.dfm: A.Left: '1' is a string instead of an integer\n"},
        {"get a.dfm B.Text", "0|'-it'#39's'\n|"},
        {"set a.dfm B.Tag 1 --add -i", "0||"},
    };
    for (const auto& [arguments, expected] : cases)
        EXPECT_EQ(Run("form " + std::string(arguments)), expected) << arguments;
    EXPECT_EQ(ReadFile(Folder.Path() / "b.dfm"), text);
    EXPECT_EQ(Run("form convert a.dfm -"),
              "0|object A: TA\r\n  Left = 5\r\n  inherited B: TB [1]\r\n    Text = '-it'#39's'\r\n"
              "    Tag = 1\r\n  end\r\n  object TC\r\n  end\r\nend\r\n|");
    EXPECT_EQ(Run("form set loose.dfm left 6"), "0|object A: TA\n  Left =  6\nend\n|");
    EXPECT_EQ(Run("form convert cut.dfm").substr(0, 26), "1||tarn: cut.dfm: line 4, ");
    EXPECT_EQ(ReadFile(Folder.Path() / "cut.dfm"), "object A: TA\n  Left = \nend\n");
}

} // namespace
} // namespace tarn
