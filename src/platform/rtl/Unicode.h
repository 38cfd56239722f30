#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// UTF-16 as UTF-8. A surrogate that has no partner becomes the three bytes of its number, so that
/// Utf8ToUtf16 gives back any UTF-16 as it was.
std::string Utf16ToUtf8(std::u16string_view text);

/// UTF-8 as UTF-16. Surrogates as Utf16ToUtf8 writes them are taken; any other byte that belongs to
/// no character becomes U+FFFD.
std::u16string Utf8ToUtf16(std::string_view text);

} // namespace tarn
