#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn {

/// A set of single-byte characters, held by value in 256 bits. Written as the literal of its
/// members, so that `CharsPos(line, ",;")` reads like the question asked.
class TCharSet {
public:
    constexpr TCharSet() = default;

    /// The characters of a literal, without its closing NUL; "\0 " holds NUL and space.
    // Implicit on purpose, see the class comment.
    template <std::size_t Size>
    constexpr TCharSet(const char (&members)[Size])
        : TCharSet(std::string_view(members, Size - 1)) {}

    constexpr explicit TCharSet(std::string_view members) {
        for (const char c : members) Include(c);
    }

    constexpr TCharSet& Include(char c) {
        const auto code = static_cast<unsigned char>(c);
        FQuarters[code / 64U] |= std::uint64_t{1} << (code % 64U);
        return *this;
    }

    [[nodiscard]] constexpr bool Contains(char c) const {
        const auto code = static_cast<unsigned char>(c);
        return ((FQuarters[code / 64U] >> (code % 64U)) & 1U) != 0;
    }

    /// The bits of the character codes from 64 * index on, the lowest code in the lowest bit.
    [[nodiscard]] constexpr std::uint64_t Quarter(std::size_t index) const {
        return FQuarters[index];
    }

    friend constexpr bool operator==(const TCharSet&, const TCharSet&) = default;

private:
    std::array<std::uint64_t, 4> FQuarters{};
};

} // namespace tarn
