#include "vcl/Clipbrd.h"

#include "os/OS.h"

namespace tarn {

std::string TClipboard::AsText() const {
    return OS().ClipboardText().value_or(std::string());
}

void TClipboard::SetAsText(std::string_view value) {
    OS().SetClipboardText(value);
}

bool TClipboard::HasText() const {
    return OS().ClipboardText().has_value();
}

void TClipboard::Clear() {
    OS().SetClipboardText(std::nullopt);
}

TClipboard& Clipboard() {
    static TClipboard clipboard;
    return clipboard;
}

} // namespace tarn
