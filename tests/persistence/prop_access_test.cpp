#include "ErrorOf.h"
#include "qsDataHndl2.h"
#include "rtl/DateUtils.h"
#include "vcl/Graphics.h"
#include "vcl/TComponent.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarn {
namespace {

enum TLetter : std::uint8_t { a, b, c };
constexpr std::string_view LetterNames[] = {"a", "b", "c"};
/// Ordinals that do not begin at 0, one of them outside a set.
enum TFar : std::uint8_t { farLow = 30, farMid, farHigh };
constexpr std::string_view FarNames[] = {"farLow", "farMid", "farHigh"};
enum TOnly : std::uint8_t { only };
constexpr std::string_view OnlyNames[] = {"only"};

} // namespace

template <> inline constexpr TTypeInfo TypeInfoOf<TLetter> = EnumType("TLetter", LetterNames);
template <> inline constexpr TTypeInfo TypeInfoOf<TFar> = EnumType("TFar", FarNames, 30);
template <> inline constexpr TTypeInfo TypeInfoOf<TOnly> = EnumType("TOnly", OnlyNames);

namespace {

// The names that count, in other letters, and names that do not.
constexpr TTypeInfo ShoutedColorType = IntegerType<std::int32_t>("TCOLOR");
constexpr TTypeInfo ShoutedDateTimeType = {"TDATETIME", tkFloat};
constexpr TTypeInfo ShoutedDateType = {"TDATE", tkFloat};
constexpr TTypeInfo ShoutedTimeType = {"TTIME", tkFloat};
constexpr TTypeInfo MyColorType = IntegerType<std::int32_t>("TMyColor");
constexpr TTypeInfo MyDateType = {"TMyDate", tkFloat};

class TFont : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 8;
    TFont* Next = nullptr;
};
constexpr TPropInfo FontProps[] = {Published<&TFont::Size>("Size"),
                                   Published<&TFont::Next>("Next")};
constinit const TClassRecord TFont::ClassRecord{"TFont", &TPersistent::ClassRecord,
                                                CreateObject<TFont>, FontProps};

/// A font with one property more.
class TBigFont : public TFont {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    int Weight = 0;
};
constexpr TPropInfo BigFontProps[] = {Published<&TBigFont::Weight>("Weight")};
constinit const TClassRecord TBigFont::ClassRecord{"TBigFont", &TFont::ClassRecord,
                                                   CreateObject<TBigFont>, BigFontProps};

constexpr TClassRecord Inner{"TInner", &TPersistent::ClassRecord};
constexpr const TClassRecord* SampleFields[] = {&TFont::ClassRecord, &Inner};

class TSample : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Int = 0;
    std::uint8_t Octet = 0;
    std::uint32_t Cardinal = 0;
    TColor Color = 0;
    char Char = 0;
    bool Flag = false;
    TLetter Letter = a;
    TOnly Only = only;
    TSet<TLetter> Letters;
    TSet<TFar> Fars;
    double Float = 0, Date = 0, Time = 0, Moment = 0, MyDate = 0;
    float Single = 0;
    std::string Text;
    TShortString<3> Brief;
    std::u16string Wide;
    TFont* Font = nullptr;
    TNotifyEvent OnClick;
    char16_t WideChar = 0;
    TVariant Variant;
    std::int64_t Huge = 0;
    int Fixed() const { return 5; }
};
constexpr TPropInfo SampleProps[] = {
    Published<&TSample::Int>("Int"),
    Published<&TSample::Octet>("Octet"),
    Published<&TSample::Cardinal>("Cardinal"),
    Published<&TSample::Color>("Color", {.Type = &ShoutedColorType}),
    Published<&TSample::Int>("MyColor", {.Type = &MyColorType}),
    Published<&TSample::Char>("Char"),
    Published<&TSample::Flag>("Flag"),
    Published<&TSample::Letter>("Letter"),
    Published<&TSample::Only>("Only"),
    Published<&TSample::Letters>("Letters"),
    Published<&TSample::Fars>("Fars"),
    Published<&TSample::Float>("Float"),
    Published<&TSample::Date>("Date", {.Type = &ShoutedDateType}),
    Published<&TSample::Time>("Time", {.Type = &ShoutedTimeType}),
    Published<&TSample::Moment>("Moment", {.Type = &ShoutedDateTimeType}),
    Published<&TSample::MyDate>("MyDate", {.Type = &MyDateType}),
    Published<&TSample::Single>("Single"),
    Published<&TSample::Text>("Text"),
    Published<&TSample::Brief>("Brief"),
    Published<&TSample::Wide>("Wide"),
    Published<&TSample::Font>("Font"),
    Published<&TSample::OnClick>("OnClick"),
    Published<&TSample::WideChar>("WideChar"),
    Published<&TSample::Variant>("Variant"),
    Published<&TSample::Huge>("Huge"),
    Published<&TSample::Fixed>("Fixed"),
};
constinit const TClassRecord TSample::ClassRecord{
    "TSample", &TComponent::ClassRecord, CreateObject<TSample>, SampleProps, {}, SampleFields};

/// Declares a field class of the name that its ancestor uses, and another.
constexpr TClassRecord OtherFont{"tfont", &TPersistent::ClassRecord};
constexpr const TClassRecord* HeirFields[] = {&OtherFont, &TBigFont::ClassRecord};
class THeir : public TSample {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
constinit const TClassRecord THeir::ClassRecord{
    "THeir", &TSample::ClassRecord, CreateObject<THeir>, {}, {}, HeirFields};

const TPropInfo& Prop(std::string_view name) {
    return *TSample::ClassRecord.FindProp(name);
}

TEST(PropAccess, TextsOfEveryKind) {
    const struct {
        std::string_view Prop, Text;
        std::optional<std::string_view> Back = {}; ///< when it is not the same
    } cases[] = {
        {"Int", "-2147483648"},
        {"Int", " $1F", "31"},
        {"Int", "$FFFFFFFF", "-1"},
        {"Octet", "255"},
        {"Cardinal", "4294967295"},
        {"Cardinal", "$FFFFFFFE", "4294967294"},
        {"Color", "clRed"},
        {"Color", "CLINFOBK", "clInfoBk"},
        {"MyColor", "255"},
        {"Char", "x"},
        {"Char", "\xE4z", "\xE4"},
        {"Char", "", std::string_view("\0", 1)},
        {"Flag", "True"},
        {"Letter", "B", "b"},
        {"Letters", "[a,c]"},
        {"Letters", "[]"},
        {"Fars", "[farHigh,farMid]", "[farMid]"}, // 32 is outside a set
        {"Float", "-0.5"},
        {"Float", " 1e20 ", "1E20"},
        {"Date", "7/14/2026"},
        {"Date", "7/14/2026 6:30 am", "7/14/2026 6:30:00 AM"},
        {"Time", "15:05", "3:05:00 PM"},
        {"Moment", "12/29/1899 6:00:00 PM"},
        {"MyDate", "46217.25"},
        {"Single", "0.1", "0.100000001490116"},
        {"Text", " any\ntext "},
        {"Brief", "long", "lon"},
        {"Wide", "\xC3\xA4\xF0\x9F\x8C\xB2"},
    };
    for (const auto& row : cases) {
        TSample sample;
        sample.Letters = {b};
        SetPropByText(sample, Prop(row.Prop), row.Text);
        EXPECT_EQ(GetPropAsText(sample, Prop(row.Prop)), row.Back.value_or(row.Text)) << row.Prop;
    }
    TSample sample;
    sample.Color = 0x123456;
    sample.Letter = static_cast<TLetter>(7);
    sample.Letters = TSet<TLetter>::FromMask(0x8000000A);
    EXPECT_EQ(GetPropAsText(sample, Prop("Color")), "");
    EXPECT_EQ(GetPropAsText(sample, Prop("Letter")), "");
    EXPECT_EQ(GetPropAsText(sample, Prop("Letters")), "[b]");
    sample.Moment = 1e9;
    EXPECT_THROW(GetPropAsText(sample, Prop("Moment")), EConvertError);
}

TEST(PropAccess, RefusedTextsChangeNothing) {
    const struct {
        std::string_view Prop, Text, Error;
    } cases[] = {
        {"Int", "2147483648", "EConvertError: '2147483648' is not a valid integer value"},
        {"Int", "", "EConvertError: '' is not a valid integer value"},
        {"Octet", "256", "EConvertError: 256 is outside 0 to 255"},
        {"Cardinal", "-1", "EConvertError: -1 is outside 0 to 4294967295"},
        {"Color", "255", "EDataHandlingError: 255 is unacceptable value for TColor."},
        {"Color", "$000000FF", "EDataHandlingError: $000000FF is unacceptable value for TColor."},
        {"Flag", "1", "EDataHandlingError: 1 is unacceptable value for type."},
        {"Letter", "", "EDataHandlingError:  is unacceptable value for type."},
        {"Letters", "abc", "EDataHandlingError: abc is incorrect value for set."},
        {"Letters", "[a,d]", "EDataHandlingError: d is unacceptable value for type."},
        {"Float", "1e400", "EConvertError: 1E400 is too great for a Double"},
        {"Float", "x", "EConvertError: 'x' is not a valid floating point value"},
        {"Single", "-1e39", "EConvertError: -1E39 is too great for a Single"},
        {"Date", "x", "EConvertError: 'x' is not a valid date and time"},
        {"Time", "7/14/2026", "EConvertError: '7/14/2026' is not a valid time"},
        {"Fixed", "6", "EDataHandlingError: property Fixed of TSample cannot be set"},
        {"Font", "x", "EDataHandlingError: Unsupported variable type."},
        {"OnClick", "x", "EDataHandlingError: Unsupported variable type."},
        {"WideChar", "x", "EDataHandlingError: Unsupported variable type."},
        {"Variant", "x", "EDataHandlingError: Unsupported variable type."},
        {"Huge", "1", "EDataHandlingError: Unsupported variable type."},
        {"None", "1", "EDataHandlingError: Property by name ''None'' does not exist."},
        {"Font.", "1", "EDataHandlingError: Property by name ''Font.'' does not exist."},
    };
    for (const auto& row : cases) {
        TSample sample;
        TFont font;
        sample.Font = &font;
        sample.Color = clRed;
        sample.Letters = {a, b};
        sample.Octet = 9;
        EXPECT_EQ(ErrorOf([&] { SetPropByText(sample, row.Prop, row.Text); }), row.Error);
        const bool same = sample.Color == clRed && sample.Octet == 9 && sample.Font == &font &&
                          sample.Letters == TSet<TLetter>{a, b} && sample.Int == 0 &&
                          sample.Float == 0 && sample.Single == 0;
        EXPECT_TRUE(same) << row.Prop;
    }
    TSample sample;
    for (const std::string_view name : {"Font", "OnClick", "WideChar", "Variant", "Huge"})
        EXPECT_EQ(ErrorOf([&] { GetPropAsText(sample, name); }),
                  "EDataHandlingError: Unsupported variable type.");
}

TEST(PropAccess, RawSlotsKeepWhatTextCannot) {
    TSample from, to;
    TFont font;
    from.Int = -7;
    from.Cardinal = 0xFFFFFFFF;
    from.Color = 0x123456;
    from.Char = '\xFF';
    from.Letters = TSet<TLetter>::FromMask(0x80000005);
    from.Font = &font;
    for (const std::string_view name : {"Int", "Cardinal", "Color", "Char", "Letters", "Font"}) {
        void* slot = nullptr;
        GetPropAsPtr(from, Prop(name), slot);
        SetPropByPtr(to, name, slot);
    }
    EXPECT_EQ(to.Int, -7);
    EXPECT_EQ(to.Cardinal, 0xFFFFFFFF);
    EXPECT_EQ(to.Color, 0x123456);
    EXPECT_EQ(to.Char, '\xFF');
    EXPECT_EQ(to.Letters.Mask(), 0x80000005);
    EXPECT_EQ(to.Font, &font);

    from.Float = 0.1;
    long double number = 0;
    void* slot = &number;
    GetPropAsPtr(from, "Float", slot);
    SetPropByPtr(to, Prop("Float"), slot);
    EXPECT_EQ(to.Float, 0.1);
    for (const std::string_view name : {"Text", "Brief", "Wide"}) {
        std::string text;
        slot = &text;
        SetPropByText(from, name, "ab");
        GetPropAsPtr(from, name, slot);
        SetPropByPtr(to, name, slot);
        EXPECT_EQ(GetPropAsText(to, name), "ab");
    }
    for (const std::string_view name : {"OnClick", "WideChar", "Variant", "Huge"}) {
        EXPECT_EQ(ErrorOf([&] { GetPropAsPtr(from, name, slot); }),
                  "EDataHandlingError: Unsupported variable type.");
        EXPECT_EQ(ErrorOf([&] { SetPropByPtr(from, name, nullptr); }),
                  "EDataHandlingError: Unsupported variable type.");
    }
    EXPECT_EQ(ErrorOf([&] { SetPropByPtr(to, "Font", static_cast<TObject*>(&from)); }),
              "EConvertError: cannot assign a TSample to a TFont");
    slot = &number;
    EXPECT_THROW(SetPropByPtr(to, "Fixed", slot), EDataHandlingError);
}

TEST(PropAccess, Variants) {
    TSample sample;
    TFont font;
    const std::string_view unsupported = "EDataHandlingError: Unsupported variable type.";
    const struct {
        std::string_view Prop;
        TVariant Value, Back;
        std::string_view Error = {};
    } cases[] = {
        {"Int", 7, 7},
        {"Int", "$1F", 31},
        {"Int", 2.5, 2},
        {"Int", 2147483648LL, 2, "EConvertError: 2147483648 is outside -2147483648 to 2147483647"},
        {"Cardinal", 4294967295LL, 4294967295LL},
        {"Color", 0x123456, 0x123456},
        {"Color", "clRed", 255},
        {"Char", 256, 0, "EConvertError: 256 is outside 0 to 255"},
        {"Flag", true, 1},
        {"Letter", "c", 2},
        {"Letter", 3, 2, "EConvertError: 3 is outside 0 to 2"},
        {"Only", 1, 0, "EConvertError: 1 is outside 0 to 0"},
        {"Letters", "[a,b]", 3},
        {"Letters", 0x80000004LL, -2147483644LL}, // the same bits
        {"Float", 1, 1.0},
        {"Date", "12/31/1899", 1.0},
        {"Float", static_cast<TObject*>(&font), 1.0, "EConvertError: an object is not a number"},
        {"Text", 1.5, "1.5"},
        {"Text", {}, ""},
        {"Wide", "w", "w"},
        {"Font", static_cast<TObject*>(&font), static_cast<TObject*>(&font)},
        {"Font", static_cast<TObject*>(&sample), static_cast<TObject*>(&font),
         "EConvertError: cannot assign a TSample to a TFont"},
        {"Font", {}, static_cast<TObject*>(nullptr)},
        {"Variant", 2.5, 2.5},
        {"Fixed", 6, 5, "EDataHandlingError: property Fixed of TSample cannot be set"},
        {"Huge", 1, {}, unsupported},
        {"WideChar", 1, {}, unsupported},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(ErrorOf([&] { SetPropByVariant(sample, row.Prop, row.Value); }), row.Error);
        if (row.Error == unsupported)
            EXPECT_EQ(ErrorOf([&] { GetPropAsVariant(sample, row.Prop); }), unsupported);
        else
            EXPECT_EQ(GetPropAsVariant(sample, row.Prop), row.Back) << row.Prop;
    }
}

TEST(PropAccess, Sets) {
    const TTypeInfo& type = TypeInfoOf<TSet<TLetter>>;
    const struct {
        std::string_view Text;
        std::uint32_t Mask;
        std::string_view Error = {};
    } cases[] = {
        {"[]", 0},           {"[ a , c ]", 5},
        {"[A,,b]", 3},       {"[a,c", 1}, // the open end is dropped
        {"[a,nonsense", 1},               // unread
        {"text [b] c,", 6},               // names behind the end count
        {"[b] d,", 0, "d"},  {"[a]]]", 1},
        {"[a] tail", 1},     {"] [b,", 2},
        {"[ ] ]", 0},        {"abc", 0, "!abc"},
        {"", 0, "!"},        {"[", 0, "!["},
        {"[a", 0, "![a"},    {"[ ] ", 0, "![ ] "},
        {"[a b]", 0, "a b"}, {"[a,[b]", 0, "[b"}, // from the first bracket on
    };
    for (const auto& row : cases) {
        std::uint32_t mask = 0;
        std::string error;
        if (row.Error.starts_with('!'))
            error =
                Format("EDataHandlingError: %s is incorrect value for set.", {row.Error.substr(1)});
        else if (!row.Error.empty())
            error = Format("EDataHandlingError: %s is unacceptable value for type.", {row.Error});
        EXPECT_EQ(ErrorOf([&] { mask = StrToSet(type, row.Text); }), error) << row.Text;
        EXPECT_EQ(mask, row.Mask) << row.Text;
    }
    for (std::uint32_t mask = 0; mask < 8; ++mask)
        EXPECT_EQ(StrToSet(type, SetToStr(type, mask)), mask);
    const TTypeInfo& fars = TypeInfoOf<TSet<TFar>>;
    EXPECT_EQ(SetToStr(fars, 0xC0000001), "[farLow,farMid]");
    // Ordinals outside 0 to 31 are no bits.
    EXPECT_EQ(StrToSet(fars, "[farMid,farHigh]"), 0x80000000);
    const TTypeInfo below = EnumType("TBelow", LetterNames, -1);
    EXPECT_EQ(StrToSet({"TBelows", tkSet, 0, 0, {}, &below}, "[a,b]"), 1u);
}

TEST(PropAccess, Enumerations) {
    const TTypeInfo& type = TypeInfoOf<TFar>;
    EXPECT_EQ(EnumToStr(type, 29) + EnumToStr(type, 30) + EnumToStr(type, 32) + EnumToStr(type, 33),
              "farLowfarHigh");
    EXPECT_EQ(StrToEnum(type, "FARMID"), 31);
    EXPECT_TRUE(ContainsIn(type, "farhigh"));
    EXPECT_FALSE(ContainsIn(type, "far"));
    EXPECT_FALSE(ContainsIn(type, " farLow"));
    TStringList names{"old"};
    FillEnumNames(type, names);
    EXPECT_EQ(names.Count(), 3);
    EXPECT_EQ(names[0] + names[2], "farLowfarHigh");
}

// Other names for the properties of samples and fonts.
constexpr TPropInfo OtherSampleProps[] = {Published<&TSample::Font>("Other")};
constexpr TPropInfo OtherFontProps[] = {Published<&TFont::Size>("Length")};
constexpr TClassRecord OtherSampleRecord{"TOther", nullptr, nullptr, OtherSampleProps};
constexpr TClassRecord OtherFontRecord{"TOtherFont", nullptr, nullptr, OtherFontProps};
const TClassRecord& OtherNames(const TObject& object) {
    return object.InheritsFrom(TSample::ClassRecord) ? OtherSampleRecord : OtherFontRecord;
}

TEST(PropAccess, Paths) {
    TSample sample;
    TFont first;
    TBigFont second;
    sample.Font = &first;
    first.Next = &second;
    const auto provider = TTypeInfoProvider::Of<OtherNames>();
    const struct {
        std::string_view Path;
        const TPropInfo* Prop;
        TObject* Owner;
        TTypeInfoProvider Provider = {};
    } cases[] = {
        {"int", &SampleProps[0], &sample},
        {"Font.SIZE", &FontProps[0], &first},
        {"Font.Next.Weight", &BigFontProps[0], &second},
        {"Font.Weight", nullptr, &sample},          // the other font has it
        {"Int.Anything", &SampleProps[0], &sample}, // a kept leniency
        {"Font.Size.x.y", &FontProps[0], &first},
        {"Font.Next.Next.Size", &FontProps[1], &second}, // null below
        {"Font.none.Size", nullptr, &sample},
        {"Font.", nullptr, &sample},
        {".Font", nullptr, &sample},
        {"", nullptr, &sample},
        {"Other.Length", &OtherFontProps[0], &first, provider},
        {"Other.Size", nullptr, &sample, provider},
        {"Font.Length", nullptr, &sample, provider},
    };
    for (const auto& row : cases) {
        TObject* owner = &sample;
        EXPECT_EQ(FindPropInfo(owner, row.Path, row.Provider), row.Prop) << row.Path;
        EXPECT_EQ(owner, row.Owner) << row.Path;
        if (row.Provider) continue;
        TPropRef ref(row.Path);
        for (int pass = 0; pass < 2; ++pass) { // looked up, and remembered
            owner = &sample;
            EXPECT_EQ(ref.Find(owner), row.Prop) << row.Path;
            EXPECT_EQ(owner, row.Owner) << row.Path;
        }
    }
    TObject* nothing = nullptr;
    EXPECT_EQ(FindPropInfo(nothing, "Int"), nullptr);

    // A remembered path follows objects of other classes.
    TPropRef weight("Font.Weight");
    TObject* owner = &sample;
    EXPECT_EQ(weight.Find(owner), nullptr);
    sample.Font = &second;
    EXPECT_EQ(weight.Find(owner), &BigFontProps[0]);
    EXPECT_EQ(owner, &second);
    EXPECT_NO_THROW(TPropRef("a.b.c.d.e.f.g.h"));
    EXPECT_THROW(TPropRef("a.b.c.d.e.f.g.h."), EListError);

    EXPECT_EQ(GetPropAsText(sample, "Int.Anything"), "0");
}

TEST(PropAccess, FormsByPath) {
    TSample sample;
    TFont font;
    sample.Font = &font;
    const auto provider = TTypeInfoProvider::Of<OtherNames>();
    const std::string_view path = "Other.Length";
    SetPropByText(sample, path, "700", provider);
    EXPECT_EQ(font.Size, 700);
    EXPECT_EQ(GetPropAsText(sample, path, provider), "700");
    SetPropByVariant(sample, path, 800, provider);
    EXPECT_EQ(font.Size, 800);
    EXPECT_EQ(GetPropAsVariant(sample, path, provider), TVariant(800));
    void* slot = nullptr;
    GetPropAsPtr(sample, path, slot, provider);
    font.Size = 0;
    SetPropByPtr(sample, path, slot, provider);
    EXPECT_EQ(font.Size, 800);
}

/// A component with a name.
struct TNamed : TComponent {
    TNamed(TComponent* owner, std::string_view name) : TComponent(owner) { SetName(name); }
};

TEST(PropAccess, NamePaths) {
    TSample root;
    TNamed panel(&root, "Panel1");
    TNamed button(&panel, "Button1");
    TNamed nameless(&root, "");
    TFont font;
    root.Font = &font;
    const struct {
        std::string_view Path;
        TComponent* Component; ///< null: none
        std::string_view CompPath, PropName;
        const TPropInfo* Prop = nullptr;
    } cases[] = {
        {"panel1.BUTTON1.Caption", &button, "panel1.BUTTON1", "Caption"},
        {"Panel1.Button2.Caption", &panel, "Panel1", "Button2.Caption"},
        {"Panel1.Button1", &panel, "Panel1", "Button1"},
        {"Panel1.NAME", &panel, "Panel1", "NAME", TComponent::ClassRecord.FindProp("Name")},
        {"Panel1.Int", &panel, "Panel1", "Int"}, // the root has it
        {"Panel1.", &panel, "Panel1", ""},
        {"Panel1..Caption", &panel, "Panel1", ".Caption"},
        {"Panel1", &root, "", "Panel1"},
        {"Font.Size", &root, "", "Font.Size", &FontProps[0]},
        {".Caption", &root, "", ".Caption"},
        {"..", &root, "", ".."},
        {"", nullptr, "", ""},
    };
    for (const auto& row : cases) {
        std::string compPath = "old", propName = "old";
        EXPECT_EQ(AnalyseNamePath(&root, row.Path, compPath, propName), row.Component);
        EXPECT_EQ(compPath, row.CompPath) << row.Path;
        EXPECT_EQ(propName, row.PropName) << row.Path;
        // The path may lie where one of the results comes.
        std::string front(row.Path), behind, before, rest(row.Path);
        AnalyseNamePath(&root, front, front, behind);
        AnalyseNamePath(&root, rest, before, rest);
        EXPECT_EQ(std::pair(front, behind), std::pair(compPath, propName));
        EXPECT_EQ(std::pair(before, rest), std::pair(compPath, propName));
        TAnalysisFindings findings{"old", "old", &button, &FontProps[1]};
        EXPECT_EQ(AnalyseNamePath(&root, row.Path, findings), row.Component != nullptr);
        EXPECT_EQ(findings.CompPath, compPath);
        EXPECT_EQ(findings.PropName, propName);
        EXPECT_EQ(findings.Instance, row.Component ? row.Component : &root);
        EXPECT_EQ(findings.PropInfo, row.Prop) << row.Path;
    }
    EXPECT_EQ(FindComponentEx(&root, "Panel1.Button1"), &button);
    for (const std::string_view path : {"", "Button1", "Panel1.", ".Panel1", "Panel1.Button1.x"})
        EXPECT_EQ(FindComponentEx(&root, path), nullptr) << path;
}

TEST(PropAccess, FieldClasses) {
    THeir heir;
    TSample sample;
    EXPECT_EQ(GetFieldClass(heir, "TFONT"), &OtherFont); // the nearest class's own
    EXPECT_EQ(GetFieldClass(heir, "TInner"), &Inner);    // an ancestor's
    EXPECT_EQ(GetFieldClass(sample, "TFONT"), &TFont::ClassRecord);
    EXPECT_EQ(GetFieldClass(sample, "TBigFont"), nullptr);
    RegisterClass(TBigFont::ClassRecord);
    EXPECT_EQ(GetFieldClass(sample, "tbigfont"), &TBigFont::ClassRecord);

    std::vector<const TClassRecord*> registered{&TSample::ClassRecord};
    RegisterFieldClasses(heir, registered);
    const std::vector<const TClassRecord*> lacking{&OtherFont, &Inner};
    EXPECT_EQ(registered, lacking);
    EXPECT_EQ(GetClass("TFont"), &OtherFont);
    UnRegisterFieldClasses(registered);
    EXPECT_EQ(GetClass("TFont"), nullptr);
    EXPECT_EQ(GetClass("TBigFont"), &TBigFont::ClassRecord); // known before
    UnRegisterClass(TBigFont::ClassRecord);
}

TEST(Colors, HaveNames) {
    EXPECT_EQ(ColorNames().size(), 43u);
    for (const TColorName& name : ColorNames()) {
        std::string ident;
        TColor color = 1;
        EXPECT_TRUE(ColorToIdent(name.Color, ident) && IdentToColor(ident, color));
        EXPECT_EQ(ident, name.Ident);
        EXPECT_EQ(color, name.Color);
        EXPECT_EQ(StringToColor(ColorToString(color)), color);
    }
    for (unsigned number = 0; number < 25; ++number)
        EXPECT_EQ(ColorNames()[16 + number].Color, SystemColor(number));
    const std::pair<TColor, std::string_view> texts[] = {
        {0x0000FF, "clRed"},
        {0x808080, "clGray"},
        {SystemColor(15), "clBtnFace"},
        {SystemColor(24), "clInfoBk"},
        {0x20000000, "clDefault"},
        {0x123456, "$00123456"},
        {SystemColor(25), "$80000019"},
    };
    for (const auto& [color, text] : texts) {
        EXPECT_EQ(ColorToString(color), text);
        EXPECT_EQ(StringToColor(text), color);
    }
    EXPECT_THROW(StringToColor("clNavi"), EConvertError);
}

} // namespace
} // namespace tarn
