// Parses any bytes as the text of forms. What can be read becomes a binary, and that a text: the
// text becomes the same binary again, and that the same text.

#include "rtl/TStream.h"
#include "streaming/FormConvert.h"
#include "streaming/TFormPath.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    TFormLayout layout;
    std::string binary;
    try {
        if (FormFileKindOf(bytes) != fkText) return 0;
        binary = ConvertForm(bytes, fkBinary, layout);
    } catch (const EFormError&) {
        return 0;
    } catch (const EStreamError&) {
        return 0;
    }
    if (binary.empty()) std::abort();
    const std::string text = ConvertForm(binary, fkText, layout);
    const std::string binaryAgain = ConvertForm(text, fkBinary, layout);
    if (binaryAgain != binary) std::abort();
    if (ConvertForm(binaryAgain, fkText, layout) != text) std::abort();
    return 0;
}
