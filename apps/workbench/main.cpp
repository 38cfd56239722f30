// The desktop program: the pack in real windows.

#include "Pictures.h"
#include "TQtDialogs.h"
#include "TScript.h"
#include "TWorkbench.h"
#include "Theme.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <unistd.h>

namespace tarn {
namespace {

namespace fs = std::filesystem;

int Report(int exitCode, std::string_view message) {
    std::cout.flush();
    std::cerr << "tarn-workbench: " << message << '\n';
    return exitCode;
}

// --- Scripts ----------------------------------------------------------------------------------

int PlayScript(const std::string& file, const std::string& pictures) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream || fs::is_directory(file)) return Report(ExitIO, "cannot read " + file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    TScript script(fs::absolute(file).parent_path(),
                   [](std::string_view line) { std::cout << line; });
    TFrontEnd frontEnd(script.Session(), true);
    frontEnd.Flush();
    QWidget* const window = frontEnd.WidgetOf(script.Session().Ide().MainForm());
    if (window) window->show();
    script.OnStatement = [&] {
        frontEnd.Flush();
        QApplication::processEvents();
    };
    if (!pictures.empty()) {
        InstallTextMeasure(&frontEnd);         // texts are to fit as they do for a user
        if (window) window->resize(1000, 700); // whatever room there is
        script.OnPicture = [&](const std::string& name, TMenuItem* item) {
            script.OnStatement();
            SavePicture(frontEnd, pictures, name, item);
        };
    }
    try {
        script.Play(text);
    } catch (const EScriptError& error) {
        return Report(error.ExitCode(), file + ":" + error.what());
    }
    return ExitDone;
}

// --- The program ------------------------------------------------------------------------------

struct TOptions {
    std::vector<std::string> Files;
    std::string Script;
    std::string Pictures;
    std::string PackageDir;
    std::string Theme = "system";
};

/// The folder for what the program keeps for its user: that of the pack's settings, or the user's
/// own when that may not be written to, as where a whole machine shares the program.
fs::path UserFolder(const fs::path& package) {
    const fs::path registry(TPortableOS::UserRegistryFile());
    const bool shared = ::access(package.c_str(), W_OK) != 0 && !registry.empty();
    return shared ? registry.parent_path() : package;
}

int Run(const TOptions& options) {
    const fs::path package = PackageFolder(options.PackageDir);
    TQtDialogs dialogs;
    TSession session(&dialogs);
    session.OS().SetModuleFileName((package / "package").string());
    session.OS().SetRegistryFile(TPortableOS::UserRegistryFile());
    session.LetPackSave();
    TWorkbench workbench(session);
    workbench.KeepPlace((UserFolder(package) / "Workbench.ini").string());
    workbench.Start();
    workbench.KeepRecovery((UserFolder(package) / "Recovery").string());
    for (const std::string& file : options.Files) workbench.Open(file);
    QApplication::exec();
    session.StopPack();
    return ExitDone;
}

/// Parts the arguments of Qt, which are words with one dash such as "-platform NAME", from those of
/// the program.
std::vector<char*> TakeQtArguments(std::vector<char*>& args) {
    std::vector<char*> taken;
    for (std::size_t i = 1; i < args.size();) {
        const std::string_view word = args[i];
        if (word == "--") break;
        const bool isQt = word.size() > 2 && word[0] == '-' && word[1] != '-';
        const bool hasValue = word != "-reverse" && word.find('=') == word.npos;
        for (int count = !isQt ? 0 : hasValue ? 2 : 1; count > 0 && i < args.size(); --count) {
            taken.push_back(args[i]);
            args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
        }
        if (!isQt) ++i;
    }
    return taken;
}

QtMessageHandler ShowOtherMessage = nullptr;

/// Qt would end the program by a signal when it finds no display.
void TakeQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) return ShowOtherMessage(type, context, text);
    const QString reason = text.section('\n', 0, 0);
    std::_Exit(Report(ExitIO, "no display: " + reason.toStdString()));
}

/// Has the buttons of message boxes and file dialogs speak the language of the desktop, where that
/// is installed.
void LoadQtTexts() {
    auto* const texts = new QTranslator(qApp);
    if (texts->load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(texts);
}

/// Whether there is something to show windows on, as far as the environment tells.
bool HasDisplay(const std::vector<char*>& qtArgs) {
    const auto isSet = [](const char* name) {
        const char* const value = std::getenv(name);
        return value && *value;
    };
    const bool chosen = std::any_of(qtArgs.begin(), qtArgs.end(), [](std::string_view word) {
        return word.starts_with("-platform");
    });
    return chosen || isSet("QT_QPA_PLATFORM") || isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

int Main(int argc, char** argv) {
    CLI::App app("The TarnExperts pack in an IDE with windows.", "tarn-workbench");
    app.set_version_flag("--version", std::string("tarn-workbench ") + TARN_VERSION);
    TOptions options;
    app.add_option("FILE", options.Files, "Files, projects and groups to open");
    CLI::Option* const script =
        app.add_option("--script", options.Script, "Play a script of IDE actions, and end");
    app.add_option("--screenshots", options.Pictures, "Folder for the pictures that a script takes")
        ->needs(script);
    app.add_option("--package-dir", options.PackageDir, "Folder of the pack's settings")
        ->envname("TARN_PACKAGE_DIR");
    const std::map<std::string, TTheme> themes = {
        {"dark", thDark}, {"light", thLight}, {"system", thSystem}};
    app.add_option("--theme", options.Theme,
                   "Colours of the windows; system for those of the desktop")
        ->check(CLI::IsMember({"system", "light", "dark"}))
        ->type_name("THEME");

    std::vector<char*> args(argv, argv + argc);
    std::vector<char*> qtArgs = TakeQtArguments(args);
    try {
        app.parse(static_cast<int>(args.size()), args.data());
    } catch (const CLI::Success& success) {
        return app.exit(success); // help and version
    } catch (const CLI::ParseError& error) {
        return Report(ExitUsage, error.what());
    }
    if (!HasDisplay(qtArgs))
        return Report(ExitIO, "no display: neither DISPLAY nor WAYLAND_DISPLAY is set");

    qtArgs.insert(qtArgs.begin(), argv[0]);
    int qtCount = static_cast<int>(qtArgs.size());
    qtArgs.push_back(nullptr);
    ShowOtherMessage = qInstallMessageHandler(TakeQtMessage);
    const QApplication application(qtCount, qtArgs.data());
    if (qtCount > 1) return Report(ExitUsage, "unknown option " + std::string(qtArgs[1]));
    LoadQtTexts();
    ApplyTheme(themes.at(options.Theme));
    try {
        return options.Script.empty() ? Run(options) : PlayScript(options.Script, options.Pictures);
    } catch (const EScriptError& error) {
        return Report(error.ExitCode(), error.what());
    } catch (const std::exception& error) {
        return Report(ExitIO, error.what());
    }
}

} // namespace
} // namespace tarn

int main(int argc, char** argv) {
    return tarn::Main(argc, argv);
}
