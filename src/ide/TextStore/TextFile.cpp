#include "TextStore/TextFile.h"

#include <algorithm>

namespace tarn {

TFileContents LoadFile(std::string_view path, std::size_t limit) {
    TFileContents contents{};
    const auto reserve = [&contents](std::size_t size) {
        contents.Bytes.Reserve(size);
        return contents.Bytes.Room(0);
    };
    contents.Identity = LoadFileInto(path, std::min(limit, MaxTextSize), reserve);
    contents.Bytes.Commit(contents.Identity.Size);
    return contents;
}

} // namespace tarn
