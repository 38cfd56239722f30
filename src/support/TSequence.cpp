#include "TSequence.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tarn {
namespace {

/// A perfectly balanced tree of these nodes.
TSequenceNode* Balanced(std::span<TSequenceNode* const> nodes, TSequenceNode* parent) {
    if (nodes.empty()) return nullptr;
    const std::size_t middle = nodes.size() / 2;
    TSequenceNode* const node = nodes[middle];
    node->Parent = parent;
    node->Size = static_cast<int>(nodes.size());
    node->Left = Balanced(nodes.first(middle), node);
    node->Right = Balanced(nodes.subspan(middle + 1), node);
    return node;
}

TSequenceNode* Leftmost(TSequenceNode* node) {
    while (node && node->Left) node = node->Left;
    return node;
}

} // namespace

TSequenceNode* TSequenceTree::At(int index) const {
    TSequenceNode* node = FRoot;
    while (index != SizeOf(node->Left)) {
        const int left = SizeOf(node->Left);
        const bool toLeft = index < left;
        if (!toLeft) index -= left + 1;
        node = toLeft ? node->Left : node->Right;
    }
    return node;
}

int TSequenceTree::IndexOf(const TSequenceNode& node) {
    int index = SizeOf(node.Left);
    for (const TSequenceNode* child = &node; child->Parent; child = child->Parent)
        if (child == child->Parent->Right) index += SizeOf(child->Parent->Left) + 1;
    return index;
}

TSequenceNode* TSequenceTree::First() const {
    return Leftmost(FRoot);
}

TSequenceNode* TSequenceTree::Next(const TSequenceNode& node) {
    if (node.Right) return Leftmost(node.Right);
    const TSequenceNode* child = &node;
    while (child->Parent && child == child->Parent->Right) child = child->Parent;
    return child->Parent;
}

void TSequenceTree::Insert(int index, TSequenceNode& node) {
    TSequenceNode* parent = nullptr;
    TSequenceNode** link = &FRoot;
    while (*link) {
        parent = *link;
        const int left = SizeOf(parent->Left);
        const bool toLeft = index <= left;
        if (!toLeft) index -= left + 1;
        link = toLeft ? &parent->Left : &parent->Right;
    }
    node = {nullptr, nullptr, parent, 1};
    *link = &node;
    Settle(parent);
}

void TSequenceTree::Remove(TSequenceNode& node) {
    TSequenceNode* heir = node.Left ? node.Left : node.Right;
    TSequenceNode* changed = node.Parent;
    if (node.Left && node.Right) {
        heir = Leftmost(node.Right);
        changed = heir;
        if (heir != node.Right) {
            changed = heir->Parent;
            changed->Left = heir->Right;
            if (heir->Right) heir->Right->Parent = changed;
            heir->Right = node.Right;
            node.Right->Parent = heir;
        }
        heir->Left = node.Left;
        node.Left->Parent = heir;
    }
    LinkTo(node) = heir;
    if (heir) heir->Parent = node.Parent;
    node = {};
    Settle(changed);
}

void TSequenceTree::Build(std::span<TSequenceNode* const> nodes) {
    FRoot = Balanced(nodes, nullptr);
}

TSequenceNode*& TSequenceTree::LinkTo(const TSequenceNode& node) {
    if (!node.Parent) return FRoot;
    return node.Parent->Left == &node ? node.Parent->Left : node.Parent->Right;
}

bool TSequenceTree::Leans(const TSequenceNode& node) {
    // At most three quarters of a subtree on one side: not deeper than 2.4 times the best tree.
    return 4 * std::int64_t{std::max(SizeOf(node.Left), SizeOf(node.Right))} >
           3 * std::int64_t{node.Size} + 3;
}

void TSequenceTree::Settle(TSequenceNode* from) {
    TSequenceNode* highest = nullptr;
    for (TSequenceNode* node = from; node; node = node->Parent) {
        node->Size = SizeOf(node->Left) + SizeOf(node->Right) + 1;
        if (Leans(*node)) highest = node;
    }
    if (highest) Rebuild(*highest);
}

void TSequenceTree::Rebuild(TSequenceNode& top) {
    std::vector<TSequenceNode*> nodes;
    nodes.reserve(static_cast<std::size_t>(top.Size));
    TSequenceNode* node = Leftmost(&top);
    for (int left = top.Size; left > 0; --left, node = Next(*node)) nodes.push_back(node);
    TSequenceNode*& link = LinkTo(top);
    link = Balanced(nodes, top.Parent);
}

} // namespace tarn
