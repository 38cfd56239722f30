#include "rtl/SafeFile.h"

#include "ErrorOf.h"
#include "TFaultyFileSystem.h"
#include "TFileSizeLimit.h"
#include "TPlainUser.h"
#include "TTestFolder.h"
#include "rtl/DateUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using TFiles = std::map<std::string, std::string>;

constexpr const char* File = "/home/ExpData.spc";
constexpr const char* Dated = "/home/ExpData-2026-11-21-183045.spc";
constexpr const char* Target = "/dot/settings";

class SafeFileFaults : public ::testing::Test {
protected:
    SafeFileFaults() : FClock(SetClock([] { return EncodeDateTime({2026, 11, 21, 18, 30, 45}); })) {
        FDisk.MaxTransfer = 5; // several steps even for a short text
    }
    ~SafeFileFaults() override { SetClock(FClock); }

    TFaultyFileSystem FDisk;

private:
    TClock FClock;
};

/// Something that is done to files, and how they may look before, on the way and after.
struct TScenario {
    const char* Name;
    TFaultyFileSystem Disk;
    std::function<void()> Run;
    TFiles After;
    std::vector<TFiles> Between = {}; ///< also behind an error: the steps before it are done
    std::vector<TFiles> OnCut = {};   ///< after a power cut only
};

bool IsTemporary(const std::string& name) {
    return fs::path(name).filename().string().starts_with(".tarn-");
}

/// The files without those that a power cut has left unfinished. One that shows others more than
/// the finished file does is not left out.
TFiles Finished(TFiles files, bool everybodyReads) {
    std::erase_if(files, [&](const auto& file) {
        return IsTemporary(file.first) && (everybodyReads || file.second.ends_with("0)"));
    });
    return files;
}

std::string Shown(const TFiles& files) {
    std::string text;
    for (const auto& [name, contents] : files)
        text.append("\n    ").append(name).append(": ").append(contents);
    return text.empty() ? " nothing" : text;
}

/// Makes every operation of a scenario fail and cuts the power before every one; returns what was
/// found at the first one where something was wrong.
class TProof {
public:
    explicit TProof(const TScenario& scenario) : FScenario(scenario) {
        FFirst = scenario.Between;
        FFirst.push_back(scenario.Disk.Files());
    }

    std::vector<std::string> Run() {
        for (int operation = 1; CutPowerAt(operation) && FFaults.empty(); ++operation)
            for (const int error : {EIO, ENOSPC, EACCES, EPERM, EROFS}) FailAt(operation, error);
        return FFaults;
    }

private:
    /// False when it was done before that operation.
    bool CutPowerAt(int operation) {
        TFaultyFileSystem files = FScenario.Disk;
        files.CutPowerAt(operation);
        const std::string error = Do(files);
        const std::size_t done = files.Log().size();
        const bool cut = done >= static_cast<std::size_t>(operation);
        FWhen = "power cut at " +
                (cut ? files.Log()[static_cast<std::size_t>(operation) - 1] : "the end");
        if (!cut && !error.empty()) Found(error);
        CheckOutcomes(files, cut);
        return cut;
    }

    void FailAt(int operation, int errorNumber) {
        TFaultyFileSystem files = FScenario.Disk;
        files.FailAt(operation, errorNumber);
        const std::string error = Do(files);
        const std::string failed = files.Log()[static_cast<std::size_t>(operation) - 1];
        FWhen = failed + " failed with " + std::to_string(errorNumber) +
                (error.empty() ? "" : ", " + error);
        if (files.OpenFiles()) Found("a file is still open");
        if (error.empty()) {
            Check(files.Files(), {FScenario.After});
            // Too late for an error then: the name is given, and what it stands for is whole.
            CheckOutcomes(files, failed.starts_with("flush folder"));
        } else {
            Check(files.Files(), FFirst);
        }
    }

    std::string Do(TFaultyFileSystem& files) const {
        const TScopedFileSystem scope(files);
        return ErrorOf(FScenario.Run);
    }

    /// \param onTheWay whether it need not be done in all outcomes
    void CheckOutcomes(const TFaultyFileSystem& files, bool onTheWay) {
        std::vector<TFiles> allowed = {FScenario.After};
        if (onTheWay) {
            allowed.insert(allowed.end(), FFirst.begin(), FFirst.end());
            allowed.insert(allowed.end(), FScenario.OnCut.begin(), FScenario.OnCut.end());
        }
        const bool everybodyReads = FScenario.Disk.Files().empty();
        for (int outcome = 0; outcome < files.Outcomes(); ++outcome) {
            TFaultyFileSystem disk = files;
            disk.Restart(outcome);
            const TFiles before = disk.Files();
            Check(Finished(before, everybodyReads), allowed);
            // What is left over is in nobody's way.
            const std::string error = Do(disk);
            if (!error.empty()) Found("a second time: " + error);
            TFiles expected = FScenario.After;
            if (const auto kept = before.find(Dated); kept != before.end())
                expected[Dated] = kept->second;
            TFiles found = disk.Files();
            std::erase_if(found, [&](const auto& file) { return !expected.contains(file.first); });
            if (found != expected) Found("a second time:" + Shown(disk.Files()));
        }
    }

    void Check(const TFiles& files, const std::vector<TFiles>& allowed) {
        if (std::find(allowed.begin(), allowed.end(), files) == allowed.end()) Found(Shown(files));
    }
    void Found(const std::string& fault) { FFaults.push_back(FWhen + ": " + fault); }

    const TScenario& FScenario;
    std::vector<TFiles> FFirst; ///< how the files may look until it is done
    std::string FWhen;
    std::vector<std::string> FFaults;
};

std::vector<TScenario> Scenarios(const TFaultyFileSystem& empty) {
    TFaultyFileSystem file = empty;
    file.PutFile(File, "old settings", 0640);
    TFaultyFileSystem linked = empty;
    linked.PutLink(File, "../dot/settings");
    linked.PutFile(Target, "old settings", 0640);
    TFaultyFileSystem noFile = empty;
    noFile.PutFolder("/home");
    TFaultyFileSystem noLinks = file;
    noLinks.HasHardLinks = false;
    TFaultyFileSystem devices = linked;
    devices.FoldersAreDevices = true;

    const auto save = [] { SaveFileText(File, "the new settings"); };
    const auto remove = [] { RemoveFile(File); };
    const auto keepAndSave = [] {
        KeepBeside(File);
        SaveFileText(File, "the new settings");
    };
    const std::string old = "old settings (640)", now = "the new settings (640)";
    const std::string link = "-> ../dot/settings";
    return {
        {"first save", noFile, save, {{File, "the new settings (644)"}}},
        {"save", file, save, {{File, now}}},
        {"save by a link", linked, save, {{File, link}, {Target, now}}},
        {"remove", file, remove, {}},
        {"remove by a link", linked, remove, {{File, link}}},
        {"keep and save",
         file,
         keepAndSave,
         {{Dated, old}, {File, now}},
         {{{Dated, old}, {File, old}}}},
        {"keep and save by a link",
         linked,
         keepAndSave,
         {{Dated, old}, {File, link}, {Target, now}},
         {{{Dated, old}, {File, link}, {Target, old}}}},
        {"keep by a copy and save",
         noLinks,
         keepAndSave,
         {{Dated, old}, {File, now}},
         {{{Dated, old}, {File, old}}},
         {{{Dated, " (600)"}, {File, old}}}},
        {"keep by a copy beside a link and save",
         devices,
         keepAndSave,
         {{Dated, old}, {File, link}, {Target, now}},
         {{{Dated, old}, {File, link}, {Target, old}}},
         {{{Dated, " (600)"}, {File, link}, {Target, old}}}},
    };
}

TEST_F(SafeFileFaults, EveryOperationMayFailOrBeTheLast) {
    for (const TScenario& scenario : Scenarios(FDisk)) {
        SCOPED_TRACE(scenario.Name);
        EXPECT_EQ(TProof(scenario).Run(), std::vector<std::string>{});
    }
}

TEST_F(SafeFileFaults, EveryFlushIsNeeded) {
    for (const TScenario& scenario : Scenarios(FDisk)) {
        SCOPED_TRACE(scenario.Name);
        TScenario files = scenario, folders = scenario;
        files.Disk.FlushesFiles = false;
        folders.Disk.FlushesFolders = false;
        const bool onlyRemoves = std::string_view(scenario.Name).starts_with("remove");
        EXPECT_EQ(TProof(files).Run().empty(), onlyRemoves);
        EXPECT_FALSE(TProof(folders).Run().empty());
    }
}

TEST_F(SafeFileFaults, KeepsContentsThatWereNotOnDiskYet) {
    FDisk.PutFile(File, "");
    FDisk.Overwrite(File, "just written");
    int kept = 0;
    bool more = true;
    for (int operation = 1; more; ++operation) {
        TFaultyFileSystem files = FDisk;
        files.FailAt(operation, EIO);
        const TScopedFileSystem scope(files);
        const std::string error = ErrorOf([] { EXPECT_EQ(KeepBeside(File), Dated); });
        more = static_cast<int>(files.Log().size()) >= operation;
        if (!error.empty()) continue;
        ++kept;
        for (int outcome = 0; outcome < files.Outcomes(); ++outcome) {
            TFaultyFileSystem disk = files;
            disk.Restart(outcome);
            EXPECT_EQ(disk.Files()[Dated], "just written (644)");
        }
    }
    EXPECT_EQ(kept, 3) << "no error, no close of what was read, no hard link";
}

TEST_F(SafeFileFaults, AFullDiskLeavesTheOldFile) {
    struct {
        const char* Name;
        bool HasHardLinks;
        std::string Error;
        TFiles After;
    } const cases[] = {
        {"links",
         true,
         "cannot write /home/ExpData.spc: No space left on device",
         {{Dated, "old settings (640)"}, {File, "old settings (640)"}}},
        {"copies",
         false,
         "cannot keep a copy of /home/ExpData.spc: No space left on device",
         {{File, "old settings (640)"}}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.Name);
        TFaultyFileSystem disk = FDisk;
        disk.PutFile(File, "old settings", 0640);
        disk.HasHardLinks = test.HasHardLinks;
        disk.Room = 7;
        const TScopedFileSystem scope(disk);
        EXPECT_EQ(ErrorOf([] {
                      KeepBeside(File);
                      SaveFileText(File, "the new settings");
                  }),
                  "EInOutError: " + test.Error);
        EXPECT_EQ(disk.Files(), test.After);
    }
}

// ---- other processes ----

/// Runs `action` as often as it has operations, and before each of them, in turn, what another
/// process does. Returns how often it ended how: what it returned or raised, and the files.
std::map<std::string, int> Interrupted(const TFaultyFileSystem& start,
                                       const std::function<std::string()>& action,
                                       const std::function<void(TFaultyFileSystem&)>& other) {
    const auto count = [&] {
        TFaultyFileSystem files = start;
        files.FailNowhere();
        const TScopedFileSystem scope(files);
        action();
        return static_cast<int>(files.Log().size());
    }();
    std::map<std::string, int> ends;
    for (int operation = 1; operation <= count; ++operation) {
        TFaultyFileSystem files = start;
        files.FailNowhere();
        files.OnOperation = [&](int number) {
            if (number == operation) other(files);
        };
        const TScopedFileSystem scope(files);
        std::string result;
        const std::string error = ErrorOf([&] { result = action(); });
        EXPECT_EQ(files.OpenFiles(), 0);
        ++ends[result + error + ";" + Shown(files.Files())];
    }
    return ends;
}

std::vector<std::string> Names(const std::map<std::string, int>& counts) {
    std::vector<std::string> names;
    names.reserve(counts.size());
    for (const auto& [name, count] : counts) names.push_back(name);
    return names;
}

TEST_F(SafeFileFaults, ReadsAFileThatIsWrittenToWholeOrNotAtAll) {
    FDisk.PutFile(File, "old settings");
    const auto overwrite = [](TFaultyFileSystem& files) { files.Overwrite(File, "NEW SETTINGS"); };
    const std::string after = ";\n    " + std::string(File) + ": NEW SETTINGS (644)";
    EXPECT_EQ(Names(Interrupted(
                  FDisk, [] { return LoadFileText(File); }, overwrite)),
              (std::vector<std::string>{
                  "EInOutError: cannot read /home/ExpData.spc: changed while being read" + after,
                  "NEW SETTINGS" + after,
                  "old settings" + after, // closed after it was compared
              }));
    for (int operation = 1; operation < 8; ++operation) { // open, status, 4 reads, status
        FDisk.FailAt(operation, EIO);
        const TScopedFileSystem scope(FDisk);
        EXPECT_EQ(ErrorOf([] { LoadFileText(File); }),
                  "EInOutError: cannot read /home/ExpData.spc: Input/output error");
        EXPECT_EQ(FDisk.OpenFiles(), 0);
    }
}

TEST_F(SafeFileFaults, ReplacesAnotherOnesFileOnlyInTheVeryLastMoment) {
    FDisk.PutFile(File, "old settings");
    std::optional<TFileIdentity> identity;
    {
        const TScopedFileSystem scope(FDisk);
        identity = IdentityOf(File);
        EXPECT_EQ(IdentityOf("/home/none"), std::nullopt);
    }
    const auto save = [&identity] {
        const std::string_view text = "mine";
        SaveFile(File, {&text, 1}, identity);
        return std::string("saved");
    };
    const auto replace = [](TFaultyFileSystem& files) { files.PutFile(File, "theirs"); };
    const std::string after = ";\n    " + std::string(File) + ": ";
    const auto ends = Interrupted(FDisk, save, replace);
    EXPECT_EQ(Names(ends), (std::vector<std::string>{
                               "EInOutError: /home/ExpData.spc changed on disk since it was read" +
                                   after + "theirs (644)",
                               "saved" + after + "mine (644)",
                               "saved" + after + "theirs (644)", // it came after mine
                           }));
    EXPECT_EQ(ends.at("saved" + after + "mine (644)"), 1)
        << "between the comparison and the rename";
}

TEST_F(SafeFileFaults, TheFolderVanishes) {
    FDisk.PutFile(File, "old settings");
    struct {
        std::function<std::string()> Action;
        std::vector<std::string> Ends;
    } const cases[] = {
        {[] { return SaveFileText(File, "new"), "saved"; },
         {"EInOutError: cannot write /home/ExpData.spc: no such file or folder; nothing",
          "saved; nothing"}},
        {[] { return RemoveFile(File) ? "removed" : "none"; },
         {"none; nothing", "removed; nothing"}},
        {[] { return KeepBeside(File); },
         {"EInOutError: cannot keep a copy of /home/ExpData.spc: no such file or folder; nothing"}},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Names(Interrupted(FDisk, test.Action,
                                    [](TFaultyFileSystem& files) { files.RemoveFolder("/home"); })),
                  test.Ends);
}

// ---- the system's own files ----

class SafeFileOnDisk : public SafeFileFaults {
protected:
    SafeFileOnDisk() { fs::permissions(FFolder.Path(), fs::perms(0777)); } // for TPlainUser

    std::string Path(std::string_view name) const { return FFolder.File(name); }
    std::string Write(std::string_view name, std::string_view bytes, int mode = 0644) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        fs::permissions(Path(name), fs::perms(mode));
        return Path(name);
    }
    /// What the folder holds, as TFaultyFileSystem::Files shows it.
    TFiles Files() const {
        TFiles files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(FFolder.Path())) {
            std::ostringstream text;
            if (entry.is_symlink())
                text << "-> " << fs::read_symlink(entry.path()).string();
            else if (entry.is_regular_file())
                text << std::ifstream(entry.path(), std::ios::binary).rdbuf() << " (" << std::oct
                     << static_cast<int>(entry.status().permissions()) << ")";
            else
                continue;
            files[entry.path().lexically_relative(FFolder.Path()).string()] = text.str();
        }
        return files;
    }

    TTestFolder FFolder;
};

TEST_F(SafeFileOnDisk, KeepsAndRemoves) {
    fs::create_directory(Path("dot"));
    Write("dot/settings", "linked", 0600);
    fs::create_symlink("dot/settings", Path("ExpData.spc"));
    Write("plain", "no extension", 0755);
    Write("plain-2026-11-21-183045", "somebody's");
    const auto ownName = [this](const std::string& path) {
        return fs::path(path).lexically_relative(FFolder.Path()).string();
    };
    EXPECT_EQ(ownName(KeepBeside(Path("ExpData.spc"))), "ExpData-2026-11-21-183045.spc");
    SaveFileText(Path("ExpData.spc"), "newer");
    EXPECT_EQ(ownName(KeepBeside(Path("ExpData.spc"))), "ExpData-2026-11-21-183045-2.spc");
    EXPECT_EQ(ownName(KeepBeside(Path("plain"))), "plain-2026-11-21-183045-2");
    EXPECT_TRUE(RemoveFile(Path("ExpData.spc")));
    EXPECT_FALSE(RemoveFile(Path("ExpData.spc"))) << "a link to nothing";
    EXPECT_TRUE(RemoveFile(Path("plain")));
    EXPECT_FALSE(RemoveFile(Path("plain/none")));
    const TFiles kept = {{"ExpData-2026-11-21-183045-2.spc", "newer (600)"},
                         {"ExpData-2026-11-21-183045.spc", "linked (600)"},
                         {"ExpData.spc", "-> dot/settings"},
                         {"plain-2026-11-21-183045", "somebody's (644)"},
                         {"plain-2026-11-21-183045-2", "no extension (755)"}};
    EXPECT_EQ(Files(), kept);

    const fs::path before = fs::current_path();
    fs::current_path(Path("dot"));
    SaveFileText("a.b.c", "x");
    EXPECT_EQ(KeepBeside("a.b.c"), "a.b-2026-11-21-183045.c");
    EXPECT_TRUE(RemoveFile("a.b.c"));
    fs::current_path(before);
    EXPECT_EQ(Files().size(), kept.size() + 1);
}

TEST_F(SafeFileOnDisk, SaysWhyItCannotRemoveOrKeep) {
    fs::create_directory(Path("closed"));
    Write("closed/file", "old", 0666);
    fs::permissions(Path("closed"), fs::perms(0555));
    Write("protected", "old", 0444);
    Write("secret", "old", 0600);
    fs::create_directory(Path("folder"));
    fs::create_symlink("loop", Path("loop"));
    ASSERT_EQ(::mkfifo(Path("pipe").c_str(), 0666), 0);
    const TFiles before = Files();

    struct {
        std::string Name, RemoveError, KeepError;
    } const cases[] = {
        {"none", "", "no such file or folder"},
        {"none/file", "", "no such file or folder"},
        {"closed/file", "permission denied", "permission denied"},
        {"secret", "permission denied", "permission denied"},
        {"protected", "permission denied", ""},
        {"folder", "is a folder", "is a folder"},
        {"pipe", "not a regular file", "not a regular file"},
        {"loop", "Too many levels of symbolic links", "Too many levels of symbolic links"},
        {std::string("a\0b", 3), "no such file or folder", "no such file or folder"},
    };
    const auto shown = [](const std::string& verb, std::string path, const std::string& reason) {
        std::replace(path.begin(), path.end(), '\0', '?');
        return reason.empty() ? "" : "EInOutError: cannot " + verb + " " + path + ": " + reason;
    };
    const bool asRoot = ::geteuid() == 0;
    {
        const TPlainUser user;
        for (const auto& test : cases) {
            if (test.Name == "secret" && !asRoot) continue; // needs a file of another owner
            const std::string path = Path(test.Name);
            EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(RemoveFile(path)); }),
                      shown("delete", path, test.RemoveError));
            EXPECT_EQ(ErrorOf([&] { KeepBeside(path); }),
                      shown("keep a copy of", path, test.KeepError));
        }
    }
    TFiles after = before;
    after["protected-2026-11-21-183045"] = "old (444)";
    EXPECT_EQ(Files(), after);
    fs::permissions(Path("closed"), fs::perms(0755));
}

TEST_F(SafeFileOnDisk, KeepsWhatCannotBeReadAndNeedsNoRoom) {
    const TPlainUser user;
    const std::string path = Write("ExpData.spc", "old settings");
    std::error_code error;
    fs::create_hard_link(path, Path("probe"), error);
    if (error) GTEST_SKIP() << "no hard links here: " << error.message();
    fs::remove(Path("probe"));
    fs::permissions(path, fs::perms(0200));
    const TFileSizeLimit limit(4);
    KeepBeside(path);
    EXPECT_EQ(ErrorOf([&] { SaveFileText(path, "the new settings"); }),
              "EInOutError: cannot write " + path + ": File too large");
    fs::permissions(path, fs::perms(0600));
    EXPECT_EQ(Files(), (TFiles{{"ExpData-2026-11-21-183045.spc", "old settings (600)"},
                               {"ExpData.spc", "old settings (600)"}}));
}

} // namespace
} // namespace tarn
