#include "Cpu/Recording.h"

#include "rtl/SafeFile.h"
#include "rtl/TStrings.h"

#include <algorithm>
#include <map>

namespace tarn {
namespace {

constexpr std::size_t MaxFileSize = 4 << 20;
constexpr std::size_t MaxStoredText = 255; ///< of a label, a source line or an instruction

/// The state that a recording describes: its code is what is written there.
class TRecordedState : public TMachineState {
public:
    std::optional<TInstruction> InstructionAt(std::uint32_t address) const override;

private:
    friend class TRecordingReader;
    std::map<std::uint32_t, TInstruction> FCode;
};

std::optional<TInstruction> TRecordedState::InstructionAt(std::uint32_t address) const {
    const auto behind = FCode.upper_bound(address);
    if (behind == FCode.begin()) return std::nullopt;
    const TInstruction& instruction = std::prev(behind)->second;
    if (address - instruction.Address >= instruction.Bytes.size()) return std::nullopt;
    return instruction;
}

// --- Words ------------------------------------------------------------------------------------

constexpr std::string_view Blanks = " \t";

/// Takes the first word off the text; empty when there is none.
std::string_view TakeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(Blanks));
    text.remove_prefix(word.size());
    return word;
}

/// A number of 1 to `digits` hexadecimal digits.
std::uint32_t ReadHex(std::string_view word, int digits) {
    std::uint32_t value = 0;
    const auto isHex = word.find_first_not_of("0123456789abcdefABCDEF") == word.npos;
    if (word.empty() || !isHex || word.size() > static_cast<std::size_t>(digits))
        throw ECpuError(
            Format("'%s' is no hexadecimal number of at most %d digits", {word, digits}));
    for (const char c : word) value = value << 4 | (c <= '9' ? c - '0' : (c & 0x5F) - 'A' + 10);
    return value;
}

/// A number of exactly that many hexadecimal digits, as bytes and stack entries are written.
std::uint32_t ReadFullHex(std::string_view word, int digits) {
    const std::uint32_t value = ReadHex(word, digits);
    if (word.size() != static_cast<std::size_t>(digits))
        throw ECpuError(Format("'%s' does not have %d digits", {word, digits}));
    return value;
}

/// Takes "ADDRESS:" off the text.
std::uint32_t TakeAddress(std::string_view& text) {
    const std::string_view word = TakeWord(text);
    if (!word.ends_with(':')) throw ECpuError(Format("'%s' is no address with its colon", {word}));
    return ReadHex(word.substr(0, word.size() - 1), 8);
}

std::string ReadText(std::string_view text) {
    text = Trim(text);
    if (text.empty()) throw ECpuError("the text is missing");
    if (text.size() > MaxStoredText)
        throw ECpuError(Format("a text of more than %d bytes", {MaxStoredText}));
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
    if (std::any_of(text.begin(), text.end(), isControl))
        throw ECpuError("a control character in a text");
    return std::string(text);
}

/// The index of the row of a table that has the name, without case.
template <class T, std::size_t N>
std::size_t IndexOf(const T (&rows)[N], std::string_view T::*field, std::string_view name,
                    std::string_view what) {
    std::string names;
    for (std::size_t i = 0; i < N; ++i) {
        if (SameText(rows[i].*field, name)) return i;
        names.append(names.empty() ? "" : ", ").append(rows[i].*field);
    }
    throw ECpuError(Format("unknown %s '%s'; there are %s", {what, name, names}));
}

// --- The reader -------------------------------------------------------------------------------

/// Reads a recording statement by statement.
class TRecordingReader {
public:
    std::shared_ptr<const TMachineState> Read(std::string_view text, std::string_view fileName);

private:
    struct TStatement {
        std::string_view Word;
        void (TRecordingReader::*Read)(std::string_view rest);
    };
    static const TStatement Statements[];

    void ReadLine(std::string_view line);
    void ReadRegisters(std::string_view rest);
    void ReadFlags(std::string_view rest);
    void ReadMemory(std::string_view rest);
    void ReadStack(std::string_view rest);
    void ReadLabel(std::string_view rest);
    void ReadSource(std::string_view rest);
    void ReadCode(std::string_view rest);

    template <class F> static void ForEachValue(std::string_view rest, F&& take);
    void ReadTextOfCode(std::string& text, std::string_view rest, std::string_view what);
    void PutByte(std::uint64_t address, std::uint8_t byte);
    void AddCode(TInstruction instruction);
    void JoinFlags();
    void CheckEnd();

    struct TGiven { ///< a value and where it stands; line 0: nowhere
        std::uint32_t Value = 0;
        int Line = 0;
    };

    std::shared_ptr<TRecordedState> FState = std::make_shared<TRecordedState>();
    std::array<int, CpuRegisterCount> FRegisterLines{};
    std::array<TGiven, CpuFlagCount> FFlags{};
    TInstruction FNext; ///< the label and source line of the code to come
    int FNextLine = 0;  ///< where these stand; 0: nowhere
    bool FHasHeader = false;
    bool FHasData = false; ///< a memory line was read
    int FLine = 0;
};

constexpr std::string_view Header = "cpu-recording 1";

const TRecordingReader::TStatement TRecordingReader::Statements[] = {
    {"registers", &TRecordingReader::ReadRegisters}, {"flags", &TRecordingReader::ReadFlags},
    {"memory", &TRecordingReader::ReadMemory},       {"stack", &TRecordingReader::ReadStack},
    {"label", &TRecordingReader::ReadLabel},         {"source", &TRecordingReader::ReadSource},
    {"code", &TRecordingReader::ReadCode},
};

std::shared_ptr<const TMachineState> TRecordingReader::Read(std::string_view text,
                                                            std::string_view fileName) {
    if (text.starts_with(Utf8Mark)) text.remove_prefix(Utf8Mark.size());
    try {
        int line = 0;
        ForEachLine(text, [&](std::string_view each) {
            FLine = ++line;
            ReadLine(each);
        });
        CheckEnd();
    } catch (const ECpuError& error) {
        throw ECpuError(Format("%s:%d: %s", {fileName, std::max(FLine, 1), error.what()}));
    }
    FState->FStopText = Format("at %s, as recorded", {HexText(FState->Register(rgEIP))});
    return FState;
}

void TRecordingReader::ReadLine(std::string_view line) {
    line = Trim(line);
    if (line.empty() || line.starts_with('#')) return;
    if (!FHasHeader) {
        if (line != Header)
            throw ECpuError(Format("a recording begins with the line '%s'", {Header}));
        FHasHeader = true;
        return;
    }
    const std::string_view word = TakeWord(line);
    const TStatement& statement =
        Statements[IndexOf(Statements, &TStatement::Word, word, "statement")];
    (this->*statement.Read)(line);
}

/// Calls `take(name, value)` for each "NAME=VALUE".
template <class F> void TRecordingReader::ForEachValue(std::string_view rest, F&& take) {
    std::string_view word = TakeWord(rest);
    if (word.empty()) throw ECpuError("NAME=VALUE is missing");
    for (; !word.empty(); word = TakeWord(rest)) {
        const std::size_t sign = word.find('=');
        if (sign == word.npos) throw ECpuError(Format("'%s' is no NAME=VALUE", {word}));
        take(word.substr(0, sign), word.substr(sign + 1));
    }
}

void TRecordingReader::ReadRegisters(std::string_view rest) {
    ForEachValue(rest, [&](std::string_view name, std::string_view value) {
        const std::size_t index = IndexOf(CpuRegisters, &TCpuRegisterRow::Name, name, "register");
        if (FRegisterLines[index] != 0)
            throw ECpuError(Format("%s stands in line %d already",
                                   {CpuRegisters[index].Name, FRegisterLines[index]}));
        FState->FRegisters[index] = ReadHex(value, CpuRegisters[index].Digits);
        FRegisterLines[index] = FLine;
    });
}

void TRecordingReader::ReadFlags(std::string_view rest) {
    ForEachValue(rest, [&](std::string_view name, std::string_view value) {
        const std::size_t index = IndexOf(CpuFlags, &TCpuFlagRow::Short, name, "flag");
        const TCpuFlagRow& flag = CpuFlags[index];
        if (FFlags[index].Line != 0)
            throw ECpuError(
                Format("%s stands in line %d already", {flag.Short, FFlags[index].Line}));
        const std::uint32_t number = ReadHex(value, 1);
        if (number > flag.Mask)
            throw ECpuError(Format("%s is at most %d", {flag.Short, flag.Mask}));
        FFlags[index] = {number, FLine};
    });
}

void TRecordingReader::ReadMemory(std::string_view rest) {
    const std::uint64_t start = TakeAddress(rest);
    std::uint64_t address = start;
    for (std::string_view word; !(word = TakeWord(rest)).empty(); ++address)
        PutByte(address, static_cast<std::uint8_t>(ReadFullHex(word, 2)));
    if (address == start) throw ECpuError("the bytes are missing");
    if (!FHasData) FState->FDataAddress = static_cast<std::uint32_t>(start);
    FHasData = true;
}

void TRecordingReader::ReadStack(std::string_view rest) {
    const std::uint64_t start = TakeAddress(rest);
    std::uint64_t address = start;
    for (std::string_view word; !(word = TakeWord(rest)).empty(); address += 4)
        for (std::uint32_t i = 0, entry = ReadFullHex(word, 8); i < 4; ++i, entry >>= 8)
            PutByte(address + i, static_cast<std::uint8_t>(entry));
    if (address == start) throw ECpuError("the entries are missing");
}

void TRecordingReader::ReadTextOfCode(std::string& text, std::string_view rest,
                                      std::string_view what) {
    if (!text.empty()) throw ECpuError(Format("a second %s for the same code line", {what}));
    text = ReadText(rest);
    FNextLine = FLine;
}

void TRecordingReader::ReadLabel(std::string_view rest) {
    ReadTextOfCode(FNext.Label, rest, "label");
}

void TRecordingReader::ReadSource(std::string_view rest) {
    ReadTextOfCode(FNext.Source, rest, "source line");
}

void TRecordingReader::ReadCode(std::string_view rest) {
    TInstruction instruction = std::move(FNext);
    FNext = {};
    FNextLine = 0;
    instruction.Address = TakeAddress(rest);
    const std::size_t bar = rest.find('|');
    if (bar == rest.npos) throw ECpuError("a | is missing between the bytes and the text");
    std::string_view bytes = rest.substr(0, bar);
    for (std::string_view word; !(word = TakeWord(bytes)).empty();) {
        if (instruction.Bytes.size() == TInstruction::MaxSize)
            throw ECpuError(
                Format("an instruction of more than %d bytes", {TInstruction::MaxSize}));
        instruction.Bytes += static_cast<char>(ReadFullHex(word, 2));
    }
    if (instruction.Bytes.empty()) throw ECpuError("the bytes are missing");
    instruction.Text = ReadText(rest.substr(bar + 1));
    AddCode(std::move(instruction));
}

void TRecordingReader::AddCode(TInstruction instruction) {
    const std::uint32_t address = instruction.Address;
    for (std::size_t i = 0; i < instruction.Bytes.size(); ++i) {
        if (const auto other = FState->InstructionAt(static_cast<std::uint32_t>(address + i)))
            throw ECpuError(
                Format("the instruction overlaps the one at %s", {HexText(other->Address)}));
        PutByte(std::uint64_t{address} + i, static_cast<std::uint8_t>(instruction.Bytes[i]));
    }
    FState->FCode.emplace(address, std::move(instruction));
}

/// Statements may tell of the same byte, as a dump that reaches over code does, when they agree.
void TRecordingReader::PutByte(std::uint64_t address, std::uint8_t byte) {
    if (address > 0xFFFFFFFFU) throw ECpuError("it runs over the end of the address space");
    const auto place = static_cast<std::uint32_t>(address);
    const auto known = FState->ByteAt(place);
    if (known && *known != byte)
        throw ECpuError(Format("the byte at %s is %s above and %s here",
                               {HexText(place), HexText(*known, 2), HexText(byte, 2)}));
    FState->FMemory.Put(place, byte);
}

/// Flags are bits of EFL: those given without it make it, those beside it must agree.
void TRecordingReader::JoinFlags() {
    std::uint32_t& efl = FState->FRegisters[rgEFL];
    for (std::size_t i = 0; i < CpuFlagCount; ++i) {
        const auto& [value, line] = FFlags[i];
        if (FRegisterLines[rgEFL] == 0) efl |= value << CpuFlags[i].Bit;
        const std::uint32_t found = FState->Flag(static_cast<TCpuFlag>(i));
        if (line == 0 || found == value) continue;
        FLine = line;
        throw ECpuError(Format("%s is %d here and %d in EFL", {CpuFlags[i].Short, value, found}));
    }
}

void TRecordingReader::CheckEnd() {
    if (!FHasHeader) throw ECpuError(Format("a recording begins with the line '%s'", {Header}));
    if (FNextLine != 0) {
        FLine = FNextLine;
        throw ECpuError("no code line follows");
    }
    JoinFlags();
    if (!FHasData) FState->FDataAddress = FState->Register(rgESP);
}

} // namespace

std::shared_ptr<const TMachineState> ReadRecording(std::string_view text,
                                                   std::string_view fileName) {
    return TRecordingReader().Read(text, fileName);
}

std::shared_ptr<const TMachineState> LoadRecording(std::string_view fileName) {
    std::string text;
    LoadFileInto(fileName, MaxFileSize, [&](std::size_t size) {
        text.resize(size);
        return text.data();
    });
    return ReadRecording(text, fileName);
}

} // namespace tarn
