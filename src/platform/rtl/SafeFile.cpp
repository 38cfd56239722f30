#include "rtl/SafeFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tarn {

namespace fs = std::filesystem;

namespace {

/// What is being done to which file, for the messages of all that can go wrong on the way.
struct TTask {
    std::string Verb;
    std::string Path;

    TTask(std::string_view verb, std::string_view path) : Verb(verb), Path(path) {
        // The system would read the name only up to a NUL, and take another file.
        if (path.find('\0') == std::string_view::npos) return;
        std::replace(Path.begin(), Path.end(), '\0', '?');
        FailWith(ENOENT);
    }

    [[noreturn]] void Fail(TFileErrorKind kind, const std::string& reason) const {
        throw EFileError(kind, Path, "cannot " + Verb + " " + Path + ": " + reason);
    }

    [[noreturn]] void FailWith(int error) const {
        switch (error) {
        case ENOENT:
        case ENOTDIR:
            Fail(feMissing, "no such file or folder");
        case EISDIR:
            Fail(feFolder, "is a folder");
        case EACCES:
        case EPERM:
            Fail(feDenied, "permission denied");
        case EROFS:
            Fail(feDenied, "read-only file system");
        default:
            Fail(feIO, std::generic_category().message(error));
        }
    }

    void RequireFile(mode_t mode) const {
        if (S_ISDIR(mode)) FailWith(EISDIR);
        if (!S_ISREG(mode)) Fail(feNotAFile, "not a regular file");
    }
};

/// An open file, closed at the end of its scope.
class TDescriptor {
public:
    TDescriptor() = default;
    TDescriptor(const std::string& path, int flags, mode_t mode = 0)
        : FNumber(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    TDescriptor& operator=(TDescriptor&& other) noexcept {
        std::swap(FNumber, other.FNumber);
        return *this;
    }
    ~TDescriptor() { Close(); }

    bool IsOpen() const { return FNumber >= 0; }
    int Number() const { return FNumber; }
    bool Close() { return !IsOpen() || ::close(std::exchange(FNumber, -1)) == 0; }

private:
    int FNumber = -1;
};

TFileIdentity IdentityFrom(const struct stat& status) {
    return {.Device = status.st_dev,
            .Inode = status.st_ino,
            .Size = static_cast<std::uint64_t>(status.st_size),
            .ModifiedAtNs = static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
                            status.st_mtim.tv_nsec};
}

struct stat StatusOf(const TDescriptor& file, const TTask& task) {
    struct stat status {};
    if (::fstat(file.Number(), &status) != 0) task.FailWith(errno);
    return status;
}

/// Calls transfer(), a read or a write, until no signal gets in its way.
template <typename TTransfer> std::size_t Transfer(const TTask& task, TTransfer transfer) {
    ssize_t count = 0;
    do count = transfer();
    while (count < 0 && errno == EINTR);
    if (count < 0) task.FailWith(errno);
    return static_cast<std::size_t>(count);
}

/// Reads up to `count` bytes, fewer only at the end of the file.
std::size_t ReadUpTo(const TDescriptor& file, char* to, std::size_t count, const TTask& task) {
    std::size_t done = 0;
    while (done < count) {
        const std::size_t got =
            Transfer(task, [&] { return ::read(file.Number(), to + done, count - done); });
        if (got == 0) break;
        done += got;
    }
    return done;
}

void WriteAll(const TDescriptor& file, std::string_view bytes, const TTask& task) {
    while (!bytes.empty())
        bytes.remove_prefix(
            Transfer(task, [&] { return ::write(file.Number(), bytes.data(), bytes.size()); }));
}

/// Follows symbolic links, those to nothing too, to the file that is meant.
std::string TargetOf(const TTask& task) {
    constexpr int maxLinks = 40; // the system's own bound
    fs::path target = task.Path;
    std::error_code error;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        if (links == maxLinks) task.FailWith(ELOOP);
        target = target.parent_path() / fs::read_symlink(target, error);
        if (error) task.FailWith(error.value());
    }
    return target.string();
}

/// What stands at a path; none if nothing does.
std::optional<struct stat> StatusAt(const std::string& path, const TTask& task) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) return status;
    if (errno != ENOENT) task.FailWith(errno);
    return std::nullopt;
}

/// A new file in a folder, removed at the end of its scope unless it got its place.
class TNewFile {
public:
    TNewFile(const fs::path& folder, mode_t mode, const TTask& task) {
        int number = 0;
        do {
            const std::string unique = std::to_string(::getpid()) + "-" + std::to_string(number++);
            FPath = (folder / (".tarn-" + unique + ".tmp")).string();
            FFile = TDescriptor(FPath, O_WRONLY | O_CREAT | O_EXCL, mode);
        } while (!FFile.IsOpen() && errno == EEXIST);
        if (!FFile.IsOpen()) task.FailWith(errno);
    }
    TNewFile(const TNewFile&) = delete;
    TNewFile& operator=(const TNewFile&) = delete;
    ~TNewFile() {
        if (!FPath.empty()) ::unlink(FPath.c_str());
    }

    const TDescriptor& File() const { return FFile; }

    /// Some file systems report a failed write only when the file is closed.
    void Flush(const TTask& task) {
        if (::fsync(FFile.Number()) != 0 || !FFile.Close()) task.FailWith(errno);
    }
    void MoveTo(const std::string& target, const TTask& task) {
        if (::rename(FPath.c_str(), target.c_str()) != 0) task.FailWith(errno);
        FPath.clear();
    }

private:
    std::string FPath;
    TDescriptor FFile;
};

/// An old file may be replaced where it could have been written to: renaming asks for the rights
/// of the folder only.
void RequireWritable(const std::string& target, const struct stat& old, const TTask& task) {
    task.RequireFile(old.st_mode);
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) task.FailWith(errno);
}

void RequireUnchanged(const std::string& target, const std::optional<TFileIdentity>& expected,
                      const TTask& task) {
    if (!expected) return;
    const auto status = StatusAt(target, task);
    if (!status || IdentityFrom(*status) != *expected)
        throw EFileError(feChangedOnDisk, task.Path,
                         task.Path + " changed on disk since it was read");
}

/// Gives a new file the owner, group and permissions of the old one. Where owner or group cannot
/// be had, nobody gets a right that he did not have.
void KeepPermissions(const TDescriptor& file, const struct stat& old, const TTask& task) {
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    mode_t mode = old.st_mode & 07777;
    if (::fchown(file.Number(), old.st_uid, old.st_gid) != 0) {
        mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
        if (::fchown(file.Number(), sameOwner, old.st_gid) != 0)
            mode = (mode & static_cast<mode_t>(~S_IRWXG)) | ((mode & S_IRWXO) << 3);
    }
    if (::fchmod(file.Number(), mode) != 0) task.FailWith(errno);
}

/// Makes a rename in the folder last through a power cut. The new file has its name by now, so a
/// folder that cannot be flushed (not readable, or on a network) is no error any more.
void FlushFolder(const fs::path& folder) {
    const TDescriptor file(folder.empty() ? "." : folder.string(), O_RDONLY | O_DIRECTORY);
    if (file.IsOpen()) ::fsync(file.Number());
}

} // namespace

TFileIdentity LoadFileInto(std::string_view path, std::size_t limit,
                           const std::function<char*(std::size_t)>& reserve) {
    const TTask task("read", path);
    // Opening a pipe would wait for its writer.
    const TDescriptor file(task.Path, O_RDONLY | O_NONBLOCK);
    if (!file.IsOpen()) task.FailWith(errno);
    const struct stat status = StatusOf(file, task);
    task.RequireFile(status.st_mode);
    const TFileIdentity identity = IdentityFrom(status);
    const std::uint64_t size = identity.Size;
    if (size > limit)
        task.Fail(feTooLarge, std::to_string(size) + " bytes, more than the " +
                                  std::to_string(limit) + " allowed");
    char* room = nullptr;
    try {
        room = reserve(size + 1); // a byte more shows whether the file has grown
    } catch (const std::bad_alloc&) {
        task.Fail(feTooLarge, std::to_string(size) + " bytes do not fit into memory");
    }
    const std::size_t got = ReadUpTo(file, room, size + 1, task);
    if (got != size || IdentityFrom(StatusOf(file, task)) != identity)
        task.Fail(feChangedWhileRead, "changed while being read");
    return identity;
}

std::string LoadFileText(std::string_view path) {
    std::string text;
    const auto reserve = [&text](std::size_t size) {
        text.resize(size);
        return text.data();
    };
    const TFileIdentity identity =
        LoadFileInto(path, std::numeric_limits<std::ptrdiff_t>::max() - 1, reserve);
    text.resize(identity.Size);
    return text;
}

std::optional<TFileIdentity> IdentityOf(std::string_view path) {
    struct stat status {};
    if (::stat(std::string(path).c_str(), &status) != 0) return std::nullopt;
    return IdentityFrom(status);
}

TFileIdentity SaveFile(std::string_view path, std::span<const std::string_view> chunks,
                       const std::optional<TFileIdentity>& expected) {
    const TTask task("write", path);
    const std::string target = TargetOf(task);
    const fs::path folder = fs::path(target).parent_path();
    const auto old = StatusAt(target, task);
    if (old) RequireWritable(target, *old, task);
    RequireUnchanged(target, expected, task); // before a long write in vain

    TNewFile newFile(folder, old ? 0600 : 0666, task);
    for (const std::string_view chunk : chunks) WriteAll(newFile.File(), chunk, task);
    if (old) KeepPermissions(newFile.File(), *old, task);
    const TFileIdentity identity = IdentityFrom(StatusOf(newFile.File(), task));
    newFile.Flush(task);
    RequireUnchanged(target, expected, task);
    newFile.MoveTo(target, task);
    FlushFolder(folder);
    return identity;
}

} // namespace tarn
