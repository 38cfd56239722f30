#pragma once

#include "TSequence.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn {

/// The first item of each name in a sequence, names without case. It is told of every change. A
/// table of open addressing: an entry stands at the place of its hash or in the run behind it.
template <class Item> class TFirstOfName {
public:
    TFirstOfName() : FEntries(16) {}
    /// Takes up all items of a sequence.
    explicit TFirstOfName(const TSequence<Item>& items) {
        std::size_t size = 16;
        while (IsFull(static_cast<std::size_t>(items.Count()), size)) size *= 2;
        FEntries.resize(size);
        // The hashes are made beforehand: the walks into the table then overlap in the processor.
        std::vector<std::uint32_t> hashes;
        hashes.reserve(static_cast<std::size_t>(items.Count()));
        for (Item* item = items.First(); item; item = items.Next(*item))
            hashes.push_back(HashOf(item->Name));
        auto hash = hashes.cbegin();
        for (Item* item = items.First(); item; item = items.Next(*item)) Add(*item, *hash++);
    }

    Item* Find(std::string_view name) const { return FEntries[Place(name, HashOf(name))].First; }

    /// Takes up an item that stands in the sequence.
    void Add(Item& item) { Add(item, HashOf(item.Name)); }

    /// Forgets an item, which still stands in the sequence under its name.
    void Remove(Item& item) {
        const std::size_t place = Place(item.Name, HashOf(item.Name));
        TEntry& entry = FEntries[place];
        if (!entry.Repeats) return Vacate(place);
        const auto later = FLater.find(entry.First);
        if (entry.First != &item)
            later->second.erase(&item);
        else
            Lead(entry, *later->second.extract(later->second.begin()).value());
        if (const auto left = FLater.find(entry.First); left->second.empty()) {
            FLater.erase(left);
            entry.Repeats = false;
        }
    }

private:
    struct TBefore {
        bool operator()(const Item* a, const Item* b) const {
            return TSequence<Item>::IndexOf(*a) < TSequence<Item>::IndexOf(*b);
        }
    };
    using TLater = std::set<Item*, TBefore>;
    struct TEntry {
        Item* First = nullptr; ///< null in a free entry
        std::uint32_t Hash = 0;
        bool Repeats = false; ///< there are later items of this name
    };

    void Add(Item& item, std::uint32_t hash) {
        TEntry& entry = FEntries[Place(item.Name, hash)];
        if (!entry.First) {
            entry = {&item, hash};
            if (IsFull(++FCount, FEntries.size())) Resize(FEntries.size() * 2);
            return;
        }
        Item* later = &item;
        if (TBefore()(&item, entry.First)) {
            later = entry.First;
            Lead(entry, item);
        }
        TLater& others = FLater[entry.First];
        others.insert(others.end(), later);
        entry.Repeats = true;
    }

    void Lead(TEntry& entry, Item& first) {
        if (entry.Repeats) {
            auto others = FLater.extract(entry.First);
            others.key() = &first;
            FLater.insert(std::move(others));
        }
        entry.First = &first;
    }

    static bool IsFull(std::size_t count, std::size_t size) { return count > size / 2; }
    static std::uint32_t HashOf(std::string_view name) {
        return static_cast<std::uint32_t>(AnsiTextHash(name));
    }
    std::size_t Home(std::uint32_t hash) const { return hash & (FEntries.size() - 1); }
    std::size_t Behind(std::size_t place) const { return (place + 1) & (FEntries.size() - 1); }

    /// Where the name stands or would have to stand.
    std::size_t Place(std::string_view name, std::uint32_t hash) const {
        std::size_t place = Home(hash);
        while (FEntries[place].First &&
               (FEntries[place].Hash != hash || !AnsiSameText(FEntries[place].First->Name, name)))
            place = Behind(place);
        return place;
    }

    /// Frees an entry and closes the gap, so that no run is broken.
    void Vacate(std::size_t gap) {
        FEntries[gap] = {};
        --FCount;
        for (std::size_t place = Behind(gap); FEntries[place].First; place = Behind(place)) {
            const std::size_t mask = FEntries.size() - 1;
            const std::size_t fromHome = (place - Home(FEntries[place].Hash)) & mask;
            if (fromHome < ((place - gap) & mask)) continue;
            FEntries[gap] = std::exchange(FEntries[place], {});
            gap = place;
        }
    }

    void Resize(std::size_t size) {
        const std::vector<TEntry> old = std::exchange(FEntries, std::vector<TEntry>(size));
        for (const TEntry& entry : old) {
            if (!entry.First) continue;
            std::size_t place = Home(entry.Hash);
            while (FEntries[place].First) place = Behind(place);
            FEntries[place] = entry;
        }
    }

    std::vector<TEntry> FEntries; ///< a power of two of them
    std::size_t FCount = 0;       ///< of those in use
    /// The others of a name, in their order, by the first one.
    std::unordered_map<Item*, TLater> FLater;
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
        if (!FIndex) FIndex = std::make_unique<TFirstOfName<Item>>(FItems);
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
