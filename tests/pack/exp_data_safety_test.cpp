// Whatever becomes of the settings file or of the program, the settings are whole: the old ones or
// the new ones.

#include "ErrorOf.h"
#include "TChild.h"
#include "TFaultyFileSystem.h"
#include "TFileSizeLimit.h"
#include "TSmallSettings.h"
#include "TTestFolder.h"
#include "qsErrorLog.h"
#include "rtl/SafeFile.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <random>

namespace tarn {
namespace {

#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
constexpr int Mutations = 10'000, Kills = 40, BitStep = 5;
#else
constexpr int Mutations = 100'000, Kills = 1'000, BitStep = 1;
#endif

// --- Damaged files ----------------------------------------------------------------------------

/// Settings that are loaded again and again, each time as if nothing had been loaded before.
class TTarget {
public:
    /// Loads the bytes, or fails and changes nothing; true when they were loaded.
    bool Load(const std::string& bytes) {
        if (!FSettings) {
            FSettings = std::make_unique<TSmallSettings>();
            FSettings->Form.FormPlacement = "as it was";
            FSettings->Data.MenuData.UnplacedItems = {{"Kept", 0, "\6ItemID\6\4Kept"}};
            FBefore = FSettings->Saved();
        }
        if (!FSettings->Load(bytes)) {
            EXPECT_EQ(FSettings->Saved(), FBefore) << testing::PrintToString(bytes);
            return false;
        }
        // What was loaded can be saved and loaded to the same end.
        const std::string saved = FSettings->Saved();
        TSmallSettings again;
        EXPECT_TRUE(again.Load(saved)) << testing::PrintToString(bytes);
        EXPECT_EQ(again.Saved(), saved) << testing::PrintToString(bytes);
        FSettings.reset();
        return true;
    }

private:
    std::unique_ptr<TSmallSettings> FSettings;
    std::string FBefore;
};

/// The same settings, changed a bit, with something that has no place.
std::string Changed(std::uint8_t format, const std::string& by = "changed") {
    TSmallSettings small;
    small.Form.FormPlacement = by;
    small.Manager.EditorFormData()->Setting()->Add(by);
    small.Manager.SetMaxLogSize(1234);
    small.Data.MenuData.Get(1)->Caption = by;
    small.Data.MenuData.Move(1, 0);
    small.Data.MenuData.UnplacedItems = {{"Other", 1, "\6ItemID\6\5Other\4List\x0E\1\1A\2\1"}};
    small.Data.MenuData.UnplacedItems[0].Props += std::string(2, '\0');
    return small.Saved(format);
}

TEST(ExpDataSafety, FilesThatAreCutOrHaveAWrongBit) {
    for (const std::uint8_t format : {1, 2}) {
        const std::string whole = Changed(format);
        TTarget target;
        ASSERT_TRUE(target.Load(whole));
        const std::size_t body = whole.size() - (format == 1 ? 0 : 2); // the last line's end
        for (std::size_t size = 0; size < body; ++size)
            ASSERT_FALSE(target.Load(whole.substr(0, size))) << size;
        for (std::size_t bit = 0; bit < whole.size() * 8; bit += BitStep) {
            std::string bytes = whole;
            bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
            target.Load(bytes);
            if (testing::Test::HasFailure()) FAIL() << "bit " << bit;
        }
    }
}

TEST(ExpDataSafety, FilesWithRandomDamage) {
    std::mt19937 random(6);
    const auto below = [&random](std::size_t count) { return count ? random() % count : 0; };
    const std::array<std::string, 2> wholes = {Changed(1), Changed(2)};
    TTarget target;
    int loaded = 0;
    for (int i = 0; i < Mutations; ++i) {
        std::string bytes = wholes[i % 2];
        for (std::size_t change = below(3) + 1; change > 0; --change) {
            const std::size_t at = below(bytes.size());
            const std::size_t count = below(std::min<std::size_t>(bytes.size() - at, 40));
            const std::string piece = wholes[i % 2].substr(below(wholes[i % 2].size()), count);
            switch (below(4)) {
            case 0:
                bytes[at] = static_cast<char>(random());
                break;
            case 1:
                bytes.erase(at, count);
                break;
            case 2:
                bytes.insert(at, piece);
                break;
            default:
                bytes.replace(at, count, piece);
            }
        }
        loaded += target.Load(bytes) ? 1 : 0;
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(loaded, Mutations / 50);
    EXPECT_LT(loaded, Mutations / 2);
}

// --- A file system that fails or loses its power ----------------------------------------------

constexpr const char* File = "/home/ExpData.spc";

/// The contents of the settings file; "none" when there is no file.
std::string ContentsOf(const TFaultyFileSystem& files) {
    const auto all = files.Files();
    const auto found = all.find(File);
    if (found == all.end()) return "none";
    return found->second.substr(0, found->second.rfind(" ("));
}

/// What happens to the settings file, at the place of which `old` stands, or nothing.
struct TScenario {
    std::string Name, Old, New; ///< New is "none" when the file is deleted
    std::function<void()> Run;
    bool KeepsOld = false; ///< under a dated name
};

void ExpectWhole(const TScenario& scenario, const TFaultyFileSystem& files, bool done) {
    const std::string contents = ContentsOf(files);
    EXPECT_TRUE(contents == scenario.New || (!done && contents == scenario.Old))
        << testing::PrintToString(contents);
    EXPECT_TRUE(contents == "none" || contents == "foreign" || TSmallSettings().Load(contents));
    if (!scenario.KeepsOld || contents == scenario.Old) return;
    bool kept = false;
    for (const auto& [name, each] : files.Files())
        kept |= name.starts_with("/home/ExpData-") && each.starts_with(scenario.Old + " (");
    EXPECT_TRUE(kept);
}

TEST(ExpDataSafety, AFailureOrPowerCutAnywhereLeavesTheOldOrTheNewSettings) {
    auto small = std::make_unique<TSmallSettings>();
    const std::string old = small->Saved();
    const auto save = [&small] { WriteExpDataFile(small->Data, File); };
    const TScopedValue silent(ErrorLog().LogAllowed, false);
    const auto scenario = [&](std::string name, std::string before) {
        return TScenario{std::move(name), std::move(before), Changed(1), save};
    };
    std::vector<TScenario> scenarios = {scenario("save over the old file", old),
                                        scenario("first save", "none"),
                                        scenario("save over what nobody can read", "foreign")};
    scenarios.back().KeepsOld = true;
    scenarios.push_back({"load default", old, "none", [] { RemoveFile(File); }});
    // An import is a whole load and a save; half of it is none.
    scenarios.push_back({"import", old, Changed(1, "imported"), [&] {
                             if (!small->Load(Changed(2, "imported"))) throw Exception("no import");
                             save();
                         }});
    for (const TScenario& each : scenarios) {
        for (const bool power : {false, true}) {
            for (int operation = 1;; ++operation) {
                SCOPED_TRACE(Format("%s: operation %d", {each.Name, operation}));
                small = std::make_unique<TSmallSettings>();
                ForgetExpDataFiles();
                TFaultyFileSystem files;
                files.PutFolder("/home");
                if (each.Old != "none") files.PutFile(File, each.Old);
                const TScopedFileSystem scope(files);
                if (each.Old == old) save(); // so that the file is known to be its own
                EXPECT_TRUE(each.Name == "import" || small->Load(Changed(1)));
                power ? files.CutPowerAt(operation) : files.FailAt(operation, EIO);
                const std::string error = ErrorOf(each.Run);
                if (!power) {
                    ExpectWhole(each, files, error.empty() && ContentsOf(files) != each.Old);
                    EXPECT_EQ(files.OpenFiles(), 0);
                }
                const bool reached = files.Log().size() >= static_cast<std::size_t>(operation);
                for (int outcome = 0; power && outcome < files.Outcomes(); ++outcome) {
                    TFaultyFileSystem disk = files;
                    disk.Restart(outcome);
                    ExpectWhole(each, disk, !reached);
                }
                if (testing::Test::HasFailure()) return;
                if (reached) continue;
                EXPECT_EQ(error, "");
                EXPECT_EQ(ContentsOf(files), each.New);
                break;
            }
        }
    }
    ForgetExpDataFiles();
}

TEST(ExpDataSafety, TheEndOfAProgramKeepsWhatAnotherHasSaved) {
    const TTestFolder folder;
    const std::string file = folder.File("ExpData.spc");
    TSmallSettings small;
    WriteExpDataFile(small.Data, file);
    ASSERT_TRUE(ReadExpDataFile(small.Data, file));
    const std::string ours = LoadFileText(file);
    const auto ends = [&](const std::string& saved) {
        SaveFileText(file, saved);
        WriteExpDataFileOnExit(small.Data, file);
        return LoadFileText(file);
    };
    EXPECT_EQ(ends(Changed(1)), Changed(1)); // nothing was changed here
    EXPECT_EQ(ends("nobody's"), ours);
    small.Form.FormPlacement = "ours";
    EXPECT_EQ(ends(Changed(1)), small.Saved());
    RemoveFile(file);
    WriteExpDataFileOnExit(small.Data, file);
    EXPECT_EQ(LoadFileText(file), small.Saved());
    ForgetExpDataFiles();
}

TEST(ExpDataSafety, AFullDiskKeepsTheOldSettings) {
    const TTestFolder folder;
    const std::string file = folder.File("ExpData.spc");
    TSmallSettings small;
    WriteExpDataFile(small.Data, file);
    const std::string old = LoadFileText(file);
    small.Form.FormPlacement = "changed";
    {
        const TFileSizeLimit full(100);
        EXPECT_EQ(ErrorOf([&] { WriteExpDataFile(small.Data, file); }),
                  "EInOutError: cannot write " + file + ": File too large");
    }
    EXPECT_EQ(LoadFileText(file), old);
    WriteExpDataFile(small.Data, file);
    EXPECT_EQ(LoadFileText(file), small.Saved());
}

// --- Processes --------------------------------------------------------------------------------

/// A folder in memory where the system has one: a process that is killed loses nothing that is not
/// on disk yet, and disks are slow.
std::unique_ptr<TTestFolder> QuickFolder() {
    const char* const memory = "/dev/shm";
    if (::access(memory, W_OK) != 0) return std::make_unique<TTestFolder>();
    const char* const usual = std::getenv("TMPDIR");
    const std::string before = usual ? usual : "/tmp";
    ::setenv("TMPDIR", memory, 1);
    auto folder = std::make_unique<TTestFolder>();
    usual ? ::setenv("TMPDIR", before.c_str(), 1) : ::unsetenv("TMPDIR");
    return folder;
}

/// A few states of the settings, of very different sizes, and their files.
struct TStates {
    TStates() {
        for (std::size_t i = 0; i < Settings.size(); ++i) {
            Settings[i].Form.FormPlacement.assign(i * 20'000, static_cast<char>('a' + i));
            Files[i] = Settings[i].Saved();
        }
    }
    bool Has(const std::string& bytes) const {
        return std::find(Files.begin(), Files.end(), bytes) != Files.end();
    }
    std::array<TSmallSettings, 3> Settings;
    std::array<std::string, 3> Files;
};

TEST(ExpDataSafety, AKilledProcessLeavesAWholeFile) {
    const auto folder = QuickFolder();
    const std::string file = folder->File("ExpData.spc");
    TStates states;
    WriteExpDataFile(states.Settings[0].Data, file);
    std::mt19937 random(7);
    std::array<int, 2> atWork{};
    ASSERT_EQ(::pipe(atWork.data()), 0);
    for (int kill = 0; kill < Kills; ++kill) {
        const pid_t process = ::fork();
        if (process == 0)
            for (std::size_t i = 0;; ++i) {
                WriteExpDataFile(states.Settings[i % 3].Data, file);
                if (i == 0 && ::write(atWork[1], "", 1) != 1) ::_exit(1);
            }
        char byte = 0;
        ASSERT_EQ(::read(atWork[0], &byte, 1), 1);
        const timespec moment{0, static_cast<long>(random() % 500'000)};
        ::nanosleep(&moment, nullptr); // no wait for anything: the moment is the test
        ::kill(process, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(process, &status, 0), process);
        ASSERT_TRUE(WIFSIGNALED(status));
        const std::string bytes = LoadFileText(file);
        ASSERT_TRUE(states.Has(bytes)) << bytes.size() << " bytes";
        ASSERT_TRUE(TSmallSettings().Load(bytes));
    }
    for (const int end : atWork) ::close(end);
}

TEST(ExpDataSafety, TwoProcessesSavingInTurnNeverMixTheirSettings) {
    const auto folder = QuickFolder();
    const std::string file = folder->File("ExpData.spc");
    TStates states;
    WriteExpDataFile(states.Settings[0].Data, file);
    const auto saving = [&](std::size_t which) {
        return TChild([&, which] {
            TSmallSettings own;
            for (int i = 0; i < 100; ++i) {
                WriteExpDataFile(states.Settings[which].Data, file);
                if (!ReadExpDataFile(own.Data, file)) return 1;
            }
            return 0;
        });
    };
    const TChild first = saving(1), second = saving(2);
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(states.Has(LoadFileText(file)));
    EXPECT_EQ(first.Wait(), 0);
    EXPECT_EQ(second.Wait(), 0);
    EXPECT_TRUE(states.Has(LoadFileText(file)));
    const auto count = std::distance(std::filesystem::directory_iterator(folder->Path()),
                                     std::filesystem::directory_iterator());
    EXPECT_EQ(count, 1); // nothing was unreadable, nothing is left over
}

} // namespace
} // namespace tarn
