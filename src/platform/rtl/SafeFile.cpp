#include "rtl/SafeFile.h"

#include "rtl/DateUtils.h"
#include "rtl/EAbort.h"
#include "rtl/ReadProgress.h"

#include <algorithm>
#include <cerrno>
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

    void Require(int error) const {
        if (error) FailWith(error);
    }

    void RequireFile(mode_t mode) const {
        if (S_ISDIR(mode)) FailWith(EISDIR);
        if (!S_ISREG(mode)) Fail(feNotAFile, "not a regular file");
    }
};

/// An open file, closed at the end of its scope.
class TOpenFile {
public:
    TOpenFile() = default;
    TOpenFile(const TOpenFile&) = delete;
    TOpenFile& operator=(const TOpenFile&) = delete;
    ~TOpenFile() { Close(); }

    int OpenToRead(const std::string& path) { return FileSystem().OpenToRead(path, FHandle); }
    int Create(const std::string& path, mode_t mode) {
        return FileSystem().Create(path, mode, FHandle);
    }
    THandle Handle() const { return FHandle; }
    int Close() {
        return FHandle == NoHandle ? 0 : FileSystem().Close(std::exchange(FHandle, NoHandle));
    }

private:
    THandle FHandle = NoHandle;
};

TFileStatus StatusOf(const TOpenFile& file, const TTask& task) {
    TFileStatus status;
    task.Require(FileSystem().StatusOf(file.Handle(), status));
    return status;
}

/// Reads up to `count` bytes, fewer only at the end of the file; in slices while somebody follows.
std::size_t ReadUpTo(const TOpenFile& file, char* to, std::size_t count, const TTask& task) {
    constexpr std::size_t slice = 1 << 20;
    const TScopedReadProgress::TStep* const step = TScopedReadProgress::Current();
    std::size_t done = 0;
    while (done < count) {
        std::size_t got = step ? std::min(count - done, slice) : count - done;
        task.Require(FileSystem().Read(file.Handle(), to + done, got));
        if (got == 0) break;
        done += got;
        if (step && !(*step)(done, count)) throw EAbort("reading " + task.Path + " was given up");
    }
    return done;
}

/// Reads a whole file, see LoadFileInto.
TFileStatus ReadFile(const TTask& task, std::size_t limit,
                     const std::function<char*(std::size_t)>& reserve) {
    TOpenFile file;
    task.Require(file.OpenToRead(task.Path));
    const TFileStatus status = StatusOf(file, task);
    task.RequireFile(status.Mode);
    const std::uint64_t size = status.Identity.Size;
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
    if (got != size || StatusOf(file, task).Identity != status.Identity)
        task.Fail(feChangedWhileRead, "changed while being read");
    return status;
}

TFileStatus ReadText(const TTask& task, std::string& text) {
    const auto reserve = [&text](std::size_t size) {
        text.resize(size);
        return text.data();
    };
    const TFileStatus status =
        ReadFile(task, std::numeric_limits<std::ptrdiff_t>::max() - 1, reserve);
    text.resize(status.Identity.Size);
    return status;
}

void WriteAll(const TOpenFile& file, std::string_view bytes, const TTask& task) {
    while (!bytes.empty()) {
        std::size_t put = bytes.size();
        task.Require(FileSystem().Write(file.Handle(), bytes.data(), put));
        bytes.remove_prefix(put);
    }
}

/// Whether the error says that there is no file of the name.
bool IsMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

/// Follows symbolic links, those to nothing too, to the file that is meant.
std::string TargetOf(const TTask& task) {
    constexpr int maxLinks = 40; // the system's own bound
    fs::path target = task.Path;
    for (int links = 0;; ++links) {
        std::string next;
        const int error = FileSystem().ReadLink(target.string(), next);
        if (error == EINVAL || IsMissing(error)) return target.string();
        task.Require(error);
        if (links == maxLinks) task.FailWith(ELOOP);
        target = target.parent_path() / next;
    }
}

/// What stands at a path; none if nothing does.
std::optional<TFileStatus> StatusAt(const std::string& path, const TTask& task) {
    TFileStatus status;
    const int error = FileSystem().StatusAt(path, status);
    if (IsMissing(error)) return std::nullopt;
    task.Require(error);
    return status;
}

/// A new name in a folder, removed at the end of its scope unless it is to stay.
class TNewName {
public:
    TNewName() = default;
    TNewName(const TNewName&) = delete;
    TNewName& operator=(const TNewName&) = delete;
    ~TNewName() {
        if (!FPath.empty()) FileSystem().Remove(FPath);
    }

    /// Takes the first name that is free: `nameOf` gives the names, counted from 0, and `take`
    /// makes a file of one, with EEXIST when it is taken. Returns the last error of that.
    template <class TNameOf, class TTake> int TakeFree(const TNameOf& nameOf, const TTake& take) {
        for (int number = 0;; ++number) {
            std::string path = nameOf(number);
            const int error = take(path);
            if (error == EEXIST) continue;
            if (error == 0) FPath = std::move(path);
            return error;
        }
    }
    const std::string& Path() const { return FPath; }
    /// It stays, or is no longer there.
    std::string Release() { return std::exchange(FPath, {}); }

private:
    std::string FPath;
};

/// A new file in a folder, removed at the end of its scope unless it got its place.
class TNewFile {
public:
    TNewFile(const fs::path& folder, mode_t mode, const TTask& task) {
        const auto nameOf = [&folder](int number) {
            const std::string unique = std::to_string(::getpid()) + "-" + std::to_string(number);
            return (folder / (".tarn-" + unique + ".tmp")).string();
        };
        task.Require(FName.TakeFree(
            nameOf, [&](const std::string& path) { return FFile.Create(path, mode); }));
    }

    const TOpenFile& File() const { return FFile; }

    /// Some file systems report a failed write only when the file is closed.
    void Flush(const TTask& task) {
        task.Require(FileSystem().Flush(FFile.Handle()));
        task.Require(FFile.Close());
    }
    void MoveTo(const std::string& target, const TTask& task) {
        task.Require(FileSystem().Rename(FName.Path(), target));
        FName.Release();
    }

private:
    TNewName FName;
    TOpenFile FFile;
};

/// An old file may be replaced or deleted where it could have been written to: the system
/// asks for the rights of the folder only.
void RequireWritable(const std::string& target, const TFileStatus& old, const TTask& task) {
    task.RequireFile(old.Mode);
    task.Require(FileSystem().CheckWritable(target));
}

void RequireUnchanged(const std::string& target, const std::optional<TFileIdentity>& expected,
                      const TTask& task) {
    if (!expected) return;
    const auto status = StatusAt(target, task);
    if (!status || status->Identity != *expected)
        throw EFileError(feChangedOnDisk, task.Path,
                         task.Path + " changed on disk since it was read");
}

/// Gives a new file the owner, group and permissions of the old one. Where owner or group cannot
/// be had, nobody gets a right that he did not have.
void KeepPermissions(const TOpenFile& file, const TFileStatus& old, const TTask& task) {
    mode_t mode = old.Mode & 07777;
    if (FileSystem().SetOwner(file.Handle(), old.Owner, old.Group) != 0) {
        mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
        if (FileSystem().SetOwner(file.Handle(), IFileSystem::KeepOwner, old.Group) != 0)
            mode = (mode & static_cast<mode_t>(~S_IRWXG)) | ((mode & S_IRWXO) << 3);
    }
    task.Require(FileSystem().SetPermissions(file.Handle(), mode));
}

/// Makes new and removed names in the folder of a file last through a power cut.
int FlushFolderOf(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return FileSystem().FlushFolder(folder.empty() ? "." : folder.string());
}

/// What is in a file need not be on disk yet. One that may not be read cannot be flushed either.
void FlushContents(const std::string& path, const TTask& task) {
    TOpenFile file;
    const int error = file.OpenToRead(path);
    if (error == EACCES || error == EPERM) return;
    task.Require(error);
    task.Require(FileSystem().Flush(file.Handle()));
}

/// Copies the file of the task to the first free name of those that `nameOf` gives.
template <class TNameOf>
void CopyToFreeName(TNewName& name, const TNameOf& nameOf, const TTask& task) {
    std::string text;
    const TFileStatus status = ReadText(task, text);
    TNewFile copy(fs::path(task.Path).parent_path(), 0600, task);
    WriteAll(copy.File(), text, task);
    KeepPermissions(copy.File(), status, task);
    copy.Flush(task);
    // Moving a file takes a name whether it is free or not, so that it is reserved before.
    task.Require(name.TakeFree(nameOf, [](const std::string& path) {
        TOpenFile reserved;
        return reserved.Create(path, 0600);
    }));
    copy.MoveTo(name.Path(), task);
}

} // namespace

TFileIdentity LoadFileInto(std::string_view path, std::size_t limit,
                           const std::function<char*(std::size_t)>& reserve) {
    return ReadFile(TTask("read", path), limit, reserve).Identity;
}

std::string LoadFileText(std::string_view path) {
    std::string text;
    ReadText(TTask("read", path), text);
    return text;
}

std::optional<TFileIdentity> IdentityOf(std::string_view path) {
    TFileStatus status;
    if (FileSystem().StatusAt(std::string(path), status) != 0) return std::nullopt;
    return status.Identity;
}

TFileIdentity SaveFile(std::string_view path, std::span<const std::string_view> chunks,
                       const std::optional<TFileIdentity>& expected) {
    const TTask task("write", path);
    const std::string target = TargetOf(task);
    const auto old = StatusAt(target, task);
    if (old) RequireWritable(target, *old, task);
    RequireUnchanged(target, expected, task); // before a long write in vain

    TNewFile newFile(fs::path(target).parent_path(), old ? 0600 : 0666, task);
    for (const std::string_view chunk : chunks) WriteAll(newFile.File(), chunk, task);
    if (old) KeepPermissions(newFile.File(), *old, task);
    const TFileIdentity identity = StatusOf(newFile.File(), task).Identity;
    newFile.Flush(task);
    RequireUnchanged(target, expected, task);
    newFile.MoveTo(target, task);
    FlushFolderOf(target); // the new file has its name by now: a failure is no error any more
    return identity;
}

bool RemoveFile(std::string_view path) {
    const TTask task("delete", path);
    const std::string target = TargetOf(task);
    const auto old = StatusAt(target, task);
    if (!old) return false;
    task.RequireFile(old->Mode);
    int error = FileSystem().CheckWritable(target); // see RequireWritable
    if (!error) error = FileSystem().Remove(target);
    if (IsMissing(error)) return false; // somebody was faster
    task.Require(error);
    FlushFolderOf(target); // the file is gone by now: a failure is no error any more
    return true;
}

std::string KeepBeside(std::string_view path) {
    const TTask task("keep a copy of", path);
    const std::string target = TargetOf(task);
    const auto old = StatusAt(target, task);
    if (!old) task.FailWith(ENOENT);
    task.RequireFile(old->Mode);
    FlushContents(target, task);

    const fs::path file = task.Path;
    const std::string date = FormatDateTime("yyyy-mm-dd-hhnnss", Now());
    const auto nameOf = [&](int number) {
        const std::string count = number ? "-" + std::to_string(number + 1) : "";
        const std::string name = file.stem().string() + "-" + date + count;
        return (file.parent_path() / (name + file.extension().string())).string();
    };
    TNewName name;
    if (name.TakeFree(nameOf, [&](const std::string& newPath) {
            return FileSystem().Link(target, newPath);
        }) != 0)
        CopyToFreeName(name, nameOf, task); // fails, too, where not only links are impossible
    task.Require(FlushFolderOf(name.Path()));
    return name.Release();
}

} // namespace tarn
