#include "ErrorOf.h"
#include "rtl/TCollection.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TStrings.h"
#include "rtl/TVariant.h"
#include "rtl/Unicode.h"
#include "streaming/FormBinary.h"
#include "streaming/FormResource.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextPrinter.h"
#include "vcl/Forms.h"
#include "vcl/Graphics.h"
#include "vcl/TToolBar.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace tarn {
namespace {

using namespace std::string_view_literals;

// --- Bytes and events -------------------------------------------------------------------------

/// The bytes of "06 'abc' 00": hexadecimal pairs, and text in apostrophes.
std::string Bytes(std::string_view notation) {
    const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
    std::string bytes;
    for (std::size_t i = 0; i < notation.size(); ++i) {
        if (notation[i] == ' ') continue;
        if (notation[i] == '\'') {
            const std::size_t end = notation.find('\'', i + 1);
            bytes += notation.substr(i + 1, end - i - 1);
            i = end;
        } else {
            bytes += static_cast<char>(digit(notation[i]) * 16 + digit(notation[i + 1]));
            ++i;
        }
    }
    return bytes;
}

constexpr TFormLayout PlainLayout = {.LineBreak = "\n"};

/// A stream as text; an error is appended to what came before it.
std::string TextOf(TReader& reader) {
    std::string text;
    TFormTextPrinter printer(text, PlainLayout);
    const std::string error = ErrorOf([&] { ReadFormBinary(reader, printer); });
    return error.empty() ? text : error;
}

std::string TextOf(const std::string& bytes) {
    TReader reader(bytes);
    return TextOf(reader);
}

std::string BinaryOf(std::string_view text) {
    std::string bytes;
    TFormBinaryWriter writer(bytes);
    TFormTextParser(text, PlainLayout).Parse(writer);
    return bytes;
}

TEST(FormBinary, ValuesComeOutAsTheyWentIn) {
    const struct {
        std::string_view Value, Text;
    } cases[] = {
        {"00", "Null"},
        {"02 80", "-128"},
        {"03 05 00", "5"}, // larger than need be, and kept
        {"03 00 80", "-32768"},
        {"04 FF FF FF 7F", "2147483647"},
        {"13 00 00 00 00 00 00 00 80", "-9223372036854775808"},
        {"05 00 00 00 00 00 00 00 C0 FF 3F", "1.5"},
        {"05 00 00 00 00 00 00 00 00 00 80", "-0.0"},
        {"05 35 C2 68 21 A2 DA 0F C9 00 C0", "-3.1415926535897932385"},
        {"05 FF FF FF FF FF FF FF FF FE 7F", "1.189731495357231765E4932"},
        {"05 01 00 00 00 00 00 00 00 00 00", "3.64519953188247E-4951"},
        {"05 FF FF FF FF FF FF FF 7F 00 00", "3.362103143112093506E-4932"},
        {"05 00 00 00 00 00 00 00 80 01 00", "3.3621031431120935063E-4932"},
        {"05 00 00 00 00 00 00 00 80 FF FF", "-INF"},
        {"05 00 00 00 00 00 00 00 C0 FF 7F", "+NAN"},
        {"0F 00 00 C0 3F", "1.5s"},
        {"15 9A 99 99 99 99 99 B9 3F", "0.1"},
        {"11 00 00 00 00 00 D4 E1 40", "36512d"},
        {"10 F0 D8 FF FF FF FF FF FF", "-10000c"},
        {"06 02 'a' E9", "'a\xE9'"},
        {"0C 02 00 00 00 'ab'", "'ab'"},
        {"12 02 00 00 00 'a' 00 AC 20", "'a'#8364"},
        {"14 02 00 00 00 C3 A9", "#233"},
        {"07 09 'clBtnFace'", "clBtnFace"},
        {"08", "False"},
        {"09", "True"},
        {"0D", "nil"},
        {"0A 03 00 00 00 01 00 02", "{010002}"},
        {"0B 00", "[]"},
        {"0B 01 'a' 02 'bc' 00", "[a, bc]"},
        {"01 00", "()"},
        {"01 02 01 01 0D 00 0E 01 01 'N' 00 00 00 06 00 00", "(1(nil)<item N = Null end>'')"},
        {"0E 00", "<>"},
        {"0E 01 01 'A' 02 01 00 02 05 01 00 00", "<item A = 1 end item [5] end>"},
    };
    const auto withoutBlanks = [](std::string_view text) {
        std::string kept;
        for (const char c : text)
            if (c > ' ') kept += c;
        return kept;
    };
    for (const auto& c : cases) {
        const std::string form = Bytes("'TPF0' 01 'T' 00 01 'V'") + Bytes(c.Value) + Bytes("00 00");
        std::string written;
        TFormBinaryWriter writer(written);
        TFormBinaryReader reader(form);
        reader.Parse(writer);
        EXPECT_EQ(written, form) << c.Value;
        EXPECT_TRUE(reader.AtEnd());
        const std::string text = "object T\n  V = " + std::string(c.Text) + "\nend\n";
        EXPECT_EQ(withoutBlanks(TextOf(form)), withoutBlanks(text)) << c.Value;
        TReader skipper(form);
        skipper.SkipObject();
        EXPECT_EQ(skipper.BytesLeft(), 0) << c.Value;
    }
}

TEST(FormBinary, HeadsOfObjects) {
    const std::string_view form = "inherited Main: TMain\n"
                                  "  object Panel: TPanel [3]\n"
                                  "    inline Frame: TFrame\n"
                                  "      inherited Button: TButton [0]\n"
                                  "      end\n"
                                  "    end\n"
                                  "  end\n"
                                  "  object TLabel\n"
                                  "  end\n"
                                  "end\n";
    const std::string bytes = BinaryOf(form);
    EXPECT_EQ(bytes, Bytes("'TPF0' F1 05 'TMain' 04 'Main' 00"
                           "F2 02 03 06 'TPanel' 05 'Panel' 00"
                           "F4 06 'TFrame' 05 'Frame' 00"
                           "F3 02 00 07 'TButton' 06 'Button' 00 00 00 00"
                           "06 'TLabel' 00 00 00 00"));
    EXPECT_EQ(TextOf(bytes), form);

    // The length of a class name from 240 on would be taken for a prefix.
    const std::string longName(240, 'T');
    const std::string longForm = "object " + longName + "\nend\n";
    EXPECT_EQ(TextOf(BinaryOf(longForm)), longForm);
}

TEST(FormBinary, WhatTheFormatCannotHold) {
    const struct {
        std::function<void(IFormSink&)> Write;
        std::string_view Error;
    } cases[] = {
        {[](IFormSink& s) { s.Property(""); }, "a property without a name"},
        {[](IFormSink& s) { s.SetElement(""); }, "an element of a set without a name"},
        {[](IFormSink& s) { s.BeginObject({}); }, "an object's class without a name"},
        {[](IFormSink& s) { s.Ident(vaIdent, std::string(256, 'x')); },
         "longer than 255 bytes: 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...'"},
        {[](IFormSink& s) { s.String(vaWString, "abc"); }, "half a character at the end: 'abc'"},
        {[](IFormSink& s) { s.BeginList(), s.Ident(vaNull, "Null"); },
         "Null in a list, which it would end"},
        {[](IFormSink& s) {
             s.BeginList(), s.BeginCollection(), s.BeginItem({}), s.Property("N");
             s.Ident(vaNull, "Null"), s.EndItem(), s.EndCollection(), s.Ident(vaNull, "Null");
         },
         "Null in a list, which it would end"},
    };
    for (const auto& c : cases) {
        std::string bytes;
        TFormBinaryWriter writer(bytes);
        EXPECT_EQ(ErrorOf([&] { c.Write(writer); }), "EWriteError: " + std::string(c.Error));
    }
}

// --- Errors in bytes --------------------------------------------------------------------------

TEST(FormBinary, ErrorsNamePlaceAndReason) {
    const std::string_view head = "'TPF0' 05 'TMain' 04 'Main' ";
    const struct {
        std::string Bytes;
        std::string_view Error;
    } cases[] = {
        {"", "EInvalidImage: offset 0: TPF0 expected, not ''"},
        {"'TPF2' 01 'T'", "EInvalidImage: offset 0: TPF0 expected, not 'TPF2'"},
        {"'TPF0' 00 00", "EReaderError: offset 4: an object without a class"},
        {"'TPF0' F8 01 'T'", "EReaderError: offset 4: unknown object flags $F8"},
        {"'TPF0' F2 06 01 'x'", "EReaderError: offset 5: an integer expected, not vaString"},
        {"'TPF0' F2 13 00 00 00 80 00 00 00 00",
         "EReaderError: offset 5: 2147483648 does not fit 32 bits"},
        {"'TPF0' 05 'TMain' 04 'M'", "EReaderError: offset 11: the stream ends: 1 of 4 bytes"},
        {"@ 04 'Left' 16", "EReaderError: offset 20: Main.Left: unknown value type 22"},
        {"@ 01 'A' 0C FF FF FF FF 'abc'",
         "EReaderError: offset 22: Main.A: the stream ends: 3 of 4294967295 bytes"},
        {"@ 01 'A' 12 00 00 00 80 'abc'",
         "EReaderError: offset 22: Main.A: the stream ends: 3 of 4294967296 bytes"},
        {"@ 01 'A' 0A 04 00 00 00 'abc'",
         "EReaderError: offset 22: Main.A: the stream ends: 3 of 4 bytes"},
        {"@ 00 02 'TP' 01 'P' 09 'Font.Size' 0E 01 00 01 03 'Sub' 01 02 05 17",
         "EReaderError: offset 42: Main.P.Font.Size[1].Sub[1]: unknown value type 23"},
        {"@ 02 'A' E9 16", "EReaderError: offset 18: Main.A#233: unknown value type 22"},
        {"@ 01 'A' 0E 02 05 06",
         "EReaderError: offset 20: Main.A[0]: vaList expected, not vaString"},
    };
    for (const auto& c : cases) {
        const std::size_t at = c.Bytes.find('@');
        const std::string bytes = at == 0 ? Bytes(head) + Bytes(c.Bytes.substr(1)) : Bytes(c.Bytes);
        EXPECT_EQ(TextOf(bytes), c.Error);
        // The same from a stream whose buffer holds next to nothing, and when nobody looks at it.
        TStringStream stream(bytes);
        TReader small(stream, 1);
        EXPECT_EQ(TextOf(small), c.Error);
    }

    const std::string oddName = Bytes("'TPF0' 02 'T' 0A 00");
    EXPECT_EQ(ErrorOf([&] { TReader(oddName).ReadRootComponent(nullptr); }),
              "EReaderError: offset 4: T#10: no component class named T#10");

    const std::string prefix = Bytes(head) + Bytes("01 'A'");
    const auto lists = [&](int count) { // the object is a level, too
        return prefix + std::string(static_cast<std::size_t>(count), '\1') +
               std::string(static_cast<std::size_t>(count), '\0') + Bytes("00 00");
    };
    const auto error = [](const std::string& bytes) {
        return ErrorOf([&] { TReader(bytes).SkipObject(); });
    };
    EXPECT_EQ(error(lists(MaxFormDepth - 1)), "");
    EXPECT_EQ(error(lists(MaxFormDepth)),
              "EReaderError: offset 529: nested deeper than 512 levels");
    EXPECT_EQ(TextOf(lists(MaxFormDepth)).substr(0, 37), "EReaderError: offset 529: ...][0][0][");
}

// --- Objects ----------------------------------------------------------------------------------

enum TSuit : std::uint8_t { suClubs, suHearts, suSpades };
constexpr std::string_view SuitNames[] = {"suClubs", "suHearts", "suSpades"};

} // namespace

template <> inline constexpr TTypeInfo TypeInfoOf<TSuit> = EnumType("TSuit", SuitNames);

namespace {

constexpr TTypeInfo InkType = IntegerType<std::int32_t>("TInk");

class TPen : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Width = 1;
    int Ink = 0;
};
constexpr TPropInfo PenProps[] = {
    Published<&TPen::Width>("Width", {.Default = 1}),
    Published<&TPen::Ink>("Ink", {.Type = &InkType}),
};
const TClassRecord TPen::ClassRecord{"TPen", &TPersistent::ClassRecord, CreateObject<TPen>,
                                     PenProps};

class TColumn : public TCollectionItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string Title;
    TPen FPen;
    TPen* Pen() const { return const_cast<TPen*>(&FPen); }
};
constexpr TPropInfo ColumnProps[] = {
    Published<&TColumn::Title>("Title"),
    Published<&TColumn::Pen>("Pen"),
};
const TClassRecord TColumn::ClassRecord{"TColumn", &TCollectionItem::ClassRecord,
                                        CreateObject<TColumn>, ColumnProps};

class TColumns : public TCollection {
public:
    TColumns() : TCollection(TClassRef<TCollectionItem>::Of<TColumn>()) {}
    int Changes = 0;

protected:
    void Update(TCollectionItem*) override { ++Changes; }
};

/// A component with a property of every kind, and children of its own.
class TPart : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    bool Flag = false;
    std::int16_t Small = 0;
    std::uint32_t Cardinal = 0;
    std::int64_t Big = 0;
    char Letter = 'x';
    char16_t Wide = u'x';
    double Real = 0;
    std::string Text;
    TShortString<5> Short;
    std::u16string WideText;
    TSuit Suit = suClubs;
    TSet<TSuit> Suits;
    TVariant Value;
    TNotifyEvent OnClick;
    TPart* Buddy = nullptr;
    TPen FPen;
    TColumns FColumns;
    std::vector<std::string> Lines;
    std::string Blob;
    TStringList FNotes;
    int NoteChanges = 0;
    int LoadedWith = -1; ///< the tag of the buddy at the time

    TPen* Pen() const { return const_cast<TPen*>(&FPen); }
    TColumns* Columns() const { return const_cast<TColumns*>(&FColumns); }
    TStrings* Notes() const { return const_cast<TStringList*>(&FNotes); }
    void NotesChanged(TObject*) { ++NoteChanges; }
    int Checked() const { return 0; }
    void SetChecked(int value) {
        if (value != 0) throw EConvertError("no such check");
    }
    int Fixed() const { return 7; }

    TComponent* GetParentComponent() const override { return FParent; }
    void SetParentComponent(TComponent* parent) override { FParent = parent; }

protected:
    void GetChildren(const TGetChildProc& proc, const TComponent* root) const override {
        for (int i = 0; i < root->ComponentCount(); ++i)
            if (root->Components(i)->GetParentComponent() == this) proc(*root->Components(i));
    }
    void DefineProperties(TFiler& filer) override {
        TComponent::DefineProperties(filer);
        filer.DefineProperty(
            "Lines",
            [this](TReader& reader) {
                reader.ReadListBegin();
                while (!reader.EndOfList()) Lines.push_back(reader.ReadString());
                reader.ReadListEnd();
            },
            [this](TWriter& writer) {
                writer.WriteListBegin();
                for (const std::string& line : Lines) writer.WriteString(line);
                writer.WriteListEnd();
            },
            !Lines.empty());
        filer.DefineBinaryProperty(
            "Blob",
            [this](TStream& stream) {
                Blob.resize(static_cast<std::size_t>(stream.Size()));
                stream.ReadBuffer(Blob.data(), stream.Size());
            },
            [this](TStream& stream) { stream.WriteText(Blob); }, !Blob.empty());
    }
    void Loaded() override { LoadedWith = Buddy ? static_cast<int>(Buddy->Big) : 0; }

private:
    TComponent* FParent = nullptr;
};

constexpr TPropInfo PartProps[] = {
    Published<&TPart::Flag>("Flag", {.Default = false}),
    Published<&TPart::Small>("Small", {.Default = 0}),
    Published<&TPart::Cardinal>("Cardinal", {.Default = 0}),
    Published<&TPart::Big>(
        "Big",
        {.IsStored = [](const TObject& part) { return static_cast<const TPart&>(part).Big != 0; }}),
    Published<&TPart::Letter>("Letter", {.Default = 'x'}),
    Published<&TPart::Wide>("Wide", {.Default = u'x'}),
    Published<&TPart::Real>("Real"),
    Published<&TPart::Text>("Text"),
    Published<&TPart::Short>("Short"),
    Published<&TPart::WideText>("WideText"),
    Published<&TPart::Suit>("Suit", {.Default = suClubs}),
    Published<&TPart::Suits>("Suits", {.Default = 0}),
    Published<&TPart::Value>("Value"),
    Published<&TPart::OnClick>("OnClick"),
    Published<&TPart::Buddy>("Buddy"),
    Published<&TPart::Pen>("Pen"),
    Published<&TPart::Columns>("Columns"),
    Published<&TPart::Notes>("Notes"),
    Published<&TPart::Checked, &TPart::SetChecked>("Checked", {.Default = 0}),
    Published<&TPart::Fixed>("Fixed"),
};
const TClassRecord TPart::ClassRecord{"TPart", &TComponent::ClassRecord, CreateObject<TPart>,
                                      PartProps};

void Click(TObject*) {}

class ComponentStream : public testing::Test {
protected:
    void SetUp() override {
        RegisterClass(TPart::ClassRecord);
        RegisterIntegerConsts(
            InkType,
            [](std::string_view ident, std::int32_t& value) {
                value = -1;
                return ident == "ikRed";
            },
            [](std::int32_t value, std::string& ident) {
                ident = "ikRed";
                return value == -1;
            });
    }
    void TearDown() override {
        UnRegisterClass(TPart::ClassRecord);
        UnRegisterIntegerConsts(InkType);
    }

    static std::string Stored(TComponent& root, TComponent* ancestor = nullptr) {
        TMemoryStream stream;
        TWriter writer(stream, 16);
        writer.OnGetMethodName = [](TWriter&, const TPersistent&, const TPropInfo&) {
            return std::string("ClickIt");
        };
        writer.WriteDescendent(root, ancestor);
        return TextOf(std::string(stream.Text()));
    }

    /// Reads a form's text into the component, or a new one. Errors are gathered in FErrors when
    /// there are to be any.
    std::unique_ptr<TPart> Read(std::string_view text, TPart* into = nullptr, bool goOn = false) {
        const std::string bytes = BinaryOf(text);
        TReader reader(bytes);
        reader.OnFindMethod = [](TReader&, TPersistent&, const TPropInfo&, std::string_view name,
                                 TRawMethod& method) {
            if (name == "ClickIt") method = TNotifyEvent::Of<Click>().Raw();
        };
        if (goOn)
            reader.OnError = [this](TReader&, std::string_view message, bool& handled) {
                FErrors.append(message) += '\n';
                handled = true;
            };
        auto* const part = static_cast<TPart*>(reader.ReadRootComponent(into));
        EXPECT_EQ(reader.BytesLeft(), 0);
        return std::unique_ptr<TPart>(into ? nullptr : part);
    }

    std::string FErrors;
};

constexpr std::string_view WholeForm = "object Main: TPart\n"
                                       "  Flag = True\n"
                                       "  Small = -300\n"
                                       "  Cardinal = -1\n"
                                       "  Big = 5000000000\n"
                                       "  Letter = '\xE9'\n"
                                       "  Wide = #8364\n"
                                       "  Real = 0.5\n"
                                       "  Text = #252'ber'\n"
                                       "  Short = 'short'\n"
                                       "  WideText = 'w'#8364\n"
                                       "  Suit = suSpades\n"
                                       "  Suits = [suClubs, suSpades]\n"
                                       "  Value = 'v'\n"
                                       "  OnClick = ClickIt\n"
                                       "  Buddy = Inner\n"
                                       "  Pen.Width = 3\n"
                                       "  Pen.Ink = ikRed\n"
                                       "  Columns = <\n"
                                       "    item\n"
                                       "      Title = 'a'\n"
                                       "      Pen.Ink = 5\n"
                                       "    end\n"
                                       "    item\n"
                                       "      Title = ''\n"
                                       "      Pen.Width = 2\n"
                                       "      Pen.Ink = 0\n"
                                       "    end>\n"
                                       "  Lines = (\n"
                                       "    'one'\n"
                                       "    'two')\n"
                                       "  Blob = {4142}\n"
                                       "  object Group: TPart\n"
                                       "    Real = 0.0\n"
                                       "    Text = ''\n"
                                       "    Short = ''\n"
                                       "    WideText = ''\n"
                                       "    Value = nil\n"
                                       "    Buddy = Owner\n"
                                       "    Pen.Ink = 0\n"
                                       "    Columns = <>\n"
                                       "    object Inner: TPart\n"
                                       "      Big = 9\n"
                                       "      Real = 0.0\n"
                                       "      Text = ''\n"
                                       "      Short = ''\n"
                                       "      WideText = ''\n"
                                       "      Value = True\n"
                                       "      Buddy = Group\n"
                                       "      Pen.Ink = 0\n"
                                       "      Columns = <>\n"
                                       "    end\n"
                                       "  end\n"
                                       "end\n";

TEST_F(ComponentStream, EveryKindOfPropertyThereAndBack) {
    const std::unique_ptr<TPart> main = Read(WholeForm);
    EXPECT_EQ(main->Cardinal, 0xFFFFFFFFu);
    EXPECT_EQ(main->Text, "\u00FCber");
    EXPECT_EQ(main->Columns()->Changes, 1);
    EXPECT_EQ(main->ComponentCount(), 2);
    auto* const inner = static_cast<TPart*>(main->FindComponent("Inner"));
    EXPECT_EQ(inner->GetParentComponent(), main->FindComponent("group"));
    EXPECT_EQ(main->LoadedWith, 9); // references were set before
    EXPECT_TRUE((main->ComponentState() + inner->ComponentState()).IsEmpty());
    EXPECT_EQ(Stored(*main), WholeForm);

    // What a stream does not mention stays, and collections are replaced.
    Read("object Main: TPart\n  Text = 'new'\n  Pen.Width = $80000005\n"
         "  Columns = <item end>\n  Buddy = nil\nend\n",
         main.get());
    EXPECT_EQ(main->FPen.Width, std::numeric_limits<std::int32_t>::min() + 5);
    EXPECT_EQ(main->Text, "new");
    EXPECT_EQ(main->Small, -300);
    EXPECT_EQ(main->Columns()->Count(), 1);
    EXPECT_EQ(main->Buddy, nullptr);
}

TEST_F(ComponentStream, StringListsAreListsOfStrings) {
    using TLines = std::vector<std::string_view>;
    const struct {
        TLines Lines;
        std::optional<TLines> Ancestor;
        std::string_view Stored;
    } cases[] = {
        {{}, {}, ""},
        {{"a", ""}, {}, "Notes.Strings = (\n    'a'\n    '')"},
        {{"a", "b"}, {{"a", "b"}}, ""},
        {{"a", "B"}, {{"a", "b"}}, "Notes.Strings = (\n    'a'\n    'B')"},
        {{}, {{"a"}}, "Notes.Strings = ()"},
    };
    const auto fill = [](TPart& part, const TLines& lines) {
        for (const std::string_view line : lines) part.FNotes.Add(line);
    };
    for (const auto& c : cases) {
        TPart part, ancestor, copy;
        fill(part, c.Lines);
        if (c.Ancestor) fill(ancestor, *c.Ancestor);
        const std::string form = Stored(part, c.Ancestor ? &ancestor : nullptr);
        const std::size_t at = std::min(form.find("Notes"), form.size());
        EXPECT_EQ(form.substr(at, form.find(')', at) + 1 - at), c.Stored);

        fill(copy, {"a", "former"});
        copy.FNotes.OnChange = TNotifyEvent::Of<&TPart::NotesChanged>(&copy);
        Read(form, &copy);
        EXPECT_EQ(copy.FNotes.Equals(part.FNotes), !c.Stored.empty()) << c.Stored;
        EXPECT_EQ(copy.NoteChanges, c.Stored.empty() ? 0 : 1);
    }
}

TEST_F(ComponentStream, ErrorsCanBePassedOver) {
    const struct {
        std::string_view Line, Error; ///< the error without offset and path
    } cases[] = {
        {"Foo = 1", "Main.Foo: property Foo does not exist"},
        {"Pen.Foo = (1 2)", "Main.Pen.Foo: property Foo does not exist"},
        {"Notes.Strings = ('a' 1 'b')", "Main.Notes.Strings[1]: a string expected, not vaInt8"},
        {"Small.Foo = 1", "Main.Small.Foo: property Small holds no object"},
        {"Buddy.Small = 1", "Main.Buddy.Small: property Buddy holds no object"},
        {"Small = 'x'", "Main.Small: an integer expected, not vaString"},
        {"Small = 40000", "Main.Small: 40000 is out of the range of SmallInt"},
        {"Cardinal = 4294967296", "Main.Cardinal: 4294967296 is out of the range of Cardinal"},
        {"Pen.Width = $100000000", "Main.Pen.Width: 4294967296 is out of the range of Integer"},
        {"Pen.Width = -2147483649", "Main.Pen.Width: -2147483649 is out of the range of Integer"},
        {"Small = sixteen", "Main.Small: 'sixteen' is no value of SmallInt"},
        {"Pen.Ink = ikBlue", "Main.Pen.Ink: 'ikBlue' is no value of TInk"},
        {"Letter = 'ab'", "Main.Letter: 'ab' is not one character"},
        {"Wide = ''", "Main.Wide: one character expected"},
        {"Real = 'x'", "Main.Real: a number expected, not vaString"},
        {"Text = 1", "Main.Text: a string expected, not vaInt8"},
        {"Flag = 1", "Main.Flag: an identifier expected, not vaInt8"},
        {"Suit = suDiamonds", "Main.Suit: 'suDiamonds' is no value of TSuit"},
        {"Suits = [suClubs, x]", "Main.Suits: 'x' is no value of TSuit"},
        {"OnClick = Missing", "Main.OnClick: no method named Missing"},
        {"Pen = <item end>", "Main.Pen: property Pen holds no collection"},
        {"Pen = nil", "Main.Pen: property Pen is read-only"},
        {"Fixed = 1", "Main.Fixed: property Fixed is read-only"},
        {"Checked = 1", "Main.Checked: no such check"},
        {"Buddy = Missing", "Main.Buddy: no component named Missing"},
        {"Columns = <item Foo = 1 Title = 'kept' end>",
         "Main.Columns[0].Foo: property Foo does not exist"},
        {"Blob = 1", "Main.Blob: vaBinary expected, not vaInt8"},
        {"object Odd: TOdd object Part: TPart end end", "Main.Odd: no component class named TOdd"},
        {"object Twice: TPart end object Twice: TPart end",
         "Main.Twice: a component named Twice already exists"},
        {"inherited Old: TPart Big = 1 end", "Main.Old: no component named Old to inherit"},
    };
    for (const auto& c : cases) {
        const bool child = c.Line.find("object") == 0 || c.Line.find("inherited") == 0;
        const std::string after = "Text = 'after'\n";
        const std::string form = "object Main: TPart\n" + (child ? after : "") +
                                 std::string(c.Line) + "\n" + (child ? "" : after) + "end\n";
        FErrors.clear();
        const std::unique_ptr<TPart> part = Read(form, nullptr, true);
        EXPECT_EQ(part->Text, "after") << c.Line;
        const std::size_t path = std::min(FErrors.find(": ") + 2, FErrors.size());
        EXPECT_EQ(FErrors.substr(path), std::string(c.Error) + "\n");
        EXPECT_EQ(ErrorOf([&] { Read(form); }) + "\n", "EReaderError: " + FErrors);
    }
}

TEST_F(ComponentStream, AnErrorLeavesWhatWasRead) {
    TPart part;
    EXPECT_EQ(ErrorOf([&] {
                  Read("object Main: TPart\n  Small = 5\n  Text = 1\n  Big = 6\nend\n", &part);
              }),
              "EReaderError: offset 28: Main.Text: a string expected, not vaInt8");
    EXPECT_EQ(part.Small, 5);
    EXPECT_EQ(part.Big, 0);
    EXPECT_TRUE(part.ComponentState().IsEmpty());
    EXPECT_EQ(part.LoadedWith, -1);
}

TEST_F(ComponentStream, ACutStreamIsAReadError) {
    const std::string whole = BinaryOf(WholeForm);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string cut = whole.substr(0, length);
        TStringStream stream(cut);
        TReader reader(stream, 7);
        reader.OnFindMethod = [](TReader&, TPersistent&, const TPropInfo&, std::string_view,
                                 TRawMethod& method) { method = TNotifyEvent::Of<Click>().Raw(); };
        EXPECT_THROW(delete reader.ReadRootComponent(nullptr), EReadError) << length;
        EXPECT_THROW(TReader(cut).SkipObject(), EReadError) << length;
        EXPECT_EQ(TextOf(cut).find(length < 4 ? "EInvalidImage" : "EReaderError"), 0u) << length;
    }
}

/// A component among its owner's, without a parent.
class TNode : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string Text = "-";
    TNode* Next = nullptr;
};
constexpr TPropInfo NodeProps[] = {
    Published<&TNode::Text>("Text", {.IsStored =
                                         [](const TObject& node) {
                                             return static_cast<const TNode&>(node).Text != "-";
                                         }}),
    Published<&TNode::Next>("Next"),
};
const TClassRecord TNode::ClassRecord{"TNode", &TComponent::ClassRecord, CreateObject<TNode>,
                                      NodeProps};

/// A frame, which comes with a part of its own.
class TFrameNode : public TNode {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TFrameNode() {
        FInner.SetName("Inner");
        InsertComponent(&FInner);
    }
    ~TFrameNode() override { RemoveComponent(&FInner); }

private:
    TNode FInner;
};
/// Its nodes are known as classes of its fields alone.
constexpr const TClassRecord* FrameFields[] = {&TNode::ClassRecord, &TFrameNode::ClassRecord};
const TClassRecord TFrameNode::ClassRecord{
    "TFrameNode", &TNode::ClassRecord, CreateObject<TFrameNode>, {}, {}, FrameFields};

class TMainNode : public TNode {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
const TClassRecord TMainNode::ClassRecord{
    "TMainNode", &TNode::ClassRecord, CreateObject<TMainNode>, {}, {}, FrameFields};

void ReadNode(std::string_view text, TMainNode& node) {
    const std::string bytes = BinaryOf(text);
    TReader reader(bytes);
    reader.ReadRootComponent(&node);
}

TEST_F(ComponentStream, DescendantsStoreWhatTheyChange) {
    const std::string_view base = "object Main: TMainNode Text = 'old' Next = A\n"
                                  "  object A: TNode Text = 'a' Next = B end\n"
                                  "  object B: TNode Text = 'b' end\n"
                                  "  object C: TNode Text = 'c' end end\n";
    TMainNode ancestor, heir, copy;
    ReadNode(base, ancestor);
    ReadNode(base, copy);
    ReadNode("object Main: TMainNode Text = 'new' Next = A\n"
             "  object B: TNode Text = 'b2' end\n"
             "  object N: TNode Next = Owner end\n"
             "  object A: TNode Text = 'a' end\n"
             "  object C: TNode Text = 'c' Next = N end end\n",
             heir);
    const std::string changes = Stored(heir, &ancestor);
    EXPECT_EQ(changes, "inherited Main: TMainNode\n"
                       "  Text = 'new'\n"
                       "  inherited B: TNode [0]\n"
                       "    Text = 'b2'\n"
                       "  end\n"
                       "  object N: TNode [1]\n"
                       "    Next = Owner\n"
                       "  end\n"
                       "  inherited A: TNode [2]\n"
                       "    Next = nil\n"
                       "  end\n"
                       "  inherited C: TNode\n"
                       "    Next = N\n"
                       "  end\n"
                       "end\n");
    ReadNode(changes, copy);
    EXPECT_EQ(Stored(copy), Stored(heir));
    EXPECT_EQ(Stored(copy, &heir),
              "inherited Main: TMainNode\n"
              "  inherited B: TNode\n  end\n  inherited N: TNode\n  end\n"
              "  inherited A: TNode\n  end\n  inherited C: TNode\n  end\nend\n");
}

TEST_F(ComponentStream, FramesBringTheirOwnParts) {
    const std::string_view form = "object Main: TMainNode\n"
                                  "  Next = Frame.Inner\n"
                                  "  inline Frame: TFrameNode\n"
                                  "    Next = Inner\n"
                                  "    inherited Inner: TNode\n"
                                  "      Text = 'changed'\n"
                                  "      Next = Main.Inner\n"
                                  "    end\n"
                                  "  end\n"
                                  "  object Inner: TNode\n"
                                  "    Next = Frame\n"
                                  "  end\n"
                                  "end\n";
    TMainNode main;
    ReadNode(form, main);
    EXPECT_EQ(main.ComponentCount(), 2);
    auto* const frame = static_cast<TFrameNode*>(main.FindComponent("Frame"));
    EXPECT_EQ(frame->ComponentCount(), 1);
    EXPECT_EQ(main.Next, frame->FindComponent("Inner"));
    EXPECT_EQ(Stored(main), form);

    // A writer that knows what the frame was made from stores the changes alone.
    TFrameNode model;
    model.Next = static_cast<TNode*>(model.FindComponent("Inner"));
    model.Next->Text = "changed";
    TMemoryStream stream;
    TWriter writer(stream);
    writer.OnFindAncestor = [&](TWriter&, const TComponent& each) -> TComponent* {
        return &each == frame ? &model : nullptr;
    };
    writer.WriteRootComponent(main);
    EXPECT_EQ(TextOf(std::string(stream.Text())), "object Main: TMainNode\n"
                                                  "  Next = Frame.Inner\n"
                                                  "  inline Frame: TFrameNode\n"
                                                  "    inherited Inner: TNode\n"
                                                  "      Next = Main.Inner\n"
                                                  "    end\n"
                                                  "  end\n"
                                                  "  object Inner: TNode\n"
                                                  "    Next = Frame\n"
                                                  "  end\n"
                                                  "end\n");
}

class TPaint : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TColor Color = clNone;
    TCursor Cursor = crDefault;
    TFontCharset Charset = DEFAULT_CHARSET;
};
constexpr TPropInfo PaintProps[] = {
    Published<&TPaint::Color>("Color", {.Default = clNone, .Type = &ColorType}),
    Published<&TPaint::Cursor>("Cursor", {.Default = crDefault, .Type = &CursorType}),
    Published<&TPaint::Charset>("Charset", {.Default = DEFAULT_CHARSET, .Type = &FontCharsetType}),
};
const TClassRecord TPaint::ClassRecord{"TPaint", &TComponent::ClassRecord, CreateObject<TPaint>,
                                       PaintProps};

TEST_F(ComponentStream, StandardIdentsStandForNumbers) {
    RegisterStandardIdents();
    const struct {
        std::string_view Read;
        std::array<int, 3> Values;
        std::string_view Stored;
    } cases[] = {
        {"Color = clWindowText", {clWindowText, 0, 1}, "Color = clWindowText"},
        {"Color = 16711680", {clBlue, 0, 1}, "Color = clBlue"},
        {"Color = -2147483633", {clBtnFace, 0, 1}, "Color = clBtnFace"},
        {"Color = $123456", {0x123456, 0, 1}, "Color = 1193046"},
        {"Cursor = CRSIZE", {clNone, crSizeAll, 1}, "Cursor = crSizeAll"},
        {"Cursor = -11", {clNone, crHourGlass, 1}, "Cursor = crHourGlass"},
        {"Cursor = 5", {clNone, 5, 1}, "Cursor = 5"},
        {"Charset = RUSSIAN_CHARSET", {clNone, 0, 204}, "Charset = RUSSIAN_CHARSET"},
        {"Charset = 0", {clNone, 0, 0}, "Charset = ANSI_CHARSET"},
        {"Charset = 3", {clNone, 0, 3}, "Charset = 3"},
    };
    for (const auto& c : cases) {
        TPaint paint;
        const std::string bytes = BinaryOf("object TPaint " + std::string(c.Read) + " end");
        TReader(bytes).ReadRootComponent(&paint);
        EXPECT_EQ((std::array<int, 3>{paint.Color, paint.Cursor, paint.Charset}), c.Values);
        EXPECT_EQ(Stored(paint), "object TPaint\n  " + std::string(c.Stored) + "\nend\n");
    }
}

/// Registers classes as long as it lives.
struct TRegistered {
    explicit TRegistered(std::vector<const TClassRecord*> classes) : Classes(std::move(classes)) {
        for (const TClassRecord* each : Classes) RegisterClass(*each);
    }
    ~TRegistered() { UnRegisterClasses(Classes); }
    TRegistered(const TRegistered&) = delete;
    TRegistered& operator=(const TRegistered&) = delete;
    std::vector<const TClassRecord*> Classes;
};

TEST_F(ComponentStream, FormsKeepControlsMenusAndActions) {
    const TRegistered registered({&TControl::ClassRecord, &TToolBar::ClassRecord,
                                  &TToolButton::ClassRecord, &TMainMenu::ClassRecord,
                                  &TMenuItem::ClassRecord, &TActionList::ClassRecord,
                                  &TAction::ClassRecord});
    const auto add = [](TComponent* component, std::string_view name, TComponent* parent) {
        component->SetName(name);
        component->SetParentComponent(parent);
        return component;
    };
    const auto stored = [](TForm& form, TForm* ancestor = nullptr) {
        // What every control and item has would hide what they differ in.
        std::string text = Stored(form, ancestor);
        for (const std::string_view line :
             {"Left = 0\n", "Top = 0\n", "Width = 0\n", "Height = 0\n", "Caption = ''\n",
              "Hint = ''\n", "ImageIndex = -1\n", "Height = 22\n", "Top = 22\n"})
            for (std::size_t at = 0; (at = text.find(line)) != std::string::npos;) {
                const std::size_t start = text.rfind('\n', at) + 1;
                text.erase(start, at + line.size() - start);
            }
        return text;
    };
    const auto read = [](const std::string& text, TForm& into) {
        const std::string bytes = BinaryOf(text);
        TReader(bytes).ReadRootComponent(&into);
    };
    TForm form;
    form.SetName("Main");
    form.SetBoundsRect({1, 2, 300, 200});
    form.SetVisible(true);
    TComponent* const actions = add(new TActionList(&form), "Actions", nullptr);
    add(new TAction(&form), "Go", actions);
    TComponent* const menu = add(new TMainMenu(&form), "Menu", nullptr);
    TComponent* const file = add(new TMenuItem(&form), "File", menu);
    add(new TMenuItem(&form), "Quit", file);
    add(new TMenuItem(&form), "Edit", menu);
    TComponent* const panel = add(new TControl(&form), "Panel", &form);
    auto* const bar = static_cast<TToolBar*>(add(new TToolBar(&form), "Bar", panel));
    add(new TToolButton(&form), "New", bar);
    add(new TToolButton(&form), "Open", bar);
    TControl foreign; // belongs to nobody's stream
    foreign.SetParent(static_cast<TControl*>(panel));
    form.SetMainMenu(static_cast<TMainMenu*>(menu));
    form.SetActiveControl(bar);

    EXPECT_EQ(stored(form), "object Main: TForm\n"
                            "  Left = 1\n"
                            "  Top = 2\n"
                            "  Width = 300\n"
                            "  Height = 200\n"
                            "  ActiveControl = Bar\n"
                            "  Menu = Menu\n"
                            "  Visible = True\n"
                            "  object Panel: TControl\n"
                            "    object Bar: TToolBar\n"
                            "      object New: TToolButton\n"
                            "      end\n"
                            "      object Open: TToolButton\n"
                            "        Left = 23\n"
                            "      end\n"
                            "    end\n"
                            "  end\n"
                            "  object Actions: TActionList\n"
                            "    object Go: TAction\n"
                            "    end\n"
                            "  end\n"
                            "  object Menu: TMainMenu\n"
                            "    object File: TMenuItem\n"
                            "      object Quit: TMenuItem\n"
                            "      end\n"
                            "    end\n"
                            "    object Edit: TMenuItem\n"
                            "    end\n"
                            "  end\n"
                            "end\n");
    TForm copy, heir;
    read(Stored(form), copy);
    EXPECT_EQ(Stored(copy), Stored(form));
    EXPECT_TRUE(copy.Visible());

    // A descendant that has other children between and another order.
    read(Stored(form), heir);
    const auto of = [&](std::string_view name) { return heir.FindComponent(name); };
    static_cast<TControl*>(of("New"))->SetParent(nullptr); // goes behind Open
    of("New")->SetParentComponent(of("Bar"));
    of("File")->SetParentComponent(of("Menu"));
    static_cast<TAction*>(of("Go"))->SetActionList(nullptr);
    add(new TAction(&heir), "Stop", of("Actions"));
    of("Go")->SetParentComponent(of("Actions"));
    EXPECT_EQ(stored(heir, &form), "inherited Main: TForm\n"
                                   "  inherited Panel: TControl\n"
                                   "    inherited Bar: TToolBar\n"
                                   "      inherited Open: TToolButton [0]\n"
                                   "      end\n"
                                   "      inherited New: TToolButton [1]\n"
                                   "        Left = 23\n"
                                   "      end\n"
                                   "    end\n"
                                   "  end\n"
                                   "  inherited Actions: TActionList\n"
                                   "    object Stop: TAction [0]\n"
                                   "    end\n"
                                   "    inherited Go: TAction\n"
                                   "    end\n"
                                   "  end\n"
                                   "  inherited Menu: TMainMenu\n"
                                   "    inherited Edit: TMenuItem [0]\n"
                                   "    end\n"
                                   "    inherited File: TMenuItem [1]\n"
                                   "      inherited Quit: TMenuItem\n"
                                   "      end\n"
                                   "    end\n"
                                   "  end\n"
                                   "end\n");
    read(Stored(heir, &form), copy);
    EXPECT_EQ(Stored(copy), Stored(heir));
}

class TLoop : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TLoop* Self() const { return const_cast<TLoop*>(this); }
};
constexpr TPropInfo LoopProps[] = {Published<&TLoop::Self>("Self")};
const TClassRecord TLoop::ClassRecord{"TLoop", &TPersistent::ClassRecord, nullptr, LoopProps};

TEST_F(ComponentStream, ObjectsThatAreNoComponents) {
    TColumn column;
    column.Title = "t";
    column.FPen.Width = 7;
    TMemoryStream stream;
    stream.WriteText("before");
    TWriter(stream).WriteAsComponent(column, "Data");
    stream.WriteText("behind");
    EXPECT_EQ(TextOf(std::string(stream.Text().substr(6))),
              "object Data: TColumn\n  Title = 't'\n  Pen.Width = 7\n  Pen.Ink = 0\nend\n");

    stream.SetPosition(6);
    TColumn read;
    TReader(stream).ReadAsComponent(read);
    EXPECT_EQ(read.Title, "t");
    EXPECT_EQ(read.FPen.Width, 7);
    EXPECT_EQ(stream.Text().substr(static_cast<std::size_t>(stream.Position())), "behind");

    // An object that holds itself has no end.
    TLoop loop;
    EXPECT_EQ(ErrorOf([&] { TWriter(stream).WriteAsComponent(loop, ""); }),
              "EWriteError: objects nested deeper than 512 levels");
}

TEST(ComponentStreamValues, ReadersConvert) {
    const struct {
        std::string_view Value;
        long double Float;
        std::int64_t Currency;
        std::string_view Error; ///< of the currency
    } cases[] = {
        {"02 FF", -1, -10000, ""},
        {"10 39 30 00 00 00 00 00 00", 1.2345L, 12345, ""},
        {"15 00 00 00 00 00 00 02 40", 2.25L, 22500, ""},
        {"0F 00 00 80 3F", 1, 10000, ""},
        {"13 FF FF FF FF FF FF FF 7F", 9223372036854775807.0L, 0,
         "EReaderError: offset 0: too great for a currency"},
    };
    for (const auto& c : cases) {
        const std::string bytes = Bytes(c.Value);
        EXPECT_EQ(TReader(bytes).ReadFloat(), c.Float) << c.Value;
        std::int64_t currency = 0;
        EXPECT_EQ(ErrorOf([&] { currency = TReader(bytes).ReadCurrency(); }), c.Error);
        EXPECT_EQ(currency, c.Currency) << c.Value;
    }
}

TEST(ComponentStreamValues, TextsAreWrittenAndReadBack) {
    const struct {
        std::string Text;
        std::string_view Start;
        std::u16string Wide;
    } cases[] = {
        {"", "06 00", u""},
        {"\x7F", "06 01", u"\x7F"},
        {"\xC3\xA9", "14 02 00 00 00", u"\u00E9"},
        {"\xF0\x9F\x98\x80", "14 04 00 00 00", u"\U0001F600"},
        {"\xE9", "14 01 00 00 00", u"\uFFFD"}, // no UTF-8, and kept
        {std::string(256, 'a'), "0C 00 01 00 00", std::u16string(256, u'a')},
    };
    for (const auto& c : cases) {
        TMemoryStream stream;
        TWriter(stream, 1).WriteString(c.Text);
        const std::string bytes(stream.Text());
        EXPECT_EQ(bytes, Bytes(c.Start) + c.Text);
        EXPECT_EQ(TReader(bytes).ReadString(), c.Text);
        EXPECT_EQ(TReader(bytes).ReadWideString(), c.Wide);
    }
    // The bytes of a code page are the characters of their numbers, UTF-8 or not.
    const std::string latin = Bytes("06 02 C3 A9");
    EXPECT_EQ(TReader(latin).ReadString(), "\u00C3\u00A9");
    EXPECT_EQ(TReader(latin).ReadWideString(), u"\u00C3\u00A9");
    TMemoryStream stream;
    TWriter(stream).WriteWideString(u"\xD83D\xDE00\xD800");
    EXPECT_EQ(TReader(stream.Text()).ReadString(), "\xF0\x9F\x98\x80\xED\xA0\x80");
    EXPECT_EQ(TReader(stream.Text()).ReadWideString(), u"\xD83D\xDE00\xD800");
}

// --- Resources --------------------------------------------------------------------------------

TEST(FormResource, HeadsThereAndBack) {
    const struct {
        std::string_view Head;
        std::uint16_t Type, Ordinal, Flags;
        std::string_view Name;
        std::string_view Error;
    } cases[] = {
        {"FF 0A 00 'TMAIN' 00 30 10 03 00 00 00", 10, 0, 0x1030, "TMAIN", ""},
        {"FF 0A 00 FF 02 01 00 00 02 00 00 00", 10, 0x102, 0, "", ""},
        {"FF 05 00 'X' 00 30 10 04 00 00 00", 0, 0, 0, "",
         "EReadError: the resource ends: 3 of 4 bytes"},
        {"'TPF0'", 0, 0, 0, "", "EReadError: no resource: it does not begin with a numbered type"},
        {"FF 0A", 0, 0, 0, "", "EReadError: no resource: a name without an end"},
        {"FF 0A 00 'TMAIN'", 0, 0, 0, "", "EReadError: no resource: a name without an end"},
        {"FF 0A 00 'T' 00 30 10", 0, 0, 0, "", "EReadError: no resource: its head ends too early"},
    };
    for (const auto& c : cases) {
        const std::string bytes = Bytes(c.Head) + "abc";
        TStringStream stream("?" + bytes);
        stream.SetPosition(1);
        TResourceHead head;
        EXPECT_EQ(ErrorOf([&] { head = ReadResourceHead(bytes); }), c.Error) << c.Head;
        EXPECT_EQ(ErrorOf([&] { ReadResourceHead(stream); }), c.Error);
        if (!c.Error.empty()) continue;
        EXPECT_EQ(std::tie(head.Type, head.Ordinal, head.Flags),
                  std::tie(c.Type, c.Ordinal, c.Flags));
        EXPECT_EQ(head.Name, c.Name);
        EXPECT_EQ(ResourceHeadBytes(head),
                  bytes.substr(0, static_cast<std::size_t>(head.DataAt())));
        EXPECT_EQ(stream.Position(), head.DataAt() + 1);
    }
}

TEST(FormResource, HoldsComponentsUnderTheirClass) {
    TMainNode node;
    node.Text = "n";
    TMemoryStream stream;
    stream.WriteText("??");
    WriteComponentRes(stream, node);
    WriteComponent(stream, node);
    const std::string form = Bytes("'TPF0' 09 'TMainNode' 00 04 'Text' 06 01 'n' 00 00");
    EXPECT_EQ(stream.Text(),
              "??" + Bytes("FF 0A 00 'TMAINNODE' 00 30 10 19 00 00 00") + form + form);

    stream.SetPosition(2);
    TMainNode read, again;
    ReadComponentRes(stream, &read);
    ReadComponent(stream, &again);
    EXPECT_EQ(read.Text + again.Text, "nn");
    EXPECT_EQ(stream.Position(), stream.Size());
}

} // namespace
} // namespace tarn
