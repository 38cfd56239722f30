#pragma once

#include "rtl/Interfaces.h"
#include "rtl/TMethod.h"
#include "rtl/TSet.h"
#include "rtl/TShortString.h"
#include "rtl/TVariant.h"
#include "rtl/Unicode.h"

#include <cmath>
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
struct TMethodSignature;

/// The kinds of a published property's type; the kind names the slot in which its value travels.
enum TTypeKind : std::uint8_t {
    tkUnknown,
    tkInteger,     ///< std::int32_t; a Cardinal as its bits
    tkChar,        ///< std::int32_t, 0 to 255
    tkEnumeration, ///< std::int32_t, the ordinal
    tkFloat,       ///< long double
    tkString,      ///< std::string of at most MaxValue bytes: longer ones are cut
    tkSet,         ///< std::int32_t, the mask
    tkClass,       ///< TObject*, null or of the type's class
    tkMethod,      ///< TRawMethod
    tkWChar,       ///< std::int32_t, a UTF-16 unit
    tkLString,     ///< std::string
    tkWString,     ///< std::string in UTF-8; see Unicode.h for what is no UTF-16
    tkVariant,     ///< TVariant
    tkInt64        ///< std::int64_t
};

/// A type record: its name, its kind and what the kind needs.
struct TTypeInfo {
    std::string_view Name;
    TTypeKind Kind = tkUnknown;
    std::int64_t MinValue = 0;                    ///< ordinal kinds: the least ordinal
    std::int64_t MaxValue = 0;                    ///< ordinal kinds: the greatest; tkString: length
    std::span<const std::string_view> Names = {}; ///< enumerations: names from MinValue on;
                                                  ///< methods: of the parameters, empty: unknown
    const TTypeInfo* CompType = nullptr;          ///< sets: the type of the elements
    const TClassRecord* Class = nullptr;          ///< classes: the declared class
    const TMethodSignature* Signature = nullptr;  ///< methods: see MethodInfo.h

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
template <>
inline constexpr TTypeInfo TypeInfoOf<std::int64_t> = {"Int64", tkInt64,
                                                       std::numeric_limits<std::int64_t>::min(),
                                                       std::numeric_limits<std::int64_t>::max()};
template <> inline constexpr TTypeInfo TypeInfoOf<wchar_t> = {"WideChar", tkWChar, 0, 65535};
template <> inline constexpr TTypeInfo TypeInfoOf<char16_t> = {"WideChar", tkWChar, 0, 65535};
template <> inline constexpr TTypeInfo TypeInfoOf<float> = {"Single", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<double> = {"Double", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<long double> = {"Extended", tkFloat};
template <> inline constexpr TTypeInfo TypeInfoOf<std::string> = {"String", tkLString};
template <int Length>
inline constexpr TTypeInfo TypeInfoOf<TShortString<Length>> = {"ShortString", tkString, 0, Length};
template <> inline constexpr TTypeInfo TypeInfoOf<std::u16string> = {"WideString", tkWString};
template <> inline constexpr TTypeInfo TypeInfoOf<TVariant> = {"Variant", tkVariant};
template <class E>
inline constexpr TTypeInfo TypeInfoOf<TSet<E>> = {TypeInfoOf<E>.Name, tkSet, 0, 0, {},
                                                  &TypeInfoOf<E>};
template <class T>
requires std::is_base_of_v<TObject, T>
inline constexpr TTypeInfo TypeInfoOf<T*> = {{}, tkClass, 0, 0, {}, nullptr, &T::ClassRecord};

// Types that C++ knows by another name. A property names its own in the options of its row.
inline constexpr TTypeInfo DateTimeType = {"TDateTime", tkFloat}; ///< a moment, see DateUtils.h
inline constexpr TTypeInfo DateType = {"TDate", tkFloat};
inline constexpr TTypeInfo TimeType = {"TTime", tkFloat};

/// One published property. Values pass through `Get` and `Set` in the slot that the kind names.
struct TPropInfo {
    /// The default of a property that has none: it is always stored.
    static constexpr std::int64_t NoDefault = std::numeric_limits<std::int64_t>::min();

    std::string_view Name;
    const TTypeInfo* PropType = nullptr;
    void (*Get)(const TObject& instance, void* slot) = nullptr; ///< the slot holds a value already
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

/// A class record: the class as data. It stands once per class, as a constant. Look-ups remember
/// by the record's address where they found a property: a record that is built while the program
/// runs is kept to its end.
struct TClassRecord {
    std::string_view Name;
    const TClassRecord* Parent = nullptr;
    std::unique_ptr<TObject> (*Create)() = nullptr;         ///< null for an abstract class
    std::span<const TPropInfo> Published = {};              ///< its own, in declaration order
    std::span<const TInterfaceEntry> Interfaces = {};       ///< its own
    std::span<const TClassRecord* const> FieldClasses = {}; ///< classes of its published fields

    bool InheritsFrom(const TClassRecord& ancestor) const;
    /// The class's own property of that name or an inherited one, without case; null when none.
    /// Properties that are asked for again and again are found at once, in any thread.
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

[[noreturn]] void RefuseFloat(long double value, const TTypeInfo& type);

template <class M> struct TMemberOf;
template <class R, class T> struct TMemberOf<R T::*> {
    using TClass = T;
    using TValue = R;
};
template <class R, class T> struct TMemberOf<R (T::*)() const> {
    using TClass = T;
    using TValue = std::remove_cvref_t<R>;
};

/// The value as a narrower floating type. Raises EConvertError when it is too great for that.
template <class V> V NarrowFloat(long double value) {
    if (std::fabs(value) > std::numeric_limits<V>::max() && !std::isinf(value))
        RefuseFloat(value, TypeInfoOf<V>);
    return static_cast<V>(value);
}

template <class V> void StoreSlot(void* slot, const V& value) {
    constexpr TTypeKind kind = TypeInfoOf<V>.Kind;
    if constexpr (kind == tkLString)
        *static_cast<std::string*>(slot) = value;
    else if constexpr (kind == tkString)
        *static_cast<std::string*>(slot) = value.Text();
    else if constexpr (kind == tkWString)
        *static_cast<std::string*>(slot) = Utf16ToUtf8(value);
    else if constexpr (kind == tkVariant)
        *static_cast<TVariant*>(slot) = value;
    else if constexpr (kind == tkMethod)
        *static_cast<TRawMethod*>(slot) = value.Raw();
    else if constexpr (kind == tkInt64)
        *static_cast<std::int64_t*>(slot) = value;
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
    else if constexpr (kind == tkString)
        return V(*static_cast<const std::string*>(slot));
    else if constexpr (kind == tkWString)
        return Utf8ToUtf16(*static_cast<const std::string*>(slot));
    else if constexpr (kind == tkVariant)
        return *static_cast<const TVariant*>(slot);
    else if constexpr (kind == tkMethod)
        return V::FromRaw(*static_cast<const TRawMethod*>(slot));
    else if constexpr (kind == tkInt64)
        return *static_cast<const std::int64_t*>(slot);
    else if constexpr (kind == tkFloat)
        return NarrowFloat<V>(*static_cast<const long double*>(slot));
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
    /// A type of the same kind under a name of its own, for example TColor; unknown: as declared.
    const TTypeInfo* Type = &TypeInfoOf<void>;
    bool (*IsStored)(const TObject& instance) = nullptr;
};

namespace detail {

/// The accessors of a property of class T. The class is named among the arguments because GCC gives
/// what depends on a member of an unnamed namespace alone one symbol for all files.
template <class T, class V, auto Getter, auto Setter> struct TPropAccessors {
    static constexpr bool ByMethod = std::is_member_function_pointer_v<decltype(Getter)>;
    static constexpr bool HasSetter = !std::is_same_v<decltype(Setter), std::nullptr_t>;
    static constexpr bool ReadOnly = ByMethod && !HasSetter;

    static void Get(const TObject& instance, void* slot) {
        const auto& object = static_cast<const T&>(instance);
        if constexpr (ByMethod)
            StoreSlot<V>(slot, (object.*Getter)());
        else
            StoreSlot<V>(slot, object.*Getter);
    }
    static void Set(TObject& instance, const void* slot) {
        auto& object = static_cast<T&>(instance);
        if constexpr (HasSetter)
            (object.*Setter)(LoadSlot<V>(slot));
        else
            object.*Getter = LoadSlot<V>(slot);
    }
};

} // namespace detail

/// A published property read through a data member or a getter, and written through the data
/// member, or through `Setter` when one is given. A getter without a setter is read-only.
template <auto Getter, auto Setter = nullptr>
constexpr TPropInfo Published(std::string_view name, TPropOptions options = {}) {
    using TMember = detail::TMemberOf<decltype(Getter)>;
    using TClass = typename TMember::TClass;
    using TValue = typename TMember::TValue;
    constexpr TTypeKind kind = TypeInfoOf<TValue>.Kind;
    static_assert(kind != tkUnknown, "the type has no type record");
    // The slot is that of the C++ type: a constant row of another kind does not compile.
    const bool named = options.Type->Kind != tkUnknown;
    if (named && options.Type->Kind != kind) throw "the named type is of another kind";
    TPropInfo prop{name, named ? options.Type : &TypeInfoOf<TValue>};
    using TAccessors = detail::TPropAccessors<TClass, TValue, Getter, Setter>;
    prop.Get = TAccessors::Get;
    if constexpr (!TAccessors::ReadOnly) prop.Set = TAccessors::Set;
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
