#include "cpuview/CpuCapture.h"

#include "qsCrtlUtils.h"
#include "qsDataHndl2.h"
#include "qsLocale.h"
#include "rtl/UpdateOnce.h"
#include "vcl/Forms.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace tarn {

// --- A pane -----------------------------------------------------------------------------------

/// A pane of the CPU window as it is read: its published properties by name. The IDE may close the
/// window meanwhile. Painting is held back for as long as the object lives.
class TPaneReader {
    template <class F> auto Ask(std::string_view path, F&& ask) {
        if (!FPane) Fail(path, "the window is closed");
        try {
            return ask(*FPane);
        } catch (const Exception& error) {
            Fail(path, error.Message());
        }
    }
    [[noreturn]] void Fail(std::string_view path, std::string_view what) const {
        throw EDataHandlingError(Format("%s.%s: %s", {FName, path, what}));
    }

public:
    explicit TPaneReader(TComponent& pane) : FPane(&pane), FName(pane.Name()) {
        if (auto* const control = ClassCast<TControl>(&pane)) BeginUpdateControl(*control);
    }
    TPaneReader(const TPaneReader&) = delete;
    TPaneReader& operator=(const TPaneReader&) = delete;
    ~TPaneReader() {
        try {
            if (auto* const control = ClassCast<TControl>(FPane.Get())) EndUpdateControl(*control);
        } catch (...) {
            return; // what shows the pane has failed; the capture goes on
        }
    }

    std::string Text(std::string_view path) {
        return Ask(path, [&](TObject& pane) { return GetPropAsVariant(pane, path).ToString(); });
    }
    std::int32_t Number(std::string_view path) {
        return Ask(path, [&](TObject& pane) {
            return static_cast<std::int32_t>(GetPropAsVariant(pane, path).ToInteger());
        });
    }
    void SetNumber(std::string_view path, std::int32_t value) {
        Ask(path, [&](TObject& pane) { SetPropByVariant(pane, path, value); });
    }
    [[noreturn]] void RefuseData(std::string_view path, std::string_view text,
                                 std::size_t bytes) const {
        Fail(path, Format("'%s' is not %d hexadecimal digits", {text, bytes * 2}));
    }

private:
    TWeak<TComponent> FPane;
    std::string FName;
};

namespace {

constexpr std::string_view Address = "SelectedAddress", Offset = "SelectedOffset",
                           Data = "SelectedData";

/// A place in a pane that moves while the pane is read, and is put back at the end.
class TPlace {
public:
    TPlace(TPaneReader& pane, std::string_view prop)
        : FPane(pane), FProp(prop), FStart(pane.Number(prop)) {}
    TPlace(const TPlace&) = delete;
    TPlace& operator=(const TPlace&) = delete;
    ~TPlace() {
        try {
            FPane.SetNumber(FProp, FStart);
        } catch (...) {
            return; // the window is gone, or refuses what it has shown before
        }
    }

    std::uint32_t Value() const { return static_cast<std::uint32_t>(FPane.Number(FProp)); }
    /// Behind the last address comes the first one.
    void Move(std::int32_t by) {
        const std::uint32_t target = Value() + static_cast<std::uint32_t>(by);
        FPane.SetNumber(FProp, static_cast<std::int32_t>(target));
    }

private:
    TPaneReader& FPane;
    std::string_view FProp;
    std::int32_t FStart;
};

std::string Hex(std::uint32_t value, int digits) {
    return Format("%." + IntToStr(digits) + "x", {std::int64_t{value}});
}

/// What a byte looks like in text: the character of that number, and a point below the blank. A
/// text is UTF-8: the byte itself would be none in it from 128 on.
std::string ShownByte(std::uint32_t byte) {
    if (byte < ' ') return ".";
    return Utf16ToUtf8(std::u16string(1, static_cast<char16_t>(byte)));
}

/// The byte of two hexadecimal digits.
std::optional<std::uint32_t> HexByte(std::string_view digits) {
    std::uint32_t byte = 0;
    const char* const last = digits.data() + digits.size();
    const auto [end, error] = std::from_chars(digits.data(), last, byte, 16);
    return error == std::errc() && end == last ? std::optional(byte) : std::nullopt;
}

/// The characters of a text of hexadecimal digits, two for each; a point for memory that cannot be
/// read, which debuggers show as "??".
std::string ShownBytes(const TPaneReader& pane, std::string_view digits, std::size_t bytes) {
    if (digits.size() != bytes * 2) pane.RefuseData(Data, digits, bytes);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        const std::string_view pair = digits.substr(at, 2);
        const std::optional<std::uint32_t> byte = pair == "??" ? 0 : HexByte(pair);
        if (!byte) pane.RefuseData(Data, digits, bytes);
        text += ShownByte(*byte);
    }
    return text;
}

// --- What each pane gives ---------------------------------------------------------------------

/// Label, source and disassembly of the selected address, those that are not empty.
std::vector<std::string> SelectedCode(TPaneReader& pane) {
    std::vector<std::string> lines;
    for (const std::string_view part : {"SelectedLabel", "SelectedSource"})
        if (std::string text = pane.Text(part); !text.empty()) lines.push_back(std::move(text));
    lines.push_back(pane.Text("SelectedDisassembly"));
    return lines;
}

/// The pane tells no lengths: the next instruction is where the text changes. Two equal ones behind
/// each other are taken for one.
void ReadDisasm(TPaneReader& pane, TStrings& lines, int count) {
    constexpr int mostSteps = 10;
    TPlace place(pane, Address);
    std::vector<std::string> last{std::string()};
    for (int i = 0; i < count; ++i) {
        std::vector<std::string> code = SelectedCode(pane);
        for (int step = 0; code == last; ++step) {
            if (step == mostSteps) return;
            place.Move(1);
            code = SelectedCode(pane);
        }
        for (const std::string& line : code) lines.Add(line);
        last = std::move(code);
    }
}

struct TRegister {
    std::string_view Name;
    int Digits;
};
constexpr TRegister Registers[] = {
    {"EAX", 8}, {"EBX", 8}, {"ECX", 8}, {"EDX", 8}, {"ESI", 8}, {"EDI", 8}, {"EBP", 8}, {"ESP", 8},
    {"EIP", 8}, {"EFL", 8}, {"CS", 4},  {"DS", 4},  {"SS", 4},  {"ES", 4},  {"FS", 4},  {"GS", 4},
};

void ReadRegisters(TPaneReader& pane, TStrings& lines, int) {
    for (const TRegister& reg : Registers) {
        const std::int32_t value = pane.Number("CurrentRegs." + std::string(reg.Name));
        lines.Add(Format("%-4s", {reg.Name}) + Hex(static_cast<std::uint32_t>(value), reg.Digits));
    }
}

struct TFlag {
    std::string_view Prop;
    std::string_view Name;
    std::string_view Description;
};
constexpr TFlag Flags[] = {
    {"Carry", "CF", "Carry Flag"},
    {"Parity", "PF", "Parity Flag"},
    {"AuxCarry", "AF", "Auxiliary Carry Flag"},
    {"Zero", "ZF", "Zero Flag"},
    {"Sign", "SF", "Sign Flag"},
    {"Trap", "TF", "Trap Flag"},
    {"Interrupt", "IF", "Interrupt Enable Flag"},
    {"Direction", "DF", "Direction Flag"},
    {"Overflow", "OF", "Overflow Flag"},
    {"IOPL", "IO", "I/O Privilege Level"},
    {"NestedTask", "NF", "Nested Task"},
    {"Resume", "RF", "Resume Flag"},
    {"V86Mode", "VM", "Virtual 8086 Mode"},
    {"Alignment", "AC", "Alignment Check"},
    {"VirtualInterruptFlag", "VF", "Virtual Interrupt Flag"},
    {"VirtualInterruptPending", "VP", "Virtual Interrupt Pending"},
    {"ID", "ID", "ID Flag"},
};

void ReadFlags(TPaneReader& pane, TStrings& lines, int) {
    for (const TFlag& flag : Flags) {
        const std::int32_t value = pane.Number("CurrentFlags." + std::string(flag.Prop));
        lines.Add(Format("%s %d [%s]", {flag.Name, value, flag.Description}));
    }
}

void ReadDump(TPaneReader& pane, TStrings& lines, int count) {
    constexpr int bytesInLine = 8;
    TPlace place(pane, Offset);
    for (int i = 0; i < count; ++i) {
        std::string line = Hex(place.Value(), 8) + "  ";
        std::string text;
        for (int byte = 0; byte < bytesInLine; ++byte) {
            const std::string data = pane.Text(Data);
            line.append(data).append(" ");
            text += ShownBytes(pane, data, 1);
            place.Move(1);
        }
        lines.Add(line.append(" ").append(text));
    }
}

/// The stack is read towards lower addresses, against the direction of the dump.
void ReadStack(TPaneReader& pane, TStrings& lines, int count) {
    constexpr int entrySize = 4;
    TPlace place(pane, Offset);
    for (int i = 0; i < count; ++i) {
        const std::string data = pane.Text(Data);
        lines.Add(Hex(place.Value(), 8) + "  " + data + "  " + ShownBytes(pane, data, entrySize));
        place.Move(-entrySize);
    }
}

constexpr TCPUPane Panes[] = {
    {qsDisasmView, 51073, "DisassemblerView1", ReadDisasm},
    {qsRegView, 51080, "RegisterView", ReadRegisters},
    {qsFlagsView, 51081, "FlagsView", ReadFlags},
    {qsDumpView, 51082, "DumpView", ReadDump},
    {qsStackView, 51083, "StackView", ReadStack},
    {qsAllViews, 51084, {}, nullptr},
};

void ReadPane(TForm& form, const TCPUPane& row, TStrings& lines, int count) {
    TComponent* const component = form.FindComponent(row.ComponentName);
    if (!component) return;
    TPaneReader pane(*component);
    row.Read(pane, lines, count);
}

void ReadAll(TForm& form, TStrings& lines, int count) {
    const TWeak<TForm> open(&form);
    for (const TCPUPane& row : Panes) {
        if (!row.Read) continue;
        lines.Add("[" + LocaleStr(row.CaptionId) + "]");
        if (open) ReadPane(form, row, lines, count);
        lines.Add("");
    }
}

} // namespace

std::span<const TCPUPane> CPUPanes() {
    return Panes;
}

TForm* FindCPUForm() {
    for (int i = 0; Screen() && i < Screen()->FormCount(); ++i) {
        TForm* const form = Screen()->Forms(i);
        if (form->Visible() && SameText(form->Name(), "DisassemblyView")) return form;
    }
    return nullptr;
}

void GetViewText(TStrings& lines, TCPUViewType type, int count) {
    TForm* const form = FindCPUForm();
    if (!form) return;
    count = std::min(count, MostPaneLines);
    UpdateOnce(lines, [&] {
        const TCPUPane& row = Panes[type];
        if (row.Read)
            ReadPane(*form, row, lines, count);
        else
            ReadAll(*form, lines, count);
    });
}

} // namespace tarn
