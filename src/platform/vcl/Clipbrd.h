#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// The clipboard of the operating system layer, of which texts alone are known here. Without an
/// installed layer all of it raises EInvalidOperation.
class TClipboard {
public:
    std::string AsText() const; ///< empty when the clipboard holds no text
    void SetAsText(std::string_view value);
    bool HasText() const; ///< true for an empty text as well
    void Clear();
};

TClipboard& Clipboard();

} // namespace tarn
