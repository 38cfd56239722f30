#include "TextStore/TextFile.h"

#include "TFileSizeLimit.h"
#include "TPlainUser.h"
#include "TextStore/TEditText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class TextFile : public ::testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "tarn-text-file-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        FFolder = name;
        fs::permissions(FFolder, fs::perms(0777)); // for TPlainUser
    }
    void TearDown() override { fs::remove_all(FFolder); }

    std::string Path(std::string_view name) const { return (FFolder / name).string(); }
    std::string Write(std::string_view name, std::string_view bytes) const {
        std::ofstream(FFolder / name, std::ios::binary) << bytes;
        return Path(name);
    }
    static std::string Read(const fs::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    /// All that the folder holds: names with contents, links with their targets.
    std::map<std::string, std::string> Snapshot() const {
        std::map<std::string, std::string> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(FFolder)) {
            const std::string name =
                fs::relative(entry.path().parent_path(), FFolder) / entry.path().filename();
            if (entry.is_symlink())
                files[name] = "-> " + fs::read_symlink(entry.path()).string();
            else
                files[name] = entry.is_regular_file() ? Read(entry.path()) : "not a file";
        }
        return files;
    }
    static mode_t Mode(const std::string& path) {
        struct stat status {};
        ::stat(path.c_str(), &status);
        return status.st_mode & 07777;
    }

    fs::path FFolder;
};

TFileIdentity Save(std::string_view path, std::string_view bytes,
                   const std::optional<TFileIdentity>& expected = {}) {
    return SaveFile(path, {&bytes, 1}, expected);
}

std::string_view View(const TFileContents& contents) {
    return {contents.Bytes.Front().data(), contents.Bytes.Front().size()};
}

/// Expects an error with this kind and message, in which FILE stands for the path.
void ExpectError(const std::string& path, TFileErrorKind kind, std::string message,
                 const std::function<void()>& action) {
    std::string shownPath = path;
    std::replace(shownPath.begin(), shownPath.end(), '\0', '?');
    message.replace(message.find("FILE"), 4, shownPath);
    try {
        action();
        ADD_FAILURE() << "no error, expected: " << message;
    } catch (const EFileError& error) {
        EXPECT_EQ(error.what(), message);
        EXPECT_EQ(error.Kind(), kind) << message;
        EXPECT_EQ(error.Path(), shownPath);
    }
}

// ---- loading ----

TEST_F(TextFile, LoadsEveryByteAndTheIdentity) {
    for (const std::string& bytes : {""s, "a\r\nb\rc\n\0\xFF"s, std::string(300'000, 'x')}) {
        const std::string path = Write("unit.pas", bytes);
        const TFileContents contents = LoadFile(path);
        EXPECT_EQ(View(contents), bytes);
        EXPECT_EQ(contents.Identity, IdentityOf(path));
        EXPECT_EQ(contents.Identity.Size, bytes.size());
    }
    EXPECT_EQ(IdentityOf(Path("none")), std::nullopt);
}

TEST_F(TextFile, LoadsAFileOfJustTheAllowedSize) {
    EXPECT_EQ(View(LoadFile(Write("a", "12345"), 5)), "12345");
}

TEST_F(TextFile, SaysWhyItCannotLoad) {
    Write("five", "12345");
    Write("locked", "x");
    fs::permissions(Path("locked"), fs::perms::none);
    Write("sparse", "");
    fs::resize_file(Path("sparse"), 3'000'000'000);
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0666), 0);

    struct TCase {
        std::string Name;
        std::size_t Limit;
        TFileErrorKind Kind;
        const char* Message;
    };
    const TCase cases[] = {
        {"none", 100, feMissing, "cannot read FILE: no such file or folder"},
        {"five/below", 100, feMissing, "cannot read FILE: no such file or folder"},
        {"five\0.pas"s, 100, feMissing, "cannot read FILE: no such file or folder"},
        {".", 100, feFolder, "cannot read FILE: is a folder"},
        {"locked", 100, feDenied, "cannot read FILE: permission denied"},
        {"pipe", 100, feNotAFile, "cannot read FILE: not a regular file"},
        {"five", 4, feTooLarge, "cannot read FILE: 5 bytes, more than the 4 allowed"},
        {"sparse", static_cast<std::size_t>(-1), feTooLarge,
         "cannot read FILE: 3000000000 bytes, more than the 2147483646 allowed"},
    };
    const TPlainUser user;
    for (const TCase& test : cases) {
        const std::string path = FFolder.string() + "/" + test.Name;
        ExpectError(path, test.Kind, test.Message, [&] { LoadFile(path, test.Limit); });
    }
}

TEST_F(TextFile, NoticesThatAFileHoldsMoreThanItsSizeSaid) {
    // The kernel's own files say 0 bytes and hold some, as one does that grows under the reader.
    const std::string path = "/proc/self/status";
    if (!fs::exists(path)) GTEST_SKIP() << "no " << path;
    ExpectError(path, feChangedWhileRead, "cannot read FILE: changed while being read",
                [&] { LoadFile(path); });
}

// ---- saving ----

TEST_F(TextFile, SavesATextAndReadsItBack) {
    const std::string path = Write("unit.pas", "one\r\ntwo");
    TFileContents contents = LoadFile(path);
    TFileIdentity identity = contents.Identity;
    TEditText text(std::move(contents.Bytes));
    for (const std::string_view newText : {"\n", "", "long enough to change the size\0"}) {
        text.Replace(3, 5, newText);
        const auto chunks = text.Chunks();
        identity = SaveFile(path, chunks, identity);
        EXPECT_EQ(View(LoadFile(path)), text.Text());
        EXPECT_EQ(identity, IdentityOf(path));
    }
    EXPECT_EQ(Snapshot().size(), 1U);
}

TEST_F(TextFile, CreatesANewFileAsTheUserMasksIt) {
    const mode_t oldMask = ::umask(027);
    Save(Path("new"), "text");
    ::umask(oldMask);
    EXPECT_EQ(Mode(Path("new")), 0640U);
    EXPECT_EQ(Read(Path("new")), "text");
}

TEST_F(TextFile, KeepsPermissionsAndOwner) {
    const std::string path = Write("a", "old");
    for (const mode_t mode : {0600U, 0644U, 0755U, 0666U}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        Save(path, "new");
        EXPECT_EQ(Mode(path), mode);
    }
    if (::geteuid() != 0) return; // only root may give files away
    ASSERT_EQ(::chown(path.c_str(), TPlainUser::Nobody, 65533), 0);
    Save(path, "newer");
    struct stat status {};
    ::stat(path.c_str(), &status);
    EXPECT_EQ(status.st_uid, TPlainUser::Nobody);
    EXPECT_EQ(status.st_gid, 65533U);
}

TEST_F(TextFile, GivesNobodyARightWhenOwnerAndGroupCannotBeKept) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a file of another owner";
    const std::string path = Write("a", "old");
    ASSERT_EQ(::chmod(path.c_str(), 04762), 0);
    {
        const TPlainUser user;
        Save(path, "new");
    }
    EXPECT_EQ(Mode(path), 0722U) << "the new group may do what others may, set-user-ID is off";
    EXPECT_EQ(Read(path), "new");
}

TEST_F(TextFile, FollowsSymbolicLinksAndKeepsThem) {
    fs::create_directory(FFolder / "real");
    Write("real/unit.pas", "old");
    fs::create_symlink("real/unit.pas", FFolder / "link");
    fs::create_symlink(FFolder / "link", FFolder / "chain");
    fs::create_symlink("real/new.pas", FFolder / "dangling");
    const TFileContents contents = LoadFile(Path("chain"));
    const TFileIdentity saved = Save(Path("chain"), "new", contents.Identity);
    EXPECT_EQ(saved, IdentityOf(Path("real/unit.pas")));
    Save(Path("dangling"), "created");
    EXPECT_EQ(Snapshot(), (std::map<std::string, std::string>{
                              {"./real", "not a file"},
                              {"./link", "-> real/unit.pas"},
                              {"./chain", "-> " + Path("link")},
                              {"./dangling", "-> real/new.pas"},
                              {"real/unit.pas", "new"},
                              {"real/new.pas", "created"},
                          }));
}

TEST_F(TextFile, SavesByARelativeName) {
    const fs::path before = fs::current_path();
    fs::current_path(FFolder);
    Save("plain", "text");
    fs::current_path(before);
    EXPECT_EQ(Snapshot(), (std::map<std::string, std::string>{{"./plain", "text"}}));
}

TEST_F(TextFile, RefusesAFileThatChangedSinceItWasRead) {
    const std::string path = Path("unit.pas");
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"longer", [&] { Write("unit.pas", "longer"); }},
        {"same size, later",
         [&] {
             fs::last_write_time(path, fs::last_write_time(path) + std::chrono::nanoseconds(1));
         }},
        {"another file, size and time alike",
         [&] {
             const fs::file_time_type time = fs::last_write_time(path);
             Write("other", "text");
             fs::last_write_time(Path("other"), time);
             fs::rename(Path("other"), path);
         }},
        {"removed", [&] { fs::remove(path); }},
    };
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        Write("unit.pas", "text");
        const TFileIdentity identity = LoadFile(path).Identity;
        change();
        const auto before = Snapshot();
        ExpectError(path, feChangedOnDisk, "FILE changed on disk since it was read",
                    [&] { Save(path, "mine", identity); });
        EXPECT_EQ(Snapshot(), before);
        Save(path, "mine");
        EXPECT_EQ(Read(path), "mine") << "when no identity is expected";
    }
}

TEST_F(TextFile, LeavesAllAsItWasWhenItCannotSave) {
    fs::create_directory(FFolder / "closed");
    fs::create_directory(FFolder / "folder");
    Write("closed/unit.pas", "old");
    Write("readonly", "old");
    Write("open", "old");
    fs::create_symlink("loop", FFolder / "loop");
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0666), 0);
    fs::permissions(Path("open"), fs::perms(0666));
    fs::permissions(Path("closed/unit.pas"), fs::perms(0666));
    fs::permissions(Path("closed"), fs::perms(0555));
    fs::permissions(Path("readonly"), fs::perms(0444));

    struct TCase {
        std::string Name;
        TFileErrorKind Kind;
        const char* Message;
    };
    const TCase cases[] = {
        {"folder", feFolder, "cannot write FILE: is a folder"},
        {"none/unit.pas", feMissing, "cannot write FILE: no such file or folder"},
        {"open/unit.pas", feMissing, "cannot write FILE: no such file or folder"},
        {"open\0.pas"s, feMissing, "cannot write FILE: no such file or folder"},
        {"closed/unit.pas", feDenied, "cannot write FILE: permission denied"},
        {"closed/new.pas", feDenied, "cannot write FILE: permission denied"},
        {"readonly", feDenied, "cannot write FILE: permission denied"},
        {"pipe", feNotAFile, "cannot write FILE: not a regular file"},
        {"loop", feIO, "cannot write FILE: Too many levels of symbolic links"},
        {"open", feIO, "cannot write FILE: File too large"}, // the disk is full half-way
    };
    const auto before = Snapshot();
    {
        const TPlainUser user;
        const TFileSizeLimit limit(1000);
        for (const TCase& test : cases) {
            const std::string path = FFolder.string() + "/" + test.Name;
            ExpectError(path, test.Kind, test.Message, [&] { Save(path, std::string(5000, 'x')); });
        }
    }
    EXPECT_EQ(Snapshot(), before);
    fs::permissions(Path("closed"), fs::perms(0755));
}

TEST_F(TextFile, StepsAsideForAForgottenNewFile) {
    const std::string forgotten = ".tarn-" + std::to_string(::getpid()) + "-0.tmp";
    Write(forgotten, "left by a crash");
    Save(Path("unit.pas"), "text");
    EXPECT_EQ(Snapshot(), (std::map<std::string, std::string>{{"./" + forgotten, "left by a crash"},
                                                              {"./unit.pas", "text"}}));
}

} // namespace
} // namespace tarn
