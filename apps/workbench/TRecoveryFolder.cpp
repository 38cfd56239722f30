#include "TRecoveryFolder.h"

#include "rtl/SysUtils.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view FirstLine = "TarnExperts recovery 1\n";
constexpr std::string_view FileExtension = ".recovery";
constexpr std::string_view LockName = "lock";

// --- The form of a recovery file --------------------------------------------------------------

/// Takes the head of a recovery file apart.
class THeadReader {
public:
    THeadReader(std::string_view text, const std::string& file) : FText(text), FFile(file) {}

    void Expect(std::string_view word) {
        if (!Skip(word)) Fail();
    }
    bool Skip(std::string_view word) {
        if (!FText.starts_with(word)) return false;
        FText.remove_prefix(word.size());
        return true;
    }
    template <class T> T Number(std::string_view behind) {
        T value{};
        const char* const end = FText.data() + FText.size();
        const auto [next, error] = std::from_chars(FText.data(), end, value);
        if (error != std::errc()) Fail();
        FText.remove_prefix(static_cast<std::size_t>(next - FText.data()));
        Expect(behind);
        return value;
    }
    std::string Bytes(std::size_t count) {
        if (count > FText.size()) Fail();
        std::string result(FText.substr(0, count));
        FText.remove_prefix(count);
        return result;
    }
    std::size_t Left() const { return FText.size(); }
    [[noreturn]] void Fail() const { throw EConvertError(FFile + " is damaged"); }

private:
    std::string_view FText;
    const std::string& FFile;
};

TRecoveryCopy ReadHead(THeadReader& reader) {
    TRecoveryCopy copy;
    reader.Expect(FirstLine);
    reader.Expect("source ");
    if (!reader.Skip("none\n")) {
        TFileIdentity& identity = copy.Identity.emplace();
        identity.Device = reader.Number<std::uint64_t>(" ");
        identity.Inode = reader.Number<std::uint64_t>(" ");
        identity.Size = reader.Number<std::uint64_t>(" ");
        identity.ModifiedAtNs = reader.Number<std::int64_t>("\n");
    }
    reader.Expect("name ");
    copy.FileName = reader.Bytes(reader.Number<std::size_t>("\n"));
    reader.Expect("\ntext ");
    copy.Size = reader.Number<std::size_t>("\n");
    return copy;
}

/// The first bytes of a file: more than a head can have, whose name is a path.
std::string ReadStart(const std::string& file, std::uint64_t& size) {
    TFile source(file, fmOpenRead);
    size = source.Size();
    std::string start(std::min<std::uint64_t>(size, 64 << 10), '\0');
    const auto count = static_cast<std::int64_t>(start.size());
    if (FileRead(source.Handle(), start.data(), count) != count)
        RaiseLastInOutError("read " + file);
    return start;
}

} // namespace

std::string RecoveryHead(const TRecoveryCopy& copy) {
    std::string head(FirstLine);
    head += "source ";
    if (copy.Identity)
        head += std::to_string(copy.Identity->Device) + " " + std::to_string(copy.Identity->Inode) +
                " " + std::to_string(copy.Identity->Size) + " " +
                std::to_string(copy.Identity->ModifiedAtNs);
    else
        head += "none";
    head += "\nname " + std::to_string(copy.FileName.size()) + "\n" + copy.FileName;
    return head + "\ntext " + std::to_string(copy.Size) + "\n";
}

TRecoveryCopy ReadRecovery(const std::string& file, bool withText) {
    std::uint64_t size = 0;
    std::string bytes = withText ? LoadFileText(file) : ReadStart(file, size);
    if (withText) size = bytes.size();
    THeadReader reader(bytes, file);
    TRecoveryCopy copy = ReadHead(reader);
    const std::size_t head = bytes.size() - reader.Left();
    if (size - head != copy.Size) reader.Fail();
    if (withText) copy.Text = std::move(bytes.erase(0, head));
    return copy;
}

// --- The folders ------------------------------------------------------------------------------

TRecoveryFolder::TRecoveryFolder(std::string root) : FRoot(std::move(root)) {
    std::error_code error;
    fs::create_directories(FRoot, error);
    if (error) throw EInOutError("cannot make the folder " + FRoot + ": " + error.message());
    MakeOwn();
}

void TRecoveryFolder::MakeOwn() {
    for (int number = 1;; ++number) {
        std::string name = std::to_string(::getpid()) + "-" + std::to_string(number);
        const std::string folder = (fs::path(FRoot) / name).string();
        if (::mkdir(folder.c_str(), 0700) != 0) {
            if (errno == EEXIST) continue;
            RaiseLastInOutError("make the folder " + folder);
        }
        // Somebody else may take it for one that was left, before it is locked.
        if (!Hold(folder, true)) continue;
        FOwn = folder;
        return;
    }
}

/// Locks a folder; false when its program runs, or somebody else holds it already.
bool TRecoveryFolder::Hold(const std::string& folder, bool make) {
    const std::string name = (fs::path(folder) / LockName).string();
    TOwnedHandle& lock = FLocks[folder];
    lock.Reset(FileOpen(name, make ? fmCreate : fmOpenRead));
    // One that was removed since it was opened locks nothing.
    const bool held = lock.Get() != NoHandle && ::flock(lock.Get(), LOCK_EX | LOCK_NB) == 0 &&
                      SameFile(lock.Get(), name);
    if (!held) FLocks.erase(folder);
    return held;
}

TRecoveryFolder::~TRecoveryFolder() {
    for (const auto& [folder, lock] : FLocks) {
        if (!FilesIn(folder).empty()) continue;
        std::error_code ignored;
        fs::remove_all(folder, ignored); // with parts of files that a crash has left
    }
}

std::string TRecoveryFolder::NewFile() {
    const std::string name = std::to_string(++FLastFile) + std::string(FileExtension);
    return (fs::path(FOwn) / name).string();
}

std::vector<std::string> TRecoveryFolder::FilesIn(const std::string& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error))
        if (i->path().extension() == FileExtension) files.push_back(i->path().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> TRecoveryFolder::TakeLeft() {
    std::vector<std::string> left;
    std::error_code error;
    for (fs::directory_iterator i(FRoot, error), end; !error && i != end; i.increment(error)) {
        const std::string folder = i->path().string();
        if (FLocks.contains(folder) || !Hold(folder, false)) continue;
        const std::vector<std::string> files = FilesIn(folder);
        left.insert(left.end(), files.begin(), files.end());
    }
    std::sort(left.begin(), left.end());
    return left;
}

} // namespace tarn
