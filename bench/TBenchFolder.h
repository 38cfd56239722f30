#pragma once

#include <filesystem>
#include <string>
#include <unistd.h>

namespace tarn {

/// An empty folder for the files of a benchmark, removed at the end.
class TBenchFolder {
public:
    TBenchFolder()
        : FPath(std::filesystem::temp_directory_path() /
                ("tarn-bench-" + std::to_string(::getpid()) + ".d")) {
        std::filesystem::remove_all(FPath);
        std::filesystem::create_directories(FPath);
    }
    TBenchFolder(const TBenchFolder&) = delete;
    TBenchFolder& operator=(const TBenchFolder&) = delete;
    ~TBenchFolder() {
        std::error_code ignored; // whatever is left is in the system's own folder for that
        std::filesystem::remove_all(FPath, ignored);
    }

    const std::filesystem::path& Path() const { return FPath; }

private:
    std::filesystem::path FPath;
};

} // namespace tarn
