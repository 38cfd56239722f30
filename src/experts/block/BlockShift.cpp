#include "block/BlockShift.h"

#include "qsStrUtils.h"
#include "rtl/SysUtils.h"
#include "rtl/TStrings.h"

#include <algorithm>

namespace tarn {

bool EndsWithBreak(std::string_view text) {
    if (text.ends_with(LineBreak)) return text.size() >= 3;
    return text.ends_with('\n') || text.ends_with('\r');
}

void DropAddedBreak(std::string_view before, std::string& after) {
    if (!EndsWithBreak(before) && EndsWithBreak(after))
        after.resize(after.size() - LineBreak.size());
}

namespace {

bool IsBlankLine(std::string_view line) {
    // Most lines end with a visible character: one look tells, without a walk over the indent.
    int first = 0;
    return line.empty() ||
           (static_cast<unsigned char>(line.back()) <= 32 && !SkipBlanks(line, first, 1));
}

} // namespace

std::optional<TShiftedText> ShiftText(std::string_view text, int count, bool safe) {
    TShiftedText result;
    std::string& out = result.Text;
    const auto grow = static_cast<std::size_t>(std::max(count, 0));
    const auto wanted = static_cast<std::size_t>(std::max(-count, 0));
    const auto breaks = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    out.reserve(text.size() + (breaks + 1) * (grow + 1));

    bool refused = false;
    bool topmost = true;
    ForEachLine(text, [&](std::string_view line) {
        std::size_t spaces = 0;
        if (!refused && !IsBlankLine(line)) {
            while (spaces < wanted && line[spaces] == ' ') ++spaces;
            refused = safe && spaces < wanted;
            out.append(grow, ' ');
            if (std::exchange(topmost, false))
                result.Shift = static_cast<int>(grow) - static_cast<int>(spaces);
        }
        // A break that is CR LF already is copied along with its line.
        const std::string_view rest =
            text.substr(static_cast<std::size_t>(line.end() - text.begin()));
        if (rest.starts_with(LineBreak)) {
            out.append(line.data() + spaces, line.size() - spaces + LineBreak.size());
            return;
        }
        out.append(line.substr(spaces)).append(LineBreak);
    });
    if (refused) return std::nullopt;
    DropAddedBreak(text, out);
    return result;
}

} // namespace tarn
