#include "TFinder.h"

#include "Source/TSourceBuffer.h"
#include "TIde.h"
#include "TMirror.h"
#include "TQtDialogs.h"
#include "TTextSearch.h"
#include "rtl/SysUtils.h"
#include "vcl/Dialogs.h"

#include <QtWidgets>

namespace tarn {
namespace {

void Tell(const std::string& text) {
    OS().MessageBox(Application()->Handle(), text, Application()->Title,
                    MB_OK | MB_ICONINFORMATION);
}

} // namespace

void TFinder::Find() {
    TSourceView* const view = FIde.CurrentView();
    if (!view) return;
    if (view->HasBlock() && view->BlockStart().Row == view->BlockEnd().Row)
        FSought = FromText(view->BlockText());
    if (Ask()) FindFrom(*view, false);
}

void TFinder::FindAgain(bool backwards) {
    TSourceView* const view = FIde.CurrentView();
    if (!view) return;
    if (!FSought.isEmpty() || Ask()) FindFrom(*view, backwards);
}

/// Asks for what is sought; false when that is cancelled or nothing.
bool TFinder::Ask() {
    QDialog dialog(&FWindow);
    SetTitle(dialog, "Find");
    auto* const form = new QFormLayout(&dialog);
    auto* const line = new QLineEdit(FSought);
    line->selectAll();
    line->setMinimumWidth(300);
    form->addRow("&Text to find:", line);
    auto* const matchCase = new QCheckBox("Match &case");
    matchCase->setChecked(FMatchCase);
    form->addRow(matchCase);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText("&Find");
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (!Execute(dialog) || line->text().isEmpty()) return false;
    FSought = line->text();
    FMatchCase = matchCase->isChecked();
    return true;
}

void TFinder::FindFrom(TSourceView& view, bool backwards) {
    const TEditText& text = view.Buffer().Text();
    const TTextSearch search(FSought, FMatchCase);
    const auto within = [&](std::size_t from, std::size_t to) {
        return backwards ? search.Last(text, from, to) : search.First(text, from, to);
    };
    // Again, what is selected is not found once more.
    const std::size_t start = text.OffsetAt(backwards ? view.BlockStart() : view.BlockEnd());
    std::optional<std::size_t> place = backwards ? within(0, start) : within(start, text.Size());
    const bool around = !place;
    if (around) place = within(0, text.Size());
    if (!place) return Tell(Format("\"%s\" was not found", {ToText(FSought)}));
    view.Select(text.PosAt(*place), text.PosAt(*place + search.Size()));
    if (!around)
        FWindow.statusBar()->clearMessage();
    else
        FWindow.statusBar()->showMessage(backwards
                                             ? "The search went on from the end of the text"
                                             : "The search went on from the start of the text");
}

void TFinder::GoToLine() {
    TSourceView* const view = FIde.CurrentView();
    std::string line;
    if (!view || !InputQuery("Go to Line Number", "Line:", line)) return;
    if (Trim(line).empty()) return;
    const int count = view->Buffer().Text().LineCount();
    const int row = StrToIntDef(Trim(line), 0);
    if (row < 1 || row > count)
        return Tell(Format("There is no line %s: the lines are 1 to %d", {line, count}));
    view->GoTo({.Row = row, .Col = 1});
}

} // namespace tarn
