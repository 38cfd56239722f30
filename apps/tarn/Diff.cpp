#include "Diff.h"

#include <algorithm>
#include <vector>

namespace tarn {
namespace {

/// Lines with their breaks.
std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t found = text.find_first_of("\r\n");
        std::size_t end = text.size();
        if (found != std::string_view::npos)
            end = found + (text.substr(found, 2) == "\r\n" ? 2 : 1);
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

enum TOp : std::uint8_t { opKeep, opDelete, opInsert };
struct TStep {
    TOp Op;
    std::string_view Line;
};

/// The shortest edit script by the algorithm of E. W. Myers, "An O(ND) Difference Algorithm and Its
/// Variations" (1986), between the common head and tail. Where the texts differ too much for the
/// quadratic trace, the middle is shown as replaced whole.
class TEditScript {
public:
    TEditScript(const std::vector<std::string_view>& a, const std::vector<std::string_view>& b)
        : FA(a), FB(b) {}

    std::vector<TStep> Run() {
        std::size_t head = 0;
        while (head < FA.size() && head < FB.size() && FA[head] == FB[head]) ++head;
        std::size_t tail = 0;
        while (tail < FA.size() - head && tail < FB.size() - head &&
               FA[FA.size() - 1 - tail] == FB[FB.size() - 1 - tail])
            ++tail;
        for (std::size_t i = 0; i < head; ++i) FSteps.push_back({opKeep, FA[i]});
        Middle(head, FA.size() - tail, FB.size() - tail);
        for (std::size_t i = FA.size() - tail; i < FA.size(); ++i)
            FSteps.push_back({opKeep, FA[i]});
        return std::move(FSteps);
    }

private:
    /// The place of diagonal k, from -limit - 1 to limit + 1, in a list of how far each one
    /// reaches.
    static std::size_t IndexOf(int k, int limit) {
        const int index = k + limit + 1;
        return static_cast<std::size_t>(index);
    }

    void Middle(std::size_t from, std::size_t endA, std::size_t endB) {
        const int n = static_cast<int>(endA - from);
        const int m = static_cast<int>(endB - from);
        constexpr int mostSteps = 2000;
        const int limit = std::min(n + m, mostSteps);
        const auto a = [&](int x) { return FA[from + static_cast<std::size_t>(x)]; };
        const auto b = [&](int y) { return FB[from + static_cast<std::size_t>(y)]; };
        std::vector<std::vector<int>> trace;
        std::vector<int> reach(static_cast<std::size_t>(2 * limit + 3), 0);
        const auto at = [limit](int k) { return IndexOf(k, limit); };
        for (int d = 0; d <= limit; ++d) {
            for (int k = -d; k <= d; k += 2) {
                const bool down = k == -d || (k != d && reach[at(k - 1)] < reach[at(k + 1)]);
                int x = down ? reach[at(k + 1)] : reach[at(k - 1)] + 1;
                while (x < n && x - k < m && a(x) == b(x - k)) ++x;
                reach[at(k)] = x;
                if (x >= n && x - k >= m) {
                    trace.push_back(reach);
                    Backtrack(trace, n, m, from, limit);
                    return;
                }
            }
            trace.push_back(reach);
        }
        for (int x = 0; x < n; ++x) FSteps.push_back({opDelete, a(x)});
        for (int y = 0; y < m; ++y) FSteps.push_back({opInsert, b(y)});
    }

    void Backtrack(const std::vector<std::vector<int>>& trace, int x, int y, std::size_t from,
                   int limit) {
        const auto at = [limit](int k) { return IndexOf(k, limit); };
        const auto lineA = [&](int i) { return FA[from + static_cast<std::size_t>(i)]; };
        const auto lineB = [&](int i) { return FB[from + static_cast<std::size_t>(i)]; };
        std::vector<TStep> reversed;
        for (int d = static_cast<int>(trace.size()) - 1; d > 0; --d) {
            const std::vector<int>& reach = trace[static_cast<std::size_t>(d - 1)];
            const int k = x - y;
            const bool down = k == -d || (k != d && reach[at(k - 1)] < reach[at(k + 1)]);
            const int prevK = down ? k + 1 : k - 1;
            const int prevX = reach[at(prevK)];
            const int prevY = prevX - prevK;
            while (x > prevX + (down ? 0 : 1) && y > prevY + (down ? 1 : 0))
                reversed.push_back({opKeep, lineA(--x)}), --y;
            if (down)
                reversed.push_back({opInsert, lineB(--y)});
            else
                reversed.push_back({opDelete, lineA(--x)});
        }
        while (x > 0) reversed.push_back({opKeep, lineA(--x)});
        FSteps.insert(FSteps.end(), reversed.rbegin(), reversed.rend());
    }

    const std::vector<std::string_view>& FA;
    const std::vector<std::string_view>& FB;
    std::vector<TStep> FSteps;
};

void AppendLine(std::string& out, char mark, std::string_view line) {
    const std::string_view text = line.substr(0, line.find_first_of("\r\n"));
    const bool ended = text.size() < line.size();
    out += mark;
    out += text;
    out += '\n';
    if (!ended) out += "\\ no line end\n";
}

std::string Range(std::size_t start, std::size_t count) {
    return std::to_string(count == 0 ? start : start + 1) + "," + std::to_string(count);
}

} // namespace

std::string UnifiedDiff(std::string_view before, std::string_view after,
                        std::string_view nameBefore, std::string_view nameAfter) {
    if (before == after) return {};
    constexpr std::size_t context = 3;
    const auto a = SplitLines(before);
    const auto b = SplitLines(after);
    const std::vector<TStep> steps = TEditScript(a, b).Run();

    std::string out = "--- " + std::string(nameBefore) + "\n+++ " + std::string(nameAfter) + "\n";
    std::size_t lineA = 0;
    std::size_t lineB = 0;
    for (std::size_t i = 0; i < steps.size();) {
        if (steps[i].Op == opKeep) {
            ++i, ++lineA, ++lineB;
            continue;
        }
        // A hunk: from the context before this change to the context behind the last change that
        // is near enough.
        const std::size_t lead = std::min({context, i, lineA, lineB});
        std::size_t end = i;
        for (std::size_t j = i, kept = 0; j < steps.size() && kept <= 2 * context; ++j)
            if (steps[j].Op == opKeep)
                ++kept;
            else
                kept = 0, end = j + 1;
        const std::size_t first = i - lead;
        const std::size_t last = std::min(end + context, steps.size());
        std::string body;
        std::size_t countA = 0;
        std::size_t countB = 0;
        for (std::size_t j = first; j < last; ++j) {
            countA += steps[j].Op != opInsert;
            countB += steps[j].Op != opDelete;
            AppendLine(body, " -+"[steps[j].Op], steps[j].Line);
        }
        out += "@@ -" + Range(lineA - lead, countA) + " +" + Range(lineB - lead, countB) + " @@\n";
        out += body;
        lineA += countA - lead;
        lineB += countB - lead;
        i = last;
    }
    return out;
}

} // namespace tarn
