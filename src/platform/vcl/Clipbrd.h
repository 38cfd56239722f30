#pragma once

#include <string>
#include <string_view>

namespace tarn {

class TPicture;

/// The clipboard of the operating system layer, which holds a text or a picture. Without an
/// installed layer all of it raises EInvalidOperation.
class TClipboard {
public:
    std::string AsText() const; ///< empty when the clipboard holds no text
    void SetAsText(std::string_view value);
    bool HasText() const; ///< true for an empty text as well
    void Clear();

    bool HasPicture() const; ///< whether it is in a format that pictures have
    /// Copies the picture on the clipboard; false, and `picture` as it was, when it holds none.
    /// Raises EInvalidGraphic for a broken one.
    bool GetPicture(TPicture& picture) const;
    void SetPicture(const TPicture& picture); ///< an empty one clears the clipboard
};

TClipboard& Clipboard();

} // namespace tarn
