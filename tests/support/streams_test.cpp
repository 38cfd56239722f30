#include "ErrorOf.h"
#include "TChild.h"
#include "THeapStream.h"
#include "TMappedFileStream.h"
#include "TStringReader.h"
#include "TTestFolder.h"
#include "os/portable/TPortableOS.h"
#include "rtl/OSError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using namespace std::literals;

constexpr std::int64_t Most = std::numeric_limits<std::int64_t>::max();

/// The operating system layer and a folder.
struct Streams : testing::Test {
    TPortableOS System;
    TOperatingSystem* Former = InstallOS(&System);
    TTestFolder Folder;
    std::string Name = Folder.File("f");

    ~Streams() override { InstallOS(Former); }
    void WriteFile(std::string_view text) const { TFileStream(Name, fmCreate).WriteText(text); }
    std::string FileText() const {
        TMemoryStream stream;
        stream.LoadFromFile(Name);
        return std::string(stream.Text());
    }
};

std::string Next(TStream& stream, std::int64_t count) {
    std::string text(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)), '?');
    text.resize(static_cast<std::size_t>(stream.Read(text.data(), count)));
    return text;
}

// --- Memory streams ---------------------------------------------------------------------------

TEST_F(Streams, GrowInStepsOf4096) {
    TMemStream memory;
    THeapStream shared;
    THeapStream own(0, 0, false);
    for (TMemoryStream* const stream :
         {static_cast<TMemoryStream*>(&memory), static_cast<TMemoryStream*>(&shared),
          static_cast<TMemoryStream*>(&own)}) {
        const struct {
            std::int64_t Size, Capacity;
            bool SameBlock;
        } rows[] = {{1, 4096, false}, {4096, 4096, true}, {4097, 8192, false}, {8000, 8192, true},
                    {1, 4096, false}, {0, 0, false},      {0, 0, true},        {4096, 4096, false}};
        for (const auto& row : rows) {
            const void* const former = stream->Memory();
            stream->SetSize(row.Size);
            EXPECT_EQ(stream->Capacity(), row.Capacity) << stream->ClassName() << row.Size;
            EXPECT_EQ(stream->Memory() == nullptr, row.Size == 0);
            if (row.SameBlock) {
                EXPECT_EQ(stream->Memory(), former);
            }
        }
        for (const std::int64_t size : {Most, Most - 4096, std::int64_t{1} << 60})
            EXPECT_EQ(ErrorOf([&] { stream->SetSize(size); }).substr(0, 14), "EOutOfMemory: ");
        EXPECT_EQ(stream->Capacity(), 4096);
    }
    EXPECT_TRUE(shared.SharedHeap());
    EXPECT_FALSE(own.SharedHeap());
    EXPECT_GT(shared.Compact(), 0u);
}

TEST_F(Streams, AHeapMayBeFullAndItsMemoryZero) {
    THeapStream stream(4096, 8192, true);
    stream.SetSize(4096);
    EXPECT_EQ(stream.Compact(), 4096u);
    stream.SetSize(4097);
    EXPECT_EQ(stream.Text(), std::string(4097, '\0'));
    EXPECT_EQ(ErrorOf([&] { (void)stream.Compact(); }),
              "EOSError: cannot compact the heap: cannot allocate memory");
    EXPECT_EQ(ErrorOf([&] { stream.SetSize(8193); }),
              "EOutOfMemory: out of memory: 12288 bytes wanted");
    EXPECT_EQ(stream.Size(), 4097);
    stream.SetSize(0);
    EXPECT_EQ(stream.Compact(), 8192u);

    // Zeros on the shared heap too, in the place of memory that was in use.
    for (int i = 0; i < 2; ++i) {
        THeapStream zeroed(true);
        zeroed.SetSize(5000);
        EXPECT_EQ(zeroed.Text(), std::string(5000, '\0'));
        zeroed.SetPosition(0);
        zeroed.WriteText(std::string(8192, 'x'));
    }
}

TEST_F(Streams, HandTheirMemoryOn) {
    THeapStream heap(0, 0, false);
    heap.WriteText("some text");
    heap.SetPosition(4);
    TBufInfo info;
    MemStreamToBuf(heap, info);
    EXPECT_EQ(info, (TBufInfo{heap.Memory(), 9, 4}));
    {
        TMemStream other;
        other.WriteText("other");
        BufToMemStream(info, other);
        EXPECT_EQ(Next(other, 5), " text");
        other.SetPosition(0);
        other.WriteText("S");
        other.Seek(0, soFromEnd);
        other.WriteText(", longer");
        EXPECT_EQ(other.Text(), "Some text, longer");
    }
    EXPECT_EQ(heap.Text(), "Some text");
    EXPECT_EQ(ErrorOf([&] {
                  BufToMemStream({nullptr, 1, 0}, heap);
              }),
              "EStreamError: 1 bytes of no memory");
    // Away and back again: the stream's own block has stayed, and grows as before.
    char foreign[] = "foreign";
    BufToMemStream({foreign, 7, 0}, heap);
    BufToMemStream(info, heap);
    heap.WriteText("-TEXT!");
    EXPECT_EQ(heap.Text(), "Some-TEXT!");
    EXPECT_EQ(heap.Memory(), info.Memory);
}

// --- The mapped stream ------------------------------------------------------------------------

TEST_F(Streams, MappedRefuseSizes) {
    WriteFile("12345");
    const TFileStream file(Name, fmOpenReadWrite);
    const THandle handle = file.Handle();
    const std::string missing = Folder.File("missing");
    constexpr std::string_view negative = "New file size should not be less than zero.";
    constexpr std::string_view zero = "New file size should be higher than zero.";
    constexpr std::string_view readOnly =
        "Can\xE2\x80\x99t change size of the file in read only mode.";
    constexpr std::string_view area = "Projected area size must be above zero";
    const struct {
        std::function<void()> Call;
        std::string_view Error;
    } rows[] = {
        {[&] { TMappedFileStream(handle, false, -1, false); }, negative},
        {[&] { TMappedFileStream(handle, false, -1, true); }, negative},
        {[&] { TMappedFileStream(handle, false, 1, true); }, readOnly},
        {[&] { TMappedFileStream(Name, false, -1, true); }, negative},
        {[&] { TMappedFileStream(Name, false, 1, true); }, readOnly},
        {[&] { TMappedFileStream(missing, true, -1, true); }, readOnly},
        {[&] { TMappedFileStream(missing, true, 0, true); }, readOnly},
        {[&] { TMappedFileStream(missing, true, -1, false); }, zero},
        {[&] { TMappedFileStream(missing, true, 0, false); }, zero},
        {[] { TMappedFileStream::CreateSys("tarn-test", true, 0, false); }, area},
        {[] { TMappedFileStream::CreateSys("tarn-test", true, -1, true); }, area},
    };
    const auto nextHandle = [&] { return TFileStream(Name, fmOpenRead).Handle(); };
    const THandle next = nextHandle();
    for (const auto& row : rows)
        EXPECT_EQ(ErrorOf(row.Call), "EMFStreamError: " + std::string(row.Error));
    EXPECT_FALSE(std::filesystem::exists(missing));

    EXPECT_EQ(ErrorOf([&] { TMappedFileStream(missing + "/f", true, 1, false); }),
              "EOSError: cannot create " + missing + "/f: no such file or directory");
    EXPECT_EQ(ErrorOf([&] { TMappedFileStream(Folder.Path(), true, 1, false); }),
              "EOSError: cannot create " + Folder.Path() + ": is a directory");
    for (const std::int64_t size : {0, 10})
        EXPECT_EQ(ErrorOf([&] { TMappedFileStream(NoHandle, true, size, false); }),
                  "EOSError: cannot tell the size of file handle -1: bad file descriptor");
    WriteFile("");
    EXPECT_EQ(ErrorOf([&] { TMappedFileStream(Name, true, 0, true); }),
              "EOSError: cannot map " + Name + ": the file is empty");
    EXPECT_EQ(nextHandle(), next); // no failure has left a file open
}

TEST_F(Streams, MappedStayWithinTheirBounds) {
    WriteFile("0123456789");
    TMappedFileStream stream(Name, true, 0, false);
    EXPECT_EQ(stream.Size(), 10);
    const struct {
        std::int64_t Offset;
        TSeekOrigin Origin;
        std::int64_t Position, Count;
        std::string_view Read;
    } rows[] = {
        {0, soFromBeginning, 0, 3, "012"}, {2, soFromCurrent, 5, 2, "56"},
        {-2, soFromEnd, 8, 5, "89"},       {0, soFromCurrent, 10, 1, ""},
        {-11, soFromEnd, -1, 5, ""},       {5, soFromEnd, 15, 1, ""},
        {4, soFromBeginning, 4, -1, ""},   {Most, soFromBeginning, Most, Most, ""},
        {-Most, soFromCurrent, 0, 1, "0"}, {9, soFromBeginning, 9, Most, "9"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(stream.Seek(row.Offset, row.Origin), row.Position);
        char buffer[10];
        const std::int64_t got = stream.Read(buffer, row.Count);
        EXPECT_EQ(std::string_view(buffer, static_cast<std::size_t>(got)), row.Read);
        EXPECT_EQ(stream.Position(), row.Position + got);
        // Writing what is there keeps to the same bounds.
        stream.SetPosition(row.Position);
        EXPECT_EQ(stream.Write(row.Read.data(), row.Read.empty() ? row.Count : got), got);
        EXPECT_EQ(stream.Position(), row.Position + got);
    }
    EXPECT_EQ(ErrorOf([&] { stream.SetPosition(1), stream.Seek(Most, soFromCurrent); }),
              "EStreamError: stream position out of range: 9223372036854775807 bytes from 1");
    EXPECT_EQ(ErrorOf([&] { stream.SetSize(5); }),
              "EStreamError: the size of a TMappedFileStream is fixed");
    stream.SetPosition(8);
    EXPECT_EQ(stream.Write("abcd", 4), 2);
    stream.FlushView();
    EXPECT_EQ(FileText(), "01234567ab");

    TStringStream target(">");
    target.SetPosition(1);
    stream.SaveToStream(target);
    EXPECT_EQ(target.DataString(), ">01234567ab");
    EXPECT_EQ(ErrorOf([&] { stream.SaveToFile(Name); }),
              "EFCreateError: cannot create " + Name + ": it is the mapped file");
    stream.SaveToFile(Folder.File("copy"));
    stream.SaveToFile(Folder.File("copy")); // over another one
    EXPECT_EQ(stream.Position(), 10);
    Name = Folder.File("copy");
    EXPECT_EQ(FileText(), "01234567ab");
}

TEST_F(Streams, MappedAreReadOnlyGrownOrNotMapped) {
    WriteFile("01234");
    TMappedFileStream readOnly(Name, true, 0, true);
    EXPECT_EQ(readOnly.Write("x", 1), 0);
    EXPECT_EQ(Next(readOnly, 9), "01234");
    EXPECT_EQ(FileWrite(readOnly.Handle(), "x", 1), -1);
    TFileStream(Name, fmAppend).WriteText("5");
    readOnly.SetMapped(true); // it is already
    EXPECT_EQ(readOnly.Size(), 5);

    TMappedFileStream stream(Name, false, 3, false);
    EXPECT_EQ(stream.Size(), 0);
    EXPECT_EQ(Next(stream, 1), "");
    EXPECT_EQ(stream.Write("x", 1), 0);
    stream.FlushView();
    TStringStream target;
    stream.SaveToStream(target);
    EXPECT_EQ(target.DataString(), "");
    stream.SetMapped(true);
    stream.SetMapped(true);
    EXPECT_EQ(Next(stream, 9), "012"); // no more than the maximum
    stream.SetMapped(false);
    EXPECT_EQ(stream.Position(), 3);
    EXPECT_FALSE(stream.Mapped());
    EXPECT_EQ(stream.Size(), 0);

    TMappedFileStream(Name, true, 7, false).Write("AB", 2);
    EXPECT_EQ(FileText(), "AB2345\0"s);
    Name = Folder.File("new");
    TMappedFileStream(Name, true, 3, false).Write("new!", 4);
    EXPECT_EQ(FileText(), "new");

    // A handle stays its owner's.
    TFileStream file(Name, fmOpenReadWrite);
    TMappedFileStream(file.Handle(), true, 0, false).Write("N", 1);
    EXPECT_EQ(Next(file, 9), "New");
}

TEST_F(Streams, MappedBeyondWhat32BitsCount) {
    constexpr std::int64_t size = (std::int64_t{1} << 32) + 10;
    WriteFile("");
    std::filesystem::resize_file(Name, size); // without a place on the disk
    TMappedFileStream stream(Name, true, 0, false);
    const std::pair<std::int64_t, std::string> lines[] = {
        {(std::int64_t{1} << 31) - 2, "a~\r\n----"},
        {(std::int64_t{1} << 32) - 2, "b~\r\n----"},
        {size - 4, "c~\r\n"}};
    for (const auto& [position, line] : lines) {
        stream.SetPosition(position);
        EXPECT_EQ(stream.Write((line + "more").data(), 8), std::int64_t(line.size()));
    }
    EXPECT_EQ(stream.Seek(0, soFromEnd), size);
    TFileStream file(Name, fmOpenRead);
    TSimpleReader reader(file, 5);
    TStringReader strings;
    strings.SetTargetFile(Name);
    for (const auto& [position, line] : lines) {
        stream.SetPosition(position);
        EXPECT_EQ(Next(stream, 8), line);
        reader.SetPosition(position + 1);
        reader.SetPosition(position);
        std::string read(4, '?');
        EXPECT_EQ(reader.Read(read.data(), 4), 4);
        std::string text;
        strings.TargetStream()->SetPosition(position);
        EXPECT_TRUE(strings.ReadString(text));
        EXPECT_EQ(text + "\r\n", read);
        EXPECT_EQ(read, line.substr(0, 4));
        EXPECT_EQ(strings.TargetStream()->Position(), position + 4);
    }
}

/// Maps nothing, and cannot flush that.
struct TFullDisk : TPortableOS {
    struct TMapping : TSystemMapping {
        std::int64_t Size() const override { return 0; }
        void Read(std::int64_t, void*, std::int64_t) const override {}
        void Write(std::int64_t, const void*, std::int64_t) override {}
        void Flush() override { throw EOSError("full", ENOSPC); }
    };
    std::unique_ptr<TSystemMapping> Map(const TMapArea&) override {
        return std::make_unique<TMapping>();
    }
};

TEST_F(Streams, FlushingTellsWhatTheSystemSays) {
    TFullDisk disk;
    InstallOS(&disk);
    const auto stream = TMappedFileStream::CreateSys("", true, 1, false);
    InstallOS(&System);
    EXPECT_EQ(ErrorOf([&] { stream->FlushView(); }), "EOSError: full");
}

TEST_F(Streams, NamedAreasAreSharedByProcesses) {
    const std::string name = Folder.Path();
    const auto stream = TMappedFileStream::CreateSys(name, false, 10, false);
    EXPECT_EQ(stream->Size(), 0);
    stream->SetMapped(true);
    EXPECT_EQ(stream->Size(), 10);
    EXPECT_EQ(stream->Write("from here", 9), 9);
    EXPECT_EQ(TChild([&] {
                  const auto other = TMappedFileStream::CreateSys(name, true, 4, true);
                  const auto whole = TMappedFileStream::CreateSys(name, true, 99, false);
                  if (Next(*other, 99) != "from" || other->Write("x", 1) != 0) return 1;
                  whole->Seek(-1, soFromEnd);
                  return static_cast<int>(whole->Write("!", 1) + whole->Size());
              }).Wait(),
              11);
    EXPECT_EQ(Next(*stream, 9), "!");
    TStringStream text;
    stream->SaveToStream(text);
    EXPECT_EQ(text.DataString(), "from here!");
}

TEST_F(Streams, MappedReportBytesThatAnotherProcessCutOff) {
    const std::string contents = std::string(9000, 'x') + "\r\n" + std::string(200'000, 'y');
    WriteFile(contents);
    const std::string error = "EOSError: cannot read " + Name + " at offset ";
    TMappedFileStream stream(Name, true, 0, true);
    TStringReader reader;
    reader.SetTargetFile(Name);
    std::string text;
    EXPECT_TRUE(reader.ReadString(text));
    TStringStream target;
    stream.SaveToStream(target);
    EXPECT_TRUE(target.DataString() == contents);
    EXPECT_EQ(TChild([&] { return ::truncate(Name.c_str(), 9100); }).Wait(), 0);
    EXPECT_EQ(ErrorOf([&] { stream.SaveToStream(target); }).substr(0, error.size()), error);
    stream.SetPosition(20'000);
    EXPECT_EQ(ErrorOf([&] { Next(stream, 1); }).substr(0, error.size() + 6), error + "20000:");
    EXPECT_EQ(stream.Position(), 20'000);
    EXPECT_EQ(ErrorOf([&] { reader.ReadString(text); }).substr(0, error.size()), error);
    EXPECT_EQ(text, std::string(text.size(), 'y'));
    // It stands behind what it gave out, and fails there again.
    EXPECT_EQ(reader.TargetStream()->Position(), 9002 + static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(ErrorOf([&] { reader.ReadString(text); }).substr(0, error.size()), error);
}

// --- Readers ----------------------------------------------------------------------------------

/// Writes down what is done with it; reads come in parts.
class TLoggedStream : public TStringStream {
public:
    TLoggedStream(std::string_view text, std::int64_t most) : TStringStream(text), FMost(most) {}
    std::int64_t Read(void* buffer, std::int64_t count) override {
        const std::int64_t got = TStringStream::Read(buffer, std::min(count, FMost));
        Log += "r" + std::to_string(got) + " ";
        return got;
    }
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override {
        if (origin == soFromBeginning) Log += "s" + std::to_string(offset) + " ";
        return TStringStream::Seek(offset, origin);
    }
    std::string TakeLog() { return std::exchange(Log, {}); }

private:
    std::string Log;
    std::int64_t FMost;
};

TEST(SimpleReader, TouchesItsSourceOnlyWhenItMust) {
    TLoggedStream source("..0123456789abcdef", 4);
    source.TStringStream::Seek(2, soFromBeginning);
    TSimpleReader reader(source, 6);
    const auto read = [&](std::int64_t count) {
        char buffer[20];
        const auto got = static_cast<std::size_t>(reader.Read(buffer, count));
        return std::string(buffer, got) + "@" + std::to_string(reader.Position());
    };
    constexpr std::int64_t stay = -1;
    const struct {
        std::int64_t Position, Count;
        std::string_view Result, Log;
    } rows[] = {
        {stay, 2, "01@4", "r4 r2 "},
        {stay, 4, "2345@8", ""},
        {2, 3, "012@5", ""},
        {stay, 5, "34567@10", "r3 "}, // the unread are kept
        {5, 1, "3@6", ""},            // and are the first in the buffer
        {11, 0, "@11", ""},           // behind the last one
        {stay, 100, "9abcde@17", "r4 r2 "},
        {10, 1, "8@11", "s10 r4 r2 "},
        {18, 1, "@18", "s18 r0 "},
        {13, -1, "@13", "s13 "},
        {stay, 1, "b@14", "r4 r1 r0 "},
    };
    for (const auto& row : rows) {
        if (row.Position != stay) reader.SetPosition(row.Position);
        EXPECT_EQ(read(row.Count), row.Result);
        EXPECT_EQ(source.TakeLog(), row.Log);
    }
    EXPECT_EQ(reader.ReadBuffer(2), 2); // the others are passed over
    EXPECT_EQ(read(9), "ef@18");
    EXPECT_EQ(source.TakeLog(), "r0 r0 ");
    reader.SetPosition(17);
    reader.FlushBuffer();
    EXPECT_EQ(source.Position(), 17);
    EXPECT_EQ(read(3), "f@18");
    EXPECT_EQ(source.TakeLog(), "s17 r1 r0 ");
    EXPECT_EQ(ErrorOf([&] { TSimpleReader(source, 0); }),
              "EStreamError: no buffer has a size of 0 bytes");
    TStringStream large(std::string(10'000, 'x'));
    TSimpleReader whole(large, 4096);
    std::string buffer(10'000, ' ');
    EXPECT_EQ(whole.Read(buffer.data(), 10'000), 4096);
}

/// What the text's strings are, and where each ends with its delimiter.
using TPieces = std::vector<std::pair<std::string, std::int64_t>>;

TPieces Split(std::string_view text, std::string_view delimiter) {
    TPieces strings;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t found =
            delimiter.empty() ? std::string_view::npos : text.find(delimiter, at);
        const std::size_t end = std::min(found, text.size());
        const std::size_t next = std::min(text.size(), end + delimiter.size());
        strings.emplace_back(text.substr(at, end - at),
                             found == std::string_view::npos ? text.size() : next);
        at = static_cast<std::size_t>(strings.back().second);
    }
    return strings;
}

/// What a reader gives; `position` tells where it stands.
template <class F> TPieces ReadAll(TStringReader& reader, F&& position) {
    TPieces strings;
    for (std::string text = "former"; reader.ReadString(text);)
        strings.emplace_back(text, position());
    return strings;
}

/// The rule by the letter: a chunk, a search in all of the text, a step back.
TPieces ReadByTheRule(TStream& source, std::string_view delimiter, std::int64_t bufferSize) {
    TPieces strings;
    TSimpleReader reader(source, bufferSize);
    while (true) {
        const std::int64_t start = reader.Position();
        std::string text;
        char chunk[100];
        std::int64_t got = 0;
        std::size_t at = std::string::npos;
        while (at == std::string::npos && (got = reader.Read(chunk, 100)) > 0) {
            text.append(chunk, static_cast<std::size_t>(got));
            if (!delimiter.empty()) at = text.find(delimiter);
        }
        if (text.empty()) return strings;
        if (at != std::string::npos) {
            reader.SetPosition(start + static_cast<std::int64_t>(at + delimiter.size()));
            text.resize(at);
        }
        strings.emplace_back(text, source.Position());
    }
}

TEST_F(Streams, StringsAreThoseOfANaiveSplit) {
    std::mt19937 random(3);
    std::string fibonacci = "a"; // full of beginnings of itself
    for (std::string former = "b"; fibonacci.size() < 101;)
        former = std::exchange(fibonacci, std::string(fibonacci).append(former));
    const std::string longDelimiter = std::string(120, 'a') + "b";
    const std::string delimiters[] = {"\r\n", "",     "\n",          "\0"s,
                                      "aab",  "abab", longDelimiter, fibonacci};
    TStringReader reader;
    constexpr std::string_view letters[] = {"ab", "a\r\n"sv, "aaaaaaaaab\0\n"sv};
    for (int round = 0; round < 1500; ++round) {
        const std::string& delimiter = delimiters[random() % std::size(delimiters)];
        const std::string_view letter = letters[random() % std::size(letters)];
        std::string text;
        for (auto pieces = random() % 8; pieces > 0; --pieces) {
            for (auto count = random() % (random() % 3 ? 30 : 400); count > 0; --count)
                text += letter[random() % letter.size()];
            text += delimiter.substr(0, random() % (delimiter.size() + 1)); // nearly one
            if (random() % 3) text += delimiter;
        }
        SCOPED_TRACE(round);
        const TPieces expected = Split(text, delimiter);

        TLoggedStream plain(text, 1 + random() % 200);
        reader.SetStringDelimiter(delimiter);
        reader.Buffered = false;
        reader.SetTargetStream(&plain);
        ASSERT_EQ(ReadAll(reader, [&] { return plain.Position(); }), expected);

        if (round % 10 == 0) { // slower than the rest
            WriteFile(text);
            reader.SetTargetFile(Name);
            ASSERT_EQ(ReadAll(reader, [&] { return reader.TargetStream()->Position(); }), expected);
        }

        reader.Buffered = true;
        const std::int64_t bufferSizes[] = {1, 99, 100, 101, 250, 4096};
        reader.BufferSize = bufferSizes[random() % std::size(bufferSizes)];
        TStringStream source(text);
        reader.SetTargetStream(&source);
        TStringStream same(text);
        ASSERT_EQ(ReadAll(reader, [&] { return source.Position(); }),
                  ReadByTheRule(same, delimiter, reader.BufferSize));
        source.SetPosition(0);
        reader.SetReader();
        ASSERT_EQ(ReadAll(reader, [&] { return reader.Synchronize(), source.Position(); }),
                  expected);
    }
}

TEST_F(Streams, ReaderTargets) {
    TStringStream large("a\r\n" + std::string(10'000, 'b'));
    TStringReader reader;
    std::string text = "former";
    EXPECT_FALSE(reader.ReadString(text)); // no target
    EXPECT_EQ(text, "");
    reader.Synchronize();
    reader.SetTargetStream(&large);
    EXPECT_TRUE(reader.ReadString(text));
    EXPECT_EQ(large.Position(), 4096); // a buffer ahead
    TStringStream stream("skipped,a\r\nb");
    stream.SetPosition(8);
    reader.SetTargetStream(&stream);
    EXPECT_TRUE(reader.ReadString(text));
    EXPECT_EQ(text, "a");
    EXPECT_EQ(stream.Position(), 12); // ahead, in the buffer
    reader.Synchronize();
    EXPECT_EQ(stream.Position(), 11);

    // What cannot be done leaves the former target in use.
    const std::string missing = Folder.File("missing");
    EXPECT_EQ(ErrorOf([&] { reader.SetTargetFile(missing); }),
              "EMFStreamError: Can\xE2\x80\x99t change size of the file in read only mode.");
    reader.BufferSize = 0;
    EXPECT_EQ(ErrorOf([&] { reader.SetTargetStream(&stream); }),
              "EStreamError: no buffer has a size of 0 bytes");
    EXPECT_TRUE(reader.ReadString(text));
    EXPECT_EQ(text, "b");
    EXPECT_FALSE(reader.ReadString(text));
    EXPECT_EQ(reader.TargetFile(), "");

    WriteFile("");
    reader.SetTargetFile(Name);
    EXPECT_FALSE(reader.ReadString(text));
    WriteFile("1\r\n2\r\n3");
    reader.SetTargetFile(Name);
    EXPECT_EQ(reader.TargetFile(), Name);
    TStream* const file = reader.TargetStream();
    for (const std::string_view expected : {"1", "2", "2"}) {
        EXPECT_TRUE(reader.ReadString(text));
        EXPECT_EQ(text, expected);
        file->SetPosition(3); // moved by hand, it is read from there
    }
    TFileStream(Name, fmOpenWrite).WriteText("1\r\nX");
    reader.Synchronize(); // leaves it there, and what it reads is new
    EXPECT_EQ(file->Position(), 3);
    EXPECT_TRUE(reader.ReadString(text));
    EXPECT_EQ(text, "X");
    file->SetPosition(3);
    reader.SetTargetStream(file); // its own file stays its own
    EXPECT_TRUE(reader.ReadString(text));
    EXPECT_EQ(text, "X");
    reader.SetTargetStream(nullptr);
    EXPECT_EQ(reader.TargetFile(), "");
    EXPECT_FALSE(reader.ReadString(text));
}

} // namespace
} // namespace tarn
