#include "ScriptSource.h"
#include "app_fixture.h"

#include <random>

namespace tarn {
namespace {

using Words = std::vector<std::string>;

TEST(SplitWords, SplitsAtBlanks) {
    const std::pair<std::string_view, Words> cases[] = {
        {"", {}},
        {" \t ", {}},
        {"# a comment", {}},
        {"print text", {"print", "text"}},
        {"\tprint  text\r", {"print", "text"}},
        {"print # text", {"print"}},
        {"press Ctrl+# C#", {"press", "Ctrl+#", "C#"}}, // only at the start of a word
        {R"(say "two words" "" "#")", {"say", "two words", "", "#"}},
        {R"("a\n\r\t\\\"\x41\xfF\x00")", {std::string("a\n\r\t\\\"A\xFF\0", 9)}},
        {R"(a\n)", {R"(a\n)"}}, // escapes in quotes only
        {"\xC3\xA4 \"\xE4\"", {"\xC3\xA4", "\xE4"}},
    };
    for (const auto& [line, expected] : cases) EXPECT_EQ(SplitWords(line), expected) << line;
}

TEST(SplitWords, RefusesWhatIsMalformed) {
    const std::string escape = R"(2 unknown escape; there are \n \r \t \\ \" and \xHH)";
    const std::pair<std::string_view, std::string> cases[] = {
        {R"(say "open)", "2 missing \" at the end of a quoted word"},
        {R"(say "open\")", "2 missing \" at the end of a quoted word"},
        {R"(say ")", "2 missing \" at the end of a quoted word"},
        {R"(say "\q")", escape},
        {R"(say "\N")", escape},
        {R"(say "a\)", escape},
        {R"(say "\x4)", escape},
        {R"(say "\x4")", "2 \\x needs two hexadecimal digits"},
        {R"(say "\xG0")", "2 \\x needs two hexadecimal digits"},
        {R"(say a"b c")", R"(2 words need a blank between them, at a"b c")"},
        {R"(say "a"b)", R"(2 words need a blank between them, at "a"b)"},
        {R"(say "a""b")", R"(2 words need a blank between them, at "a""b")"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ErrorOf([&] { SplitWords(c.first); }), c.second) << c.first;
}

TEST(Escaped, ShowsEveryByteOnOneLine) {
    const std::pair<std::string, std::string_view> cases[] = {
        {"", ""},
        {"a b~", "a b~"},
        {"\r\n\t\\\"", R"(\r\n\t\\\")"},
        {std::string("\0\x1F\x7F", 3), R"(\x00\x1F\x7F)"},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8C\xB3", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8C\xB3"},
        {"\xE4\xC3", R"(\xE4\xC3)"},                         // Latin-1, and a character cut off
        {"\xC0\xAF", R"(\xC0\xAF)"},                         // longer than needed
        {"\xED\xA0\x80", R"(\xED\xA0\x80)"},                 // a surrogate
        {"\xF4\x90\x80\x80\xFF", R"(\xF4\x90\x80\x80\xFF)"}, // above the last code
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(Escaped(text), expected);
}

TEST(Escaped, ComesBackAsAQuotedWord) {
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same texts in every run
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 20, '\0');
        for (char& c : text) c = static_cast<char>(random());
        const std::string escaped = Escaped(text);
        EXPECT_EQ(escaped.find_first_of("\r\n"), std::string::npos);
        EXPECT_EQ(SplitWords("\"" + escaped + "\""), Words{text});
    }
}

/// Statements as "LINE verb(arg,arg)[block/line]".
std::string Shown(const std::vector<TStatement>& statements) {
    std::string text;
    const auto join = [](const Words& words, char between) {
        std::string joined;
        for (std::size_t i = 0; i < words.size(); ++i)
            joined += (i > 0 ? std::string(1, between) : "") + words[i];
        return joined;
    };
    for (const TStatement& statement : statements) {
        text += (text.empty() ? "" : " ") + std::to_string(statement.Line) + " " + statement.Verb +
                "(" + join(statement.Args, ',') + ")";
        if (statement.HasBlock) text += "[" + join(statement.Block, '/') + "]";
    }
    return text;
}

TEST(ParseScript, ReadsStatementsWithTheirBlocks) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},
        {"start", "1 start()"},
        {"# a\n\nopen a.pas\r\n stop\rpump", "3 open(a.pas) 4 stop() 5 pump()"},
        {"expect text\n| a\n|\n|  b \n  |c\n|| d", "1 expect(text)[a// b /c/| d]"},
        {"expect text\n|\nstop", "1 expect(text)[] 3 stop()"},
        {"file a\n| \"x\" # y", "1 file(a)[\"x\" # y]"}, // a block is no statement
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(Shown(ParseScript(text)), expected);
}

TEST(ParseScript, NamesTheLineOfAFault) {
    EXPECT_EQ(ErrorOf([] { ParseScript("# a\n| b"); }),
              "2 2: a block line needs a statement above it");
    EXPECT_EQ(ErrorOf([] { ParseScript("start\r\n\r\nsay \"a"); }),
              "2 3: missing \" at the end of a quoted word");
}

} // namespace
} // namespace tarn
