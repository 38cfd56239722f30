#pragma once

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

/// Which file, in which state: differs as soon as another file has the name or the file has been
/// written to.
struct TFileIdentity {
    std::uint64_t Device = 0;
    std::uint64_t Inode = 0;
    std::uint64_t Size = 0;        // bytes
    std::int64_t ModifiedAtNs = 0; // nanoseconds since 1970

    bool operator==(const TFileIdentity&) const = default;
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
/// Raises EFileError; then nothing has been touched.
TFileIdentity SaveFile(std::string_view path, std::span<const std::string_view> chunks,
                       const std::optional<TFileIdentity>& expected = {});

/// Writes one text as the whole contents of a file, like SaveFile.
inline void SaveFileText(std::string_view path, std::string_view text) {
    SaveFile(path, std::span(&text, 1));
}

} // namespace tarn
