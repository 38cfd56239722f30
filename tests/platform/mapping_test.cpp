#include "ErrorOf.h"
#include "TChild.h"
#include "TTestFolder.h"
#include "os/TSystemHeap.h"
#include "os/TSystemMapping.h"
#include "os/portable/TPortableOS.h"
#include "rtl/OSError.h"
#include "rtl/TStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

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

std::size_t OpenHandles() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
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
    const std::size_t handles = OpenHandles();
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

/// Touches a page that its file has lost, outside of any copy.
void TouchLostPage(const std::string& name) {
    const TFileStream file(name, fmOpenRead);
    const auto* const view = static_cast<const volatile char*>(
        ::mmap(nullptr, 1, PROT_READ, MAP_SHARED, file.Handle(), 0));
    if (::truncate(name.c_str(), 0) == 0) (void)view[0];
}

TEST_F(Mapping, OtherFaultsGoToTheFormerHandler) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process where no handler stands yet
    EXPECT_EXIT(
        {
            std::signal(SIGBUS, [](int) { ::_exit(7); });
            WriteFile(10, 'x');
            const auto mapping = Map(0);
            TouchLostPage(Name);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_DEATH(
        {
            WriteFile(10, 'x');
            const auto mapping = Map(0);
            TouchLostPage(Name);
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
    EXPECT_EQ(Text(*System.Map(TMapArea{"", 6, maReadWrite}), 0, 6), std::string(6, '\0'));
}

/// What processes agree on outside of the area.
struct TAgreement {
    std::atomic_flag Busy = ATOMIC_FLAG_INIT;
    int Users = 0;
    int Mark = 0;

    template <class F> int Alone(F&& action) {
        while (Busy.test_and_set()) ::sched_yield();
        const int result = action();
        Busy.clear();
        return result;
    }
};

/// Processes that open and close an area at the same moments have the same area whenever they have
/// it at the same time.
TEST_F(Mapping, AnAreaMayComeAndGoAtOnce) {
    void* const shared = ::mmap(nullptr, sizeof(TAgreement), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& agreement = *new (shared) TAgreement;
    const TMapArea area{AreaName(), sizeof(int), maReadWrite};
    const auto comeAndGo = [&] {
        int strangers = 0;
        for (int i = 0; i < 2000; ++i) {
            const auto mapping = System.Map(area);
            strangers += agreement.Alone([&] {
                if (agreement.Users++ == 0) {
                    ++agreement.Mark;
                    mapping->Write(0, &agreement.Mark, sizeof(int));
                }
                int mark = 0;
                mapping->Read(0, &mark, sizeof(int));
                return int{mark != agreement.Mark};
            });
            ::sched_yield(); // the others come meanwhile
            agreement.Alone([&] { return --agreement.Users; });
        }
        return strangers > 0 ? 1 : 0;
    };
    const TChild children[] = {TChild(comeAndGo), TChild(comeAndGo), TChild(comeAndGo),
                               TChild(comeAndGo)};
    for (const TChild& child : children) EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Text(*System.Map(area), 0, 4), std::string(4, '\0')); // none is left behind
    ::munmap(shared, sizeof(TAgreement));
}

} // namespace
} // namespace tarn
