#pragma once

#include <cstdint>
#include <span>
#include <utility>

namespace tarn {

/// The place of an item in a TSequence. An item derives from it and stands in one sequence at most.
struct TSequenceNode {
    TSequenceNode* Left = nullptr;
    TSequenceNode* Right = nullptr;
    TSequenceNode* Parent = nullptr;
    int Size = 1; ///< of the subtree
};

/// The untyped part of TSequence: a binary tree balanced by the sizes of its subtrees. A subtree
/// that leans too far is built anew, which costs each change O(log n) on average.
class TSequenceTree {
public:
    int Count() const { return SizeOf(FRoot); }
    TSequenceNode* At(int index) const;
    static int IndexOf(const TSequenceNode& node);
    TSequenceNode* First() const;
    static TSequenceNode* Next(const TSequenceNode& node);
    void Insert(int index, TSequenceNode& node);
    void Remove(TSequenceNode& node);
    void Build(std::span<TSequenceNode* const> nodes);

protected:
    TSequenceNode* FRoot = nullptr;

private:
    static int SizeOf(const TSequenceNode* node) { return node ? node->Size : 0; }
    static bool Leans(const TSequenceNode& node);
    TSequenceNode*& LinkTo(const TSequenceNode& node);
    /// Sets the sizes from a changed place up to the root and straightens the highest subtree that
    /// leans.
    void Settle(TSequenceNode* from);
    void Rebuild(TSequenceNode& top);
};

/// A list of items that somebody else owns: access by 0-based index, the index of an item,
/// insertion and removal anywhere all take O(log n).
template <class Item> class TSequence : private TSequenceTree {
public:
    using TSequenceTree::Count;
    /// The item at an index, which must be in the list.
    Item& At(int index) const { return static_cast<Item&>(*TSequenceTree::At(index)); }
    static int IndexOf(const Item& item) { return TSequenceTree::IndexOf(item); }
    Item* First() const { return static_cast<Item*>(TSequenceTree::First()); }
    static Item* Next(const Item& item) { return static_cast<Item*>(TSequenceTree::Next(item)); }

    void Insert(int index, Item& item) { TSequenceTree::Insert(index, item); }
    void Remove(Item& item) { TSequenceTree::Remove(item); }
    /// Makes these items the list; those it held before are forgotten.
    void Build(std::span<TSequenceNode* const> items) { TSequenceTree::Build(items); }

    /// Takes all items out and hands each to `free`.
    template <class F> void Dispose(F&& free) { DisposeOf(std::exchange(FRoot, nullptr), free); }

    /// How many items at the front `before` holds for; it must hold for none behind the first for
    /// which it does not.
    template <class F> int CountWhile(F&& before) const {
        int count = 0;
        for (const TSequenceNode* node = FRoot; node;) {
            const bool right = before(static_cast<const Item&>(*node));
            if (right) count += 1 + (node->Left ? node->Left->Size : 0);
            node = right ? node->Right : node->Left;
        }
        return count;
    }

private:
    /// Both branches go before their node, whose links lead to them.
    template <class F> static void DisposeOf(TSequenceNode* node, F& free) {
        if (!node) return;
        DisposeOf(node->Left, free);
        DisposeOf(node->Right, free);
        free(static_cast<Item&>(*node));
    }
};

} // namespace tarn
