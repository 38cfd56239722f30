// Any bytes as a Windows library: its strings are read, or it is refused with
// EResourceLibraryError, nothing else. What is read is no larger than the image can hold, is UTF-8
// and lists what a look-up finds.

#include "os/portable/PEStrings.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

/// Takes one UTF-8 character off the text; false when there is none.
bool TakeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    if (size == 0 || size > text.size()) return false;
    for (std::size_t i = 1; i < size; ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return false;
    // Half a surrogate pair would be 0xED 0xA0 to 0xBF.
    if (first == 0xED && static_cast<unsigned char>(text[1]) >= 0xA0) return false;
    text.remove_prefix(size);
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const tarn::TPEStrings strings({reinterpret_cast<const char*>(data), size});
        const auto all = strings.All();
        Require(!all.empty());
        std::size_t total = 0;
        for (const auto& [id, text] : all) {
            Require(strings.Find(id) == text);
            Require(text.size() <= 3 * tarn::TPEStrings::MaxUnits);
            std::string_view rest = text;
            while (!rest.empty()) Require(TakeCharacter(rest));
            total += text.size();
        }
        Require(total <= size / 2 * 3);
    } catch (const tarn::EResourceLibraryError&) { // NOLINT(bugprone-empty-catch)
    }
    return 0;
}
