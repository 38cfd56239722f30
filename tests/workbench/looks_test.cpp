// How the windows look, in each language: nothing is cut off, and everything that can have the
// focus has a name for those who cannot see it.

#include "Pictures.h"
#include "TFrontEnd.h"
#include "TMirror.h"
#include "TScript.h"
#include "TTestFolder.h"
#include "Theme.h"
#include "rtl/SafeFile.h"
#include "vcl/TTextMeasure.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QtWidgets>

#include <filesystem>

namespace tarn {
namespace {

namespace fs = std::filesystem;

/// The text that a widget shows in one piece, as wide as it is; empty for others.
QStringList ShownLines(const QWidget& widget) {
    QString text;
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) text = label->text();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
        text = button->text();
    return text.remove('&').split('\n');
}

/// Whether the widget lies in something that scrolls.
bool Scrolls(const QWidget& widget) {
    for (const QWidget* above = widget.parentWidget(); above; above = above->parentWidget())
        if (qobject_cast<const QAbstractScrollArea*>(above)) return true;
    return false;
}

/// What is wrong with a window, a line each.
QString FaultsOf(const QWidget& window) {
    QString faults;
    const auto fault = [&](const QWidget& widget, const QString& what) {
        faults += window.windowTitle() + ": " + widget.objectName() + " " +
                  widget.metaObject()->className() + " " + what + "\n";
    };
    for (const QWidget* const widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->objectName().startsWith("qt_")) continue;
        const bool ours = widget->parentWidget() && !widget->objectName().isEmpty();
        if (ours && !Scrolls(*widget) &&
            !widget->parentWidget()->rect().contains(widget->geometry()))
            fault(*widget, "reaches out of what holds it");
        for (const QString& line : ShownLines(*widget))
            if (widget->fontMetrics().horizontalAdvance(line) > widget->width())
                fault(*widget, "cuts \"" + line + "\" off");
        const bool named = !widget->accessibleName().isEmpty() || !ShownLines(*widget)[0].isEmpty();
        if (ours && (widget->focusPolicy() & Qt::TabFocus) && !named) fault(*widget, "has no name");
    }
    return faults;
}

class WorkbenchLooks : public testing::TestWithParam<std::string> {};

TEST_P(WorkbenchLooks, NothingIsCutOff) {
    const fs::path languages = TARN_LANGUAGE_DIR;
    if (!fs::exists(languages / "texp_eng.dll")) GTEST_SKIP() << "there are no language modules";
    const TTestFolder pictures;
    // Beside the script stand the files that it opens.
    TScript script(fs::path(TARN_SOURCE_DIR) / "docs", [](std::string_view) {});
    TFrontEnd frontEnd(script.Session(), true);
    InstallTextMeasure(&frontEnd);
    frontEnd.Flush();
    frontEnd.WidgetOf(script.Session().Ide().MainForm())->show();
    script.OnStatement = [&] {
        frontEnd.Flush();
        QApplication::processEvents();
    };
    QString faults;
    QStringList titles;
    script.OnPicture = [&](const std::string& name, TMenuItem* item) {
        script.OnStatement();
        for (const QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible()) faults += FaultsOf(*window);
        SavePicture(frontEnd, pictures.Path(), name, item);
        const QImage picture(FromText((fs::path(pictures.Path()) / (name + ".png")).string()));
        EXPECT_GE(picture.width(), frontEnd.WidgetOf(script.Session().Ide().MainForm())->width());
        const TForm* const form = Screen()->ActiveForm();
        titles << FromText(form->Caption());
    };
    script.Play("registry ExpLocaleDir " + languages.string() +
                "\nstart\npump\nclick \"TarnExperts|Settings|Language|" + GetParam() +
                "\"\npump\n" + LoadFileText(std::string(TARN_SOURCE_DIR) + "/docs/pictures.tarn"));
    EXPECT_EQ(faults.toStdString(), "");
    EXPECT_EQ(titles.size(), 8);
    EXPECT_EQ(titles[1] == "Unit manager", GetParam() == "English") << "the language is chosen";
}

INSTANTIATE_TEST_SUITE_P(All, WorkbenchLooks, testing::Values("English", "German", "Russian"),
                         [](const auto& info) { return info.param; });

/// A language is chosen while windows are open: the experts are made anew, their windows close, and
/// speak the language when they open again.
TEST(WorkbenchLanguages, AreChosenWhileWindowsAreOpen) {
    const fs::path languages = TARN_LANGUAGE_DIR;
    if (!fs::exists(languages / "texp_ger.dll")) GTEST_SKIP() << "there are no language modules";
    TScript script(fs::path(TARN_SOURCE_DIR) / "docs", [](std::string_view) {});
    TFrontEnd frontEnd(script.Session(), true);
    QStringList shown;
    script.OnStatement = [&] { frontEnd.Flush(); };
    script.OnPicture = [&](const std::string&, TMenuItem*) {
        frontEnd.Flush();
        for (const char* const name : {"UnitForm", "CPUForm"}) {
            const TForm* form = nullptr;
            for (int i = 0; i < Screen()->FormCount(); ++i)
                if (Screen()->Forms(i)->Name() == name) form = Screen()->Forms(i);
            if (!form) {
                shown << "-";
                continue;
            }
            const QWidget& window = *frontEnd.WidgetOf(*form);
            shown << window.windowTitle();
            shown << window.findChild<QToolButton*>("tbExit")->text();
        }
    };
    script.Play("registry ExpLocaleDir " + languages.string() +
                "\nstart\npump\nopen ../examples/Trees.pas\ncpu ../examples/sum.cpu\n"
                "press Ctrl+W\nactivate IdeMainForm\npress Ctrl+Shift+Q\npicture before\n"
                "click \"TarnExperts|Settings|Language|German\"\npump\npicture after\n"
                "press Ctrl+W\nactivate IdeMainForm\npress Ctrl+Shift+Q\npicture again\n");
    EXPECT_EQ(shown.join(", ").toStdString(), "Unit manager, Exit, View CPU, Exit, -, -, "
                                              "Unit-Manager, Schließen, CPU-Ansicht, Schließen");
}

/// Each colour of a text can be read on its ground, in both themes.
TEST(WorkbenchThemes, HaveColoursThatCanBeRead) {
    for (const TTheme theme : {thDark, thLight}) {
        ApplyTheme(theme);
        const QPalette palette = QApplication::palette();
        const auto contrast = [&](QPalette::ColorRole text, QPalette::ColorRole ground) {
            return std::abs(palette.color(text).lightness() - palette.color(ground).lightness());
        };
        EXPECT_EQ(palette.color(QPalette::Window).lightness() < 128, theme == thDark);
        EXPECT_GT(contrast(QPalette::WindowText, QPalette::Window), 100);
        EXPECT_GT(contrast(QPalette::Text, QPalette::Base), 100);
        EXPECT_GT(contrast(QPalette::ButtonText, QPalette::Button), 100);
        EXPECT_GT(contrast(QPalette::HighlightedText, QPalette::Highlight), 80);
        EXPECT_GT(contrast(QPalette::Link, QPalette::Window), 80);
        EXPECT_GT(contrast(QPalette::ToolTipText, QPalette::ToolTipBase), 80);
    }
}

} // namespace
} // namespace tarn
