#include "ErrorOf.h"
#include "rtl/SysUtils.h"
#include "rtl/TObject.h"
#include "vcl/Graphics.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarn {
namespace {

enum TSuit : std::uint8_t { suClubs, suHearts, suSpades };
constexpr std::string_view SuitNames[] = {"suClubs", "suHearts", "suSpades"};

} // namespace

template <> inline constexpr TTypeInfo TypeInfoOf<TSuit> = EnumType("TSuit", SuitNames);

namespace {

/// One property of every kind that reads and writes its data member.
class TSample : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    bool Flag = false;
    std::int8_t Short = 0;
    std::uint8_t Octet = 0;
    std::int16_t Small = 0;
    std::uint16_t Word = 0;
    std::int32_t Integer = 0;
    std::uint32_t Cardinal = 0;
    char Char = 0;
    wchar_t Wide = 0;
    float Single = 0;
    double Double = 0;
    std::string Text;
    TSuit Suit = suClubs;
    TSet<TSuit> Suits;
    TSample* Next = nullptr;
    std::int64_t Huge = 0;
    TShortString<4> Brief;
    std::u16string WideText;
    TVariant Variant;
    TNotifyEvent OnChange;
};

constexpr TPropInfo SampleProps[] = {
    Published<&TSample::Flag>("Flag", {.Default = true}),
    Published<&TSample::Short>("Short"),
    Published<&TSample::Octet>("Octet"),
    Published<&TSample::Small>("Small"),
    Published<&TSample::Word>("Word"),
    Published<&TSample::Integer>("Integer", {.Default = 0, .Type = &ColorType}),
    Published<&TSample::Cardinal>("Cardinal"),
    Published<&TSample::Char>("Char"),
    Published<&TSample::Wide>("Wide"),
    Published<&TSample::Single>("Single"),
    Published<&TSample::Double>("Double"),
    Published<&TSample::Text>("Text"),
    Published<&TSample::Suit>("Suit", {.Default = suHearts}),
    Published<&TSample::Suits>("Suits"),
    Published<&TSample::Next>("Next"),
    Published<&TSample::Huge>("Huge"),
    Published<&TSample::Brief>("Brief"),
    Published<&TSample::WideText>("WideText"),
    Published<&TSample::Variant>("Variant"),
    Published<&TSample::OnChange>("OnChange"),
};
const TClassRecord TSample::ClassRecord{"TSample", &TPersistent::ClassRecord, CreateObject<TSample>,
                                        SampleProps};

/// Properties behind accessors, and one that hides the ancestor's of the same name.
class TDerived : public TSample {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Twice() const { return FTwice; }
    void SetTwice(int value) { FTwice = 2 * value; }
    const std::string& Name() const { return FName; }
    std::string Hidden = "derived";

private:
    int FTwice = 0;
    std::string FName = "fixed";
};

constexpr TPropInfo DerivedProps[] = {
    Published<&TDerived::Twice, &TDerived::SetTwice>(
        "Twice", {.IsStored =
                      [](const TObject& object) {
                          return static_cast<const TDerived&>(object).Twice() != 0;
                      }}),
    Published<&TDerived::Name>("Name"),
    Published<&TDerived::Hidden>("Text"),
};
const TClassRecord TDerived::ClassRecord{"TDerived", &TSample::ClassRecord, CreateObject<TDerived>,
                                         DerivedProps};

const TPropInfo& Prop(const TObject& object, std::string_view name) {
    const TPropInfo* const prop = object.ClassType().FindProp(name);
    if (!prop) throw EInvalidOperation(name);
    return *prop;
}

template <class Slot> Slot Value(const TObject& object, std::string_view name) {
    Slot slot{};
    Prop(object, name).Get(object, &slot);
    return slot;
}

template <class Slot> void SetValue(TObject& object, std::string_view name, Slot slot) {
    Prop(object, name).Set(object, &slot);
}

TEST(TypInfo, OrdinalSlots) {
    const struct {
        std::string_view Name;
        TTypeKind Kind;
        std::string_view TypeName;
        std::int64_t Least, Greatest;
    } cases[] = {
        {"Flag", tkEnumeration, "Boolean", 0, 1},
        {"Short", tkInteger, "ShortInt", -128, 127},
        {"Octet", tkInteger, "Byte", 0, 255},
        {"Small", tkInteger, "SmallInt", -32768, 32767},
        {"Word", tkInteger, "Word", 0, 65535},
        {"Integer", tkInteger, "TColor", -2147483648LL, 2147483647},
        {"Cardinal", tkInteger, "Cardinal", 0, 4294967295LL},
        {"Char", tkChar, "Char", 0, 255},
        {"Wide", tkWChar, "WideChar", 0, 65535},
        {"Suit", tkEnumeration, "TSuit", 0, 2},
    };
    TSample sample;
    for (const auto& c : cases) {
        const TTypeInfo& type = *Prop(sample, c.Name).PropType;
        EXPECT_EQ(type.Kind, c.Kind) << c.Name;
        EXPECT_EQ(type.TypeName(), c.TypeName);
        EXPECT_EQ(type.MinValue, c.Least) << c.Name;
        EXPECT_EQ(type.MaxValue, c.Greatest) << c.Name;
        for (const std::int64_t value : {c.Greatest, c.Least}) {
            const auto slot = static_cast<std::int32_t>(value); // the bits of a Cardinal
            SetValue(sample, c.Name, slot);
            EXPECT_EQ(Value<std::int32_t>(sample, c.Name), slot) << c.Name;
        }
    }
    sample.Char = '\xE4';
    EXPECT_EQ(Value<std::int32_t>(sample, "Char"), 0xE4);
    SetValue<std::int32_t>(sample, "Cardinal", -1);
    EXPECT_EQ(sample.Cardinal, 0xFFFFFFFFu);
    SetValue<std::int32_t>(sample, "Suit", suSpades);
    EXPECT_EQ(sample.Suit, suSpades);
    EXPECT_EQ(Prop(sample, "Suit").PropType->Names[2], "suSpades");
}

TEST(TypInfo, OtherSlots) {
    TDerived sample;
    SetValue<long double>(sample, "Single", 0.5L);
    SetValue<long double>(sample, "Double", -1e300L);
    EXPECT_EQ(sample.Single, 0.5f);
    EXPECT_EQ(Value<long double>(sample, "Single"), 0.5L);
    EXPECT_EQ(Value<long double>(sample, "Double"), static_cast<long double>(-1e300));

    SetValue<std::int32_t>(sample, "Suits", 5);
    EXPECT_EQ(sample.Suits, (TSet<TSuit>{suClubs, suSpades}));
    EXPECT_EQ(Value<std::int32_t>(sample, "Suits"), 5);
    EXPECT_EQ(Prop(sample, "Suits").PropType->Kind, tkSet);
    EXPECT_EQ(Prop(sample, "Suits").PropType->CompType, &TypeInfoOf<TSuit>);

    SetValue<TObject*>(sample, "Next", &sample);
    EXPECT_EQ(sample.Next, &sample);
    EXPECT_EQ(Value<TObject*>(sample, "Next"), &sample);
    EXPECT_EQ(Prop(sample, "Next").PropType->TypeName(), "TSample");

    SetValue<std::string>(sample, "Text", std::string("a\0b", 3)); // the class's own comes first
    EXPECT_EQ(sample.Hidden, std::string_view("a\0b", 3));
    EXPECT_EQ(sample.Text, "");
    EXPECT_EQ(Prop(sample, "Text").PropType->Kind, tkLString);

    const std::int64_t huge = std::numeric_limits<std::int64_t>::min() + 1;
    SetValue<std::int64_t>(sample, "Huge", huge);
    EXPECT_EQ(Value<std::int64_t>(sample, "Huge"), huge);
    SetValue<std::string>(sample, "Brief", "abcde");
    EXPECT_EQ(Value<std::string>(sample, "Brief"), "abcd");
    EXPECT_EQ(Prop(sample, "Brief").PropType->MaxValue, 4);
    SetValue<TVariant>(sample, "Variant", 2.5);
    EXPECT_EQ(Value<TVariant>(sample, "Variant"), TVariant(2.5));
    int calls = 0;
    const auto count = [&calls](TObject*) { ++calls; };
    SetValue(sample, "OnChange", TNotifyEvent::Calling(count).Raw());
    sample.OnChange(nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(Value<TRawMethod>(sample, "OnChange"), TNotifyEvent::Calling(count).Raw());
    SetValue(sample, "OnChange", TRawMethod());
    EXPECT_FALSE(sample.OnChange);

    EXPECT_EQ(ErrorOf([&] { SetValue<long double>(sample, "Single", 1e39L); }),
              "EConvertError: 1E39 is too great for a Single");
    SetValue<long double>(sample, "Double", std::numeric_limits<long double>::infinity());
    EXPECT_EQ(sample.Double, std::numeric_limits<double>::infinity());

    SetValue<std::int32_t>(sample, "Twice", 21);
    EXPECT_EQ(Value<std::int32_t>(sample, "Twice"), 42);
    EXPECT_EQ(Value<std::string>(sample, "Name"), "fixed");
}

TEST(TypInfo, WideTextsTravelAsUtf8) {
    TSample sample;
    const std::pair<std::u16string, std::string> same[] = {
        {u"a\u007f\u0080\u07ff\u0800\uffff", "a\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf"},
        {u"\U00010000\U0010ffff", "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
        {{0xDC00, 0xD800, 'x', 0xDBFF}, "\xed\xb0\x80\xed\xa0\x80x\xed\xaf\xbf"}, // no pairs
    };
    for (const auto& [wide, text] : same) {
        sample.WideText = wide;
        EXPECT_EQ(Value<std::string>(sample, "WideText"), text);
        sample.WideText.clear();
        SetValue(sample, "WideText", text);
        EXPECT_EQ(sample.WideText, wide);
    }
    const std::pair<std::string, std::u16string> broken[] = {
        {"\x80z", u"\ufffdz"},
        {"\xc1\xbf", u"\ufffd\ufffd"},           // overlong
        {"\xe0\x9f\xbf", u"\ufffd\ufffd\ufffd"}, // overlong
        {"\xc3", u"\ufffd"},
        {"\xe2\x82z", u"\ufffd\ufffdz"},
        {"\xf4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"}, // behind the last character
        {"\xff", u"\ufffd"},
    };
    for (const auto& [text, wide] : broken) {
        SetValue(sample, "WideText", text);
        EXPECT_EQ(sample.WideText, wide) << text;
    }
}

TEST(TypInfo, ManyNamesOfOneClassAreToldApart) {
    // More names than the look-up remembers, alike at both ends, asked for in both cases.
    std::vector<std::string> names(1500);
    std::vector<TPropInfo> props(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        names[i] = Format("Property%dOfTheRecord", {i});
        props[i] = {names[i], &TypeInfoOf<int>};
    }
    static TClassRecord record{"TMany"};
    record.Published = props;
    for (int pass = 0; pass < 2; ++pass)
        for (std::size_t i = 0; i < names.size(); ++i)
            ASSERT_EQ(record.FindProp(pass ? UpperCase(names[i]) : names[i]), &props[i]);
    EXPECT_EQ(record.FindProp("Property17OfTheRecorD "), nullptr);
    names[0] = "aaaaaaaa";
    props[0].Name = names[0];
    EXPECT_EQ(record.FindProp("aaaaaaaaa"), nullptr); // the same ends
    // And as many classes that share a name.
    static std::vector<TClassRecord> records(names.size());
    static std::vector<TPropInfo> same(names.size(), TPropInfo{"Name", &TypeInfoOf<int>});
    for (std::size_t i = 0; i < records.size(); ++i) records[i].Published = {&same[i], 1};
    for (int pass = 0; pass < 2; ++pass)
        for (std::size_t i = 0; i < records.size(); ++i)
            ASSERT_EQ(records[i].FindProp("Name"), &same[i]);
    static const TClassRecord heir{"THeir", &record};
    EXPECT_EQ(heir.FindProp(names[7]), &props[7]);
}

TEST(TypInfo, RowsOfAClass) {
    TDerived object;
    std::string names;
    ForEachProp(object.ClassType(), [&](const TPropInfo& prop) {
        names += std::string(prop.Name) + (prop.Set ? " " : "! ");
    });
    EXPECT_EQ(names, "Flag Short Octet Small Word Integer Cardinal Char Wide Single Double Text "
                     "Suit Suits Next Huge Brief WideText Variant OnChange Twice Name! Text ");

    EXPECT_EQ(&Prop(object, "sUIT"), &SampleProps[12]);
    EXPECT_EQ(TDerived::ClassRecord.FindProp("Suite"), nullptr);
    EXPECT_EQ(TDerived::ClassRecord.FindProp(""), nullptr);
    EXPECT_EQ(TSample::ClassRecord.FindProp("Twice"), nullptr);

    EXPECT_EQ(Prop(object, "Flag").Default, 1);
    EXPECT_EQ(Prop(object, "Suit").Default, suHearts);
    EXPECT_TRUE(Prop(object, "Integer").HasDefault()); // 0 is a default, too
    EXPECT_FALSE(Prop(object, "Octet").HasDefault());
    EXPECT_EQ(Prop(object, "Octet").IsStored, nullptr);
    EXPECT_FALSE(Prop(object, "Twice").IsStored(object));
    object.SetTwice(1);
    EXPECT_TRUE(Prop(object, "Twice").IsStored(object));
}

TEST(TypInfo, ClassesAndReferences) {
    const auto reference = TClassRef<TSample>::Of<TDerived>();
    const std::unique_ptr<TSample> object = reference.Create();
    EXPECT_EQ(object->ClassName(), "TDerived");
    EXPECT_EQ(reference.Name(), "TDerived");
    EXPECT_EQ(&reference.Record(), &object->ClassType());
    EXPECT_EQ(reference, TClassRef<TSample>::Of<TDerived>());
    EXPECT_NE(reference, TClassRef<TSample>::Of<TSample>());

    EXPECT_TRUE(object->InheritsFrom(TDerived::ClassRecord));
    EXPECT_TRUE(object->InheritsFrom(TObject::ClassRecord));
    EXPECT_FALSE(TSample().InheritsFrom(TDerived::ClassRecord));
    EXPECT_EQ(ClassCast<TDerived>(object.get()), object.get());
    TSample sample;
    EXPECT_EQ(ClassCast<TDerived>(&sample), nullptr);
    EXPECT_EQ(ClassCast<TDerived>(nullptr), nullptr);
}

TEST(TypInfo, Registry) {
    const TClassRecord impostor{"tsample", &TObject::ClassRecord};
    EXPECT_EQ(GetClass("TSample"), nullptr);
    RegisterClass(TSample::ClassRecord);
    RegisterClass(TSample::ClassRecord);
    EXPECT_EQ(GetClass("tSAMPLE"), &TSample::ClassRecord);
    try {
        RegisterClass(impostor);
        ADD_FAILURE() << "a second class of the name was accepted";
    } catch (const EFilerError& error) {
        EXPECT_EQ(error.Message(), "a class named tsample already exists");
    }
    UnRegisterClass(impostor); // changes nothing
    EXPECT_EQ(GetClass("TSample"), &TSample::ClassRecord);

    RegisterClass(TDerived::ClassRecord);
    const TClassRecord* const both[] = {&TSample::ClassRecord, &TDerived::ClassRecord};
    UnRegisterClasses(both);
    EXPECT_EQ(GetClass("TSample"), nullptr);
    EXPECT_EQ(GetClass("TDerived"), nullptr);
}

TEST(Sets, Arithmetic) {
    TSet<TSuit> set{suHearts};
    EXPECT_EQ(set.Include(suSpades).Include(suSpades).Mask(), 6u);
    EXPECT_EQ(set.Exclude(suHearts).Exclude(suHearts), TSet<TSuit>{suSpades});
    EXPECT_EQ((set + TSet<TSuit>{suClubs}).Mask(), 5u);
    EXPECT_TRUE((set - TSet<TSuit>{suSpades, suClubs}).IsEmpty());
    EXPECT_TRUE(set.Contains(suSpades));
    EXPECT_FALSE(set.Contains(suClubs));
    EXPECT_EQ(TSet<TSuit>::FromMask(0x80000000u).Mask(), 0x80000000u);
}

TEST(Methods, CallAndCompare) {
    struct TCounter {
        int Add(int value) { return Sum += value; }
        int Get(int) const { return Sum; }
        int Sum = 0;
    };
    using TCall = TMethod<int(int)>;
    TCounter a, b;
    const TCall add = TCall::Of<&TCounter::Add>(&a);
    EXPECT_EQ(add(2) + add(3), 7);
    EXPECT_EQ(add, TCall::Of<&TCounter::Add>(&a));
    EXPECT_NE(add, TCall::Of<&TCounter::Add>(&b));
    EXPECT_NE(add, TCall::Of<&TCounter::Get>(&a));
    EXPECT_EQ(add.Data(), &a);
    EXPECT_EQ(TCall::Of<&TCounter::Get>(&a)(0), 5);

    const auto constant = [](int value) { return value * 2; };
    auto counting = [n = 0](int) mutable { return ++n; };
    EXPECT_EQ(TCall::Calling(constant)(21), 42);
    EXPECT_EQ(TCall::Calling(counting)(0) + TCall::Calling(counting)(0), 3);
    EXPECT_FALSE(TCall());
    EXPECT_NE(TCall(), add);

    // Arguments are passed on as they are: references stay references, values may be moved.
    const auto consume = [](std::unique_ptr<int> value, int& result) { result = *value; };
    int result = 0;
    TMethod<void(std::unique_ptr<int>, int&)>::Calling(consume)(std::make_unique<int>(9), result);
    EXPECT_EQ(result, 9);
}

} // namespace
} // namespace tarn
