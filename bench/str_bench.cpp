// The string searches beside the C library's and std::search, case-insensitive ones beside the
// exact ones, and StrReplace beside a copy of its result.

#include "bench_race.h"
#include "qsStrUtils.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <string>

namespace tarn {
namespace {

/// Source-like lines of about size characters, without "Q", "q", "#", "@", "~" and NUL.
std::string SourceText(std::size_t size) {
    static constexpr std::string_view words[] = {
        "procedure ", "function ", "begin\r\n  ", "end;\r\n",
        "Result := ", "Self.",     "Index",       "(Sender: TObject);\r\n",
        "Caption",    " + 1;\r\n", "if ",         "then ",
        "List[i]"};
    std::mt19937 random(7);
    std::string text;
    while (text.size() < size) text += words[random() % std::size(words)];
    text.resize(size);
    return text;
}

constexpr std::string_view RareSub = "Request(Sender: TObject";
constexpr std::string_view CommonEnds = "procedure Result(";

using TSearch = std::function<int(std::string_view)>;

int Offset(const char* found, std::string_view s) {
    return found == nullptr ? 0 : static_cast<int>(found - s.data()) + 1;
}

template <class Iterator> int Offset(Iterator found, Iterator end) {
    return found == end ? 0 : static_cast<int>(end - found);
}

int MemMem(std::string_view s, std::string_view sub) {
    return Offset(static_cast<const char*>(memmem(s.data(), s.size(), sub.data(), sub.size())), s);
}

int MemRChr(std::string_view s, char c) {
    return Offset(static_cast<const char*>(memrchr(s.data(), c, s.size())), s);
}

int StrCSpn(std::string_view s, const char* chars) {
    return static_cast<int>(std::strcspn(s.data(), chars));
}

int StdSearch(std::string_view s, std::string_view sub) {
    return Offset(std::search(s.begin(), s.end(), sub.begin(), sub.end()), s.end());
}

int StdSearchR(std::string_view s, std::string_view sub) {
    return Offset(std::search(s.rbegin(), s.rend(), sub.rbegin(), sub.rend()), s.rend());
}

int StdFindR(std::string_view s, const TCharSet& set) {
    return Offset(std::find_if(s.rbegin(), s.rend(), [&](char c) { return set.Contains(c); }),
                  s.rend());
}

constexpr char ManyChars[] = "#@~^`%$|&?!{}\\\"_QXZ";

/// Searches that fail or end at the far end, so that each reads the whole text.
const struct {
    const char* Name;
    TSearch Ours;
    TSearch Yardstick;
} searches[] = {
    {"CharPos/memchr", [](auto s) { return CharPos(s, '#'); },
     [](auto s) {
         return Offset(static_cast<const char*>(std::memchr(s.data(), '#', s.size())), s);
     }},
    {"CharPosR/memrchr", [](auto s) { return CharPosR(s, '#'); },
     [](auto s) { return MemRChr(s, '#'); }},
    {"CharPosI/CharPos", [](auto s) { return CharPosI(s, 'q'); },
     [](auto s) { return CharPos(s, 'q'); }},
    {"CharPosRI/CharPosR", [](auto s) { return CharPosRI(s, 'q'); },
     [](auto s) { return CharPosR(s, 'q'); }},
    {"CharsPos(2)/strcspn", [](auto s) { return CharsPos(s, "#@"); },
     [](auto s) { return StrCSpn(s, "#@"); }},
    {"CharsPos(5)/strcspn", [](auto s) { return CharsPos(s, "#@~^`"); },
     [](auto s) { return StrCSpn(s, "#@~^`"); }},
    {"CharsPos(16)/strcspn", [](auto s) { return CharsPos(s, "#@~^`%$|&?!{}\\\"_"); },
     [](auto s) { return StrCSpn(s, "#@~^`%$|&?!{}\\\"_"); }},
    {"CharsPos(19)/strcspn", [](auto s) { return CharsPos(s, ManyChars); },
     [](auto s) { return StrCSpn(s, ManyChars); }},
    {"CharsPosR(5)/find_if", [](auto s) { return CharsPosR(s, "#@~^`"); },
     [](auto s) { return StdFindR(s, "#@~^`"); }},
    {"CharsPosR(19)/find_if", [](auto s) { return CharsPosR(s, ManyChars); },
     [](auto s) { return StdFindR(s, ManyChars); }},
    {"StringPos/memmem", [](auto s) { return StringPos(s, RareSub); },
     [](auto s) { return MemMem(s, RareSub); }},
    {"StringPos/search", [](auto s) { return StringPos(s, RareSub); },
     [](auto s) { return StdSearch(s, RareSub); }},
    {"StringPos(common)/memmem", [](auto s) { return StringPos(s, CommonEnds); },
     [](auto s) { return MemMem(s, CommonEnds); }},
    {"StringPos(2)/memmem", [](auto s) { return StringPos(s, "e#"); },
     [](auto s) { return MemMem(s, "e#"); }},
    {"StringPosR/search", [](auto s) { return StringPosR(s, RareSub); },
     [](auto s) { return StdSearchR(s, RareSub); }},
    {"StringPosR/memmem", [](auto s) { return StringPosR(s, RareSub); },
     [](auto s) { return MemMem(s, RareSub); }},
    {"StringPosI/StringPos", [](auto s) { return StringPosI(s, RareSub); },
     [](auto s) { return StringPos(s, RareSub); }},
    {"StringPosI(common)/StringPos", [](auto s) { return StringPosI(s, CommonEnds); },
     [](auto s) { return StringPos(s, CommonEnds); }},
    {"StringPosRI/StringPosR", [](auto s) { return StringPosRI(s, RareSub); },
     [](auto s) { return StringPosR(s, RareSub); }},
};

/// Texts made against searches: every place nearly matches.
void BM_NearMatches(benchmark::State& state) {
    const std::string text(1 << 20, 'a');
    const auto half = static_cast<std::size_t>(state.range(0));
    const std::string sub = std::string(half, 'a') + "b" + std::string(half, 'a');
    Race(
        state, [&] { return StringPos(text, sub); }, [&] { return MemMem(text, sub); });
}
BENCHMARK(BM_NearMatches)->Arg(8)->Arg(100)->Arg(10000)->UseManualTime();

void BM_NearMatchesFromRight(benchmark::State& state) {
    const std::string text(1 << 20, 'a');
    const auto half = static_cast<std::size_t>(state.range(0));
    const std::string sub = std::string(half, 'a') + "b" + std::string(half, 'a');
    Race(
        state, [&] { return StringPosRI(text, sub); }, [&] { return MemMem(text, sub); });
}
BENCHMARK(BM_NearMatchesFromRight)->Arg(8)->Arg(100)->Arg(10000)->UseManualTime();

std::string FindAndAppend(std::string_view text, std::string_view oldText,
                          std::string_view newText) {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = text.find(oldText, done)) != text.npos;) {
        result.append(text, done, at - done).append(newText);
        done = at + oldText.size();
    }
    return result.append(text, done);
}

/// Every line end of a text replaced, beside the plain loop; neither ratio nor the time for each
/// character may grow with the size.
template <auto Replace> void BM_Replace(benchmark::State& state) {
    const std::string text = SourceText(static_cast<std::size_t>(state.range(0)));
    Race(
        state, [&] { return Replace(text, "\r\n", "<br/>", {rpReplaceAll}); },
        [&] { return FindAndAppend(text, "\r\n", "<br/>"); });
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Replace<StrReplace>)
    ->RangeMultiplier(16)
    ->Range(1 << 12, 1 << 24)
    ->UseManualTime()
    ->Complexity(benchmark::oN);
BENCHMARK(BM_Replace<StrReplaceR>)
    ->RangeMultiplier(16)
    ->Range(1 << 12, 1 << 24)
    ->UseManualTime()
    ->Complexity(benchmark::oN);

/// The searches are rows of a table, registered here rather than one by one.
[[maybe_unused]] const bool registered = [] {
    for (const auto& search : searches) {
        const auto run = [&search](benchmark::State& state) {
            const std::string text = SourceText(static_cast<std::size_t>(state.range(0)));
            Race(
                state, [&] { return search.Ours(text); }, [&] { return search.Yardstick(text); });
        };
        benchmark::RegisterBenchmark(search.Name, run)
            ->Arg(1 << 8)
            ->Arg(1 << 14)
            ->Arg(1 << 20)
            ->UseManualTime();
    }
    return true;
}();

} // namespace
} // namespace tarn
