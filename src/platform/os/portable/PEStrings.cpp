#include "os/portable/PEStrings.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace tarn {
namespace {

/// An offset or a size; sums of numbers from a file cannot wrap in it.
using TOffset = std::uint64_t;

/// Bytes that are read little-endian, and only where there are any.
class TBytes {
public:
    /// `name` is what an error calls the bytes.
    TBytes(std::string_view bytes, std::string_view name) : FBytes(bytes), FName(name) {}

    TOffset Size() const { return FBytes.size(); }
    TBytes Slice(TOffset at, TOffset size, std::string_view name) const {
        Check(at, size);
        return {FBytes.substr(at, size), name};
    }
    std::uint32_t U16(TOffset at) const {
        Check(at, 2);
        return Byte(at) | Byte(at + 1) << 8;
    }
    std::uint32_t U32(TOffset at) const {
        Check(at, 4);
        return Byte(at) | Byte(at + 1) << 8 | Byte(at + 2) << 16 | Byte(at + 3) << 24;
    }
    bool HasAt(TOffset at, std::string_view text) const {
        return at <= Size() && FBytes.substr(at, text.size()) == text;
    }

private:
    void Check(TOffset at, TOffset size) const {
        if (at <= Size() && size <= Size() - at) return;
        throw EResourceLibraryError("broken resource library: " + std::string(FName) +
                                    " ends too soon, " + std::to_string(size) +
                                    " bytes wanted at " + std::to_string(at) + " of " +
                                    std::to_string(Size()));
    }
    std::uint32_t Byte(TOffset at) const { return static_cast<unsigned char>(FBytes[at]); }

    std::string_view FBytes;
    std::string_view FName;
};

[[noreturn]] void RaiseNoStrings() {
    throw EResourceLibraryError("the library has no string resources");
}

/// The headers of an image: where its sections are and its resources begin.
class TImage {
public:
    explicit TImage(std::string_view bytes) : FBytes(bytes, "the file") {
        const TOffset signature = FBytes.HasAt(0, "MZ") && bytes.size() >= 64 ? FBytes.U32(60) : 0;
        if (signature == 0 || !FBytes.HasAt(signature, {"PE\0\0", 4}))
            throw EResourceLibraryError("not a Windows library");

        const TOffset coff = signature + 4;
        const std::uint32_t sectionCount = FBytes.U16(coff + 2);
        const std::uint32_t optionalSize = FBytes.U16(coff + 16);
        FResources = ResourceAddress(FBytes.Slice(coff + 20, optionalSize, "the optional header"));
        ReadSections(coff + 20 + optionalSize, sectionCount);
    }

    TOffset FileSize() const { return FBytes.Size(); }

    /// The root of the resource directory and what follows it in its section.
    TBytes Resources() const { return Mapped(FResources, "the resource directory"); }

    /// The bytes from an address relative to the image's base to the end of its section.
    TBytes Mapped(std::uint32_t address, std::string_view name) const {
        for (const TSection& section : FSections) {
            if (address < section.Address || address - section.Address >= section.Bytes.Size())
                continue;
            const std::uint32_t at = address - section.Address;
            return section.Bytes.Slice(at, section.Bytes.Size() - at, name);
        }
        throw EResourceLibraryError("broken resource library: " + std::string(name) +
                                    " is in no section, address " + std::to_string(address));
    }

private:
    struct TSection {
        std::uint32_t Address;
        TBytes Bytes;
    };

    static std::uint32_t ResourceAddress(const TBytes& header) {
        const std::uint32_t magic = header.U16(0);
        if (magic != 0x10B && magic != 0x20B)
            throw EResourceLibraryError("not a Windows library of 32 or 64 bits");
        const TOffset directories = magic == 0x10B ? 96 : 112;
        constexpr std::uint32_t resourceIndex = 2;
        if (header.U32(directories - 4) <= resourceIndex) RaiseNoStrings();
        const std::uint32_t address = header.U32(directories + TOffset{8} * resourceIndex);
        if (address == 0) RaiseNoStrings();
        return address;
    }

    void ReadSections(TOffset table, std::uint32_t count) {
        // What the loader of Windows takes. It also keeps the search for an address short.
        constexpr std::uint32_t maxSections = 96;
        if (count > maxSections)
            throw EResourceLibraryError("broken resource library: " + std::to_string(count) +
                                        " sections");
        for (std::uint32_t i = 0; i < count; ++i) {
            const TBytes header = FBytes.Slice(table + TOffset{40} * i, 40, "the section table");
            // What a cut file lacks of a section need not be what is read of it.
            const TOffset begin = std::min<TOffset>(header.U32(20), FBytes.Size());
            const TOffset size = std::min<TOffset>(header.U32(16), FBytes.Size() - begin);
            FSections.push_back({header.U32(12), FBytes.Slice(begin, size, "a section")});
        }
    }

    TBytes FBytes;
    std::vector<TSection> FSections;
    std::uint32_t FResources = 0;
};

/// One level of the resource directory: names first, then numbers, each with where it leads.
class TDirectory {
public:
    struct TEntry {
        std::uint32_t Id;
        std::uint32_t Target;
    };

    TDirectory(const TBytes& root, TOffset at)
        : FRoot(root), FFirst(at + 16 + TOffset{8} * root.U16(at + 12)), FCount(root.U16(at + 14)) {
    }

    std::uint32_t Count() const { return FCount; } ///< of the numbered entries
    TEntry Entry(std::uint32_t index) const {
        const TOffset at = FFirst + TOffset{8} * index;
        return {FRoot.U32(at), FRoot.U32(at + 4)};
    }

    /// The directory an entry leads to. The callers stand at fixed levels, so that directories that
    /// lead back to themselves are no loop.
    TDirectory Below(const TEntry& entry) const {
        if (!(entry.Target & LeadsToDirectory))
            throw EResourceLibraryError("broken resource library: data instead of a directory, "
                                        "entry " +
                                        std::to_string(entry.Id));
        return {FRoot, entry.Target & ~LeadsToDirectory};
    }

    /// The data an entry leads to.
    TBytes Data(const TEntry& entry, const TImage& image) const {
        if (entry.Target & LeadsToDirectory)
            throw EResourceLibraryError("broken resource library: a directory instead of data, "
                                        "entry " +
                                        std::to_string(entry.Id));
        constexpr std::string_view name = "a string block";
        return image.Mapped(FRoot.U32(entry.Target), name)
            .Slice(0, FRoot.U32(TOffset{entry.Target} + 4), name);
    }

private:
    static constexpr std::uint32_t LeadsToDirectory = 0x80000000;

    TBytes FRoot;
    TOffset FFirst;
    std::uint32_t FCount;
};

/// The directory of the string tables: one entry for each block.
TDirectory StringTables(const TBytes& resources) {
    constexpr std::uint32_t stringType = 6;
    const TDirectory types(resources, 0);
    for (std::uint32_t i = 0; i < types.Count(); ++i) {
        const TDirectory::TEntry type = types.Entry(i);
        if (type.Id == stringType) return types.Below(type);
    }
    RaiseNoStrings();
}

bool IsHighSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Appends a code point in UTF-8.
void AppendUtf8(std::string& text, std::uint32_t point) {
    const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto appendTail = [&](int shift) { append(0x80 | (point >> shift & 0x3F)); };
    if (point < 0x80) {
        append(point);
    } else if (point < 0x800) {
        append(0xC0 | point >> 6);
        appendTail(0);
    } else if (point < 0x10000) {
        append(0xE0 | point >> 12);
        appendTail(6);
        appendTail(0);
    } else {
        append(0xF0 | point >> 18);
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

/// Appends UTF-16 in UTF-8, no more of it than fits the buffer.
void AppendUtf16(std::string& text, const TBytes& units) {
    const TOffset count = units.Size() / 2;
    TOffset index = 0;
    while (index < std::min<TOffset>(count, TPEStrings::MaxUnits)) {
        const std::uint32_t unit = units.U16(2 * index++);
        const std::uint32_t next = index < count ? units.U16(2 * index) : 0;
        if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
            if (++index > TPEStrings::MaxUnits) return;
            AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
        } else {
            AppendUtf8(text, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? 0xFFFD : unit);
        }
    }
}

std::string ReadFile(std::string_view fileName) {
    const std::filesystem::path path(fileName);
    std::error_code error;
    // Asked before opening: a pipe would be waited for.
    if (!std::filesystem::is_regular_file(path, error))
        throw EResourceLibraryError(error ? "cannot be read: " + error.message()
                                          : "not an ordinary file");
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) throw EResourceLibraryError("cannot be read: " + error.message());
    if (size > TPEStrings::MaxFileSize)
        throw EResourceLibraryError("too large for a resource library: " + std::to_string(size) +
                                    " bytes");
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::ifstream stream(path, std::ios::binary);
    if (!stream.is_open()) throw EResourceLibraryError("cannot be opened for reading");
    stream.read(bytes.data(), static_cast<std::streamsize>(size));
    // A file that has become shorter meanwhile is judged by what it has.
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return bytes;
}

} // namespace

/// Fills the strings from an image.
class TPEStrings::TReader {
public:
    TReader(TPEStrings& strings, const TImage& image)
        : FStrings(strings), FImage(image), FUnread(image.FileSize()) {}

    void Read() {
        const TDirectory tables = StringTables(FImage.Resources());
        for (std::uint32_t i = 0; i < tables.Count(); ++i) ReadTable(tables, tables.Entry(i));
        if (FStrings.FText.empty()) RaiseNoStrings();
    }

private:
    void ReadTable(const TDirectory& tables, const TDirectory::TEntry& table) {
        // A number outside, such as a name among the numbers, stands for no string's id.
        if (table.Id < 1 || table.Id > std::uint32_t{BlockCount}) return;
        std::uint16_t& page = FStrings.FPageOf[table.Id - 1];
        if (page != 0) return;
        const TDirectory languages = tables.Below(table);
        if (languages.Count() == 0) return;
        ReadBlock(languages.Data(languages.Entry(0), FImage));
        page = static_cast<std::uint16_t>(FStrings.FPages.size() - 1);
    }

    void ReadBlock(const TBytes& block) {
        TPage page;
        TOffset at = 0;
        for (std::size_t i = 0; i < BlockSize; ++i) {
            page[i] = TextEnd();
            const TOffset size = TOffset{2} * block.U16(at);
            const TBytes units = block.Slice(at + 2, size, "a string");
            at += 2 + size;
            Consume(2 + size);
            AppendUtf16(FStrings.FText, units);
        }
        page[BlockSize] = TextEnd();
        FStrings.FPages.push_back(page);
    }

    /// Blocks with bytes of their own cannot hold more than the file does. Without this, a small
    /// file whose blocks all lead to the same bytes would fill the memory.
    void Consume(TOffset size) {
        if (size > FUnread)
            throw EResourceLibraryError("broken resource library: its string blocks overlap");
        FUnread -= size;
    }

    std::uint32_t TextEnd() const { return static_cast<std::uint32_t>(FStrings.FText.size()); }

    TPEStrings& FStrings;
    const TImage& FImage;
    TOffset FUnread;
};

TPEStrings::TPEStrings(std::string_view image) {
    TReader(*this, TImage(image)).Read();
}

TPEStrings TPEStrings::FromFile(std::string_view fileName) {
    return TPEStrings(ReadFile(fileName));
}

std::vector<std::pair<int, std::string>> TPEStrings::All() const {
    std::vector<std::pair<int, std::string>> strings;
    for (int block = 0; block < BlockCount; ++block) {
        if (FPageOf[static_cast<std::size_t>(block)] == 0) continue;
        for (int id = block * BlockSize; id < (block + 1) * BlockSize; ++id)
            if (const std::string_view text = Find(id); !text.empty())
                strings.emplace_back(id, text);
    }
    return strings;
}

} // namespace tarn
