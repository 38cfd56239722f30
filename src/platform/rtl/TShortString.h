#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

/// A text of at most `Length` bytes, as old records have it. What is longer is cut.
template <int Length = 255> class TShortString {
    static_assert(Length > 0 && Length <= 255);

public:
    TShortString() = default;
    TShortString(std::string_view text) // NOLINT(google-explicit-constructor)
        : FText(text.substr(0, static_cast<std::size_t>(Length))) {}

    const std::string& Text() const { return FText; }
    friend bool operator==(const TShortString&, const TShortString&) = default;

private:
    std::string FText;
};

} // namespace tarn
