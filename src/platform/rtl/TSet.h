#pragma once

#include <cstdint>
#include <initializer_list>

namespace tarn {

/// A set of enumeration values with ordinals 0 to 31, as one 32-bit mask: bit n stands for the
/// value of ordinal n.
template <class E> class TSet {
public:
    using TElement = E;

    constexpr TSet() = default;
    constexpr TSet(std::initializer_list<E> values) {
        for (E value : values) FMask |= Bit(value);
    }
    static constexpr TSet FromMask(std::uint32_t mask) {
        TSet result;
        result.FMask = mask;
        return result;
    }

    constexpr bool Contains(E value) const { return (FMask & Bit(value)) != 0; }
    constexpr bool IsEmpty() const { return FMask == 0; }
    constexpr std::uint32_t Mask() const { return FMask; }

    constexpr TSet& Include(E value) {
        FMask |= Bit(value);
        return *this;
    }
    constexpr TSet& Exclude(E value) {
        FMask &= ~Bit(value);
        return *this;
    }

    friend constexpr TSet operator+(TSet a, TSet b) { return FromMask(a.FMask | b.FMask); }
    friend constexpr TSet operator-(TSet a, TSet b) { return FromMask(a.FMask & ~b.FMask); }
    friend constexpr bool operator==(TSet, TSet) = default;

private:
    static constexpr std::uint32_t Bit(E value) {
        return std::uint32_t{1} << static_cast<unsigned>(value);
    }

    std::uint32_t FMask = 0;
};

} // namespace tarn
