#pragma once

#include "streaming/TFormTextParser.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

/// Finds where the text of objects has what the binary that was made of it has. Nothing is done
/// before the first place is asked for; then many of one object cost little more than one.
class TTextPlaces {
public:
    /// The text stays the caller's. It may change while its breaks of lines do not.
    explicit TTextPlaces(std::string_view text) : FText(text) {}

    /// Begins with the object whose text begins at the offset.
    void SetObject(std::size_t begin);
    /// The place in the whole text of an offset in the object's binary: where the innermost thing
    /// begins that stands there.
    TTextPlace PlaceOf(std::int64_t offset, std::string_view binary);

private:
    void ReadObject(std::string_view binary);
    TTextPlace PlaceInText(std::size_t offset);

    std::string_view FText;
    std::size_t FBegin = 0; ///< of the object in the text
    /// Offsets in the binary and in the text of what the object holds; empty until they are needed.
    std::vector<std::pair<std::int64_t, std::size_t>> FOffsets;
    std::int64_t FLine = 1;     ///< the line of the last place
    std::size_t FLineStart = 0; ///< its offset
};

} // namespace tarn
