#include "rtl/TNearNames.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <numeric>

namespace tarn {
namespace {

constexpr std::size_t LongestName = 256;

/// How many letters have to be put in, taken out or replaced to make one text of the other.
std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = i;
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced =
                diagonal + (SameText(a.substr(i, 1), b.substr(j, 1)) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

void TNearNames::Offer(std::string_view candidate) {
    if (candidate.empty() || std::max(candidate.size(), FName.size()) > LongestName) return;
    std::size_t distance = EditDistance(FName, candidate);
    if (!FPart.empty()) distance = std::min(distance, EditDistance(FPart, candidate));
    if (distance <= 1 + candidate.size() / 4)
        FCandidates.push_back({distance, std::string(candidate)});
}

std::vector<std::string> TNearNames::Nearest() const {
    std::vector<TCandidate> sorted = FCandidates;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](auto& a, auto& b) { return a.Distance < b.Distance; });
    std::vector<std::string> names;
    for (TCandidate& candidate : sorted)
        if (names.size() < Most) names.push_back(std::move(candidate.Name));
    return names;
}

std::string MeantText(std::span<const std::string> names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "; is " : i + 1 < names.size() ? ", " : " or ") + names[i];
    return text.empty() ? text : text + " meant?";
}

} // namespace tarn
