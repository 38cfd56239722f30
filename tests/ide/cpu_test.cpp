#include "Cpu/Emulator.h"
#include "Cpu/Recording.h"
#include "ErrorOf.h"
#include "ide_fixture.h"
#include "rtl/SafeFile.h"

namespace tarn {
namespace {

using namespace std::string_literals;

std::string SampleFile() {
    return TARN_SOURCE_DIR "/examples/sum.cpu";
}

/// Reads a recording that has its header, as the file "rec".
TStoppedState Recorded(std::string_view statements) {
    return ReadRecording("cpu-recording 1\n" + std::string(statements), "rec");
}

std::string LineText(const TMachineState& state, std::uint32_t address) {
    const TInstruction line = DisassemblyLine(state, address);
    std::string text;
    for (const std::string* above : {&line.Label, &line.Source})
        if (!above->empty()) text += *above + " / ";
    return text + DisassemblyText(line);
}

// --- Recordings -------------------------------------------------------------------------------

TEST(CpuRecording, ReadsEveryStatement) {
    const TStoppedState state = ReadRecording("\xEF\xBB\xBF\n# a mark of UTF-8\r\n"
                                              "cpu-recording 1\r\n"
                                              "  registers eax=FFFFFFFF\tCS=1b\rFLAGS IO=3 CF=1\n"
                                              "stack FFFFFFF8: 12345678 9ABCDEF0\n"
                                              "memory 10: 55 8b EC\n"
                                              "label  L | x \n"
                                              "code 11: 8B EC | mov | ebp",
                                              "rec");
    EXPECT_EQ(state->Register(rgEAX), 0xFFFFFFFF);
    EXPECT_EQ(state->Register(rgCS), 0x1BU);
    EXPECT_EQ(state->Register(rgEFL), 0x3001U);
    EXPECT_EQ(state->Flag(flIOPL), 3U);
    EXPECT_EQ(state->EntryAt(0xFFFFFFF8), 0x12345678U);
    EXPECT_EQ(state->EntryAt(0xFFFFFFFA), 0xDEF01234U);
    EXPECT_EQ(state->EntryAt(0xFFFFFFFD), std::nullopt); // it would go on at 00000000
    EXPECT_EQ(state->DataAddress(), 0x10U);
    EXPECT_EQ(LineText(*state, 0x10), "00000010 55               db 0x55");
    EXPECT_EQ(LineText(*state, 0x12), "L | x / 00000011 8BEC             mov | ebp");
    EXPECT_EQ(LineText(*state, 0x13), "00000013 ??               ???");
    EXPECT_EQ(Recorded("registers ESP=77")->DataAddress(), 0x77U);
    EXPECT_EQ(Recorded("code FFFFFFFF: 90 | nop\nmemory 0: 90")->ByteAt(0), 0x90);
}

TEST(CpuRecording, RefusesWithFileAndLine) {
    const std::string longText(256, 'x');
    const struct {
        std::string Statements; ///< below the header, which is line 1
        std::string_view Error;
    } cases[] = {
        {"codes 0: 90 | nop",
         "2: unknown statement 'codes'; there are registers, flags, memory, stack, label, source, "
         "code"},
        {"registers", "2: NAME=VALUE is missing"},
        {"registers EAX", "2: 'EAX' is no NAME=VALUE"},
        {"registers EAX=", "2: '' is no hexadecimal number of at most 8 digits"},
        {"registers EAX=0x1", "2: '0x1' is no hexadecimal number of at most 8 digits"},
        {"registers EAX=123456789", "2: '123456789' is no hexadecimal number of at most 8 digits"},
        {"registers CS=00001", "2: '00001' is no hexadecimal number of at most 4 digits"},
        {"registers EAX=1\nregisters eax=1", "3: EAX stands in line 2 already"},
        {"flags CF=2", "2: CF is at most 1"},
        {"flags IO=4", "2: IO is at most 3"},
        {"flags CF=1\n\nflags CF=1", "4: CF stands in line 2 already"},
        {"flags CF=1\nflags ZF=1\nregisters EFL=40", "2: CF is 1 here and 0 in EFL"},
        {"flags CF=0\nregisters EFL=1\n#", "2: CF is 0 here and 1 in EFL"},
        {"memory 10 90", "2: '10' is no address with its colon"},
        {"memory :", "2: '' is no hexadecimal number of at most 8 digits"},
        {"memory 10:", "2: the bytes are missing"},
        {"memory 10: 9", "2: '9' does not have 2 digits"},
        {"memory FFFFFFFF: 90 90", "2: it runs over the end of the address space"},
        {"memory 10: 90 91\nmemory 11: 92", "3: the byte at 00000011 is 91 above and 92 here"},
        {"stack 10:", "2: the entries are missing"},
        {"stack 10: 1234", "2: '1234' does not have 8 digits"},
        {"stack FFFFFFFD: 00000000", "2: it runs over the end of the address space"},
        {"code 10: | nop", "2: the bytes are missing"},
        {"code 10: 90 nop", "2: a | is missing between the bytes and the text"},
        {"code 10: 90 |", "2: the text is missing"},
        {"code 10: 90 | " + longText, "2: a text of more than 255 bytes"},
        {"code 10: 90 | n\top", "2: a control character in a text"},
        {"code 10: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F | x",
         "2: an instruction of more than 15 bytes"},
        {"code FFFFFFFF: 90 90 | x", "2: it runs over the end of the address space"},
        {"code 11: 90 | nop\ncode 10: 90 90 | x",
         "3: the instruction overlaps the one at 00000011"},
        {"code 10: 90 90 | x\ncode 11: 90 | nop",
         "3: the instruction overlaps the one at 00000010"},
        {"label A\nlabel B", "3: a second label for the same code line"},
        {"source A\nmemory 0: 00", "2: no code line follows"},
    };
    for (const auto& [statements, error] : cases)
        EXPECT_EQ(ErrorOf([&text = statements] { Recorded(text); }),
                  "ECpuError: rec:" + std::string(error))
            << statements;

    for (const std::string_view text : {"", "\n# nothing", "cpu-recording 2", "MZ"})
        EXPECT_EQ(ErrorOf([&] {
                      ReadRecording(text, "rec");
                  }).substr(std::string_view("ECpuError: rec:1").size()),
                  ": a recording begins with the line 'cpu-recording 1'")
            << text;

    std::string scattered;
    for (std::uint32_t i = 0; i <= TSparseMemory::MaxPages; ++i)
        scattered += "memory " + HexText(i * TSparseMemory::PageSize) + ": 00\n";
    EXPECT_EQ(ErrorOf([&] { Recorded(scattered); }),
              "ECpuError: rec:4098: more than 4096 pages of memory");
}

// --- The window -------------------------------------------------------------------------------

/// Reads the window as other programs do: panes and properties by their names.
class CpuWindowTest : public IdeTest {
protected:
    TObject& Pane(std::string_view name) const {
        for (int i = 0; i < Screen()->FormCount(); ++i)
            if (Screen()->Forms(i)->Name() == "DisassemblyView")
                return *Screen()->Forms(i)->FindComponent(name);
        throw EComponentError("there is no CPU window");
    }
    template <class T> static T Get(const TObject& object, std::string_view name) {
        T value{};
        object.ClassType().FindProp(name)->Get(object, &value);
        return value;
    }
    static void Select(TObject& pane, std::string_view name, std::int32_t value) {
        pane.ClassType().FindProp(name)->Set(pane, &value);
    }
    std::string Dump(std::int32_t offset) const {
        Select(Pane("DumpView"), "SelectedOffset", offset);
        return Get<std::string>(Pane("DumpView"), "SelectedData");
    }
    std::string Stack(std::int32_t offset) const {
        Select(Pane("StackView"), "SelectedOffset", offset);
        return Get<std::string>(Pane("StackView"), "SelectedData");
    }
    /// "NAME=VALUE " for all integers of the object that a pane publishes, in their order.
    std::string Values(std::string_view pane, std::string_view property) const {
        const TObject& object = *Get<TObject*>(Pane(pane), property);
        std::string text;
        ForEachProp(object.ClassType(), [&](const TPropInfo& prop) {
            EXPECT_EQ(prop.PropType->Kind, tkInteger);
            text += Format("%s=%d ", {prop.Name, Get<std::int32_t>(object, prop.Name)});
        });
        return text;
    }
};

TEST_F(CpuWindowTest, PublishesTheState) {
    Ide->StopAt(Recorded("registers EAX=FFFFFFFF EBX=2 ECX=3 EDX=4 ESI=5 EDI=6 EBP=7 ESP=80000000\n"
                         "registers EIP=9 EFL=FFFFFFFF CS=FFFF DS=C SS=D ES=E FS=F GS=10"));
    EXPECT_EQ(Values("RegisterView", "CurrentRegs"),
              "EAX=-1 EBX=2 ECX=3 EDX=4 ESI=5 EDI=6 EBP=7 ESP=-2147483648 EIP=9 EFL=-1 CS=65535 "
              "DS=12 SS=13 ES=14 FS=15 GS=16 ");
    EXPECT_EQ(Values("FlagsView", "CurrentFlags"),
              "Carry=1 Parity=1 AuxCarry=1 Zero=1 Sign=1 Trap=1 Interrupt=1 Direction=1 Overflow=1 "
              "IOPL=3 NestedTask=1 Resume=1 V86Mode=1 Alignment=1 VirtualInterruptFlag=1 "
              "VirtualInterruptPending=1 ID=1 ");
    EXPECT_EQ(Get<std::int32_t>(Pane("DisassemblerView1"), "SelectedAddress"), 9);
    EXPECT_EQ(Get<std::int32_t>(Pane("StackView"), "SelectedOffset"), INT32_MIN);
    const struct {
        std::uint32_t Efl;
        std::string_view Set; ///< the only flag
    } bits[] = {
        {1, "Carry"},
        {4, "Parity"},
        {0x10, "AuxCarry"},
        {0x40, "Zero"},
        {0x80, "Sign"},
        {0x100, "Trap"},
        {0x200, "Interrupt"},
        {0x400, "Direction"},
        {0x800, "Overflow"},
        {0x1000, "IOPL"},
        {0x4000, "NestedTask"},
        {0x10000, "Resume"},
        {0x20000, "V86Mode"},
        {0x40000, "Alignment"},
        {0x80000, "VirtualInterruptFlag"},
        {0x100000, "VirtualInterruptPending"},
        {0x200000, "ID"},
    };
    for (const auto& [efl, set] : bits) {
        Ide->StopAt(Recorded("registers EFL=" + HexText(efl)));
        std::string others = Values("FlagsView", "CurrentFlags");
        const std::string one = std::string(set) + "=1 ";
        ASSERT_NE(others.find(one), others.npos) << set << " in " << others;
        others.erase(others.find(one), one.size());
        EXPECT_EQ(others.find("=1"), others.npos) << set;
    }
}

TEST_F(CpuWindowTest, StepsByteByByteThroughTheSample) {
    Ide->StopAt(LoadRecording(SampleFile()));
    TObject& pane = Pane("DisassemblerView1");
    std::string lines;
    std::string last;
    for (std::int32_t address = 0x401000; address < 0x40101C; ++address) {
        Select(pane, "SelectedAddress", address);
        std::string line;
        for (const auto name : {"SelectedLabel", "SelectedSource", "SelectedDisassembly"})
            if (const auto text = Get<std::string>(pane, name); !text.empty())
                line += (line.empty() ? "" : " / ") + text;
        if (line != last) lines += line + "\n";
        last = line;
    }
    EXPECT_EQ(lines, R"(Sum / Orchard.dpr.21: begin / 00401000 55               push ebp
00401001 8BEC             mov ebp, esp
00401003 56               push esi
Orchard.dpr.22: Total := 0; / 00401004 33C0             xor eax, eax
Orchard.dpr.23: for I := 1 to 3 do / 00401006 B903000000       mov ecx, 3
0040100B 8B7508           mov esi, dword ptr [ebp + 8]
Next / Orchard.dpr.24: Total := Total + Values[I]; / 0040100E 0306             add eax, dword ptr [esi]
00401010 83C604           add esi, 4
00401013 49               dec ecx
00401014 75F8             jne 0x40100e
Orchard.dpr.25: end; / 00401016 5E               pop esi
00401017 5D               pop ebp
00401018 C20400           ret 4
0040101B ??               ???
)");
}

TEST_F(CpuWindowTest, ShowsWhatIsMissingAndBothEndsOfMemory) {
    Ide->StopAt(
        Recorded("memory 7FFFFFFE: 01 02 03 04 05\nmemory 0: AA BB\nmemory FFFFFFFE: CC DD\n"
                 "code 7FFFFFFF: 02 03 | x\ncode FFFFFFFF: DD | last\ncode 0: AA | first"));
    EXPECT_EQ(Dump(INT32_MAX), "02");
    EXPECT_EQ(Dump(INT32_MIN), "03");
    EXPECT_EQ(Dump(-1), "DD");
    EXPECT_EQ(Dump(2), "??");
    EXPECT_EQ(Stack(0x7FFFFFFE), "04030201");
    EXPECT_EQ(Stack(-2), "BBAADDCC");
    EXPECT_EQ(Stack(-1), "????????");
    TObject& pane = Pane("DisassemblerView1");
    for (const auto& [address, text] : std::initializer_list<std::pair<int, std::string_view>>{
             {INT32_MIN, "7FFFFFFF 0203             x"},
             {-1, "FFFFFFFF DD               last"},
             {0, "00000000 AA               first"}}) {
        Select(pane, "SelectedAddress", address);
        EXPECT_EQ(Get<std::string>(pane, "SelectedDisassembly"), text);
        EXPECT_EQ(Get<std::int32_t>(pane, "SelectedAddress"), address);
    }
    // Another stop leaves the dump where it is; the window stays the same.
    Dump(1);
    const TCpuWindow* const window = Ide->CpuWindow();
    Ide->StopAt(Recorded("registers EIP=5 ESP=6"));
    EXPECT_EQ(Ide->CpuWindow(), window);
    EXPECT_EQ(Get<std::int32_t>(pane, "SelectedAddress"), 5);
    EXPECT_EQ(Get<std::int32_t>(Pane("StackView"), "SelectedOffset"), 6);
    EXPECT_EQ(Get<std::int32_t>(Pane("DumpView"), "SelectedOffset"), 1);
}

TEST_F(CpuWindowTest, LivesWhileTheProgramIsStopped) {
    OpenText("text");
    EXPECT_FALSE(Ide->ShowCpuWindow());
    Ide->ResumeProgram();
    Ide->StopAt(Recorded(""));
    EXPECT_TRUE(Ide->CpuWindow()->Visible());
    EXPECT_EQ(Screen()->ActiveForm(), Ide->CpuWindow());
    Ide->CloseCpuWindow();
    EXPECT_EQ(Ide->CpuWindow(), nullptr);
    EXPECT_TRUE(Ide->EditWindow().EditorHasFocus()); // it was behind
    EXPECT_TRUE(Ide->ShowCpuWindow());
    Ide->ResumeProgram();
    EXPECT_EQ(Ide->CpuWindow(), nullptr);
    EXPECT_EQ(Ide->StoppedProgram(), nullptr);
    FreeObject([&] { // somebody else frees the window
        Ide->StopAt(Recorded(""));
        return Ide->CpuWindow();
    }());
    EXPECT_EQ(Ide->CpuWindow(), nullptr);
    Ide->StopAt(Recorded("")); // the end of the IDE finds it open
}

/// A peer whose user closes the window as soon as the control changes.
class TClosingPeer : public IControlPeer {
public:
    explicit TClosingPeer(TIde& ide) : FIde(ide) {}
    void Invalidate(TControl&) override {}
    void Redraw(TControl&, std::uint32_t) override {}
    void StateChanged(TControl&) override { FIde.CloseCpuWindow(); }
    void SetRedraw(TControl&, bool) override {}

private:
    TIde& FIde;
};

TEST_F(CpuWindowTest, MayBeClosedWhileItIsRead) {
    TClosingPeer peer(*Ide);
    Ide->StopAt(Recorded(""));
    for (const auto& [name, property] :
         std::initializer_list<std::pair<std::string_view, std::string_view>>{
             {"DisassemblerView1", "SelectedAddress"},
             {"DumpView", "SelectedOffset"},
             {"StackView", "SelectedOffset"}}) {
        auto* const pane = static_cast<TControl*>(&Pane(name));
        const TWeak<TControl> reader(pane);
        const TWeak<TPersistent> regs(
            static_cast<TPersistent*>(Get<TObject*>(Pane("RegisterView"), "CurrentRegs")));
        pane->Peer = &peer;
        Select(*pane, property, 1);
        EXPECT_FALSE(reader) << name;
        EXPECT_FALSE(regs) << name;
        Ide->ShowCpuWindow();
    }
    static_cast<TControl&>(Pane("RegisterView")).Peer = &peer;
    Ide->StopAt(Recorded("registers EAX=7")); // closed between two panes, and opened again
    EXPECT_EQ(Values("RegisterView", "CurrentRegs").substr(0, 6), "EAX=7 ");
}

// --- Programs ---------------------------------------------------------------------------------

std::string Little(std::uint32_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

constexpr std::uint32_t Code = 0x08048000, Data = 0x08049000;

/// An ELF executable by hand. Start: eax = 5, calls Twice, interrupt 80h; Twice: doubles eax, adds
/// the integer 7 of the data segment, whose second integer is zero and not in the file.
std::string MakeElf() {
    const std::string code = "\xB8\x05\0\0\0\xE8\x03\0\0\0\xCD\x80\x90"s // Start
                             "\x01\xC0\x03\x05\x00\x90\x04\x08\xC3"s;    // Twice
    const std::string names = "\0Start\0Twice\0"s;
    const auto codeAt = 52 + 2 * 32U;
    const auto dataAt = codeAt + static_cast<std::uint32_t>(code.size());
    const auto symbolsAt = dataAt + 4;
    const auto namesAt = symbolsAt + 4 * 16;
    const auto sectionsAt = namesAt + static_cast<std::uint32_t>(names.size());
    std::string elf = "\x7F"
                      "ELF\1\1\1"s +
                      std::string(9, '\0');
    const auto add = [&](std::initializer_list<std::uint32_t> words) {
        for (const std::uint32_t word : words) elf += Little(word, 4);
    };
    add({2 | 3 << 16, 1, Code, 52, sectionsAt, 0, 52 | 32 << 16, 2 | 40 << 16, 4 | 0 << 16});
    add({1, codeAt, Code, Code, dataAt - codeAt, dataAt - codeAt, 5, 1});
    add({1, dataAt, Data, Data, 4, 8, 6, 1});
    elf += code;
    add({7, 0, 0, 0, 0});                // the data; the symbol that is none
    add({1, Code, 0, 0 | 1 << 16});      // Start, a label
    add({1, Code + 13, 0, 0 | 1 << 16}); // a label "Start" where a routine begins
    add({7, Code + 13, 0, 2 | 1 << 16}); // Twice, a routine
    elf += names;
    for (int i = 0; i < 10; ++i) add({0});
    add({0, 1, 4, Code, codeAt, dataAt - codeAt, 0, 0, 1, 0});
    add({0, 2, 0, 0, symbolsAt, 4 * 16, 3, 1, 4, 16});
    add({0, 3, 0, 0, namesAt, static_cast<std::uint32_t>(names.size()), 0, 0, 1, 0});
    return elf;
}

TEST(CpuProgram, LoadsSegmentsAndLabels) {
    const TProgram program = TProgram::FromElf(MakeElf());
    EXPECT_EQ(program.Entry, Code);
    EXPECT_EQ(program.DataAddress, Data);
    EXPECT_EQ(program.Labels,
              (std::map<std::uint32_t, std::string>{{Code, "Start"}, {Code + 13, "Twice"}}));
    EXPECT_EQ(program.AddressOf("Twice"), Code + 13);
    EXPECT_EQ(program.AddressOf("Thrice"), std::nullopt);
    EXPECT_EQ(program.Memory.ByteAt(Code + 1), 5);
    EXPECT_EQ(program.Memory.ByteAt(Data), 7);
    EXPECT_EQ(program.Memory.ByteAt(Data + 0xFFF), 0);
    EXPECT_EQ(program.Memory.ByteAt(Data + 0x1000), std::nullopt);
}

TEST(CpuProgram, RefusesWhatItCannotLoad) {
    const struct {
        std::size_t At;
        std::string Bytes;
        std::string_view Error;
    } cases[] = {
        {4, "\2", "not an ELF file for a 32-bit x86 processor"},
        {5, "\2", "not an ELF file for a 32-bit x86 processor"},
        {18, "\x3E", "not an ELF file for a 32-bit x86 processor"},
        {16, "\3", "not an executable with fixed addresses (link with -static -no-pie)"},
        {28, "\xFF\xFF\xFF\xFF", "the ELF file is cut off"},
        {42, "\x10", "its program headers are too short"},
        {44, "\0"s, "the program has no segment to load"},
        {46, "\x10", "its section headers are too short"},
        {52, "\3", "the program needs shared libraries (link with -static)"},
        {84, "\2", "the program needs shared libraries (link with -static)"},
        {52 + 4, "\xFF\xFF\xFF\xFF", "the ELF file is cut off"},
        {52 + 8, "\xFF\xFF\xFF\xFF", "a segment runs over the end of the address space"},
        {52 + 16, "\xFF", "a segment has more bytes than memory"},
        {84 + 20, "\xFF\xFF\xFF\xFF", "its segments have more than 16 MB"},
    };
    for (const auto& [at, bytes, error] : cases)
        EXPECT_EQ(ErrorOf([&, at = at, &bytes = bytes] {
                      TProgram::FromElf(MakeElf().replace(at, bytes.size(), bytes));
                  }),
                  "ECpuError: " + std::string(error))
            << at;
    EXPECT_EQ(ErrorOf([] { TProgram::FromBytes(""); }), "ECpuError: the program is empty");
    EXPECT_EQ(ErrorOf([] { TProgram::FromBytes("\x90\x90", 0xFFFFFFFF); }),
              "ECpuError: a segment runs over the end of the address space");
}

TEST(CpuProgram, DamagedFilesRaiseNothingElse) {
    const std::string elf = MakeElf();
    const auto isFine = [](const std::string& file) {
        const std::string error = ErrorOf([&] { TProgram::FromElf(file); });
        return error.empty() || error.starts_with("ECpuError: ");
    };
    for (std::size_t i = 0; i < elf.size(); ++i) {
        EXPECT_NE(ErrorOf([&] { TProgram::FromElf(elf.substr(0, i)); }), "") << "cut at " << i;
        for (const char byte : {'\x00', '\x01', '\x7F', '\xFF'}) {
            std::string damaged = elf;
            damaged[i] = byte;
            EXPECT_TRUE(isFine(damaged)) << "byte " << i;
        }
    }
}

class CpuEmulator : public ::testing::Test {
protected:
    void SetUp() override {
        if (!HasEmulator()) GTEST_SKIP() << "built without Unicorn and Capstone";
    }
};

TEST_F(CpuEmulator, StopsAndSaysWhy) {
    const struct {
        std::string Bytes;
        std::optional<std::uint32_t> Until;
        std::uint32_t Steps;
        std::string_view Stop; ///< at 0040...
        std::string_view Seen; ///< eax, ecx, flags
    } cases[] = {
        {"\x40\x40\x40\x40"s, {}, 0, "1000 after 0 instructions: as told", "0 0 00000002"},
        {"\x40\x40\x40\x40"s, {}, 3, "1003 after 3 instructions: as told", "3 0 00000006"},
        {"\x40\x40\x40\x40"s, 0x401002, 9, "1002 after 2 instructions: the address to stop at",
         "2 0 00000002"},
        {"\x40\x40"s, 0x401000, 9, "1000 after 0 instructions: the address to stop at",
         "0 0 00000002"},
        {"\xEB\xFE"s, 0x401002, 500, "1000 after 500 instructions: the limit", "0 0 00000002"},
        {"\xF9\x40\xF4\x40"s,
         {},
         9,
         "1003 after 3 instructions: the processor was halted",
         "1 0 00000003"},
        {"\x40\xCD\x80\x40"s,
         {},
         9,
         "1001 after 1 instructions: interrupt 80h, and there is no system to serve it",
         "1 0 00000002"},
        {"\x40\xCC"s,
         {},
         9,
         "1001 after 1 instructions: interrupt 03h, and there is no system to serve it",
         "1 0 00000002"},
        {"\x40\x0F\x34"s,
         {},
         9,
         "1001 after 1 instructions: a system call, and there is no system to serve it",
         "1 0 00000002"},
        {"\xF7\xF1"s,
         {},
         9,
         "1000 after 0 instructions: the processor's exception 00h",
         "0 0 00000002"},
        {"\x40\xA1\x00\x00\x00\x90"s,
         {},
         9,
         "1001 after 1 instructions: there is no memory at 90000000, to be read",
         "1 0 00000002"},
        {"\x40\xA3\x00\x00\x00\x90"s,
         {},
         9,
         "1001 after 1 instructions: there is no memory at 90000000, to be written",
         "1 0 00000002"},
        {"\xB9\x05\0\0\0\xBF\x00\x18\x40\x00\xF3\xAA"s,
         {},
         4,
         "100A after 4 instructions: as told",
         "0 3 00000002"}, // two repetitions of five
    };
    for (const auto& [bytes, until, steps, stop, seen] : cases) {
        const TStoppedState state =
            RunProgram(TProgram::FromBytes(bytes), {.Until = until, .Steps = steps});
        EXPECT_EQ(state->StopText(), "at 0040" + std::string(stop));
        EXPECT_EQ(Format("%d %d %s", {state->Register(rgEAX), state->Register(rgECX),
                                      HexText(state->Register(rgEFL))}),
                  seen)
            << stop;
    }
    EXPECT_EQ(RunProgram(TProgram::FromBytes("\xC3"), {})->StopText(),
              "at 00000000 after 1 instructions: there is no memory at 00000000, to be executed");
    EXPECT_EQ(RunProgram(TProgram::FromBytes("\x0F\xFF"), {})->StopText(),
              "at 00401000 after 0 instructions: Invalid instruction (UC_ERR_INSN_INVALID)");
}

TEST_F(CpuEmulator, RunsAnExecutable) {
    const TStoppedState state = RunProgram(TProgram::FromElf(MakeElf()), {});
    EXPECT_EQ(state->StopText(), "at 0804800A after 5 instructions: interrupt 80h, and there is no "
                                 "system to serve it");
    EXPECT_EQ(state->Register(rgEAX), 17U);
    EXPECT_EQ(state->Register(rgESP), 0x0012FFF0U);
    EXPECT_EQ(state->EntryAt(0x0012FFEC), Code + 10); // where Twice returned to
    EXPECT_EQ(state->DataAddress(), Data);
    const struct {
        std::uint32_t Address;
        std::string_view Line;
    } lines[] = {
        {Code + 4, "Start / 08048000 B805000000       mov eax, 5"},
        {Code + 5, "08048005 E803000000       call 0x804800d"},
        {Code + 11, "0804800A CD80             int 0x80"},
        {Code + 12, "0804800C 90               nop"},
        {Code + 14, "Twice / 0804800D 01C0             add eax, eax"},
        {Code + 15, "0804800F 030500900408     add eax, dword ptr [0x8049000]"},
        {Code + 21, "08048015 C3               ret"},
        {0x0012FFFF, "0012FFFE 0000             add byte ptr [eax], al"},
        {0x00130000, "00130000 ??               ???"},
    };
    for (const auto& [address, line] : lines) EXPECT_EQ(LineText(*state, address), line);
}

TEST_F(CpuEmulator, BeginsInstructionsWhereTheyAreKnown) {
    // The byte behind the jump would swallow the target of the jump.
    const std::string bytes = "\xEB\x01\xB8\x41\x42\xF4\xFF\xFF"s;
    const TStoppedState jumped = RunProgram(TProgram::FromBytes(bytes), {.Steps = 9});
    EXPECT_EQ(LineText(*jumped, 0x401002), "00401002 B8               db 0xb8");
    EXPECT_EQ(LineText(*jumped, 0x401003), "00401003 41               inc ecx");
    EXPECT_EQ(LineText(*jumped, 0x401006), "00401006 FF               db 0xff");
    const TStoppedState fresh = RunProgram(TProgram::FromBytes(bytes), {.Steps = 0});
    EXPECT_EQ(LineText(*fresh, 0x401003), "00401002 B84142F4FF       mov eax, 0xfff44241");
    // The program may change its own code: shown is what stands there at the stop.
    const TStoppedState changed =
        RunProgram(TProgram::FromBytes("\xC6\x05\x07\x10\x40\x00\x41\x40\xF4"s), {.Steps = 9});
    EXPECT_EQ(LineText(*changed, 0x401007), "00401007 41               inc ecx");
    EXPECT_EQ(changed->Register(rgECX), 1U);
}

TEST_F(CpuEmulator, AgreesWithTheSample) {
    const TStoppedState recorded = LoadRecording(SampleFile());
    std::string bytes;
    for (std::uint32_t at = 0x401000; at < 0x40101B; ++at)
        bytes += static_cast<char>(*recorded->ByteAt(at));
    const TStoppedState run = RunProgram(TProgram::FromBytes(bytes), {.Steps = 0});
    for (std::uint32_t at = 0x401000; at < 0x40101B; ++at)
        EXPECT_EQ(DisassemblyText(DisassemblyLine(*run, at)),
                  DisassemblyText(DisassemblyLine(*recorded, at)));
}

TEST_F(CpuEmulator, RefusesWhatHasNoRoom) {
    EXPECT_EQ(ErrorOf([] { RunProgram(TProgram::FromBytes("\x90", 0x0012F000), {}); }),
              "ECpuError: the program lies where its stack is to be, below 00130000");
    EXPECT_EQ(ErrorOf([] {
                  TProgram program = TProgram::FromBytes("\x90");
                  program.Entry = 0x500000;
                  RunProgram(std::move(program), {});
              }),
              "ECpuError: the entry 00500000 is outside the program");
    EXPECT_EQ(ErrorOf([] { RunProgram(TProgram::FromBytes("\x90"), {.StackTop = 0x8000}); }),
              "ECpuError: no stack can end at 00008000");
}

} // namespace
} // namespace tarn
