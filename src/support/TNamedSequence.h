#pragma once

#include "TSequence.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn {

/// The first item of each name in a sequence, names without case. It is told of every change.
template <class Item> class TFirstOfName {
public:
    void Reserve(int count) { FGroups.reserve(static_cast<std::size_t>(count)); }

    Item* Find(std::string_view name) const {
        const auto found = FGroups.find(name);
        return found == FGroups.end() ? nullptr : found->second.First;
    }

    /// Takes up an item that stands in the sequence.
    void Add(Item& item) {
        const auto [at, isNew] = FGroups.try_emplace(item.Name, TGroup{&item, nullptr});
        if (isNew) return;
        if (!at->second.Later) at->second.Later = std::make_unique<TLater>();
        if (TBefore()(&item, at->second.First)) {
            at->second.Later->insert(at->second.First);
            Lead(at, item);
        } else
            at->second.Later->insert(at->second.Later->end(), &item);
    }

    /// Forgets an item, which still stands in the sequence under its name.
    void Remove(Item& item) {
        const auto at = FGroups.find(item.Name);
        TGroup& group = at->second;
        if (group.First != &item)
            group.Later->erase(&item);
        else if (group.Later && !group.Later->empty())
            Lead(at, *group.Later->extract(group.Later->begin()).value());
        else
            FGroups.erase(at);
    }

private:
    struct TBefore {
        bool operator()(const Item* a, const Item* b) const {
            return TSequence<Item>::IndexOf(*a) < TSequence<Item>::IndexOf(*b);
        }
    };
    using TLater = std::set<Item*, TBefore>;
    struct TGroup {
        Item* First;
        std::unique_ptr<TLater> Later; ///< the others of the name, in their order
    };
    struct THash {
        std::size_t operator()(std::string_view name) const { return AnsiTextHash(name); }
    };
    struct TSame {
        bool operator()(std::string_view a, std::string_view b) const { return AnsiSameText(a, b); }
    };
    // A group's key is the name of its first item.
    using TGroups = std::unordered_map<std::string_view, TGroup, THash, TSame>;

    void Lead(typename TGroups::iterator at, Item& first) {
        auto node = FGroups.extract(at);
        node.key() = first.Name;
        node.mapped().First = &first;
        FGroups.insert(std::move(node));
    }

    TGroups FGroups;
};

/// A sequence of items with a `Name`, which may repeat. Names are compared without case and
/// looked up by an index beside the sequence, so that the first item of a name is found in constant
/// time, sorted or not, and every change takes O(log n). A sorted sequence keeps the order of
/// AnsiCompareText.
/// \tparam Item derives from TSequenceNode; somebody else owns the items
template <class Item> class TNamedSequence {
public:
    int Count() const { return FItems.Count(); }
    Item& At(int index) const { return FItems.At(index); }
    static int IndexOf(const Item& item) { return TSequence<Item>::IndexOf(item); }
    Item* First() const { return FItems.First(); }
    static Item* Next(const Item& item) { return TSequence<Item>::Next(item); }

    /// The first item of that name in the current order; null when there is none.
    Item* Find(std::string_view name) const {
        constexpr int fewItems = 12; // reading this many names is faster than any index
        if (!FIndex && Count() <= fewItems) {
            Item* item = First();
            while (item && !AnsiSameText(item->Name, name)) item = Next(*item);
            return item;
        }
        if (!FIndex) {
            FIndex = std::make_unique<TFirstOfName<Item>>();
            FIndex->Reserve(Count());
            for (Item* item = First(); item; item = Next(*item)) FIndex->Add(*item);
        }
        return FIndex->Find(name);
    }

    /// Appends the item; in a sorted sequence it goes to its place, before its equals.
    void Add(Item& item) {
        Insert(FSorted ? CountWhile([&](int order) { return order < 0; }, item.Name) : Count(),
               item);
    }
    void Insert(int index, Item& item) {
        FItems.Insert(index, item);
        if (FIndex) FIndex->Add(item);
    }
    void Remove(Item& item) {
        if (FIndex) FIndex->Remove(item);
        FItems.Remove(item);
    }
    /// Takes all items out and hands each to `free`; the sequence becomes unsorted.
    template <class F> void Dispose(F&& free) {
        FIndex.reset();
        FSorted = false;
        FItems.Dispose(free);
    }
    /// Makes these items the sequence, as they stand; it becomes unsorted.
    void Build(std::span<TSequenceNode* const> items) {
        FItems.Build(items);
        FIndex.reset();
        FSorted = false;
    }

    /// Gives an item another name. In a sorted sequence it goes where a stable sort would bring it:
    /// among its new equals it stays on the side from which it came.
    void Rename(Item& item, std::string_view name) {
        const int order = AnsiCompareText(name, item.Name);
        const int index = IndexOf(item);
        Remove(item);
        item.Name = name;
        if (!FSorted || order == 0)
            Insert(index, item);
        else if (order > 0)
            Add(item);
        else
            Insert(CountWhile([](int o) { return o <= 0; }, item.Name), item);
    }

    bool Sorted() const { return FSorted; }
    /// Switching it on sorts; equal names keep their order.
    void SetSorted(bool value) {
        if (value && !FSorted) Sort();
        FSorted = value;
    }

private:
    template <class F> int CountWhile(F&& holds, std::string_view name) const {
        return FItems.CountWhile(
            [&](const Item& item) { return holds(AnsiCompareText(item.Name, name)); });
    }

    void Sort() {
        bool inOrder = true;
        std::vector<std::pair<std::string, TSequenceNode*>> keys;
        keys.reserve(static_cast<std::size_t>(Count()));
        for (Item* item = First(); item; item = Next(*item)) {
            keys.emplace_back(AnsiTextKey(item->Name), item);
            const std::size_t last = keys.size() - 1;
            inOrder = inOrder && (last == 0 || keys[last - 1].first <= keys[last].first);
        }
        if (inOrder) return;
        std::stable_sort(keys.begin(), keys.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<TSequenceNode*> sorted;
        sorted.reserve(keys.size());
        for (const auto& key : keys) sorted.push_back(key.second);
        // The index stands: equal names have kept their order among each other.
        FItems.Build(sorted);
    }

    TSequence<Item> FItems;
    mutable std::unique_ptr<TFirstOfName<Item>> FIndex; ///< made with the first look-up
    bool FSorted = false;
};

} // namespace tarn
