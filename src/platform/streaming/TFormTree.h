#pragma once

#include "streaming/FormSink.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

namespace tarn {

enum TFormNodeKind : std::uint8_t {
    fnObject,
    fnProperty, ///< has one value inside
    fnItem,     ///< of a collection
    fnInteger,
    fnFloat,
    fnString,
    fnIdent,
    fnBinary,
    fnSet,
    fnElement, ///< of a set
    fnList,
    fnCollection
};

/// The number of a node in its tree.
using TFormNodeIndex = std::uint32_t;

/// One thing of a form. What is inside it follows it in the tree, up to the node `Behind`.
struct TFormNode {
    TFormNodeKind Kind = fnObject;
    TValueType Type = vaNull; ///< of a value
    bool HasOrder = false;    ///< of an item
    TFormNodeIndex Behind = 0;
    /// The value of an integer, the order of an item. For an object and a float TFormTree::Header
    /// and TFormTree::FloatOf know what it stands for.
    std::int64_t Number = 0;
    /// The name of an object, a property, an identifier or an element; the bytes of a string or a
    /// binary block.
    std::string_view Text;
    /// The 0-based place in the source: from behind what stands before the node (in a text, blanks
    /// are part of it) to behind the node. For a property's value from behind the "=" of a text.
    std::int64_t Begin = 0;
    std::int64_t End = 0;
};

/// A form file of any classes in memory, or several forms in a row: one flat list of nodes in the
/// order of the file. It is built by the calls of a parser, and repeats them.
class TFormTree : public IFormSink {
public:
    /// Texts that are part of `source` are not copied: it has to outlive the tree.
    explicit TFormTree(std::string_view source = {}) : FSourceText(source) {}
    TFormTree(const TFormTree&) = delete;
    TFormTree& operator=(const TFormTree&) = delete;

    /// The parser at work, which tells the places of nodes; it has to live as long as it calls. The
    /// places are 0 without one.
    void SetSource(const IFormSource& source);

    /// Ends what a parser that failed has left open: the tree is whole up to there.
    void CloseAll() {
        while (!FOpen.empty()) Close();
    }

    TFormNodeIndex Count() const { return static_cast<TFormNodeIndex>(FNodes.size()); }
    const TFormNode& operator[](TFormNodeIndex index) const { return FNodes[index]; }
    /// The head of the object with that index.
    const TFormHeader& Header(TFormNodeIndex object) const;
    long double FloatOf(TFormNodeIndex index) const;

    /// Hands everything to the sink again.
    void Replay(IFormSink& sink) const;
    /// Hands one node to the sink, with all that is inside.
    void Replay(TFormNodeIndex index, IFormSink& sink) const;

    void BeginObject(const TFormHeader& header) override;
    void BeginChildren() override;
    void EndObject() override { Close(); }
    void Property(std::string_view name) override;
    void Integer(TValueType type, std::int64_t value) override;
    void Float(TValueType type, long double value) override;
    void String(TValueType type, std::string_view text) override;
    void Ident(TValueType type, std::string_view name) override;
    void Binary(std::string_view bytes) override;
    void BeginSet() override { Open(fnSet); }
    void SetElement(std::string_view name) override;
    void EndSet() override { CloseValue(); }
    void BeginList() override { Open(fnList); }
    void EndList() override { CloseValue(); }
    void BeginCollection() override { Open(fnCollection); }
    void BeginItem(std::optional<std::int64_t> order) override;
    void EndItem() override { Close(); }
    void EndCollection() override { CloseValue(); }

private:
    TFormNode& Open(TFormNodeKind kind);
    void Close();
    void CloseValue();
    void AddText(TFormNodeKind kind, TValueType type, std::string_view text);
    std::string_view Keep(std::string_view text);
    std::int64_t Here() const { return FSource ? FSource->Offset() : 0; }
    void ReplayInside(TFormNodeIndex index, IFormSink& sink) const;
    void ReplayObject(TFormNodeIndex index, IFormSink& sink) const;

    std::string_view FSourceText;
    const IFormSource* FSource = nullptr;
    std::int64_t FBehind = 0; ///< where the last node or head of a node ended
    std::pmr::monotonic_buffer_resource FTexts;
    std::vector<TFormNode> FNodes;
    std::vector<TFormHeader> FHeaders;
    std::vector<long double> FFloats;
    std::vector<TFormNodeIndex> FOpen; ///< the nodes that the parser is inside of
};

} // namespace tarn
