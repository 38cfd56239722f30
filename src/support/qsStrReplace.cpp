// Replacing, from the left and from the right.

#include "qsStrUtils.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tarn {

namespace {

/// Where old text stands, as 0-based positions.
using TMarks = std::vector<std::size_t>;

/// The text with oldSize characters at each mark replaced. The marks rise and do not overlap.
std::string Rebuilt(std::string_view s, const TMarks& marks, std::size_t oldSize,
                    std::string_view newText) {
    std::string result;
    result.reserve(s.size() - marks.size() * oldSize + marks.size() * newText.size());
    std::size_t done = 0; // characters of s that are dealt with
    for (const std::size_t mark : marks) {
        result.append(s, done, mark - done).append(newText);
        done = mark + oldSize;
    }
    return result.append(s, done);
}

} // namespace

std::string StrReplace(std::string_view s, std::string_view oldText, std::string_view newText,
                       TReplaceParams params) {
    if (oldText.empty()) return std::string(s);
    const auto find = params.Contains(rpIgnoreCase) ? StringPosI : StringPos;
    TMarks marks;
    int start = 1;
    do {
        const int pos = find(s, oldText, start);
        if (pos == 0) break;
        marks.push_back(static_cast<std::size_t>(pos) - 1);
        start = pos + static_cast<int>(oldText.size());
    } while (params.Contains(rpReplaceAll));
    return Rebuilt(s, marks, oldText.size(), newText);
}

std::string StrReplaceR(std::string_view s, std::string_view oldText, std::string_view newText,
                        TReplaceParams params) {
    if (oldText.empty()) return std::string(s);
    const auto find = params.Contains(rpIgnoreCase) ? StringPosRI : StringPosR;
    TMarks marks;
    // Only what stands before the last mark is searched, so that no occurrence can reach into text
    // that is replaced already.
    std::string_view rest = s;
    do {
        const int pos = find(rest, oldText, -1);
        if (pos == 0) break;
        marks.push_back(static_cast<std::size_t>(pos) - 1);
        rest = rest.substr(0, marks.back());
    } while (params.Contains(rpReplaceAll));
    std::reverse(marks.begin(), marks.end());
    return Rebuilt(s, marks, oldText.size(), newText);
}

} // namespace tarn
