#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace tarn {

/// A list in memory with 0-based indexes, kept in chunks, so that insertion and removal move the
/// items of one chunk and not all that follow. Indexes are those of items in the list, or the count
/// where an insertion appends; nothing checks them.
/// \tparam T moved without errors
template <class T> class TChunkedList {
public:
    int Count() const { return FCount; }

    const T& At(int index) const {
        const TPlace place = Locate(index);
        return FChunks[place.Chunk].Items[place.Offset];
    }
    T& At(int index) { return const_cast<T&>(std::as_const(*this).At(index)); }

    void Insert(int index, T item) {
        const TPlace place = MakeRoom(index);
        std::vector<T>& items = FChunks[place.Chunk].Items;
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(place.Offset), std::move(item));
        Shift(place.Chunk + 1, 1);
    }

    /// Removes an item and hands it out.
    T Take(int index) {
        const TPlace place = Locate(index);
        std::vector<T>& items = FChunks[place.Chunk].Items;
        T item = std::move(items[place.Offset]);
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(place.Offset));
        Shift(place.Chunk + 1, -1);
        if (items.empty()) FChunks.erase(ChunkAt(place.Chunk));
        return item;
    }

    /// How many items at the front `below` holds for; it must hold for none behind the first for
    /// which it does not.
    template <class F> int CountWhile(F&& below) const {
        const auto chunk = std::partition_point(
            FChunks.begin(), FChunks.end(), [&](const TChunk& c) { return below(c.Items.back()); });
        if (chunk == FChunks.end()) return FCount;
        const auto item = std::partition_point(chunk->Items.begin(), chunk->Items.end(), below);
        return chunk->Start + static_cast<int>(item - chunk->Items.begin());
    }

    /// Puts the items into the order of these, each of which is one of their indexes.
    void Reorder(const std::vector<std::size_t>& order) {
        TChunkedList sorted;
        for (const std::size_t index : order)
            sorted.Insert(sorted.FCount, std::move(At(static_cast<int>(index))));
        *this = std::move(sorted);
    }

private:
    /// Small enough to be moved quickly, large enough for few chunks.
    static constexpr std::size_t ChunkSize = 512;

    struct TChunk {
        int Start = 0; ///< the index of its first item
        std::vector<T> Items;
    };
    struct TPlace {
        std::size_t Chunk, Offset;
    };

    auto ChunkAt(std::size_t chunk) { return FChunks.begin() + static_cast<std::ptrdiff_t>(chunk); }

    TPlace Locate(int index) const {
        // Where nothing has been inserted or removed, every chunk but the last is full.
        std::size_t chunk = static_cast<std::size_t>(index) / ChunkSize;
        // An index in front of the chunk becomes a huge offset.
        const bool there =
            chunk < FChunks.size() &&
            static_cast<std::size_t>(index - FChunks[chunk].Start) < FChunks[chunk].Items.size();
        if (!there) {
            const auto behind =
                std::upper_bound(FChunks.begin(), FChunks.end(), index,
                                 [](int i, const TChunk& c) { return i < c.Start; });
            chunk = static_cast<std::size_t>(behind - FChunks.begin()) - 1;
        }
        return {chunk, static_cast<std::size_t>(index - FChunks[chunk].Start)};
    }

    /// The place for a new item in a chunk that is not full.
    TPlace MakeRoom(int index) {
        if (index == FCount) {
            if (FChunks.empty() || FChunks.back().Items.size() == ChunkSize)
                AddChunk(FChunks.size(), FCount, FChunks.empty() ? 4 : ChunkSize);
            return {FChunks.size() - 1, FChunks.back().Items.size()};
        }
        const TPlace place = Locate(index);
        if (FChunks[place.Chunk].Items.size() < ChunkSize) return place;
        Split(place.Chunk);
        return Locate(index);
    }

    void Split(std::size_t chunk) {
        constexpr std::size_t half = ChunkSize / 2;
        AddChunk(chunk + 1, FChunks[chunk].Start + static_cast<int>(half), ChunkSize);
        std::vector<T>& items = FChunks[chunk].Items;
        const auto middle = items.begin() + static_cast<std::ptrdiff_t>(half);
        std::move(middle, items.end(), std::back_inserter(FChunks[chunk + 1].Items));
        items.erase(middle, items.end());
    }

    /// An empty chunk that takes its first items without asking for memory.
    void AddChunk(std::size_t chunk, int start, std::size_t room) {
        TChunk added{start, {}};
        added.Items.reserve(room);
        FChunks.insert(ChunkAt(chunk), std::move(added));
    }

    /// Counts one item more or less in front of the chunks from `first`.
    void Shift(std::size_t first, int by) {
        FCount += by;
        for (std::size_t i = first; i < FChunks.size(); ++i) FChunks[i].Start += by;
    }

    int FCount = 0;
    std::vector<TChunk> FChunks; ///< none of them empty
};

} // namespace tarn
