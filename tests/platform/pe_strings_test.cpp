#include "os/portable/PEStrings.h"
#include "os/portable/TPortableOS.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

namespace tarn {
namespace {

using TTexts = std::vector<std::pair<int, std::string>>;

// --- A writer of small libraries --------------------------------------------------------------

struct TTable {
    int Language;
    std::vector<std::u16string> Texts; ///< up to 16, the rest is empty
};

struct TBlock {
    std::uint32_t Id;
    std::vector<TTable> Tables;
};

struct TLibrary {
    std::vector<TBlock> Blocks;
    bool Wide = false; ///< PE32+
    int Machine = 0x14C;
};

struct TImageBytes {
    std::string Bytes;

    void Put(std::size_t at, std::uint32_t value, int size) {
        if (Bytes.size() < at + size) Bytes.resize(at + size);
        for (int i = 0; i < size; ++i) Bytes[at + i] = static_cast<char>(value >> 8 * i);
    }
    void Put16(std::size_t at, std::uint32_t value) { Put(at, value, 2); }
    void Put32(std::size_t at, std::uint32_t value) { Put(at, value, 4); }
};

// Where things are in every image of the writer: offsets in the file.
constexpr std::uint32_t Signature = 0x80, Coff = Signature + 4, Optional = Coff + 20;
constexpr std::uint32_t OptionalSize32 = 96 + 16 * 8, OptionalSize64 = 112 + 16 * 8;
constexpr std::uint32_t Sections32 = Optional + OptionalSize32;
constexpr std::uint32_t Root = 0x600, RootAddress = 0x2000; // the resource directory
constexpr std::uint32_t Tables = Root + 16 + 3 * 8;         // its string tables
constexpr std::uint32_t FirstTable = Tables + 16 + 8;       // the entry of the first block
constexpr std::uint32_t Directory = 0x80000000, Outside = 0x7FFFFFF0;

void PutHeaders(TImageBytes& image, const TLibrary& library) {
    image.Bytes = "MZ";
    image.Put32(60, Signature);
    image.Put32(Signature, 0x4550);
    image.Put16(Coff, library.Machine);
    image.Put16(Coff + 2, 2);
    image.Put16(Coff + 16, library.Wide ? OptionalSize64 : OptionalSize32);
    image.Put16(Optional, library.Wide ? 0x20B : 0x10B);
    const std::uint32_t directories = Optional + (library.Wide ? 112 : 96);
    image.Put32(directories - 4, 16);
    image.Put32(directories + 16, RootAddress);
    const std::uint32_t sections = directories + 16 * 8;
    const auto section = [&](std::uint32_t at, std::uint32_t address, std::uint32_t raw) {
        image.Put32(at + 12, address);
        image.Put32(at + 16, raw == Root ? 0x100000 : 0x200); // the last one reaches to the end
        image.Put32(at + 20, raw);
        image.Put32(at + 36, 0);
    };
    section(sections, 0x1000, 0x400);
    section(sections + 40, RootAddress, Root);
}

std::uint32_t PutTable(TImageBytes& image, std::uint32_t at, const TTable& table) {
    for (std::size_t i = 0; i < 16; ++i) {
        const std::u16string text = i < table.Texts.size() ? table.Texts[i] : std::u16string();
        image.Put16(at, static_cast<std::uint32_t>(text.size()));
        at += 2;
        for (const char16_t unit : text) {
            image.Put16(at, unit);
            at += 2;
        }
    }
    return at;
}

/// A library with one section before its resources, which also hold a type and a block with a name
/// and a type that is no string table, all three leading outside. It ends with its last string.
std::string Image(const TLibrary& library) {
    TImageBytes image;
    PutHeaders(image, library);
    const auto directory = [&image](std::uint32_t at, std::size_t names, std::size_t numbers) {
        image.Put16(at + 12, static_cast<std::uint32_t>(names));
        image.Put16(at + 14, static_cast<std::uint32_t>(numbers));
        return at + 16;
    };
    const auto entry = [&image](std::uint32_t& at, std::uint32_t id, std::uint32_t target) {
        image.Put32(at, id);
        image.Put32(at + 4, target);
        at += 8;
    };
    std::uint32_t at = directory(Root, 1, 2);
    entry(at, Directory | Outside, Directory | Outside);
    entry(at, 3, Directory | Outside);
    entry(at, 6, Directory | (Tables - Root));

    at = directory(Tables, 1, library.Blocks.size());
    entry(at, Directory | Outside, Directory | Outside);
    std::size_t tableCount = 0;
    auto next = static_cast<std::uint32_t>(at + 8 * library.Blocks.size());
    for (const TBlock& block : library.Blocks) {
        entry(at, block.Id, Directory | (next - Root));
        next += static_cast<std::uint32_t>(16 + 8 * block.Tables.size());
        tableCount += block.Tables.size();
    }
    auto text = static_cast<std::uint32_t>(next + 16 * tableCount);
    for (const TBlock& block : library.Blocks) {
        at = directory(at, 0, block.Tables.size());
        for (const TTable& table : block.Tables) {
            entry(at, table.Language, next - Root);
            const std::uint32_t end = PutTable(image, text, table);
            image.Put32(next, RootAddress + text - Root);
            image.Put32(next + 4, end - text);
            image.Put32(next + 8, 0);
            image.Put32(next + 12, 0);
            next += 16;
            text = end;
        }
    }
    return image.Bytes;
}

/// Two blocks with a hole between them, one of them in two languages.
const TLibrary Sample{{{3157, {{0x407, {u"Null", u"", u"Größe"}}, {0x409, {u"Zero", u"One"}}}},
                       {3160, {{0x419, {u"", u"Да", u"😀", u"\xD83D!", u"\xDE00\xD83D"}}}}}};
const TTexts SampleTexts = {
    {50496, "Null"}, {50498, "Größe"},         {50545, "Да"},
    {50546, "😀"},    {50547, "\xEF\xBF\xBD!"}, {50548, "\xEF\xBF\xBD\xEF\xBF\xBD"}};

/// The strings of an image, or why it has none.
struct TOutcome {
    TTexts Texts;
    std::string Error;
    friend bool operator==(const TOutcome&, const TOutcome&) = default;
    friend void PrintTo(const TOutcome& outcome, std::ostream* out) {
        *out << outcome.Error << testing::PrintToString(outcome.Texts);
    }
};

TOutcome Outcome(std::string_view image) {
    try {
        return {TPEStrings(image).All(), ""};
    } catch (const EResourceLibraryError& error) {
        return {{}, error.what()};
    }
}

// --- The parser -------------------------------------------------------------------------------

TEST(PEStrings, ReadsImagesForAnyMachine) {
    for (const bool wide : {false, true})
        for (const int machine : {0x14C, 0x8664, 0xAA64, 0xFFFF})
            EXPECT_EQ(Outcome(Image({Sample.Blocks, wide, machine})), (TOutcome{SampleTexts, ""}));
}

TEST(PEStrings, FindsByIdWhatAllLists) {
    const TPEStrings strings(Image(Sample));
    TTexts found;
    for (int id = -20; id < 65536 + 20; ++id)
        if (!strings.Find(id).empty()) found.emplace_back(id, strings.Find(id));
    EXPECT_EQ(found, SampleTexts);
    for (const int id : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(strings.Find(id), "");
}

TEST(PEStrings, KnowsTheBordersOfTheIds) {
    const auto block = [](std::uint32_t id, std::u16string text) {
        return TBlock{
            id,
            {{0,
              {text, u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", u"", text}}}};
    };
    // The second block of a number, and numbers that give no 16-bit id, are left out.
    EXPECT_EQ(Outcome(Image({{block(0, u"a"), block(1, u"b"), block(1, u"c"), block(4096, u"d"),
                              block(4097, u"e"), block(0xFFFFFFFF, u"f")}})),
              (TOutcome{{{0, "b"}, {15, "b"}, {65520, "d"}, {65535, "d"}}, ""}));
}

TEST(PEStrings, CutsWhatTheBufferDoesNotHold) {
    const std::u16string full(1022, u'x');
    const std::string kept(1022, 'x');
    const struct {
        std::u16string Text;
        std::string Read;
    } cases[] = {
        {full + u"y", kept + "y"},
        {full + u"yz", kept + "y"},
        {full + u"\xD83D\xDE00", kept}, // not half a pair
        {full.substr(1) + u"\xD83D\xDE00z", kept.substr(1) + "😀"},
        {full + u"\xD83Dz", kept + "\xEF\xBF\xBD"}, // half a pair all the same
        {std::u16string(65535, u'Я').replace(0, 1, u"x"), "x" +
                                                              [] {
                                                                  std::string text;
                                                                  for (int i = 0; i < 1022; ++i)
                                                                      text += "Я";
                                                                  return text;
                                                              }()},
    };
    for (const auto& [text, read] : cases)
        EXPECT_EQ(Outcome(Image({{{1, {{0, {text, u"next"}}}}}})),
                  (TOutcome{{{0, read}, {1, "next"}}, ""}));
}

TEST(PEStrings, RefusesEveryTruncation) {
    for (const bool wide : {false, true}) {
        const std::string image = Image({Sample.Blocks, wide});
        for (std::size_t size = 0; size < image.size(); ++size) {
            const TOutcome outcome = Outcome(std::string_view(image).substr(0, size));
            EXPECT_FALSE(outcome.Error.empty()) << size;
        }
        EXPECT_EQ(Outcome(image + std::string(100, '\xFF')).Texts, SampleTexts);
    }
}

TEST(PEStrings, SaysWhatIsWrong) {
    const auto refused = [](std::string_view error) { return TOutcome{{}, std::string(error)}; };
    const auto broken = [&](const std::string& error) {
        return refused("broken resource library: " + error);
    };
    const auto ends = [&](const std::string& what, std::uint64_t size, std::uint64_t at,
                          std::uint64_t of) {
        return broken(what + " ends too soon, " + std::to_string(size) + " bytes wanted at " +
                      std::to_string(at) + " of " + std::to_string(of));
    };
    const TOutcome noLibrary = refused("not a Windows library"),
                   noStrings = refused("the library has no string resources"),
                   read{SampleTexts, ""};
    const std::string headers = "the optional header", directory = "the resource directory",
                      block = "a string block", nowhere = " is in no section, address ";

    const std::string good = Image(Sample);
    const std::uint64_t size = good.size(), resources = size - Root;
    // The languages of the first block, the data of its first language, and its text.
    const std::uint32_t language = FirstTable + 2 * 8, data = language + 16 + 2 * 8 + 16 + 8;
    const std::uint32_t text = data + 3 * 16;
    const struct {
        std::uint32_t At, Value;
        int Size;
        TOutcome Outcome;
    } cases[] = {
        {0, 'M' | 'S' << 8, 2, noLibrary},
        {60, 0, 4, noLibrary},
        {60, 0xFFFFFFFE, 4, noLibrary},
        {Signature, 'N' | 'E' << 8, 4, noLibrary},
        {Coff + 2, 97, 2, broken("97 sections")},
        {Coff + 2, 96, 2, ends("the file", 40, Sections32 + 40 * 37, size)},
        {Coff + 2, 0, 2, broken(directory + nowhere + "8192")},
        {Coff + 16, 0, 2, ends(headers, 2, 0, 0)},
        {Coff + 16, 96, 2, ends(headers, 4, 112, 96)},
        {Coff + 16, 0xFFFF, 2, ends("the file", 65535, Optional, size)},
        {Optional, 0x107, 2, refused("not a Windows library of 32 or 64 bits")},
        {Optional + 92, 2, 4, noStrings},
        {Optional + 92, 0xFFFFFFFF, 4, read},
        {Optional + 96 + 16, 0, 4, noStrings},
        {Optional + 96 + 16, 0xFFFFFFFF, 4, broken(directory + nowhere + "4294967295")},
        {Sections32 + 40 + 20, 0xFFFFFFFF, 4, broken(directory + nowhere + "8192")},
        {Root + 12, 0xFFFF, 2, ends(directory, 4, 16 + 8 * 65535, resources)},
        {Root + 14, 1, 2, noStrings},
        {Root + 14, 0xFFFF, 2, read}, // the string tables come before the count is used up
        {Root + 16 + 20, 0, 4, broken("data instead of a directory, entry 6")},
        // The types as their own string tables, and as the languages of a block.
        {Root + 16 + 20, Directory, 4, ends(directory, 2, Outside + 12ULL, resources)},
        {FirstTable + 4, Directory, 4, broken("a directory instead of data, entry 3")},
        {Tables + 14, 0xFFFF, 2, broken("data instead of a directory, entry 1031")},
        {Tables + 14, 0, 2, noStrings},
        {FirstTable, Directory | 3157, 4, {{SampleTexts.begin() + 2, SampleTexts.end()}, ""}},
        {FirstTable + 4, Directory | Outside, 4, ends(directory, 2, Outside + 12ULL, resources)},
        {FirstTable + 4, language - Root, 4, broken("data instead of a directory, entry 3157")},
        {language + 14, 0, 2, {{SampleTexts.begin() + 2, SampleTexts.end()}, ""}},
        {language + 20, Directory | (Tables - Root), 4,
         broken("a directory instead of data, entry 1031")},
        {language + 20, Outside, 4, ends(directory, 4, Outside, resources)},
        {data, 0xFFFFFFFF, 4, broken(block + nowhere + "4294967295")},
        {data, 0x1000, 4, {{SampleTexts.begin() + 2, SampleTexts.end()}, ""}}, // zeros
        {data + 4, 0xFFFFFFFF, 4, ends(block, 0xFFFFFFFF, 0, size - text)},
        {data + 4, 9, 4, ends(block, 8, 2, 9)},
        {text, 0xFFFF, 2, ends(block, 131070, 2, 50)},
    };
    for (const auto& test : cases) {
        TImageBytes image{good};
        image.Put(test.At, test.Value, test.Size);
        EXPECT_EQ(Outcome(image.Bytes), test.Outcome) << test.At << " = " << test.Value;
    }
}

TEST(PEStrings, RefusesBlocksThatShareTheirBytes) {
    TLibrary library{{{1, {{0, {16, std::u16string(1000, u'x')}}}}}};
    for (std::uint32_t id = 2; id <= 4096; ++id) library.Blocks.push_back({id, {{0, {}}}});
    TImageBytes image{Image(library)};
    const auto share = [&image](std::size_t first, std::size_t count) {
        const std::string target = image.Bytes.substr(FirstTable + 4, 4);
        for (std::size_t i = first; i < first + count; ++i)
            image.Bytes.replace(FirstTable + 8 * i + 4, 4, target);
    };
    share(1, 1); // two blocks alike are within the bound
    EXPECT_EQ(Outcome(image.Bytes).Texts.size(), 32u);
    share(1, 4095);
    EXPECT_EQ(Outcome(image.Bytes).Error, "broken resource library: its string blocks overlap");
}

/// Whether the outcome for any bytes is one error, or texts that these bytes can hold.
bool IsSound(std::string_view image) {
    const TOutcome outcome = Outcome(image);
    std::size_t size = 0;
    for (const auto& [id, text] : outcome.Texts) size += text.size();
    return outcome.Texts.empty() != outcome.Error.empty() && size <= image.size() / 2 * 3;
}

TEST(PEStrings, StandsAnyBytes) {
    std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed): the same run each time
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(below(4096), '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        if (round % 2 && bytes.size() > 64) bytes.replace(0, 64, Image(Sample), 0, 64);
        EXPECT_TRUE(IsSound(bytes)) << round;
    }

    const std::string images[] = {Image(Sample), Image({Sample.Blocks, true})};
    int read = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string bytes = images[round % 2];
        for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
            // Most of the headers is not read: rather the resources.
            const std::size_t begin = below(3) ? Root : 0;
            const std::size_t at = begin + below(bytes.size() - begin);
            const char values[] = {0, 1, '\x7F', '\x80', '\xFF', static_cast<char>(random())};
            bytes[at] = values[below(std::size(values))];
        }
        EXPECT_TRUE(IsSound(bytes)) << round;
        read += Outcome(bytes).Error.empty();
    }
    // Otherwise the changes would test only one side.
    EXPECT_GT(read, 2000);
    EXPECT_LT(read, 18000);
}

// --- Library files ----------------------------------------------------------------------------

class LibraryFiles : public testing::Test {
protected:
    void SetUp() override {
        Folder = std::filesystem::path(testing::TempDir()) /
                 ("tarn_libraries_" + std::to_string(::getpid()));
        std::filesystem::create_directories(Folder);
    }
    void TearDown() override { std::filesystem::remove_all(Folder); }

    std::string Write(std::string_view name, std::string_view bytes) const {
        std::ofstream(Folder / name, std::ios::binary) << bytes;
        return (Folder / name).string();
    }

    std::filesystem::path Folder;
};

TEST_F(LibraryFiles, AreLoadedOnceAndFreed) {
    TPortableOS os;
    const std::string german = Write("german.dll", Image(Sample));
    const HMODULE first = os.LoadLibrary(german);
    const HMODULE second =
        os.LoadLibrary(Write("other.dll", Image({{{3157, {{0, {u"Other"}}}}}, true})));
    EXPECT_GT(first, 32u);
    EXPECT_GT(second, 32u);
    std::filesystem::remove(german); // nothing is read again
    const auto texts = [&](int id) {
        return os.LoadString(first, id) + "|" + os.LoadString(second, id);
    };
    EXPECT_EQ(texts(50496), "Null|Other");
    EXPECT_EQ(texts(50498), "Größe|");
    os.FreeLibrary(first);
    os.FreeLibrary(first);
    EXPECT_EQ(texts(50496), "|Other");
    EXPECT_EQ(os.LoadString(0, 50496) + os.LoadString(32, 50496), "");
    EXPECT_NE(os.LoadLibrary(Write("german.dll", Image(Sample))), first);
}

TEST_F(LibraryFiles, AreRefusedWithTheReason) {
    const std::string pipe = (Folder / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string large = Write("large", Image(Sample)), limit = Write("limit", Image(Sample));
    std::filesystem::resize_file(large, TPEStrings::MaxFileSize + 1);
    std::filesystem::resize_file(limit, TPEStrings::MaxFileSize);
    EXPECT_EQ(TPEStrings::FromFile(limit).All(), SampleTexts);

    const struct {
        std::string File, Error;
    } cases[] = {
        {"", "cannot be read: No such file or directory"},
        {(Folder / "missing").string(), "cannot be read: No such file or directory"},
        {Folder.string(), "not an ordinary file"},
        {pipe, "not an ordinary file"},
        {large, "too large for a resource library: 67108865 bytes"},
        {Write("empty", ""), "not a Windows library"},
        {Write("text", "MZ is how it begins"), "not a Windows library"},
    };
    TPortableOS os;
    for (const auto& [file, error] : cases) {
        std::string message;
        try {
            (void)TPEStrings::FromFile(file);
        } catch (const EResourceLibraryError& refusal) {
            message = refusal.what();
        }
        EXPECT_EQ(message, error) << file;
        EXPECT_EQ(os.LoadLibrary(file), 0u) << file;
    }
}

} // namespace
} // namespace tarn
