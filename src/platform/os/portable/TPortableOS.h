#pragma once

#include "os/OS.h"

#include <deque>
#include <map>
#include <vector>

namespace tarn {

/// The operating system layer without a windowing system: message windows over a queue of its own,
/// keyboard layouts as data, dialogs answered from a queue. It remembers what a user would have
/// seen and heard, for front ends without windows and for tests.
class TPortableOS : public TOperatingSystem {
public:
    HWND AllocateHWnd(TWndMethod procedure) override;
    void DeallocateHWnd(HWND window) override;
    bool PostMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                     std::intptr_t lParam) override;
    std::intptr_t SendMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                              std::intptr_t lParam) override;
    std::intptr_t DefWindowProc(const TMessage& message) override;
    bool DispatchMessage() override;

    HKL GetKeyboardLayout() override { return FLayout; }
    void ActivateKeyboardLayout(HKL layout) override;
    std::string KeyName(TVirtualKey key) override;

    std::string GetModuleFileName() override;

    /// Takes the oldest queued answer; without one the cautious answer: Cancel where there is such
    /// a button, else No, else OK.
    TDialogAnswer MessageBox(HWND owner, std::string_view text, std::string_view caption,
                             std::uint32_t flags) override;
    void MessageBeep() override { ++FBeeps; }

    /// One message box that was shown.
    struct TShownDialog {
        std::string Caption;
        std::string Text;
        std::uint32_t Flags = 0;
        TDialogAnswer Answer = IDOK;
    };

    void QueueAnswer(TDialogAnswer answer) { FAnswers.push_back(answer); }
    const std::vector<TShownDialog>& Dialogs() const { return FDialogs; }
    int Beeps() const { return FBeeps; }
    std::size_t PendingMessages() const { return FQueue.size(); }
    std::size_t WindowCount() const { return FWindows.size(); }
    /// Every layout that was activated, oldest first.
    const std::vector<HKL>& LayoutsActivated() const { return FLayoutsActivated; }

    /// Replaces the running program's own file name as the module that holds the pack.
    void SetModuleFileName(std::string_view name) { FModuleFileName = name; }

private:
    struct TPosted {
        HWND Window;
        TMessage Message;
    };

    std::map<HWND, TWndMethod> FWindows;
    std::deque<TPosted> FQueue;
    HWND FLastWindow = 0;
    HKL FLayout = LayoutUSEnglish;
    std::vector<HKL> FLayoutsActivated;
    std::deque<TDialogAnswer> FAnswers;
    std::vector<TShownDialog> FDialogs;
    std::string FModuleFileName;
    int FBeeps = 0;
};

} // namespace tarn
