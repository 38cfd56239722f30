#include "ErrorOf.h"
#include "rtl/TStream.h"
#include "streaming/FormConvert.h"
#include "streaming/FormEdit.h"
#include "streaming/TFormTree.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace tarn {
namespace {

constexpr std::string_view MainForm = "object MainForm: TMainForm\r\n"
                                      "  Left = 192\r\n"
                                      "  Caption = 'Orchard'\r\n"
                                      "  Color = clBtnFace\r\n"
                                      "  Font.Name = 'Sans'\r\n"
                                      "  Font.Style = [fsBold, fsItalic]\r\n"
                                      "  Scale = 1.5\r\n"
                                      "  Small = 0.5s\r\n"
                                      "  Price = 12500c\r\n"
                                      "  Visible = True\r\n"
                                      "  Menu = nil\r\n"
                                      "  inherited Panel1: TPanel [2]\r\n"
                                      "    Data = {00FF10}\r\n"
                                      "    inline Frame1: TFrame1\r\n"
                                      "      object Edit1: TEdit\r\n"
                                      "      end\r\n"
                                      "    end\r\n"
                                      "    object TLabel\r\n"
                                      "      Caption = 'none'\r\n"
                                      "    end\r\n"
                                      "  end\r\n"
                                      "  object Bar: TBar\r\n"
                                      "    Panels = <\r\n"
                                      "      item\r\n"
                                      "        Width = 50\r\n"
                                      "      end\r\n"
                                      "      item [7]\r\n"
                                      "        Parts = <\r\n"
                                      "          item\r\n"
                                      "            Text.Strings = (\r\n"
                                      "              'one'\r\n"
                                      "              2)\r\n"
                                      "          end>\r\n"
                                      "      end>\r\n"
                                      "    Empty = <>\r\n"
                                      "  end\r\n"
                                      "end\r\n";
constexpr std::string_view SecondForm = "object Second: TSecond\r\n"
                                        "  Left = 5\r\n"
                                        "end\r\n";

std::string Converted(std::string_view bytes, TFormFileKind to) {
    TFormLayout layout;
    return ConvertForm(bytes, to, layout);
}

struct TTestForm {
    explicit TTestForm(std::string_view bytes) : Tree(bytes) {
        TFormFileReader reader(bytes);
        Tree.SetSource(reader);
        reader.ReadAll(Tree);
    }
    TFormTree Tree;
};

std::string Changed(std::string_view bytes, const TFormChange& change) {
    std::string result;
    const std::vector<TFormPatch> patches = SetInForm(bytes, change);
    for (const std::string_view piece : PatchedPieces(bytes, patches)) result += piece;
    return result;
}

std::string Replaced(std::string_view text, std::string_view former, std::string_view now) {
    std::string result(text);
    const std::size_t at = result.find(former);
    EXPECT_NE(at, std::string::npos) << former;
    return result.replace(at, former.size(), now);
}

TEST(FormTree, RepeatsWhatItWasTold) {
    const std::string text = std::string(MainForm) + std::string(SecondForm);
    for (const TFormFileKind kind : {fkText, fkBinary, fkResource}) {
        const std::string bytes = Converted(text, kind);
        TFormTree copied;
        std::string own = bytes;
        TFormFileReader(own).ReadAll(copied);
        own.assign(own.size(), '?'); // the tree does not need it any more
        const TTestForm inPlace(bytes);
        for (const TFormTree* tree : {static_cast<const TFormTree*>(&copied), &inPlace.Tree}) {
            std::string repeated;
            {
                TFormFileWriter writer(kind, {}, repeated);
                tree->Replay(writer);
            }
            EXPECT_EQ(repeated, bytes);
        }
    }
}

TEST(FormTree, IsFoundByPath) {
    const std::string text = std::string(MainForm) + std::string(SecondForm);
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"Left", "192"},
        {"mainform.LEFT", "192"},
        {"Second.Left", "5"},
        {"Font.Name", "'Sans'"},
        {"Panel1.Frame1.Edit1", "object Edit1: TEdit\nend\n"},
        {"MainForm[0][1].Caption", "'none'"},
        {"Bar.Panels[0].Width", "50"},
        {"Bar.Panels[1]", "item [7]\n      Parts = <\n        item\n          Text.Strings = (\n"
                          "            'one'\n            2)\n        end>\n    end"},
        {"Bar.Panels[1].Parts[0].Text.Strings[1]", "2"},
        {"Second", "object Second: TSecond\n  Left = 5\nend\n"},
        {"Font.Nmae", "MainForm has no Font.Nmae; is Font.Name meant?"},
        {"Panle1.Data", "MainForm has no Panle1.Data; is Panel1 meant?"},
        {"Panel1.Edit1.Text", "MainForm.Panel1 has no Edit1.Text; is MainForm.Panel1.Frame1.Edit1 "
                              "meant?"},
        {"Bar.Panels[2]", "MainForm.Bar.Panels has no [2]"},
        {"Bar.Panels[0x1]", "MainForm.Bar has no Panels[0x1]; is Panels meant?"},
        {"Left[0]", "MainForm has no Left[0]; is Left meant?"},
        {"Bar.", "MainForm has no Bar.; is MainForm.Bar meant?"},
        {"Completely.Other", "MainForm has no Completely.Other"},
    };
    TFormLayout layout;
    layout.LineBreak = "\n";
    const TTestForm form(text);
    for (const auto& [path, expected] : cases) {
        std::string found;
        const std::string error = ErrorOf([&, &path = path] {
            found = FormTextOf(form.Tree, RequireInForm(form.Tree, path), layout);
        });
        EXPECT_EQ(error.empty() ? found : error,
                  error.empty() ? std::string(expected) : "EFormError: " + std::string(expected))
            << path;
    }
    for (TFormNodeIndex node = 0; node < form.Tree.Count(); ++node) {
        const TFormNodeKind kind = form.Tree[node].Kind;
        if (kind != fnObject && kind != fnProperty && kind != fnItem) continue;
        const std::string path = FormPathOf(form.Tree, node);
        EXPECT_EQ(RequireInForm(form.Tree, path), node) << path;
    }
}

TEST(FormConvert, KnowsItsKinds) {
    const std::string mark = "\xEF\xBB\xBF";
    const std::pair<std::string_view, std::string> cases[] = {
        {"text", " \r\n\tOBJECT a: b\nend"},
        {"text", mark + "inherited"},
        {"binary", "TPF0"},
        {"resource", std::string("\xFF\x0A\x00", 3)},
        {"EFormError: is no form file: it is empty", ""},
        {"EFormError: is no form file: it begins with 'unit Unit1;'", "unit Unit1;"},
        {"EFormError: is no form file: it begins with 00 FF 54 50", std::string("\0\xFFTP", 4)},
    };
    for (const auto& [expected, bytes] : cases) {
        constexpr std::string_view names[] = {"text", "binary", "resource"};
        std::string found;
        const std::string error =
            ErrorOf([&, &bytes = bytes] { found = names[FormFileKindOf(bytes)]; });
        EXPECT_EQ(error.empty() ? found : error, expected);
    }
}

TEST(FormConvert, TurnsAnyKindIntoAnyOther) {
    const std::string texts[] = {
        std::string(MainForm), std::string(MainForm) + std::string(SecondForm),
        "object A: TA\n  X = 1.500000000000000000\nend\n", "object A: TA\nend\nobject B: TB\nend"};
    for (const std::string& text : texts)
        for (const TFormFileKind from : {fkText, fkBinary, fkResource})
            for (const TFormFileKind to : {fkText, fkBinary, fkResource}) {
                TFormLayout layout;
                const std::string binary = ConvertForm(text, fkBinary, layout);
                EXPECT_EQ(ConvertForm(binary, fkText, layout), text);
                const std::string input = Converted(text, from);
                EXPECT_EQ(FormRoundTripDifference(input), "");
                EXPECT_EQ(Converted(Converted(input, to), fkBinary), binary);
            }
    const std::string data = std::string("TPF0\2TA\1B\1X\2\5\0\0", 15);
    const std::string resource = std::string("\xFF\x0A\0TA\0\x30\x10\x0F\0\0\0", 12) + data;
    EXPECT_EQ(Converted("object B: TA X = 5 end", fkResource), resource);
    EXPECT_EQ(ErrorOf([&] { Converted(Replaced(resource, "\x0F", "\x10") + "\r", fkText); }),
              "EFormError: offset 27: the form in the resource ends before 28");
    EXPECT_NE(ErrorOf([&] { Converted(data + std::string(2, '\0'), fkText); }), "");
    EXPECT_NE(ErrorOf([&] { Converted(resource.substr(0, 20), fkText); }), "");
}

TEST(FormConvert, SaysWhatTheOtherKindCannotHold) {
    const std::tuple<std::string, TFormFileKind, std::string_view> cases[] = {
        {"object A: TA\n  B = <\n    item\n      X = (1\n        Null)\n    end>\nend", fkBinary,
         "EFormError: line 5: A.B[0].X[1]: Null in a list, which it would end"},
        {std::string("TPF0\2TA\1B\2a\t\2\5\0\0", 16), fkText,
         "EFormError: offset 12: B.a#9: a text cannot hold the name \"a#9\""},
        {std::string("TPF0\2TA\1B\1X\7\3a b\1\r\x63", 19), fkText,
         "EFormError: offset 16: B.X: a text cannot hold the name \"a b\""},
        {std::string("TPF0\2TA\1B\1X\xB\1a\2-b\0\0\0", 20), fkText,
         "EFormError: offset 17: B.X: a text cannot hold the name \"-b\""},
        {std::string("TPF0\2TA\1B\0\2T+\0\0\0\0", 17), fkText,
         "EFormError: offset 14: B[0]: a text cannot hold the name \"T+\""},
        {std::string("TPF0\2TA\1B\1\n\2\5\0\0", 15), fkText,
         "EFormError: offset 11: B.#10: a text cannot hold the name \"#10\"; no carriage return in "
         "the whole file: were its line ends converted as if it were text?"},
        // CR LF within a string has become LF, and what follows has moved.
        {std::string("TPF0\2TA\1B\1X\6\3a\n\0\0", 16), fkText,
         "EFormError: offset 16: B: the stream ends: 0 of 1 bytes; no carriage return in the whole "
         "file: were its line ends converted as if it were text?"},
    };
    for (const auto& [bytes, to, expected] : cases)
        EXPECT_EQ(ErrorOf([&, &bytes = bytes, to = to] { Converted(bytes, to); }), expected);
}

TEST(FormConvert, TellsTheFirstDifference) {
    const std::string data = std::string("TPF0\2TA\1B\1X\3\5\0\0\0", 16);
    const std::pair<std::string, std::string> cases[] = {
        {"object A: TA\n  X =  1\nend\n", "line 2: X =  1 becomes X = 1"},
        {"object A: TA \nend\n", "line 1: other blanks around object A: TA"},
        {"object A: TA\n  " + std::string(60, 'X') + "  = 1\nend\n",
         "line 2: " + std::string(29, 'X') + "  = 1 becomes " + std::string(29, 'X') + " = 1"},
        {"object A: TA\nend\n\nobject B: TB\nend\n", "line 3: a blank line becomes object B: TB"},
        {"object A: TA\r  B = 1\rend\r\x1A", "line 4: is lost: a blank line"},
        {"object A: TA\r  B =  1\rend\r", "line 2: B =  1 becomes B = 1"},
        {"object A: TA\r\n  X = 1\nend", ""}, // how lines end does not count
        {data, "offset 11: 03 becomes 02"},
        // A double and a UTF-8 string keep their types, but not beside their like of another type.
        {std::string("TPF0\1T\1B\1X\x15\0\0\0\0\0\0\xF8\x3F\0\0", 21), ""},
        {std::string("TPF0\1T\1B\1X\x14\3\0\0\0\xE2\x82\xAC\0\0", 20), ""},
        {std::string("TPF0\1T\1B\1X\x14\2\0\0\0\xC3\xA9\1Y\6\1\xE9\0\0", 24), ""},
        {std::string("TPF0\1T\1B\1X\x12\1\0\0\0\xE9\0\0\0", 19), ""},
        {std::string("TPF0\1T\1B\1X\x12\1\0\0\0a\0\0\0", 19), "offset 10: 12 becomes 06"},
        {std::string("TPF0\1T\1B\1X\x12\1\0\0\0\xAC\x20\1Y\x14\3\0\0\0\xE2\x82\xAC\0\0", 29),
         "offset 19: 14 becomes 12"},
    };
    for (const auto& [bytes, expected] : cases) EXPECT_EQ(FormRoundTripDifference(bytes), expected);
}

struct TChangeCase {
    std::string_view Path;
    std::string_view Value;
    std::string_view Former; ///< the part of the text that becomes another
    std::string_view Now;
};

TEST(FormEdit, ChangesOnlyWhatItIsToldTo) {
    const TChangeCase cases[] = {
        {"Left", "70000", "Left = 192", "Left = 70000"},
        {"Caption", "It's 12", "'Orchard'", "'It'#39's 12'"},
        {"Caption", "'a'#13", "'Orchard'", "'a'#13"},
        {"Caption", "", "'Orchard'", "''"},
        {"Color", "255", "clBtnFace", "255"},
        {"Left", "clRed", "Left = 192", "Left = clRed"},
        {"Font.Style", "[]", "[fsBold, fsItalic]", "[]"},
        {"Scale", "2", "1.5", "2.0"},
        {"Small", "-0.25", "0.5s", "-0.25s"},
        {"Price", "2.5", "12500c", "25000c"},
        {"visible", "False", "True", "False"},
        {"Menu", "Menu1", "nil", "Menu1"},
        {"Panel1.Data", "{ 01 }", "00FF10", "01"},
        {"Panel1[1].Caption", "some", "'none'", "'some'"},
        {"Bar.Panels[1].Parts[0].Text.Strings[0]", "1", "'one'", "'1'"},
        {"Bar.Panels[1].Parts[0].Text.Strings[1]", "3", "2)", "3)"},
        {"Bar.Panels[0].Width", "0", "Width = 50", "Width = 0"},
        {"Bar.Empty", "<item A = 1 end>", "Empty = <>",
         "Empty = <\r\n      item\r\n        A = 1\r\n      end>"},
    };
    for (const TChangeCase& row : cases) {
        const std::string expected = Replaced(MainForm, row.Former, row.Now);
        for (const TFormFileKind kind : {fkText, fkBinary, fkResource})
            EXPECT_EQ(Changed(Converted(MainForm, kind), {.Path = row.Path, .Value = row.Value}),
                      Converted(expected, kind))
                << row.Path << " " << kind;
    }
    const TChangeCase added[] = {
        {"Tag", "5", "Menu = nil\r\n", "Menu = nil\r\n  Tag = 5\r\n"},
        {"Panel1.Frame1.Edit1.Font.Name", "'A'", "TEdit\r\n",
         "TEdit\r\n        Font.Name = 'A'\r\n"},
        {"Panel1.Frame1.Tag", "5", "TFrame1\r\n", "TFrame1\r\n      Tag = 5\r\n"},
        {"Bar.Panels[0].Text", "'A'", "Width = 50\r\n", "Width = 50\r\n        Text = 'A'\r\n"},
    };
    for (const TChangeCase& row : added) {
        const std::string expected = Replaced(MainForm, row.Former, row.Now);
        for (const TFormFileKind kind : {fkText, fkBinary, fkResource})
            EXPECT_EQ(Changed(Converted(MainForm, kind),
                              {.Path = row.Path, .Value = row.Value, .Add = true}),
                      Converted(expected, kind))
                << row.Path << " " << kind;
    }
}

TEST(FormEdit, ChangesNothingForTheSameValue) {
    for (const TFormFileKind kind : {fkText, fkBinary, fkResource}) {
        const std::string bytes = Converted(std::string(MainForm) + std::string(SecondForm), kind);
        const TTestForm form(bytes);
        for (TFormNodeIndex node = 0; node < form.Tree.Count(); ++node) {
            if (form.Tree[node].Kind != fnProperty) continue;
            const std::string path = FormPathOf(form.Tree, node);
            const std::string value = FormTextOf(form.Tree, node, {});
            EXPECT_EQ(Changed(bytes, {path, value}), bytes) << path << " " << value;
        }
    }
}

TEST(FormEdit, KeepsAnUnusualLayout) {
    const std::string long70(70, 'x');
    const std::pair<TFormChange, std::pair<std::string_view, std::string>> cases[] = {
        {{"B", "3"}, {"OBJECT x:T\n a  =   1 b=2 END\n\n", "OBJECT x:T\n a  =   1 b=3 END\n\n"}},
        {{"a", "3"}, {"OBJECT x:T\n a  =   1 b=2 END\n\n", "OBJECT x:T\n a  =   3 b=2 END\n\n"}},
        {{"a", "3", true}, {"object x: T end", "object x: T\r\n  a = 3 end"}},
    };
    for (const auto& [change, texts] : cases) EXPECT_EQ(Changed(texts.first, change), texts.second);
    // Characters beyond ASCII: in a code page as its bytes, in a binary as its type says.
    const std::string binary = std::string("TPF0\1T\1B\1X\x12\1\0\0\0A\0\0\0", 19);
    EXPECT_EQ(Changed(binary, {"X", "\xC3\xA9\xE2\x82\xAC"}),
              std::string("TPF0\1T\1B\1X\x12\2\0\0\0\xE9\0\xAC\x20\0\0", 21));
    EXPECT_EQ(Changed("object B: T\r\n  X = 'a\xE4'\r\nend", {"X", "\xC3\xA9"}),
              "object B: T\r\n  X = '\xE9'\r\nend");
    EXPECT_EQ(Changed("object B: T\r\n  X = #228\r\nend", {"X", "'\xC3\xA9\xE2\x82\xAC'"}),
              "object B: T\r\n  X = #233#8364\r\nend");
    // A string of many characters moves to lines of its own, and back.
    const std::string shortText = "object B: T\r\n  X = 'a'\r\n  Y = 1\r\nend\r\n";
    const std::string longText = Changed(shortText, {"X", long70});
    EXPECT_EQ(longText, "object B: T\r\n  X = \r\n    '" + std::string(64, 'x') +
                            "' +\r\n    'xxxxxx'\r\n  Y = 1\r\nend\r\n");
    EXPECT_EQ(Changed(longText, {"X", "a"}), shortText);
}

TEST(FormEdit, RefusesWhatDoesNotFit) {
    const std::pair<TFormChange, std::string_view> cases[] = {
        {{"Left", "'a'"}, "MainForm.Left: 'a' is a string instead of an integer"},
        {{"Left", "1.5"}, "MainForm.Left: 1.5 is a number instead of an integer"},
        {{"Visible", "clRed"}, "MainForm.Visible: clRed is an identifier instead of a Boolean"},
        {{"Caption", "'open"}, "MainForm.Caption: 'open is no value of the text form"},
        {{"Caption", "#1 fan"}, "MainForm.Caption: #1 fan is no value of the text form"},
        {{"Left", "1 Top = 2"}, "MainForm.Left: 1 Top = 2 is no value of the text form"},
        {{"Left", "1 end object B: T"},
         "MainForm.Left: 1 end object B: T is no value of the text form"},
        {{"Left", ""}, "MainForm.Left:  is no value of the text form"},
        {{"Price", "1E300"}, "MainForm.Price: 1E300 is too large for a currency"},
        {{"Panel1", "1"}, "MainForm.Panel1 is no property"},
        {{"Bar.Panels[0]", "1"}, "MainForm.Bar.Panels[0] is no property"},
        {{"Lefft", "1"}, "MainForm has no Lefft; is Left meant?"},
        {{"A-B", "1", true}, "MainForm has no A-B"},
        {{"Tag", "a b", true}, "MainForm.Tag: a b is no value of the text form"},
    };
    for (const TFormFileKind kind : {fkText, fkBinary})
        for (const auto& [change, expected] : cases)
            EXPECT_EQ(
                ErrorOf([&, &change = change] { SetInForm(Converted(MainForm, kind), change); }),
                "EFormError: " + std::string(expected));
}

} // namespace
} // namespace tarn
