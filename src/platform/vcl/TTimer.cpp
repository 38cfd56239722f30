#include "vcl/TTimer.h"

#include "vcl/Forms.h"

namespace tarn {
namespace {

constexpr TPropInfo TimerProps[] = {
    Published<&TTimer::Enabled, &TTimer::SetEnabled>("Enabled", {.Default = true}),
    Published<&TTimer::Interval, &TTimer::SetInterval>("Interval", {.Default = 1000}),
    Published<&TTimer::OnTimer, &TTimer::SetOnTimer>("OnTimer"),
};

/// Each timer has a window of its own.
constexpr std::intptr_t TimerId = 1;

} // namespace

constinit const TClassRecord TTimer::ClassRecord{"TTimer", &TComponent::ClassRecord,
                                                 CreateObject<TTimer>, TimerProps};

void TTimer::SetEnabled(bool value) {
    FEnabled = value;
    Restart();
}

void TTimer::SetInterval(std::uint32_t value) {
    FInterval = value;
    Restart();
}

void TTimer::SetOnTimer(TNotifyEvent value) {
    FOnTimer = value;
    Restart();
}

void TTimer::Restart() {
    FWindow.reset(); // with its timer and a message that waits
    if (!FEnabled || FInterval == 0 || !FOnTimer) return;
    FWindow.emplace(TWndMethod::Of<&TTimer::WndProc>(this));
    OS().SetTimer(FWindow->Handle(), TimerId, FInterval);
}

void TTimer::WndProc(TMessage& message) {
    if (message.Msg == WM_TIMER)
        Tick();
    else
        message.Result = OS().DefWindowProc(message);
}

void TTimer::Tick() {
    const TNotifyEvent handler = FOnTimer;
    const TWeak<TTimer> alive(this);
    try {
        handler(this);
    } catch (...) {
        if (!Application()) throw;
        Application()->HandleException(alive.Get());
    }
}

} // namespace tarn
