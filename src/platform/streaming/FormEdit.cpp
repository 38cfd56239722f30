#include "streaming/FormEdit.h"

#include "rtl/Unicode.h"
#include "streaming/FormConvert.h"
#include "streaming/FormResource.h"
#include "streaming/FormValues.h"
#include "streaming/TFormTextParser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace tarn {
namespace {

constexpr std::string_view Blanks = " \t\r\n";

std::size_t BehindBlanks(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(Blanks, at), text.size());
}

std::size_t BeforeBlanks(std::string_view text, std::size_t at) {
    return text.substr(0, at).find_last_not_of(Blanks) + 1; // npos + 1: there are only blanks
}

/// A piece of a file; of a text without the blanks behind it, but with those before it.
struct TSpan {
    std::size_t Begin;
    std::size_t End;

    TSpan(const TFormNode& node, std::string_view file, TFormFileKind kind)
        : Begin(static_cast<std::size_t>(node.Begin)), End(static_cast<std::size_t>(node.End)) {
        if (kind != fkText) return;
        Begin = BeforeBlanks(file, Begin);
        End = BeforeBlanks(file, End);
    }
    std::string_view Of(std::string_view file) const { return file.substr(Begin, End - Begin); }
};

// --- The new value ----------------------------------------------------------------------------

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
    std::string form(!IsAscii(text) && IsUtf8(text) ? "\xEF\xBB\xBF" : "");
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

/// Puts the new value into `target` as one that can take the place of `former`.
void ReadValue(std::string_view text, const TFormNode* former, const TFormLayout& layout,
               TFormTree& target) {
    constexpr std::string_view quotes = "'#";
    const bool string = former && former->Kind == fnString;
    if (string && (text.empty() || quotes.find(text.front()) == std::string_view::npos))
        return AddString(IsUtf8(text) ? Utf8ToUtf16(text) : Widened(text), former->Type, layout,
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

// --- The new bytes ----------------------------------------------------------------------------

/// Repeats the part of a form that leads to one value, with another value in its place: what is
/// printed of that is indented and nested as in the form itself.
class TWayTo {
public:
    /// \param target a property, or a value of a list; to add a property, its object or item
    TWayTo(const TFormTree& tree, TFormNodeIndex target, std::string_view addedName,
           const TFormTree& value, IFormSink& sink)
        : FTree(tree), FTarget(target), FAddedName(addedName), FValue(value), FSink(sink) {}

    /// Returns the number that the changed node has in what was repeated.
    TFormNodeIndex Repeat() {
        TFormNodeIndex root = 0;
        while (FTree[root].Behind <= FTarget) root = FTree[root].Behind;
        Repeat(root);
        return FBefore;
    }

private:
    TFormNodeIndex Toward(TFormNodeIndex outer) const {
        TFormNodeIndex at = outer + 1;
        while (FTree[at].Behind <= FTarget) at = FTree[at].Behind;
        return at;
    }
    void Property(std::string_view name) {
        FSink.Property(name);
        FValue.Replay(FSink);
    }
    void Inside(TFormNodeIndex at) { at == FTarget ? Property(FAddedName) : Repeat(Toward(at)); }
    void Object(TFormNodeIndex at) {
        FSink.BeginObject(FTree.Header(at));
        const bool inChild = at != FTarget && FTree[Toward(at)].Kind == fnObject;
        if (!inChild) Inside(at);
        FSink.BeginChildren();
        if (inChild) Inside(at);
        FSink.EndObject();
    }

    void Repeat(TFormNodeIndex at) {
        const TFormNode& node = FTree[at];
        if (at != FTarget || !FAddedName.empty()) ++FBefore;
        switch (node.Kind) {
        case fnObject:
            return Object(at);
        case fnItem:
            FSink.BeginItem(node.HasOrder ? std::optional(node.Number) : std::nullopt);
            Inside(at);
            return FSink.EndItem();
        case fnProperty:
            if (at == FTarget) return Property(node.Text);
            FSink.Property(node.Text);
            return Repeat(Toward(at));
        case fnCollection:
            FSink.BeginCollection();
            Repeat(Toward(at));
            return FSink.EndCollection();
        case fnList:
            if (at == FTarget) break;
            FSink.BeginList();
            Repeat(Toward(at));
            return FSink.EndList();
        default:
            break;
        }
        FValue.Replay(FSink);
    }

    const TFormTree& FTree;
    TFormNodeIndex FTarget;
    std::string_view FAddedName;
    const TFormTree& FValue;
    IFormSink& FSink;
    TFormNodeIndex FBefore = 0;
};

class TFormEditor {
public:
    TFormEditor(std::string_view bytes, const TFormChange& change)
        : FBytes(bytes), FReader(bytes), FTree(bytes), FChange(change) {
        FTree.SetSource(FReader);
        FReader.ReadAll(FTree);
    }

    std::vector<TFormPatch> Run() {
        const TFormPlace place = FindInForm(FTree, FChange.Path);
        std::vector<TFormPatch> patches;
        if (place.Rest.empty())
            patches.push_back(Replace(place.Node));
        else if (FChange.Add && TakesProperty(place))
            patches.push_back(Add(place));
        else
            throw NotInForm(FTree, place);
        if (FReader.Kind() == fkResource) patches.insert(patches.begin(), Resized(patches[0]));
        return patches;
    }

private:
    bool TakesProperty(const TFormPlace& place) const {
        const TFormNodeKind kind = FTree[place.Node].Kind;
        return (kind == fnObject || kind == fnItem) && IsFormName(place.Rest);
    }

    TFormPatch Replace(TFormNodeIndex target) {
        const bool property = FTree[target].Kind == fnProperty;
        const TFormNode& former = FTree[property ? target + 1 : target];
        if (former.Kind == fnObject || former.Kind == fnItem)
            throw EFormError(FormPathOf(FTree, target) + " is no property");
        Print(target, {}, &former);
        const TFormNode& now = FPrinted[FChanged + (property ? 1 : 0)];
        TSpan span(former, FBytes, FReader.Kind());
        TSpan with(now, FText, FReader.Kind());
        if (FReader.Kind() == fkText) KeepBlanks(span, with);
        return {span.Begin, span.End, std::string(with.Of(FText))};
    }

    /// A value that begins on the same line, or on a new one, as the former did begins at its
    /// place.
    void KeepBlanks(TSpan& span, TSpan& with) const {
        const std::size_t formerAt = BehindBlanks(FBytes, span.Begin);
        const std::size_t nowAt = BehindBlanks(FText, with.Begin);
        const auto breaks = [](std::string_view text, std::size_t begin, std::size_t end) {
            return text.substr(begin, end - begin).find('\n') != std::string_view::npos;
        };
        if (breaks(FBytes, span.Begin, formerAt) != breaks(FText, with.Begin, nowAt)) return;
        span.Begin = formerAt;
        with.Begin = nowAt;
    }

    TFormPatch Add(const TFormPlace& place) {
        Print(place.Node, place.Rest, nullptr);
        const std::size_t at = BehindProperties(place.Node);
        const TSpan with(FPrinted[FChanged], FText, FReader.Kind());
        return {at, at, std::string(with.Of(FText))};
    }

    /// Where the next property of an object or an item belongs.
    std::size_t BehindProperties(TFormNodeIndex node) const {
        const TFormNodeIndex behind = FTree[node].Behind;
        TFormNodeIndex at = node + 1;
        std::int64_t end = -1;
        for (; at < behind && FTree[at].Kind == fnProperty; at = FTree[at].Behind)
            end = FTree[at].End;
        const bool text = FReader.Kind() == fkText;
        // Without properties: before what ends their list, a byte or the word "end".
        constexpr std::int64_t endByte = 1;
        constexpr std::int64_t endWord = 3;
        if (end < 0 && at < behind)
            end = FTree[at].Begin - (text ? 0 : endByte);
        else if (end < 0)
            end = FTree[node].End - (text                           ? endWord
                                     : FTree[node].Kind == fnObject ? 2 * endByte
                                                                    : endByte);
        const auto place = static_cast<std::size_t>(end);
        return text ? BeforeBlanks(FBytes, place) : place;
    }

    /// Prints the way to the changed property, and reads that again for the place of its value.
    void Print(TFormNodeIndex target, std::string_view addedName, const TFormNode* former) {
        const TFormLayout layout = FReader.Layout();
        TFormTree value;
        try {
            ReadValue(FChange.Value, former, layout, value);
        } catch (const EFormError& error) {
            throw EFormError(FormPathOf(FTree, target) +
                             (addedName.empty() ? "" : "." + std::string(addedName)) + ": " +
                             std::string(FChange.Value.substr(0, LongestShown)) + " " +
                             error.what());
        }
        const TFormFileKind kind = FReader.Kind() == fkText ? fkText : fkBinary;
        {
            TFormFileWriter writer(kind, layout, FText);
            FChanged = TWayTo(FTree, target, addedName, value, writer).Repeat();
        }
        TFormFileReader reader(FText, layout);
        FPrinted.SetSource(reader);
        reader.Read(FPrinted);
    }

    /// The size in front of the resource that a patch is in.
    TFormPatch Resized(const TFormPatch& patch) const {
        std::size_t at = 0;
        for (const std::size_t sizeAt : FReader.ResourceSizes())
            if (sizeAt < patch.Begin) at = sizeAt;
        constexpr auto bytes = static_cast<std::size_t>(TResourceHead::SizeBytes);
        std::int64_t size = 0;
        for (std::size_t i = bytes; i-- > 0;)
            size = size << 8 | static_cast<unsigned char>(FBytes[at + i]);
        size += static_cast<std::int64_t>(patch.Bytes.size()) -
                static_cast<std::int64_t>(patch.End - patch.Begin);
        return {at, at + bytes, ResourceSizeBytes(size)};
    }

    static constexpr std::size_t LongestShown = 60;

    std::string_view FBytes;
    TFormFileReader FReader;
    TFormTree FTree;
    TFormChange FChange;
    std::string FText;  ///< the way to the changed property in the file's form
    TFormTree FPrinted; ///< and as a tree
    TFormNodeIndex FChanged = 0;
};

} // namespace

std::vector<TFormPatch> SetInForm(std::string_view bytes, const TFormChange& change) {
    return TFormEditor(bytes, change).Run();
}

std::vector<std::string_view> PatchedPieces(std::string_view bytes,
                                            const std::vector<TFormPatch>& patches) {
    std::vector<std::string_view> pieces;
    std::size_t done = 0;
    for (const TFormPatch& patch : patches) {
        pieces.push_back(bytes.substr(done, patch.Begin - done));
        pieces.push_back(patch.Bytes);
        done = patch.End;
    }
    pieces.push_back(bytes.substr(done));
    return pieces;
}

std::string FormTextOf(const TFormTree& tree, TFormNodeIndex node, const TFormLayout& layout) {
    std::string text;
    const TFormNodeKind kind = tree[node].Kind;
    if (kind == fnObject) {
        TFormFileWriter writer(fkText, layout, text);
        tree.Replay(node, writer);
        return text;
    }
    TFormNodeIndex place = 2; // in a form of one property
    {
        TFormFileWriter writer(fkText, layout, text);
        writer.BeginObject({.ClassName = "TForm", .ObjectName = "Form"});
        writer.Property("Value");
        if (kind == fnItem) {
            writer.BeginCollection();
            tree.Replay(node, writer);
            writer.EndCollection();
            ++place;
        } else
            tree.Replay(kind == fnProperty ? node + 1 : node, writer);
        writer.BeginChildren();
        writer.EndObject();
    }
    TFormFileReader reader(text, layout);
    TFormTree printed(text);
    printed.SetSource(reader);
    reader.Read(printed);
    const TSpan span(printed[place], text, fkText);
    return text.substr(BehindBlanks(text, span.Begin), span.End - BehindBlanks(text, span.Begin));
}

} // namespace tarn
