#pragma once

#include "rtl/FileSystem.h"
#include "rtl/SysUtils.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

/// The mark of UTF-8 that a text file may begin with.
inline constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";

enum TFileErrorKind : std::uint8_t {
    feMissing,          // there is no such file, or no such folder to put it in
    feFolder,           // the name is that of a folder
    feDenied,           // the permissions do not allow it
    feNotAFile,         // a device, a pipe, a socket
    feTooLarge,         // more bytes than allowed or than memory holds
    feChangedWhileRead, // the file was written to while it was read
    feChangedOnDisk,    // the file is no longer the one that was read
    feIO                // anything else that the system reports
};

/// A file could not be read or written. The message names the file and the reason:
/// "cannot read FILE: permission denied".
class EFileError : public EInOutError {
public:
    EFileError(TFileErrorKind kind, std::string_view path, const std::string& message)
        : EInOutError(message), FKind(kind), FPath(path) {}

    TFileErrorKind Kind() const { return FKind; }
    const std::string& Path() const { return FPath; }

private:
    TFileErrorKind FKind;
    std::string FPath;
};

/// Reads a whole file of at most `limit` bytes into the room that `reserve` gives for that many
/// bytes; the bytes that were read are the size of the identity.
/// Raises EFileError, of every kind but feChangedOnDisk.
TFileIdentity LoadFileInto(std::string_view path, std::size_t limit,
                           const std::function<char*(std::size_t)>& reserve);

/// The bytes of a file. Raises EFileError like LoadFileInto.
std::string LoadFileText(std::string_view path);

/// The identity of the file of this name, of its target for a symbolic link; none if there is no
/// such file, or nothing can be found out about it.
std::optional<TFileIdentity> IdentityOf(std::string_view path);

/// Writes the chunks, one after the other, as the whole contents of a file, and gives its new
/// identity. At every moment the name stands for the old file or for the new one, never for a part
/// or for nothing: the bytes go to a new file beside it, which takes its place when they are
/// safely on disk. Symbolic links stay and lead to the new file, permissions stay, owner and group
/// as far as the process may give files away. Other hard links keep the old contents.
///
/// `expected` is the identity under which the file was read. If the file is another by now,
/// EFileError "FILE changed on disk since it was read" of kind feChangedOnDisk. With none
/// whatever stands there is replaced.
/// Raises EFileError; then nothing has been touched. What a power cut can leave behind is a hidden
/// ".tarn-PID-NUMBER.tmp" beside the file. It is in nobody's way and stays: whether its process is
/// still at work cannot be told for one of another machine or container.
TFileIdentity SaveFile(std::string_view path, std::span<const std::string_view> chunks,
                       const std::optional<TFileIdentity>& expected = {});

/// Writes one text as the whole contents of a file, like SaveFile.
inline void SaveFileText(std::string_view path, std::string_view text) {
    SaveFile(path, std::span(&text, 1));
}

/// Deletes a file for good: where its folder can be flushed, no power cut brings it back. False
/// when there was none. Of a symbolic link the file that it leads to is deleted; the link stays,
/// leads to nothing and lets the next save make the file in its old place. A file that one may not
/// write to is not deleted either. Raises EFileError; then the file is still there.
bool RemoveFile(std::string_view path);

/// Keeps the present contents of a file under a dated name beside it and returns that name: for
/// ".../ExpData.spc" it is ".../ExpData-2026-11-21-183045.spc", the local time, with "-2", "-3" ...
/// behind the time when it is taken. The file itself stays where it is. When this returns, contents
/// and name are safely on disk, whatever SaveFile or RemoveFile then do to the file; only contents
/// that this process may not read it cannot flush.
///
/// Beside a symbolic link, not beside what it leads to: where the user looks for the file. The
/// dated name is a hard link where one can be made, so that a full disk or a file that cannot be
/// read is no hindrance; a program that writes into the file in place changes both then. Else it
/// is a copy, with the permissions of the file or fewer; a power cut can leave it empty while the
/// file still has its contents.
/// Raises EFileError, of kind feMissing when there is no file; then there is no new name.
std::string KeepBeside(std::string_view path);

} // namespace tarn
