#include "streaming/FormNewValue.h"

#include "rtl/SafeFile.h"
#include "rtl/TStream.h"
#include "rtl/Unicode.h"
#include "streaming/FormConvert.h"
#include "streaming/FormValues.h"
#include "streaming/TFormPath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace tarn {
namespace {

enum TValueGroup : std::uint8_t {
    vgInteger,
    vgNumber,
    vgString,
    vgIdent,
    vgBoolean,
    vgNil,
    vgNull,
    vgSet,
    vgList,
    vgCollection,
    vgBinary
};

constexpr std::string_view GroupNames[] = {
    "an integer", "a number", "a string",     "an identifier", "a Boolean",     "nil",
    "Null",       "a set",    "a value list", "a collection",  "a binary block"};

TValueGroup GroupOf(const TFormNode& value) {
    switch (value.Kind) {
    case fnInteger:
        return value.Type == vaCurrency ? vgNumber : vgInteger;
    case fnFloat:
        return vgNumber;
    case fnString:
        return vgString;
    case fnSet:
        return vgSet;
    case fnList:
        return vgList;
    case fnCollection:
        return vgCollection;
    case fnBinary:
        return vgBinary;
    default:
        break;
    }
    switch (value.Type) {
    case vaFalse:
    case vaTrue:
        return vgBoolean;
    case vaNil:
        return vgNil;
    case vaNull:
        return vgNull;
    default:
        return vgIdent;
    }
}

bool Fits(TValueGroup former, TValueGroup now) {
    if (former == now) return true;
    switch (former) {
    case vgInteger: // named constants
        return now == vgIdent;
    case vgNumber:
        return now == vgInteger;
    case vgIdent: // named constants, references to components
        return now == vgInteger || now == vgNil;
    case vgNil:
        return now == vgIdent;
    default:
        return false;
    }
}

std::u16string Widened(std::string_view bytes) {
    std::u16string wide(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), wide.begin(),
                   [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
    return wide;
}

/// Characters of a code page count as the first 256: those that most of them agree on do.
std::u16string CharactersOf(const TFormNode& string) {
    if (string.Type == vaWString) return Utf16OfBytes(string.Text);
    if (string.Type == vaUTF8String) return Utf8ToUtf16(string.Text);
    return Widened(string.Text);
}

/// A text as a string of the type that the former one has, or for one of a code page, that the text
/// needs.
void AddString(const std::u16string& text, TValueType formerType, const TFormLayout& layout,
               TFormTree& target) {
    TValueType type = formerType;
    if (type != vaWString && type != vaUTF8String) {
        const bool narrow = std::all_of(text.begin(), text.end(), [](auto c) { return c < 0x100; });
        type = narrow ? StringTypeOf(text.size()) : layout.WideText;
    }
    if (type == vaWString) return target.String(type, BytesOfUtf16(text));
    if (type == vaUTF8String) return target.String(type, Utf16ToUtf8(text));
    std::string bytes;
    for (const char16_t c : text) bytes += static_cast<char>(c);
    target.String(type, bytes);
}

/// An integer or a float that takes the place of a number that is no integer.
void AddNumber(const TFormTree& parsed, TFormNodeIndex index, const TFormNode& former,
               const TFormLayout& layout, TFormTree& target) {
    const TFormNode& node = parsed[index];
    const bool plain =
        node.Kind == fnInteger ? node.Type != vaCurrency : node.Type == layout.PlainFloat;
    if (!plain) return parsed.Replay(index, target); // it says itself what it is
    const long double value =
        node.Kind == fnInteger ? static_cast<long double>(node.Number) : parsed.FloatOf(index);
    if (former.Kind == fnFloat) return target.Float(former.Type, value);
    const long double units = std::round(value * CurrencyUnit);
    constexpr auto most = static_cast<long double>(std::numeric_limits<std::int64_t>::max());
    if (!(std::fabs(units) < most)) throw EFormError("is too large for a currency");
    target.Integer(vaCurrency, static_cast<std::int64_t>(units));
}

/// Reads a value as the text form writes it. The tree then holds a form with one property.
void ParseValue(std::string_view text, const TFormLayout& layout, TFormTree& tree) {
    // With its mark, characters beyond ASCII are what the user typed, not bytes of a code page.
    std::string form(!IsAscii(text) && IsUtf8Text(text) ? Utf8Mark : "");
    form += "object Form: TForm Value = " + std::string(text) + "\nend\n";
    TFormLayout plain;
    plain.PlainFloat = layout.PlainFloat;
    plain.WideText = layout.WideText;
    bool whole = false;
    try {
        TFormFileReader reader(form, plain);
        reader.Read(tree);
        whole = reader.AtEnd() && tree.Count() > 1 && tree[1].Behind == tree.Count();
    } catch (const EStreamError&) { // what is wrong is the same for all: it is no value
    }
    if (!whole) throw EFormError("is no value of the text form");
}

} // namespace

void ReadNewValue(std::string_view text, const TFormNode* former, const TFormLayout& layout,
                  TFormTree& target) {
    constexpr std::string_view quotes = "'#";
    const bool string = former && former->Kind == fnString;
    if (string && (text.empty() || quotes.find(text.front()) == std::string_view::npos))
        return AddString(IsUtf8Text(text) ? Utf8ToUtf16(text) : Widened(text), former->Type, layout,
                         target);
    TFormTree parsed;
    ParseValue(text, layout, parsed);
    constexpr TFormNodeIndex value = 2; // behind the form and its property
    if (!former) return parsed.Replay(value, target);
    const TValueGroup formerGroup = GroupOf(*former);
    const TValueGroup group = GroupOf(parsed[value]);
    if (!Fits(formerGroup, group))
        throw EFormError("is " + std::string(GroupNames[group]) + " instead of " +
                         std::string(GroupNames[formerGroup]));
    if (string) return AddString(CharactersOf(parsed[value]), former->Type, layout, target);
    if (formerGroup == vgNumber) return AddNumber(parsed, value, *former, layout, target);
    parsed.Replay(value, target);
}

} // namespace tarn
