#include "streaming/TFormTextString.h"

#include "rtl/Unicode.h"
#include "streaming/FormValues.h"

namespace tarn {

namespace {

/// Whether a character of UTF-8 goes on with this byte.
bool IsInside(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

std::string MaskedFormText(std::string_view text) {
    const bool showHigh = IsUtf8Text(text);
    std::string result;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 32 || code == 127 || (code > 127 && !showHigh))
            (result += '#') += std::to_string(code);
        else
            result += c;
    }
    return result;
}

std::string ShownFormText(std::string_view text) {
    constexpr std::size_t most = 40;
    if (text.size() <= most) return MaskedFormText(text);
    std::size_t size = most;
    while (size > 0 && IsInside(text[size])) --size;
    return MaskedFormText(text.substr(0, size)) + "...";
}

std::string ShownFormPath(std::string_view path) {
    constexpr std::size_t most = 160;
    if (path.size() <= most) return MaskedFormText(path);
    path.remove_prefix(path.size() - most);
    while (!path.empty() && IsInside(path.front())) path.remove_prefix(1);
    return "..." + MaskedFormText(path);
}

void TFormTextString::Start(bool isUtf8, bool wideCodes) {
    FIsUtf8 = isUtf8;
    FMostNarrow = isUtf8 || wideCodes ? 127 : 255;
    FIsWide = FHasRaw = FHasEscaped = false;
    FBytes.clear();
    FUnits.clear();
}

void TFormTextString::Widen() {
    if (FIsWide) return;
    FIsWide = true;
    for (const char c : FBytes) FUnits += static_cast<unsigned char>(c);
}

bool TFormTextString::Append(std::string_view text, bool hasHigh) {
    FHasRaw = FHasRaw || hasHigh;
    if (FIsUtf8 && hasHigh) {
        if (!IsUtf8Text(text)) return false;
        Widen();
        FUnits += Utf8ToUtf16(text);
    } else if (FIsWide) {
        for (const char c : text) FUnits += static_cast<unsigned char>(c);
    } else {
        FBytes += text;
    }
    return true;
}

void TFormTextString::AppendCode(std::uint32_t code) {
    FHasEscaped = FHasEscaped || code > 127;
    if (code > FMostNarrow) Widen();
    if (!FIsWide) {
        FBytes += static_cast<char>(code);
    } else if (code < 0x10000) {
        FUnits += static_cast<char16_t>(code);
    } else {
        FUnits += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        FUnits += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    }
}

TValueType TFormTextString::Type(TValueType wideType) const {
    return FIsWide ? wideType : StringTypeOf(FBytes.size());
}

std::string_view TFormTextString::Text(TValueType wideType) {
    if (FIsWide) FBytes = wideType == vaUTF8String ? Utf16ToUtf8(FUnits) : BytesOfUtf16(FUnits);
    return FBytes;
}

} // namespace tarn
