#include "streaming/TFormTree.h"

#include <cstring>
#include <functional>
#include <limits>
#include <new>

namespace tarn {

// --- Building ---------------------------------------------------------------------------------

void TFormTree::SetSource(const IFormSource& source) {
    FSource = &source;
    FBehind = source.Offset();
}

TFormNode& TFormTree::Open(TFormNodeKind kind) {
    if (FNodes.size() >= std::numeric_limits<TFormNodeIndex>::max()) throw std::bad_alloc();
    FOpen.push_back(Count());
    TFormNode& node = FNodes.emplace_back();
    node.Kind = kind;
    node.Begin = FBehind;
    FBehind = Here();
    return node;
}

void TFormTree::Close() {
    TFormNode& node = FNodes[FOpen.back()];
    FOpen.pop_back();
    node.Behind = Count();
    node.End = FBehind = Here();
}

/// A value ends its property, too.
void TFormTree::CloseValue() {
    Close();
    if (!FOpen.empty() && FNodes[FOpen.back()].Kind == fnProperty) Close();
}

std::string_view TFormTree::Keep(std::string_view text) {
    if (text.empty()) return {};
    const std::less<> before;
    const char* const end = FSourceText.data() + FSourceText.size();
    if (!before(text.data(), FSourceText.data()) && before(text.data(), end)) return text;
    char* const copy = static_cast<char*>(FTexts.allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
}

void TFormTree::AddText(TFormNodeKind kind, TValueType type, std::string_view text) {
    TFormNode& node = Open(kind);
    node.Type = type;
    node.Text = Keep(text);
}

void TFormTree::BeginObject(const TFormHeader& header) {
    TFormNode& node = Open(fnObject);
    node.Number = static_cast<std::int64_t>(FHeaders.size());
    node.Text = Keep(header.ObjectName);
    TFormHeader& kept = FHeaders.emplace_back(header);
    kept.ObjectName = node.Text;
    kept.ClassName = Keep(header.ClassName);
}

void TFormTree::BeginChildren() {
    FBehind = Here();
}

void TFormTree::Property(std::string_view name) {
    AddText(fnProperty, vaNull, name);
}

void TFormTree::Integer(TValueType type, std::int64_t value) {
    TFormNode& node = Open(fnInteger);
    node.Type = type;
    node.Number = value;
    CloseValue();
}

void TFormTree::Float(TValueType type, long double value) {
    TFormNode& node = Open(fnFloat);
    node.Type = type;
    node.Number = static_cast<std::int64_t>(FFloats.size());
    FFloats.push_back(value);
    CloseValue();
}

void TFormTree::String(TValueType type, std::string_view text) {
    AddText(fnString, type, text);
    CloseValue();
}

void TFormTree::Ident(TValueType type, std::string_view name) {
    AddText(fnIdent, type, name);
    CloseValue();
}

void TFormTree::Binary(std::string_view bytes) {
    AddText(fnBinary, vaBinary, bytes);
    CloseValue();
}

void TFormTree::SetElement(std::string_view name) {
    AddText(fnElement, vaIdent, name);
    Close();
}

void TFormTree::BeginItem(std::optional<std::int64_t> order) {
    TFormNode& node = Open(fnItem);
    node.HasOrder = order.has_value();
    node.Number = order.value_or(0);
}

// --- Reading ----------------------------------------------------------------------------------

const TFormHeader& TFormTree::Header(TFormNodeIndex object) const {
    return FHeaders[static_cast<std::size_t>(FNodes[object].Number)];
}

long double TFormTree::FloatOf(TFormNodeIndex index) const {
    return FFloats[static_cast<std::size_t>(FNodes[index].Number)];
}

void TFormTree::Replay(IFormSink& sink) const {
    for (TFormNodeIndex at = 0; at < Count(); at = FNodes[at].Behind) Replay(at, sink);
}

void TFormTree::ReplayInside(TFormNodeIndex index, IFormSink& sink) const {
    for (TFormNodeIndex at = index + 1; at < FNodes[index].Behind; at = FNodes[at].Behind)
        Replay(at, sink);
}

void TFormTree::ReplayObject(TFormNodeIndex index, IFormSink& sink) const {
    sink.BeginObject(Header(index));
    const TFormNodeIndex behind = FNodes[index].Behind;
    TFormNodeIndex at = index + 1;
    for (; at < behind && FNodes[at].Kind == fnProperty; at = FNodes[at].Behind) Replay(at, sink);
    sink.BeginChildren();
    for (; at < behind; at = FNodes[at].Behind) Replay(at, sink);
    sink.EndObject();
}

void TFormTree::Replay(TFormNodeIndex index, IFormSink& sink) const {
    const TFormNode& node = FNodes[index];
    switch (node.Kind) {
    case fnObject:
        return ReplayObject(index, sink);
    case fnProperty:
        sink.Property(node.Text);
        return ReplayInside(index, sink);
    case fnItem:
        sink.BeginItem(node.HasOrder ? std::optional(node.Number) : std::nullopt);
        ReplayInside(index, sink);
        return sink.EndItem();
    case fnInteger:
        return sink.Integer(node.Type, node.Number);
    case fnFloat:
        return sink.Float(node.Type, FloatOf(index));
    case fnString:
        return sink.String(node.Type, node.Text);
    case fnIdent:
        return sink.Ident(node.Type, node.Text);
    case fnBinary:
        return sink.Binary(node.Text);
    case fnSet:
        sink.BeginSet();
        ReplayInside(index, sink);
        return sink.EndSet();
    case fnElement:
        return sink.SetElement(node.Text);
    case fnList:
        sink.BeginList();
        ReplayInside(index, sink);
        return sink.EndList();
    case fnCollection:
        sink.BeginCollection();
        ReplayInside(index, sink);
        return sink.EndCollection();
    }
}

} // namespace tarn
