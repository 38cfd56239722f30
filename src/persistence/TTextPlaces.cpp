#include "TTextPlaces.h"

#include "streaming/FormBinary.h"
#include "streaming/TFormTree.h"

#include <algorithm>
#include <limits>

namespace tarn {

void TTextPlaces::SetObject(std::size_t begin) {
    FBegin = begin;
    FOffsets.clear();
}

/// The trees of the text and of the binary have the same nodes.
void TTextPlaces::ReadObject(std::string_view binary) {
    TFormTextParser textParser(FText.substr(FBegin));
    TFormBinaryReader binaryParser(binary);
    TFormTree ofText, ofBinary;
    ofText.SetSource(textParser);
    textParser.Parse(ofText);
    ofBinary.SetSource(binaryParser);
    binaryParser.Parse(ofBinary);
    const TFormNodeIndex count = std::min(ofText.Count(), ofBinary.Count());
    FOffsets.reserve(count);
    for (TFormNodeIndex node = 0; node < count; ++node)
        FOffsets.emplace_back(ofBinary[node].Begin,
                              FBegin + static_cast<std::size_t>(ofText[node].Begin));
}

TTextPlace TTextPlaces::PlaceOf(std::int64_t offset, std::string_view binary) {
    if (FOffsets.empty()) ReadObject(binary);
    constexpr std::size_t last = std::numeric_limits<std::size_t>::max();
    const auto behind = std::upper_bound(FOffsets.begin(), FOffsets.end(), std::pair(offset, last));
    std::size_t at = behind == FOffsets.begin() ? FBegin : std::prev(behind)->second;
    // Blanks in front are part of a node.
    while (at + 1 < FText.size() && static_cast<unsigned char>(FText[at]) <= ' ') ++at;
    return PlaceInText(at);
}

/// Lines are counted from the last place on: places mostly come in their order.
TTextPlace TTextPlaces::PlaceInText(std::size_t offset) {
    if (offset < FLineStart) {
        FLine = 1;
        FLineStart = 0;
    }
    TTextPlace place = TextPlaceOf(FText.substr(FLineStart), offset - FLineStart);
    place.Line = FLine += place.Line - 1;
    FLineStart = offset + 1 - static_cast<std::size_t>(place.Column);
    return place;
}

} // namespace tarn
