// What was typed and not saved outlives the program.

#include "ErrorOf.h"
#include "TRecovery.h"
#include "TSession.h"
#include "TTestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using TTexts = std::vector<std::string>;

class Recovery : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return Folder.File(name); }
    std::string Root() const { return Path("Recovery"); }
    std::string Write(const std::string& name, std::string_view text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }
    std::string Read(const std::string& name) const { return LoadFileText(Path(name)); }
    /// The texts in all recovery files, of whatever program.
    TTexts Kept() const {
        TTexts texts;
        for (const auto& entry : fs::recursive_directory_iterator(Root()))
            if (entry.path().extension() == ".recovery")
                texts.push_back(ReadRecovery(entry.path().string()).Text);
        std::sort(texts.begin(), texts.end());
        return texts;
    }
    /// The texts that a crash has left for the next program, which ends without deciding on them.
    TTexts Left() const {
        TTexts texts;
        for (const std::string& file : TRecovery(Root()).TakeLeft())
            texts.push_back(ReadRecovery(file).Text);
        std::sort(texts.begin(), texts.end());
        return texts;
    }
    /// Runs a program of its own. Its actions end with Die: what they have made is there until
    /// then.
    static void Crash(const std::function<void(TSession&)>& actions) {
        const pid_t child = ::fork();
        if (child == 0) {
            TSession session;
            actions(session);
            std::_Exit(1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }
    static void Die() { ::raise(SIGKILL); }
    static void Type(TSession& session, const std::string& file, std::string_view text) {
        session.Ide().Modules().OpenFile(file);
        session.Ide().TypeText(text);
    }
    static const std::vector<TSourceBuffer*>& Buffers(TSession& session) {
        return session.Ide().EditWindow().LoadedBuffers();
    }

    TTestFolder Folder;
};

TEST_F(Recovery, AKilledProgramLeavesWhatWasTyped) {
    const std::string unit = Write("Ünit1.pas", "unit\r\n"), other = Write("Other.pas", "other");
    Write("Saved.pas", "saved");
    Crash([&](TSession& session) {
        TRecovery recovery(Root());
        Type(session, unit, "x\0\xFF"s);
        Type(session, Path("Saved.pas"), "y");
        Type(session, other, "z");
        recovery.WriteNow(Buffers(session));
        session.Ide().Modules().Find(Path("Saved.pas"))->Save();
        // Behind the last writing; the one saved stands in both places.
        Type(session, other, "lost");
        Die();
    });
    EXPECT_EQ(Left(), (TTexts{"x\0\xFFunit\r\n"s, "zother"}));

    // Restoring it, a second program is killed.
    Crash([&](TSession& session) {
        TRecovery recovery(Root());
        for (const std::string& file : recovery.TakeLeft())
            recovery.Restore(session.Ide().Modules(), file);
        session.Ide().TypeText("!");
        recovery.WriteNow(Buffers(session));
        Die();
    });
    EXPECT_EQ(Left(), (TTexts{"!zother", "x\0\xFFunit\r\n"s}));

    TSession session;
    TRecovery recovery(Root());
    TIde& ide = session.Ide();
    for (const std::string& file : recovery.TakeLeft())
        ide.RunCommand([&] { recovery.Restore(ide.Modules(), file); });
    ASSERT_EQ(ide.Modules().Count(), 2);
    EXPECT_TRUE(ide.CurrentBuffer()->Modified());
    EXPECT_TRUE(ide.Undo());
    EXPECT_FALSE(ide.CurrentBuffer()->Modified());
    ide.Modules().SaveAll();
    EXPECT_EQ(Read("Ünit1.pas") + Read("Other.pas"), "x\0\xFFunit\r\nother"s);
    recovery.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), TTexts{});
}

TEST_F(Recovery, FollowsTheBuffers) {
    TSession session;
    TIde& ide = session.Ide();
    Write("A.pas", "a");
    Write("B.pas", "b");
    auto now = TRecovery::TTime::clock::now();
    TRecovery recovery(Root());
    /// A second goes by, or as long as a change waits; what is written by then is on disk.
    const auto go = [&](std::chrono::seconds by) {
        recovery.Follow(Buffers(session), now += by);
        recovery.WaitForDisk();
        return Kept();
    };
    constexpr std::chrono::seconds second(1);
    ide.Modules().OpenFile(Path("B.pas"));
    ide.Modules().OpenFile(Path("A.pas"));
    EXPECT_EQ(go(TRecovery::Delay), TTexts{}); // nothing is modified
    ide.TypeText("1");
    EXPECT_EQ(go(second), TTexts{}); // not each key is written
    ide.TypeText("2");
    EXPECT_EQ(go(TRecovery::Delay - second), TTexts{});
    EXPECT_EQ(go(second), TTexts{"12a"}); // as long after the first change, not the last
    EXPECT_EQ(go(second), TTexts{"12a"});
    ide.TypeText("3");
    ide.Modules().OpenFile(Path("B.pas"));
    ide.TypeText("4");
    EXPECT_EQ(go(second), TTexts{"12a"});
    EXPECT_EQ(go(TRecovery::Delay), (TTexts{"123a", "4b"}));
    ide.Undo();
    EXPECT_EQ(go(second), TTexts{"123a"});
    ide.Modules().Close(*ide.Modules().Find(Path("A.pas")), true);
    EXPECT_EQ(go(second), TTexts{});
    // A file that is open again is another text.
    ide.Modules().OpenFile(Path("A.pas"));
    ide.TypeText("5");
    EXPECT_EQ(go(second), TTexts{});
    EXPECT_EQ(go(TRecovery::Delay), TTexts{"5a"});
    ide.CurrentModule()->SaveAs(Path("C.pas"));
    EXPECT_EQ(go(second), TTexts{});
    ide.TypeText("6");
    EXPECT_EQ(go(second), TTexts{}); // it waits, but not for the end of the program
    recovery.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), TTexts{"56a"});
    recovery.Forget(Buffers(session)); // a user who did not want it saved
    EXPECT_EQ(Kept(), TTexts{});
    recovery.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), TTexts{}); // nor later
    ide.TypeText("7");           // when all goes on
    recovery.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), TTexts{"567a"});
}

TEST_F(Recovery, ProgramsAtTheSameTimeKeepApart) {
    TSession session;
    Type(session, Write("A.pas", "a"), "1");
    std::optional<TRecovery> first(Root());
    first->WriteNow(Buffers(session));
    TRecovery second(Root());
    EXPECT_EQ(second.TakeLeft(), TTexts{}); // the first one lives
    second.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), (TTexts{"1a", "1a"}));
    first.reset();
    const TTexts left = second.TakeLeft();
    EXPECT_EQ(left.size(), 1U);
    EXPECT_EQ(second.TakeLeft(), TTexts{}); // they are taken
    EXPECT_EQ(Left(), TTexts{});
    // Two texts of one file: neither is lost before the user decides.
    second.Restore(session.Ide().Modules(), left.front());
    session.Ide().TypeText("2");
    second.WriteNow(Buffers(session));
    EXPECT_EQ(Kept().size(), 2U);
    session.Ide().Modules().SaveAll();
    second.WriteNow(Buffers(session));
    EXPECT_EQ(Kept(), TTexts{});
}

TEST_F(Recovery, FoldersGoWithWhatIsInThem) {
    { const TRecovery recovery(Root()); }
    EXPECT_TRUE(fs::is_empty(Root()));
    Crash([&](TSession&) {
        const TRecoveryFolder folder(Root());
        std::ofstream(fs::path(folder.Own()) / ".tarn-1-0.tmp") << "part";
        Die();
    });
    EXPECT_FALSE(fs::is_empty(Root()));
    EXPECT_EQ(Left(), TTexts{});
    EXPECT_TRUE(fs::is_empty(Root()));
    Write("file", "");
    EXPECT_EQ(ErrorOf([&] { const TRecovery recovery(Path("file/Recovery")); }),
              "EInOutError: cannot make the folder " + Path("file/Recovery") + ": Not a directory");
}

TEST_F(Recovery, ADiskThatTakesNothing) {
    TSession session;
    Type(session, Write("A.pas", "a"), "1");
    TRecovery recovery(Root());
    fs::remove_all(Root());
    recovery.WriteNow(Buffers(session));
    EXPECT_TRUE(recovery.Error().starts_with("cannot write " + Root())) << recovery.Error();
    fs::create_directories(fs::path(recovery.OwnFolder()));
    recovery.WriteNow(Buffers(session)); // it is tried again
    EXPECT_EQ(recovery.Error(), "");
    EXPECT_EQ(Kept(), TTexts{"1a"});
}

TEST_F(Recovery, FilesThatAreDamaged) {
    const TRecoveryCopy copy{"/a\n/Unit1.pas", TFileIdentity{1, 2, 3, -4}, 4, "text"};
    const std::string head = "TarnExperts recovery 1\nsource 1 2 3 -4\nname 13\n/a\n/Unit1.pas\n";
    EXPECT_EQ(RecoveryHead(copy), head + "text 4\n");
    const std::string file = Write("1.recovery", head + "text 4\ntext");
    for (const bool whole : {false, true}) {
        const TRecoveryCopy read = ReadRecovery(file, whole);
        EXPECT_EQ(read.FileName, copy.FileName);
        EXPECT_EQ(read.Identity, copy.Identity);
        EXPECT_EQ(read.Text, whole ? "text" : "");
    }
    const std::string none = "TarnExperts recovery 1\nsource none\nname 1\na\n";
    EXPECT_EQ(ReadRecovery(Write("1.recovery", none + "text 0\n")).Identity, std::nullopt);
    for (const std::string& text :
         {""s, head, head + "text 4\ntex", head + "text 4\ntexts", head + "text -1\n",
          "TarnExperts recovery 2\n"s, "TarnExperts recovery 1\nsource 1 2 3\nname 1\na\ntext 0\n"s,
          "TarnExperts recovery 1\nsource none\nname 18446744073709551615\na\ntext 0\n"s,
          "TarnExperts recovery 1\nsource none\nname 99\na\ntext 0\n"s})
        for (const bool whole : {false, true}) {
            Write("1.recovery", text);
            EXPECT_EQ(ErrorOf([&] { ReadRecovery(file, whole); }),
                      "EConvertError: " + file + " is damaged")
                << text;
        }
}

} // namespace
} // namespace tarn
