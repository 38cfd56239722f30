// Strings of a large text beside std::getline over the same file; a stream that grows byte by byte
// beside std::vector.

#include "THeapStream.h"
#include "TStringReader.h"
#include "bench_race.h"
#include "os/portable/TPortableOS.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

constexpr std::int64_t MB = std::int64_t{1} << 20;

/// A file of lines between two lengths, in bytes without their end, which goes with the object.
class TTextFile {
public:
    TTextFile(std::int64_t size, int shortest, int longest)
        : FName((std::filesystem::temp_directory_path() / "tarn-bench-XXXXXX").string()) {
        const THandle handle = ::mkstemp(FName.data());
        if (handle == NoHandle) std::abort();
        std::mt19937 random(1);
        std::uniform_int_distribution<int> length(shortest, longest);
        std::string block;
        while (block.size() < MB)
            block.append(static_cast<std::size_t>(length(random)), 'x').append("\r\n");
        THandleStream file(handle);
        for (std::int64_t written = 0; written < size;
             written += static_cast<std::int64_t>(block.size()))
            file.WriteText(block);
        ::close(handle);
    }
    TTextFile(const TTextFile&) = delete;
    TTextFile& operator=(const TTextFile&) = delete;
    ~TTextFile() { std::filesystem::remove(FName); }
    const std::string& Name() const { return FName; }

private:
    std::string FName;
};

/// How many strings a text has and how many bytes without their ends.
using TCounts = std::pair<std::int64_t, std::int64_t>;

template <class F> TCounts CountStrings(F&& read) {
    TCounts counts;
    for (std::string line; read(line); ++counts.first)
        counts.second += static_cast<std::int64_t>(line.size());
    return counts;
}

TCounts CountWithReader(const std::string& fileName, bool mapped) {
    TStringReader reader;
    std::unique_ptr<TFileStream> file;
    if (mapped) {
        reader.SetTargetFile(fileName);
    } else {
        file = std::make_unique<TFileStream>(fileName, fmOpenRead);
        reader.SetTargetStream(file.get());
    }
    return CountStrings([&](std::string& line) { return reader.ReadString(line); });
}

TCounts CountWithGetline(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    return CountStrings([&](std::string& line) {
        if (!std::getline(file, line)) return false;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        return true;
    });
}

void RaceLines(benchmark::State& state, const TTextFile& file) {
    TPortableOS os;
    TOperatingSystem* const former = InstallOS(&os);
    const bool mapped = state.range(0) != 0;
    TCounts ours;
    TCounts yard;
    Race(
        state, [&] { return ours = CountWithReader(file.Name(), mapped); },
        [&] { return yard = CountWithGetline(file.Name()); });
    if (ours != yard) state.SkipWithError("the strings differ");
    InstallOS(former);
}

void BM_ShortLines(benchmark::State& state) {
    static const TTextFile file(1024 * MB, 10, 50);
    RaceLines(state, file);
}
BENCHMARK(BM_ShortLines)
    ->ArgName("mapped")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

/// One line of many megabytes: its cost grows as its length.
void BM_LongLine(benchmark::State& state) {
    const TTextFile file(1, static_cast<int>(state.range(1) * MB),
                         static_cast<int>(state.range(1) * MB));
    RaceLines(state, file);
}
BENCHMARK(BM_LongLine)
    ->ArgNames({"mapped", "MB"})
    ->ArgsProduct({{0, 1}, {10, 100}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// Byte by byte to `range(0)` megabytes in each of `range(1)` streams by turns.
void BM_Growth(benchmark::State& state) {
    const std::int64_t size = state.range(0) * MB;
    const auto count = static_cast<std::size_t>(state.range(1));
    Race(
        state,
        [&] {
            std::vector<TMemStream> streams(count);
            for (std::int64_t i = 0; i < size; ++i)
                for (TMemStream& stream : streams) stream.Write("x", 1);
            return streams[0].Size();
        },
        [&] {
            std::vector<std::vector<char>> vectors(count);
            for (std::int64_t i = 0; i < size; ++i)
                for (std::vector<char>& vector : vectors) vector.push_back('x');
            return vectors[0].size();
        });
}
BENCHMARK(BM_Growth)
    ->ArgNames({"MB", "streams"})
    ->ArgsProduct({{16, 64}, {1, 2}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tarn
