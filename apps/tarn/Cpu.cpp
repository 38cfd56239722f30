#include "Cpu.h"

#include "Cpu/Emulator.h"
#include "Cpu/Recording.h"
#include "ScriptSource.h"
#include "rtl/SafeFile.h"

#include <charconv>

namespace tarn {
namespace {

struct TPaneName {
    std::string_view Name;
    std::string_view Component;
};
constexpr TPaneName PaneNames[] = {
    {"disassembly", "DisassemblerView1"},
    {"registers", "RegisterView"},
    {"flags", "FlagsView"},
    {"dump", "DumpView"},
    {"stack", "StackView"},
};

std::uint32_t AddressOf(const TProgram& program, std::string_view text) {
    if (const auto address = program.AddressOf(text)) return *address;
    if (const auto address = ParseAddress(text)) return *address;
    throw EScriptError(ExitUsage,
                       Format("'%s' is neither a label of the program nor an address", {text}));
}

TProgram ReadProgram(const TCpuSource& source) {
    std::string file;
    LoadFileInto(source.File, TProgram::MaxFileSize, [&](std::size_t size) {
        file.resize(size);
        return file.data();
    });
    if (!TProgram::IsElf(file)) {
        const TProgram none;
        return TProgram::FromBytes(file, source.Base ? AddressOf(none, *source.Base)
                                                     : TProgram::DefaultBase);
    }
    if (source.Base) throw EScriptError(ExitUsage, "an ELF file says itself where it lies");
    return TProgram::FromElf(file);
}

TStoppedState RunToStop(const TCpuSource& source) {
    TProgram program = ReadProgram(source);
    if (source.Entry) program.Entry = AddressOf(program, *source.Entry);
    TRunOptions options;
    if (source.Until) options.Until = AddressOf(program, *source.Until);
    if (!source.Until) options.Steps = 0;
    if (source.Steps) {
        if (*source.Steps < 0 || *source.Steps > static_cast<int>(TRunOptions::MaxSteps))
            throw EScriptError(ExitUsage,
                               Format("there are 0 to %d steps", {TRunOptions::MaxSteps}));
        options.Steps = static_cast<std::uint32_t>(*source.Steps);
    }
    return RunProgram(std::move(program), options);
}

/// Reads a published property of the pane into the slot of its kind.
template <class T> T Read(const TObject& object, std::string_view name) {
    T value{};
    object.ClassType().FindProp(name)->Get(object, &value);
    return value;
}

/// The lines "NAME VALUE" of all properties of the object that the pane publishes.
template <std::size_t N, class TRow>
std::string ValueLines(const TCpuPane& pane, std::string_view property, const TRow (&rows)[N],
                       std::string (*text)(const TRow& row, std::int32_t value)) {
    const TObject& object = *Read<TObject*>(pane, property);
    std::string lines;
    for (const TRow& row : rows) lines += text(row, Read<std::int32_t>(object, row.Name)) + "\n";
    return lines;
}

std::string DisassemblyLines(const TCpuPane& pane) {
    std::string lines;
    for (const std::string_view name : {"SelectedLabel", "SelectedSource", "SelectedDisassembly"})
        if (const auto text = Read<std::string>(pane, name); !text.empty()) lines += text + "\n";
    return lines;
}

std::string DataLine(const TCpuPane& pane) {
    const auto offset = static_cast<std::uint32_t>(Read<std::int32_t>(pane, "SelectedOffset"));
    return HexText(offset) + " " + Read<std::string>(pane, "SelectedData") + "\n";
}

} // namespace

std::optional<std::uint32_t> ParseAddress(std::string_view text) {
    for (const std::string_view prefix : {"$", "0x", "0X"})
        if (text.starts_with(prefix)) {
            text.remove_prefix(prefix.size());
            break;
        }
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && text.size() <= 8 ? std::optional(value) : std::nullopt;
}

TStoppedState LoadStoppedProgram(const TCpuSource& source) {
    try {
        return source.IsProgram ? RunToStop(source) : LoadRecording(source.File);
    } catch (const ECpuError& error) {
        // A recording's error names its file and line.
        throw EScriptError(ExitRefused, source.IsProgram
                                            ? Format("%s: %s", {source.File, error.what()})
                                            : std::string(error.what()));
    } catch (const EFileError& error) {
        throw EScriptError(ExitIO, error.what());
    }
}

TCpuPane& FindCpuPane(TCpuWindow& window, std::string_view name) {
    for (const TPaneName& pane : PaneNames)
        if (SameText(pane.Name, name))
            return *ClassCast<TCpuPane>(window.FindComponent(pane.Component));
    throw EScriptError(ExitUsage, Format("unknown pane '%s'; there are disassembly, registers, "
                                         "flags, dump and stack",
                                         {name}));
}

std::string CpuPaneText(TCpuPane& pane) {
    if (ClassCast<TDisassemblerView>(&pane)) return DisassemblyLines(pane);
    if (ClassCast<TRegisterView>(&pane))
        return ValueLines<CpuRegisterCount, TCpuRegisterRow>(
            pane, "CurrentRegs", CpuRegisters, [](const TCpuRegisterRow& row, std::int32_t value) {
                return Format("%s %s",
                              {row.Name, HexText(static_cast<std::uint32_t>(value), row.Digits)});
            });
    if (ClassCast<TFlagsView>(&pane))
        return ValueLines<CpuFlagCount, TCpuFlagRow>(
            pane, "CurrentFlags", CpuFlags, [](const TCpuFlagRow& row, std::int32_t value) {
                return Format("%s %d", {row.Short, value});
            });
    return DataLine(pane);
}

} // namespace tarn
