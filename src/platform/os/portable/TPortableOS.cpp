#include "os/portable/TPortableOS.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tarn {

// --- Message windows --------------------------------------------------------------------------

HWND TPortableOS::AllocateHWnd(TWndMethod procedure) {
    FWindows.emplace(++FLastWindow, procedure);
    return FLastWindow;
}

void TPortableOS::DeallocateHWnd(HWND window) {
    FWindows.erase(window);
    if (FCapture == window) FCapture = 0;
    std::erase_if(FQueue, [window](const TPosted& posted) { return posted.Window == window; });
    std::erase_if(FTimers, [window](const TTimerEntry& timer) { return timer.Window == window; });
}

bool TPortableOS::PostMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                              std::intptr_t lParam) {
    if (!FWindows.contains(window)) return false;
    FQueue.push_back({window, {msg, wParam, lParam, 0}});
    return true;
}

std::intptr_t TPortableOS::SendMessage(HWND window, std::uint32_t msg, std::intptr_t wParam,
                                       std::intptr_t lParam) {
    const auto found = FWindows.find(window);
    if (found == FWindows.end()) return 0;
    TMessage message{msg, wParam, lParam, 0};
    // The window may go while it handles the message: its procedure is copied first.
    const TWndMethod procedure = found->second;
    procedure(message);
    return message.Result;
}

std::intptr_t TPortableOS::DefWindowProc(const TMessage&) {
    return 0;
}

bool TPortableOS::DispatchMessage() {
    if (FQueue.empty()) return false;
    const TPosted posted = FQueue.front();
    FQueue.pop_front();
    SendMessage(posted.Window, posted.Message.Msg, posted.Message.WParam, posted.Message.LParam);
    return true;
}

// --- Timers -----------------------------------------------------------------------------------

bool TPortableOS::SetTimer(HWND window, std::intptr_t id, std::uint32_t interval) {
    if (!FWindows.contains(window)) return false;
    KillTimer(window, id);
    const std::uint64_t whole = std::max<std::uint32_t>(interval, 1);
    FTimers.push_back({window, id, whole, FTime + whole});
    return true;
}

void TPortableOS::KillTimer(HWND window, std::intptr_t id) {
    std::erase_if(FTimers, [=](const TTimerEntry& timer) {
        return timer.Window == window && timer.Id == id;
    });
    std::erase_if(FQueue, [=](const TPosted& posted) {
        return posted.Window == window && posted.Message.Msg == WM_TIMER &&
               posted.Message.WParam == id;
    });
}

bool TPortableOS::Waits(const TTimerEntry& timer) const {
    return std::any_of(FQueue.begin(), FQueue.end(), [&timer](const TPosted& posted) {
        return posted.Window == timer.Window && posted.Message.Msg == WM_TIMER &&
               posted.Message.WParam == timer.Id;
    });
}

void TPortableOS::AdvanceTime(std::uint64_t milliseconds) {
    FTime += milliseconds;
    std::vector<TTimerEntry*> ended;
    for (TTimerEntry& timer : FTimers)
        if (timer.Due <= FTime) ended.push_back(&timer);
    std::stable_sort(ended.begin(), ended.end(),
                     [](const TTimerEntry* a, const TTimerEntry* b) { return a->Due < b->Due; });
    for (TTimerEntry* timer : ended) {
        if (!Waits(*timer)) PostMessage(timer->Window, WM_TIMER, timer->Id, 0);
        timer->Due += ((FTime - timer->Due) / timer->Interval + 1) * timer->Interval;
    }
}

std::optional<std::uint64_t> TPortableOS::NextTimer() const {
    if (FTimers.empty()) return std::nullopt;
    const auto first =
        std::min_element(FTimers.begin(), FTimers.end(),
                         [](const TTimerEntry& a, const TTimerEntry& b) { return a.Due < b.Due; });
    return first->Due - FTime;
}

// --- Keyboard layouts -------------------------------------------------------------------------

void TPortableOS::ActivateKeyboardLayout(HKL layout) {
    FLayout = layout;
    FLayoutsActivated.push_back(layout);
}

namespace {

/// The key caps of the keys whose place carries another sign in each layout.
struct TOemKey {
    TVirtualKey Key;
    std::string_view English, German, Russian;
};

constexpr TOemKey OemKeys[] = {
    {0xBA, ";", "Ü", "Ж"},   {0xBB, "=", "+", "="}, {0xBC, ",", ",", "Б"}, {0xBD, "-", "-", "-"},
    {0xBE, ".", ".", "Ю"},   {0xBF, "/", "#", "."}, {0xC0, "`", "Ö", "Ё"}, {0xDB, "[", "ß", "Х"},
    {0xDC, "\\", "^", "\\"}, {0xDD, "]", "´", "Ъ"}, {0xDE, "'", "Ä", "Э"},
};

} // namespace

std::string TPortableOS::KeyName(TVirtualKey key) {
    constexpr HKL german = 0x407, russian = 0x419;
    for (const TOemKey& oem : OemKeys) {
        if (oem.Key != key) continue;
        switch (FLayout & 0xFFFF) {
        case german:
            return std::string(oem.German);
        case russian:
            return std::string(oem.Russian);
        default:
            return std::string(oem.English);
        }
    }
    return {};
}

// --- The clipboard ----------------------------------------------------------------------------

void TPortableOS::SetClipboardText(std::optional<std::string_view> text) {
    SetClipboardData(text ? TextFormat : std::string_view(), text.value_or(std::string_view()));
}

std::optional<std::string> TPortableOS::ClipboardData(std::string_view format) {
    if (FClipboardFormat.empty() || format != FClipboardFormat) return std::nullopt;
    return FClipboard;
}

void TPortableOS::SetClipboardData(std::string_view format, std::string_view bytes) {
    FClipboard = bytes; // before the format, which alone says that it is there
    FClipboardFormat = format;
}

// --- The rest ---------------------------------------------------------------------------------

std::string TPortableOS::GetModuleFileName() {
    if (!FModuleFileName.empty()) return FModuleFileName;
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

// --- Dialogs ----------------------------------------------------------------------------------

namespace {

/// The oldest entry of a queue, which loses it; none when it is empty.
template <class T> std::optional<T> Take(std::deque<T>& queue) {
    if (queue.empty()) return std::nullopt;
    std::optional<T> first = std::move(queue.front());
    queue.pop_front();
    return first;
}

} // namespace

TDialogAnswer TPortableOS::MessageBox(HWND, std::string_view text, std::string_view caption,
                                      std::uint32_t flags) {
    std::optional<TDialogAnswer> answer = Take(FAnswers);
    const bool onConsole = !answer && FConsole;
    if (onConsole) answer = FConsole->MessageBox(text, caption, flags);
    if (!answer) answer = ButtonsOf(flags).back().Answer;
    FDialogs.push_back({std::string(caption), std::string(text), flags, *answer, onConsole});
    return *answer;
}

template <class F>
std::optional<std::string> TPortableOS::AnswerText(std::deque<std::string>& queue,
                                                   std::string_view caption, F&& ask) {
    std::optional<std::string> answer = Take(queue);
    const bool onConsole = !answer && FConsole;
    if (onConsole) answer = ask(*FConsole);
    FDialogs.push_back(
        {std::string(caption), answer.value_or(""), 0, answer ? IDOK : IDCANCEL, onConsole});
    return answer;
}

std::optional<std::string> TPortableOS::SelectDirectory(std::string_view title,
                                                        std::string_view folder) {
    return AnswerText(FFolders, title, [&](TUserDialogs& console) {
        return console.SelectDirectory(title, folder);
    });
}

namespace {

/// The name, with the extension when it has none.
std::string WithExtension(std::string name, std::string_view extension) {
    if (extension.empty() || !ExtractFileExt(name).empty()) return name;
    if (!extension.starts_with('.')) name += '.';
    return name.append(extension);
}

} // namespace

std::vector<std::string> TPortableOS::ChooseFiles(const TFileQuestion& question) {
    std::vector<std::string> more; // than the first one
    const auto ask = [&](TUserDialogs& console) -> std::optional<std::string> {
        more = console.ChooseFiles(question);
        if (more.empty()) return std::nullopt;
        std::string first = std::move(more.front());
        more.erase(more.begin());
        return first;
    };
    while (auto chosen = AnswerText(FFiles, question.Title, ask)) {
        std::string file = WithExtension(std::move(*chosen), question.DefaultExt);
        std::error_code error;
        if (question.Save && question.OverwritePrompt && std::filesystem::exists(file, error) &&
            MessageBox(0, file + " exists already. Replace it?", question.Title,
                       MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) != IDYES)
            continue;
        more.insert(more.begin(), std::move(file));
        return more;
    }
    return {};
}

std::optional<std::string> TPortableOS::InputText(std::string_view caption, std::string_view prompt,
                                                  std::string_view value) {
    return AnswerText(FInputs, caption, [&](TUserDialogs& console) {
        return console.InputText(caption, prompt, value);
    });
}

} // namespace tarn
