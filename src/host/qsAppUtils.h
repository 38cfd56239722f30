#pragma once

// Small services around files, windows and exceptions.

#include "os/OS.h"
#include "rtl/FileIO.h"
#include "rtl/SysUtils.h"
#include "rtl/TObject.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace tarn {

class TForm;

// --- The application --------------------------------------------------------------------------

/// The directory of the host application's file, with its trailing separator.
std::string GetAppDir();
/// A kept quirk: the extension is put on the directory itself, so that the name is the directory
/// followed by ".ini".
std::string GetAppIniFileName();

/// Whether the key is held down.
bool ServiceKeyPressed(TVirtualKey key);

// --- Files ------------------------------------------------------------------------------------
// Each raises EInOutError naming the file and the reason.

/// The size in bytes.
std::uint64_t GetFileSizeEx(std::string_view fileName);
std::uint64_t GetFileSizeEx(THandle handle);
std::string ReadFileEx(std::string_view fileName);
/// Makes the file, or replaces what it holds.
void WriteFileEx(std::string_view fileName, std::string_view data);

/// The file's name without folder and extension.
std::string_view ExtractFileNameEx(std::string_view fileName);
/// The file name with another name between its folder and its extension, which stay.
std::string ChangeFileName(std::string_view fileName, std::string_view name);
/// The directory that many levels above, with its trailing separator. The root, or nothing for a
/// relative name, is as far as it goes.
/// \param directory with or without its trailing separator
std::string TravelUpDir(std::string_view directory, int levels = 1);

/// Makes a new directory for temporary files; its name with the trailing separator. Whoever asks
/// for it removes it.
std::string CreateTempPath();
/// Makes a new empty file among the temporary ones, or in a directory given with its trailing
/// separator; its name. Whoever asks for it removes it.
std::string CreateTempFile(std::string_view directory = {});

/// Appends the data and a line end. A file of `maxSize` bytes or more is emptied first; 0 is no
/// limit. The size is tested before writing, so that the file can exceed the limit by what is
/// written last. A kept quirk: only the low 32 bits of the size are looked at. Processes may write
/// to one file at a time: each entry stays whole, and one of them empties the file.
void AddLogData(std::string_view fileName, std::string_view data, std::uint64_t maxSize);

// --- Exceptions -------------------------------------------------------------------------------

/// The platform's message for an exception, at most 1024 bytes in whole UTF-8 characters:
/// "Exception CLASS in module NAME.", a line feed, and the exception's own text with its full stop.
/// An exception keeps no record of the address where it was raised.
std::string GetExceptionStr(const std::exception& error);
/// The same for the exception that is being handled; empty when there is none.
std::string GetExceptionStr();
/// GetExceptionStr with CR LF instead of its first line feed.
std::string GetFullExceptionStr(const std::exception& error);
std::string GetFullExceptionStr();

/// What an EIdentError is made of.
struct TErrorInfo {
    std::string_view Message;
    int Ident = 0;
};
/// A resource string: its text and its number.
struct TResStringRec {
    std::string_view Message;
    int Ident = 0;
};

/// An error with an identifier.
class EIdentError : public Exception {
public:
    EIdentError(std::string_view message, int ident) : Exception(message), FIdent(ident) {}
    EIdentError(std::string_view format, int ident, std::initializer_list<TVarRec> args)
        : EIdentError(Format(format, args), ident) {}
    explicit EIdentError(const TErrorInfo& info) : EIdentError(info.Message, info.Ident) {}
    explicit EIdentError(const TResStringRec& text) : EIdentError(text.Message, text.Ident) {}

    std::string_view ClassName() const override { return "EIdentError"; }
    int Ident() const { return FIdent; }

private:
    int FIdent;
};

/// An exception of class E, to be thrown, from its message.
template <class E> E CreateException(std::string_view message) {
    return E(message);
}
template <class E> E CreateException(std::string_view format, std::initializer_list<TVarRec> args) {
    return E(Format(format, args));
}
/// From a resource string, which is a format text when there are arguments. A class with an
/// identifier gets the string's number.
template <class E> E CreateException(const TResStringRec& text) {
    if constexpr (std::is_constructible_v<E, const TResStringRec&>)
        return E(text);
    else
        return E(text.Message);
}
template <class E>
E CreateException(const TResStringRec& format, std::initializer_list<TVarRec> args) {
    return CreateException<E>(TResStringRec{Format(format.Message, args), format.Ident});
}

/// The interface I of an object, not counted. Raises Exception when the object does not have it.
template <class I> I* ObjGetInterface(TObject& object) {
    if (I* const found = ObjectInterface<I>(object)) return found;
    throw Exception(Format("Object[%s] does not support given interface.", {object.ClassName()}));
}

// --- Windows ----------------------------------------------------------------------------------

/// How a window is placed, in pixels of the screen.
struct TWindowPlacement {
    int Flags = 0;
    int ShowCmd = 0; ///< a SW_... value
    int MinX = -1, MinY = -1;
    int MaxX = -1, MaxY = -1;
    int Left = 0, Top = 0, Right = 0, Bottom = 0; ///< the window when it is restored
    friend bool operator==(const TWindowPlacement&, const TWindowPlacement&) = default;
};
inline constexpr int SW_SHOWNORMAL = 1, SW_SHOWMINIMIZED = 2, SW_SHOWMAXIMIZED = 3, SW_MINIMIZE = 6,
                     SW_SHOWMINNOACTIVE = 7;

/// The ten numbers of the placement in their order, with commas between them.
std::string WinPlacementToString(const TWindowPlacement& placement);
/// Raises EConvertError naming the text when it is not ten numbers.
TWindowPlacement StringToWinPlacement(std::string_view text);

/// Bounds and state of a form as text. A form has no places of its own for its minimized and
/// maximized state: they are -1.
std::string GetWinPlacement(const TForm& form);
/// Gives the form the bounds and the state of the text; whether it is seen stays as it is. Raises
/// EConvertError, and changes nothing, when the text is no placement.
void SetWinPlacement(TForm& form, std::string_view text);

/// A hidden window that gets messages.
HWND AllocHWnd(TWndMethod procedure);
/// A hidden window whose procedure may fail: the application's handler gets the error, and whoever
/// sent the message goes on.
HWND SafeAllocHWnd(TWndMethod procedure);
/// Frees a window of either kind and makes the handle 0; nothing for 0.
void DeallocHWnd(HWND& window);

} // namespace tarn
