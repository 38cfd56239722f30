// The desktop program, without a display: from the start of a process to its first window, beside
// an empty editor widget; a key press to the repainted text; the settings editor from the click to
// its painted window.

#include "TBenchFolder.h"
#include "TFrontEnd.h"
#include "TMirror.h"
#include "TWorkbench.h"
#include "rtl/SafeFile.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QProcess>
#include <QTimer>
#include <Qsci/qsciscintilla.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace tarn {
namespace {

/// A workbench on a package folder of its own.
class TBench {
public:
    TBench() {
        FSession.OS().SetModuleFileName((FFolder.Path() / "package").string());
        FWorkbench.Start();
        QApplication::processEvents();
    }
    ~TBench() { FSession.StopPack(); }

    TSession& Session() { return FSession; }
    TFrontEnd& FrontEnd() { return FWorkbench.FrontEnd(); }
    QsciScintilla& Editor() {
        QWidget* const widget = FrontEnd().WidgetOf(FSession.Ide().EditWindow().Editor());
        return static_cast<QsciScintilla&>(*widget);
    }
    /// Opens a new unit of that many lines.
    void OpenLines(int lines) {
        std::string text;
        for (int i = 0; i < lines; ++i)
            text += "  Value := Value + Item[" + std::to_string(i) + "];\r\n";
        const std::string file = (FFolder.Path() / "Lines.pas").string();
        SaveFileText(file, text);
        FWorkbench.Open(file);
        QApplication::processEvents();
    }

private:
    TBenchFolder FFolder;
    TSession FSession;
    TWorkbench FWorkbench{FSession};
};

// --- The start --------------------------------------------------------------------------------

/// Runs this program as another one, see main, until its window is painted and it ends.
void StartProcess(benchmark::State& state, const char* what) {
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        QProcess process;
        process.start(QApplication::applicationFilePath(), {what});
        if (!process.waitForFinished() || process.exitCode() != 0) {
            state.SkipWithError("the process failed");
            return;
        }
    }
}
void BM_StartWorkbench(benchmark::State& state) {
    StartProcess(state, "--start-workbench");
}
BENCHMARK(BM_StartWorkbench)->Unit(benchmark::kMillisecond)->UseRealTime();
void BM_StartEmptyEditor(benchmark::State& state) {
    StartProcess(state, "--start-empty");
}
BENCHMARK(BM_StartEmptyEditor)->Unit(benchmark::kMillisecond)->UseRealTime();

// --- A key press ------------------------------------------------------------------------------

void Press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(&widget, &press);
}

/// A block of all lines moves right by one column, and the window is painted anew.
void BM_ShiftLines(benchmark::State& state) {
    TBench bench;
    bench.OpenLines(static_cast<int>(state.range(0)));
    QsciScintilla& editor = bench.Editor();
    TSourceView& view = *bench.Session().Ide().CurrentView();
    const std::string before = view.Buffer().Text().Text();
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        view.SelectAll();
        bench.FrontEnd().Flush();
        QApplication::processEvents();
        state.ResumeTiming();
        Press(editor, Qt::Key_Period, Qt::ControlModifier);
        bench.FrontEnd().Flush();
        editor.repaint();
    }
    if (view.Buffer().Text().Text() == before) state.SkipWithError("nothing has moved");
}
BENCHMARK(BM_ShiftLines)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// The widget's own way to indent, with no pack and no buffer behind it.
void BM_ShiftLinesOfEditor(benchmark::State& state) {
    QsciScintilla editor;
    editor.resize(1000, 700);
    std::string text;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        text += "  Value := Value + Item[" + std::to_string(i) + "];\r\n";
    editor.setText(FromText(text));
    editor.setIndentationWidth(1);
    editor.show();
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        state.PauseTiming();
        editor.selectAll();
        QApplication::processEvents();
        state.ResumeTiming();
        editor.SendScintilla(QsciScintilla::SCI_TAB);
        editor.repaint();
    }
}
BENCHMARK(BM_ShiftLinesOfEditor)->Arg(10000)->Unit(benchmark::kMillisecond);

// --- The settings editor ----------------------------------------------------------------------

/// From the click on its menu item until the window is painted; it is closed outside the time.
void BM_OpenSettingsEditor(benchmark::State& state) {
    TBench bench;
    TMenuItem* const edit = bench.Session().FindMenuItem("TarnExperts|Settings|Edit...");
    if (!edit) return state.SkipWithError("there is no such menu item");
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        QElapsedTimer clock;
        qint64 opened = 0;
        // The first thing that the loop of the modal window does.
        QTimer::singleShot(0, [&] {
            QApplication::processEvents();
            TForm* const form = Screen()->ActiveForm();
            if (QWidget* const window = form ? bench.FrontEnd().WidgetOf(*form) : nullptr)
                window->repaint();
            opened = clock.nsecsElapsed();
            bench.FrontEnd().AsUser([&] {
                if (form && form->Modal()) form->Close();
            });
        });
        clock.start();
        bench.Session().Ide().ClickMenuItem(*edit);
        state.SetIterationTime(static_cast<double>(opened) / 1e9);
        bench.FrontEnd().Flush();
        QApplication::processEvents();
    }
}
BENCHMARK(BM_OpenSettingsEditor)->Unit(benchmark::kMillisecond)->UseManualTime();

/// What a process of StartProcess does.
int StartAndEnd(std::string_view what) {
    if (what == "--start-empty") {
        QsciScintilla editor;
        editor.resize(1000, 700);
        editor.show();
        QApplication::processEvents();
        return editor.isVisible() ? 0 : 1;
    }
    TBench bench;
    return bench.FrontEnd().WidgetOf(bench.Session().Ide().MainForm())->isVisible() ? 0 : 1;
}

} // namespace
} // namespace tarn

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argc, argv);
    if (argc > 1 && std::string_view(argv[1]).starts_with("--start-"))
        std::_Exit(tarn::StartAndEnd(argv[1]));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
