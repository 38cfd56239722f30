#pragma once

#include "os/OS.h"
#include "vcl/TComponent.h"

#include <optional>

namespace tarn {

/// Fires OnTimer at the end of each interval while it is enabled. A tick comes through the message
/// queue, where at most one waits; one that waits when the timer is changed or freed does not come
/// any more. The timer may be changed and freed in its own tick.
class TTimer : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TTimer(TComponent* owner = nullptr) : TComponent(owner) {}

    // Each of these begins a new interval, when there is a handler. They raise EInvalidOperation
    // when the timer is to run and no operating system layer is installed.
    bool Enabled() const { return FEnabled; }
    void SetEnabled(bool value);
    std::uint32_t Interval() const { return FInterval; } ///< milliseconds; 0: never
    void SetInterval(std::uint32_t value);
    /// What it raises goes to the application's HandleException, with the timer as the sender.
    TNotifyEvent OnTimer() const { return FOnTimer; }
    void SetOnTimer(TNotifyEvent value);

private:
    void Restart();
    void WndProc(TMessage& message);
    void Tick();

    bool FEnabled = true;
    std::uint32_t FInterval = 1000;
    TNotifyEvent FOnTimer;
    std::optional<TMessageWindow> FWindow; ///< while the timer runs
};

} // namespace tarn
