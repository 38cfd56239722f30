#pragma once

#include "os/OS.h"
#include "os/portable/PEStrings.h"
#include "os/portable/TConsoleDialogs.h"

#include <bitset>
#include <deque>
#include <map>
#include <vector>

namespace tarn {

/// The operating system layer without a windowing system: message windows over a queue of its own,
/// keyboard layouts as data, dialogs answered from a queue or on a console. It remembers what a
/// user would have seen and heard, for front ends without windows and for tests.
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

    bool SetTimer(HWND window, std::intptr_t id, std::uint32_t interval) override;
    void KillTimer(HWND window, std::intptr_t id) override;

    std::optional<std::string> ClipboardText() override { return ClipboardData(TextFormat); }
    void SetClipboardText(std::optional<std::string_view> text) override;
    std::optional<std::string> ClipboardData(std::string_view format) override;
    void SetClipboardData(std::string_view format, std::string_view bytes) override;

    HKL GetKeyboardLayout() override { return FLayout; }
    void ActivateKeyboardLayout(HKL layout) override;
    std::string KeyName(TVirtualKey key) override;
    bool KeyDown(TVirtualKey key) override { return FKeysDown.test(key); }
    HWND GetCapture() override { return FCapture; }

    std::string GetModuleFileName() override;

    HMODULE LoadLibrary(std::string_view fileName) override;
    void FreeLibrary(HMODULE module) override;
    std::string LoadString(HMODULE module, int id) override;

    bool OpenRegistryKey(std::string_view key) override;
    std::optional<std::string> ReadRegistryString(std::string_view key,
                                                  std::string_view name) override;
    bool WriteRegistryString(std::string_view key, std::string_view name,
                             std::string_view value) override;

    TSystemHeap& ProcessHeap() override;
    std::unique_ptr<TSystemHeap> CreateHeap(std::size_t initialSize,
                                            std::size_t maximumSize) override;
    std::unique_ptr<TSystemMapping> Map(const TMapFile& file) override;
    std::unique_ptr<TSystemMapping> Map(const TMapArea& area) override;

    /// Takes the oldest queued answer; without one that of the console, or the cautious answer when
    /// there is no console either.
    TDialogAnswer MessageBox(HWND owner, std::string_view text, std::string_view caption,
                             std::uint32_t flags) override;
    void MessageBeep() override { ++FBeeps; }
    /// Takes the oldest queued folder; without one that of the console, or none.
    std::optional<std::string> SelectDirectory(std::string_view title,
                                               std::string_view folder) override;
    /// Takes the oldest queued file; without one that of the console, or none. A file that exists
    /// and is not to be overwritten is asked about by a message box: when that is refused, the next
    /// one is taken.
    std::vector<std::string> ChooseFiles(const TFileQuestion& question) override;
    /// Takes the oldest queued input; without one that of the console, or none.
    std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                         std::string_view value) override;

    /// One dialog that was shown; the text of one that asks for more than a button is the answer.
    struct TShownDialog {
        std::string Caption;
        std::string Text;
        std::uint32_t Flags = 0;
        TDialogAnswer Answer = IDOK;
        bool OnConsole = false; ///< whether the console has shown it
    };

    /// Time stands still for timers but for this: posts the messages of those whose intervals end
    /// within `milliseconds`, in the order of their ends. A timer posts one message however often
    /// its interval fits; who wants each tick goes on by NextTimer and handles messages between.
    void AdvanceTime(std::uint64_t milliseconds);
    /// Milliseconds to the end of the first interval; none without a timer.
    std::optional<std::uint64_t> NextTimer() const;

    void SetKeyDown(TVirtualKey key, bool down) { FKeysDown.set(key, down); }
    /// Gives the mouse to a window, which loses it when it goes.
    void SetCapture(HWND window) { FCapture = window; }
    void QueueAnswer(TDialogAnswer answer) { FAnswers.push_back(answer); }
    void QueueFolder(std::string_view folder) { FFolders.emplace_back(folder); }
    void QueueFile(std::string_view file) { FFiles.emplace_back(file); }
    void QueueInput(std::string_view text) { FInputs.emplace_back(text); }
    /// Shows the dialogs for which no answer is queued; must outlive the object. Null, as it is at
    /// first, shows them nowhere.
    void SetConsole(TUserDialogs* console) { FConsole = console; }
    const std::vector<TShownDialog>& Dialogs() const { return FDialogs; }
    int Beeps() const { return FBeeps; }
    std::size_t PendingMessages() const { return FQueue.size(); }
    std::size_t WindowCount() const { return FWindows.size(); }
    /// Every layout that was activated, oldest first.
    const std::vector<HKL>& LayoutsActivated() const { return FLayoutsActivated; }

    /// Replaces the running program's own file name as the module that holds the pack.
    void SetModuleFileName(std::string_view name) { FModuleFileName = name; }

    /// The text file that is the registry. Without one no key can be opened.
    void SetRegistryFile(std::string_view file) { FRegistryFile = file; }
    /// Where the registry of the user is: TARN_REGISTRY, or "tarnexperts/registry" in the folder
    /// where the desktop's conventions put configuration; empty when there is no such folder.
    static std::string UserRegistryFile();

private:
    static constexpr std::string_view TextFormat = "text/plain";

    /// What the oldest entry of a queue, or else the console's `ask`, says to a dialog.
    template <class F>
    std::optional<std::string> AnswerText(std::deque<std::string>& queue, std::string_view caption,
                                          F&& ask);

    struct TPosted {
        HWND Window;
        TMessage Message;
    };

    struct TTimerEntry {
        HWND Window;
        std::intptr_t Id;
        std::uint64_t Interval; ///< milliseconds
        std::uint64_t Due;      ///< the time when it ends
    };
    bool Waits(const TTimerEntry& timer) const;

    std::map<HWND, TWndMethod> FWindows;
    std::deque<TPosted> FQueue;
    std::vector<TTimerEntry> FTimers; ///< in the order in which they were set
    std::uint64_t FTime = 0;          ///< milliseconds since the object was made
    std::string FClipboardFormat;     ///< empty when the clipboard is
    std::string FClipboard;
    HWND FLastWindow = 0;
    HKL FLayout = LayoutUSEnglish;
    std::vector<HKL> FLayoutsActivated;
    std::bitset<256> FKeysDown;
    HWND FCapture = 0;
    std::deque<TDialogAnswer> FAnswers;
    std::deque<std::string> FFolders;
    std::deque<std::string> FFiles;
    std::deque<std::string> FInputs;
    TUserDialogs* FConsole = nullptr;
    std::vector<TShownDialog> FDialogs;
    std::string FModuleFileName;
    std::map<HMODULE, TPEStrings> FModules;
    HMODULE FLastModule = 0x3FF; ///< the first one is above the error codes of loading, 0 to 32
    std::string FRegistryFile;
    int FBeeps = 0;
};

} // namespace tarn
