#include "SettingsCommand.h"

#include "Commands.h"
#include "ExpDataFile.h"
#include "ScriptSource.h"
#include "Settings.h"
#include "SpcStrings.h"
#include "TObjectStorage.h"
#include "TSession.h"
#include "qsExpShrData.h"
#include "qsLocale.h"
#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"
#include "streaming/FormBinary.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextPrinter.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>

namespace tarn {
namespace {

/// What the command line gives.
struct TRequest {
    const std::string& PackageDir;
    std::string Path, Value, File;
};

// --- The running pack -------------------------------------------------------------------------

/// The pack as it starts in the package directory, whose settings file is only written when it is
/// told to be.
class TSettingsSession {
public:
    explicit TSettingsSession(const TRequest& request)
        : FConsole(TConsoleDialogs::OfProcess()), FPack(&FConsole, request.PackageDir) {
        const std::string fault = ExpDataFault(SettingsFile());
        if (!fault.empty())
            std::fprintf(stderr, "tarn: %s was not read and does not count: %s\n",
                         SettingsFile().c_str(), ShownSetting(fault).c_str());
    }

    /// Saves the settings, and lets the pack start with what is in the file then.
    void Save() {
        WriteExpDataFile(ExpData(), SettingsFile());
        StartAnew();
    }
    /// The same without what a path leads to.
    void SaveWithout(std::string_view path) {
        WriteExpDataPart(ExpData(), SettingsFile(), SettingsWithout(path));
        StartAnew();
    }
    void SaveNothing() {
        RemoveFile(SettingsFile());
        StartAnew();
    }

private:
    void StartAnew() {
        FPack.Manager().DoRecreateExperts();
        FPack.Ide().PumpMessages();
    }

    TConsoleDialogs FConsole;
    TRunningPack FPack;
};

void List(const TRequest& request) {
    const TSettingsSession session(request);
    WriteOut(ListSettings(request.Path));
}

void Get(const TRequest& request) {
    const TSettingsSession session(request);
    WriteOut(ShownSetting(GetSetting(request.Path)) + "\n");
}

void Set(const TRequest& request) {
    TSettingsSession session(request);
    SetSetting(request.Path, SettingOfShown(request.Value));
    session.Save();
}

void Reset(const TRequest& request) {
    TSettingsSession session(request);
    if (request.Path.empty())
        session.SaveNothing();
    else
        session.SaveWithout(request.Path);
}

/// The settings editor is a window, and a command line has none.
void Edit(const TRequest&) {
    throw EScriptError(ExitRefused,
                       "the settings editor needs a window, which the command line has "
                       "not; 'tarn settings set' changes a setting, and a script of "
                       "'tarn run' opens the editor by clicking \"Edit...\"");
}

// --- Settings files ---------------------------------------------------------------------------

/// Runs what reads or writes a settings file; errors of its contents get its name in front.
template <class F> auto WithFile(const std::string& file, F&& work) {
    try {
        return work();
    } catch (const EFileError&) {
        throw; // names the file itself
    } catch (const EScriptError&) {
        throw;
    } catch (const Exception& error) {
        throw EScriptError(ExitRefused, file + ": " + ShownSetting(error.Message()));
    }
}

[[noreturn]] void RefuseFormat() {
    throw ESpcMngError(LocaleStr(strUnknownSpcFormat));
}

std::string LoadSettingsFile(const std::string& file) {
    try {
        return LoadFileText(file);
    } catch (const EFileError& error) {
        if (error.Kind() != feMissing) throw;
        throw EScriptError(ExitIO, Format(LocaleStr(strNoSpcFile), {file}));
    }
}

/// Takes the settings in a file apart: the version record of each block, and its tree.
class TSettingsFile {
public:
    explicit TSettingsFile(std::string_view bytes) : FBytes(bytes) {}

    bool AtEnd() const { return FOffset >= FBytes.size(); }
    /// Takes the data header that stands here; none when there is no header.
    std::optional<std::string> TakeRecord() {
        if (!Left().starts_with(BinDataLabel) && !Left().starts_with(TextDataLabel))
            return std::nullopt;
        TBytesStream stream(Left());
        TObjectStorageFormat format{};
        bool asResource = false;
        std::string record;
        ReadDataHeader(stream, format, asResource, record);
        FOffset += static_cast<std::size_t>(stream.Position());
        return record;
    }
    /// Hands the tree that stands here to the sink. Raises ESpcMngError 51503 where none does, and
    /// the errors of the parsers.
    void TakeTree(IFormSink& sink) {
        switch (FormatHere()) {
        case osfBin: {
            TReader reader(FBytes);
            reader.SetPosition(static_cast<std::int64_t>(FOffset));
            ReadFormBinary(reader, sink);
            FOffset = static_cast<std::size_t>(reader.Position());
            return;
        }
        case osfText: {
            TFormTextParser parser(FBytes);
            parser.SetOffset(static_cast<std::int64_t>(FOffset));
            parser.Parse(sink);
            (void)parser.AtEnd(); // goes behind the blanks
            FOffset = static_cast<std::size_t>(parser.Offset());
            return;
        }
        default:
            RefuseFormat();
        }
    }
    TObjectStorageFormat FormatHere() const {
        TBytesStream stream(Left());
        TObjectStorageFormat format = osfExtBin;
        if (!Left().empty()) TestStreamFormat(stream, format);
        return format;
    }

private:
    std::string_view Left() const { return FBytes.substr(FOffset); }

    std::string_view FBytes;
    std::size_t FOffset = 0;
};

void Show(const TRequest& request) {
    const std::string bytes = LoadSettingsFile(request.File);
    WriteOut(WithFile(request.File, [&] {
        TFormLayout layout;
        layout.LineBreak = "\n";
        std::string text;
        TSettingsFile file(bytes);
        do {
            const std::optional<std::string> record = file.TakeRecord();
            text += record ? "version record: " + ShownSetting(Trim(*record)) : "no version record";
            text += "\n";
            TFormTextPrinter printer(text, layout);
            file.TakeTree(printer);
        } while (!file.AtEnd());
        return text;
    }));
}

/// Raises ESpcMngError when the stored object that a reader is about to read is another one.
void RequireSettings(TReader& reader) {
    const std::int64_t at = reader.Position();
    TFilerFlags flags;
    std::int32_t childPos = 0;
    reader.ReadSignature();
    reader.ReadPrefix(flags, childPos);
    const std::string stored = reader.ReadStr();
    reader.SetPosition(at);
    const std::string_view wanted = TExpData::ClassRecord.Name;
    if (!SameText(stored, wanted))
        throw ESpcMngError(Format("holds a %s instead of the settings, %s", {stored, wanted}));
}

void Import(const TRequest& request) {
    TSettingsSession session(request);
    const std::string bytes = LoadSettingsFile(request.File);
    WithFile(request.File, [&] {
        TSettingsFile file(bytes);
        (void)file.TakeRecord();
        const TObjectStorageFormat format = file.FormatHere();
        if (format != osfBin && format != osfText) RefuseFormat();

        TObjectSaver saver;
        saver.DetectFormat = true;
        saver.OnCheckDescription = [&](std::string_view description, bool text, bool& cancel) {
            CheckVer(description, text, cancel, {request.File, true});
        };
        saver.DoAfterCreateReader = RequireSettings;
        TBytesStream stream(bytes);
        TPersistent* const object = &ExpData();
        if (!saver.LoadWhole({&object, 1}, stream))
            throw ESpcMngError("of a later version, and not imported");
    });
    session.Save();
}

void Export(const TRequest& request) {
    constexpr std::string_view settingsExt = ".spc";
    const TSettingsSession session(request);
    const std::string ext = std::filesystem::path(request.File).extension().string();
    const auto has = [&](TObjectStorageFormat format) {
        return SameText(ext, StorageFormatExt(format));
    };
    const bool binary = has(osfBin) || SameText(ext, settingsExt);
    if (!binary && !has(osfText))
        throw EScriptError(
            ExitUsage, Format("%s: %s There are %s, %s and %s",
                              {request.File, LocaleStr(strUnknownSpcFormat),
                               StorageFormatExt(osfBin), StorageFormatExt(osfText), settingsExt}));
    SaveExpDataSpc(ExpData(), request.File, binary ? osfBin : osfText);
}

} // namespace

CLI::App* AddSettingsCommand(CLI::App& app, const std::string& packageDir,
                             std::function<void()>& chosen) {
    CLI::App* const settings = app.add_subcommand("settings", "Show or change the pack's settings");
    settings->require_subcommand(1);
    settings->footer(
        "The settings are kept in ExpData.spc in the directory of the pack: that of --package-dir, "
        "else\nof the environment variable TARN_PACKAGE_DIR, else the program's own.\n\n"
        "A path is made of the names of the settings tree, without case: "
        "MenuData.SortLinesItem.Caption,\nActiveExperts.UnitManager.Active, "
        "ExpManagerData.EditorFormData.AutoSaveSetting. list tells\nthem all, as PATH=VALUE. A "
        "value in double quotes has the escapes \\n \\r \\t \\\\ \\\" \\xHH; any other\nstands for "
        "itself. A VALUE that begins with - stands behind --.");
    const auto request = std::make_shared<TRequest>(TRequest{packageDir, {}, {}, {}});
    const auto add = [&](const std::string& name, const std::string& help,
                         void (*run)(const TRequest&)) {
        CLI::App* const command = settings->add_subcommand(name, help);
        command->fallthrough();
        command->final_callback([=, &chosen] { chosen = [=] { run(*request); }; });
        return command;
    };
    const auto path = [&](CLI::App* command, const std::string& help) {
        return command->add_option("PATH", request->Path, help);
    };
    const auto file = [&](CLI::App* command, const std::string& help) {
        command->add_option("FILE", request->File, help)->required();
    };
    path(add("list", "Print settings with their paths", List), "only those below it");
    path(add("get", "Print a setting", Get), "the setting")->required();
    CLI::App* const set = add("set", "Change a setting and save it", Set);
    path(set, "the setting")->required();
    set->add_option("VALUE", request->Value, "the new value, as list prints it")->required();
    path(add("reset", "Give settings their defaults", Reset),
         "only those below it; all without it, and the settings file is deleted");
    add("edit", "Open the settings editor where a window can be shown; refused on the command line",
        Edit);
    file(add("export", "Save all settings to a file", Export),
         "its extension tells the form: .sbn and .spc binary, .stx text");
    file(add("import", "Load settings from a file, all or nothing, and save them", Import),
         "a settings file in any form; what it does not mention stays");
    file(add("show", "Print a settings file", Show), "the settings file");
    return settings;
}

} // namespace tarn
