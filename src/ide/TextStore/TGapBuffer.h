#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace tarn {

/// A sequence in one block of memory with a gap at the place of the last change, so that changes
/// near each other move only what lies between them. The block comes from malloc and grows through
/// realloc: the C library remaps the pages of a big block and never holds it twice.
///
/// Indexes are 0-based and not checked. References and spans end with the next change.
/// Whatever grows raises std::bad_alloc and leaves the sequence as it was.
template <typename T> class TGapBuffer {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");

public:
    TGapBuffer() = default;
    TGapBuffer(TGapBuffer&& other) noexcept { Swap(other); }
    TGapBuffer& operator=(TGapBuffer&& other) noexcept {
        TGapBuffer(std::move(other)).Swap(*this);
        return *this;
    }
    TGapBuffer(const TGapBuffer&) = delete;
    TGapBuffer& operator=(const TGapBuffer&) = delete;
    ~TGapBuffer() { std::free(FData); }

    std::size_t Size() const { return FCapacity - GapSize(); }
    bool Empty() const { return Size() == 0; }
    const T& operator[](std::size_t at) const { return FData[at < FGap ? at : at + GapSize()]; }

    /// The elements from..to in the two pieces that lie before and behind the gap; either may be
    /// empty.
    std::array<std::span<T>, 2> Pieces(std::size_t from, std::size_t to) {
        const std::size_t cut = std::clamp(FGap, from, to);
        return {Piece(from, cut, 0), Piece(cut, to, GapSize())};
    }
    std::array<std::span<const T>, 2> Pieces(std::size_t from, std::size_t to) const {
        const std::size_t cut = std::clamp(FGap, from, to);
        return {Piece(from, cut, 0), Piece(cut, to, GapSize())};
    }
    /// The elements before the gap: after an insertion, all up to its end.
    std::span<const T> Front() const { return Piece(0, FGap, 0); }
    /// Puts the gap at `end`, so that all elements before it lie in one piece, and hands them out.
    std::span<T> Front(std::size_t end) {
        MoveGap(end);
        return Piece(0, end, 0);
    }

    /// Makes sure that `count` more elements can be inserted without asking for memory.
    void Reserve(std::size_t count) {
        if (count <= GapSize()) return;
        // An eighth more than before keeps a long run of small growths linear, and is little
        // enough for a text that just fits.
        const std::size_t needed = Size() + count;
        SetCapacity(std::max(needed, FCapacity + FCapacity / 8 + 16 / sizeof(T)));
    }
    /// Gives unused memory back, as far as the system takes it.
    void Shrink() {
        MoveGap(Size());
        if (Empty())
            *this = TGapBuffer();
        else if (GapSize() > 0)
            SetCapacity(FGap);
    }

    /// Puts the gap at `at` and hands it out to be written to. As much as was reserved may be
    /// written; Commit says how much it is.
    T* Room(std::size_t at) {
        MoveGap(at);
        return FData + FGap;
    }
    void Commit(std::size_t count) { FGap += count; }

    void Insert(std::size_t at, std::span<const T> elements) {
        Reserve(elements.size());
        Move(Room(at), elements.data(), elements.size());
        Commit(elements.size());
    }
    /// Removes the elements from..to; the gap then stands at `from`.
    void Erase(std::size_t from, std::size_t to) {
        MoveGap(std::clamp(FGap, from, to));
        FGapEnd += to - FGap;
        FGap = from;
    }

private:
    std::size_t GapSize() const { return FGapEnd - FGap; }
    std::span<T> Piece(std::size_t from, std::size_t to, std::size_t skip) const {
        return {FData + from + (from < to ? skip : 0), to - from};
    }
    static void Move(T* to, const T* from, std::size_t count) {
        if (count > 0) std::memmove(to, from, count * sizeof(T));
    }
    void MoveGap(std::size_t at) {
        if (at < FGap)
            Move(FData + at + GapSize(), FData + at, FGap - at);
        else
            Move(FData + FGap, FData + FGapEnd, at - FGap);
        FGapEnd = at + GapSize();
        FGap = at;
    }
    void SetCapacity(std::size_t capacity) {
        const std::size_t tail = FCapacity - FGapEnd;
        if (capacity > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
        void* data = std::realloc(static_cast<void*>(FData), capacity * sizeof(T));
        if (data == nullptr) throw std::bad_alloc();
        FData = static_cast<T*>(data);
        Move(FData + capacity - tail, FData + FGapEnd, tail);
        FGapEnd = capacity - tail;
        FCapacity = capacity;
    }
    void Swap(TGapBuffer& other) noexcept {
        std::swap(FData, other.FData);
        std::swap(FCapacity, other.FCapacity);
        std::swap(FGap, other.FGap);
        std::swap(FGapEnd, other.FGapEnd);
    }

    T* FData = nullptr;
    std::size_t FCapacity = 0;
    std::size_t FGap = 0; // the gap is FGap..FGapEnd of the block
    std::size_t FGapEnd = 0;
};

} // namespace tarn
