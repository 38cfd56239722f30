#pragma once

#include <array>
#include <cstddef>

namespace tarn {

using TCaseTable = std::array<char, 256>;

constexpr unsigned char CharCode(char c) {
    return static_cast<unsigned char>(c);
}

/// Each character's other-case partner: a..z and A..Z, and in code page 1251 the Cyrillic letters
/// 224..255 and 192..223, 184 and 168. Every other code is its own partner.
inline constexpr TCaseTable CaseTable = [] {
    TCaseTable table{};
    for (std::size_t code = 0; code < table.size(); ++code) table[code] = static_cast<char>(code);
    const auto pair = [&table](std::size_t lower, std::size_t upper) {
        table[lower] = static_cast<char>(upper);
        table[upper] = static_cast<char>(lower);
    };
    for (std::size_t code = 'a'; code <= 'z'; ++code) pair(code, code - 32);
    for (std::size_t code = 224; code <= 255; ++code) pair(code, code - 32);
    pair(184, 168);
    return table;
}();

/// One character for both of a pair. Equal folds mean "the same or the partner", since partners
/// are mutual.
inline constexpr TCaseTable FoldTable = [] {
    TCaseTable table{};
    for (std::size_t code = 0; code < table.size(); ++code) {
        const char partner = CaseTable[code];
        table[code] = CharCode(partner) < code ? partner : static_cast<char>(code);
    }
    return table;
}();

constexpr char OtherCase(char c) {
    return CaseTable[CharCode(c)];
}
constexpr char FoldCase(char c) {
    return FoldTable[CharCode(c)];
}

} // namespace tarn
