#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Collects the names that might have been meant by one that is not there: those that differ from
/// it by a few letters, without case.
class TNearNames {
public:
    /// \param name what was written, which outlives the object
    /// \param part a part of it, which may be what was meant as well
    explicit TNearNames(std::string_view name, std::string_view part = {})
        : FName(name), FPart(part) {}

    /// Names too long to be typed are not compared: that would take the square of their length.
    void Offer(std::string_view candidate);
    /// At most three, the nearest first, in the order of the offers where they are equally near.
    std::vector<std::string> Nearest() const;

    static constexpr std::size_t Most = 3;

private:
    struct TCandidate {
        std::size_t Distance;
        std::string Name;
    };
    std::string_view FName;
    std::string_view FPart;
    std::vector<TCandidate> FCandidates;
};

/// "; is A, B or C meant?" for the end of a message; empty for no names.
std::string MeantText(std::span<const std::string> names);

} // namespace tarn
