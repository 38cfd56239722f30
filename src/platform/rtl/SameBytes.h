#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tarn {

/// How many bytes at the front of both texts are the same. It reads eight at a time: names that
/// are looked up among their like differ late.
inline std::size_t SameBytes(std::string_view a, std::string_view b) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    const auto difference = [&](std::size_t at) {
        std::uint64_t x = 0;
        std::uint64_t y = 0;
        std::memcpy(&x, a.data() + at, step);
        std::memcpy(&y, b.data() + at, step);
        return x ^ y;
    };
    const auto firstByte = [](std::uint64_t bits) {
        const bool little = std::endian::native == std::endian::little;
        return static_cast<std::size_t>(little ? std::countr_zero(bits) : std::countl_zero(bits)) /
               8;
    };
    const std::size_t size = std::min(a.size(), b.size());
    if (size < step) {
        std::size_t same = 0;
        while (same < size && a[same] == b[same]) ++same;
        return same;
    }
    std::size_t at = 0;
    for (; at + step < size; at += step)
        if (const std::uint64_t bits = difference(at)) return at + firstByte(bits);
    // The last eight bytes, some of which have been read already.
    const std::uint64_t bits = difference(size - step);
    return bits ? size - step + firstByte(bits) : size;
}

} // namespace tarn
