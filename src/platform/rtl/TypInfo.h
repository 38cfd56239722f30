#pragma once

#include "rtl/Interfaces.h"
#include "rtl/TSet.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace tarn {

class TObject;
struct TClassRecord;

/// The kinds of a published property's type; the kind decides how its value travels.
enum TTypeKind : std::uint8_t {
    tkUnknown,
    tkInteger,
    tkChar,
    tkEnumeration,
    tkFloat,
    tkString,
    tkSet,
    tkClass,
    tkMethod,
    tkWChar,
    tkLString,
    tkWString,
    tkVariant
};

/// A type record: its name, its kind and what the kind needs.
struct TTypeInfo {
    std::string_view Name;
    TTypeKind Kind = tkUnknown;
    std::int64_t MinValue = 0;                    ///< ordinal kinds: the least ordinal
    std::int64_t MaxValue = 0;                    ///< ordinal kinds: the greatest ordinal
    std::span<const std::string_view> Names = {}; ///< enumerations: names from MinValue on
    const TTypeInfo* CompType = nullptr;          ///< sets: the type of the elements
    const TClassRecord* Class = nullptr;          ///< classes: the declared class

    /// The type's name; a class type is called as its class.
    std::string_view TypeName() const;
};

/// The type record of a C++ type. An enumeration adds its own beside its declaration:
/// `template <> inline constexpr TTypeInfo TypeInfoOf<TMyEnum> = EnumType("TMyEnum", MyEnumNames);`
template <class T> inline constexpr TTypeInfo TypeInfoOf = {};

/// An enumeration's type record from its name and the names of its values in ordinal order.
constexpr TTypeInfo EnumType(std::string_view name, std::span<const std::string_view> names,
                             std::int64_t least = 0) {
    return {name, tkEnumeration, least, least + static_cast<std::int64_t>(names.size()) - 1, names};
}

template <class T> constexpr TTypeInfo IntegerType(std::string_view name) {
    return {name, tkInteger, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
}

inline constexpr std::string_view BooleanNames[] = {"False", "True"};
template <> inline constexpr TTypeInfo TypeInfoOf<bool> = EnumType("Boolean", BooleanNames);
template <>
inline constexpr TTypeInfo TypeInfoOf<std::int8_t> = IntegerType<std::int8_t>("ShortInt");
template <> inline constexpr TTypeInfo TypeInfoOf<std::uint8_t> = IntegerType<std::uint8_t>("Byte");
template <>
inline constexpr TTypeInfo TypeInfoOf<std::int16_t> = IntegerType<std::int16_t>("SmallInt");
template <>
inline constexpr TTypeInfo TypeInfoOf<std::uint16_t> = IntegerType<std::uint16_t>("Word");
template <>
inline constexpr TTypeInfo TypeInfoOf<std::int32_t> = IntegerType<std::int32_t>("Integer");
template <>
inline constexpr TTypeInfo TypeInfoOf<std::uint32_t> = IntegerType<std::uint32_t>("Cardinal");
template <> inline constexpr TTypeInfo TypeInfoOf<char> = {"Char", tkChar, 0, 255};
template <> inline constexpr TTypeInfo TypeInfoOf<wchar_t> = {"WideChar", tkWChar, 0, 65535};
template <> inline constexpr TTypeInfo TypeInfoOf<float> = {"Single", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<double> = {"Double", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<long double> = {"Extended", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<std::string> = {"String", tkLString};
template <class E>
inline constexpr TTypeInfo TypeInfoOf<TSet<E>> = {TypeInfoOf<E>.Name, tkSet, 0, 0, {},
                                                  &TypeInfoOf<E>};
template <class T>
requires std::is_base_of_v<TObject, T>
inline constexpr TTypeInfo TypeInfoOf<T*> = {{}, tkClass, 0, 0, {}, nullptr, &T::ClassRecord};

/// One published property. Values pass through `Get` and `Set` in the slot that the kind names:
/// ordinal kinds std::int32_t, tkFloat long double, the string kinds std::string, tkClass TObject*.
struct TPropInfo {
    /// The default of a property that has none: it is always stored.
    static constexpr std::int64_t NoDefault = std::numeric_limits<std::int64_t>::min();

    std::string_view Name;
    const TTypeInfo* PropType = nullptr;
    void (*Get)(const TObject& instance, void* slot) = nullptr;
    void (*Set)(TObject& instance, const void* slot) = nullptr; ///< null when it is read-only
    std::int64_t Default = NoDefault; ///< ordinal kinds: the value that is not stored
    bool (*IsStored)(const TObject& instance) = nullptr; ///< null: stored

    bool HasDefault() const { return Default != NoDefault; }
};

/// One row of a class's interface table.
struct TInterfaceEntry {
    const TGUID* IID;
    void* (*Cast)(TObject& instance);
};

/// A class record: the class as data. It stands once per class, as a constant.
struct TClassRecord {
    std::string_view Name;
    const TClassRecord* Parent = nullptr;
    std::unique_ptr<TObject> (*Create)() = nullptr;         ///< null for an abstract class
    std::span<const TPropInfo> Published = {};              ///< its own, in declaration order
    std::span<const TInterfaceEntry> Interfaces = {};       ///< its own
    std::span<const TClassRecord* const> FieldClasses = {}; ///< classes of its published fields

    bool InheritsFrom(const TClassRecord& ancestor) const;
    /// The class's own property of that name or an inherited one, without case; null when none.
    const TPropInfo* FindProp(std::string_view name) const;
};

/// Calls `visit(const TPropInfo&)` for all published properties, inherited first.
template <class F> void ForEachProp(const TClassRecord& record, F&& visit) {
    if (record.Parent) ForEachProp(*record.Parent, visit);
    for (const TPropInfo& prop : record.Published) visit(prop);
}

/// A class reference: the record of a class known to descend from Base.
template <class Base> class TClassRef {
public:
    template <class T>
    requires std::is_base_of_v<Base, T>
    static TClassRef Of() { return TClassRef(T::ClassRecord); }

    const TClassRecord& Record() const { return *FRecord; }
    std::string_view Name() const { return FRecord->Name; }
    /// A new object of the class, made by its constructor without arguments.
    std::unique_ptr<Base> Create() const {
        return std::unique_ptr<Base>(static_cast<Base*>(FRecord->Create().release()));
    }
    friend bool operator==(TClassRef, TClassRef) = default;

private:
    explicit TClassRef(const TClassRecord& record) : FRecord(&record) {}
    const TClassRecord* FRecord;
};

// --- The rows of a class's tables -------------------------------------------------------------

namespace detail {

template <class M> struct TMemberOf;
template <class R, class T> struct TMemberOf<R T::*> {
    using TClass = T;
    using TValue = R;
};
template <class R, class T> struct TMemberOf<R (T::*)() const> {
    using TClass = T;
    using TValue = std::remove_cvref_t<R>;
};

template <class V> void StoreSlot(void* slot, const V& value) {
    constexpr TTypeKind kind = TypeInfoOf<V>.Kind;
    if constexpr (kind == tkLString)
        *static_cast<std::string*>(slot) = value;
    else if constexpr (kind == tkFloat)
        *static_cast<long double*>(slot) = value;
    else if constexpr (kind == tkClass)
        *static_cast<TObject**>(slot) = value;
    else if constexpr (kind == tkSet)
        *static_cast<std::int32_t*>(slot) = static_cast<std::int32_t>(value.Mask());
    else if constexpr (kind == tkChar)
        *static_cast<std::int32_t*>(slot) = static_cast<unsigned char>(value);
    else
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): a ShortInt keeps its sign
        *static_cast<std::int32_t*>(slot) = static_cast<std::int32_t>(value);
}

template <class V> V LoadSlot(const void* slot) {
    constexpr TTypeKind kind = TypeInfoOf<V>.Kind;
    if constexpr (kind == tkLString)
        return *static_cast<const std::string*>(slot);
    else if constexpr (kind == tkFloat)
        return static_cast<V>(*static_cast<const long double*>(slot));
    else if constexpr (kind == tkClass)
        return static_cast<V>(*static_cast<TObject* const*>(slot));
    else if constexpr (kind == tkSet)
        return V::FromMask(static_cast<std::uint32_t>(*static_cast<const std::int32_t*>(slot)));
    else
        return static_cast<V>(*static_cast<const std::int32_t*>(slot));
}

} // namespace detail

/// What a property's row may say beside its name and accessors.
struct TPropOptions {
    std::int64_t Default = TPropInfo::NoDefault;
    const TTypeInfo* Type = nullptr; ///< a type of its own name, for example TColor
    bool (*IsStored)(const TObject& instance) = nullptr;
};

/// A published property read through a data member or a getter, and written through the data
/// member, or through `Setter` when one is given. A getter without a setter is read-only.
template <auto Getter, auto Setter = nullptr>
constexpr TPropInfo Published(std::string_view name, TPropOptions options = {}) {
    using TMember = detail::TMemberOf<decltype(Getter)>;
    using TClass = typename TMember::TClass;
    using TValue = typename TMember::TValue;
    static_assert(TypeInfoOf<TValue>.Kind != tkUnknown, "the type has no type record");
    TPropInfo prop{name, options.Type ? options.Type : &TypeInfoOf<TValue>};
    prop.Get = [](const TObject& instance, void* slot) {
        const auto& object = static_cast<const TClass&>(instance);
        if constexpr (std::is_member_function_pointer_v<decltype(Getter)>)
            detail::StoreSlot<TValue>(slot, (object.*Getter)());
        else
            detail::StoreSlot<TValue>(slot, object.*Getter);
    };
    if constexpr (!std::is_same_v<decltype(Setter), std::nullptr_t>)
        prop.Set = [](TObject& instance, const void* slot) {
            (static_cast<TClass&>(instance).*Setter)(detail::LoadSlot<TValue>(slot));
        };
    else if constexpr (!std::is_member_function_pointer_v<decltype(Getter)>)
        prop.Set = [](TObject& instance, const void* slot) {
            static_cast<TClass&>(instance).*Getter = detail::LoadSlot<TValue>(slot);
        };
    prop.Default = options.Default;
    prop.IsStored = options.IsStored;
    return prop;
}

/// A row of an interface table: class T implements interface I.
template <class T, class I> constexpr TInterfaceEntry Implements() {
    return {&I::IID,
            [](TObject& instance) -> void* { return static_cast<I*>(static_cast<T*>(&instance)); }};
}

/// The virtual constructor of a class record.
template <class T> std::unique_ptr<TObject> CreateObject() {
    return std::make_unique<T>();
}

// --- The class registry -----------------------------------------------------------------------

/// Makes a class known by its name, for streams that name classes. Registering the same class
/// again changes nothing; another class of the same name raises EFilerError.
void RegisterClass(const TClassRecord& record);
/// The registered class of that name, without case; null when none.
const TClassRecord* GetClass(std::string_view name);
void UnRegisterClass(const TClassRecord& record);
void UnRegisterClasses(std::span<const TClassRecord* const> records);

} // namespace tarn
