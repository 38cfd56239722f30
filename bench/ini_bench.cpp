// INI text: parsing beside GLib's key files and beside a pass that counts the lines, look-ups
// beside std::unordered_map, and the changes whose cost must not grow with the document.

#include "TIniStrings.h"
#include "bench_race.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#if __has_include(<glib.h>)
#include <glib.h>
#define TARN_HAS_GLIB 1
#endif

namespace tarn {
namespace {

std::string KeyName(int number) {
    return "Key_" + std::to_string(number * 7919LL % 1'000'003);
}

/// A document with that many sections and keys in each, values of usual length.
std::string Document(int sections, int keys) {
    std::string text;
    for (int s = 0; s < sections; ++s) {
        text += "[Section " + std::to_string(s) + "]\n";
        for (int k = 0; k < keys; ++k)
            text += KeyName(k) + "=C:\\Projects\\Orchard\\Source\\Unit" + std::to_string(k) + "\n";
    }
    return text;
}

/// Reads the text line by line as any reader of lines must.
std::size_t CountLines(std::string_view text) {
    std::size_t lines = 0;
    while (!text.empty()) {
        const void* const found = std::memchr(text.data(), '\n', text.size());
        const char* const end = found ? static_cast<const char*>(found) : text.data() + text.size();
        text.remove_prefix(
            std::min<std::size_t>(static_cast<std::size_t>(end - text.data()) + 1, text.size()));
        ++lines;
    }
    return lines;
}

std::size_t Parse(const std::string& text) {
    TIniStrings ini;
    ini.SetText(text);
    return ini.SectionSorted() ? 0 : text.size();
}

/// The yardstick makes its index while it parses; ours comes with the first look-up.
bool ParseAndLookUp(const std::string& text) {
    TIniStrings ini;
    ini.SetText(text);
    return ini.HasKey("Section 0", KeyName(1));
}

void Shapes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"sections", "keys"})->UseManualTime()->Unit(benchmark::kMillisecond);
    for (const auto& [sections, keys] : {std::pair{10'000, 20}, {100'000, 2}, {1, 200'000}})
        bench->Args({sections, keys});
}

void ParsingAgainstLineCount(benchmark::State& state) {
    const std::string text =
        Document(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Race(
        state, [&] { return Parse(text); }, [&] { return CountLines(text); });
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ParsingAgainstLineCount)->Apply(Shapes);

#ifdef TARN_HAS_GLIB
void ParsingAgainstGKeyFile(benchmark::State& state) {
    const std::string text =
        Document(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const auto parseWithGLib = [&] {
        GKeyFile* const file = g_key_file_new();
        const gboolean loaded =
            g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr);
        g_key_file_free(file);
        return loaded;
    };
    if (!parseWithGLib()) return state.SkipWithError("the yardstick refuses the document");
    if (!ParseAndLookUp(text)) return state.SkipWithError("a key is missing");
    Race(
        state, [&] { return ParseAndLookUp(text); }, parseWithGLib);
}
BENCHMARK(ParsingAgainstGKeyFile)->Apply(Shapes);
#endif

void LookUps(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    TIniStrings ini;
    ini.SetText(Document(1, keys));
    const TIniSection& section = *ini.GetSection("Section 0");
    std::unordered_map<std::string, std::string> map;
    std::vector<std::string> names;
    for (const TIniKey* key = section.First(); key; key = TIniSection::Next(*key)) {
        map.emplace(key->Name, key->Value.Text());
        names.emplace_back(key->Name);
    }
    std::shuffle(names.begin(), names.end(), std::mt19937(1));
    names.resize(std::min<std::size_t>(names.size(), 100'000));
    if (!section.Find(names[0])) return state.SkipWithError("a key is missing");
    Race(
        state,
        [&] {
            std::size_t size = 0;
            for (const std::string& name : names) size += section.Find(name)->Value.Text().size();
            return size;
        },
        [&] {
            std::size_t size = 0;
            for (const std::string& name : names) size += map.find(name)->second.size();
            return size;
        });
}
BENCHMARK(LookUps)->Arg(1000)->Arg(1'000'000)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Each key of one section written anew, renamed, and deleted; sorted or not.
void Changes(benchmark::State& state) {
    const int keys = static_cast<int>(state.range(0));
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(keys));
    for (int i = 0; i < keys; ++i) names.push_back(KeyName(i));
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        TIniStrings ini;
        ini.SetKeySorted(state.range(1) != 0);
        for (const std::string& name : names) ini.WriteString("S", name, "value");
        for (const std::string& name : names) ini.ReplaceString("S", name, "Same");
        for (int i = 0; i < keys; ++i) ini.DeleteKey("S", "Same");
    }
    state.counters["ns_per_change"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * keys * 3 / 1e9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(Changes)
    ->ArgNames({"keys", "sorted"})
    ->ArgsProduct({{10'000, 100'000, 1'000'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tarn
