#pragma once

/// Scanning a text many characters at a time, upwards or downwards. Internal to the string
/// utilities: positions here are 0-based, NotFound means none.
///
/// A *block* holds Width neighbouring characters. Comparing two blocks gives a block in which the
/// characters that agree are marked; Hits turns it into a bit mask with one bit set for each marked
/// character, the first character lowest.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarn::scan {

inline constexpr std::size_t NotFound = std::string_view::npos;

/// Eight characters in a machine word; for every processor.
struct TWordBlock {
    static constexpr std::size_t Width = 8;
    static constexpr std::size_t BitsPerChar = 8;
    using THits = std::uint64_t;

    std::uint64_t Word;

    static TWordBlock Load(const char* text) {
        // Spelt out so that the first character is lowest on every processor; compilers make one
        // load of it where that is the native order.
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < Width; ++i)
            word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
        return {word};
    }
    static TWordBlock Splat(char c) {
        return {static_cast<unsigned char>(c) * 0x0101010101010101ULL};
    }
    /// Marks with the top bit of each character. No carry leaves a character, so that there are no
    /// false marks.
    friend TWordBlock Equal(TWordBlock a, TWordBlock b) {
        constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7FULL;
        const std::uint64_t differing = a.Word ^ b.Word;
        return {~(((differing & low7) + low7) | differing | low7)};
    }
    friend TWordBlock operator|(TWordBlock a, TWordBlock b) { return {a.Word | b.Word}; }
    friend TWordBlock operator&(TWordBlock a, TWordBlock b) { return {a.Word & b.Word}; }
    [[nodiscard]] THits Hits() const { return Word; }
};

#if defined(__SSE2__)
/// Sixteen characters in a vector register.
struct TVectorBlock {
    static constexpr std::size_t Width = 16;
    static constexpr std::size_t BitsPerChar = 1;
    using THits = std::uint32_t;

    __m128i Vector;

    static TVectorBlock Load(const char* text) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(text))};
    }
    static TVectorBlock Splat(char c) { return {_mm_set1_epi8(c)}; }
    friend TVectorBlock Equal(TVectorBlock a, TVectorBlock b) {
        return {_mm_cmpeq_epi8(a.Vector, b.Vector)};
    }
    friend TVectorBlock operator|(TVectorBlock a, TVectorBlock b) {
        return {_mm_or_si128(a.Vector, b.Vector)};
    }
    friend TVectorBlock operator&(TVectorBlock a, TVectorBlock b) {
        return {_mm_and_si128(a.Vector, b.Vector)};
    }
    [[nodiscard]] THits Hits() const { return static_cast<THits>(_mm_movemask_epi8(Vector)); }
};
using TBestBlock = TVectorBlock;
#else
using TBestBlock = TWordBlock;
#endif

/// Matches where one of Count wanted characters stands.
template <class Block, std::size_t Count> class TAnyOf {
public:
    explicit TAnyOf(const std::array<char, Count>& wanted) : FWanted(wanted) {
        for (std::size_t i = 0; i < Count; ++i) FSplats[i] = Block::Splat(wanted[i]);
    }
    /// The marks of the block at `at`.
    Block Marks(const char* at) const {
        const Block text = Block::Load(at);
        Block marks = Equal(text, FSplats[0]);
        for (std::size_t i = 1; i < Count; ++i) marks = marks | Equal(text, FSplats[i]);
        return marks;
    }
    bool Matches(const char* at) const {
        bool any = false;
        for (const char wanted : FWanted) any |= *at == wanted;
        return any;
    }

private:
    std::array<char, Count> FWanted;
    std::array<Block, Count> FSplats;
};

/// Matches where a substring may stand: its first character here and its last one where that one
/// must be. Both ends together are rare even when each of them is common.
template <class Block, std::size_t Cases> class TBothEnds {
public:
    TBothEnds(const std::array<char, Cases>& first, const std::array<char, Cases>& last,
              std::size_t distance)
        : FFirst(first), FLast(last), FDistance(distance) {}
    Block Marks(const char* at) const { return FFirst.Marks(at) & FLast.Marks(at + FDistance); }
    bool Matches(const char* at) const {
        return FFirst.Matches(at) && FLast.Matches(at + FDistance);
    }

private:
    TAnyOf<Block, Cases> FFirst;
    TAnyOf<Block, Cases> FLast;
    std::size_t FDistance;
};

/// Blocks that are tested together before any of them is looked at closely.
inline constexpr std::size_t BlocksPerGroup = 4;

template <class Block, class Matcher> bool GroupHasMarks(const char* at, const Matcher& matcher) {
    constexpr std::size_t width = Block::Width;
    const Block low = matcher.Marks(at) | matcher.Marks(at + width);
    const Block high = matcher.Marks(at + 2 * width) | matcher.Marks(at + 3 * width);
    return (low | high).Hits() != 0;
}

/// Shows `visit` the matches among the count positions from text on, in increasing order, until it
/// returns true; the position then, or NotFound.
template <class Block, class Matcher, class Visit>
std::size_t ScanUp(const char* text, std::size_t count, const Matcher& matcher, Visit visit) {
    constexpr std::size_t group = BlocksPerGroup * Block::Width;
    std::size_t at = 0;
    const auto scanBlocks = [&](std::size_t end) {
        for (; at + Block::Width <= end; at += Block::Width) {
            for (auto hits = matcher.Marks(text + at).Hits(); hits != 0; hits &= hits - 1) {
                const std::size_t hit = at + std::countr_zero(hits) / Block::BitsPerChar;
                if (visit(hit)) return hit;
            }
        }
        return NotFound;
    };
    // A near match is common, and found sooner without a group.
    if (const std::size_t hit = scanBlocks(std::min(group, count)); hit != NotFound) return hit;
    while (at + group <= count) {
        if (!GroupHasMarks<Block>(text + at, matcher)) {
            at += group;
        } else if (const std::size_t hit = scanBlocks(at + group); hit != NotFound) {
            return hit;
        }
    }
    if (const std::size_t hit = scanBlocks(count); hit != NotFound) return hit;
    for (; at < count; ++at)
        if (matcher.Matches(text + at) && visit(at)) return at;
    return NotFound;
}

/// ScanUp in decreasing order.
template <class Block, class Matcher, class Visit>
std::size_t ScanDown(const char* text, std::size_t count, const Matcher& matcher, Visit visit) {
    constexpr std::size_t group = BlocksPerGroup * Block::Width;
    std::size_t left = count; // positions not yet looked at, all below this one
    const auto scanBlocks = [&](std::size_t end) {
        for (; left >= end + Block::Width; left -= Block::Width) {
            const std::size_t at = left - Block::Width;
            auto hits = matcher.Marks(text + at).Hits();
            while (hits != 0) {
                const auto top = static_cast<std::size_t>(std::bit_width(hits)) - 1;
                const std::size_t hit = at + top / Block::BitsPerChar;
                if (visit(hit)) return hit;
                hits ^= typename Block::THits{1} << top;
            }
        }
        return NotFound;
    };
    if (const std::size_t hit = scanBlocks(left - std::min(group, left)); hit != NotFound)
        return hit;
    while (left >= group) {
        if (!GroupHasMarks<Block>(text + left - group, matcher)) {
            left -= group;
        } else if (const std::size_t hit = scanBlocks(left - group); hit != NotFound) {
            return hit;
        }
    }
    if (const std::size_t hit = scanBlocks(0); hit != NotFound) return hit;
    while (left > 0) {
        --left;
        if (matcher.Matches(text + left) && visit(left)) return left;
    }
    return NotFound;
}

} // namespace tarn::scan
