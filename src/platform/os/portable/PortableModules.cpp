#include "os/portable/TPortableOS.h"

namespace tarn {

HMODULE TPortableOS::LoadLibrary(std::string_view fileName) {
    try {
        FModules.emplace(FLastModule + 1, TPEStrings::FromFile(fileName));
        return ++FLastModule;
    } catch (const EResourceLibraryError&) {
        return 0;
    }
}

void TPortableOS::FreeLibrary(HMODULE module) {
    FModules.erase(module);
}

std::string TPortableOS::LoadString(HMODULE module, int id) {
    const auto found = FModules.find(module);
    return found == FModules.end() ? std::string() : std::string(found->second.Find(id));
}

} // namespace tarn
