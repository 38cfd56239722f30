#pragma once

#include "vcl/TFont.h"

#include <string_view>

namespace tarn {

/// The room that a text takes, in pixels.
struct TExtent {
    int Width = 0;
    int Height = 0;
    friend bool operator==(const TExtent&, const TExtent&) = default;
};

/// What knows how large a text is. A front end installs one that asks its own fonts.
class ITextMeasure {
public:
    /// The room of a line without breaks; the empty line is as high as any other.
    virtual TExtent TextExtent(const TFont& font, std::string_view line) = 0;

protected:
    ~ITextMeasure() = default;
};

/// The measure in use: the one installed last, else one that needs no fonts. That takes 6 pixels
/// for a character, 12 for a wide East Asian one and none for a combining one, in lines of 13
/// pixels; a font of N pixels scales all of that by N/11 when N is its characters' height and by
/// N/13 when it is its lines' height, rounded, and at least 1. Name and style make no difference.
ITextMeasure& TextMeasure();
/// Puts another measure in place, null for the one that needs no fonts; gives back what was
/// installed before. The caller keeps both.
ITextMeasure* InstallTextMeasure(ITextMeasure* measure);

/// The room of a text of lines: as wide as the widest, and at least one line high. A break at the
/// end begins no line.
TExtent MeasureText(const TFont& font, std::string_view text);

} // namespace tarn
