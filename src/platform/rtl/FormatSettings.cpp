#include "rtl/FormatSettings.h"

namespace tarn {

TFormatSettings& FormatSettings() {
    static TFormatSettings settings;
    return settings;
}

} // namespace tarn
