#pragma once

#include "rtl/FileIO.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace tarn {

/// Which file, in which state: differs as soon as another file has the name or the file has been
/// written to.
struct TFileIdentity {
    std::uint64_t Device = 0;
    std::uint64_t Inode = 0;
    std::uint64_t Size = 0;        // bytes
    std::int64_t ModifiedAtNs = 0; // nanoseconds since 1970

    bool operator==(const TFileIdentity&) const = default;
};

struct TFileStatus {
    TFileIdentity Identity;
    mode_t Mode = 0; ///< kind of file and permissions, see S_ISREG
    uid_t Owner = 0;
    gid_t Group = 0;
};

/// What safe reading and writing of whole files asks of the system, and nothing else: one operation
/// is one step that can fail or be the last before the power goes. Each returns 0, or the system's
/// number of the error (ENOENT ...), and then leaves its output arguments as they are. None is
/// interrupted by a signal, none throws.
class IFileSystem {
public:
    virtual ~IFileSystem() = default;

    /// Opens what stands at a path; opening a pipe waits for nobody.
    virtual int OpenToRead(const std::string& path, THandle& file) = 0;
    /// Makes a file and opens it for writing; EEXIST when the name is taken, by a link too.
    /// \param mode the permissions, less the process's mask
    virtual int Create(const std::string& path, mode_t mode, THandle& file) = 0;
    /// \param count in: bytes that `to` has room for; out: bytes read, 0 at the end of the file
    virtual int Read(THandle file, char* to, std::size_t& count) = 0;
    /// \param count in: bytes at `from`; out: bytes written, at least one
    virtual int Write(THandle file, const char* from, std::size_t& count) = 0;
    /// Returns when the contents and the permissions are safely on disk; the name is not by that.
    virtual int Flush(THandle file) = 0;
    /// The handle is gone in any case. Some systems report a failed write only here.
    virtual int Close(THandle file) = 0;

    /// Follows symbolic links.
    virtual int StatusAt(const std::string& path, TFileStatus& status) = 0;
    virtual int StatusOf(THandle file, TFileStatus& status) = 0;
    /// Whether the process may write to a file.
    virtual int CheckWritable(const std::string& path) = 0;
    /// Where a symbolic link leads, as it is written there; EINVAL for anything else.
    virtual int ReadLink(const std::string& path, std::string& target) = 0;

    /// \param owner KeepOwner leaves it
    virtual int SetOwner(THandle file, uid_t owner, gid_t group) = 0;
    virtual int SetPermissions(THandle file, mode_t mode) = 0;

    /// Gives a file a name, which stands for nothing else from then on.
    virtual int Rename(const std::string& from, const std::string& to) = 0;
    /// Gives a file a further name; EEXIST when that is taken.
    virtual int Link(const std::string& path, const std::string& newPath) = 0;
    virtual int Remove(const std::string& path) = 0;
    /// Returns when all names of a folder are safely on disk, and also where nothing can be done
    /// for that: for a folder that one may not read, and where folders know no flush.
    virtual int FlushFolder(const std::string& path) = 0;

    static constexpr auto KeepOwner = static_cast<uid_t>(-1);
};

/// The file system in use: the system's own unless it is replaced.
IFileSystem& FileSystem();

/// Puts another file system into the place of the one in use as long as the object lives. For a
/// process whose other threads touch no files meanwhile.
class TScopedFileSystem {
public:
    explicit TScopedFileSystem(IFileSystem& files);
    TScopedFileSystem(const TScopedFileSystem&) = delete;
    TScopedFileSystem& operator=(const TScopedFileSystem&) = delete;
    ~TScopedFileSystem();

private:
    IFileSystem* FBefore;
};

} // namespace tarn
