// Any text as a list of lines: sorting must keep every line that is not blank, leave nothing to do
// for a second sort, and change nothing when it refuses.

#include "qsSourceLines.h"
#include "qsStrUtils.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using TLines = std::vector<std::string>;

TLines LinesOf(const tarn::TStrings& strings) {
    TLines lines;
    for (int i = 0; i < strings.Count(); ++i) lines.push_back(strings.Get(i));
    return lines;
}

void Require(bool holds) {
    if (!holds) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarn::TStringList list;
    list.SetTextStr({reinterpret_cast<const char*>(data), size});
    TLines before = LinesOf(list);

    int index = 0;
    if (!tarn::SortDeclarations(list, index)) {
        Require(LinesOf(list) == before && index >= 0 && index < list.Count());
        return 0;
    }
    const TLines once = LinesOf(list);
    Require(index == list.Count());

    int pos = 0;
    std::erase_if(before, [&](const std::string& line) { return !tarn::SkipBlanks(line, pos); });
    TLines after = once;
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    Require(after == before);

    Require(tarn::SortDeclarations(list, index) && LinesOf(list) == once);
    return 0;
}
