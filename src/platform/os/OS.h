#pragma once

#include "rtl/TMethod.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A window handle; 0 is no window.
using HWND = std::uint32_t;
/// A keyboard layout handle: the language identifier in the low 16 bits.
using HKL = std::uint32_t;
/// A virtual key code, 0 to 255.
using TVirtualKey = std::uint8_t;
/// A loaded module of resources; 0 is none.
using HMODULE = std::uint32_t;

/// Ends what a window does with the captured mouse.
inline constexpr std::uint32_t WM_CANCELMODE = 0x1F;
/// The interval of a window's timer is over; WParam is the timer's number.
inline constexpr std::uint32_t WM_TIMER = 0x113;

inline constexpr HKL LayoutUSEnglish = 0x409;

struct TMessage {
    std::uint32_t Msg = 0;
    std::intptr_t WParam = 0;
    std::intptr_t LParam = 0;
    std::intptr_t Result = 0;
};
using TWndMethod = TMethod<void(TMessage&)>;

// The flags of a message box and the buttons that answer it.
inline constexpr std::uint32_t MB_OK = 0, MB_YESNOCANCEL = 3, MB_YESNO = 4;
inline constexpr std::uint32_t MB_ICONERROR = 16, MB_ICONQUESTION = 32, MB_ICONWARNING = 48,
                               MB_ICONINFORMATION = 64;
inline constexpr std::uint32_t MB_DEFBUTTON2 = 256; ///< Enter is the second button
enum TDialogAnswer : std::uint8_t { IDOK = 1, IDCANCEL = 2, IDYES = 6, IDNO = 7 };

/// What a file dialog asks for.
struct TFileQuestion {
    bool Save = false;            ///< a file to write; else one that exists
    std::string Title = {};       ///< empty for that of the system
    std::string Filter = {};      ///< descriptions and patterns in turn, "|" between them
    std::string FileName = {};    ///< that the dialog begins with
    std::string DefaultExt = {};  ///< of a name without one, with or without its point
    bool OverwritePrompt = false; ///< a file to write that exists is asked about
    bool Several = false;         ///< more than one file may be chosen
    std::string InitialDir = {};  ///< the folder to begin in where FileName is empty
};

class TSystemHeap;
class TSystemMapping;
struct TMapArea;
struct TMapFile;

/// What the pack and the component library need of the operating system. One implementation is
/// installed at a time, see InstallOS; everything runs on the main thread.
class TOperatingSystem {
public:
    TOperatingSystem() = default;
    TOperatingSystem(const TOperatingSystem&) = delete;
    TOperatingSystem& operator=(const TOperatingSystem&) = delete;
    virtual ~TOperatingSystem() = default;

    // Message windows. Posted messages are handled in posting order; those of a window that is gone
    // are dropped.
    virtual HWND AllocateHWnd(TWndMethod procedure) = 0;
    virtual void DeallocateHWnd(HWND window) = 0;
    virtual bool PostMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                             std::intptr_t lParam) = 0;
    /// Calls the window's procedure at once and returns its result; 0 for a window that is gone.
    virtual std::intptr_t SendMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                                      std::intptr_t lParam) = 0;
    virtual std::intptr_t DefWindowProc(const TMessage& message) = 0;
    /// Takes the oldest posted message and hands it to its window; false when none waits.
    virtual bool DispatchMessage() = 0;

    /// Posts WM_TIMER to the window at the end of each interval, unless one of this timer waits
    /// there already. A timer of that number begins anew. False for a window that is gone; a
    /// window's timers go with it.
    /// \param id the timer's number among those of its window
    /// \param interval milliseconds, at least 1
    virtual bool SetTimer(HWND window, std::intptr_t id, std::uint32_t interval) = 0;
    /// Ends a timer; a message of it that waits is dropped. Nothing when there is none.
    virtual void KillTimer(HWND window, std::intptr_t id) = 0;

    /// The text on the clipboard; none when it is empty or holds something else.
    virtual std::optional<std::string> ClipboardText() = 0;
    /// Replaces what the clipboard holds; none empties it.
    virtual void SetClipboardText(std::optional<std::string_view> text) = 0;
    /// The bytes on the clipboard in a format, which is called by its media type; none when it does
    /// not hold that.
    virtual std::optional<std::string> ClipboardData(std::string_view format) = 0;
    /// Replaces what the clipboard holds, be it a text.
    virtual void SetClipboardData(std::string_view format, std::string_view bytes) = 0;

    virtual HKL GetKeyboardLayout() = 0;
    virtual void ActivateKeyboardLayout(HKL layout) = 0;
    /// What the active layout calls a key that has no name of its own, for example "," or ";";
    /// empty when the key gives no character.
    virtual std::string KeyName(TVirtualKey key) = 0;
    /// Whether the key is held down.
    virtual bool KeyDown(TVirtualKey key) = 0;
    /// The window that has captured the mouse; 0 when none has.
    virtual HWND GetCapture() = 0;

    /// The full file name of the module that holds the pack.
    virtual std::string GetModuleFileName() = 0;

    /// Loads a resource library; 0 when it cannot be loaded as one.
    virtual HMODULE LoadLibrary(std::string_view fileName) = 0;
    virtual void FreeLibrary(HMODULE module) = 0;
    /// The numbered string of a module, UTF-8: what fits a buffer of 1024 characters with its end
    /// mark. Empty when the module has none or is not loaded.
    virtual std::string LoadString(HMODULE module, int id) = 0;

    // The registry below the current user. A key is written "\\Software\\Name".
    /// Opens a key for reading and writing, making it when it is missing; false when that cannot
    /// be.
    virtual bool OpenRegistryKey(std::string_view key) = 0;
    /// The value of a key that can be opened; none when it does not exist.
    virtual std::optional<std::string> ReadRegistryString(std::string_view key,
                                                          std::string_view name) = 0;
    /// Writes a value; false when the key cannot be written to.
    virtual bool WriteRegistryString(std::string_view key, std::string_view name,
                                     std::string_view value) = 0;

    /// The heap of the process, which lives as long as that.
    virtual TSystemHeap& ProcessHeap() = 0;
    /// A new heap.
    /// \param initialSize bytes that it must be able to give at once
    /// \param maximumSize bytes of all its blocks; 0 is no limit
    /// Raises EOSError when the memory is not there or the initial size is above the maximum.
    virtual std::unique_ptr<TSystemHeap> CreateHeap(std::size_t initialSize,
                                                    std::size_t maximumSize) = 0;

    /// Map a file, or a memory area: a name that is in use joins that area, with the size it has.
    /// Raise EOSError, also for an empty file that is not to grow.
    virtual std::unique_ptr<TSystemMapping> Map(const TMapFile& file) = 0;
    virtual std::unique_ptr<TSystemMapping> Map(const TMapArea& area) = 0;

    /// Shows a modal message and returns the button that answered it.
    virtual TDialogAnswer MessageBox(HWND owner, std::string_view text, std::string_view caption,
                                     std::uint32_t flags) = 0;
    virtual void MessageBeep() = 0;
    /// Lets the user choose a folder, beginning at `folder`; none when that is cancelled.
    virtual std::optional<std::string> SelectDirectory(std::string_view title,
                                                       std::string_view folder) = 0;
    /// Lets the user choose a file, or several; their full names, none when that is cancelled.
    virtual std::vector<std::string> ChooseFiles(const TFileQuestion& question) = 0;
    /// Lets the user enter a line of text, beginning with `value`; none when that is cancelled.
    virtual std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                                 std::string_view value) = 0;
};

/// Installs an implementation, which must outlive its use, and returns the one before; null takes
/// it out.
TOperatingSystem* InstallOS(TOperatingSystem* os);
/// The installed implementation. Raises EInvalidOperation when there is none.
TOperatingSystem& OS();
bool HasOS();

/// A hidden message window, for as long as the object lives.
class TMessageWindow {
public:
    explicit TMessageWindow(TWndMethod procedure) : FHandle(OS().AllocateHWnd(procedure)) {}
    TMessageWindow(const TMessageWindow&) = delete;
    TMessageWindow& operator=(const TMessageWindow&) = delete;
    ~TMessageWindow() {
        if (HasOS()) OS().DeallocateHWnd(FHandle);
    }
    HWND Handle() const { return FHandle; }

private:
    HWND FHandle;
};

} // namespace tarn
