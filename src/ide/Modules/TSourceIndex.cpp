#include "Modules/TSourceIndex.h"

#include "Modules/FileNames.h"
#include "Source/TSourceBuffer.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

void TSourceIndex::Add(TSourceBuffer& buffer) {
    FBuffers[AnsiTextKey(buffer.FileName())].push_back(&buffer);
}

bool TSourceIndex::Remove(TSourceBuffer& buffer) {
    const auto found = FBuffers.find(AnsiTextKey(buffer.FileName()));
    if (found == FBuffers.end()) return false;
    const bool removed = std::erase(found->second, &buffer) > 0;
    if (found->second.empty()) FBuffers.erase(found);
    return removed;
}

TSourceBuffer* TSourceIndex::Find(std::string_view fileName) const {
    const auto found = FBuffers.find(AnsiTextKey(fileName));
    if (found == FBuffers.end()) return nullptr;
    const auto buffer =
        std::find_if(found->second.begin(), found->second.end(), [&](const TSourceBuffer* each) {
            return IsSameFile(each->FileName(), fileName);
        });
    return buffer == found->second.end() ? nullptr : *buffer;
}

} // namespace tarn
