// Reads any bytes as component streams, plain or in resources. What can be read and has a text
// becomes a binary again, from where on text and binary turn into each other without a change.

#include "rtl/TStream.h"
#include "streaming/FormConvert.h"
#include "streaming/TFormPath.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    TFormLayout layout;
    std::string text;
    std::string binary;
    try {
        if (FormFileKindOf(bytes) == fkText) return 0;
        text = ConvertForm(bytes, fkText, layout);
        binary = ConvertForm(text, fkBinary, layout);
    } catch (const EFormError&) { // a name that no text can hold: not every binary has a text
        return 0;
    } catch (const EStreamError&) {
        return 0;
    }
    const std::string textAgain = ConvertForm(binary, fkText, layout);
    if (ConvertForm(textAgain, fkBinary, layout) != binary) std::abort();
    return 0;
}
