#include "rtl/FileSystem.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarn {
namespace {

/// The error of a call that has just been made; 0 if it has not failed.
int ErrorOf(int result) {
    return result < 0 ? errno : 0;
}

/// Repeats a system call that a signal has interrupted.
template <class F> int Uninterrupted(F&& call) {
    int result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

TFileStatus StatusFrom(const struct stat& status) {
    return {.Identity = {.Device = status.st_dev,
                         .Inode = status.st_ino,
                         .Size = static_cast<std::uint64_t>(status.st_size),
                         .ModifiedAtNs =
                             static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
                             status.st_mtim.tv_nsec},
            .Mode = status.st_mode,
            .Owner = status.st_uid,
            .Group = status.st_gid};
}

class TPosixFileSystem : public IFileSystem {
public:
    int OpenToRead(const std::string& path, THandle& file) override {
        return Open(path, O_RDONLY | O_NONBLOCK, 0, file);
    }
    int Create(const std::string& path, mode_t mode, THandle& file) override {
        return Open(path, O_WRONLY | O_CREAT | O_EXCL, mode, file);
    }
    int Read(THandle file, char* to, std::size_t& count) override {
        return Transferred(FileRead(file, to, AtMost(count)), count);
    }
    int Write(THandle file, const char* from, std::size_t& count) override {
        return Transferred(FileWrite(file, from, AtMost(count)), count);
    }
    int Flush(THandle file) override {
        return ErrorOf(Uninterrupted([&] { return ::fsync(file); }));
    }
    /// Never repeated: an interrupted one has closed the file.
    int Close(THandle file) override { return ErrorOf(::close(file)); }

    int StatusAt(const std::string& path, TFileStatus& status) override {
        struct stat found {};
        const int error = ErrorOf(::stat(path.c_str(), &found));
        if (!error) status = StatusFrom(found);
        return error;
    }
    int StatusOf(THandle file, TFileStatus& status) override {
        struct stat found {};
        const int error = ErrorOf(::fstat(file, &found));
        if (!error) status = StatusFrom(found);
        return error;
    }
    int CheckWritable(const std::string& path) override {
        return ErrorOf(::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
    }
    int ReadLink(const std::string& path, std::string& target) override {
        std::string text(PATH_MAX, '\0'); // no link is longer
        const ssize_t length = ::readlink(path.c_str(), text.data(), text.size());
        if (length < 0) return errno;
        text.resize(static_cast<std::size_t>(length));
        target = std::move(text);
        return 0;
    }

    int SetOwner(THandle file, uid_t owner, gid_t group) override {
        return ErrorOf(::fchown(file, owner, group));
    }
    int SetPermissions(THandle file, mode_t mode) override { return ErrorOf(::fchmod(file, mode)); }

    int Rename(const std::string& from, const std::string& to) override {
        return ErrorOf(::rename(from.c_str(), to.c_str()));
    }
    int Link(const std::string& path, const std::string& newPath) override {
        return ErrorOf(::link(path.c_str(), newPath.c_str()));
    }
    int Remove(const std::string& path) override { return ErrorOf(::unlink(path.c_str())); }
    int FlushFolder(const std::string& path) override {
        THandle opened = NoHandle;
        int error = Open(path, O_RDONLY | O_DIRECTORY, 0, opened);
        if (error) return error == EACCES ? 0 : error;
        const TOwnedHandle folder(opened);
        error = Flush(opened);
        return error == EINVAL || error == ENOTSUP || error == ENOSYS ? 0 : error;
    }

private:
    static int Open(const std::string& path, int flags, mode_t mode, THandle& file) {
        const THandle opened =
            Uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); });
        if (opened == NoHandle) return errno;
        file = opened;
        return 0;
    }
    static std::int64_t AtMost(std::size_t count) {
        return static_cast<std::int64_t>(count); // what is in memory is no longer than that
    }
    static int Transferred(std::int64_t result, std::size_t& count) {
        if (result < 0) return errno;
        count = static_cast<std::size_t>(result);
        return 0;
    }
};

IFileSystem* Replaced = nullptr;

} // namespace

IFileSystem& FileSystem() {
    static TPosixFileSystem posix;
    return Replaced ? *Replaced : posix;
}

TScopedFileSystem::TScopedFileSystem(IFileSystem& files)
    : FBefore(std::exchange(Replaced, &files)) {}

TScopedFileSystem::~TScopedFileSystem() {
    Replaced = FBefore;
}

} // namespace tarn
