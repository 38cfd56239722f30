#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// Appends a character, which is at most U+10FFFF; a surrogate takes three bytes.
void AppendUtf8(std::string& text, char32_t character);

/// Takes the character at the front off the text, which is not empty. A byte that belongs to none
/// is taken off alone and gives U+FFFD, which otherwise takes three bytes.
char32_t TakeUtf8(std::string_view& text);

/// UTF-16 as UTF-8. A surrogate that has no partner becomes the three bytes of its number, so that
/// Utf8ToUtf16 gives back any UTF-16 as it was.
std::string Utf16ToUtf8(std::u16string_view text);

/// UTF-8 as UTF-16. Surrogates as Utf16ToUtf8 writes them are taken; any other byte that belongs to
/// no character becomes U+FFFD.
std::u16string Utf8ToUtf16(std::string_view text);

} // namespace tarn
