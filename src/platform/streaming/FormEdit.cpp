#include "streaming/FormEdit.h"

#include "streaming/FormConvert.h"
#include "streaming/FormNewValue.h"
#include "streaming/FormResource.h"
#include "streaming/TFormTextParser.h"

#include <algorithm>
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
            ReadNewValue(FChange.Value, former, layout, value);
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
