#pragma once

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace tarn {

// --- Errors -----------------------------------------------------------------------------------

/// The base of all exceptions of the platform and of the pack.
class Exception : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    explicit Exception(std::string_view message) : std::runtime_error(std::string(message)) {}

    virtual std::string_view ClassName() const { return "Exception"; }
    std::string_view Message() const { return what(); }
};

/// An exception class from its name and its base: one line for each member of the family.
template <class Tag, class Base = Exception> class TNamedException : public Base {
public:
    using Base::Base;
    std::string_view ClassName() const override { return Tag::Name; }
};

struct TConvertErrorTag {
    static constexpr std::string_view Name = "EConvertError";
};
struct TListErrorTag {
    static constexpr std::string_view Name = "EListError";
};
struct TStringListErrorTag {
    static constexpr std::string_view Name = "EStringListError";
};
struct TComponentErrorTag {
    static constexpr std::string_view Name = "EComponentError";
};
struct TFilerErrorTag {
    static constexpr std::string_view Name = "EFilerError";
};
struct TMenuErrorTag {
    static constexpr std::string_view Name = "EMenuError";
};
struct TInvalidOperationTag {
    static constexpr std::string_view Name = "EInvalidOperation";
};
struct TInOutErrorTag {
    static constexpr std::string_view Name = "EInOutError";
};

/// A text that is no value, or objects that cannot be assigned to each other.
using EConvertError = TNamedException<TConvertErrorTag>;
/// An index outside a list.
using EListError = TNamedException<TListErrorTag>;
/// An index outside a string list, or a refused duplicate.
using EStringListError = TNamedException<TStringListErrorTag>;
/// A component name that is no identifier or stands twice under one owner.
using EComponentError = TNamedException<TComponentErrorTag>;
/// A class name that is registered twice or unknown to a stream.
using EFilerError = TNamedException<TFilerErrorTag>;
/// A menu item that is inserted where it cannot be.
using EMenuError = TNamedException<TMenuErrorTag>;
/// An operation that the object's state does not allow.
using EInvalidOperation = TNamedException<TInvalidOperationTag>;
/// A file that cannot be opened, read or written.
using EInOutError = TNamedException<TInOutErrorTag>;

/// The class name of any exception: that of the platform's family, else "External exception".
std::string_view ExceptionClassName(const std::exception& error);

/// The platform's message for an index outside a list, with its placeholder for the index.
inline constexpr std::string_view SListIndexError = "List index out of bounds (%d)";

// --- Texts ------------------------------------------------------------------------------------

inline constexpr std::string_view LineBreak = "\r\n";

/// One argument of Format.
using TFormatArg = std::variant<std::int64_t, double, std::string_view>;
struct TVarRec : TFormatArg {
    template <class T>
    requires std::is_integral_v<T> TVarRec(T value)
        : TFormatArg(static_cast<std::int64_t>(value)) {}  // NOLINT(google-explicit-constructor)
    TVarRec(double value) : TFormatArg(value) {}           // NOLINT(google-explicit-constructor)
    TVarRec(std::string_view value) : TFormatArg(value) {} // NOLINT(google-explicit-constructor)
    TVarRec(const std::string& value) : TFormatArg(std::string_view(value)) {} // NOLINT
    TVarRec(const char* value) : TFormatArg(std::string_view(value)) {}        // NOLINT
};

/// The platform's format function: "%" [index ":"] ["-"] [width] ["." precision] type, with the
/// types d (decimal), u (decimal without sign), x (hexadecimal without sign), f (fixed, as
/// FloatToFixed writes it, two digits unless told), s (text, cut off at the precision) and "%%".
/// Arguments are taken in turn, or by a 0-based index. Raises EConvertError for an argument that is
/// missing or of another type.
std::string Format(std::string_view format, std::initializer_list<TVarRec> args);

/// The order of two texts by their bytes, ASCII letters without case: below, at or above 0.
int CompareText(std::string_view a, std::string_view b);
bool SameText(std::string_view a, std::string_view b);

/// The locale-aware order of two UTF-8 texts without regard to case: below, at or above 0. Marks
/// come before digits and digits before letters; the letters of the Latin, Greek and Cyrillic
/// scripts are compared without case; a byte that is not UTF-8 counts as a character behind all
/// others. It is a strict weak order on any bytes and does not ask the user's environment.
int AnsiCompareText(std::string_view a, std::string_view b);
bool AnsiSameText(std::string_view a, std::string_view b);
/// A key whose byte order is the order of AnsiCompareText, for sorting many texts.
std::string AnsiTextKey(std::string_view text);
/// A hash that is equal for texts that are the same without case.
std::size_t AnsiTextHash(std::string_view text);

/// The text in capitals of the Latin, Greek and Cyrillic scripts; bytes that are no UTF-8 stay.
std::string AnsiUpperCase(std::string_view text);

/// Whether the text is an identifier: ASCII letters, digits and "_", no digit in front, not empty.
bool IsValidIdent(std::string_view text);

std::string UpperCase(std::string_view text); ///< ASCII letters only
std::string LowerCase(std::string_view text); ///< ASCII letters only
/// Without the characters of code 0 to 32 at either end.
std::string_view Trim(std::string_view text);

std::string IntToStr(std::int64_t value);
/// The decimal number, or hexadecimal after "$" or "0x", that the whole text is, blanks in front
/// allowed. Raises EConvertError naming the text when it is none or leaves 32 bits.
std::int32_t StrToInt(std::string_view text);
std::int64_t StrToInt64(std::string_view text); ///< the same in 64 bits
/// StrToInt, or `defaultValue` for a text that it refuses.
std::int32_t StrToIntDef(std::string_view text, std::int32_t defaultValue);

// --- File names -------------------------------------------------------------------------------
// Both "\" and "/" separate folders, so that the names in old projects work on every system.

std::string_view ExtractFilePath(std::string_view name); ///< with the trailing separator
std::string_view ExtractFileName(std::string_view name);
std::string_view ExtractFileExt(std::string_view name); ///< with its point, or empty
std::string ChangeFileExt(std::string_view name, std::string_view extension);

} // namespace tarn
