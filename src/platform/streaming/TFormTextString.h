#pragma once

#include "streaming/FormSink.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// A text for messages: control characters as their codes ("#9"), and so all bytes from 128 on when
/// it is not UTF-8.
std::string MaskedFormText(std::string_view text);
/// The same, cut at 40 bytes.
std::string ShownFormText(std::string_view text);
/// The end of a path for messages, which nested names may make very long.
std::string ShownFormPath(std::string_view path);

/// A string of a text form while its pieces, quoted ones and codes, are put together. It is bytes
/// until a character comes that takes UTF-16.
class TFormTextString {
public:
    /// Begins an empty string. `isUtf8`: quotes hold characters, and those above 127 take UTF-16;
    /// otherwise they hold bytes, and characters above 255 take UTF-16. `wideCodes`: by their codes
    /// those from 128 on take it, too.
    void Start(bool isUtf8, bool wideCodes);
    /// Appends what stands in quotes; `hasHigh`: some of it is from 128 on. False when it is not
    /// the UTF-8 that it should be.
    bool Append(std::string_view text, bool hasHigh);
    /// Appends a character by its code, up to 0x10FFFF.
    void AppendCode(std::uint32_t code);

    /// Whether something from 128 on, of which the layout of a text can be told, stands for itself,
    /// or as its code. The bytes of a string in UTF-16 tell nothing.
    bool HasRaw() const { return FHasRaw && (FIsUtf8 || !FIsWide); }
    bool HasEscaped() const { return FHasEscaped && (FIsUtf8 || !FIsWide); }

    /// The type of the string, which is `wideType` (vaWString or vaUTF8String) in UTF-16.
    TValueType Type(TValueType wideType) const;
    /// The string as a sink takes it. It ends with the next call.
    std::string_view Text(TValueType wideType);

private:
    void Widen();

    bool FIsUtf8 = false;
    std::uint32_t FMostNarrow = 255; ///< the last code that takes no UTF-16
    bool FIsWide = false;
    bool FHasRaw = false;
    bool FHasEscaped = false;
    std::string FBytes;    ///< while it is not wide
    std::u16string FUnits; ///< when it is
};

} // namespace tarn
