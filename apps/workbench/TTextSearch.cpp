#include "TTextSearch.h"

#include "TextStore/TEditText.h"

#include <QList>

#include <algorithm>
#include <cstring>

namespace tarn {
namespace {

/// A range of the text in three pieces: what lies before the gap, what reaches over it, which is
/// copied, and what lies behind it. Each piece begins where the one before holds no whole place.
struct TPieces {
    TPieces(const TEditText& text, std::size_t from, std::size_t to, std::size_t size) {
        const auto [before, behind] = text.Chunks();
        const std::size_t gap = std::clamp(before.size(), from, to);
        const std::size_t overlap = size - 1;
        const std::size_t seamFrom = gap - std::min(overlap, gap - from);
        const std::size_t seamTo = gap + std::min(overlap, to - gap);
        Front = before.substr(std::min(from, before.size()), gap - from);
        Seam = text.Text(seamFrom, seamTo);
        SeamAt = seamFrom;
        Back = to > gap ? behind.substr(gap - before.size(), to - gap) : std::string_view();
        BackAt = gap;
    }

    std::string_view Front;
    std::string Seam;
    std::size_t SeamAt = 0;
    std::string_view Back;
    std::size_t BackAt = 0;
};

std::optional<std::size_t> Moved(std::optional<std::size_t> place, std::size_t by) {
    return place ? std::optional(*place + by) : std::nullopt;
}

} // namespace

TTextSearch::TTextSearch(const QString& sought, bool matchCase) {
    for (const char32_t c : sought.toUcs4()) {
        const std::string as = QString::fromUcs4(&c, 1).toStdString();
        const auto spelling = [&](char32_t other) {
            std::string text = QString::fromUcs4(&other, 1).toStdString();
            return matchCase || text.size() != as.size() ? as : text;
        };
        FLower += spelling(QChar::toLower(c));
        FUpper += spelling(QChar::toUpper(c));
        FSizes.push_back(static_cast<std::uint8_t>(as.size()));
    }
    const std::size_t last = Size() - 1;
    FRight.fill(Size());
    FLeft.fill(Size());
    for (std::size_t i = 0; i < last; ++i)
        for (const std::string* const spelling : {&FLower, &FUpper}) {
            FRight[static_cast<unsigned char>((*spelling)[i])] = last - i;
            FLeft[static_cast<unsigned char>((*spelling)[last - i])] = last - i;
        }
}

bool TTextSearch::IsAt(const char* place) const {
    std::size_t at = 0;
    for (const std::uint8_t size : FSizes) {
        if (std::memcmp(place + at, &FLower[at], size) != 0 &&
            std::memcmp(place + at, &FUpper[at], size) != 0)
            return false;
        at += size;
    }
    return true;
}

std::optional<std::size_t> TTextSearch::FirstIn(std::string_view text) const {
    for (std::size_t at = 0; at + Size() <= text.size();) {
        const char end = text[at + Size() - 1];
        if ((end == FLower.back() || end == FUpper.back()) && IsAt(&text[at])) return at;
        at += FRight[static_cast<unsigned char>(end)];
    }
    return std::nullopt;
}

std::optional<std::size_t> TTextSearch::LastIn(std::string_view text) const {
    for (std::size_t end = text.size(); end >= Size();) {
        const std::size_t at = end - Size();
        const char begin = text[at];
        if ((begin == FLower.front() || begin == FUpper.front()) && IsAt(&text[at])) return at;
        const std::size_t by = FLeft[static_cast<unsigned char>(begin)];
        if (by > end) break;
        end -= by;
    }
    return std::nullopt;
}

std::optional<std::size_t> TTextSearch::First(const TEditText& text, std::size_t from,
                                              std::size_t to) const {
    if (from >= to) return std::nullopt;
    const TPieces pieces(text, from, to, Size());
    if (const auto place = FirstIn(pieces.Front)) return Moved(place, from);
    if (const auto place = FirstIn(pieces.Seam)) return Moved(place, pieces.SeamAt);
    return Moved(FirstIn(pieces.Back), pieces.BackAt);
}

std::optional<std::size_t> TTextSearch::Last(const TEditText& text, std::size_t from,
                                             std::size_t to) const {
    if (from >= to) return std::nullopt;
    const TPieces pieces(text, from, to, Size());
    if (const auto place = LastIn(pieces.Back)) return Moved(place, pieces.BackAt);
    if (const auto place = LastIn(pieces.Seam)) return Moved(place, pieces.SeamAt);
    return Moved(LastIn(pieces.Front), from);
}

} // namespace tarn
