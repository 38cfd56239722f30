#include "vcl/Clipbrd.h"

#include "os/OS.h"
#include "vcl/TPicture.h"

#include <algorithm>

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

bool TClipboard::HasPicture() const {
    const std::span<const TGraphicFormat> formats = GraphicFormats();
    return std::any_of(formats.begin(), formats.end(), [](const TGraphicFormat& format) {
        return OS().ClipboardData(format.ClipboardFormat).has_value();
    });
}

bool TClipboard::GetPicture(TPicture& picture) const {
    for (const TGraphicFormat& format : GraphicFormats()) {
        auto bytes = OS().ClipboardData(format.ClipboardFormat);
        if (!bytes) continue;
        const std::unique_ptr<TGraphic> graphic = format.New();
        graphic->SetBytes(std::move(*bytes));
        picture.SetGraphic(graphic.get());
        return true;
    }
    return false;
}

void TClipboard::SetPicture(const TPicture& picture) {
    if (picture.Empty()) return Clear();
    const TGraphic& graphic = *picture.Graphic();
    OS().SetClipboardData(FormatOf(graphic).ClipboardFormat, graphic.Bytes());
}

TClipboard& Clipboard() {
    static TClipboard clipboard;
    return clipboard;
}

} // namespace tarn
