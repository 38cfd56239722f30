#include "Modules/FileNames.h"

#include "TextStore/TextFile.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <filesystem>

namespace tarn {

namespace fs = std::filesystem;

std::string NormalFileName(std::string_view fileName) {
    std::error_code error;
    const fs::path absolute = fs::absolute(fs::path(fileName), error);
    return (error ? fs::path(fileName) : absolute.lexically_normal()).string();
}

bool IsSameFile(std::string_view a, std::string_view b) {
    if (a == b) return true;
    std::error_code error;
    return AnsiSameText(a, b) && fs::equivalent(fs::path(a), fs::path(b), error) && !error;
}

bool HasExtension(std::string_view fileName, std::span<const std::string_view> extensions) {
    return std::any_of(extensions.begin(), extensions.end(), [&](std::string_view extension) {
        return SameText(ExtractFileExt(fileName), extension);
    });
}

void CopyFile(const std::string& from, const std::string& to) {
    const TFileContents file = LoadFile(from);
    const std::span<const char> bytes = file.Bytes.Pieces(0, file.Bytes.Size())[0];
    const std::string_view chunk(bytes.data(), bytes.size());
    SaveFile(to, {&chunk, 1});
}

} // namespace tarn
