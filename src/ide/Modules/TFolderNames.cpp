#include "Modules/TFolderNames.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <chrono>

namespace tarn {

namespace fs = std::filesystem;

TFolderNames::TFolderNames(const fs::path& folder) : FFolder(folder) {
    // The coarsest file systems count in two seconds: a change may leave the time of one shortly
    // before it as it was.
    constexpr std::chrono::seconds coarsest(2);
    const auto now = fs::file_time_type::clock::now();
    std::error_code error;
    FChanged = fs::last_write_time(folder, error);
    FSettled = !error && FChanged + coarsest <= now;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
        std::string name = i->path().filename().string();
        std::string capitals = UpperCase(name);
        FNames.emplace_back(std::move(capitals), std::move(name));
    }
    std::sort(FNames.begin(), FNames.end());
}

std::string TFolderNames::Find(std::string_view name) const {
    const std::pair<std::string, std::string> wanted(UpperCase(name), name);
    if (std::binary_search(FNames.begin(), FNames.end(), wanted)) return wanted.second;
    const auto first = std::lower_bound(
        FNames.begin(), FNames.end(), wanted.first,
        [](const auto& item, const std::string& capitals) { return item.first < capitals; });
    return first != FNames.end() && first->first == wanted.first ? first->second : std::string();
}

bool TFolderNames::IsCurrent() const {
    std::error_code error;
    return FSettled && fs::last_write_time(FFolder, error) == FChanged && !error;
}

const TFolderNames& TFolderCache::Read(const fs::path& folder) {
    const auto known = FFolders.find(folder.string());
    if (known != FFolders.end() && known->second.IsCurrent()) return known->second;
    return FFolders.insert_or_assign(folder.string(), TFolderNames(folder)).first->second;
}

} // namespace tarn
