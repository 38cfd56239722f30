// Any text and any delimiter: TStringReader gives the strings of a naive split, whatever the size
// of its buffer, from a stream with and without one. The first bytes choose the sizes.

#include "TStringReader.h"
#include "rtl/TMemoryStream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

void CheckStrings(std::string_view text, std::string_view delimiter, std::int64_t bufferSize) {
    tarn::TStringStream stream(text);
    tarn::TStringReader reader;
    reader.SetStringDelimiter(delimiter);
    reader.Buffered = bufferSize > 0;
    reader.BufferSize = bufferSize;
    reader.SetTargetStream(&stream);
    std::string read;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t found =
            delimiter.empty() ? std::string_view::npos : text.find(delimiter, at);
        const std::size_t end = std::min(found, text.size());
        Require(reader.ReadString(read));
        Require(read == text.substr(at, end - at));
        at = std::min(text.size(), end + delimiter.size());
        if (bufferSize == 0) Require(stream.Position() == static_cast<std::int64_t>(at));
    }
    Require(!reader.ReadString(read) && read.empty());
    reader.Synchronize();
    Require(stream.Position() == stream.Size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::int64_t bufferSize = data[0] * 4 + 1;
    const std::string_view delimiter = input.substr(2, data[1]);
    const std::string_view text = input.substr(2 + delimiter.size());
    CheckStrings(text, delimiter, bufferSize);
    CheckStrings(text, delimiter, 0);
    return 0;
}
