#include "TStreamOrFile.h"

#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"

#include <algorithm>

namespace tarn {

void TStreamOrFile::Write(const std::function<void(TStream&)>& write) const {
    if (FStream) return write(*FStream);
    TMemoryStream contents;
    write(contents);
    SaveFileText(FFileName, contents.Text());
}

std::string ReadRest(TStream& stream) {
    const std::int64_t left = std::max<std::int64_t>(stream.Size() - stream.Position(), 0);
    std::string rest(static_cast<std::size_t>(left), '\0');
    stream.ReadBuffer(rest.data(), left);
    return rest;
}

} // namespace tarn
