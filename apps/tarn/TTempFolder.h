#pragma once

#include "ScriptSource.h"

#include <filesystem>
#include <stdlib.h>

namespace tarn {

/// A new folder for temporary files, which goes with the object. Raises EScriptError.
class TTempFolder {
public:
    TTempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "tarn-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw EScriptError(ExitIO, "cannot make a temporary folder like " + name);
        FPath = name;
    }
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;
    ~TTempFolder() {
        std::error_code error;
        std::filesystem::remove_all(FPath, error);
    }
    const std::filesystem::path& Path() const { return FPath; }

private:
    std::filesystem::path FPath;
};

} // namespace tarn
