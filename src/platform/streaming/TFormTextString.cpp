#include "streaming/TFormTextString.h"

#include "rtl/Unicode.h"
#include "streaming/FormValues.h"

namespace tarn {

std::string ShownFormText(std::string_view text) {
    constexpr std::size_t maxSize = 40;
    const bool isCut = text.size() > maxSize;
    std::size_t size = isCut ? maxSize : text.size();
    const auto isInside = [&](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    if (isCut)
        while (size > 0 && isInside(text[size])) --size;
    text = text.substr(0, size);
    const bool showHigh = IsUtf8Text(text);
    std::string result;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 32 || code == 127 || (code > 127 && !showHigh))
            (result += '#') += std::to_string(code);
        else
            result += c;
    }
    return isCut ? result + "..." : result;
}

void TFormTextString::Start(bool isUtf8) {
    FIsUtf8 = isUtf8;
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
    if (code > (FIsUtf8 ? 127 : 255)) Widen();
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
