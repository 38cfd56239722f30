#include "rtl/Unicode.h"

#include <cstddef>
#include <cstdint>

namespace tarn {
namespace {

constexpr char32_t Replacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c < 0xDC00;
}
bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

} // namespace

void AppendUtf8(std::string& text, char32_t character) {
    const char32_t c = character;
    const auto append = [&](char32_t bits) { text += static_cast<char>(bits); };
    if (c < 0x80) return append(c);
    if (c < 0x800) {
        append(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            append(0xE0 | c >> 12);
        } else {
            append(0xF0 | c >> 18);
            append(0x80 | (c >> 12 & 0x3F));
        }
        append(0x80 | (c >> 6 & 0x3F));
    }
    append(0x80 | (c & 0x3F));
}

char32_t TakeUtf8(std::string_view& text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xC2 ? 0 // a byte from the middle, or an overlong form
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    char32_t c = size < 2 ? first : first & (0x7Fu >> size);
    bool good = size > 0 && size <= text.size();
    for (std::size_t i = 1; good && i < size; ++i) {
        good = (byte(i) & 0xC0) == 0x80;
        c = c << 6 | (byte(i) & 0x3Fu);
    }
    if (!good || (size == 3 && c < 0x800) || (size == 4 && (c < 0x10000 || c > 0x10FFFF))) {
        text.remove_prefix(1);
        return Replacement;
    }
    text.remove_prefix(size);
    return c;
}

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        AppendUtf8(result, c);
    }
    return result;
}

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const char32_t c = TakeUtf8(text);
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        }
    }
    return result;
}

} // namespace tarn
