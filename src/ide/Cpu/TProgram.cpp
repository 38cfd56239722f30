#include "Cpu/TProgram.h"

#include <algorithm>

namespace tarn {
namespace {

// The layout of an ELF file: "Tool Interface Standard, Executable and Linking Format", version 1.2.
constexpr std::size_t HeaderSize = 52, SegmentSize = 32, SectionSize = 40, SymbolSize = 16;
constexpr std::uint32_t ET_EXEC = 2, EM_386 = 3;
constexpr std::uint32_t PT_LOAD = 1, PT_DYNAMIC = 2, PT_INTERP = 3;
constexpr std::uint32_t PF_X = 1, PF_W = 2;
constexpr std::uint32_t SHT_SYMTAB = 2, SHF_EXECINSTR = 4, SHN_LORESERVE = 0xFF00;
constexpr std::uint32_t STT_NOTYPE = 0, STT_FUNC = 2;

constexpr std::uint64_t MaxMemory = TSparseMemory::MaxPages * TSparseMemory::PageSize;

/// The numbers of a file, low byte first; outside the file ECpuError is raised.
class TElfBytes {
public:
    explicit TElfBytes(std::string_view file) : FFile(file) {}

    std::string_view Slice(std::uint64_t offset, std::uint64_t size) const {
        if (offset > FFile.size() || size > FFile.size() - offset)
            throw ECpuError("the ELF file is cut off");
        return FFile.substr(offset, size);
    }
    std::uint32_t U8(std::uint64_t at) const { return Number(Slice(at, 1)); }
    std::uint32_t U16(std::uint64_t at) const { return Number(Slice(at, 2)); }
    std::uint32_t U32(std::uint64_t at) const { return Number(Slice(at, 4)); }
    /// A text that a zero byte ends.
    std::string_view Text(std::string_view table, std::uint32_t offset) const {
        const std::string_view text = offset < table.size() ? table.substr(offset) : "";
        return text.substr(0, text.find('\0'));
    }

private:
    static std::uint32_t Number(std::string_view bytes) {
        std::uint32_t value = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    }

    std::string_view FFile;
};

/// Puts a segment of `size` bytes into the memory, the first of them as given. The rest of its
/// pages is zeros, unless another segment lies there.
void PutSegment(TSparseMemory& memory, std::uint32_t base, std::string_view bytes,
                std::uint64_t size) {
    constexpr std::uint64_t pageSize = TSparseMemory::PageSize;
    const std::uint64_t end = base + size;
    if (end > std::uint64_t{1} << 32)
        throw ECpuError("a segment runs over the end of the address space");
    for (std::uint64_t start = base - base % pageSize; start < end; start += pageSize) {
        TSparseMemory::TPage& page = memory.PageOf(static_cast<std::uint32_t>(start));
        page.Known.set();
        const std::uint64_t from = std::max<std::uint64_t>(start, base);
        const std::uint64_t to = std::min(start + pageSize, base + std::uint64_t{bytes.size()});
        for (std::uint64_t at = from; at < to; ++at)
            page.Bytes[at - start] = static_cast<std::uint8_t>(bytes[at - base]);
    }
}

void CheckKind(const TElfBytes& elf) {
    elf.Slice(0, HeaderSize);
    const bool fits = elf.U8(4) == 1 && elf.U8(5) == 1 && elf.U16(18) == EM_386;
    if (!fits) throw ECpuError("not an ELF file for a 32-bit x86 processor");
    if (elf.U16(16) != ET_EXEC)
        throw ECpuError("not an executable with fixed addresses (link with -static -no-pie)");
}

void LoadSegments(TProgram& program, const TElfBytes& elf) {
    const std::uint64_t table = elf.U32(28);
    const std::uint32_t size = elf.U16(42);
    const std::uint32_t count = elf.U16(44);
    if (count > 0 && size < SegmentSize) throw ECpuError("its program headers are too short");
    std::optional<std::uint32_t> first;
    std::optional<std::uint32_t> written;
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t at = table + std::uint64_t{i} * size;
        const std::uint32_t type = elf.U32(at);
        if (type == PT_DYNAMIC || type == PT_INTERP)
            throw ECpuError("the program needs shared libraries (link with -static)");
        const std::uint32_t memorySize = elf.U32(at + 20);
        if (type != PT_LOAD || memorySize == 0) continue;
        if ((total += memorySize) > MaxMemory) throw ECpuError("its segments have more than 16 MB");
        const std::uint32_t base = elf.U32(at + 8);
        const std::uint32_t fileSize = elf.U32(at + 16);
        if (fileSize > memorySize) throw ECpuError("a segment has more bytes than memory");
        PutSegment(program.Memory, base, elf.Slice(elf.U32(at + 4), fileSize), memorySize);
        if (!first) first = base;
        const std::uint32_t flags = elf.U32(at + 24);
        if (!written && (flags & PF_W) != 0 && (flags & PF_X) == 0) written = base;
    }
    if (!first) throw ECpuError("the program has no segment to load");
    program.DataAddress = written.value_or(*first);
}

/// The labels of one symbol table. A routine's name goes before that of a mere label.
void LoadSymbols(TProgram& program, const TElfBytes& elf, std::uint64_t section,
                 const std::vector<std::uint64_t>& sections) {
    const auto contents = [&](std::uint64_t header) {
        return elf.Slice(elf.U32(header + 16), elf.U32(header + 20));
    };
    const std::uint32_t link = elf.U32(section + 24);
    if (link >= sections.size()) throw ECpuError("its symbols have no names");
    const std::string_view names = contents(sections[link]);
    const TElfBytes symbols(contents(section));
    const std::uint64_t size = contents(section).size();
    for (const std::uint32_t kind : {STT_FUNC, STT_NOTYPE})
        for (std::uint64_t at = 0; at + SymbolSize <= size; at += SymbolSize) {
            const std::uint32_t home = symbols.U16(at + 14);
            if ((symbols.U8(at + 12) & 15) != kind || home == 0 || home >= SHN_LORESERVE) continue;
            const bool isCode =
                home < sections.size() && (elf.U32(sections[home] + 8) & SHF_EXECINSTR) != 0;
            const std::string_view name = elf.Text(names, symbols.U32(at));
            if (isCode && !name.empty()) program.Labels.try_emplace(symbols.U32(at + 4), name);
        }
}

void LoadLabels(TProgram& program, const TElfBytes& elf) {
    const std::uint64_t table = elf.U32(32);
    const std::uint32_t size = elf.U16(46);
    const std::uint32_t count = table == 0 ? 0 : elf.U16(48);
    if (count > 0 && size < SectionSize) throw ECpuError("its section headers are too short");
    std::vector<std::uint64_t> sections;
    for (std::uint32_t i = 0; i < count; ++i) {
        sections.push_back(table + std::uint64_t{i} * size);
        elf.Slice(sections.back(), SectionSize);
    }
    // A file has one table of symbols at most.
    const auto symbols = std::find_if(sections.begin(), sections.end(), [&](std::uint64_t section) {
        return elf.U32(section + 4) == SHT_SYMTAB;
    });
    if (symbols != sections.end()) LoadSymbols(program, elf, *symbols, sections);
}

} // namespace

std::optional<std::uint32_t> TProgram::AddressOf(std::string_view label) const {
    for (const auto& [address, name] : Labels)
        if (name == label) return address;
    return std::nullopt;
}

TProgram TProgram::FromBytes(std::string_view bytes, std::uint32_t base) {
    if (bytes.empty()) throw ECpuError("the program is empty");
    if (bytes.size() > MaxMemory) throw ECpuError("the program has more than 16 MB");
    TProgram program;
    PutSegment(program.Memory, base, bytes, bytes.size());
    program.Entry = program.DataAddress = base;
    return program;
}

TProgram TProgram::FromElf(std::string_view file) {
    const TElfBytes elf(file);
    CheckKind(elf);
    TProgram program;
    LoadSegments(program, elf);
    LoadLabels(program, elf);
    program.Entry = elf.U32(24);
    return program;
}

} // namespace tarn
