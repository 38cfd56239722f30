// One node of a stored tree, without the rest.

#include "TFitReader.h"

#include "TSpcCollection.h"
#include "streaming/FormValues.h"

namespace tarn {
namespace {

constexpr std::string_view NestedPrefix = "NestedObject.";

/// Whether `text` begins with the prefix, without case; then what follows it is left.
bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!SameText(text.substr(0, prefix.size()), prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// Takes a name, which has to be a whole part, from the front of a path. Blocks of keyed
/// collections are called by their names with "_" or without.
bool TakePart(std::string_view& path, std::string_view name) {
    const std::string_view plain = name.substr(0, name.size() - (name.ends_with('_') ? 1 : 0));
    for (const std::string_view each : {name, plain}) {
        std::string_view rest = path;
        if (each.empty() || !TakePrefix(rest, each) || !(rest.empty() || TakePrefix(rest, ".")))
            continue;
        path = rest;
        return true;
    }
    return false;
}

} // namespace

bool TFitReader::ReadNode(TPersistent& node, std::string_view path) {
    ReadSignature();
    TFilerFlags flags;
    std::int32_t childPos = 0;
    ReadPrefix(flags, childPos);
    const std::string className = ReadStr();
    const std::string name = ReadStr();
    const TPlace place(*this, name.empty() ? className : name);
    TReferences references(*this);
    bool found = path.empty();
    while (!EndOfList()) {
        FPropAt = Position();
        const std::string prop = ReadStr();
        std::string_view below = prop;
        std::string_view rest = path;
        if (path.empty() || TakePrefix(below, std::string(path) + '.')) {
            ReadNamedProperty(node, below);
            found = true;
        } else if (TakePart(rest, prop) && NextValue() == vaCollection) {
            found = ReadNodeValue(node, rest) || found;
        } else {
            SkipValue();
        }
    }
    ReadListEnd();
    references.Close();
    return found;
}

/// A keyed collection: the whole of it, or the item that the path begins with.
bool TFitReader::ReadNodeValue(TPersistent& node, std::string_view path) {
    if (path.empty()) {
        auto* const collection = ClassCast<TSpcCollection>(&node);
        if (collection)
            ReadFixedCollection(*collection, true);
        else
            SkipValue();
        return collection != nullptr;
    }
    bool found = false;
    ReadValue();
    for (int index = 0; !EndOfList(); ++index) {
        const TPlace place(*this, index);
        if (IsInteger(NextValue())) ReadInt64();
        ReadListBegin();
        const std::int64_t at = Position();
        std::string_view rest = path;
        std::string ident;
        if (!EndOfList()) {
            (void)ReadShortText();
            if (IsText(NextValue())) ident = ReadString();
        }
        SetPosition(at);
        if (TakePart(rest, ident))
            found = ReadNodeItem(node, rest) || found;
        else
            while (!EndOfList()) SkipProperty();
        ReadListEnd();
    }
    ReadListEnd();
    return found;
}

bool TFitReader::ReadNodeItem(TPersistent& node, std::string_view path) {
    if (path.empty()) {
        if (auto* const item = ClassCast<TSpcItem>(&node)) {
            const std::int64_t at = Position();
            const std::string key = EndOfList() ? std::string() : ReadStr();
            SetPosition(at);
            ReadKeyedItem(*item, key);
            return true;
        }
    }
    return ReadPropsBelow(node, path.empty() ? std::string() : std::string(path) + '.');
}

/// Reads the properties whose names begin with the prefix, or with that of a wrapped object and the
/// prefix.
bool TFitReader::ReadPropsBelow(TPersistent& node, std::string_view prefix) {
    bool found = false;
    while (!EndOfList()) {
        FPropAt = Position();
        const std::string name = ReadStr();
        std::string_view below = name;
        const bool nested = TakePrefix(below, NestedPrefix);
        if ((nested || !prefix.empty()) && TakePrefix(below, prefix)) {
            ReadNamedProperty(node, below);
            found = true;
        } else {
            SkipValue();
        }
    }
    return found;
}

} // namespace tarn
