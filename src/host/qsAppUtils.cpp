#include "qsAppUtils.h"

#include "vcl/Forms.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace tarn {

// --- The application --------------------------------------------------------------------------

std::string GetAppDir() {
    return std::string(ExtractFilePath(Application()->ExeName));
}

std::string GetAppIniFileName() {
    return ChangeFileExt(GetAppDir(), ".ini");
}

bool ServiceKeyPressed(TVirtualKey key) {
    return OS().KeyDown(key);
}

// --- Files ------------------------------------------------------------------------------------

std::uint64_t GetFileSizeEx(std::string_view fileName) {
    return TFile(fileName, fmOpenRead).Size();
}

std::uint64_t GetFileSizeEx(THandle handle) {
    return HandleSize(handle);
}

std::string ReadFileEx(std::string_view fileName) {
    return TFile(fileName, fmOpenRead).ReadAll();
}

void WriteFileEx(std::string_view fileName, std::string_view data) {
    TFile file(fileName, fmCreate);
    file.Write(data);
    file.Close();
}

std::string_view ExtractFileNameEx(std::string_view fileName) {
    const std::string_view name = ExtractFileName(fileName);
    return name.substr(0, name.size() - ExtractFileExt(name).size());
}

std::string ChangeFileName(std::string_view fileName, std::string_view name) {
    std::string result(ExtractFilePath(fileName));
    return result.append(name).append(ExtractFileExt(fileName));
}

std::string TravelUpDir(std::string_view directory, int levels) {
    std::string_view path = directory;
    const auto isRoot = [](std::string_view p) {
        return ExtractFileName(p).empty() && (p.size() == 1 || (p.size() == 3 && p[1] == ':'));
    };
    for (; levels > 0 && !path.empty() && !isRoot(path); --levels) {
        if (ExtractFileName(path).empty()) path.remove_suffix(1);
        path = ExtractFilePath(path);
    }
    std::string result(path);
    if (!ExtractFileName(result).empty()) result += '/';
    return result;
}

namespace {

/// A name among the temporary ones for the system to complete.
std::string TempName(std::string_view directory) {
    std::string name(directory);
    if (name.empty()) {
        std::error_code error;
        name = (std::filesystem::temp_directory_path(error) / "").string();
        errno = error.value();
        if (error) RaiseLastInOutError("find the directory of temporary files");
    }
    return name + "tarn-XXXXXX";
}

} // namespace

std::string CreateTempPath() {
    std::string name = TempName({});
    if (!::mkdtemp(name.data())) RaiseLastInOutError("make a directory like " + name);
    return name + "/";
}

std::string CreateTempFile(std::string_view directory) {
    std::string name = TempName(directory);
    const THandle handle = ::mkstemp(name.data());
    if (handle < 0) RaiseLastInOutError("make a file like " + name);
    ::close(handle);
    return name;
}

namespace {

/// Takes the right to empty the file, until it is closed; false when another process has it.
bool MayEmpty(const TFile& file) {
    // A file system without locks must not keep the file growing.
    return ::flock(file.Handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

} // namespace

void AddLogData(std::string_view fileName, std::string_view data, std::uint64_t maxSize) {
    TFile file(fileName, fmAppend);
    const auto isFull = [&] {
        return maxSize != 0 && maxSize <= static_cast<std::uint32_t>(file.Size());
    };
    // The second look: another process may have emptied the file since the first one, and what it
    // has written then must stay.
    if (isFull() && MayEmpty(file) && isFull()) file.Clear();
    file.Write(std::string(data).append(LineBreak));
    file.Close();
}

// --- Exceptions -------------------------------------------------------------------------------

namespace {

/// At most that many bytes, without the rest of a character that is cut through.
void CutToCharacters(std::string& text, std::size_t size) {
    if (text.size() <= size) return;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    while (size > 0 && continues(text[size])) --size;
    text.resize(size);
}

std::string WithFullLineBreak(std::string text) {
    const std::size_t feed = text.find('\n');
    if (feed != std::string::npos) text.replace(feed, 1, LineBreak);
    return text;
}

} // namespace

std::string GetExceptionStr(const std::exception& error) {
    constexpr std::size_t limit = 1024;
    const std::string message = error.what();
    std::string text = Format("Exception %s in module %s.\n%s%s",
                              {ExceptionClassName(error), ExtractFileName(OS().GetModuleFileName()),
                               message, message.empty() || message.back() == '.' ? "" : "."});
    CutToCharacters(text, limit);
    return text;
}

std::string GetExceptionStr() {
    if (!std::current_exception()) return {};
    try {
        throw;
    } catch (const std::exception& error) {
        return GetExceptionStr(error);
    } catch (...) {
        return GetExceptionStr(Exception("unknown error"));
    }
}

std::string GetFullExceptionStr(const std::exception& error) {
    return WithFullLineBreak(GetExceptionStr(error));
}

std::string GetFullExceptionStr() {
    return WithFullLineBreak(GetExceptionStr());
}

// --- Windows ----------------------------------------------------------------------------------

namespace {

/// The numbers of a placement as the text has them, in its order.
constexpr int TWindowPlacement::*PlacementFields[] = {
    &TWindowPlacement::Flags, &TWindowPlacement::ShowCmd, &TWindowPlacement::MinX,
    &TWindowPlacement::MinY,  &TWindowPlacement::MaxX,    &TWindowPlacement::MaxY,
    &TWindowPlacement::Left,  &TWindowPlacement::Top,     &TWindowPlacement::Right,
    &TWindowPlacement::Bottom};

/// A distance, when it is one that a window can have.
int Distance(int from, int to) {
    const std::int64_t distance = std::int64_t{to} - from;
    return static_cast<int>(std::clamp<std::int64_t>(distance, 0, std::numeric_limits<int>::max()));
}

TWindowState StateOf(int showCmd) {
    switch (showCmd) {
    case SW_SHOWMINIMIZED:
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
        return wsMinimized;
    case SW_SHOWMAXIMIZED:
        return wsMaximized;
    default:
        return wsNormal;
    }
}

} // namespace

std::string WinPlacementToString(const TWindowPlacement& placement) {
    std::string text;
    for (const auto field : PlacementFields)
        text.append(text.empty() ? "" : ",").append(IntToStr(placement.*field));
    return text;
}

TWindowPlacement StringToWinPlacement(std::string_view text) {
    const auto refuse = [text] {
        throw EConvertError(Format("'%s' is no window placement", {text}));
    };
    if (std::count(text.begin(), text.end(), ',') + 1 != std::ssize(PlacementFields)) refuse();
    TWindowPlacement placement;
    std::string_view rest = text;
    for (const auto field : PlacementFields) {
        const std::string_view number = rest.substr(0, rest.find(','));
        try {
            placement.*field = StrToInt(number);
        } catch (const EConvertError&) {
            refuse();
        }
        rest.remove_prefix(std::min(number.size() + 1, rest.size()));
    }
    return placement;
}

std::string GetWinPlacement(const TForm& form) {
    constexpr int showCmds[] = {SW_SHOWNORMAL, SW_SHOWMINIMIZED, SW_SHOWMAXIMIZED};
    const TRect& bounds = form.BoundsRect();
    TWindowPlacement placement;
    placement.ShowCmd = showCmds[form.WindowState()];
    placement.Left = bounds.Left;
    placement.Top = bounds.Top;
    placement.Right = bounds.Left + bounds.Width;
    placement.Bottom = bounds.Top + bounds.Height;
    return WinPlacementToString(placement);
}

void SetWinPlacement(TForm& form, std::string_view text) {
    const TWindowPlacement placement = StringToWinPlacement(text);
    form.SetBoundsRect({placement.Left, placement.Top, Distance(placement.Left, placement.Right),
                        Distance(placement.Top, placement.Bottom)});
    form.SetWindowState(StateOf(placement.ShowCmd));
}

namespace {

/// The procedure of a window that lets no error out.
class TSafeProcedure {
public:
    explicit TSafeProcedure(TWndMethod procedure) : FProcedure(procedure) {}

    void Handle(TMessage& message) const {
        // The window, and this object with it, may go while the message is handled.
        const TWndMethod procedure = FProcedure;
        try {
            procedure(message);
        } catch (...) {
            if (!Application()) throw;
            Application()->HandleException(Application());
        }
    }

private:
    TWndMethod FProcedure;
};

std::map<HWND, std::unique_ptr<TSafeProcedure>>& SafeProcedures() {
    static std::map<HWND, std::unique_ptr<TSafeProcedure>> procedures;
    return procedures;
}

} // namespace

HWND AllocHWnd(TWndMethod procedure) {
    return OS().AllocateHWnd(procedure);
}

HWND SafeAllocHWnd(TWndMethod procedure) {
    auto safe = std::make_unique<TSafeProcedure>(procedure);
    const HWND window = OS().AllocateHWnd(TWndMethod::Of<&TSafeProcedure::Handle>(safe.get()));
    SafeProcedures()[window] = std::move(safe);
    return window;
}

void DeallocHWnd(HWND& window) {
    if (window == 0) return;
    OS().DeallocateHWnd(window);
    SafeProcedures().erase(window);
    window = 0;
}

} // namespace tarn
