// Positions of characters, of sets of characters and of substrings.

#include "qsCaseTable.h"
#include "qsStrScan.h"
#include "qsStrSetScan.h"
#include "qsStrUtils.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <tuple>
#include <vector>

namespace tarn {

namespace {

using scan::NotFound;
using TBlock = scan::TBestBlock;

int Length(std::string_view s) {
    return static_cast<int>(s.size());
}

/// A 0-based find as a position, the characters before `skipped` counted in.
int ToPosition(std::size_t found, int skipped = 0) {
    return found == NotFound ? 0 : static_cast<int>(found) + 1 + skipped;
}

/// What stands at and after position `start`; empty for a start outside the text.
std::string_view From(std::string_view s, int start) {
    if (start < 1 || start > Length(s)) return {};
    return s.substr(static_cast<std::size_t>(start) - 1);
}

/// What a backward search from `start` may look at; empty for a start outside the text.
std::string_view UpTo(std::string_view s, int start) {
    if (start == -1) return s;
    if (start < 1 || start > Length(s)) return {};
    return s.substr(0, static_cast<std::size_t>(start));
}

template <std::size_t Count>
std::size_t LastOf(std::string_view text, const std::array<char, Count>& wanted) {
    const scan::TAnyOf<TBlock, Count> matcher(wanted);
    return scan::ScanDown<TBlock>(text.data(), text.size(), matcher,
                                  [](std::size_t) { return true; });
}

/// From this length on, the tables of a wide scan are worth filling.
constexpr std::size_t LongText = 64;

bool ScansWide(std::string_view text) {
    static const bool has = scan::HasWideSetScan();
    return text.size() >= LongText && has;
}

std::size_t FirstOf(std::string_view text, const TCharSet& set) {
    if (ScansWide(text)) return scan::WideFirstOf(text, set);
    for (std::size_t at = 0; at < text.size(); ++at)
        if (set.Contains(text[at])) return at;
    return NotFound;
}

std::size_t LastOf(std::string_view text, const TCharSet& set) {
    if (ScansWide(text)) return scan::WideLastOf(text, set);
    for (std::size_t left = text.size(); left > 0; --left)
        if (set.Contains(text[left - 1])) return left - 1;
    return NotFound;
}

/// The first of two characters. Two searches for one character each are the fastest, if done piece
/// by piece; the pieces grow, so that a near one is not paid for with a long way.
std::size_t FirstOfTwo(std::string_view text, char a, char b) {
    constexpr std::size_t shortest = 128;
    constexpr std::size_t longest = 16384; // stays in the nearest cache for the second search
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    std::size_t piece = shortest;
    for (const char* at = begin; at < end; at += piece, piece = std::min(2 * piece, longest)) {
        piece = std::min(piece, static_cast<std::size_t>(end - at));
        const void* foundA = std::memchr(at, a, piece);
        const char* limit = foundA == nullptr ? at + piece : static_cast<const char*>(foundA);
        const void* foundB = std::memchr(at, b, static_cast<std::size_t>(limit - at));
        if (foundB != nullptr) limit = static_cast<const char*>(foundB);
        if (limit != at + piece) return static_cast<std::size_t>(limit - begin);
    }
    return NotFound;
}

/// How many characters agree from a and b on, at most length.
std::size_t AgreeingExactly(const char* a, const char* b, std::size_t length) {
    std::size_t agreed = 0;
    for (; length - agreed >= sizeof(std::uint64_t); agreed += sizeof(std::uint64_t))
        if (std::memcmp(a + agreed, b + agreed, sizeof(std::uint64_t)) != 0) break;
    while (agreed < length && a[agreed] == b[agreed]) ++agreed;
    return agreed;
}

std::size_t AgreeingFolded(const char* a, const char* b, std::size_t length) {
    std::size_t agreed = 0;
    while (agreed < length && FoldCase(a[agreed]) == FoldCase(b[agreed])) ++agreed;
    return agreed;
}

struct TExactCase {
    static std::array<char, 1> Forms(char c) { return {c}; }
    static bool Same(char a, char b) { return a == b; }
    static constexpr auto Agreeing = AgreeingExactly;
    static constexpr auto Char = CharPos;
    static constexpr auto CharR = CharPosR;
};

struct TAnyCase {
    static std::array<char, 2> Forms(char c) { return {c, OtherCase(c)}; }
    static bool Same(char a, char b) { return FoldCase(a) == FoldCase(b); }
    static constexpr auto Agreeing = AgreeingFolded;
    static constexpr auto Char = CharPosI;
    static constexpr auto CharR = CharPosRI;
};

/// Knuth, Morris and Pratt's search over iterators of either direction. It reads each character
/// once, which makes it the slower search on ordinary texts and the safe one on all others.
template <class Case, class Iterator>
std::size_t SteadySearch(Iterator text, std::size_t count, Iterator sub, std::size_t length) {
    // border[n]: the longest proper beginning of sub that ends its first n characters
    std::vector<std::size_t> border(length + 1, 0);
    const auto extend = [&](std::size_t matched, char next) {
        while (matched > 0 && !Case::Same(sub[static_cast<std::ptrdiff_t>(matched)], next))
            matched = border[matched];
        return Case::Same(sub[static_cast<std::ptrdiff_t>(matched)], next) ? matched + 1 : 0;
    };
    for (std::size_t n = 1; n < length; ++n)
        border[n + 1] = extend(border[n], sub[static_cast<std::ptrdiff_t>(n)]);
    std::size_t matched = 0;
    for (std::size_t i = 0; i < count; ++i) {
        matched = extend(matched, text[static_cast<std::ptrdiff_t>(i)]);
        if (matched == length) return i + 1 - length;
    }
    return NotFound;
}

/// A search for one substring, of at least one character and no longer than the text. It scans for
/// both ends and compares what lies between; a text made so that the comparing outgrows the
/// scanning is left to SteadySearch, so that the time stays linear.
template <class Case> class TSubstringSearch {
public:
    explicit TSubstringSearch(std::string_view sub)
        : FSub(sub), FEnds(Case::Forms(sub.front()), Case::Forms(sub.back()), sub.size() - 1) {}

    [[nodiscard]] std::size_t First(std::string_view text) const {
        TEffort effort{Allowance()};
        const std::size_t hit =
            scan::ScanUp<TBlock>(text.data(), Candidates(text), FEnds, [&](std::size_t at) {
                return IsMatch(text, at, effort) || effort.Exceeds(at);
            });
        if (!effort.Exceeded) return hit;
        const std::string_view rest = text.substr(hit);
        const std::size_t found =
            SteadySearch<Case>(rest.begin(), rest.size(), FSub.begin(), FSub.size());
        return found == NotFound ? NotFound : hit + found;
    }

    [[nodiscard]] std::size_t Last(std::string_view text) const {
        TEffort effort{Allowance()};
        const std::size_t candidates = Candidates(text);
        const std::size_t hit =
            scan::ScanDown<TBlock>(text.data(), candidates, FEnds, [&](std::size_t at) {
                return IsMatch(text, at, effort) || effort.Exceeds(candidates - at);
            });
        if (!effort.Exceeded) return hit;
        const std::size_t rest = hit + FSub.size();
        const std::size_t found = SteadySearch<Case>(
            std::make_reverse_iterator(text.begin() + rest), rest, FSub.rbegin(), FSub.size());
        return found == NotFound ? NotFound : rest - found - FSub.size();
    }

private:
    struct TEffort {
        std::size_t Allowed; // characters compared in vain, on top of a share of those scanned
        std::size_t Wasted = 0;
        bool Exceeded = false;
        bool Exceeds(std::size_t scanned) { return Exceeded = Wasted > Allowed + 4 * scanned; }
    };

    /// What may be wasted before giving up is worth its preparations.
    [[nodiscard]] std::size_t Allowance() const { return 1024 + 4 * FSub.size(); }
    [[nodiscard]] std::size_t Candidates(std::string_view text) const {
        return text.size() - FSub.size() + 1;
    }

    [[nodiscard]] bool IsMatch(std::string_view text, std::size_t at, TEffort& effort) const {
        if (FSub.size() <= 2) return true;
        const std::size_t between = FSub.size() - 2;
        const std::size_t agreed = Case::Agreeing(text.data() + at + 1, FSub.data() + 1, between);
        if (agreed == between) return true;
        effort.Wasted += agreed + 1;
        return false;
    }

    std::string_view FSub;
    scan::TBothEnds<TBlock, std::tuple_size_v<decltype(Case::Forms('a'))>> FEnds;
};

template <class Case> int SubstringPos(std::string_view s, std::string_view sub, int start) {
    if (start < 1) return 0;
    const auto skipped = static_cast<std::size_t>(start) - 1;
    if (skipped > s.size() || sub.size() > s.size() - skipped) return 0;
    if (sub.empty()) return start;
    if (sub.size() == 1) return Case::Char(s, sub.front(), start);
    return ToPosition(TSubstringSearch<Case>(sub).First(s.substr(skipped)), start - 1);
}

template <class Case> int SubstringPosR(std::string_view s, std::string_view sub, int start) {
    if (start > Length(s) || sub.size() > s.size()) return 0;
    const int last = Length(s) - Length(sub) + 1;
    const int first = start == -1 ? last : std::min(start, last);
    if (first < 1) return 0;
    if (sub.empty()) return first;
    if (sub.size() == 1) return Case::CharR(s, sub.front(), first);
    const auto reach = static_cast<std::size_t>(first) - 1 + sub.size();
    return ToPosition(TSubstringSearch<Case>(sub).Last(s.substr(0, reach)));
}

} // namespace

int CharPos(std::string_view s, char c, int start) {
    return ToPosition(From(s, start).find(c), start - 1);
}

int CharPosI(std::string_view s, char c, int start) {
    return ToPosition(FirstOfTwo(From(s, start), c, OtherCase(c)), start - 1);
}

int CharPosR(std::string_view s, char c, int start) {
    return ToPosition(LastOf(UpTo(s, start), TExactCase::Forms(c)));
}

int CharPosRI(std::string_view s, char c, int start) {
    return ToPosition(LastOf(UpTo(s, start), TAnyCase::Forms(c)));
}

int CharsPos(std::string_view s, const TCharSet& chars, int start) {
    return ToPosition(FirstOf(From(s, start), chars), start - 1);
}

int CharsPosR(std::string_view s, const TCharSet& chars, int start) {
    return ToPosition(LastOf(UpTo(s, start), chars));
}

int StringPos(std::string_view s, std::string_view sub, int start) {
    return SubstringPos<TExactCase>(s, sub, start);
}

int StringPosI(std::string_view s, std::string_view sub, int start) {
    return SubstringPos<TAnyCase>(s, sub, start);
}

int StringPosR(std::string_view s, std::string_view sub, int start) {
    return SubstringPosR<TExactCase>(s, sub, start);
}

int StringPosRI(std::string_view s, std::string_view sub, int start) {
    return SubstringPosR<TAnyCase>(s, sub, start);
}

} // namespace tarn
