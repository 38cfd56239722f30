// Sets a property of each kind from any text: what is accepted is printed as a text that is
// accepted again and then printed the same; sets are read from any text.

#include "qsDataHndl2.h"
#include "vcl/Graphics.h"

#include <cstdint>
#include <cstdlib>

namespace tarn {

enum TFruit : std::uint8_t { frApple, frPear, frPlum };
inline constexpr std::string_view FruitNames[] = {"frApple", "frPear", "frPlum"};
template <> inline constexpr TTypeInfo TypeInfoOf<TFruit> = EnumType("TFruit", FruitNames);

namespace {

class TBasket : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Integer = 0;
    std::uint16_t Word = 0;
    std::uint32_t Cardinal = 0;
    TColor Color = 0;
    char Char = 0;
    bool Flag = false;
    TFruit Fruit = frApple;
    TSet<TFruit> Fruits;
    float Single = 0;
    double Double = 0;
    long double Extended = 0;
    double Moment = 0, Date = 0, Time = 0;
    std::string Text;
    TShortString<8> Brief;
    std::u16string Wide;
};

constexpr TPropInfo Props[] = {
    Published<&TBasket::Integer>("Integer"),
    Published<&TBasket::Word>("Word"),
    Published<&TBasket::Cardinal>("Cardinal"),
    Published<&TBasket::Color>("Color", {.Type = &ColorType}),
    Published<&TBasket::Char>("Char"),
    Published<&TBasket::Flag>("Flag"),
    Published<&TBasket::Fruit>("Fruit"),
    Published<&TBasket::Fruits>("Fruits"),
    Published<&TBasket::Single>("Single"),
    Published<&TBasket::Double>("Double"),
    Published<&TBasket::Extended>("Extended"),
    Published<&TBasket::Moment>("Moment", {.Type = &DateTimeType}),
    Published<&TBasket::Date>("Date", {.Type = &DateType}),
    Published<&TBasket::Time>("Time", {.Type = &TimeType}),
    Published<&TBasket::Text>("Text"),
    Published<&TBasket::Brief>("Brief"),
    Published<&TBasket::Wide>("Wide"),
};
constinit const TClassRecord TBasket::ClassRecord{"TBasket", &TPersistent::ClassRecord, nullptr,
                                                  Props};

/// False when the text is refused, which changes nothing.
bool Accepts(TBasket& basket, const TPropInfo& prop, std::string_view text) {
    const std::string before = GetPropAsText(basket, prop);
    try {
        SetPropByText(basket, prop, text);
        return true;
    } catch (const Exception&) {
        if (GetPropAsText(basket, prop) != before) std::abort();
        return false;
    }
}

void CheckProp(const TPropInfo& prop, std::string_view text) {
    TBasket basket;
    if (!Accepts(basket, prop, text)) return;
    const std::string printed = GetPropAsText(basket, prop);
    if (!Accepts(basket, prop, printed) || GetPropAsText(basket, prop) != printed) std::abort();
    SetPropByVariant(basket, prop, GetPropAsVariant(basket, prop));
    if (GetPropAsText(basket, prop) != printed) std::abort();
}

} // namespace
} // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const TPropInfo& prop : Props) CheckProp(prop, text);
    TBasket basket;
    TObject* owner = &basket;
    const TPropInfo* const found = FindPropInfo(owner, text);
    if (TPropRef ref(text.substr(0, text.find('.'))); ref.Find(owner) != found) std::abort();
    return 0;
}
