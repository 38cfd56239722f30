// The error log: what an entry says, how the file grows, and a misbehaving expert that it survives.

#include "TPackHarness.h"
#include "qsAppUtils.h"
#include "rtl/DateUtils.h"

#include <algorithm>
#include <fcntl.h>
#include <iterator>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using TStrs = std::vector<std::string>;

constexpr std::string_view WholeStartUp = "0 1 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18";
constexpr std::string_view BothExperts = "ExpertB\r\nExpertA";

/// A running clock that stands still, and an IDE.
class ErrorLogTest : public testing::Test {
protected:
    ErrorLogTest() {
        FClock = SetClock([] { return EncodeDateTime({2026, 7, 4, 15, 5, 9}); });
        ErrorLog() = {};
    }
    ~ErrorLogTest() override { SetClock(FClock); }

    fs::path LogFile() const { return Ide.Dir / "ExpError.log"; }
    std::string LogText() const {
        std::ifstream stream(LogFile(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void Raise(TObject* sender, std::string_view message = "oops") {
        try {
            throw Exception(message);
        } catch (...) {
            Ide.App->HandleException(sender);
        }
    }
    TStrs DialogTexts() const {
        TStrs texts;
        for (const auto& dialog : Ide.OS.Dialogs()) texts.push_back(dialog.Text);
        return texts;
    }
    /// The files in the package's directory, with their sizes.
    std::string FolderText() const {
        TStrs files;
        for (const auto& entry : fs::recursive_directory_iterator(Ide.Dir))
            files.push_back(entry.path().filename().string() + " " +
                            (entry.is_regular_file()
                                 ? IntToStr(static_cast<std::int64_t>(entry.file_size()))
                                 : "-"));
        std::sort(files.begin(), files.end());
        std::string text;
        for (const std::string& file : files) text += file + "\n";
        return text;
    }

    TSmallIDE Ide;

private:
    TClock FClock;
};

std::string Entry(std::string_view message, std::string_view source, std::string_view traces = {},
                  std::string_view className = "Exception") {
    return Format("\r\n[ 7/4/2026 3:05:09 PM ]\r\nException %s in module pack.module.\r\n%s.\r\n"
                  "Source object: %s%s\r\n",
                  {className, message, source, traces});
}

std::string Trace(std::string_view what, std::string_view marks, std::string_view experts) {
    return Format("\r\n< Start %0:s >\r\n%1:s\r\n%2:s\r\n< Finish %0:s >", {what, marks, experts});
}

TEST_F(ErrorLogTest, MisbehavingExpert) {
    const std::string started = Trace("constructor", WholeStartUp, BothExperts);
    const struct {
        const char* Where;
        std::string Message;
        bool Starts;
        std::string Source;
        std::string Traces;
    } cases[] = {
        {"A.Create", "cannot create A", false, "TExpManager",
         Trace("constructor", "0 1 3 4 5 6 7 8 9", "")},
        {"B.Create", "cannot create B", false, "TExpManager",
         Trace("constructor", "0 1 3 4 5 6 7 8 9", "ExpertA")},
        {"B.Init", "Init failed in B", false, "TExpManager",
         Trace("constructor", "0 1 3 4 5 6 7 8 9 10 11", BothExperts)},
        {"A.Load", "Load failed in A", false, "TExpManager",
         Trace("constructor", "0 1 3 4 5 6 7 8 9 10 11 12 13 14", BothExperts)},
        {"A.MenuNotification", "MenuNotification failed in A", true, "TApplication", started},
        {"B.Run", "Run failed in B", true, "qsTarnExpMenuItem2: TExpMenuItem", started},
        {"A.Update", "Update failed in A", true, "TApplication", started},
        {"B.BeforeDestruction", "BeforeDestruction failed in B", true, "TExpManager",
         started + Trace("destructor", "0 1 3 4 5", "ExpertA\r\nExpertB")},
    };
    const std::string menu = Ide.MenuText();
    Ide.Start();
    Ide.App->ProcessMessages();
    const std::string menuWithPack = Ide.MenuText();
    Ide.Stop();
    std::size_t dialogs = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Where);
        const std::string where = c.Where;
        fs::remove(LogFile());
        TakeEvents();
        TTestExpert::FailIn = where;
        Register();
        Ide.App->ProcessMessages();
        EXPECT_EQ(TExpManager::Instance() != nullptr, c.Starts);
        if (where == "A.Update") Ide.App->Idle();
        if (where == "B.Run") {
            TMenuItem* const item = TExpManager::Instance()->TopItem()->Items(1);
            try {
                item->Click();
            } catch (...) {
                Ide.App->HandleException(item);
            }
        }
        if (where == "B.BeforeDestruction") Ide.Stop();
        EXPECT_EQ(LogText(), Entry(c.Message, c.Source, c.Traces));
        EXPECT_EQ(Ide.OS.Dialogs().size(), ++dialogs);
        EXPECT_EQ(Ide.LastDialog(), c.Message);

        // Everything comes to its end, and a fresh start works.
        TTestExpert::FailIn.clear();
        Ide.Stop();
        const TStrs events = TakeEvents();
        for (const std::string name : {"A", "B"}) {
            const auto count = [&](const std::string& what) {
                return std::count(events.begin(), events.end(), name + what);
            };
            const int unborn = where == name + ".Create" ? 1 : 0;
            EXPECT_EQ(count(".Destroy"), count(".Create") - unborn) << name;
        }
        EXPECT_EQ(Ide.MenuText(), menu);
        EXPECT_EQ(Ide.OS.PendingMessages(), 0u);
        EXPECT_FALSE(Ide.App->OnException);
        fs::remove(LogFile());
        Register();
        Ide.App->ProcessMessages();
        ASSERT_NE(TExpManager::Instance(), nullptr);
        EXPECT_EQ(Ide.MenuText(), menuWithPack);
        EXPECT_EQ(TExpManager::Instance()->ExpObjects()->Count(), 2);
        Ide.Stop();
        EXPECT_FALSE(fs::exists(LogFile()));
        EXPECT_EQ(Ide.OS.Dialogs().size(), dialogs);
    }
}

TEST_F(ErrorLogTest, SourcesAndOneTrace) {
    Raise(nullptr, "before the start"); // nothing logs yet
    Ide.Start();
    TComponent unnamed;
    TForm named;
    named.SetName("Gallery");
    TObject plain;
    Raise(nullptr, "first");
    Raise(nullptr, "second.");
    Raise(&unnamed, "third\nwith a line\nmore");
    Raise(&named, "fourth");
    Raise(&plain, "fifth");
    EXPECT_EQ(LogText(),
              Entry("first", "Unknown", Trace("constructor", WholeStartUp, BothExperts)) +
                  Entry("second", "Unknown") + Entry("third\nwith a line\nmore", "TComponent") +
                  Entry("fourth", "Gallery: TForm") + Entry("fifth", "TObject"));
    TExpManager::Instance()->Data()->SetErrorLogAllowed(false);
    Raise(nullptr, "unlogged");
    EXPECT_EQ(LogText().find("unlogged"), std::string::npos);
    EXPECT_EQ(Ide.LastDialog(), "unlogged");
}

TEST_F(ErrorLogTest, Limit) {
    constexpr std::uint32_t wraps = 4194305; // kilobytes; 1024 bytes in 32 bits
    const struct {
        std::uint32_t Limit;
        std::uintmax_t Size;
        bool Empties;
    } cases[] = {
        {0, 300000, false},
        {50, 51199, false},
        {50, 51200, true},
        {50, 51201, true},
        {wraps, 2000, false},
        {1, 4294967296 + 1023, false},
        {1, 4294967296 + 1024, true},
    };
    TExpManager* const manager = Ide.Start();
    Raise(nullptr); // takes the trace
    const std::string entry = Entry("oops", "Unknown");
    for (const auto& c : cases) {
        SCOPED_TRACE(Format("limit %d KB, size %d", {c.Limit, c.Size}));
        std::ofstream(LogFile()).close();
        fs::resize_file(LogFile(), c.Size); // a hole: takes no space
        manager->Data()->SetMaxLogSize(c.Limit);
        Raise(nullptr);
        ASSERT_EQ(fs::file_size(LogFile()), (c.Empties ? 0 : c.Size) + entry.size());
        if (c.Empties) {
            EXPECT_EQ(LogText(), entry);
        }
    }
}

TEST_F(ErrorLogTest, UnwritableLog) {
    const struct {
        std::string Name;
        std::function<void()> Prepare;
        std::string Reason;
    } cases[] = {
        {"folder", [this] { fs::create_directory(LogFile()); }, "is a directory"},
        {"full disk", [this] { fs::create_symlink("/dev/full", LogFile()); },
         "no space left on device"},
        {"no folder",
         [this] { fs::create_symlink(Ide.Dir / "missing" / "ExpError.log", LogFile()); },
         "no such file or directory"},
    };
    Ide.Start();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        fs::remove(LogFile());
        c.Prepare();
        const std::string before = FolderText();
        const std::size_t shown = Ide.OS.Dialogs().size();
        Raise(nullptr);
        const TStrs texts = DialogTexts();
        // The error first, then what became of the log.
        EXPECT_EQ(TStrs(texts.begin() + static_cast<std::ptrdiff_t>(shown), texts.end()),
                  (TStrs{"oops", "cannot write to " + LogFile().string() + ": " + c.Reason}));
        EXPECT_EQ(FolderText(), before);
        EXPECT_EQ(ErrorLog().ConstructorTrace, "");
    }
    fs::remove(LogFile());
    Raise(nullptr);
    EXPECT_EQ(LogText(), Entry("oops", "Unknown"));
}

TEST_F(ErrorLogTest, ErrorsThatExpertsCatch) {
    TExpManager* const manager = Ide.Start();
    ErrorLog().ClearTraces();
    const auto record = [this](TMessage& message) {
        Log(Format("message %x, logged %d", {message.Msg, LogText().size()}));
    };
    const TMessageWindow capturing(TWndMethod::Calling(record));
    TakeEvents();
    const auto check = [&](auto error) {
        try {
            throw error;
        } catch (...) {
            CheckAddErrorLog(manager);
        }
        return TakeEvents();
    };
    Ide.OS.SetCapture(capturing.Handle());
    EXPECT_EQ(check(Exception("of the family")), TStrs{});
    EXPECT_EQ(check(EConvertError("of the family")), TStrs{});
    EXPECT_EQ(LogText(), "");
    EXPECT_EQ(check(std::runtime_error("foreign")), TStrs{"message 1F, logged 0"});
    Ide.OS.SetCapture(0);
    EXPECT_EQ(check(5), TStrs{});
    CheckAddErrorLog(manager); // nothing is being handled
    const std::string both = Entry("foreign", "TExpManager", "", "External exception") +
                             Entry("unknown error", "TExpManager");
    EXPECT_EQ(LogText(), both);
    manager->Data()->SetErrorLogAllowed(false);
    check(std::runtime_error("unlogged"));
    EXPECT_EQ(LogText(), both);
    EXPECT_EQ(Ide.OS.Dialogs().size(), 0u);
}

TEST_F(ErrorLogTest, HandlerIsNeverItsOwnPredecessor) {
    TExpManagerData& data = *Ide.Start()->Data();
    ErrorLog().ClearTraces();
    // Somebody puts a handler in front, and keeps it there while the log is switched off and on.
    const TExceptionEvent logging = Ide.App->OnException;
    const auto front = [logging](TObject* sender, const std::exception& error) {
        logging(sender, error);
    };
    data.SetErrorLogAllowed(false);
    Ide.App->OnException = TExceptionEvent::Calling(front);
    data.SetErrorLogAllowed(false); // is off already, and leaves the handler of others alone
    EXPECT_EQ(Ide.App->OnException, TExceptionEvent::Calling(front));
    data.SetErrorLogAllowed(true);
    EXPECT_EQ(Ide.App->OnException, logging);
    Raise(nullptr);
    EXPECT_EQ(LogText(), Entry("oops", "Unknown"));
    EXPECT_EQ(DialogTexts(), TStrs{"oops"});
    // Nor when its own handler stands there already.
    data.SetErrorLogAllowed(false);
    Ide.App->OnException = logging;
    data.SetErrorLogAllowed(true);
    Raise(nullptr);
    EXPECT_EQ(DialogTexts(), (TStrs{"oops", "oops"}));
    Ide.Stop();
    EXPECT_NE(Ide.App->OnException, logging);
}

/// A small disk in the place of a folder. Only this process sees it: it goes with it at the latest.
class TSmallDisk {
public:
    explicit TSmallDisk(const fs::path& folder) : FFolder(folder.string()) {
        FMounted = ::unshare(CLONE_NEWNS) == 0 &&
                   ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   ::mount("none", FFolder.c_str(), "tmpfs", 0, "size=8k") == 0;
    }
    TSmallDisk(const TSmallDisk&) = delete;
    TSmallDisk& operator=(const TSmallDisk&) = delete;
    ~TSmallDisk() {
        if (FMounted) ::umount2(FFolder.c_str(), MNT_DETACH);
    }
    bool Mounted() const { return FMounted; }
    void MakeReadOnly() const {
        ASSERT_EQ(::mount("none", FFolder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    }

private:
    std::string FFolder;
    bool FMounted = false;
};

TEST_F(ErrorLogTest, DiskThatFillsUp) {
    TExpManager* const manager = Ide.Start();
    ErrorLog().ClearTraces();
    const TSmallDisk disk(Ide.Dir);
    if (!disk.Mounted()) GTEST_SKIP() << "mounting a disk takes a right that this user has not";
    const std::string message(900, 'x'), entry = Entry(message, "Unknown");
    const std::string refused = "cannot write to " + LogFile().string() + ": ";
    const std::uintmax_t capacity = fs::space(Ide.Dir).capacity;
    std::string whole;
    TStrs shown;
    for (; whole.size() <= capacity; whole += entry) {
        Raise(nullptr, message);
        shown.push_back(message);
    }
    // The last one did not get in as a whole, and that is told; those before it are as they were.
    shown.push_back(refused + "no space left on device");
    EXPECT_EQ(DialogTexts(), shown);
    EXPECT_EQ(LogText(), whole.substr(0, capacity));
    // The limit makes room.
    manager->Data()->SetMaxLogSize(8);
    Raise(nullptr, message);
    EXPECT_EQ(LogText(), entry);
    disk.MakeReadOnly();
    Raise(nullptr);
    shown.insert(shown.end(), {message, "oops", refused + "read-only file system"});
    EXPECT_EQ(DialogTexts(), shown);
    EXPECT_EQ(LogText(), entry);
}

TEST_F(ErrorLogTest, ProcessesWriteAtTheSameTime) {
    constexpr std::size_t entries = 300, size = 3000, written = size + 2;
    const auto write = [this](char letter, std::uint64_t limit) {
        for (std::size_t i = 0; i < entries; ++i)
            AddLogData(LogFile().string(), std::string(size, letter), limit);
    };
    for (const std::uint64_t limit : {0, 10000}) {
        fs::remove(LogFile());
        const pid_t other = ::fork();
        if (other == 0) {
            try {
                write('b', limit);
                ::_exit(0);
            } catch (...) {
                ::_exit(1);
            }
        }
        write('a', limit);
        int status = -1;
        EXPECT_EQ(::waitpid(other, &status, 0), other);
        EXPECT_EQ(status, 0);
        std::ifstream stream(LogFile(), std::ios::binary);
        std::size_t whole = 0;
        for (std::string line; std::getline(stream, line);)
            if (line == std::string(size, line.front()) + "\r") ++whole;
        const std::uintmax_t kept = fs::file_size(LogFile());
        EXPECT_EQ(kept, whole * written);
        if (limit == 0) {
            EXPECT_EQ(whole, 2 * entries);
        } else {
            // The last entry is there; each process may have found the file below the limit.
            EXPECT_TRUE(whole > 0 && kept < limit + 2 * written) << kept;
        }
    }
}

TEST_F(ErrorLogTest, EntryGoesOutInOnePiece) {
    // A pipe of one page with room for the data but not for the line end.
    const std::string pipe = LogFile().string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THROW(AddLogData(pipe, "x", 0), EInOutError); // nobody reads: no waiting for a reader
    const int reader = ::open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    const ssize_t page = ::fcntl(reader, F_SETPIPE_SZ, 1), room = 100, full = page - room;
    ASSERT_EQ(::write(reader, std::string(full, '.').data(), full), full);
    EXPECT_THROW(AddLogData(pipe, std::string(room, 'x'), 0), EInOutError);
    std::string held(2 * page, '\0');
    EXPECT_EQ(::read(reader, held.data(), held.size()), full);
    ::close(reader);
}

} // namespace
} // namespace tarn
