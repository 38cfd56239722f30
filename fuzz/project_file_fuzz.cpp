// Any bytes as a project or group file: read, or refused with EProjectFileError, nothing else.

#include "Projects/ProjectFile.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto read = [&](auto reader) {
        try {
            reader(text);
        } catch (const tarn::EProjectFileError&) { // NOLINT(bugprone-empty-catch)
        }
    };
    read(tarn::ReadPascalProject);
    read(tarn::ReadCppProject);
    read(tarn::ReadProjectGroup);
    return 0;
}
