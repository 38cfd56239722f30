#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace tarn {

class TObject;

/// What a variant holds, in the order of its alternatives.
enum TVariantKind : std::uint8_t { vkEmpty, vkBoolean, vkInteger, vkFloat, vkString, vkObject };

/// A value of a kind that is known when the program runs. An object is referred to, not owned.
class TVariant {
public:
    TVariant() = default;
    template <class T>
    requires std::is_integral_v<T> || std::is_enum_v<T>
    TVariant(T value) // NOLINT(google-explicit-constructor)
        : FValue(
              std::in_place_type<std::conditional_t<std::is_same_v<T, bool>, bool, std::int64_t>>,
              value) {}
    TVariant(long double value) : FValue(value) {}                      // NOLINT
    TVariant(double value) : FValue(static_cast<long double>(value)) {} // NOLINT
    TVariant(std::string value) : FValue(std::move(value)) {}           // NOLINT
    TVariant(std::string_view value) : FValue(std::string(value)) {}    // NOLINT
    TVariant(const char* value) : FValue(std::string(value)) {}         // NOLINT
    TVariant(TObject* value) : FValue(value) {}                         // NOLINT

    TVariantKind Kind() const { return static_cast<TVariantKind>(FValue.index()); }
    bool IsEmpty() const { return Kind() == vkEmpty; }

    // The value as another kind. An empty variant is 0, the empty text, no object. What has no such
    // form raises EConvertError.
    /// A float is rounded, the half to the even number; a text is read as a number; true is 1.
    std::int64_t ToInteger() const;
    long double ToFloat() const;
    /// Numbers as IntToStr and FloatToStr write them, a Boolean as "False" or "True".
    std::string ToString() const;
    TObject* ToObject() const;

    friend bool operator==(const TVariant&, const TVariant&) = default;

private:
    [[noreturn]] void Refuse(std::string_view wanted) const;

    std::variant<std::monostate, bool, std::int64_t, long double, std::string, TObject*> FValue;
};

} // namespace tarn
