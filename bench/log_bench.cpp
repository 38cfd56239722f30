// Writing error-log entries beside fwrite of the same bytes, opening and closing the file for each.

#include "bench_race.h"
#include "os/portable/TPortableOS.h"
#include "qsAppUtils.h"
#include "qsExpMng.h"
#include "rtl/DateUtils.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tarn {
namespace {

/// A package in a temporary directory, its log allowed and without a limit.
class TLoggingPackage {
public:
    TLoggingPackage() : FDir(CreateTempPath()), FFormerOS(InstallOS(&FOS)) {
        FOS.SetModuleFileName(FDir + "pack.module");
        InitializeExpMng();
        ErrorLog().LogAllowed = true;
        ErrorLog().LogLimit = 0;
        // Both sides write the same bytes.
        SetClock([] { return EncodeDateTime({2026, 7, 14, 9, 5, 3}); });
    }
    TLoggingPackage(const TLoggingPackage&) = delete;
    TLoggingPackage& operator=(const TLoggingPackage&) = delete;
    ~TLoggingPackage() {
        SetClock(nullptr);
        FinalizeExpMng();
        ErrorLog() = {};
        InstallOS(FFormerOS);
        std::error_code error;
        std::filesystem::remove_all(FDir, error);
    }
    const std::string& Dir() const { return FDir; }

private:
    std::string FDir;
    TPortableOS FOS;
    TOperatingSystem* FFormerOS;
};

void BM_WriteLogEntries(benchmark::State& state) {
    const TLoggingPackage package;
    const std::string log = package.Dir() + std::string(ErrorLogName);
    const std::string plain = package.Dir() + "plain.log";
    const Exception error("List index out of bounds (7)");
    AppendLogEntry(nullptr, error);
    const std::string entry = ReadFileEx(log);
    const auto count = state.range(0);
    Race(
        state,
        [&] {
            std::filesystem::remove(log);
            for (std::int64_t i = 0; i < count; ++i) AppendLogEntry(nullptr, error);
            return count;
        },
        [&] {
            std::filesystem::remove(plain);
            for (std::int64_t i = 0; i < count; ++i) {
                std::FILE* const file = std::fopen(plain.c_str(), "ab");
                if (!file) throw std::runtime_error("cannot open " + plain);
                std::fwrite(entry.data(), 1, entry.size(), file);
                std::fclose(file);
            }
            return count;
        });
    if (ReadFileEx(log) != ReadFileEx(plain)) state.SkipWithError("the files differ");
}
BENCHMARK(BM_WriteLogEntries)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tarn
