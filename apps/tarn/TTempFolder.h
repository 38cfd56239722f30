#pragma once

#include "ScriptSource.h"
#include "qsAppUtils.h"

#include <filesystem>

namespace tarn {

/// A new folder for temporary files, which goes with the object. Raises EScriptError.
class TTempFolder {
public:
    TTempFolder() {
        try {
            FPath = std::filesystem::path(CreateTempPath()).parent_path();
        } catch (const EInOutError& error) {
            throw EScriptError(ExitIO, error.what());
        }
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
