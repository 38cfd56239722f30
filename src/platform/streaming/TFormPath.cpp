#include "streaming/TFormPath.h"

#include "rtl/TNearNames.h"

#include <charconv>
#include <optional>
#include <vector>

namespace tarn {
namespace {

/// The path behind a name that it begins with.
std::optional<std::string_view> Behind(std::string_view path, std::string_view name) {
    if (name.empty() || !SameText(path.substr(0, name.size()), name)) return std::nullopt;
    path.remove_prefix(name.size());
    if (path.empty() || path.front() == '[') return path;
    if (path.front() != '.' || path.size() == 1) return std::nullopt;
    return path.substr(1);
}

struct TIndexStep {
    TFormNodeIndex Index;
    std::string_view Rest;
};
/// "[12]" at the start of a path.
std::optional<TIndexStep> IndexStep(std::string_view path) {
    if (path.empty() || path.front() != '[') return std::nullopt;
    const std::size_t close = path.find(']');
    if (close == std::string_view::npos) return std::nullopt;
    TIndexStep step{};
    const char* const last = path.data() + close;
    const auto [end, error] = std::from_chars(path.data() + 1, last, step.Index);
    if (error != std::errc() || end != last) return std::nullopt;
    // The bracket is a name of its own for what follows it.
    const auto rest = Behind(path.substr(close), "]");
    if (!rest) return std::nullopt;
    step.Rest = *rest;
    return step;
}

/// Calls `visit` with each thing directly inside a node until it returns true.
template <class F> void EachInside(const TFormTree& tree, TFormNodeIndex node, F&& visit) {
    for (TFormNodeIndex at = node + 1; at < tree[node].Behind; at = tree[at].Behind)
        if (visit(at)) return;
}

class TSearch {
public:
    TSearch(const TFormTree& tree, std::string_view path)
        : FTree(tree), FPath(path), FReached{0, path} {}

    TFormPlace Run() {
        for (TFormNodeIndex root = 0; root < FTree.Count(); root = FTree[root].Behind)
            if (const auto rest = Behind(FPath, FTree[root].Text))
                if (InObject(root, *rest)) return FReached;
        InObject(0, FPath);
        return FReached;
    }

private:
    /// Remembers how far the path led; true at its end.
    bool Reach(TFormNodeIndex node, std::string_view rest) {
        if (rest.size() < FReached.Rest.size() || rest.empty()) FReached = {node, rest};
        return rest.empty();
    }

    bool InObject(TFormNodeIndex object, std::string_view path) {
        if (Reach(object, path) || InProperties(object, path)) return true;
        const auto index = IndexStep(path);
        TFormNodeIndex number = 0;
        bool found = false;
        EachInside(FTree, object, [&](TFormNodeIndex child) {
            if (FTree[child].Kind != fnObject) return false;
            if (index) {
                if (number++ == index->Index) found = InObject(child, index->Rest);
            } else if (const auto rest = Behind(path, FTree[child].Text)) {
                found = InObject(child, *rest);
            }
            return found;
        });
        return found;
    }

    /// Those of an object or of an item. "Font" may stand beside "Font.Name".
    bool InProperties(TFormNodeIndex node, std::string_view path) {
        bool found = false;
        EachInside(FTree, node, [&](TFormNodeIndex property) {
            if (FTree[property].Kind != fnProperty) return true;
            if (const auto rest = Behind(path, FTree[property].Text))
                found = InValue(property, property + 1, *rest);
            return found;
        });
        return found;
    }

    /// `node` is what stands for the value: its property, or the value itself in a list.
    bool InValue(TFormNodeIndex node, TFormNodeIndex value, std::string_view path) {
        const TFormNodeKind kind = FTree[value].Kind;
        const auto index = IndexStep(path);
        const bool indexed = index && (kind == fnList || kind == fnCollection);
        if ((path.empty() || indexed) && Reach(node, path)) return true;
        if (!indexed) return false;
        TFormNodeIndex number = 0;
        bool found = false;
        EachInside(FTree, value, [&](TFormNodeIndex inner) {
            if (number++ != index->Index) return false;
            found = kind == fnList ? InValue(inner, inner, index->Rest)
                                   : Reach(inner, index->Rest) || InProperties(inner, index->Rest);
            return true;
        });
        return found;
    }

    const TFormTree& FTree;
    std::string_view FPath;
    TFormPlace FReached;
};

// --- What else might have been meant ----------------------------------------------------------

class TSuggestions {
public:
    TSuggestions(const TFormTree& tree, const TFormPlace& place)
        : FTree(tree), FPlace(place), FName(place.Rest.substr(0, place.Rest.find('['))),
          FFirst(FName.substr(0, FName.find('.'))) {}

    /// "; is A or B meant?", or nothing.
    std::string Text() {
        if (FName.empty()) return {};
        Elsewhere();
        return MeantText(FNames.empty() ? Nearby() : FNames);
    }

private:
    /// Objects of that name that stand deeper in the form.
    void Elsewhere() {
        for (TFormNodeIndex at = 1; at < FTree.Count() && FNames.size() < TNearNames::Most; ++at)
            if (FTree[at].Kind == fnObject && SameText(FTree[at].Text, FFirst))
                FNames.push_back(FormPathOf(FTree, at));
    }

    /// Properties and children whose names differ a little.
    std::vector<std::string> Nearby() {
        TNearNames near(FName, FFirst);
        EachInside(FTree, FPlace.Node, [&](TFormNodeIndex inner) {
            near.Offer(FTree[inner].Text);
            return false;
        });
        return near.Nearest();
    }

    const TFormTree& FTree;
    const TFormPlace& FPlace;
    std::string_view FName;
    std::string_view FFirst;
    std::vector<std::string> FNames;
};

/// One step of a path, from a node to what stands inside it.
std::string StepTo(const TFormTree& tree, TFormNodeIndex outer, TFormNodeIndex inner) {
    const TFormNodeKind kind = tree[inner].Kind;
    const bool named = kind == fnObject || kind == fnProperty;
    if (named && !tree[inner].Text.empty()) return "." + std::string(tree[inner].Text);
    if (tree[outer].Kind == fnProperty) return {}; // the value is the property
    int number = 0;
    EachInside(tree, outer, [&](TFormNodeIndex at) {
        if (at != inner && tree[at].Kind != fnProperty) ++number;
        return at == inner;
    });
    return Format("[%d]", {number});
}

} // namespace

TFormPlace FindInForm(const TFormTree& tree, std::string_view path) {
    if (tree.Count() == 0) throw EFormError("there is no form");
    return TSearch(tree, path).Run();
}

TFormNodeIndex RequireInForm(const TFormTree& tree, std::string_view path) {
    const TFormPlace place = FindInForm(tree, path);
    if (!place.Rest.empty()) throw NotInForm(tree, place);
    return place.Node;
}

EFormError NotInForm(const TFormTree& tree, const TFormPlace& place) {
    return EFormError(FormPathOf(tree, place.Node) + " has no " + std::string(place.Rest) +
                      TSuggestions(tree, place).Text());
}

std::string FormPathOf(const TFormTree& tree, TFormNodeIndex node) {
    TFormNodeIndex at = 0;
    while (tree[at].Behind <= node) at = tree[at].Behind;
    std::string path(tree[at].Text.empty() ? tree.Header(at).ClassName : tree[at].Text);
    while (at != node) {
        const TFormNodeIndex outer = at;
        EachInside(tree, outer, [&](TFormNodeIndex inner) {
            at = inner;
            return node < tree[inner].Behind;
        });
        path += StepTo(tree, outer, at);
    }
    return path;
}

} // namespace tarn
