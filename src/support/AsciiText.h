#pragma once

#include "rtl/SameBytes.h"

#include <algorithm>
#include <string_view>

namespace tarn {

/// The order of two texts by their unsigned bytes, the letters a to z folded to A to Z: below, at
/// or above 0. Unlike CompareText, which folds to small letters, it puts "_" behind the letters.
inline int AsciiCompareText(std::string_view a, std::string_view b) {
    const auto folded = [](char c) {
        return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    };
    std::size_t at = SameBytes(a, b);
    const std::size_t size = std::min(a.size(), b.size());
    while (at < size && folded(a[at]) == folded(b[at])) ++at;
    if (at == size) return (a.size() > size) - (b.size() > size);
    return folded(a[at]) < folded(b[at]) ? -1 : 1;
}

} // namespace tarn
