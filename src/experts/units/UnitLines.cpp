#include "units/UnitLines.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <utility>

namespace tarn {

TUnitLines LinesOfTabs(const TStrings& tabs) {
    TUnitLines lines;
    lines.reserve(static_cast<std::size_t>(tabs.Count()));
    for (int i = 0; i < tabs.Count(); ++i) lines.push_back({tabs[i], i, tabs.GetObject(i)});
    return lines;
}

void FilterLines(TUnitLines& lines, std::string_view text) {
    const std::string wanted = AnsiUpperCase(text);
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [&](const TUnitLine& line) {
                                   return AnsiUpperCase(line.Caption).find(wanted) ==
                                          std::string::npos;
                               }),
                lines.end());
}

void SortLines(TUnitLines& lines, bool descending) {
    // The keys are made once: comparing them is cheaper than comparing the texts.
    std::vector<std::string> keys;
    keys.reserve(lines.size());
    for (const TUnitLine& line : lines) keys.push_back(AnsiTextKey(line.Caption));
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    if (descending) std::reverse(order.begin(), order.end());
    TUnitLines sorted;
    sorted.reserve(lines.size());
    for (const std::size_t from : order) sorted.push_back(std::move(lines[from]));
    lines = std::move(sorted);
}

bool MoveLines(TUnitLines& lines, bool up) {
    const int count = static_cast<int>(lines.size());
    const auto line = [&](int step) -> TUnitLine& {
        return lines[static_cast<std::size_t>(up ? step : count - 1 - step)];
    };
    bool moved = false;
    // From the end that they move to: a line whose way is barred bars that of the next one.
    for (int step = 1; step < count; ++step) {
        if (!line(step).Selected || line(step - 1).Selected) continue;
        std::swap(line(step), line(step - 1));
        moved = true;
    }
    return moved;
}

void DropLines(TUnitLines& lines, int to) {
    const auto selected = [](const TUnitLine& line) { return line.Selected; };
    const auto place = lines.begin() + to;
    std::stable_partition(lines.begin(), place, std::not_fn(selected));
    std::stable_partition(place, lines.end(), selected);
}

void FollowTabs(TUnitLines& lines, const TStrings& tabs) {
    std::vector<bool> taken(static_cast<std::size_t>(tabs.Count()));
    const auto take = [&](const TUnitLine& line, int tab) {
        const auto place = static_cast<std::size_t>(tab);
        if (tab >= tabs.Count() || taken[place] || tabs.GetObject(tab) != line.Companion ||
            tabs[tab] != line.Caption)
            return false;
        taken[place] = true;
        return true;
    };
    std::vector<TUnitLine*> moved;
    for (TUnitLine& line : lines)
        if (!take(line, line.Tab)) moved.push_back(&line);
    if (moved.empty()) return;

    std::multimap<const TObject*, int, std::less<>> places; // of one companion, in their order
    for (int i = 0; i < tabs.Count(); ++i) places.emplace(tabs.GetObject(i), i);
    constexpr int gone = -1;
    for (TUnitLine* line : moved) {
        const auto [first, last] = places.equal_range(line->Companion);
        const auto place =
            std::find_if(first, last, [&](const auto& each) { return take(*line, each.second); });
        line->Tab = place == last ? gone : place->second;
    }
    std::erase_if(lines, [](const TUnitLine& line) { return line.Tab == gone; });
}

std::vector<int> OrderTabs(TUnitLines& lines, int tabCount) {
    std::vector<int> places;
    places.reserve(lines.size());
    for (const TUnitLine& line : lines) places.push_back(line.Tab);
    std::sort(places.begin(), places.end());
    std::vector<int> order(static_cast<std::size_t>(tabCount));
    std::iota(order.begin(), order.end(), 0);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        order[static_cast<std::size_t>(places[i])] = lines[i].Tab;
        lines[i].Tab = places[i];
    }
    return order;
}

void SaveHistory(TStrings& history, std::string_view text, int limit) {
    if (limit < 1) return history.Clear();
    bool known = false;
    for (int i = 0; i < history.Count() && !known; ++i) known = AnsiSameText(history[i], text);
    if (!known) history.Insert(0, text);
    if (history.Count() > limit) history.Delete(history.Count() - 1);
}

} // namespace tarn
