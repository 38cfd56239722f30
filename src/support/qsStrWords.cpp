// Blanks, words, and cutting pieces out of a text.

#include "qsStrUtils.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tarn {

namespace {

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= 32;
}

} // namespace

bool SkipBlanks(std::string_view s, int& pos, int start) {
    auto at = std::min(static_cast<std::size_t>(std::max(start, 1)) - 1, s.size());
    while (at < s.size() && IsBlank(s[at])) ++at;
    pos = static_cast<int>(at) + 1;
    return at < s.size();
}

std::string ReadWord(std::string_view s, int& pos, int start) {
    int first = 0;
    if (!SkipBlanks(s, first)) return {};
    const auto wordStart = static_cast<std::size_t>(first) - 1;
    if (const int space = CharPos(s, ' ', first); space != 0) {
        pos = space;
        return std::string(s.substr(wordStart, static_cast<std::size_t>(space - first)));
    }
    pos = static_cast<int>(s.size()) + 1;
    const auto textStart = static_cast<std::size_t>(std::max(start, 1)) - 1;
    return textStart < s.size() ? std::string(s.substr(textStart)) : std::string();
}

bool GetWord(std::string_view s, std::string& word, int& pos, int start) {
    word = ReadWord(s, pos, start);
    return !word.empty();
}

std::string NextWord(std::string_view s, int start) {
    int pos = 0;
    return ReadWord(s, pos, start);
}

bool FindWordInLine(std::string_view s, std::string_view word, int& pos) {
    std::string first;
    return GetWord(s, first, pos) && CompText(first, word);
}

void Cut(std::string& s, int index, int count, std::string& dest) {
    const auto length = static_cast<std::int64_t>(s.size());
    const std::int64_t first = std::clamp<std::int64_t>(index, 1, length + 1);
    const std::int64_t end =
        std::clamp<std::int64_t>(std::int64_t{index} + count, first, length + 1);
    const auto at = static_cast<std::size_t>(first - 1);
    const auto size = static_cast<std::size_t>(end - first);
    std::string piece = s.substr(at, size);
    s.erase(at, size);
    dest = std::move(piece);
}

} // namespace tarn
