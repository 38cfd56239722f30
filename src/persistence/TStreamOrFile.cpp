#include "TStreamOrFile.h"

#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"

namespace tarn {

void TStreamOrFile::Write(const std::function<void(TStream&)>& write) const {
    if (FStream) return write(*FStream);
    TMemoryStream contents;
    write(contents);
    SaveFileText(FFileName, contents.Text());
}

} // namespace tarn
