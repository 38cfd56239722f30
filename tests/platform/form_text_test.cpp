#include "rtl/TMemoryStream.h"
#include "streaming/FormFloat.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextPrinter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace tarn;

namespace {

// --- Events -----------------------------------------------------------------------------------

constexpr std::array<std::string_view, vaDouble + 1> TypeNames = {
    "null",     "list", "int8",   "int16", "int32", "extended", "string", "ident",
    "false",    "true", "binary", "set",   "lstr",  "nil",      "coll",   "single",
    "currency", "date", "wide",   "int64", "utf8",  "double"};

std::string Hex(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(c);
        (result += digits[code >> 4]) += digits[code & 15];
    }
    return result;
}

bool IsReadable(std::string_view text) {
    return text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 "
                                  "'+_.") == std::string_view::npos;
}

/// Writes down what it is told: "int8 5", "string:abc" or "string=61620D" for other characters.
struct TEvents : IFormSink {
    std::string Log;
    const IFormSource* Source = nullptr; ///< when set, properties tell their offset
    std::string_view SourceText;

    void Add(std::string_view text) { (Log += Log.empty() ? "" : " ") += text; }
    void BeginObject(const TFormHeader& header) override {
        std::string text = header.Flags.Contains(ffInherited) ? "inherited "
                           : header.Flags.Contains(ffInline)  ? "inline "
                                                              : "object ";
        (text += header.ObjectName) += ":";
        text += header.ClassName;
        if (header.Flags.Contains(ffChildPos)) text += "@" + std::to_string(header.ChildPos);
        Add(text);
    }
    void BeginChildren() override { Add("|"); }
    void EndObject() override { Add("end"); }
    void Property(std::string_view name) override {
        Add(std::string(name) + "=");
        if (Source) Add(At());
    }
    void Integer(TValueType type, std::int64_t value) override {
        Value(type, " " + std::to_string(value));
    }
    void Float(TValueType type, long double value) override {
        std::string text = " ";
        AppendFormFloat(text, vaExtended, value, false);
        Value(type, text);
    }
    void String(TValueType type, std::string_view text) override {
        Value(type, IsReadable(text) ? ":" + std::string(text) : "=" + Hex(text));
    }
    void Ident(TValueType type, std::string_view name) override {
        Value(type, ":" + std::string(name));
    }
    void Binary(std::string_view bytes) override { Value(vaBinary, "=" + Hex(bytes)); }
    void BeginSet() override { Add("["); }
    void SetElement(std::string_view name) override { Add(name); }
    void EndSet() override { Add("]"); }
    void BeginList() override { Add("("); }
    void EndList() override { Add(")"); }
    void BeginCollection() override { Add("<"); }
    void BeginItem(std::optional<std::int64_t> order) override {
        Add(order ? "item@" + std::to_string(*order) : "item");
    }
    void EndItem() override { Add("end"); }
    void EndCollection() override { Add(">"); }

private:
    void Value(TValueType type, const std::string& text) {
        Add(std::string(TypeNames[type]) + text);
        if (Source) Add(At());
    }
    /// The three characters at the source's offset.
    std::string At() const {
        return "<" + std::string(SourceText.substr(static_cast<std::size_t>(Source->Offset()), 3)) +
               ">";
    }
};

std::string EventsOf(std::string_view text, TFormLayout layout = {}) {
    TEvents events;
    ParseFormText(text, events, &layout);
    return events.Log;
}

TFormLayout LayoutOf(std::string_view text) {
    TEvents events;
    TFormLayout layout;
    ParseFormText(text, events, &layout);
    return layout;
}

/// The text, read and written again in its own layout.
std::string Reprinted(std::string_view text) {
    std::string result;
    TFormTextPrinter printer(result, LayoutOf(text));
    ParseFormText(text, printer);
    return result;
}

std::string MessageOf(std::string_view text) {
    try {
        EventsOf(text);
    } catch (const EParserError& error) {
        return std::string(error.Message());
    }
    return "no error";
}

std::string FormOf(std::string_view value) {
    return "object F: T\r\n  P = " + std::string(value) + "\r\nend\r\n";
}

std::string ValueEvents(std::string_view value) {
    const std::string events = EventsOf(FormOf(value));
    constexpr std::string_view before = "object F:T P= ";
    constexpr std::string_view behind = " | end";
    return events.substr(before.size(), events.size() - before.size() - behind.size());
}

std::string Repeat(std::string_view text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

constexpr std::string_view Mark = "\xEF\xBB\xBF";

// --- Values -----------------------------------------------------------------------------------

TEST(FormText, ReadsValuesAndWritesThemAgain) {
    struct TRow {
        std::string_view Value;
        std::string_view Events;
        std::string_view Written = {}; ///< empty: as it was
    };
    constexpr TRow rows[] = {
        {"127", "int8 127"},
        {"-128", "int8 -128"},
        {"128", "int16 128"},
        {"-32769", "int32 -32769"},
        {"2147483648", "int64 2147483648"},
        {"-9223372036854775808", "int64 -9223372036854775808"},
        {"+5", "int8 5", "5"},
        {"$fF", "int16 255", "255"},
        {"$FFFFFFFF", "int64 4294967295", "4294967295"},
        {"$FFFFFFFFFFFFFFFF", "int8 -1", "-1"},
        {"-$10", "int8 -16", "-16"},
        // Numbers with a point, an exponent or a suffix are floats.
        {"1.5", "extended 1.5"},
        {"36230.685934838", "extended 36230.685934838"},
        {"2.000000000000000000", "extended 2.0"},
        {"1e3", "extended 1000.0", "1000.0"},
        {"-1.25E-7", "extended -1.25E-7"},
        {"3.", "extended 3.0", "3.0"},
        {"-0.0", "extended -0.0"},
        {"5s", "single 5.0"},
        {"1.5S", "single 1.5", "1.5s"},
        {"36854d", "date 36854.0"},
        {"-12500c", "currency -12500"},
        {"9223372036854775807c", "currency 9223372036854775807"},
        {"12.5e3c", "currency 12500", "12500c"},
        {"+INF", "extended +INF"},
        {"-infs", "single -INF", "-INFs"},
        {"+NANd", "date +NAN"},
        // Words.
        {"TRUE", "true:True", "True"},
        {"false", "false:False", "False"},
        {"NIL", "nil:nil", "nil"},
        {"null", "null:Null", "Null"},
        {"Module1.Table_2", "ident:Module1.Table_2"},
        {"INF", "ident:INF"},
        {"end", "ident:end"},
        // Strings.
        {"''", "string:"},
        {"'a b'", "string:a b"},
        {"'it''s'", "string:it's"},
        {"'it'#39's'", "string:it's"},
        {"#39", "string:'"},
        {"''''", "string:'"},
        {"#13#10#9'x'#0", "string=0D0A097800"},
        {"#$41#$e9", "string=41E9", "'A'#233"},
        {"'a'#13 + #10'b'", "string=610D0A62", "'a'#13#10'b'"},
        {"#255#256", "wide=FF000001"},
        {"'a'#1078#233", "wide=61003604E900"},
        {"#128512", "wide=3DD800DE", "#55357#56832"},
        {"#55357", "wide=3DD8"},
        // Sets, lists, collections, blocks.
        {"[]", "[ ]"},
        {"[a]", "[ a ]"},
        {"[ a ,\r\n b.c]", "[ a b.c ]", "[a, b.c]"},
        {"()", "( )"},
        {"(\r\n    'a'\r\n    -5\r\n    True\r\n    [a, b]\r\n    1.5\r\n    {0A}\r\n    nil)",
         "( string:a int8 -5 true:True [ a b ] extended 1.5 binary=0A nil:nil )"},
        {"(1 'a' 'b'#10 (2)()<>)", "( int8 1 string:a string=620A ( int8 2 ) ( ) < > )",
         "(\r\n    1\r\n    'a'\r\n    'b'#10\r\n    (\r\n      2)\r\n    ()\r\n    <>)"},
        {"<>", "< >"},
        {"<\r\n    item\r\n    end\r\n    item [-3]\r\n      Item = 1\r\n      End = (\r\n"
         "        <\r\n          item\r\n            A = 2\r\n          end>)\r\n    end>",
         "< item end item@-3 Item= int8 1 End= ( < item A= int8 2 end > ) end >"},
        {"< ITEM[5] a=1 END >", "< item@5 a= int8 1 end >",
         "<\r\n    item [5]\r\n      a = 1\r\n    end>"},
        {"{}", "binary="},
        {"{0aFf}", "binary=0AFF", "{0AFF}"},
        {"{\r\n 0102030405060708090A\r\n0B }", "binary=0102030405060708090A0B",
         "{0102030405060708090A0B}"},
    };
    for (const TRow& row : rows) {
        EXPECT_EQ(ValueEvents(row.Value), row.Events) << row.Value;
        const std::string_view written = row.Written.empty() ? row.Value : row.Written;
        EXPECT_EQ(Reprinted(FormOf(row.Value)), FormOf(written)) << row.Value;
        EXPECT_EQ(ValueEvents(written), row.Events) << row.Value;
    }
}

TEST(FormText, BlocksOfARowAndMoreHaveRowsOfTheirOwn) {
    const std::string row = Repeat("5A", 32);
    for (const std::string& value :
         {"{" + row.substr(2) + "}", "{\r\n    " + row + "}", "{\r\n    " + row + "\r\n    A5}",
          "{" + Repeat("\r\n    " + row, 700) + "}"}) {
        EXPECT_EQ(Reprinted(FormOf(value)), FormOf(value));
    }
    // Digits of any case at any place of a row, and what is none.
    const std::string digits = "0123456789abcdefABCDEF";
    for (std::size_t i = 0; i < 16; ++i) {
        for (int c = 1; c < 256; ++c) {
            std::string block = "0011223344556677";
            block[i] = static_cast<char>(c);
            const bool isDigit = digits.find(block[i]) != std::string::npos;
            const bool isOther = c <= ' ' || c == '}'; // splits the digits
            const std::string message = MessageOf(FormOf("{" + block + "}"));
            if (!isOther)
                EXPECT_EQ(message == "no error", isDigit) << block;
            else
                EXPECT_NE(message, c <= ' ' && i % 2 == 0 ? "no error" : "") << block;
        }
    }
}

TEST(FormText, ReadsObjects) {
    struct TRow {
        std::string_view Text;
        std::string_view Events;
        std::string_view Written;
    };
    constexpr TRow rows[] = {
        {"object F: T\nend\n", "object F:T | end", "object F: T\nend\n"},
        {"OBJECT\tF:T\n\n\nEND", "object F:T | end", "object F: T\nend"},
        {"object T\n  A = 1\nend\n", "object :T A= int8 1 | end", "object T\n  A = 1\nend\n"},
        {"inherited F: T [5]\nend\n", "inherited F:T@5 | end", "inherited F: T [5]\nend\n"},
        {"inline T [-1]\nend\n", "inline :T@-1 | end", "inline T [-1]\nend\n"},
        {"object A.B: U.T\nend\n", "object A.B:U.T | end", "object A.B: U.T\nend\n"},
        {"object object: end\nend\n", "object object:end | end", "object object: end\nend\n"},
        // Keywords are names in front of "=".
        {"object F: T\n  End=1 Object = 2 inline\n=3 Inherited.X = 4 item = 5\n  object end\n  "
         "end\nend",
         "object F:T End= int8 1 Object= int8 2 inline= int8 3 Inherited.X= int8 4 item= int8 5 | "
         "object :end | end end",
         "object F: T\n  End = 1\n  Object = 2\n  inline = 3\n  Inherited.X = 4\n  item = 5\n"
         "  object end\n  end\nend"},
        {"object F: T A=b C=d object G: T E='f' end inline H: T end end\x1A",
         "object F:T A= ident:b C= ident:d | object G:T E= string:f | end inline H:T | end end",
         "object F: T\r\n  A = b\r\n  C = d\r\n  object G: T\r\n    E = 'f'\r\n  end\r\n"
         "  inline H: T\r\n  end\r\nend"},
    };
    for (const TRow& row : rows) {
        EXPECT_EQ(EventsOf(row.Text), row.Events) << row.Text;
        EXPECT_EQ(Reprinted(row.Text), row.Written);
        EXPECT_EQ(Reprinted(row.Written), row.Written);
    }
}

TEST(FormText, ReadsObjectsOneAfterAnother) {
    constexpr std::string_view text =
        "object A: T\r\nend  \r\n\r\nobject B: T\r\nend object C: T end";
    TFormTextParser parser(text);
    std::string offsets;
    TEvents events;
    while (!parser.AtEnd()) {
        parser.Parse(events);
        offsets += std::to_string(parser.Offset()) + " ";
    }
    EXPECT_EQ(events.Log, "object A:T | end object B:T | end object C:T | end");
    EXPECT_EQ(offsets, "20 38 54 ");
    EXPECT_EQ(MessageOf(text), "line 4, column 1: end of the form expected: object B: T");
}

TEST(FormText, TellsWhereValuesStand) {
    constexpr std::string_view text = "object F: T\n  A =   'ab'  B = \n'ab' +\n#13 ;";
    TFormTextParser parser(text);
    TEvents events;
    events.Source = &parser;
    events.SourceText = text;
    EXPECT_THROW(parser.Parse(events), EParserError);
    EXPECT_EQ(events.Log, "object F:T A= <'ab> string:ab <  B> B= <'ab> string=61620D < ;> |");
}

// --- Strings ----------------------------------------------------------------------------------

TEST(FormText, LongStringsHaveRowsOf64Characters) {
    struct TRow {
        std::string Text;
        std::string Written;
    };
    const std::string a63 = Repeat("a", 63);
    const std::string below = "\r\n      ";
    const TRow rows[] = {
        {a63 + "b", "'" + a63 + "b'"},
        {a63 + "bc", below + "'" + a63 + "b' +" + below + "'c'"},
        {a63 + "b" + a63 + "c", below + "'" + a63 + "b' +" + below + "'" + a63 + "c'"},
        {a63 + "\r\n", below + "'" + a63 + "'#13 +" + below + "#10"},
        {a63 + "'" + "b", below + "'" + a63 + "'#39 +" + below + "'b'"},
        {Repeat("\t", 65), below + Repeat("#9", 64) + " +" + below + "#9"},
    };
    for (const TRow& row : rows) {
        std::string printed;
        TFormTextPrinter printer(printed, {}, 2);
        printer.String(vaString, row.Text);
        EXPECT_EQ(printed, row.Written);
        TEvents events;
        events.String(vaString, row.Text);
        EXPECT_EQ(ValueEvents(printed), events.Log);
    }
    // In a list the row that the list gives it stays blank.
    const std::string list = "(\r\n    \r\n      '" + a63 + "b' +\r\n      'c'\r\n    '')";
    EXPECT_EQ(Reprinted(FormOf(list)), FormOf(list));
}

TEST(FormText, WideRowsKeepSurrogatesTogether) {
    std::u16string text(63, u'a');
    text += u"\xD83D\xDE00zz";
    std::string bytes;
    for (const char16_t c : text)
        (bytes += static_cast<char>(c & 255)) += static_cast<char>(c >> 8);
    std::string printed;
    TFormTextPrinter(printed).String(vaWString, bytes);
    EXPECT_EQ(printed, "\r\n  '" + Repeat("a", 63) + "' +\r\n  #55357#56832'zz'");
    EXPECT_EQ(ValueEvents(printed), "wide=" + Hex(bytes));
}

TEST(FormText, WritesEveryKindOfStringByTheLayout) {
    const TFormLayout raw;
    const TFormLayout escaped{.EscapeHighBytes = true};
    const TFormLayout marked{.Utf8Mark = true};
    const TFormLayout both{.Utf8Mark = true, .EscapeHighBytes = true};
    struct TRow {
        TValueType Type;
        std::string_view Text;
        const TFormLayout& Layout;
        std::string_view Written;
    };
    using namespace std::string_view_literals;
    const TRow rows[] = {
        {vaString, "\xE9\x7F", raw, "'\xE9\x7F'"},
        {vaLString, "\xE9", escaped, "#233"},
        {vaString, "\xE9", marked, "#233"},
        {vaUTF8String, "a\u00E9", raw, "'a'#233"},
        {vaUTF8String, "a\u00E9\U0001F600", marked, "'a\u00E9\U0001F600'"},
        {vaUTF8String, "\u00E9", both, "#233"},
        {vaUTF8String, "a", raw, "'a'"},
        {vaUTF8String, "\xFF", raw, "#65533"},
        {vaWString, "\x16\x04"sv, raw, "#1046"},
        {vaWString, "\x16\x04'\0"sv, marked, "'\u0416'#39"},
        {vaWString, "\x00\xDE\x3D\xD8\x00\xDE\x00\xDE"sv, marked, "#56832'\U0001F600'#56832"},
        {vaWString, "", raw, "''"},
    };
    for (const TRow& row : rows) {
        std::string printed;
        TFormTextPrinter(printed, row.Layout).String(row.Type, row.Text);
        EXPECT_EQ(printed, row.Written);
    }
}

TEST(FormText, TheTypesThatNoTextTellsAreTheCallers) {
    const TFormLayout layout{.PlainFloat = vaDouble, .WideText = vaUTF8String};
    const std::string form = FormOf("(0.1 2s #1046#233 'a')");
    EXPECT_EQ(
        EventsOf(form, layout),
        "object F:T P= ( double 0.10000000000000000555 single 2.0 utf8=D096C3A9 string:a ) | end");
    EXPECT_EQ(ValueEvents("'" + Repeat("x", 255) + "'").substr(0, 8), "string:x");
    EXPECT_EQ(ValueEvents("'" + Repeat("x", 256) + "'").substr(0, 8), "lstr:xxx");
    EXPECT_EQ(ValueEvents("''+'" + Repeat("x", 256) + "'").substr(0, 8), "lstr:xxx");
}

// --- Layouts ----------------------------------------------------------------------------------

TEST(FormText, RecognisesTheLayout) {
    struct TRow {
        std::string Text;
        std::string_view Layout;
        bool IsKept = true; ///< the text comes back
    };
    const auto form = [](std::string_view value) { return FormOf(value); };
    const std::string marked = std::string(Mark);
    const TRow rows[] = {
        {"object F: T end", "CRLF open", false},
        {"object F: T\nend\n", "LF"},
        {"object F: T\nend", "LF open"},
        {"object F: T\nend \n\x1A", "LF", false},
        {"object F: T\r\n  A = 1\r\nend\x1A", "CRLF open", false},
        {"object F: T\rend\r", "CR"},
        {"object F: T\nend\r\n", "LF", false},
        {marked + form("'a'"), "CRLF mark"},
        {form("'\xE9'"), "CRLF"},
        {form("#233"), "CRLF escape"},
        {form("(\r\n    #233\r\n    '\xE9')"), "CRLF", false},
        {form("(\r\n    '\xE9'\r\n    #233)"), "CRLF", false},
        {form("#1046#233"), "CRLF"}, // tells nothing of bytes
        {form("'\xE9'#1046"), "CRLF", false},
        {marked + form("'\u00E9'"), "CRLF mark"},
        {marked + form("#233"), "CRLF mark escape"},
        {marked + form("'\u00E9'#55357"), "CRLF mark"},
        {form("'a''b'#13"), "CRLF doubled"},
        {form("(\r\n    #39\r\n    'a''b')"), "CRLF", false},
        {form("1.5"), "CRLF"},
        {form("1.500000000000000000"), "CRLF fixed"},
        {form("-1.500000000000000000s"), "CRLF fixed"},
        {form("12500.000000000000000000c"), "CRLF fixed"},
        {form("1E20"), "CRLF"},
        {form("0.000123456789012345"), "CRLF"}, // both write it so
        {form("(\r\n    0.000123456789012345\r\n    1.000000000000000000)"), "CRLF fixed"},
        {form("(\r\n    1.50\r\n    2.000000000000000000)"), "CRLF fixed", false},
        {form("(\r\n    1.5\r\n    2.000000000000000000)"), "CRLF", false},
    };
    for (const TRow& row : rows) {
        const TFormLayout layout = LayoutOf(row.Text);
        std::string found = layout.LineBreak == "\r\n" ? "CRLF"
                            : layout.LineBreak == "\n" ? "LF"
                                                       : "CR";
        if (layout.Utf8Mark) found += " mark";
        if (layout.EscapeHighBytes) found += " escape";
        if (layout.DoubledQuotes) found += " doubled";
        if (layout.FixedFloats) found += " fixed";
        if (!layout.FinalBreak) found += " open";
        EXPECT_EQ(found, row.Layout) << row.Text;
        const std::string printed = Reprinted(row.Text);
        EXPECT_EQ(printed == row.Text, row.IsKept) << row.Text << printed;
        EXPECT_EQ(Reprinted(printed), printed) << row.Text;
    }
}

TEST(FormText, TheMarkOfUtf8MakesQuotesHoldCharacters) {
    const auto events = [](std::string_view value) {
        return EventsOf(std::string(Mark) + FormOf(value));
    };
    EXPECT_EQ(events("'a\u00E9'"), "object F:T P= wide=6100E900 | end");
    EXPECT_EQ(events("#233"), "object F:T P= wide=E900 | end");
    EXPECT_EQ(events("'\U0001F600'"), "object F:T P= wide=3DD800DE | end");
    EXPECT_EQ(events("'a'#127"), "object F:T P= string=617F | end");
    EXPECT_EQ(EventsOf(std::string(Mark) + "object \u00C4: T\nend"), "object \u00C4:T | end");
}

// --- A whole form -----------------------------------------------------------------------------

constexpr std::string_view WholeForm = R"(inherited OrderForm: TOrderForm
  Left = 192
  Top = -7
  Caption = 'Orders of '#39'today'#39
  Font.Charset = DEFAULT_CHARSET
  Font.Style = [fsBold, fsItalic]
  Position = poScreenCenter
  OnShow = FormShow
  object Grid: TGrid [0]
    Hint = 
      'One row for each order; a click on its top sorts by the column'#13#10 +
      'and a second one the other way round.'
    Columns = <
      item
        Expanded = False
        Width = 64
        Buttons = <>
        Title.Caption = 'No.'
      end
      item [7]
        PickList.Strings = (
          'open'
          ''
          
            'a state that nobody has thought of when this list of states was ' +
            'made, but found '#233'tabli')
        Visible = nil
      end>
    Since = 38114.956064340280000000
    Limits = (
      0
      2147483647.000000000000000000
      10000.000000000000000000c)
    object TPage
    end
    inline Frame: TFrame
      Glyph.Data = {
        000102030405060708090A0B0C0D0E0F000102030405060708090A0B0C0D0E0F
        000102030405060708090A0B0C0D0E0F}
      Empty.Data = {}
      inherited Button: TButton
        TabOrder = 3
      end
    end
  end
end
)";

TEST(FormText, AWholeFormComesBack) {
    EXPECT_EQ(Reprinted(WholeForm), WholeForm);
    std::string crlf;
    for (const char c : WholeForm) (crlf += c == '\n' ? "\r" : "") += c;
    EXPECT_EQ(Reprinted(crlf), crlf);
}

TEST(FormText, WritesToAStreamWhatItWritesToAString) {
    const std::string text = FormOf("(\r\n    {" + Repeat("\r\n      " + Repeat("AB", 32), 3000) +
                                    "}" + Repeat("\r\n    'line'", 20000) + ")");
    TStringStream stream;
    TFormTextPrinter printer(stream);
    ParseFormText(text, printer);
    EXPECT_EQ(stream.DataString(), text);
}

// --- Limits and errors ------------------------------------------------------------------------

TEST(FormText, NestingHasALimit) {
    const auto objects = [](int n) { return Repeat("object T ", n) + Repeat(" end", n); };
    const auto lists = [](int n) {
        return "object T A=" + Repeat("(", n) + Repeat(")", n) + "end";
    };
    const auto items = [](int n) {
        return "object T " + Repeat("A=<item ", n) + Repeat(" end>", n) + " end";
    };
    EXPECT_EQ(MessageOf(objects(MaxFormDepth)), "no error");
    EXPECT_EQ(MessageOf(lists(MaxFormDepth - 1)), "no error");
    EXPECT_EQ(MessageOf(items(MaxFormDepth - 1)), "no error");
    EXPECT_EQ(Reprinted(Reprinted(items(MaxFormDepth - 1))), Reprinted(items(MaxFormDepth - 1)));
    EXPECT_EQ(MessageOf("object F: T" + Repeat(" object T ", MaxFormDepth)),
              "line 1, column 5123: ..." + Repeat(".T", 80) +
                  ": nested deeper than 512: object T ");
    EXPECT_NE(MessageOf(lists(MaxFormDepth)).find("nested deeper than 512: ("), std::string::npos);
    EXPECT_NE(MessageOf(items(MaxFormDepth)).find("nested deeper than 512: <"), std::string::npos);
}

TEST(FormText, ErrorsTellPlacePathAndText) {
    struct TRow {
        std::string Text;
        std::string_view Message;
    };
    const auto form = [](std::string_view value) { return FormOf(value); };
    const TRow rows[] = {
        {"", "line 1, column 1: \"object\" expected: end of text"},
        {" \n\r\n \r MZ\x90", "line 4, column 2: \"object\" expected: MZ#144"},
        {std::string(Mark) + "objects F: T", "line 1, column 1: \"object\" expected: objects F: T"},
        {"object = 5", "line 1, column 1: \"object\" expected: object = 5"},
        {"object 5", "line 1, column 8: name of an object or class expected: 5"},
        {"object F:\nend", "line 2, column 4: F: object or \"end\" expected: end of text"},
        {"object F: 'T'", "line 1, column 11: name of a class expected: 'T'"},
        {"object F: T [x]", "line 1, column 14: position expected: x]"},
        {"object F: T [2147483648]", "line 1, column 14: position expected: 2147483648]"},
        {"object F: T [1}", "line 1, column 15: \"]\" expected: }"},
        {"object F: T", "line 1, column 12: F: object or \"end\" expected: end of text"},
        {"object F: T 5", "line 1, column 13: F: object or \"end\" expected: 5"},
        {"object F: T\n object G: T A = 1 end B = 2 end",
         "line 2, column 24: F: object or \"end\" expected: B = 2 end"},
        {"object F: T\n object T\n  A.B 1", "line 3, column 7: F.T.A.B: \"=\" expected: 1"},
        {"object F: T A. = 1", "line 1, column 13: F: name of a property expected: A. = 1"},
        {"object F: T end end", "line 1, column 17: end of the form expected: end"},
        {"object F: T " + Repeat("n", 256) + " = 1",
         "line 1, column 13: F: name of more than 255 characters: "
         "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn..."},
        {form(""), "line 4, column 1: F: object or \"end\" expected: end of text"},
        {form("\r\n  Q = 5"), "line 3, column 5: F: object or \"end\" expected: = 5"},
        {form("!"), "line 2, column 7: F.P: value expected: !"},
        {form("-"), "line 2, column 7: F.P: number expected: -"},
        {form("-x"), "line 2, column 7: F.P: number expected: -x"},
        {form("12abc"), "line 2, column 7: F.P: number expected: 12abc"},
        {form("1.2.3"), "line 2, column 7: F.P: number expected: 1.2.3"},
        {form("1E"), "line 2, column 7: F.P: number expected: 1E"},
        {form("+INFINITE"), "line 2, column 7: F.P: number expected: +INFINITE"},
        {form("$"), "line 2, column 7: F.P: hexadecimal number expected: $"},
        {form("$1G"), "line 2, column 7: F.P: hexadecimal number expected: $1G"},
        {form("$10000000000000000"),
         "line 2, column 7: F.P: integer of more than 64 bits: $10000000000000000"},
        {form("9223372036854775808"),
         "line 2, column 7: F.P: integer of more than 64 bits: 9223372036854775808"},
        {form("1E9999"), "line 2, column 7: F.P: number out of range: 1E9999"},
        {form("1E39s"), "line 2, column 7: F.P: number out of range: 1E39s"},
        {form("9223372036854775808c"),
         "line 2, column 7: F.P: currency out of range: 9223372036854775808c"},
        {form("+NANc"), "line 2, column 7: F.P: currency out of range: +NANc"},
        {form("'abc"), "line 2, column 7: F.P: string not closed: 'abc"},
        {form("'\t\x07\xC3\xA9\xC3"),
         "line 2, column 7: F.P: string not closed: '#9#7#195#169#195"},
        {form("'a' +\r\n  'b"), "line 3, column 3: F.P: string not closed: 'b"},
        {form("'a' + 5"), "line 2, column 13: F.P: string expected: 5"},
        {form("'a'#"), "line 2, column 10: F.P: code of a character expected: #"},
        {form("#1114112"), "line 2, column 7: F.P: no code of a character: #1114112"},
        {form("'a' 'b'"), "line 2, column 11: F: object or \"end\" expected: 'b'"},
        {std::string(Mark) + form("'a\xE9'"), "line 2, column 8: F.P: string is not UTF-8: a#233'"},
        {form("[a b]"), "line 2, column 10: F.P: \",\" or \"]\" expected: b]"},
        {form("[a,]"), "line 2, column 10: F.P: element of a set expected: ]"},
        {form("(1 2 )?)"), "line 2, column 13: F: object or \"end\" expected: ?)"},
        {form("(1 (2 ?))"), "line 2, column 13: F.P[1][1]: value expected: ?))"},
        {"object F: T P = (1", "line 1, column 19: F.P[1]: \")\" expected: end of text"},
        {form("<item A = 1 end item B = ?"), "line 2, column 32: F.P[1].B: value expected: ?"},
        {form("<item 5 end>"), "line 2, column 13: F.P[0]: property or \"end\" expected: 5 end>"},
        {form("<object A end>"),
         "line 2, column 8: F.P[0]: \"item\" or \">\" expected: object A end>"},
        {form("{0102"), "line 2, column 7: F.P: binary block not closed: {0102"},
        {form("{010}"), "line 2, column 10: F.P: two hexadecimal digits expected: 0}"},
        {form("{01 0 1}"), "line 2, column 11: F.P: two hexadecimal digits expected: 0 1}"},
        {form("{0011223344556677x}"),
         "line 2, column 24: F.P: two hexadecimal digits expected: x}"},
    };
    for (const TRow& row : rows) EXPECT_EQ(MessageOf(row.Text), row.Message) << row.Text;

    try {
        EventsOf(FormOf("\r\n?"));
        FAIL();
    } catch (const EParserError& error) {
        EXPECT_EQ(error.Offset(), 21);
        EXPECT_EQ(error.Line(), 3);
        EXPECT_EQ(error.Column(), 1);
    }
}

TEST(FormText, NamesThatATextCannotHoldAreErrors) {
    std::string text;
    TFormTextPrinter printer(text);
    for (const std::string& name : {std::string(), std::string("a b"), std::string("5"),
                                    std::string("a."), std::string("a\nb"), Repeat("n", 256)}) {
        EXPECT_THROW(printer.Property(name), EWriteError) << name;
        EXPECT_THROW(printer.SetElement(name), EWriteError) << name;
        EXPECT_THROW(printer.Ident(vaIdent, name), EWriteError) << name;
        EXPECT_THROW(printer.BeginObject({{}, 0, name, "N"}), EWriteError) << name;
    }
    try {
        printer.Property("a\tb");
    } catch (const EWriteError& error) {
        EXPECT_EQ(error.Message(), "a text cannot hold the name \"a#9b\"");
    }
}

// --- Floats -----------------------------------------------------------------------------------

TEST(FormFloat, WritesAsTheIdeDoesUnlessThatLosesSomething) {
    using TExtended = std::numeric_limits<long double>;
    struct TRow {
        TValueType Type;
        long double Value;
        std::string_view Short;
        std::string_view Fixed;
    };
    const TRow rows[] = {
        {vaExtended, 0, "0.0", "0.000000000000000000"},
        {vaExtended, -1, "-1.0", "-1.000000000000000000"},
        {vaExtended, 0.5L, "0.5", "0.500000000000000000"},
        {vaExtended, 38114.95606434028L, "38114.95606434028", "38114.956064340280000000"},
        {vaExtended, 999999999999999.0L, "999999999999999.0", "999999999999999.000000000000000000"},
        {vaExtended, 1e15L, "1E15", "1000000000000000.000000000000000000"},
        {vaExtended, 1e16L, "1E16", "1E16"},
        {vaExtended, 1e-5L, "0.00001", "0.000010000000000000"},
        {vaExtended, 1e-6L, "1E-6", "0.000001000000000000"},
        {vaExtended, 1e-18L, "1E-18", "0.000000000000000001"},
        {vaExtended, 1e-19L, "1E-19", "1E-19"},
        // 1/3 has more digits than either style writes.
        {vaExtended, 1 / 3.0L, "0.33333333333333333334", "3.3333333333333333334E-1"},
        {vaDouble, 1 / 3.0, "0.3333333333333333", "0.333333333333333300"},
        {vaDouble, 0.1, "0.1", "0.100000000000000000"},
        {vaDouble, 9007199254740993.0L, "9.007199254740992E15",
         "9007199254740992.000000000000000000"},
        {vaSingle, 1.1L, "1.10000002384186s", "1.100000023841858000s"},
        {vaSingle, 16777216, "16777216s", "16777216.000000000000000000s"},
        {vaDate, 36230.5, "36230.5d", "36230.500000000000000000d"},
        {vaExtended, TExtended::infinity(), "+INF", "+INF"},
        {vaSingle, -TExtended::infinity(), "-INFs", "-INFs"},
        {vaDate, TExtended::quiet_NaN(), "+NANd", "+NANd"},
    };
    for (const TRow& row : rows) {
        for (const bool fixed : {false, true}) {
            std::string text;
            AppendFormFloat(text, row.Type, row.Value, fixed);
            EXPECT_EQ(text, fixed ? row.Fixed : row.Short);
        }
    }
}

/// A value of the type from random bits, of which some are ordinary numbers.
long double RandomFloat(std::mt19937_64& random, TValueType type) {
    const std::uint64_t bits = random();
    if (bits % 4 == 0) {
        const long double value = static_cast<long double>(random() % 100'000'000'000) / 100'000;
        return type == vaSingle     ? static_cast<float>(value)
               : type == vaExtended ? value
                                    : static_cast<double>(value);
    }
    float single = 0;
    double number = 0;
    std::memcpy(&single, &bits, sizeof single);
    std::memcpy(&number, &bits, sizeof number);
    if (type == vaSingle) return single;
    if (type != vaExtended) return number;
    const int exponent = static_cast<int>(random() % 32'900) - 16'480;
    return std::ldexp(static_cast<long double>(bits | std::uint64_t{1} << 63), exponent);
}

TEST(FormFloat, EveryValueReadsBack) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 20'000; ++i) {
        const TValueType type = std::array{vaExtended, vaSingle, vaDouble, vaDate}[i % 4];
        const long double value = RandomFloat(random, type);
        for (const bool fixed : {false, true}) {
            std::string text;
            AppendFormFloat(text, type, value, fixed);
            std::string number = text;
            if (FormNumberSuffix(type) != 0) number.pop_back();
            long double back = 0;
            ASSERT_TRUE(ReadFormFloat(number, type, back)) << text;
            ASSERT_TRUE(back == value || (std::isnan(back) && std::isnan(value))) << text;
            ASSERT_EQ(std::signbit(back), std::signbit(value)) << text;
            // The style is that of its own text: nothing changes when it is read again.
            std::string again;
            AppendFormFloat(again, type, back, fixed);
            ASSERT_EQ(again, text);
        }
    }
}

TEST(FormFloat, ReadsTheNearestNumber) {
    struct TRow {
        std::string_view Text;
        long double Value;
    };
    constexpr TRow rows[] = {
        {"0.1", 0.1L},
        {"1234567890123456789", 1234567890123456789.0L},
        {"12345678901234567890123", 12345678901234567890123.0L},
        {"0.000000000000000000000000001", 1e-27L},
        {"0.0000000000000000000000000001", 1e-28L},
        {"100.000000000000000000000000000000000000", 100},
        {"4E-4951", 4e-4951L},
        {"1.18973149535723176502E4932", 1.18973149535723176502E4932L},
    };
    for (const TRow& row : rows) {
        long double value = -1;
        EXPECT_TRUE(ReadFormFloat(row.Text, vaExtended, value)) << row.Text;
        EXPECT_EQ(value, row.Value) << row.Text;
    }
    for (const std::string_view text : {"", "+", "-", ".5", "1.5.2", "1,5", " 1", "1 ", "--1",
                                        "0x10", "inf", "INF", "nan", "1E", "1E-9999", "1E4933"}) {
        long double value = 0;
        EXPECT_FALSE(ReadFormFloat(text, vaExtended, value)) << text;
    }
}

TEST(FormFloat, ReadsCurrencies) {
    struct TRow {
        std::string_view Text;
        std::int64_t Value;
    };
    constexpr TRow rows[] = {
        {"12500", 12500},
        {"12500.000000000000000000", 12500},
        {"-1.25E3", -1250},
        {"0.5001", 1},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
    };
    for (const TRow& row : rows) {
        std::int64_t value = 0;
        EXPECT_TRUE(ReadFormCurrency(row.Text, value)) << row.Text;
        EXPECT_EQ(value, row.Value) << row.Text;
    }
    for (const std::string_view text : {"", "x", "+INF", "9223372036854775808", "-1E19"}) {
        std::int64_t value = 0;
        EXPECT_FALSE(ReadFormCurrency(text, value)) << text;
    }
}

} // namespace
