// Sorting declarations: short cases, whole units, and the properties that hold for any text.

#include "qsSourceLines.h"
#include "qsStrUtils.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

using TLines = std::vector<std::string>;

TLines LinesOf(const TStrings& strings) {
    TLines lines;
    for (int i = 0; i < strings.Count(); ++i) lines.push_back(strings.Get(i));
    return lines;
}

void Fill(TStrings& strings, const TLines& lines) {
    for (const std::string& line : lines) strings.Add(line);
}

TEST(SortDeclarations, Sorts) {
    const struct {
        const char* What;
        TLines Lines;
        TLines Sorted;
    } cases[] = {
        {"by name, whatever the keyword",
         {"  procedure B;", "  function A: Integer;"},
         {"  function A: Integer;", "  procedure B;"}},
        {"every keyword, in any case",
         {"PROPERTY e: T;", "Constructor d;", "destructor c;", "fUNCTION b: T;", "Procedure a;"},
         {"Procedure a;", "fUNCTION b: T;", "destructor c;", "Constructor d;", "PROPERTY e: T;"}},
        {"names without regard to case",
         {"procedure b;", "procedure A;", "procedure C;"},
         {"procedure A;", "procedure b;", "procedure C;"}},
        {"a parameter list of two lines stays together",
         {"  procedure B(X: Integer;", "      Y: Integer);", "  procedure A;"},
         {"  procedure A;", "  procedure B(X: Integer;", "      Y: Integer);"}},
        {"by what follows the first line",
         {"procedure A(", "  Y: T);", "procedure A(", "  X: T);"},
         {"procedure A(", "  X: T);", "procedure A(", "  Y: T);"}},
        {"by the prefix last",
         {"procedure A;", "  function A;", "function A;"},
         {"  function A;", "function A;", "procedure A;"}},
        {"equal keys keep their order",
         {"procedure a;", "procedure A;", "procedure a;", "PROCEDURE A;"},
         {"procedure a;", "procedure A;", "procedure a;", "PROCEDURE A;"}},
        {"blank lines between and inside disappear",
         {"", "  B: T;", "\t ", "  A:", "", "    T;", "\x01"},
         {"  A:", "    T;", "  B: T;"}},
        {"only blank lines", {"", " \t", ""}, {}},
        {"no lines", {}, {}},
        {"comments of a line",
         {"  b;", "  // z;", "//a", "  procedure // in front", "  (* c *)"},
         {"  (* c *)", "  procedure // in front", "  // z;", "//a", "  b;"}},
        {"comments end at their own mark",
         {"{ z;", "  y }", "x;", "(* w;", "  { v; }", "*) u;", "t;"},
         {"(* w;", "  { v; }", "*) u;", "{ z;", "  y }", "t;", "x;"}},
        {"a directive is a comment", {"b;", "{$IFDEF X}", "a;"}, {"{$IFDEF X}", "a;", "b;"}},
        {"a closing mark may share the star", {"b;", "(*)", "a;"}, {"(*)", "a;", "b;"}},
        {"marks inside literals count",
         {"c = 'x;y'", "b = '(';", "  + ')';", "a = ';"},
         {"a = ';", "b = '(';", "  + ')';", "c = 'x;y'"}},
        {"a tab does not end a keyword",
         {"procedure\tA;", "function Q;"},
         {"procedure\tA;", "function Q;"}},
        {"a tab may stand before and after one",
         {"\tprocedure \tB;", "\tprocedure A;"},
         {"\tprocedure A;", "\tprocedure \tB;"}},
        {"class methods go by the whole line",
         {"  class procedure X;", "  procedure D;", "  procedure B;"},
         {"  procedure B;", "  class procedure X;", "  procedure D;"}},
        {"a keyword alone on its line",
         {"procedure", "  B;", "function ", "  A;"},
         {"function ", "  A;", "procedure", "  B;"}},
        {"a later line that is only a keyword stays a line",
         {"T = ", "  function", "  (A: T): T;", "S: T;"},
         {"S: T;", "T = ", "  function", "  (A: T): T;"}},
        {"several declarations on a line are one", {"b; a;", "ab;"}, {"ab;", "b; a;"}},
        {"bytes above 127 and NUL stay",
         {std::string("procedure \xC4\xFF\0;", 14), "procedure z;", "procedure \xC4\xFE;"},
         {"procedure z;", "procedure \xC4\xFE;", std::string("procedure \xC4\xFF\0;", 14)}},
    };
    for (const auto& [what, lines, sorted] : cases) {
        TStringList list;
        Fill(list, lines);
        int index = -7;
        EXPECT_TRUE(SortDeclarations(list, index)) << what;
        EXPECT_EQ(LinesOf(list), sorted) << what;
        EXPECT_EQ(index, list.Count()) << what;
    }
}

TEST(SortDeclarations, RefusesWhatHasNoEnd) {
    const struct {
        const char* What;
        TLines Lines;
        int Index; // of the failing declaration, each one before it joined to one line
    } cases[] = {
        {"the line of the bracket has no semicolon", {"function F(A: T)", ": T;"}, 0},
        {"the first closing bracket decides", {"a;", "b((x)", "y);"}, 1},
        {"no semicolon", {"", "a", "", "b;", "", "c"}, 1},
        {"no closing bracket", {"a;", "b;", "c(x;", "d;"}, 2},
        {"an open brace", {"{ a;", "*)"}, 0},
        {"an open comment", {"a(", ");", "(* a;", "}"}, 1},
        {"the closing mark stands before", {"a }", "b;", "{ c"}, 1},
        {"a bracket in a comment", {"a; // (see b", "c;"}, 0},
    };
    for (const auto& [what, lines, expected] : cases) {
        TStringList list;
        TObject companion;
        Fill(list, lines);
        list.PutObject(0, &companion);
        int index = -7;
        EXPECT_FALSE(SortDeclarations(list, index)) << what;
        EXPECT_EQ(index, expected) << what;
        EXPECT_EQ(LinesOf(list), lines) << what;
        EXPECT_EQ(list.GetObject(0), &companion) << what;
    }
}

TEST(SortDeclarations, ManyEqualKeysKeepTheirOrder) {
    TLines lines;
    for (unsigned pattern = 0; pattern < 256; ++pattern) {
        std::string name = "equalkey";
        for (std::size_t i = 0; i < name.size(); ++i)
            if ((pattern * 37 >> i & 1U) != 0) name[i] = static_cast<char>(name[i] - 32);
        lines.push_back("procedure " + name + ";");
    }
    TStringList list;
    Fill(list, lines);
    int index = 0;
    EXPECT_TRUE(SortDeclarations(list, index));
    EXPECT_EQ(LinesOf(list), lines);
}

TEST(SortDeclarations, LeavesNoCompanions) {
    TStringList list{"b;", "a;"};
    TObject companion;
    list.PutObject(0, &companion);
    list.PutObject(1, &companion);
    int index = 0;
    EXPECT_TRUE(SortDeclarations(list, index));
    EXPECT_EQ(list.GetObject(0), nullptr);
    EXPECT_EQ(list.GetObject(1), nullptr);
}

// --- Whole units ---------------------------------------------------------------------------------

TLines Split(std::string_view text) {
    TStringList list;
    list.SetTextStr(text);
    return LinesOf(list);
}

/// Every kind of declaration of a Pascal interface, in no order.
const std::string PascalInterface = R"(
  { TShapeList keeps "shapes"; in order of ( insertion
    and frees them }
  PShape = ^TShape;
  TShapeKind = (skCircle, skSquare, skOther);
  TShapeKinds = set of TShapeKind;
  TNotify = procedure(Sender: TObject; const Name: string) of object;
  TMatrix = array[0..3, 0..3] of Double;

  (* the old name; kept for ) compatibility
     until version 2 *)
  TOldShape = TShape;
  {$IFDEF DEBUG}
  procedure Trace(const Text: string); overload;
  {$ENDIF}
  // procedure Removed(A: Integer;

  constructor Create(AOwner: TComponent); override;
  destructor Destroy; override;
  class function Instance: TShapeList;
  procedure LongCall(const First, Second: string;
    var Third: Integer;

    Fourth: array of const); stdcall;
	function WithTabs(A: Integer): Boolean; virtual; abstract;
  function Area: Double;
  function area(Kind: TShapeKind): Double; overload;
  property Items[Index: Integer]: TShape read GetItem write SetItem; default;
  property Caption: string
    read FCaption
    write SetCaption;
  procedure WMPaint(var Message: TMessage); message $000F;
  FFirst, FSecond: Integer;
  SMark = 'a { mark; *) in a literal';
  SOther = '// no comment';
  SLatin = ')" + std::string("\xC4\xD6\xDC \xE4\xF6\xFC") +
                                    R"(';
  SLong = ')" + std::string(20000, 'x') +
                                    R"(';
  procedure Last; external 'some.dll' name 'Last';
)";

const std::string HeaderFragment = R"(
// the shapes; in no order
#pragma package(smart_init); // directive
class DELPHICLASS TShape;
typedef void __fastcall (__closure *TNotify)(System::TObject* Sender);
enum TKind { kCircle,
  kSquare };
  __fastcall virtual TShape(Classes::TComponent* AOwner);
  inline __fastcall virtual ~TShape(void) { }; /* { kept */
	void __fastcall Paint(Graphics::TCanvas* Canvas,
		const Types::TRect &Rect,
		bool Selected);
  __property int Left = {read=FLeft, write=FLeft, default=0};
  static const char Mark[] = "// { (* ;";
  int __fastcall operator[](int Index);
  extern PACKAGE AnsiString __fastcall Name(void);
)";

std::string Printable(TLines lines) {
    for (std::string& line : lines)
        if (line.size() > 100) line.resize(100);
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

TEST(SortDeclarations, PascalInterface) {
    TStringList list;
    Fill(list, Split(PascalInterface));
    int index = 0;
    ASSERT_TRUE(SortDeclarations(list, index)) << "failed behind declaration " << index;
    EXPECT_EQ(Printable(LinesOf(list)), R"(  (* the old name; kept for ) compatibility
     until version 2 *)
  // procedure Removed(A: Integer;
  { TShapeList keeps "shapes"; in order of ( insertion
    and frees them }
  {$ENDIF}
  {$IFDEF DEBUG}
  function area(Kind: TShapeKind): Double; overload;
  function Area: Double;
  property Caption: string
    read FCaption
    write SetCaption;
  class function Instance: TShapeList;
  constructor Create(AOwner: TComponent); override;
  destructor Destroy; override;
  FFirst, FSecond: Integer;
  property Items[Index: Integer]: TShape read GetItem write SetItem; default;
  procedure Last; external 'some.dll' name 'Last';
  procedure LongCall(const First, Second: string;
    var Third: Integer;
    Fourth: array of const); stdcall;
  PShape = ^TShape;
  SLatin = ')" + std::string("\xC4\xD6\xDC \xE4\xF6\xFC") +
                                            R"(';
  SLong = ')" + std::string(89, 'x') + R"(
  SMark = 'a { mark; *) in a literal';
  SOther = '// no comment';
  TMatrix = array[0..3, 0..3] of Double;
  TNotify = procedure(Sender: TObject; const Name: string) of object;
  TOldShape = TShape;
  procedure Trace(const Text: string); overload;
  TShapeKind = (skCircle, skSquare, skOther);
  TShapeKinds = set of TShapeKind;
	function WithTabs(A: Integer): Boolean; virtual; abstract;
  procedure WMPaint(var Message: TMessage); message $000F;
)");
}

// --- Properties ----------------------------------------------------------------------------------

/// Declarations as the rules read them, by the plainest possible means: groups of the lines that
/// are not blank. Empty when one has no end.
std::vector<TLines> Declarations(const TLines& source) {
    TLines lines;
    int pos = 0;
    std::copy_if(source.begin(), source.end(), std::back_inserter(lines),
                 [&](const std::string& line) { return SkipBlanks(line, pos); });
    std::vector<TLines> groups;
    for (std::size_t i = 0; i < lines.size();) {
        static constexpr std::string_view keywords[] = {"constructor ", "destructor ", "function ",
                                                        "procedure ", "property "};
        // Only the front is trimmed: a keyword at the end of its line keeps its space.
        std::string_view name = Trim(lines[i]);
        name = std::string_view(lines[i]).substr(
            static_cast<std::size_t>(name.data() - lines[i].data()));
        for (const std::string_view keyword : keywords)
            if (CompText(name.substr(0, keyword.size()), keyword)) {
                name = Trim(name.substr(keyword.size()));
                break;
            }
        const bool parameters = lines[i].find('(') != std::string::npos;
        std::string mark = parameters ? ")" : ";";
        bool semicolon = parameters;
        if (name.substr(0, 1) == "{") mark = "}", semicolon = false;
        if (name.substr(0, 2) == "(*") mark = "*)", semicolon = false;
        if (name.substr(0, 2) == "//") mark = "", semicolon = false;
        TLines group;
        do {
            if (i == lines.size()) return {};
            group.push_back(lines[i]);
        } while (lines[i++].find(mark) == std::string::npos);
        if (semicolon && group.back().find(';') == std::string::npos) return {};
        groups.push_back(group);
    }
    return groups;
}

void ExpectSortKeepsEveryDeclaration(const TLines& lines) {
    TStringList list;
    Fill(list, lines);
    int index = 0;
    std::vector<TLines> before = Declarations(lines);
    if (!SortDeclarations(list, index)) {
        EXPECT_TRUE(before.empty());
        EXPECT_EQ(LinesOf(list), lines);
        return;
    }
    const TLines once = LinesOf(list);
    std::vector<TLines> after = Declarations(once);
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    ASSERT_EQ(after, before);
    ASSERT_TRUE(SortDeclarations(list, index));
    ASSERT_EQ(LinesOf(list), once) << "sorting again changed something";
}

TEST(SortDeclarations, UnitsKeepEveryDeclarationInAnyOrder) {
    std::mt19937 random(1);
    for (const std::string& text : {PascalInterface, HeaderFragment}) {
        std::vector<TLines> groups = Declarations(Split(text));
        ASSERT_GT(groups.size(), 10U);
        for (int round = 0; round < 50; ++round) {
            TLines lines;
            for (const TLines& group : groups)
                lines.insert(lines.end(), group.begin(), group.end());
            ExpectSortKeepsEveryDeclaration(lines);
            std::shuffle(groups.begin(), groups.end(), random);
        }
    }
}

TEST(SortDeclarations, RandomTextsKeepEveryDeclaration) {
    static constexpr std::string_view pieces[] = {
        "procedure", "function ", "property\t", "A", "b",  "(",  ")",  ";",   ");",  "{",    "}",
        "(*",        "*)",        "//",         " ", "\t", "\n", "\n", ";\n", ";\n", "\xE4", "'"};
    std::mt19937 random(2);
    int sorted = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = random() % 40; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        const TLines lines = Split(text);
        if (Declarations(lines).size() > 1) ++sorted;
        ASSERT_NO_FATAL_FAILURE(ExpectSortKeepsEveryDeclaration(lines)) << text;
    }
    EXPECT_GT(sorted, 2000); // the pieces must make texts that can be sorted
}

} // namespace
} // namespace tarn
