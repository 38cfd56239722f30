#include "CpuCommand.h"

#include "Commands.h"
#include "Cpu.h"
#include "ScriptSource.h"
#include "TSession.h"
#include "cpuview/CpuCapture.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstring>
#include <memory>

namespace tarn {
namespace {

/// The panes as the command line names them, in the order of TCPUViewType.
constexpr std::string_view PaneNames[] = {"disassembly", "registers", "flags",
                                          "dump",        "stack",     "all"};

struct TRequest {
    std::string Recording, Program;
    TCpuSource Source;
    std::string Pane = "all";
    int Lines = 10;
};

TCPUViewType PaneOf(std::string_view name) {
    const auto same = [name](std::string_view pane) { return SameText(pane, name); };
    const auto* const found = std::find_if(std::begin(PaneNames), std::end(PaneNames), same);
    if (found == std::end(PaneNames))
        throw EScriptError(ExitUsage, Format("unknown pane '%s'; there are disassembly, registers, "
                                             "flags, dump, stack and all",
                                             {name}));
    return static_cast<TCPUViewType>(found - std::begin(PaneNames));
}

/// Captures as the pack does, without the window that shows it.
void PrintCapture(TRequest request) {
    if (request.Lines < 1) throw EScriptError(ExitUsage, "--lines is 1 at least");
    if (request.Recording.empty() && request.Program.empty())
        throw EScriptError(ExitUsage, "cpu needs a FILE or -- PROGRAM");
    const TCPUViewType pane = PaneOf(request.Pane);
    request.Source.IsProgram = !request.Program.empty();
    request.Source.File = request.Source.IsProgram ? request.Program : request.Recording;
    TStoppedState state = LoadStoppedProgram(request.Source);
    TSession session;
    session.Ide().StopAt(std::move(state));
    TStringList lines;
    GetViewText(lines, pane, request.Lines);
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) text.append(lines[i]).append("\n");
    WriteOut(text);
}

} // namespace

void AddCpuCommand(CLI::App& app, std::function<void()>& chosen) {
    CLI::App* const cpu =
        app.add_subcommand("cpu", "Print what a stopped program's CPU window shows");
    const auto request = std::make_shared<TRequest>();
    auto* const recording = cpu->add_option("FILE", request->Recording, "a recording");
    auto* const program = cpu->add_option("--program", request->Program,
                                          "a small x86 program that is run as far as told, also "
                                          "given as -- PROGRAM");
    program->excludes(recording);
    cpu->add_option("--pane", request->Pane,
                    "disassembly, registers, flags, dump, stack, or all, which is the default");
    cpu->add_option("--lines", request->Lines,
                    "lines of the disassembly, the dump and the stack; 10 unless told");
    const auto word = [&](const char* name, std::optional<std::string>& target, const char* help) {
        cpu->add_option(name, target, help)->needs(program);
    };
    word("--base", request->Source.Base, "where a program lies that is no ELF file");
    word("--entry", request->Source.Entry, "the first instruction");
    word("--until", request->Source.Until, "the instruction to stop at");
    cpu->add_option("--steps", request->Source.Steps, "instructions at most")->needs(program);
    cpu->footer("Addresses are hexadecimal, or labels of an ELF file. With neither --until nor "
                "--steps\na program stands at its first instruction.");
    cpu->final_callback([=, &chosen] { chosen = [=] { PrintCapture(*request); }; });
}

std::vector<const char*> WithProgramOption(int argc, const char* const* argv) {
    std::vector<const char*> args(argv, argv + argc);
    if (argc < 2 || std::strcmp(args[1], "cpu") != 0) return args;
    for (const char*& arg : args)
        if (std::strcmp(arg, "--") == 0) {
            arg = "--program";
            break;
        }
    return args;
}

} // namespace tarn
