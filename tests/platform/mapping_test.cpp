#include "ErrorOf.h"
#include "TChild.h"
#include "TTestFolder.h"
#include "os/TSystemHeap.h"
#include "os/TSystemMapping.h"
#include "os/portable/GuardedCopy.h"
#include "os/portable/TPortableOS.h"
#include "rtl/OSError.h"
#include "rtl/TStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace tarn {
namespace {

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

// --- Heaps ------------------------------------------------------------------------------------

TEST(Heap, AFixedOneIsFullAtItsMaximum) {
    TPortableOS os;
    const auto heap = os.CreateHeap(1000, 10'000);
    constexpr THeapFlags quiet;
    void* const a = heap->Allocate(quiet, 6000);
    ASSERT_TRUE(a);
    EXPECT_EQ(heap->Compact(), 4000u);
    EXPECT_FALSE(heap->Allocate(quiet, 4001));
    EXPECT_EQ(errno, ENOMEM);
    void* b = heap->Allocate(quiet, 4000);
    ASSERT_TRUE(b);
    EXPECT_EQ(heap->Compact(), 0u);
    std::memset(b, 'b', 4000);
    EXPECT_FALSE(heap->Reallocate(quiet, b, 4001));
    EXPECT_EQ(ErrorOf([&] { (void)heap->Reallocate({hfGenerateExceptions}, b, 4001); }),
              "EOutOfMemory: out of memory: 4001 bytes wanted");
    EXPECT_EQ(std::count(static_cast<char*>(b), static_cast<char*>(b) + 4000, 'b'), 4000);
    heap->Free(a);
    heap->Free(nullptr);
    b = heap->Reallocate(quiet, b, 10'000); // the other's place is free again
    EXPECT_TRUE(b);
    b = heap->Reallocate(quiet, b, 10);
    EXPECT_EQ(heap->Compact(), 9990u);
    EXPECT_TRUE(heap->Allocate(quiet, 9990)); // all that is left goes with the heap
}

TEST(Heap, ZeroesWhatIsNew) {
    TPortableOS os;
    for (TSystemHeap* const heap : {&os.ProcessHeap(), os.CreateHeap(0, 0).release()}) {
        for (const std::size_t size : {100u, 300'000u}) {
            // Dirty memory first, which the next block is likely to get.
            void* block = heap->Allocate({}, size);
            std::memset(block, 'x', size);
            heap->Free(block);
            auto* bytes = static_cast<char*>(heap->Allocate({hfZeroMemory}, size));
            EXPECT_EQ(std::count(bytes, bytes + size, '\0'), std::ptrdiff_t(size));
            std::memset(bytes, 'x', size);
            bytes = static_cast<char*>(heap->Reallocate({hfZeroMemory}, bytes, size / 2));
            bytes = static_cast<char*>(heap->Reallocate({hfZeroMemory}, bytes, size));
            EXPECT_EQ(std::count(bytes, bytes + size, 'x'), std::ptrdiff_t(size / 2));
            EXPECT_EQ(std::count(bytes + size / 2, bytes + size, '\0'), std::ptrdiff_t(size / 2));
            heap->Free(bytes);
        }
        EXPECT_GT(heap->Compact(), 0u);
        if (heap != &os.ProcessHeap()) delete heap;
    }
    EXPECT_EQ(&TPortableOS().ProcessHeap(), &os.ProcessHeap());
    EXPECT_EQ(ErrorOf([&] { os.CreateHeap(2, 1); }),
              "EOSError: cannot create a heap: invalid argument");
    EXPECT_EQ(ErrorOf([&] { os.CreateHeap(SIZE_MAX, 0); }),
              "EOutOfMemory: out of memory: 18446744073709551615 bytes wanted");
}

// --- Mappings ---------------------------------------------------------------------------------

std::vector<THandle> OpenHandles() {
    std::vector<THandle> handles;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        handles.push_back(std::stoi(entry.path().filename()));
    return handles;
}

/// Handles that a program would get that this one starts.
std::ptrdiff_t InheritedHandles() {
    const std::vector<THandle> handles = OpenHandles();
    return std::count_if(handles.begin(), handles.end(), [](THandle handle) {
        const int flags = ::fcntl(handle, F_GETFD);
        return flags >= 0 && (flags & FD_CLOEXEC) == 0;
    });
}

struct Mapping : testing::Test {
    TTestFolder Folder;
    TPortableOS System;
    std::string Name = Folder.File("f");

    void WriteFile(std::int64_t size, char fill) const {
        TFileStream(Name, fmCreate).WriteText(std::string(static_cast<std::size_t>(size), fill));
    }
    std::unique_ptr<TSystemMapping> Map(std::int64_t maximum, TMapAccess access = maReadWrite) {
        const TFileStream file(Name, access == maReadOnly ? fmOpenRead : fmOpenReadWrite);
        return System.Map(TMapFile{file.Handle(), Name, maximum, access});
    }
    static std::string Text(const TSystemMapping& mapping, std::int64_t offset,
                            std::int64_t count) {
        std::string text(static_cast<std::size_t>(count), '?');
        mapping.Read(offset, text.data(), count);
        return text;
    }
    std::string Lost(std::string_view verb, int offset) const {
        return Format("EOSError: cannot %s %s at offset %d: its bytes are lost, the file has been "
                      "shortened or the disk is full or broken",
                      {verb, Name, offset});
    }
    /// A name that no other run of the tests uses.
    std::string AreaName() const { return Folder.Path() + "/\xC3\xA4 %"; }
};

TEST_F(Mapping, HasTheSizeAskedFor) {
    const struct {
        std::int64_t FileSize, Maximum, Mapped, FileSizeAfter;
    } rows[] = {{5, 0, 5, 5}, {5, 3, 3, 5}, {5, 5, 5, 5}, {5, 9000, 9000, 9000}, {0, 7, 7, 7}};
    for (const auto& row : rows) {
        WriteFile(row.FileSize, 'x');
        const auto mapping = Map(row.Maximum);
        EXPECT_EQ(mapping->Size(), row.Mapped);
        EXPECT_EQ(std::int64_t(std::filesystem::file_size(Name)), row.FileSizeAfter);
        mapping->Write(row.Mapped - 1, "!", 1); // the last byte
        mapping->Flush();
        EXPECT_EQ(Text(*mapping, row.Mapped - 1, 1), "!");
    }
}

TEST_F(Mapping, FailuresLeaveNothingOpenAndNoFileLonger) {
    WriteFile(0, ' ');
    TFileStream readOnly(Name, fmOpenRead);
    TFileStream file(Folder.File("g"), fmCreate);
    file.WriteText("12345");
    const std::string area = AreaName();
    const auto map = [&](THandle handle, std::int64_t maximum, TMapAccess access) {
        return [this, handle, maximum, access] {
            System.Map(TMapFile{handle, "F", maximum, access});
        };
    };
    const struct {
        std::function<void()> Call;
        std::string Error;
    } rows[] = {
        {map(readOnly.Handle(), 0, maReadOnly), "cannot map F: the file is empty"},
        {map(NoHandle, 0, maReadOnly), "cannot tell the size of F: bad file descriptor"},
        {map(readOnly.Handle(), 10, maReadWrite), "cannot make F longer: bad file descriptor"},
        {map(file.Handle(), Most, maReadWrite), "cannot make F longer: file too large"},
        {[&] {
             System.Map(TMapArea{area, Most, maReadWrite});
         },
         "cannot map memory area " + area + ": cannot allocate memory"},
        {[&] {
             System.Map(TMapArea{"", -1, maReadWrite});
         },
         "cannot make a memory area: invalid argument"},
        {[&] {
             System.Map(TMapArea{std::string(300, 'a'), 1, maReadWrite});
         },
         "cannot open memory area " + std::string(300, 'a') + ": invalid argument"},
    };
    const std::vector<THandle> handles = OpenHandles();
    for (const auto& row : rows) EXPECT_EQ(ErrorOf(row.Call), "EOSError: " + row.Error);
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_EQ(file.Size(), 5);
    // The failed area is not there to be joined.
    EXPECT_EQ(System.Map(TMapArea{area, 10, maReadWrite})->Size(), 10);
    // A file that is too short for its size to be mapped, after it has grown.
    TFileStream writeOnly(Folder.File("g"), fmOpenWrite);
    EXPECT_EQ(ErrorOf(map(writeOnly.Handle(), 10, maReadWrite)),
              "EOSError: cannot map F: permission denied");
    EXPECT_EQ(file.Size(), 5);
}

TEST_F(Mapping, AFileThatAnotherProcessShortensIsAnError) {
    const auto page = static_cast<std::int64_t>(::sysconf(_SC_PAGESIZE));
    WriteFile(4 * page, 'x');
    const auto mapping = Map(0);
    EXPECT_EQ(TChild([&] { return ::truncate(Name.c_str(), page + 10); }).Wait(), 0);
    const auto read = [&](std::int64_t offset, std::int64_t count) {
        return ErrorOf([&] { Text(*mapping, offset, count); });
    };
    for (int round = 0; round < 2; ++round) { // a caught fault does not disarm the guard
        EXPECT_EQ(read(2 * page, 10), Lost("read", int(2 * page)));
        EXPECT_EQ(read(0, 4 * page), Lost("read", 0));
        EXPECT_EQ(read(page + 10, 1), Lost("read", int(page + 10))); // no fault, but zeros
        EXPECT_EQ(read(page, 11), Lost("read", int(page)));
        EXPECT_EQ(Text(*mapping, page, 10), "xxxxxxxxxx");
        EXPECT_EQ(ErrorOf([&] { mapping->Write(3 * page, "y", 1); }),
                  Lost("write to", int(3 * page)));
        EXPECT_EQ(ErrorOf([&] { mapping->Write(page + 9, "yy", 2); }),
                  Lost("write to", int(page + 9)));
        mapping->Write(page + 9, "x", 1);
    }
    const char zeros[3] = "\0\0";
    mapping->Write(0, zeros, 2); // zeros that are the file's own
    EXPECT_EQ(Text(*mapping, 0, 2), std::string(2, '\0'));
}

TEST_F(Mapping, ReleasesItsViewAndKeepsItsHandlesFromOtherPrograms) {
    WriteFile(5, 'x');
    const auto mapped = [&] {
        return TFile("/proc/self/maps", fmOpenRead).ReadAll().find(Name) != std::string::npos;
    };
    const std::ptrdiff_t inherited = InheritedHandles();
    {
        const TFileStream file(Name, fmOpenRead);
        const auto mapping = Map(0);
        const auto named = System.Map(TMapArea{AreaName(), 1, maReadWrite});
        const auto nameless = System.Map(TMapArea{"", 1, maReadWrite});
        EXPECT_TRUE(mapped());
        EXPECT_EQ(InheritedHandles(), inherited);
    }
    EXPECT_FALSE(mapped());
}

/// A page of a file that has lost it, behind one that it has. The file goes, with its folder, since
/// the process will end without cleaning up.
const char* LostPage(const std::string& name, std::int64_t page) {
    const TFileStream file(name, fmOpenRead);
    void* const view = ::mmap(nullptr, static_cast<std::size_t>(3 * page), PROT_READ, MAP_SHARED,
                              file.Handle(), 0);
    if (::truncate(name.c_str(), page) != 0) return nullptr;
    std::filesystem::remove_all(std::filesystem::path(name).parent_path());
    return static_cast<const char*>(view) + page;
}

/// A copy so deep in the stack that nothing after it writes over what it leaves there.
bool CopyOneByteDeep(const char* source, const TGuardedRange& range) {
    volatile char room[1 << 16];
    char byte = 0;
    room[0] = GuardedCopy(&byte, source, 1, range);
    return room[0] != 0;
}

TEST_F(Mapping, OtherFaultsGoToTheFormerHandler) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process where no handler stands yet
    const auto page = ::sysconf(_SC_PAGESIZE);
    const auto size = static_cast<std::size_t>(page);
    const auto end = [](int) { ::_exit(7); };
    using TAct = std::function<void(const char*)>;
    const auto touch = [](const volatile char* lost) { (void)lost[0]; };
    const TAct acts[] = {
        touch,
        [&](const char* lost) {
            CopyOneByteDeep(lost, {lost - size, size});
        },
        [&](const char* lost) {
            CopyOneByteDeep(lost, {lost + size, size});
        },
        // Outside of a copy, after one that went well and one that did not.
        [&](const char* lost) {
            if (CopyOneByteDeep(lost - 1, {lost - size, 2 * size})) touch(lost);
        },
        [&](const char* lost) {
            if (!CopyOneByteDeep(lost, {lost, 1})) touch(lost);
        },
    };
    for (const TAct& act : acts)
        for (const bool withInfo : {false, true})
            EXPECT_EXIT(
                {
                    struct sigaction action {};
                    action.sa_handler = end;
                    if (withInfo) {
                        action.sa_flags = SA_SIGINFO;
                        action.sa_sigaction = [](int, siginfo_t* info, void*) {
                            ::_exit(info->si_addr ? 7 : 8);
                        };
                    }
                    ::sigaction(SIGBUS, &action, nullptr);
                    InstallCopyGuard();
                    WriteFile(3 * page, 'x');
                    act(LostPage(Name, page));
                },
                testing::ExitedWithCode(7), "");
    EXPECT_DEATH(
        {
            std::signal(SIGBUS, SIG_DFL);
            InstallCopyGuard();
            WriteFile(3 * page, 'x');
            touch(LostPage(Name, page));
        },
        "");
}

TEST_F(Mapping, ANamedAreaIsSharedByProcessesAndGoesWithItsLastUser) {
    const std::string name = AreaName();
    const TMapArea area{name, 6, maReadWrite};
    auto first = System.Map(area);
    EXPECT_EQ(Text(*first, 0, 6), std::string(6, '\0'));
    first->Write(0, "parent", 6);
    // Joined with its own size, whatever is asked for; reading only is enough.
    EXPECT_EQ(TChild([&] {
                  const auto joined = System.Map(TMapArea{name, 100, maReadWrite});
                  const auto short3 = System.Map(TMapArea{name, 3, maReadOnly});
                  if (joined->Size() != 6 || short3->Size() != 3) return 1;
                  if (Text(*joined, 0, 6) != "parent" || Text(*short3, 0, 3) != "par") return 2;
                  joined->Write(0, "child!", 6);
                  return 0;
              }).Wait(),
              0);
    EXPECT_EQ(Text(*first, 0, 6), "child!");

    // What a child inherits is not its own: it does not end the area.
    EXPECT_EQ(TChild([&] { return first.reset(), 0; }).Wait(), 0);
    auto second = System.Map(area);
    first.reset();
    EXPECT_EQ(Text(*System.Map(area), 0, 6), "child!");
    second.reset();
    EXPECT_EQ(Text(*System.Map(area), 0, 6), std::string(6, '\0'));

    // A user that dies leaves the name, not its contents.
    EXPECT_EQ(TChild([&] {
                  auto* const lost = System.Map(TMapArea{name, 50, maReadWrite}).release();
                  lost->Write(0, "lost", 4);
                  return 0;
              }).Wait(),
              0);
    const auto fresh = System.Map(area);
    EXPECT_EQ(fresh->Size(), 6);
    EXPECT_EQ(Text(*fresh, 0, 6), std::string(6, '\0'));
    // A name that is spelled like the system's name of this one is another, and those without a
    // name are alone.
    const std::string alike = std::string(name).replace(name.find(' '), 1, "%20");
    EXPECT_EQ(System.Map(TMapArea{alike, 99, maReadWrite})->Size(), 99);
    fresh->Write(0, "fresh!", 6);
    EXPECT_EQ(TChild([&] {
                  constexpr uid_t nobody = 65534;
                  if (::setuid(nobody) != 0) return 0; // another user can be none but by the first
                  for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
                      if (entry.path().string().find(Folder.Path().substr(6)) !=
                              std::string::npos &&
                          ::access(entry.path().c_str(), R_OK) == 0)
                          return 1;
                  return Text(*System.Map(area), 0, 6) == std::string(6, '\0') ? 0 : 2;
              }).Wait(),
              0);
    EXPECT_EQ(Text(*System.Map(TMapArea{"", 6, maReadWrite}), 0, 6), std::string(6, '\0'));
}

/// Processes that open and close an area at the same moments: whoever has it has the one that goes
/// by its name.
TEST_F(Mapping, AnAreaMayComeAndGoAtOnce) {
    constexpr int processes = 4;
    const TMapArea area{AreaName(), processes, maReadWrite};
    const auto comeAndGo = [&](int process) {
        int strangers = 0;
        for (int i = 0; i < 3000; ++i) {
            const auto mapping = System.Map(area);
            const char mark = static_cast<char>('a' + i % 26);
            mapping->Write(process, &mark, 1);
            if (i % 2) ::sched_yield(); // the others come and go meanwhile
            strangers += Text(*System.Map(area), process, 1)[0] != mark;
        }
        return strangers > 0 ? 1 : 0;
    };
    std::vector<TChild> children;
    children.reserve(processes);
    for (int i = 0; i < processes; ++i) children.emplace_back([&] { return comeAndGo(i); });
    for (const TChild& child : children) EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Text(*System.Map(area), 0, processes), std::string(processes, '\0')); // none is left
}

} // namespace
} // namespace tarn
