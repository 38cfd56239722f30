#include "Commands.h"

#include "CpuCommand.h"
#include "Form.h"
#include "Ini.h"
#include "Languages.h"
#include "Places.h"
#include "ScriptSource.h"
#include "SettingsCommand.h"
#include "TScript.h"
#include "TTempFolder.h"
#include "qsAppUtils.h"
#include "rtl/FormatSettings.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>

namespace tarn {
namespace fs = std::filesystem;

void WriteOut(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw EScriptError(ExitIO, "cannot write to standard output");
}

namespace {

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

TMenuItem& CommandItem(TSession& session, const std::string& id) {
    std::string known;
    for (const std::string& other : session.CommandIDs()) {
        if (SameText(other, id)) return *session.FindMenuItem(other);
        known += (known.empty() ? "" : ", ") + other;
    }
    throw EScriptError(ExitUsage, "unknown command '" + id + "'; there are " + known);
}

/// The block that a request asks for. What is not written as it should be is wrong usage and found
/// before the file is read; what is outside the file's text is found by Select.
class TWantedBlock {
public:
    explicit TWantedBlock(const TApplyRequest& request) {
        const auto parse = [](std::string_view option, const std::string& text, auto read) {
            try {
                if (!text.empty()) read(text);
            } catch (const EScriptError& error) {
                throw EScriptError(error.ExitCode(), Format("%s: %s", {option, error.what()}));
            }
        };
        parse("--select", request.Select, [this](auto& text) { FRange = ParseRange(text); });
        parse("--lines", request.Lines, [this](auto& text) { FRows = ParseRows(text); });
    }

    void Select(TSourceView& view) const {
        const TEditText& text = view.Buffer().Text();
        std::pair<TTextPos, TTextPos> range{{1, 1}, text.PosAt(text.Size())};
        if (FRange) {
            range = *FRange;
            CheckPlace(text, range.first);
            CheckPlace(text, range.second);
        } else if (FRows)
            range = WholeRows(text, FRows->first, FRows->second);
        view.Select(range.first, range.second);
    }

private:
    std::optional<std::pair<TTextPos, TTextPos>> FRange;
    std::optional<std::pair<int, int>> FRows;
};

constexpr std::string_view StandardInputName = "<stdin>";

} // namespace

void RunScript(const std::string& file, TConsoleDialogs* console) {
    const bool standardInput = file == "-";
    const std::string text = standardInput ? ReadStandardInput() : ReadFileText(file);
    const fs::path folder = standardInput ? fs::current_path() : fs::absolute(file).parent_path();
    try {
        TScript(folder, WriteOut, console).Play(text);
    } catch (const EScriptError& error) {
        std::fflush(stdout);
        throw EScriptError(error.ExitCode(),
                           (standardInput ? std::string(StandardInputName) : file) + ":" +
                               error.what());
    }
}

std::optional<std::string> ApplyCommand(const TApplyRequest& request, TConsoleDialogs* console) {
    const bool standardInput = request.File == "-";
    if (standardInput && request.InPlace)
        throw EScriptError(ExitUsage, "standard input cannot be changed in place");
    const TWantedBlock block(request);
    TRunningPack session(console, request.PackageDir);
    TMenuItem& item = CommandItem(session, request.Command);

    std::optional<TTempFolder> scratch;
    std::string file = request.File;
    if (standardInput) {
        scratch.emplace();
        file = (scratch->Path() / "input.pas").string();
        const std::string text = ReadStandardInput();
        const std::string_view chunk = text;
        SaveFile(file, {&chunk, 1});
    }
    const std::string shownName = standardInput ? std::string(StandardInputName) : file;
    session.Ide().Modules().OpenFile(file);
    TSourceView& view = CurrentView(session);
    const auto refuse = [&shownName](int row, const std::string& why) {
        throw EScriptError(ExitRefused, Format("%s:%d: %s", {shownName, row, why}));
    };
    try {
        block.Select(view);
    } catch (const EScriptError& error) {
        throw EScriptError(error.ExitCode(), shownName + ": " + error.what());
    }
    const int row = view.BlockStart().Row;
    const auto& all = session.OS().Dialogs();
    const auto dialogs = static_cast<std::ptrdiff_t>(all.size());
    if (!session.Ide().ClickMenuItem(item))
        refuse(row, request.Command + " is not available for this selection");
    session.Ide().PumpMessages();
    // Whoever said yes to a question wanted what followed; every other box ends the command.
    const auto endedBy = [](const TPortableOS::TShownDialog& shown) {
        return shown.Answer != IDYES;
    };
    if (std::any_of(all.begin() + dialogs, all.end(), endedBy))
        refuse(row, session.WithLastDialog(request.Command + " ended with a message"));
    if (session.OS().Beeps() > 0) refuse(row, request.Command + " refused the selection");
    if (request.InPlace) {
        view.Buffer().Save();
        return std::nullopt;
    }
    return view.Buffer().Text().Text();
}

std::string BuiltMenu(const std::string& packageDir, TConsoleDialogs* console) {
    return TRunningPack(console, packageDir).MenuText(false);
}

// --- The error log ----------------------------------------------------------------------------

std::optional<std::string> ErrorLogText(const std::string& packageDir) {
    const fs::path file = PackageFolder(packageDir) / ErrorLogName;
    if (!fs::exists(file)) return std::nullopt;
    return ReadFileText(file.string());
}

bool ClearErrorLog(const std::string& packageDir) {
    const fs::path file = PackageFolder(packageDir) / ErrorLogName;
    if (!fs::exists(file)) return false;
    WriteFileEx(file.string(), {});
    return true;
}

// --- The command line -------------------------------------------------------------------------

namespace {

int Report(int exitCode, std::string_view message) {
    std::fflush(stdout);
    std::cerr << "tarn: " << message << '\n';
    return exitCode;
}

void ShowLog(const std::string& packageDir, bool clear) {
    bool found = false;
    if (clear)
        found = ClearErrorLog(packageDir);
    else if (const auto text = ErrorLogText(packageDir)) {
        found = true;
        WriteOut(*text);
    }
    if (!found) std::cerr << "tarn: there is no error log\n";
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
    bool ask = false;
    run->add_flag(
        "--ask", ask,
        "show the dialogs that the script has no answer for, and ask for one at a terminal");
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

    CLI::App* const lang = app.add_subcommand("lang", "List the languages, or choose or check one");
    lang->require_subcommand(0, 1);
    std::string registry;
    lang->add_option("--registry", registry,
                     "the file that keeps the choice, instead of TARN_REGISTRY or the user's own");
    std::string language;
    CLI::App* const langUse = lang->add_subcommand("use", "Choose a language for the next starts");
    langUse->add_option("NAME", language, "a name from tarn lang, or Default")->required();
    std::string library;
    CLI::App* const langCheck =
        lang->add_subcommand("check", "Compare a language library with the built-in texts");
    langCheck->add_option("FILE", library, "the library")->required();

    CLI::App* const menu = app.add_subcommand("menu", "Print the menu as the pack builds it");

    std::function<void()> chosen; // the command, where it has a file of its own
    AddCpuCommand(app, chosen);
    AddFormCommand(app, chosen);
    AddIniCommand(app, chosen);
    std::string packageDir;
    CLI::App* const settings = AddSettingsCommand(app, packageDir, chosen);

    bool clearLog = false;
    CLI::App* const log = app.add_subcommand("log", "Print the errors that the pack has logged");
    log->add_flag("--clear", clearLog, "empty the log instead");
    for (CLI::App* const command : {apply, lang, menu, settings, log})
        command
            ->add_option("--package-dir", packageDir,
                         "the directory of the pack, instead of the program's own")
            ->envname("TARN_PACKAGE_DIR");

    try {
        const std::vector<const char*> args = WithProgramOption(argc, argv);
        app.parse(argc, args.data());
    } catch (const CLI::Success& success) {
        return app.exit(success); // help and version
    } catch (const CLI::ParseError& error) {
        return Report(ExitUsage, error.what());
    }
    try {
        if (chosen) chosen();
        // The pack dates its log as the user does; scripts and files mean the same everywhere.
        if (!*run && !chosen) FormatSettings() = UserFormatSettings();
        TConsoleDialogs console = TConsoleDialogs::OfProcess();
        if (*run) RunScript(script, ask ? &console : nullptr);
        request.PackageDir = packageDir;
        if (*apply)
            if (const auto result = ApplyCommand(request, &console)) WriteOut(*result);
        if (*menu) WriteOut(BuiltMenu(packageDir, &console));
        if (*log) ShowLog(packageDir, clearLog);
        SetRegistryFile(registry);
        if (*langUse)
            UseLanguage(language, &console, packageDir);
        else if (*langCheck) {
            const TLanguageCheck check = CheckLanguage(library);
            WriteOut(check.Report);
            if (!check.Faultless) return ExitRefused;
        } else if (*lang)
            WriteOut(ListLanguages(&console, packageDir));
        if (std::fflush(stdout) != 0) throw EScriptError(ExitIO, "cannot write to standard output");
        return ExitDone;
    } catch (const EScriptError& error) {
        return Report(error.ExitCode(), error.what());
    } catch (const EFileError& error) {
        return Report(ExitIO, error.what());
    } catch (const EInOutError& error) {
        return Report(ExitIO, error.what());
    } catch (const fs::filesystem_error& error) {
        return Report(ExitIO, error.what());
    } catch (const std::bad_alloc&) {
        return Report(ExitIO, "not enough memory");
    } catch (const std::exception& error) {
        return Report(ExitRefused, error.what());
    }
}

} // namespace tarn
