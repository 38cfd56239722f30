#pragma once

#include <filesystem>
#include <stdlib.h> // NOLINT(modernize-deprecated-headers): mkdtemp is no part of cstdlib
#include <string>
#include <string_view>

namespace tarn {

/// A new empty folder, which goes with the object and all that is in it.
class TTestFolder {
public:
    TTestFolder() : FPath((std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string()) {
        if (!::mkdtemp(FPath.data())) throw std::filesystem::filesystem_error("mkdtemp", {});
    }
    TTestFolder(const TTestFolder&) = delete;
    TTestFolder& operator=(const TTestFolder&) = delete;
    ~TTestFolder() { std::filesystem::remove_all(FPath); }

    const std::string& Path() const { return FPath; }
    std::string File(std::string_view name) const {
        return (std::filesystem::path(FPath) / name).string();
    }

private:
    std::string FPath;
};

} // namespace tarn
