#include "TFormMirror.h"

#include "TFrontEnd.h"

namespace tarn {

TFormMirror::TFormMirror(TFrontEnd& frontEnd, TForm& form)
    : TFormMirror(frontEnd, form, new QWidget(nullptr, Qt::Window)) {}

TFormMirror::TFormMirror(TFrontEnd& frontEnd, TForm& form, QWidget* window)
    : TMirrorOf(frontEnd, form, window) {
    window->installEventFilter(this);
}

/// The window stands where the form says when it appears, and the form where the user moves it.
void TFormMirror::SyncPlace() {
    const TRect& at = Self().BoundsRect();
    if (QRect(View().pos(), View().size()) != QRect(at.Left, at.Top, at.Width, at.Height)) {
        View().resize(std::max(at.Width, 1), std::max(at.Height, 1));
        if (FPlaced || at.Left != 0 || at.Top != 0) View().move(at.Left, at.Top);
    }
    FPlaced = true;
    const bool onTop = Self().FormStyle() == fsStayOnTop;
    if (View().windowFlags().testFlag(Qt::WindowStaysOnTopHint) != onTop)
        View().setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    const Qt::WindowStates states[] = {Qt::WindowNoState, Qt::WindowMinimized, Qt::WindowMaximized};
    if (View().windowState() != states[Self().WindowState()] && !View().isActiveWindow())
        View().setWindowState(states[Self().WindowState()]);
    View().setVisible(Self().Visible());
}

void TFormMirror::SyncState() {
    View().setWindowTitle(FromText(Self().Caption()));
    if (Self().Visible() && Screen()->ActiveForm() == &Self() && !View().isActiveWindow()) {
        View().raise();
        View().activateWindow();
    }
}

void TFormMirror::UserCloses() {
    FrontEnd().AsUser([&] { Self().Close(); });
}

bool TFormMirror::eventFilter(QObject* object, QEvent* event) {
    if (object != &View()) return false;
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        UserCloses();
        return true;
    case QEvent::WindowActivate:
        if (!Syncing() && Screen()->ActiveForm() != &Self() && Self().Visible())
            FrontEnd().AsUser([&] { Screen()->SetActiveForm(&Self()); });
        return false;
    case QEvent::Move:
    case QEvent::Resize:
        if (!Syncing() && View().isVisible() && !View().isMaximized() && !View().isMinimized()) {
            Self().SetBoundsRect({View().x(), View().y(), View().width(), View().height()});
            FrontEnd().Flush();
        }
        return false;
    default:
        return false;
    }
}

// --- The main window --------------------------------------------------------------------------

TMainFormMirror::TMainFormMirror(TFrontEnd& frontEnd, TIdeMainForm& form)
    : TFormMirror(frontEnd, form, new QMainWindow) {
    Window().resize(1000, 700);
    SyncMenu();
}

void TMainFormMirror::SyncState() {
    Window().setWindowTitle(FromText(Application()->Title));
}

void TMainFormMirror::SyncMenu() {
    QMenuBar& bar = *Window().menuBar();
    bar.clear();
    TMenuItem& items = *static_cast<TIdeMainForm&>(Self()).MainMenu().Items();
    for (int i = 0; i < items.Count(); ++i) {
        TMenuItem& item = *items.Items(i);
        if (!item.Visible()) continue;
        QMenu* const menu = bar.addMenu(FromText(item.Caption()));
        connect(menu, &QMenu::aboutToShow, this, [this, menu, weak = TWeak<TMenuItem>(&item)] {
            if (!weak) return;
            FrontEnd().AsUser([&] { weak->Click(); });
            if (weak) FrontEnd().FillMenu(*menu, *weak);
        });
    }
}

void TMainFormMirror::UserCloses() {
    bool closed = false;
    FrontEnd().AsUser([&] { closed = FrontEnd().Ide().Modules().CloseAll(); });
    if (closed) QApplication::quit();
}

// --- The editor's window ----------------------------------------------------------------------

TEditWindowMirror::TEditWindowMirror(TFrontEnd& frontEnd, TEditWindow& window)
    : TMirrorOf(frontEnd, window, new QWidget) {
    auto* const column = new QVBoxLayout(&View());
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void TEditWindowMirror::SyncPlace() {
    auto* const main =
        dynamic_cast<TMainFormMirror*>(FrontEnd().MirrorOf(FrontEnd().Ide().MainForm()));
    if (main && main->Window().centralWidget() != &View()) main->Window().setCentralWidget(&View());
    View().setVisible(true);
}

} // namespace tarn
