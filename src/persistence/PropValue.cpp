// Property values as texts, raw slots and variants.

#include "DataHandlingErrors.h"

#include "rtl/DateUtils.h"
#include "rtl/FloatText.h"
#include "vcl/Graphics.h"

#include <bit>
#include <limits>

namespace tarn {
namespace {

template <class Slot> Slot Read(const TObject& instance, const TPropInfo& prop) {
    Slot slot{};
    prop.Get(instance, &slot);
    return slot;
}

void RequireSetter(const TObject& instance, const TPropInfo& prop) {
    if (!prop.Set)
        throw EDataHandlingError(
            Format("property %s of %s cannot be set", {prop.Name, instance.ClassName()}));
}

template <class Slot> void Write(TObject& instance, const TPropInfo& prop, const Slot& slot) {
    RequireSetter(instance, prop);
    prop.Set(instance, &slot);
}

void WriteObject(TObject& instance, const TPropInfo& prop, TObject* object) {
    const TClassRecord* const declared = prop.PropType->Class;
    if (object && declared && !object->InheritsFrom(*declared))
        throw EConvertError(
            Format("cannot assign a %s to a %s", {object->ClassName(), declared->Name}));
    Write(instance, prop, object);
}

bool IsColor(const TTypeInfo& type) {
    return SameText(type.Name, ColorType.Name);
}

/// What a float means, by the exact name of its type.
enum TFloatMeaning : std::uint8_t { fmNumber, fmMoment, fmTime };
TFloatMeaning FloatMeaning(const TTypeInfo& type) {
    if (SameText(type.Name, DateTimeType.Name) || SameText(type.Name, DateType.Name))
        return fmMoment;
    return SameText(type.Name, TimeType.Name) ? fmTime : fmNumber;
}

/// Unsigned numbers travel as their bits.
std::int64_t OrdinalValue(const TTypeInfo& type, std::int32_t slot) {
    const bool isUnsigned = type.MaxValue > std::numeric_limits<std::int32_t>::max();
    return isUnsigned ? std::int64_t{static_cast<std::uint32_t>(slot)} : slot;
}

/// The number as a slot. Raises EConvertError outside the range of the type; a type record without
/// a range, such as a set's, admits 32 bits, with a sign or without.
std::int32_t OrdinalSlot(const TTypeInfo& type, std::int64_t value) {
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    const bool ranged = type.MinValue < type.MaxValue || !type.Names.empty();
    const std::int64_t lower = ranged ? type.MinValue : least;
    const std::int64_t upper = ranged ? type.MaxValue : most;
    if (value < lower || value > upper)
        throw EConvertError(Format("%d is outside %d to %d", {value, lower, upper}));
    return static_cast<std::int32_t>(value);
}

// --- Texts ------------------------------------------------------------------------------------

std::string IntegerText(const TTypeInfo& type, std::int32_t slot) {
    if (!IsColor(type)) return IntToStr(OrdinalValue(type, slot));
    std::string ident;
    ColorToIdent(slot, ident);
    return ident;
}

std::int32_t IntegerOf(const TTypeInfo& type, std::string_view text) {
    if (IsColor(type)) {
        TColor color = 0;
        if (!IdentToColor(text, color)) RaiseDataError(strNoColor, text);
        return color;
    }
    const bool isUnsigned = type.MaxValue > std::numeric_limits<std::int32_t>::max();
    return OrdinalSlot(type, isUnsigned ? StrToInt64(text) : StrToInt(text));
}

std::string FloatText(const TTypeInfo& type, long double value) {
    switch (FloatMeaning(type)) {
    case fmMoment:
        return DateTimeToStr(static_cast<TDateTime>(value));
    case fmTime:
        return TimeToStr(static_cast<TDateTime>(value));
    case fmNumber:
        break;
    }
    return FloatToStr(value);
}

long double FloatOf(const TTypeInfo& type, std::string_view text) {
    switch (FloatMeaning(type)) {
    case fmMoment:
        return StrToDateTime(text);
    case fmTime:
        return StrToTime(text);
    case fmNumber:
        break;
    }
    return StrToFloat(text);
}

} // namespace

std::string GetPropAsText(const TObject& instance, const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    const auto ordinal = [&] { return Read<std::int32_t>(instance, prop); };
    switch (type.Kind) {
    case tkInteger:
        return IntegerText(type, ordinal());
    case tkChar:
        return {static_cast<char>(ordinal())};
    case tkEnumeration:
        return EnumToStr(type, ordinal());
    case tkSet:
        return SetToStr(type, static_cast<std::uint32_t>(ordinal()));
    case tkFloat:
        return FloatText(type, Read<long double>(instance, prop));
    case tkString:
    case tkLString:
    case tkWString:
        return Read<std::string>(instance, prop);
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

void SetPropByText(TObject& instance, const TPropInfo& prop, std::string_view text) {
    const TTypeInfo& type = *prop.PropType;
    const auto setOrdinal = [&](auto value) {
        Write(instance, prop, static_cast<std::int32_t>(value));
    };
    switch (type.Kind) {
    case tkInteger:
        return setOrdinal(IntegerOf(type, text));
    case tkChar:
        return setOrdinal(text.empty() ? 0 : static_cast<unsigned char>(text.front()));
    case tkEnumeration:
        return setOrdinal(StrToEnum(type, text));
    case tkSet:
        return setOrdinal(StrToSet(type, text));
    case tkFloat:
        return Write(instance, prop, FloatOf(type, text));
    case tkString:
    case tkLString:
    case tkWString:
        return Write(instance, prop, std::string(text));
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

// --- Raw slots --------------------------------------------------------------------------------

void GetPropAsPtr(const TObject& instance, const TPropInfo& prop, void*& slot) {
    switch (prop.PropType->Kind) {
    case tkInteger:
    case tkChar:
    case tkEnumeration:
    case tkSet:
        slot = std::bit_cast<void*>(std::intptr_t{Read<std::int32_t>(instance, prop)});
        return;
    case tkClass:
        slot = Read<TObject*>(instance, prop);
        return;
    case tkFloat: // into the long double or the string of the caller
    case tkString:
    case tkLString:
    case tkWString:
        return prop.Get(instance, slot);
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

void SetPropByPtr(TObject& instance, const TPropInfo& prop, void* slot) {
    switch (prop.PropType->Kind) {
    case tkInteger:
    case tkChar:
    case tkEnumeration:
    case tkSet:
        return Write(instance, prop, static_cast<std::int32_t>(std::bit_cast<std::intptr_t>(slot)));
    case tkClass:
        return WriteObject(instance, prop, static_cast<TObject*>(slot));
    case tkFloat:
    case tkString:
    case tkLString:
    case tkWString:
        RequireSetter(instance, prop);
        return prop.Set(instance, slot);
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

// --- Variants ---------------------------------------------------------------------------------

TVariant GetPropAsVariant(const TObject& instance, const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    switch (type.Kind) {
    case tkInteger:
    case tkChar:
    case tkEnumeration:
    case tkSet:
        return OrdinalValue(type, Read<std::int32_t>(instance, prop));
    case tkClass:
        return Read<TObject*>(instance, prop);
    case tkFloat:
        return Read<long double>(instance, prop);
    case tkString:
    case tkLString:
    case tkWString:
        return Read<std::string>(instance, prop);
    case tkVariant:
        return Read<TVariant>(instance, prop);
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

void SetPropByVariant(TObject& instance, const TPropInfo& prop, const TVariant& value) {
    const TTypeInfo& type = *prop.PropType;
    const bool text = value.Kind() == vkString;
    switch (type.Kind) {
    case tkInteger:
    case tkChar:
    case tkEnumeration:
    case tkSet:
        if (text) return SetPropByText(instance, prop, value.ToString());
        return Write(instance, prop, OrdinalSlot(type, value.ToInteger()));
    case tkClass:
        return WriteObject(instance, prop, value.ToObject());
    case tkFloat:
        if (text) return SetPropByText(instance, prop, value.ToString());
        return Write(instance, prop, value.ToFloat());
    case tkString:
    case tkLString:
    case tkWString:
        return Write(instance, prop, value.ToString());
    case tkVariant:
        return Write(instance, prop, value);
    default:
        RaiseDataError(strUnsupportedKind);
    }
}

// --- By path ----------------------------------------------------------------------------------

namespace {

/// FindPropInfo, which must find something.
const TPropInfo& RequirePropInfo(TObject*& instance, std::string_view path,
                                 TTypeInfoProvider provider) {
    const TPropInfo* const prop = FindPropInfo(instance, path, provider);
    if (!prop) RaiseDataError(strNoProperty, path);
    return *prop;
}

} // namespace

std::string GetPropAsText(TObject& instance, std::string_view path, TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    return GetPropAsText(*owner, prop);
}

void SetPropByText(TObject& instance, std::string_view path, std::string_view text,
                   TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    SetPropByText(*owner, prop, text);
}

void GetPropAsPtr(TObject& instance, std::string_view path, void*& slot,
                  TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    GetPropAsPtr(*owner, prop, slot);
}

void SetPropByPtr(TObject& instance, std::string_view path, void* slot,
                  TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    SetPropByPtr(*owner, prop, slot);
}

TVariant GetPropAsVariant(TObject& instance, std::string_view path, TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    return GetPropAsVariant(*owner, prop);
}

void SetPropByVariant(TObject& instance, std::string_view path, const TVariant& value,
                      TTypeInfoProvider provider) {
    TObject* owner = &instance;
    const TPropInfo& prop = RequirePropInfo(owner, path, provider);
    SetPropByVariant(*owner, prop, value);
}

} // namespace tarn
