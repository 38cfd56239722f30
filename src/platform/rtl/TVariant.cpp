#include "rtl/TVariant.h"

#include "rtl/FloatText.h"
#include "rtl/SysUtils.h"

#include <cmath>

namespace tarn {

std::int64_t TVariant::ToInteger() const {
    switch (Kind()) {
    case vkEmpty:
        return 0;
    case vkBoolean:
        return std::get<bool>(FValue) ? 1 : 0;
    case vkInteger:
        return std::get<std::int64_t>(FValue);
    case vkFloat: {
        constexpr long double limit = 9223372036854775808.0L; // 2 to the power of 63
        const long double rounded = std::nearbyint(std::get<long double>(FValue));
        if (!(rounded >= -limit && rounded < limit)) Refuse("an integer");
        return static_cast<std::int64_t>(rounded);
    }
    case vkString:
        return StrToInt64(std::get<std::string>(FValue));
    case vkObject:
        break;
    }
    Refuse("an integer");
}

long double TVariant::ToFloat() const {
    if (Kind() == vkFloat) return std::get<long double>(FValue);
    if (Kind() == vkString) return StrToFloat(std::get<std::string>(FValue));
    if (Kind() == vkObject) Refuse("a number");
    return static_cast<long double>(ToInteger());
}

std::string TVariant::ToString() const {
    switch (Kind()) {
    case vkEmpty:
        return {};
    case vkBoolean:
        return std::get<bool>(FValue) ? "True" : "False";
    case vkInteger:
        return IntToStr(std::get<std::int64_t>(FValue));
    case vkFloat:
        return FloatToStr(std::get<long double>(FValue));
    case vkString:
        return std::get<std::string>(FValue);
    case vkObject:
        break;
    }
    Refuse("a text");
}

TObject* TVariant::ToObject() const {
    if (IsEmpty()) return nullptr;
    if (Kind() != vkObject) Refuse("an object");
    return std::get<TObject*>(FValue);
}

void TVariant::Refuse(std::string_view wanted) const {
    throw EConvertError(Kind() == vkObject ? Format("an object is not %s", {wanted})
                                           : Format("'%s' is not %s", {ToString(), wanted}));
}

} // namespace tarn
