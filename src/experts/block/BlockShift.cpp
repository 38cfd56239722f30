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
        int first = 0;
        if (refused || !SkipBlanks(line, first, 1)) {
            out.append(line).append(LineBreak);
            return;
        }
        const std::size_t spaces = std::min(line.find_first_not_of(' '), wanted);
        refused = safe && spaces < wanted;
        out.append(grow, ' ').append(line.substr(spaces)).append(LineBreak);
        if (std::exchange(topmost, false))
            result.Shift = static_cast<int>(grow) - static_cast<int>(spaces);
    });
    if (refused) return std::nullopt;
    if (!EndsWithBreak(text) && out.ends_with(LineBreak)) out.resize(out.size() - LineBreak.size());
    return result;
}

} // namespace tarn
