#include "Commands.h"

#include "Places.h"
#include "ScriptSource.h"
#include "TScript.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <stdlib.h>

namespace tarn {
namespace fs = std::filesystem;

namespace {

void WriteOut(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw EScriptError(ExitIO, "cannot write to standard output");
}

std::string ReadStandardInput() {
    std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    if (std::cin.bad()) throw EScriptError(ExitIO, "cannot read standard input");
    return text;
}

std::string ReadFileText(const std::string& file) {
    TFileContents contents = LoadFile(file);
    const auto bytes = contents.Bytes.Front(contents.Bytes.Size());
    return {bytes.data(), bytes.size()};
}

/// A folder of its own that goes with the object.
class TTempFolder {
public:
    TTempFolder() {
        std::string name = (fs::temp_directory_path() / "tarn-XXXXXX").string();
        if (!::mkdtemp(name.data())) throw EScriptError(ExitIO, "cannot make a temporary folder");
        FPath = name;
    }
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;
    ~TTempFolder() {
        std::error_code error;
        fs::remove_all(FPath, error);
    }
    const fs::path& Path() const { return FPath; }

private:
    fs::path FPath;
};

/// A session in which the pack runs and its menu stands. Raises EScriptError with what the IDE has
/// shown when the pack does not start.
class TRunningPack : public TSession {
public:
    TRunningPack() {
        if (!StartPack())
            throw EScriptError(ExitRefused, "the pack does not start: " + LastDialog("no reason"));
        Ide().PumpMessages();
    }

    std::string LastDialog(std::string_view otherwise) {
        return OS().Dialogs().empty() ? std::string(otherwise) : OS().Dialogs().back().Text;
    }
};

TMenuItem& CommandItem(TSession& session, const std::string& id) {
    std::string known;
    for (const std::string& other : session.CommandIDs()) {
        if (SameText(other, id)) return *session.FindMenuItem(other);
        known += (known.empty() ? "" : ", ") + other;
    }
    throw EScriptError(ExitUsage, "unknown command '" + id + "'; there are " + known);
}

void SelectFor(const TApplyRequest& request, TSourceView& view) {
    const TEditText& text = view.Buffer().Text();
    std::pair<TTextPos, TTextPos> range{{1, 1}, text.PosAt(text.Size())};
    if (!request.Select.empty()) {
        range = ParseRange(request.Select);
        CheckPlace(text, range.first);
        CheckPlace(text, range.second);
    } else if (!request.Lines.empty()) {
        const auto [first, last] = ParseRows(request.Lines);
        range = WholeRows(text, first, last);
    }
    view.Select(range.first, range.second);
}

} // namespace

void RunScript(const std::string& file) {
    const bool standardInput = file == "-";
    const std::string text = standardInput ? ReadStandardInput() : ReadFileText(file);
    const fs::path folder = standardInput ? fs::current_path() : fs::absolute(file).parent_path();
    try {
        TScript(folder, WriteOut).Play(text);
    } catch (const EScriptError& error) {
        std::fflush(stdout);
        throw EScriptError(error.ExitCode(),
                           (standardInput ? "<stdin>" : file) + ":" + error.what());
    }
}

std::optional<std::string> ApplyCommand(const TApplyRequest& request) {
    const bool standardInput = request.File == "-";
    if (standardInput && request.InPlace)
        throw EScriptError(ExitUsage, "standard input cannot be changed in place");
    std::optional<TTempFolder> scratch;
    std::string file = request.File;
    if (standardInput) {
        scratch.emplace();
        file = (scratch->Path() / "input.pas").string();
        const std::string text = ReadStandardInput();
        const std::string_view chunk = text;
        SaveFile(file, {&chunk, 1});
    }

    TRunningPack session;
    TMenuItem& item = CommandItem(session, request.Command);
    session.Ide().Modules().OpenFile(file);
    TSourceView& view = CurrentView(session);
    const auto refuse = [&request](int row, const std::string& why) {
        throw EScriptError(ExitRefused, Format("%s:%d: %s", {request.File, row, why}));
    };
    try {
        SelectFor(request, view);
    } catch (const EScriptError& error) {
        throw EScriptError(error.ExitCode(), request.File + ": " + error.what());
    }
    const int row = view.BlockStart().Row;
    const std::size_t dialogs = session.OS().Dialogs().size();
    if (!session.Ide().ClickMenuItem(item))
        refuse(row, request.Command + " is not available for this selection");
    session.Ide().PumpMessages();
    if (session.OS().Dialogs().size() > dialogs) refuse(row, session.LastDialog(""));
    if (session.OS().Beeps() > 0) refuse(row, request.Command + " refused the selection");
    if (request.InPlace) {
        view.Buffer().Save();
        return std::nullopt;
    }
    return view.Buffer().Text().Text();
}

std::string BuiltMenu() {
    return TRunningPack().MenuText(false);
}

// --- The command line -------------------------------------------------------------------------

namespace {

int Report(int exitCode, std::string_view message) {
    std::fflush(stdout);
    std::cerr << "tarn: " << message << '\n';
    return exitCode;
}

} // namespace

int TarnMain(int argc, char** argv) {
    CLI::App app("Runs the TarnExperts pack in an embedded IDE.", "tarn");
    app.set_version_flag("--version", std::string("tarn ") + TARN_VERSION);
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 refused or not as expected, 2 wrong usage, 3 input or output "
               "error.");

    std::string script;
    CLI::App* const run = app.add_subcommand("run", "Play a script of IDE actions");
    run->add_option("SCRIPT", script, "the script, - for standard input")->required();
    run->footer(TScript::Help());

    TApplyRequest request;
    CLI::App* const apply =
        app.add_subcommand("apply", "Run one command of the pack on a file, as a filter");
    apply->add_option("COMMAND", request.Command, "the identifier of a menu item, see tarn menu")
        ->required();
    apply->add_option("FILE", request.File, "the file, - for standard input")->required();
    auto* const select = apply->add_option("--select", request.Select,
                                           "the block, R:C-R:C, 1-based; the second place "
                                           "is behind its last character");
    apply->add_option("--lines", request.Lines, "the block as whole lines, A-B")->excludes(select);
    apply->add_flag("-i,--in-place", request.InPlace,
                    "write the file back instead of printing the result");
    apply->footer("Without --select and --lines the command gets the whole text. A command that\n"
                  "refuses its selection changes nothing and exits with 1.");

    CLI::App* const menu = app.add_subcommand("menu", "Print the menu as the pack builds it");

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return app.exit(success); // help and version
    } catch (const CLI::ParseError& error) {
        return Report(ExitUsage, error.what());
    }
    try {
        if (*run) RunScript(script);
        if (*apply)
            if (const auto result = ApplyCommand(request)) WriteOut(*result);
        if (*menu) WriteOut(BuiltMenu());
        if (std::fflush(stdout) != 0) throw EScriptError(ExitIO, "cannot write to standard output");
        return ExitDone;
    } catch (const EScriptError& error) {
        return Report(error.ExitCode(), error.what());
    } catch (const EFileError& error) {
        return Report(ExitIO, error.what());
    } catch (const std::bad_alloc&) {
        return Report(ExitIO, "not enough memory");
    } catch (const std::exception& error) {
        return Report(ExitRefused, error.what());
    }
}

} // namespace tarn
