#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn {

/// The names of what was in a folder when it was read; none when it could not be read.
class TFolderNames {
public:
    explicit TFolderNames(const std::filesystem::path& folder);

    /// The name as written when the folder has it, else the one that differs from it in letter case
    /// only, the first in byte order when there are several; empty when there is none.
    std::string Find(std::string_view name) const;
    /// Whether the folder is sure to hold the same names still.
    bool IsCurrent() const;

private:
    std::filesystem::path FFolder;
    std::filesystem::file_time_type FChanged; ///< the folder's time when it was read
    bool FSettled = false;                    ///< a later change is bound to show in that time
    std::vector<std::pair<std::string, std::string>> FNames; ///< sorted, each behind its capitals
};

/// The folders that files were looked for in. Each is read again when it may have changed only, so
/// that it does not take its whole contents to open one of many units.
class TFolderCache {
public:
    /// Good until the next call.
    const TFolderNames& Read(const std::filesystem::path& folder);

private:
    std::unordered_map<std::string, TFolderNames> FFolders;
};

} // namespace tarn
