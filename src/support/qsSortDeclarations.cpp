// Sorting the declarations of a piece of source.

#include "qsSourceLines.h"

#include "qsStrUtils.h"
#include "rtl/SysUtils.h"
#include "rtl/UpdateOnce.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

namespace {

using TLines = std::vector<std::string>;

/// One item of the order: neighbouring lines, known by their key once they are taken together.
struct TDeclaration {
    std::string Key;
    std::span<std::string> Lines;
};

bool IsInitialWord(std::string_view word) {
    constexpr std::size_t prefix = 2; // "iw"
    return std::any_of(std::begin(InitialWordsNames), std::end(InitialWordsNames),
                       [&](std::string_view name) { return CompText(name.substr(prefix), word); });
}

TLines LinesWithoutBlankOnes(const TStrings& strings) {
    TLines lines;
    const int count = strings.Count();
    lines.reserve(static_cast<std::size_t>(count));
    int pos = 0;
    for (int i = 0; i < count; ++i)
        if (const std::string& line = strings.Get(i); SkipBlanks(line, pos)) lines.push_back(line);
    return lines;
}

/// How many characters stand before the declared name: indentation, initial word, blanks.
std::size_t PrefixLength(std::string_view line) {
    std::string word;
    int wordEnd = 0;
    int pos = 0;
    const bool hasInitialWord = GetWord(line, word, wordEnd) && IsInitialWord(word);
    SkipBlanks(line, pos, hasInitialWord ? wordEnd : 1);
    return static_cast<std::size_t>(pos) - 1;
}

/// How many of the lines, which are not none, the declaration at their front takes: those up to the
/// first one with its end mark. 0 when there is none.
std::size_t DeclarationSize(std::span<const std::string> lines, std::size_t prefixLength) {
    const std::string& head = lines.front();
    const std::string_view name = std::string_view(head).substr(prefixLength);
    if (name.starts_with("//")) return 1;

    const bool isComment = name.starts_with("{") || name.starts_with("(*");
    const bool hasParameters = !isComment && CharPos(head, '(') != 0;
    const std::string_view endMark = name.starts_with("{")    ? "}"
                                     : name.starts_with("(*") ? "*)"
                                     : hasParameters          ? ")"
                                                              : ";";
    const auto end = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return StringPos(line, endMark) != 0;
    });
    if (end == lines.end() || (hasParameters && CharPos(*end, ';') == 0)) return 0;
    return static_cast<std::size_t>(end - lines.begin()) + 1;
}

/// The key of a declaration: name first, then the lines after it, then what stood before the name.
std::string KeyOf(std::span<const std::string> lines, std::size_t prefixLength) {
    const std::string_view head = lines.front();
    std::string joined(head.substr(prefixLength));
    for (const std::string& line : lines.subspan(1)) joined += line;
    joined += head.substr(0, prefixLength);
    return AnsiTextKey(joined);
}

/// Takes the lines together to declarations; false when one has no end, those before it are there.
bool JoinDeclarations(std::span<std::string> lines, std::vector<TDeclaration>& declarations) {
    while (!lines.empty()) {
        const std::size_t prefixLength = PrefixLength(lines.front());
        const std::size_t size = DeclarationSize(lines, prefixLength);
        if (size == 0) return false;
        const auto own = lines.first(size);
        declarations.push_back({KeyOf(own, prefixLength), own});
        lines = lines.subspan(size);
    }
    return true;
}

} // namespace

bool SortDeclarations(TStrings& strings, int& index) {
    // The lines are only ever regrouped, never rebuilt from joined text, so that none can lose or
    // gain a character, not even one that holds nothing but an initial word.
    TLines lines = LinesWithoutBlankOnes(strings);
    std::vector<TDeclaration> declarations;
    if (!JoinDeclarations(lines, declarations)) {
        index = static_cast<int>(declarations.size());
        return false;
    }
    std::stable_sort(declarations.begin(), declarations.end(),
                     [](const TDeclaration& a, const TDeclaration& b) { return a.Key < b.Key; });

    UpdateOnce(strings, [&] {
        strings.Clear();
        for (const TDeclaration& declaration : declarations)
            for (const std::string& line : declaration.Lines) strings.Add(line);
    });
    index = static_cast<int>(lines.size());
    return true;
}

} // namespace tarn
