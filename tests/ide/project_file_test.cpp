#include "Projects/ProjectFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

namespace tarn {

// What a failing comparison prints.
void PrintTo(const TProjectEntry& e, std::ostream* out) {
    *out << e.UnitName << " | " << e.FileName << " | " << e.FormName << " | " << e.DesignClass;
}
void PrintTo(const TProjectFile& f, std::ostream* out) {
    *out << "kind " << int(f.Kind) << ", " << f.Name << ", " << f.ResourceFile;
    for (const TProjectEntry& entry : f.Entries) PrintTo(entry, &(*out << "\n  "));
}

namespace {

/// What a reader says of a bad text: "LINE: message", or "accepted".
template <class F> std::string ErrorOf(F read, std::string_view text) {
    try {
        read(text);
    } catch (const EProjectFileError& error) {
        return std::to_string(error.Line) + ": " + error.what();
    }
    return "accepted";
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t i = 0; (i = text.find(from, i)) != text.npos; i += to.size())
        text.replace(i, from.size(), to);
    return text;
}

constexpr std::string_view ProgramText = "// The main program; uses Nothing in 'no.pas';\n"
                                         "program Orchard;\n"
                                         "\n"
                                         "{$APPTYPE GUI}{$R+}\n"
                                         "uses\n"
                                         "  Forms,\n"
                                         "  Main in 'Main.pas' {MainForm},\n"
                                         "  Data in 'sub\\Data.pas' {Store: TDataModule},\n"
                                         "  (* old: Gone in 'Gone.pas', *)\n"
                                         "  {$IFDEF TRACE} Trace in 'it''s; here.pas', {$ENDIF}\n"
                                         "  Core.Lists in '..\\Lists.pas' { not a form };\n"
                                         "\n"
                                         "{$R *.RES}\n"
                                         "{$R second.res}\n"
                                         "begin\n"
                                         "  Run('uses Late in ''late.pas''; { ');\n"
                                         "end.\n";
const TProjectFile Program = {pfkProgram,
                              "Orchard",
                              {{"Forms", "", "", ""},
                               {"Main", "Main.pas", "MainForm", ""},
                               {"Data", "sub\\Data.pas", "Store", "TDataModule"},
                               {"Trace", "it's; here.pas", "", ""},
                               {"Core.Lists", "..\\Lists.pas", "", ""}},
                              "*.RES"};

TEST(PascalProject, ReadsAProgramWithAnyLineEnds) {
    const std::string text(ProgramText);
    EXPECT_EQ(ReadPascalProject(text), Program);
    EXPECT_EQ(ReadPascalProject(ReplaceAll(text, "\n", "\r\n")), Program);
    EXPECT_EQ(ReadPascalProject(ReplaceAll(text, "\n", "\r")), Program);
    EXPECT_EQ(ReadPascalProject("\xEF\xBB\xBF" + text), Program);
}

TEST(PascalProject, Forms) {
    const struct {
        std::string_view Text;
        TProjectFile Project;
    } cases[] = {
        {"PROGRAM p(Input, Output); USES A IN 'a.pas'; BEGIN END.",
         {pfkProgram, "p", {{"A", "a.pas", "", ""}}, ""}},
        {"library L.Sub; begin end.", {pfkLibrary, "L.Sub", {}, ""}},
        {"program p; begin uses A; end.", {pfkProgram, "p", {}, ""}},
        {"package Pk; requires rtl, vcl; contains A in 'a.pas' {F}, B; end.",
         {pfkPackage, "Pk", {{"A", "a.pas", "F", ""}, {"B", "", "", ""}}, ""}},
        {"program p; {$IFDEF A} uses X; {$ELSE} uses Y; {$ENDIF}",
         {pfkProgram, "p", {{"X", "", "", ""}, {"Y", "", "", ""}}, ""}},
        {"library L; {$Resource 'my file.res' 'my file.rc'} uses A{not a form}, B;",
         {pfkLibrary, "L", {{"A", "", "", ""}, {"B", "", "", ""}}, "my file.res"}},
        {"program p; (*$R p.res*) uses A in 'a' {one}{two}, B in 'b' (* F *) { F2 : T2 };",
         {pfkProgram, "p", {{"A", "a", "one", ""}, {"B", "b", "F2", "T2"}}, "p.res"}},
        {"program p; {$R-,Q+} {$R } {$RANGECHECKS ON} {$} uses A;",
         {pfkProgram, "p", {{"A", "", "", ""}}, ""}},
        {"program \xCF; uses \xC0 in '\xC0.pas';",
         {pfkProgram, "\xCF", {{"\xC0", "\xC0.pas", "", ""}}, ""}},
    };
    for (const auto& c : cases) EXPECT_EQ(ReadPascalProject(c.Text), c.Project) << c.Text;
}

TEST(PascalProject, Malformed) {
    const struct {
        std::string_view Text;
        std::string_view Error;
    } cases[] = {
        {"", "1: expected program, library or package instead of the end of the file"},
        {"\r\n\r\nunit A;", "3: expected program, library or package instead of \"unit\""},
        {"program\n;", "2: expected a project name instead of \";\""},
        {"program p", "1: expected \";\" instead of the end of the file"},
        {"program p(a", "1: expected \";\" instead of the end of the file"},
        {"program p;\ruses\rA in b;", "3: expected a file name in quotes instead of \"b\""},
        {"program p;\nuses A in 'a\n.pas';",
         "2: expected a file name in quotes instead of a string that is not closed"},
        {"program p;\nuses A,\n;", "3: expected a unit name instead of \";\""},
        {"program p; uses A B;", "1: expected \",\" or \";\" instead of \"B\""},
        {"program p; uses A.;", "1: expected a unit name instead of \";\""},
        {"program p; uses A", "1: expected \",\" or \";\" instead of the end of the file"},
        {"program p;\n{ never\n\nclosed", "2: comment is not closed"},
        {"program p; begin end.\n\n(* late )", "3: comment is not closed"},
    };
    for (const auto& c : cases) EXPECT_EQ(ErrorOf(ReadPascalProject, c.Text), c.Error) << c.Text;
}

constexpr std::string_view CppText =
    "<?xml version='1.0' encoding='utf-8' ?>\n"
    "<!-- a comment with <PROJECT> -->\n"
    "<PROJECT>\n"
    "  <MACROS>\n"
    "    <PROJECT value=\"bin\\Press.exe\"/>\n"
    "    <RESFILES value=\"Press.res other.res\"/>\n"
    "    <DEFINES value='A=1;B=\"2\"'/>\n"
    "  </MACROS>\n"
    "  <FILELIST>\n"
    "      <FILE FILENAME=\"Press.res\" FORMNAME=\"\" UNITNAME=\"Press.res\" CONTAINERID=\"R\"/>\n"
    "      <FILE FILENAME=\"src\\Unit1.cpp\" FORMNAME=\"Form1\" UNITNAME=\"Unit1\"\n"
    "            CONTAINERID=\"CCompiler\" DESIGNCLASS=\"TFrame\" LOCALCOMMAND=\"\"></FILE>\n"
    "      <file filename='R&amp;D &#65;&#x42C;&apos;.cpp' />\n"
    "  </FILELIST>\n"
    "  <IDEOPTIONS>\n"
    "[Version]\n"
    "Key=a & b > c\n"
    "<![CDATA[ </PROJECT> ]]></IDEOPTIONS>\n"
    "</PROJECT>\n";

TEST(CppProject, ReadsTheFileList) {
    EXPECT_EQ(ReadCppProject(CppText),
              (TProjectFile{pfkCppProject,
                            "Press",
                            {{"Press.res", "Press.res", "", ""},
                             {"Unit1", "src\\Unit1.cpp", "Form1", "TFrame"},
                             {"R&D A\xD0\xAC'", "R&D A\xD0\xAC'.cpp", "", ""}},
                            "Press.res"}));
    EXPECT_EQ(ReadCppProject("<PROJECT/>"), (TProjectFile{pfkCppProject, "", {}, ""}));
    // What is no entity stays; lists elsewhere in the tree are not the project's.
    EXPECT_EQ(
        ReadCppProject("<PROJECT><FILELIST><FILE FILENAME='&no; &#0; &#x110000; &'/>"
                       "</FILELIST><X><FILELIST><FILE FILENAME='x'/></FILELIST></X></PROJECT>")
            .Entries,
        (std::vector<TProjectEntry>{{"&no; &#0; &#x110000; &", "&no; &#0; &#x110000; &", "", ""}}));
}

TEST(CppProject, Malformed) {
    const struct {
        std::string_view Text;
        std::string_view Error;
    } cases[] = {
        {"", "1: not an XML project; makefile projects are not read"},
        {"# ---\nVERSION = 1\n", "1: not an XML project; makefile projects are not read"},
        {"<?xml version='1.0'?>\n", "2: no PROJECT"},
        {"\n<GROUP/>", "2: \"GROUP\" instead of PROJECT"},
        {"<PROJECT/>\n<PROJECT/>", "2: \"PROJECT\" instead of PROJECT"},
        {"<PROJECT>\n<MACROS>\n</PROJECT>", "3: \"PROJECT\" is closed instead of \"MACROS\""},
        {"<PROJECT>\n<MACROS>\n\n", "2: \"MACROS\" is not closed"},
        {"<PROJECT></PROJECT>\n</PROJECT>", "2: \"PROJECT\" is closed, but not open"},
        {"<PROJECT>\n<!-- ", "2: \"<!--\" is not closed"},
        {"<PROJECT>\n<MACROS\n", "2: tag \"MACROS\" is not closed"},
        {"<PROJECT>\n< MACROS>", "2: \"<\" without a name"},
        {"<PROJECT a\n=b>", "1: attribute \"a\" has no value in quotes"},
        {"<PROJECT\na>", "2: attribute \"a\" has no value in quotes"},
        {"<PROJECT a='1>\n</PROJECT>", "1: value of \"a\" is not closed"},
        {"<PROJECT <", "1: unexpected \"<\" in a tag"},
        {"<PROJECT><FILELIST>\n<FILE UNITNAME='A'/></FILELIST></PROJECT>",
         "2: \"FILE\" has no FILENAME"},
    };
    for (const auto& c : cases) EXPECT_EQ(ErrorOf(ReadCppProject, c.Text), c.Error) << c.Text;
}

constexpr std::string_view GroupText = "#-------------------------------------------- \\\n"
                                       "VERSION = 1.0\n"
                                       "!ifndef ROOT\n"
                                       "ROOT = $(MAKEDIR)\\..\n"
                                       "!endif\n"
                                       "MAKE = $(ROOT)\\make -f$**\n"
                                       "Projects = A.exe \"My B.dll\" \\\n"
                                       "           c#.bpl # the last one\n"
                                       "default: $(PROJECTS)\n"
                                       "\n"
                                       "a.EXE: sub\\A.dpr\n"
                                       "  $(PASCAL)\n"
                                       "\n"
                                       "\"My B.dll\": \"other folder\\B:=.bpr\"\n"
                                       "\t$(MAKE)\n"
                                       "c#.bpl: c#.dpk\n"
                                       "unlisted: x y\n";

TEST(ProjectGroup, ReadsTheProjectsInOrder) {
    const std::vector<TProjectGroupEntry> projects = {
        {"A.exe", "sub\\A.dpr"}, {"My B.dll", "other folder\\B:=.bpr"}, {"c#.bpl", "c#.dpk"}};
    const std::string text(GroupText);
    EXPECT_EQ(ReadProjectGroup(text).Projects, projects);
    EXPECT_EQ(ReadProjectGroup(ReplaceAll(text, "\n", "\r\n")).Projects, projects);
    EXPECT_EQ(ReadProjectGroup(ReplaceAll(text, "\n", "\r")).Projects, projects);
    EXPECT_EQ(ReadProjectGroup("PROJECTS =\n").Projects, std::vector<TProjectGroupEntry>());
    // A backslash at the very end continues nothing; the last of two lists counts.
    EXPECT_EQ(ReadProjectGroup("PROJECTS = b\na: 1\nPROJECTS = a\\").Projects,
              (std::vector<TProjectGroupEntry>{{"a", "1"}}));
}

TEST(ProjectGroup, Malformed) {
    const struct {
        std::string_view Text;
        std::string_view Error;
    } cases[] = {
        {"", "1: no PROJECTS"},
        {"A = B\r\nprogram p;\r\n", "2: neither a macro nor a rule"},
        {"\n\nPROJECTS = A \\\n B\nA: a.dpr\n", "3: project \"B\" has no rule"},
        {"PROJECTS = A\nA:\n", "2: project \"A\" has no file"},
        {"PROJECTS = A\nA: a.dpr\n\na: b.dpr\n", "4: project \"A\" has a second rule"},
        {"A: a.dpr\nPROJECTS = A a\n", "2: project \"a\" stands twice"},
    };
    for (const auto& c : cases) EXPECT_EQ(ErrorOf(ReadProjectGroup, c.Text), c.Error) << c.Text;
}

// Damaged files are read or refused, and a refusal names a line of the file.
TEST(ProjectFiles, MutationsAreReadOrRefused) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t n) { return std::size_t(random() % n); };
    constexpr std::string_view pieces[] = {"{",  "}",   "(*", "*)", "'",    "\"",  "<",       ">",
                                           "/>", "-->", "\\", "\r", "\n",   ":",   "=",       ";",
                                           ",",  "&#",  "in", "#",  "uses", "$R ", "PROJECT", "\t"};
    int refused = 0;
    for (const std::string_view original : {ProgramText, CppText, GroupText})
        for (int round = 0; round < 2000; ++round) {
            std::string text(original);
            for (std::size_t i = below(4); i < 5; ++i) {
                const std::size_t at = below(text.size());
                const std::string_view piece = pieces[below(std::size(pieces))];
                text.replace(at, below(3) * below(10), below(4) == 0 ? "\0\xFF" : piece);
            }
            const auto lines = std::count_if(text.begin(), text.end(),
                                             [](char c) { return c == '\r' || c == '\n'; });
            const auto check = [&](auto read) {
                try {
                    read(text);
                } catch (const EProjectFileError& error) {
                    ++refused;
                    EXPECT_GE(error.Line, 1) << text;
                    EXPECT_LE(error.Line, lines + 1) << text;
                }
            };
            check(ReadPascalProject);
            check(ReadCppProject);
            check(ReadProjectGroup);
        }
    EXPECT_GT(refused, 12000); // the two readers of other formats always refuse
}

class ProjectPathTest : public testing::Test {
protected:
    ProjectPathTest()
        : FFolder(std::filesystem::temp_directory_path() /
                  ("project_path_test." + std::to_string(getpid()))) {
        for (const char* name : {"App/Main.pas", "App/sub/DATA.pas", "App/sub/data.PAS",
                                 "App/sub/Data.dfm", "Shared/Lists.pas"}) {
            std::filesystem::create_directories((FFolder / name).parent_path());
            std::ofstream(FFolder / name) << name;
        }
    }
    ~ProjectPathTest() override { std::filesystem::remove_all(FFolder); }

    std::filesystem::path FFolder;
};

TEST_F(ProjectPathTest, FindsFilesInAnyCase) {
    const struct {
        const char* Written;
        const char* Native;
    } cases[] = {
        {"Main.pas", "App/Main.pas"},
        {"MAIN.PAS", "App/Main.pas"},
        {"SUB\\data.DFM", "App/sub/Data.dfm"},
        {"sub/data.PAS", "App/sub/data.PAS"},  // as written comes before any other case
        {"sub\\Data.Pas", "App/sub/DATA.pas"}, // the first of two
        {"..\\shared\\lists.pas", "Shared/Lists.pas"},
        {".\\gone\\..\\main.pas", "App/Main.pas"},
        {"Sub\\Gone\\New.pas", "App/sub/Gone/New.pas"},
        {"main.pas\\x", "App/Main.pas/x"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ResolveProjectPath(FFolder / "App", c.Written), FFolder / c.Native) << c.Written;
    EXPECT_EQ(ResolveProjectPath("elsewhere", (FFolder / "app/main.pas").string()),
              FFolder / "App/Main.pas");
}

} // namespace
} // namespace tarn
