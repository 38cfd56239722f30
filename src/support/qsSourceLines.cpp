// Finding lines and dropping blank ones.

#include "qsSourceLines.h"

#include "qsStrUtils.h"
#include "rtl/UpdateOnce.h"

namespace tarn {

namespace {

bool IsLine(const TStrings& strings, int index) {
    return index >= 0 && index < strings.Count();
}

bool IsBlankLine(const TStrings& strings, int index) {
    int pos = 0;
    return !SkipBlanks(strings.Get(index), pos);
}

int BlankRun(const TStrings& strings, int index) {
    int end = index;
    while (IsLine(strings, end) && IsBlankLine(strings, end)) ++end;
    return end - index;
}

/// Whether lines may change places: a sorted list has its own idea of where they belong.
bool MayExchange(const TStrings& strings) {
    const auto* list = dynamic_cast<const TStringList*>(&strings);
    return list == nullptr || !list->Sorted();
}

/// Deletes count lines at index. Each deletion in the middle moves all lines after it, so that the
/// lines behind a long run change places with it first, and it goes at the end.
void DeleteLines(TStrings& strings, int index, int count) {
    constexpr int longRun = 8;
    int at = index;
    UpdateOnce(strings, [&] {
        if (count >= longRun && MayExchange(strings)) {
            const int kept = strings.Count() - count;
            for (; at < kept; ++at) strings.Exchange(at, at + count);
        }
        for (int left = count; left > 0; --left) strings.Delete(at + left - 1);
    });
}

template <class FindInLine>
bool FindLineWhere(TStrings& strings, int& index, FindInLine findInLine) {
    for (; DeleteBlankLines(strings, index); ++index)
        if (findInLine(strings.Get(index))) return true;
    return false;
}

} // namespace

bool SkipBlankLines(const TStrings& strings, int& index) {
    int line = index;
    // The start is tested, not the line walked to: a list that is blank to its end is an error.
    while (IsLine(strings, index) && IsBlankLine(strings, line)) ++line;
    index = line;
    return IsLine(strings, index);
}

bool DeleteBlankLines(TStrings& strings, int& index) {
    if (const int run = BlankRun(strings, index); run > 0) DeleteLines(strings, index, run);
    return IsLine(strings, index);
}

bool FindLine(TStrings& strings, char ch, int& index, int& pos) {
    return FindLineWhere(strings, index,
                         [&](std::string_view line) { return FindCharPosR(line, ch, pos); });
}

bool FindLineEx(TStrings& strings, std::string_view str, int& index, int& pos) {
    return FindLineWhere(strings, index,
                         [&](std::string_view line) { return FindStrPosR(line, str, pos); });
}

bool FindWordInLines(std::string_view word, const TStrings& strings, int& index) {
    int pos = 0;
    for (int line = index; SkipBlankLines(strings, line); ++line) {
        if (!FindWordInLine(strings.Get(line), word, pos)) continue;
        index = line;
        return true;
    }
    return false;
}

} // namespace tarn
