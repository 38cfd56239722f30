// Finding, copying up to a mark, and comparing: thin layers over the searches.

#include "qsStrUtils.h"

#include "qsCaseTable.h"

#include <cstddef>
#include <cstring>

namespace tarn {

namespace {

bool Found(int& pos, int found) {
    pos = found;
    return found != 0;
}

/// The characters from position `first` up to and including `last`; empty when first > last.
/// A string of its own, so that the target may be the very string that s views.
std::string Between(std::string_view s, int first, int last) {
    if (first > last) return {};
    return std::string(
        s.substr(static_cast<std::size_t>(first) - 1, static_cast<std::size_t>(last - first) + 1));
}

bool CopyUpTo(std::string_view s, int mark, std::string& dest, int start, int& pos) {
    if (!Found(pos, mark)) return false;
    dest = Between(s, start, mark - 1);
    return true;
}

bool CopyBackTo(std::string_view s, int mark, int markLength, std::string& dest, int start,
                int& pos) {
    if (!Found(pos, mark)) return false;
    dest = Between(s, mark + markLength, start == -1 ? static_cast<int>(s.size()) : start);
    return true;
}

} // namespace

bool FindCharPos(std::string_view s, char c, int& pos, int start) {
    return Found(pos, CharPos(s, c, start));
}

bool FindCharPosI(std::string_view s, char c, int& pos, int start) {
    return Found(pos, CharPosI(s, c, start));
}

bool FindCharPosR(std::string_view s, char c, int& pos, int start) {
    return Found(pos, CharPosR(s, c, start));
}

bool FindCharPosRI(std::string_view s, char c, int& pos, int start) {
    return Found(pos, CharPosRI(s, c, start));
}

bool FindCharsPos(std::string_view s, const TCharSet& chars, int& pos, int start) {
    return Found(pos, CharsPos(s, chars, start));
}

bool FindCharsPosR(std::string_view s, const TCharSet& chars, int& pos, int start) {
    return Found(pos, CharsPosR(s, chars, start));
}

bool FindStrPos(std::string_view s, std::string_view sub, int& pos, int start) {
    return Found(pos, StringPos(s, sub, start));
}

bool FindStrPosI(std::string_view s, std::string_view sub, int& pos, int start) {
    return Found(pos, StringPosI(s, sub, start));
}

bool FindStrPosR(std::string_view s, std::string_view sub, int& pos, int start) {
    return Found(pos, StringPosR(s, sub, start));
}

bool FindStrPosRI(std::string_view s, std::string_view sub, int& pos, int start) {
    return Found(pos, StringPosRI(s, sub, start));
}

bool FindStrPosEx(std::string_view s, std::string_view sub, int& pos) {
    return Found(pos, sub.empty() ? 0 : StringPos(s, sub));
}

bool CopyToChar(std::string_view s, char c, std::string& dest, int start, int& pos,
                bool ignoreCase) {
    const int mark = ignoreCase ? CharPosI(s, c, start) : CharPos(s, c, start);
    return CopyUpTo(s, mark, dest, start, pos);
}

bool CopyToCharR(std::string_view s, char c, std::string& dest, int start, int& pos,
                 bool ignoreCase) {
    const int mark = ignoreCase ? CharPosRI(s, c, start) : CharPosR(s, c, start);
    return CopyBackTo(s, mark, 1, dest, start, pos);
}

bool CopyToChars(std::string_view s, const TCharSet& chars, std::string& dest, int start,
                 int& pos) {
    return CopyUpTo(s, CharsPos(s, chars, start), dest, start, pos);
}

bool CopyToCharsR(std::string_view s, const TCharSet& chars, std::string& dest, int start,
                  int& pos) {
    return CopyBackTo(s, CharsPosR(s, chars, start), 1, dest, start, pos);
}

bool CopyToStr(std::string_view s, std::string_view sub, std::string& dest, int start, int& pos,
               bool ignoreCase) {
    const int mark = ignoreCase ? StringPosI(s, sub, start) : StringPos(s, sub, start);
    return CopyUpTo(s, mark, dest, start, pos);
}

bool CopyToStrR(std::string_view s, std::string_view sub, std::string& dest, int start, int& pos,
                bool ignoreCase) {
    const int mark = ignoreCase ? StringPosRI(s, sub, start) : StringPosR(s, sub, start);
    return CopyBackTo(s, mark, static_cast<int>(sub.size()), dest, start, pos);
}

bool CopyToStrEx(std::string_view s, std::string_view sub, std::string& dest, int& pos) {
    return CopyUpTo(s, sub.empty() ? 0 : StringPos(s, sub), dest, 1, pos);
}

bool CompStr(const char* p1, const char* p2, int len) {
    return len <= 0 || std::memcmp(p1, p2, static_cast<std::size_t>(len)) == 0;
}

bool CompStrI(const char* p1, const char* p2, int len) {
    for (int i = 0; i < len; ++i)
        if (FoldCase(p1[i]) != FoldCase(p2[i])) return false;
    return true;
}

bool CompString(std::string_view s1, std::string_view s2) {
    return s1 == s2;
}

bool CompText(std::string_view s1, std::string_view s2) {
    return s1.size() == s2.size() && CompStrI(s1.data(), s2.data(), static_cast<int>(s1.size()));
}

} // namespace tarn
