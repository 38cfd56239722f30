#include "Cpu/Emulator.h"
#include "TTerminal.h"
#include "app_fixture.h"
#include "rtl/SafeFile.h"

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

TEST_F(ProgramTest, PrintsCaptures) {
    Write("stop.cpu", "cpu-recording 1\n"
                      "registers EAX=1 ESP=0012FF7C EIP=00401000 CS=1B\n"
                      "label Go\n"
                      "code 00401000: 40 | inc eax\n"
                      "code 00401001: C3 | ret\n"
                      "memory 00402000: 41 0A\n"
                      "stack 0012FF7C: 4A756C79\n");
    Write("bad.cpu", "cpu-recording 1\nregisters EAX\n");
    Write("loop.bin", "\xB8\x05\x01\x01\x01\x40\xF4"); // mov eax, 0x1010105; inc eax; hlt
    const std::string code = "Go\n00401000 40               inc eax\n"
                             "00401001 C3               ret\n";
    const struct {
        std::string Args, Expected;
    } cases[] = {
        {"stop.cpu --pane disassembly --lines 2", "0|" + code + "|"},
        {"--pane STACK stop.cpu --lines 1", "0|0012FF7C  4A756C79  July\n|"},
        {"stop.cpu --pane dump --lines 1", "0|00402000  41 0A ?? ?? ?? ?? ?? ??  A.......\n|"},
        {"stop.cpu --pane registers --lines 0", "2||tarn: --lines is 1 at least\n"},
        {"stop.cpu --pane memory",
         "2||tarn: unknown pane 'memory'; there are disassembly, registers, flags, dump, stack and "
         "all\n"},
        {"stop.cpu --until 0", "2||tarn: --until requires --program\n"},
        {"bad.cpu", "1||tarn: bad.cpu:2: 'EAX' is no NAME=VALUE\n"},
        {"none.cpu", "3||tarn: cannot read none.cpu: no such file or folder\n"},
        {"", "2||tarn: cpu needs a FILE or -- PROGRAM\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(Run("cpu " + c.Args), c.Expected) << c.Args;
    const std::string all = Run("cpu stop.cpu");
    EXPECT_TRUE(all.starts_with("0|[Assembler code]\n" + code)) << all;
    EXPECT_NE(all.find("\n\n[Processor’s registers]\nEAX 00000001\n"), std::string::npos) << all;
    EXPECT_TRUE(all.ends_with("0012FF58  ????????  ....\n\n|")) << all;
    if (!HasEmulator()) return;
    EXPECT_EQ(Run("cpu -- loop.bin --steps 2 --pane disassembly --lines 3"),
              "0|00401006 F4               hlt\n"
              "00401007 0000             add byte ptr [eax], al\n"
              "00401009 0000             add byte ptr [eax], al\n|");
    EXPECT_TRUE(Run("cpu --program loop.bin --until 401006 --pane registers")
                    .starts_with("0|EAX 01010106\n"));
}

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

// --- The settings -----------------------------------------------------------------------------

class SettingsTest : public ProgramTest {
protected:
    std::string Settings(const std::string& arguments) {
        return Run("settings --package-dir . " + arguments);
    }
    std::string File() const { return (Folder.Path() / "ExpData.spc").string(); }
    std::string FileBytes() const { return ReadFile(File()); }
    std::size_t CountOf(std::string_view prefix) const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(Folder.Path()))
            if (entry.path().filename().string().starts_with(prefix)) ++count;
        return count;
    }
    static std::string Tree(std::string_view caption) {
        return "object ExpertData: TExpData\n  MenuData_ = <\n    item\n"
               "      ItemID = 'SortLinesItem'\n      Caption = '" +
               std::string(caption) + "'\n    end>\nend\n";
    }
};

TEST_F(SettingsTest, AreChangedInTheFileAlone) {
    EXPECT_EQ(Settings("get MenuData.SortLinesItem.Caption"), "0|Sorting\n|");
    EXPECT_EQ(Settings("list").substr(0, 2), "0|");
    EXPECT_EQ(CountOf("Exp"), 0U) << "nothing was to be written";
    EXPECT_EQ(Settings("set MenuData.SortLinesItem.Caption Order"), "0||");
    EXPECT_EQ(Settings("set expmanagerdata.autosavesettings false"), "0||");
    EXPECT_EQ(Settings("set ExpManagerData.EditorFormData.Setting '\"[a]\\nb\"'"), "0||");
    EXPECT_EQ(Settings("set MenuData.MoveBlockLeftOneItem.ShortCutText ''"), "0||");
    EXPECT_EQ(Settings("set ActiveExperts.CPUView.Active False"), "0||");

    const auto identity = IdentityOf(File());
    const std::pair<std::string_view, std::string_view> reading[] = {
        {"get MenuData.SortLinesItem.Caption", "0|Order\n|"},
        {"get ExpManagerData.AutoSaveSettings", "0|False\n|"},
        {"list ExpManagerData.EditorFormData.Setting",
         "0|CustomData.ExpManagerData.EditorFormData.Setting=\"[a]\\nb\\n\"\n|"},
        {"get MenuData.MoveBlockLeftOneItem.ShortCutText", "0|\n|"},
        {"get CPUViewData.FormSetting.FormPlacement",
         "2||tarn: CustomData.CPUViewData: no active expert has it; its settings are kept\n"},
        {"set ExpManagerData.MaxLogSize much",
         "2||tarn: CustomData.ExpManagerData.MaxLogSize: 'much' is not a valid integer value; "
         "wanted is a whole number from 0 to 4294967295\n"},
        {"edit",
         "1||tarn: the settings editor needs a window, which the command line has not; 'tarn "
         "settings set' changes a setting, and a script of 'tarn run' opens the editor by "
         "clicking \"Edit...\"\n"},
        {"reset Nothing.At.All", "2||tarn: there is no 'Nothing'; there are ExpManagerData, "
                                 "FormUnitViewData, InspectorFormViewData, EditorManagerData, "
                                 "UnitManagerData, ActiveExperts, MenuData, CustomData\n"},
        {"export a.txt", "2||tarn: a.txt: Unknown specification format. There are .sbn, .stx and "
                         ".spc\n"},
        {"import none.stx", "3||tarn: Specification file: none.stx not found.\n"},
        {"show none.stx", "3||tarn: Specification file: none.stx not found.\n"},
    };
    for (const auto& [arguments, expected] : reading)
        EXPECT_EQ(Settings(std::string(arguments)), expected) << arguments;
    EXPECT_EQ(IdentityOf(File()), identity) << "nothing was to be written";

    const std::string menu = Run("menu --package-dir .");
    EXPECT_NE(menu.find("  Order [Ctrl+;]"), std::string::npos) << menu;
    EXPECT_EQ(Run("lang --package-dir . --registry reg").substr(0, 2), "0|");
    EXPECT_EQ(IdentityOf(File()), identity) << "only the settings commands save";
    EXPECT_EQ(Run("settings get ExpManagerData.AutoSaveSettings --package-dir none"),
              "3||tarn: cannot read none: is no folder\n");
    ::setenv("TARN_PACKAGE_DIR", Folder.Path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Run("settings get MenuData.SortLinesItem.Caption"), "0|Order\n|");
    ::unsetenv("TARN_PACKAGE_DIR"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(SettingsTest, AreResetAloneOrTogether) {
    const std::string fresh = Settings("list");
    const std::pair<std::string_view, std::string_view> changes[] = {
        {"MenuData.SortLinesItem.Caption", "Order"},
        {"MenuData.SortLinesItem.ImageIndex", "7"},
        {"MenuData.SettingItem.Caption", "Set"},
        {"ExpManagerData.EditorFormData.AutoSaveSetting", "False"},
        {"EditorManagerData.SafeStringMoving", "False"},
        {"EditorManagerData.Caption", "Editor"},
    };
    for (const auto& [path, value] : changes)
        EXPECT_EQ(Settings("set " + std::string(path) + " " + std::string(value)), "0||");
    EXPECT_EQ(Settings("export changed.sbn"), "0||");
    // What is at its default after a reset: one sign for each change.
    const std::pair<std::string_view, std::string_view> resets[] = {
        {"menudata.sortlinesitem.caption", "x....."},
        {"MenuData.SortLinesItem", "xx...."},
        {"MenuData", "xxx..."},
        {"ExpManagerData.EditorFormData", "...x.."},
        {"EditorManagerData", "....xx"},
        {"CustomData", "...xxx"},
    };
    for (const auto& [path, expected] : resets) {
        EXPECT_EQ(Settings("import changed.sbn"), "0||");
        EXPECT_EQ(Settings("reset " + std::string(path)), "0||");
        const std::string left = Settings("list");
        std::string found;
        for (const auto& [changed, value] : changes) {
            const std::string line = std::string(changed) + "=" + std::string(value) + "\n";
            found += left.find(line) == std::string::npos ? 'x' : '.';
        }
        EXPECT_EQ(found, expected) << path;
    }
    // An expert that is switched off loses nothing by it.
    EXPECT_EQ(Settings("set EditorManagerData.MoveCursorTopLeft True"), "0||");
    EXPECT_EQ(Settings("set ActiveExperts.EditorManager.Active False"), "0||");
    EXPECT_EQ(Settings("reset MenuData.SettingItem"), "0||");
    EXPECT_EQ(Settings("reset ActiveExperts.EditorManager"), "0||");
    EXPECT_EQ(Settings("get EditorManagerData.MoveCursorTopLeft"), "0|True\n|");
    EXPECT_EQ(Settings("reset"), "0||");
    EXPECT_EQ(CountOf("Exp"), 0U);
    EXPECT_EQ(Settings("list"), fresh);
}

TEST_F(SettingsTest, AreExportedAndImported) {
    EXPECT_EQ(Settings("set MenuData.SortLinesItem.Caption Order"), "0||");
    const std::string shown = Settings("show ExpData.spc");
    EXPECT_EQ(shown.substr(0, 59), "0|version record: 1.01 5.00\nobject ExpertData: TExpData\n  A");
    const std::string tree = shown.substr(shown.find("object"));
    for (const std::string name : {"a.sbn", "a.STX", "a.spc"}) {
        EXPECT_EQ(Settings("export " + name), "0||");
        EXPECT_EQ(Settings("show " + name),
                  (name == "a.STX" ? "0|version record: e_ver: 1.01 d_ver: 5.00\n"
                                   : "0|version record: 1.01 5.00\n") +
                      tree);
        EXPECT_EQ(Settings("reset"), "0||");
        EXPECT_EQ(Settings("import " + name), "0||");
        EXPECT_EQ(Settings("show ExpData.spc"), shown) << name;
    }
    EXPECT_EQ(ReadFile(Folder.Path() / "a.sbn"), FileBytes());
    EXPECT_EQ(ReadFile(Folder.Path() / "a.STX").substr(0, 31), "sys_txt e_ver: 1.01 d_ver: 5.00");

    // What a file does not mention stays; the items stand in the order of the file.
    Write("part.stx", Tree("Part"));
    EXPECT_EQ(Settings("show part.stx"), "0|no version record\n" + Tree("Part") + "|");
    EXPECT_EQ(Settings("set ExpManagerData.MaxLogSize 7"), "0||");
    EXPECT_EQ(Settings("import part.stx"), "0||");
    EXPECT_EQ(Settings("list MenuData.SortLinesItem.Caption"),
              "0|MenuData.SortLinesItem.Caption=Part\n|");
    EXPECT_EQ(Settings("get ExpManagerData.MaxLogSize"), "0|7\n|");
    EXPECT_EQ(Settings("list MenuData").substr(0, 25), "0|MenuData.SortLinesItem.");

    const std::string before = FileBytes();
    std::string broken = Tree("Broken");
    broken.insert(broken.find("    end"), "      ImageIndex = 'x'\n");
    Write("broken.stx", broken);
    Write("cut.stx", Tree("Cut").substr(0, 60));
    Write("cut.sbn", ReadFile(Folder.Path() / "a.sbn").substr(0, 100));
    Write("form.stx", "object Form1: TForm1\nend\n");
    Write("text.stx", "hello");
    Write("record.stx", "sys_txt e_ver: new d_ver: 5.00\r\n---\r\n" + Tree("Record"));
    const std::pair<std::string_view, std::string_view> refused[] = {
        {"import broken.stx",
         "1||tarn: broken.stx: line 6, column 20: ExpertData.MenuData_[0].ImageIndex: an integer "
         "expected, not vaString\n"},
        {"import cut.stx", "1||tarn: cut.stx: line 4, column 8: ExpertData.MenuData_[0].I: \"=\" "
                           "expected: end of text\n"},
        {"import cut.sbn", "1||tarn: cut.sbn: offset 95: ExpertData.ActiveExperts_[1]: the stream "
                           "ends: 5 of 10 bytes\n"},
        {"show cut.stx", "1||tarn: cut.stx: line 4, column 8: ExpertData.MenuData_[0].I: \"=\" "
                         "expected: end of text\n"},
        {"show cut.sbn", "1||tarn: cut.sbn: offset 95: ExpertData.ActiveExperts_[1]: the stream "
                         "ends: 5 of 10 bytes\n"},
        {"import form.stx",
         "1||tarn: form.stx: holds a TForm1 instead of the settings, TExpData\n"},
        {"import text.stx", "1||tarn: text.stx: Unknown specification format.\n"},
        {"show text.stx", "1||tarn: text.stx: Unknown specification format.\n"},
        {"import record.stx", "1||tarn: record.stx: Version information has incorrect format:  "
                              "e_ver: new d_ver: 5.00.\n"},
    };
    for (const auto& [arguments, expected] : refused)
        EXPECT_EQ(Settings(std::string(arguments)), expected) << arguments;
    EXPECT_EQ(FileBytes(), before);

    Write("later.stx", "sys_txt e_ver: 9.00 d_ver: 5.00\r\n---\r\n" + Tree("Later"));
    EXPECT_EQ(Settings("import later.stx"),
              "1||Embedded IDE: warning: Specification file later.stx created with later editor "
              "versionCurrent editor version: 1.01 in file version: 9.00.Loading may be incorrect. "
              "Continue load file?\n[y]es / [n]o: no\n"
              "tarn: later.stx: of a later version, and not imported\n");
    EXPECT_EQ(FileBytes(), before);
    const std::string asked =
        RunAtTerminal("settings --package-dir . import later.stx", "y\n").substr(0, 3);
    if (asked == "no ") GTEST_SKIP() << "no pseudo terminal to be had";
    EXPECT_EQ(asked, "0||");
    EXPECT_EQ(Settings("get MenuData.SortLinesItem.Caption"), "0|Later\n|");
}

TEST_F(SettingsTest, InAFileThatCannotBeReadAreKeptBeside) {
    Write("ExpData.spc", "hello");
    const std::string notice =
        "tarn: ./ExpData.spc was not read and does not count: offset 0: neither a component stream "
        "nor its text\n";
    EXPECT_EQ(Settings("get MenuData.SortLinesItem.Caption"), "0|Sorting\n|" + notice);
    EXPECT_EQ(FileBytes(), "hello");
    EXPECT_EQ(Settings("set MenuData.SortLinesItem.Caption Order"), "0||" + notice);
    EXPECT_EQ(Settings("get MenuData.SortLinesItem.Caption"), "0|Order\n|");
    EXPECT_EQ(CountOf("ExpData-"), 1U);
    Write("ExpData.spc", "again");
    EXPECT_EQ(Settings("reset MenuData.SortLinesItem"), "0||" + notice);
    EXPECT_EQ(CountOf("ExpData-"), 2U);
}

TEST_F(ProgramTest, ExplainsItsUsage) {
    for (const std::string_view arguments :
         {"--help", "run --help", "apply --help", "settings --help", "menu"})
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
