#include "ErrorOf.h"
#include "TChild.h"
#include "TTestFolder.h"
#include "rtl/Memory.h"
#include "rtl/OSError.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace tarn {
namespace {

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

std::string All(TStream& stream) {
    stream.SetPosition(0);
    std::string text(static_cast<std::size_t>(stream.Size()), '?');
    stream.ReadBuffer(text.data(), stream.Size());
    return text;
}

std::string Next(TStream& stream, std::int64_t count) {
    std::string text(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)), '?');
    text.resize(static_cast<std::size_t>(stream.Read(text.data(), count)));
    return text;
}

/// The streams that can be written, each empty.
struct TStreams {
    TTestFolder Folder;
    std::vector<std::unique_ptr<TStream>> List;
    TStreams() {
        List.push_back(std::make_unique<TMemoryStream>());
        List.push_back(std::make_unique<TStringStream>());
        List.push_back(std::make_unique<TFileStream>(Folder.File("f"), fmCreate));
    }
};

TEST(Streams, AllKeepTheSameRules) {
    using namespace std::string_literals;
    for (TStreams streams; const auto& stream : streams.List) {
        SCOPED_TRACE(stream->ClassName());
        stream->WriteText("Hello, world");
        EXPECT_EQ(stream->Position(), 12);
        EXPECT_EQ(stream->Seek(-5, soFromEnd), 7);
        EXPECT_EQ(stream->Seek(-2, soFromCurrent), 5);
        EXPECT_EQ(stream->Size(), 12);
        EXPECT_EQ(stream->Position(), 5);
        EXPECT_EQ(Next(*stream, 4), ", wo");
        EXPECT_EQ(Next(*stream, 100), "rld");
        EXPECT_EQ(Next(*stream, 1), "");
        stream->SetPosition(7);
        EXPECT_EQ(Next(*stream, -1), "");
        EXPECT_EQ(stream->Write("x", -1), 0);
        stream->WriteText("W");
        stream->Seek(3, soFromEnd);
        EXPECT_EQ(Next(*stream, 1), ""); // behind the end
        stream->WriteText("!");
        EXPECT_EQ(All(*stream), "Hello, World\0\0\0!"s);
        stream->SetSize(5);
        EXPECT_EQ(stream->Position(), 5);
        stream->SetPosition(7);
        stream->WriteText("?"); // nothing of what was there before comes back
        EXPECT_EQ(All(*stream), "Hello\0\0?"s);
        EXPECT_EQ(ErrorOf([&] { stream->Seek(Most, soFromCurrent); }).substr(0, 12),
                  "EStreamError");
        EXPECT_EQ(ErrorOf([&] { stream->SetSize(-1); }).substr(0, 12), "EStreamError");
        EXPECT_EQ(All(*stream), "Hello\0\0?"s);
    }
}

TEST(Streams, MemoryBeforeTheStartIsNeitherReadNorWritten) {
    for (TStreams streams; const auto& stream : {streams.List[0].get(), streams.List[1].get()}) {
        stream->WriteText("abc");
        EXPECT_EQ(stream->Seek(-5, soFromEnd), -2);
        EXPECT_EQ(Next(*stream, 4), "");
        EXPECT_EQ(stream->Write("x", 1), 0);
        EXPECT_EQ(stream->Position(), -2);
        EXPECT_EQ(All(*stream), "abc");
    }
}

TEST(Streams, CopyAndTellHowMuch) {
    TStringStream source("0123456789");
    TStringStream target("--");
    target.SetPosition(2);
    source.SetPosition(4);
    EXPECT_EQ(target.CopyFrom(source, 3), 3);
    EXPECT_EQ(target.CopyFrom(source, 0), 10); // from the start
    EXPECT_EQ(target.DataString(), "--4560123456789");
    source.SetPosition(8);
    EXPECT_EQ(source.ReadString(-1), "");
    EXPECT_EQ(source.ReadString(9), "89");

    // More than one buffer, of another class.
    std::string large(200'000, 'a');
    large[65'536] = 'b';
    TMemoryStream memory;
    TStringStream text(large);
    EXPECT_EQ(memory.CopyFrom(text, 0), 200'000);
    EXPECT_EQ(memory.Text(), large);
}

/// Gives and takes one byte a call, and no more than five in all.
class TDribble : public TStream {
public:
    std::int64_t Read(void* buffer, std::int64_t) override {
        if (FDone == 5) return 0;
        *static_cast<char*>(buffer) = static_cast<char>('a' + FDone++);
        return 1;
    }
    std::int64_t Write(const void*, std::int64_t) override { return FDone == 5 ? 0 : (++FDone, 1); }
    std::int64_t Seek(std::int64_t, TSeekOrigin) override { return 0; }

private:
    int FDone = 0;
};

TEST(Streams, ReadAndWriteAllOrRaise) {
    char buffer[6] = "";
    TDribble().ReadBuffer(buffer, 5);
    EXPECT_EQ(std::string_view(buffer), "abcde");
    TDribble().WriteBuffer(buffer, 5);
    TMemoryStream memory;
    TTestFolder folder;
    const std::string none = folder.File("none");
    const std::string file = folder.File("file");
    TFileStream(file, fmCreate).WriteText("12345");
    TFileStream readOnly(file, fmOpenRead | fmShareDenyWrite);
    TFileStream writeOnly(file, fmOpenWrite);
    THandleStream closed(NoHandle);
    const struct {
        std::function<void()> Call;
        std::string Error;
    } rows[] = {
        {[&] { TDribble().ReadBuffer(buffer, 6); }, "EReadError: stream read error: 5 of 6 bytes"},
        {[&] { TDribble().WriteBuffer(buffer, 6); },
         "EWriteError: stream write error: 5 of 6 bytes"},
        {[&] { memory.ReadBuffer(buffer, -1); }, "EReadError: stream read error: 0 of -1 bytes"},
        {[&] { memory.CopyFrom(readOnly, 6); }, "EReadError: stream read error: 5 of 6 bytes"},
        {[&] { memory.CopyFrom(readOnly, -2); }, "EReadError: stream read error: 0 of -2 bytes"},
        {[] { TDribble().SetSize(1); }, "EStreamError: the size of a TStream is fixed"},
        {[&] { TFileStream(none, fmOpenReadWrite); },
         "EFOpenError: cannot open " + none + ": no such file or directory"},
        {[&] { TFileStream(none + "/x", fmCreate | fmShareExclusive); },
         "EFCreateError: cannot create " + none + "/x: no such file or directory"},
        {[&] { TFileStream(file + std::string(1, '\0'), fmOpenRead); },
         "EFOpenError: cannot open " + file}, // the text ends at the NUL
        {[&] { memory.LoadFromFile(none); },
         "EFOpenError: cannot open " + none + ": no such file or directory"},
        {[&] { memory.SaveToFile(folder.Path()); },
         "EFCreateError: cannot create " + folder.Path() + ": is a directory"},
        {[&] { readOnly.WriteText("x"); },
         "EWriteError: cannot write to " + file + ": bad file descriptor"},
        {[&] { writeOnly.Read(buffer, 1); },
         "EReadError: cannot read " + file + ": bad file descriptor"},
        {[&] { readOnly.SetPosition(-1); },
         "EStreamError: cannot seek in " + file + ": invalid argument"},
        {[&] { readOnly.SetSize(1); },
         "EStreamError: cannot set the size of " + file + ": invalid argument"},
        {[&] { closed.Size(); },
         "EStreamError: cannot seek in file handle -1: bad file descriptor"},
        {[] { TFileStream("/dev/full", fmOpenWrite).WriteText("x"); },
         "EWriteError: cannot write to /dev/full: no space left on device"},
        {[&] { memory.SetPointer(nullptr, 1); }, "EStreamError: 1 bytes of no memory"},
        {[&] { memory.SetPointer(buffer, -1); }, "EStreamError: no stream has a size of -1"},
    };
    for (const auto& row : rows) EXPECT_EQ(ErrorOf(row.Call), row.Error);
}

TEST(Streams, FilesHaveModes) {
    TTestFolder folder;
    const std::string name = folder.File("f");
    const struct {
        TFileMode Mode;
        std::string_view Write, Contents;
    } rows[] = {{fmAppend, "12", "12"},
                {fmAppend | fmShareDenyWrite, "34", "1234"},
                {fmOpenReadWrite | fmShareDenyNone, "56", "5634"},
                {fmOpenWrite | fmShareExclusive, "7", "7634"},
                {fmCreate | fmShareDenyRead, "8", "8"}};
    for (const auto& row : rows) {
        TFileStream(name, row.Mode).WriteText(row.Write);
        TFileStream file(name, fmOpenRead);
        EXPECT_EQ(All(file), row.Contents);
    }
    // A device that is full takes what it can, and says the rest.
    EXPECT_EQ(TChild([&] {
                  const rlimit most = {5, 5};
                  ::signal(SIGXFSZ, SIG_IGN);
                  ::setrlimit(RLIMIT_FSIZE, &most);
                  TFileStream file(name, fmCreate);
                  if (file.Write("123456789", 9) != 5) return 1;
                  return int{ErrorOf([&] { file.WriteText("6"); }) !=
                             "EWriteError: cannot write to " + name + ": file too large"};
              }).Wait(),
              0);
}

TEST(MemoryStream, GrowsInSteps) {
    TMemoryStream stream;
    const struct {
        std::int64_t Size, Capacity;
    } rows[] = {{1, 8192}, {8192, 8192}, {8193, 16384}, {100, 8192}, {0, 0}};
    for (const auto& row : rows) {
        stream.SetSize(row.Size);
        EXPECT_EQ(stream.Capacity(), row.Capacity) << row.Size;
        EXPECT_EQ(stream.Memory() == nullptr, row.Size == 0);
    }
}

TEST(MemoryStream, SizesThatNoMemoryHoldsAreErrorsThatChangeNothing) {
    TMemoryStream stream;
    stream.WriteText("abc");
    const struct {
        std::function<void()> Call;
        std::string Error;
    } rows[] = {
        {[&] { stream.SetSize(Most); },
         "EOutOfMemory: out of memory: 9223372036854775807 bytes wanted"},
        {[&] { stream.SetSize(Most - 8192); },
         "EOutOfMemory: out of memory: 9223372036854767616 bytes wanted"},
        {[&] { stream.SetSize(std::int64_t{1} << 60); },
         "EOutOfMemory: out of memory: 1152921504606846976 bytes wanted"},
        {[&] { stream.SetPosition(Most - 1), stream.WriteText("x"); },
         "EOutOfMemory: out of memory: 9223372036854775807 bytes wanted"},
        {[&] { stream.SetPosition(Most), stream.WriteText("x"); },
         "EStreamError: stream position out of range: 1 bytes from 9223372036854775807"},
        {[&] { stream.SetPosition(-1), stream.Seek(-Most - 1, soFromCurrent); },
         "EStreamError: stream position out of range: -9223372036854775808 bytes from -1"},
        {[] { TStringStream().SetSize(Most); },
         "EOutOfMemory: out of memory: 9223372036854775807 bytes wanted"},
        {[] {
             TStringStream text;
             text.SetPosition(Most), text.WriteText("x");
         },
         "EStreamError: stream position out of range: 1 bytes from 9223372036854775807"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ErrorOf(row.Call), row.Error);
        EXPECT_EQ(stream.Text(), "abc");
        EXPECT_EQ(stream.Capacity(), 8192);
    }
}

TEST(MemoryStream, LeavesForeignMemoryToItsOwner) {
    char foreign[] = "foreign";
    TMemoryStream stream;
    stream.WriteText("own");
    void* const own = stream.Memory();
    stream.SetPointer(foreign, 7);
    stream.SetPosition(0);
    stream.WriteText("F");
    EXPECT_STREQ(foreign, "Foreign");

    stream.SetPointer(own, 3); // back at its own
    EXPECT_EQ(stream.Text(), "own");
    stream.SetPosition(3);
    stream.WriteText("ed");
    EXPECT_EQ(stream.Memory(), own);

    stream.SetPointer(foreign, 7);
    stream.SetPosition(5);
    stream.WriteText("est");
    EXPECT_EQ(stream.Text(), "Foreiest");
    EXPECT_STREQ(foreign, "Foreign");

    stream.SetPointer(foreign, 7);
    stream.SetSize(2);
    EXPECT_EQ(stream.Text(), "Fo");
    std::string large(100'000, 'l'); // which its own block does not hold
    stream.SetPointer(large.data(), 100'000);
    stream.SetSize(2);
    EXPECT_EQ(stream.Text(), "ll");
    stream.SetPointer(foreign, 7);
    stream.Clear();
    EXPECT_EQ(stream.Memory(), nullptr);
}

TEST(MemoryStream, LoadsAndSavesWholes) {
    TTestFolder folder;
    TMemoryStream stream;
    stream.WriteText("longer than the file");
    TStringStream source("some text");
    source.SetPosition(5);
    stream.LoadFromStream(source);
    EXPECT_EQ(stream.Text(), "some text");
    EXPECT_EQ(stream.Position(), 9);
    stream.SetPosition(2);
    stream.SaveToFile(folder.File("f"));
    EXPECT_EQ(stream.Position(), 2);
    TMemoryStream other;
    other.LoadFromFile(folder.File("f"));
    EXPECT_EQ(other.Text(), "some text");
    other.LoadFromStream(*std::make_unique<TStringStream>());
    EXPECT_EQ(other.Size(), 0);
}

/// Any sizes, about the one from which blocks have pages of their own, for several blocks by turns.
TEST(Memory, BlocksKeepTheirBytes) {
    struct TBlock {
        void* Memory = nullptr;
        std::string Expected;
    };
    std::vector<TBlock> blocks(3);
    std::mt19937 random(7);
    std::size_t sizes[] = {1, 100, 4096, 131'071, 131'072, 200'000, 1'000'000, 5'000'000};
    for (int i = 0; i < 400; ++i) {
        TBlock& block = blocks[random() % blocks.size()];
        const std::size_t former = block.Expected.size();
        const std::size_t size = random() % 10 == 0 ? 0 : sizes[random() % std::size(sizes)];
        block.Memory = ReallocMem(block.Memory, size);
        ASSERT_EQ(MemSize(block.Memory), size);
        const char fill = static_cast<char>('a' + i % 26);
        block.Expected.resize(size, fill);
        if (size > former)
            std::memset(static_cast<char*>(block.Memory) + former, fill, size - former);
        for (const TBlock& each : blocks)
            ASSERT_EQ(std::memcmp(each.Memory ? each.Memory : "", each.Expected.data(),
                                  each.Expected.size()),
                      0);
    }
    EXPECT_EQ(ErrorOf([&] { ReallocMem(blocks[0].Memory, SIZE_MAX); }),
              "EOutOfMemory: out of memory: 18446744073709551615 bytes wanted");
    for (const TBlock& block : blocks) FreeMem(block.Memory);
}

/// Two large blocks that grow by turns in small steps are hardly ever moved, and never copied.
TEST(Memory, LargeBlocksGrowInPlace) {
    void* blocks[2] = {nullptr, nullptr};
    int moves = 0;
    for (std::size_t size = 131'072; size <= 32u << 20; size += 4096)
        for (void*& block : blocks) {
            void* const former = block;
            block = ReallocMem(block, size);
            moves += block != former;
        }
    EXPECT_LT(moves, 100);
    // Shrinking gives the pages back: fresh ones come when it grows again.
    auto* const bytes = static_cast<char*>(ReallocMem(blocks[0], 8u << 20));
    bytes[(8u << 20) - 1] = 'x';
    auto* const small = ReallocMem(bytes, 4u << 20);
    auto* const large = static_cast<char*>(ReallocMem(small, 8u << 20));
    EXPECT_EQ(large[(8u << 20) - 1], '\0');
    FreeMem(large);
    unsigned char present = 0;
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    EXPECT_EQ(::mincore(large - reinterpret_cast<std::uintptr_t>(large) % page, page, &present),
              -1);
    FreeMem(blocks[1]);
}

/// Where addresses run out a block grows without the usual reserve, and at last not at all.
TEST(Memory, IsOutAtTheLimitOfTheProcess) {
    constexpr std::size_t size = 100u << 20;
    EXPECT_EQ(TChild([&] {
                  auto* block = static_cast<char*>(GetMem(size));
                  block[size - 1] = 'x';
                  std::ifstream statm("/proc/self/statm");
                  std::size_t pages = 0;
                  statm >> pages;
                  const rlim_t most = pages * std::size_t(::sysconf(_SC_PAGESIZE)) + (30u << 20);
                  const rlimit limit = {most, most};
                  ::setrlimit(RLIMIT_AS, &limit);
                  block = static_cast<char*>(ReallocMem(block, size + (20u << 20)));
                  try {
                      ReallocMem(block, 2 * size);
                  } catch (const EOSError& error) {
                      return error.ErrorCode() == ENOMEM && block[size - 1] == 'x' ? 0 : 1;
                  }
                  return 2;
              }).Wait(),
              0);
}

} // namespace
} // namespace tarn
