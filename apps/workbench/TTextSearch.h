#pragma once

#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TEditText;

/// Looks for a text in an edited one, without a copy of that. Offsets are 0-based, of bytes.
class TTextSearch {
public:
    /// \param sought not empty
    /// \param matchCase else a letter stands for its capital too, whatever the script, as long as
    /// both take the same number of bytes
    TTextSearch(const QString& sought, bool matchCase);

    std::size_t Size() const { return FLower.size(); }
    /// The first and the last place within from..to; none when there is none.
    std::optional<std::size_t> First(const TEditText& text, std::size_t from, std::size_t to) const;
    std::optional<std::size_t> Last(const TEditText& text, std::size_t from, std::size_t to) const;

private:
    bool IsAt(const char* place) const;
    std::optional<std::size_t> FirstIn(std::string_view text) const;
    std::optional<std::size_t> LastIn(std::string_view text) const;

    // The two spellings of each character, which are of one size, and these sizes.
    std::string FLower;
    std::string FUpper;
    std::vector<std::uint8_t> FSizes;
    // How far the place can move when that byte stands at its far end: to the right, to the left.
    std::array<std::size_t, 256> FRight;
    std::array<std::size_t, 256> FLeft;
};

} // namespace tarn
