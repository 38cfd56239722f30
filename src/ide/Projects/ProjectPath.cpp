#include "Projects/ProjectFile.h"

#include <algorithm>

namespace tarn {

namespace fs = std::filesystem;

namespace {

/// The name that an entry of the folder has on disk; the name as given when there is none.
fs::path NameOnDisk(const fs::path& folder, const fs::path& name) {
    std::error_code error;
    if (fs::exists(folder / name, error)) return name;
    const std::string wanted = name.string();
    std::string found;
    for (fs::directory_iterator i(folder.empty() ? fs::path(".") : folder, error), end;
         !error && i != end; i.increment(error)) {
        std::string entry = i->path().filename().string();
        if (SameText(entry, wanted) && (found.empty() || entry < found)) found = std::move(entry);
    }
    return found.empty() ? name : fs::path(found);
}

} // namespace

fs::path ResolveProjectPath(const fs::path& folder, std::string_view fileName) {
    std::string native(fileName);
    std::replace(native.begin(), native.end(), '\\', '/');
    // Folders that are entered and left again need not exist on the system that wrote the project.
    const fs::path path = fs::path(native).lexically_normal();
    fs::path resolved = path.is_absolute() ? path.root_path() : folder;
    for (const fs::path& name : path.relative_path())
        resolved /= name == ".." || name == "." ? name : NameOnDisk(resolved, name);
    return resolved.lexically_normal();
}

} // namespace tarn
