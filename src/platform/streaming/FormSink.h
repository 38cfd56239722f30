#pragma once

#include "rtl/TSet.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarn {

/// The byte before each value of a component stream. The order is the format's.
enum TValueType : std::uint8_t {
    vaNull,     ///< no value; also the end of a list
    vaList,     ///< values up to vaNull
    vaInt8,     ///< signed, 1 byte
    vaInt16,    ///< signed, 2 bytes
    vaInt32,    ///< signed, 4 bytes
    vaExtended, ///< floating, 10 bytes
    vaString,   ///< length of 1 byte, characters of the file's code page
    vaIdent,    ///< length of 1 byte, an identifier, which may be dotted
    vaFalse,
    vaTrue,
    vaBinary,  ///< length of 4 bytes, bytes
    vaSet,     ///< identifiers as in vaIdent without their type byte, up to an empty one
    vaLString, ///< length of 4 bytes, characters of the file's code page
    vaNil,
    vaCollection, ///< items up to vaNull; an item is an optional integer and a vaList of properties
    vaSingle,     ///< floating, 4 bytes
    vaCurrency,   ///< 8 bytes, in ten-thousandths
    vaDate,       ///< floating, 8 bytes, days
    vaWString,    ///< length in units of 4 bytes, UTF-16
    vaInt64,      ///< signed, 8 bytes
    vaUTF8String, ///< length in bytes of 4 bytes, UTF-8
    vaDouble      ///< floating, 8 bytes
};

/// What the prefix before an object of a component stream says.
enum TFilerFlag : std::uint8_t {
    ffInherited, ///< changes an object that an ancestor has
    ffChildPos,  ///< an integer follows: the object's place among its siblings
    ffInline     ///< a frame, whose own children are streamed as inherited ones
};
using TFilerFlags = TSet<TFilerFlag>;

/// The head of an object. The texts belong to the source and end with the call that hands them out.
struct TFormHeader {
    TFilerFlags Flags = {};
    std::int32_t ChildPos = 0; ///< with ffChildPos
    std::string_view ClassName;
    std::string_view ObjectName; ///< may be empty
};

/// Takes a form piece by piece, in its order, from a parser of any of its forms or from a tree.
/// An object is BeginObject, its properties, BeginChildren, its child objects, EndObject. A
/// property is Property and one value; a value is one call, or Begin…, its parts and End…. The
/// views end with the call.
class IFormSink {
public:
    virtual ~IFormSink() = default;

    virtual void BeginObject(const TFormHeader& header) = 0;
    virtual void BeginChildren() = 0;
    virtual void EndObject() = 0;
    virtual void Property(std::string_view name) = 0;

    /// vaInt8, vaInt16, vaInt32, vaInt64; vaCurrency in ten-thousandths.
    virtual void Integer(TValueType type, std::int64_t value) = 0;
    /// vaExtended, vaSingle, vaDouble, vaDate.
    virtual void Float(TValueType type, long double value) = 0;
    /// vaString and vaLString as bytes of an unknown code page, vaUTF8String, vaWString as the
    /// bytes of UTF-16, little end first.
    virtual void String(TValueType type, std::string_view text) = 0;
    /// vaIdent; vaFalse, vaTrue, vaNil and vaNull with the names that they have in text.
    virtual void Ident(TValueType type, std::string_view name) = 0;
    virtual void Binary(std::string_view bytes) = 0;

    virtual void BeginSet() = 0;
    virtual void SetElement(std::string_view name) = 0;
    virtual void EndSet() = 0;
    virtual void BeginList() = 0;
    virtual void EndList() = 0;
    virtual void BeginCollection() = 0;
    /// Properties follow up to EndItem.
    virtual void BeginItem(std::optional<std::int64_t> order) = 0;
    virtual void EndItem() = 0;
    virtual void EndCollection() = 0;
};

/// How versions of the IDE differ in laying out the same form. A parser recognises the layout from
/// what it reads, and the writer of the other form follows it; the defaults are the classic IDE's.
struct TFormLayout {
    std::string_view LineBreak = "\r\n";
    bool Utf8Mark = false;        ///< the text begins with the mark of UTF-8
    bool EscapeHighBytes = false; ///< characters from 128 on stand as "#233", not as themselves
    bool DoubledQuotes = false;   ///< a quote in a string stands as two, not as "#39"
    bool FixedFloats = false;     ///< "1.500000000000000000" instead of "1.5"
    bool FinalBreak = true;       ///< the last line has a line break, too
    TValueType PlainFloat = vaExtended; ///< the binary type of a number without suffix
    TValueType WideText = vaWString;    ///< the binary type of a text with characters above 255
    bool WideCodes = false; ///< and of one with characters from 128 on by number, else bytes
};

/// A parser at work, for sinks that want to know places.
class IFormSource {
public:
    virtual ~IFormSource() = default;
    /// The 0-based offset in the source of the next byte that the parser will look at: called from
    /// Property it is where the value's text or type byte begins (blanks before it apart), called
    /// from the end of a value it is behind the value.
    virtual std::int64_t Offset() const = 0;
};

/// Objects, lists and collections may be nested this deep in a form; deeper is an error.
inline constexpr int MaxFormDepth = 512;

} // namespace tarn
