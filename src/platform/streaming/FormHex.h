#pragma once

#include <cstddef>
#include <string_view>

namespace tarn {

/// Decodes up to `count` bytes of two hexadecimal digits each, in any case, and returns how many
/// there were before something else. All the `count` * 2 characters can be read.
std::size_t DecodeFormHex(const char* digits, std::size_t count, char* bytes);

/// Writes two hexadecimal digits, with large letters, for each byte.
void EncodeFormHex(std::string_view bytes, char* digits);

} // namespace tarn
