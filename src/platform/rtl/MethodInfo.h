#pragma once

#include "rtl/TypInfo.h"

#include <array>
#include <cstddef>
#include <vector>

namespace tarn {

/// What a method gives back.
enum TMethodKind : std::uint8_t { mkProcedure, mkFunction };
inline constexpr std::string_view MethodKindNames[] = {"mkProcedure", "mkFunction"};

/// How a parameter is passed.
enum TParamFlag : std::uint8_t {
    pfVar,       ///< the caller's variable, which may be changed
    pfConst,     ///< nothing that the method changes
    pfArray,     ///< values of the type in a row
    pfAddress,   ///< a pointer, which may be null
    pfReference, ///< an object that is there; its state may change unless it is const
    pfOut        ///< the caller's variable, which is only set: C++ does not tell it from pfVar
};
using TParamFlags = TSet<TParamFlag>;

/// A parameter. The type of an array is that of its elements; a type without a type record is
/// that of void.
struct TMethodParam {
    const TTypeInfo* Type;
    TParamFlags Flags = {};
};

/// The signature of a method type. The names of its parameters are the type record's `Names`.
struct TMethodSignature {
    TMethodKind Kind = mkProcedure;
    std::span<const TMethodParam> Params = {};
    const TTypeInfo* Result = nullptr; ///< of functions
};

namespace detail {

/// What stands in a row in an array: a span refers to the caller's values.
template <class T> struct TElementOf { using TType = void; };
template <class T, std::size_t Size> struct TElementOf<std::span<T, Size>> { using TType = T&; };
template <class T> struct TElementOf<std::vector<T>> { using TType = T; };

template <class T> constexpr TMethodParam ParamOf() {
    using TReferred = std::remove_reference_t<T>;
    using TTarget = std::remove_pointer_t<TReferred>;
    using TValue = std::remove_cv_t<TTarget>;
    using TElement = typename TElementOf<TValue>::TType;
    constexpr bool isAddress = std::is_pointer_v<TReferred>;
    constexpr bool isObject = std::is_base_of_v<TObject, TValue>;
    constexpr bool isReference = std::is_lvalue_reference_v<T>;
    constexpr bool isConst =
        std::is_const_v<TTarget> || (isReference && std::is_const_v<TReferred>);

    TMethodParam param{&TypeInfoOf<TValue>};
    if constexpr (isObject)
        param.Type = &TypeInfoOf<TValue*>;
    else if constexpr (std::is_same_v<TValue, std::string_view>)
        param = {&TypeInfoOf<std::string>, {pfConst}};
    else if constexpr (!std::is_void_v<TElement>) {
        param = ParamOf<TElement>();
        param.Flags.Include(pfArray);
    }
    if (isConst) param.Flags.Include(pfConst);
    if (isAddress) param.Flags.Include(pfAddress);
    if (isReference && isObject && !isAddress)
        param.Flags.Include(pfReference);
    else if (isReference && !isConst)
        param.Flags.Include(pfVar);
    return param;
}

template <class... A>
inline constexpr std::array<TMethodParam, sizeof...(A)> ParamsOf = {ParamOf<A>()...};

} // namespace detail

/// The signature of a TMethod, made of the C++ types: T& is var, const T& and a text const, T* an
/// address, a span or a vector an array, an object by reference a reference. The classes among them
/// must be complete.
template <class Method> inline constexpr TMethodSignature MethodSignatureOf = {};
template <class R, class... A>
inline constexpr TMethodSignature MethodSignatureOf<TMethod<R(A...)>> = {
    std::is_void_v<R> ? mkProcedure : mkFunction, detail::ParamsOf<A...>,
    detail::ParamOf<R>().Type};

/// A method's type record from its name, its signature and, where they are known, the names of all
/// parameters.
constexpr TTypeInfo MethodType(std::string_view name, const TMethodSignature& signature,
                               std::span<const std::string_view> paramNames = {}) {
    if (!paramNames.empty() && paramNames.size() != signature.Params.size())
        throw "each parameter has a name, or none has"; // a constant like that does not compile
    TTypeInfo type{name, tkMethod};
    type.Names = paramNames;
    type.Signature = &signature;
    return type;
}

/// A method type without a row of its own. An event adds its row beside its declaration, as
/// TNotifyEvent does.
template <class Signature>
inline constexpr TTypeInfo
    TypeInfoOf<TMethod<Signature>> = MethodType("TMethod", MethodSignatureOf<TMethod<Signature>>);

} // namespace tarn
