#pragma once

#include <chrono>
#include <string_view>

namespace tarn {

/// One line on standard error that tells how far a long command is; nothing when that is no
/// terminal, and nothing in the first moments. The line goes with the object.
class TProgress {
public:
    /// \param delay how long nothing is shown
    explicit TProgress(std::chrono::milliseconds delay = std::chrono::milliseconds(500));
    TProgress(const TProgress&) = delete;
    TProgress& operator=(const TProgress&) = delete;
    ~TProgress() { Clear(); }

    /// Whether anybody can see it.
    bool IsVisible() const { return FVisible; }
    /// \param what behind the share; one line without control characters
    void Show(double share, std::string_view what);
    /// Makes room for other output.
    void Clear();

private:
    using TClock = std::chrono::steady_clock;

    bool FVisible;
    bool FShown = false;
    TClock::time_point FNext;
};

} // namespace tarn
