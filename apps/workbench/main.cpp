// The desktop program: the pack in real windows.

#include "Pictures.h"
#include "TQtDialogs.h"
#include "TScript.h"
#include "TWorkbench.h"
#include "Theme.h"

#include <QApplication>

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <iterator>

namespace tarn {
namespace {

namespace fs = std::filesystem;

int PlayScript(const std::string& file, const std::string& pictures) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::cerr << "cannot read " << file << "\n";
        return 3;
    }
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
        InstallTextMeasure(&frontEnd); // texts are to fit as they do for a user
        script.OnPicture = [&](const std::string& name, TMenuItem* item) {
            script.OnStatement();
            SavePicture(frontEnd, pictures, name, item);
        };
    }
    try {
        script.Play(text);
    } catch (const EScriptError& error) {
        std::cerr << file << ":" << error.what() << "\n";
        return error.ExitCode();
    }
    return 0;
}

int Main(int argc, char** argv) {
    CLI::App options("The TarnExperts pack in an IDE with windows.", "tarn-workbench");
    std::vector<std::string> files;
    std::string script, pictures, packageDir;
    TTheme theme = thSystem;
    options.add_option("FILE", files, "Files, projects and groups to open");
    options.add_option("--script", script, "Play a script of IDE actions, and end");
    options.add_option("--screenshots", pictures, "Folder for the pictures that a script takes");
    options.add_option("--package-dir", packageDir, "Folder of the pack's settings");
    options.add_option("--theme", theme, "Colours of the windows; system: those of the desktop")
        ->transform(CLI::CheckedTransformer(std::map<std::string, TTheme>{
            {"system", thSystem}, {"light", thLight}, {"dark", thDark}}));
    CLI11_PARSE(options, argc, argv);
    ApplyTheme(theme);
    if (!script.empty()) return PlayScript(script, pictures);

    TQtDialogs dialogs;
    TSession session(&dialogs);
    session.OS().SetModuleFileName((PackageFolder(packageDir) / "package").string());
    session.OS().SetRegistryFile(TPortableOS::UserRegistryFile());
    session.LetPackSave();
    TWorkbench workbench(session);
    workbench.Start();
    for (const std::string& file : files) workbench.Open(FromText(file));
    const int result = QApplication::exec();
    session.StopPack();
    return result;
}

} // namespace
} // namespace tarn

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    return tarn::Main(argc, argv);
}
