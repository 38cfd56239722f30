#pragma once

#include <algorithm>
#include <string_view>

namespace tarn {

/// The order of two texts by their unsigned bytes, the letters a to z folded to A to Z: below, at
/// or above 0. Unlike CompareText, which folds to small letters, it puts "_" behind the letters.
inline int AsciiCompareText(std::string_view a, std::string_view b) {
    const auto folded = [](char c) {
        return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    };
    const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), [&](char p, char q) {
        return p == q || folded(p) == folded(q);
    });
    if (x == a.end() || y == b.end()) return (x != a.end()) - (y != b.end());
    return folded(*x) < folded(*y) ? -1 : 1;
}

} // namespace tarn
