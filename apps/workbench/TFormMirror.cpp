#include "TFormMirror.h"

#include "Source/Columns.h"
#include "Source/TSourceBuffer.h"
#include "TFrontEnd.h"
#include "TQtDialogs.h"
#include "rtl/SysUtils.h"

#include <QScreen>
#include <QStatusBar>

namespace tarn {

TFormMirror::TFormMirror(TFrontEnd& frontEnd, TForm& form)
    : TFormMirror(frontEnd, form, new QWidget(nullptr, Qt::Window)) {}

TFormMirror::TFormMirror(TFrontEnd& frontEnd, TForm& form, QWidget* window)
    : TMirrorOf(frontEnd, form, window) {
    window->installEventFilter(this);
}

namespace {

/// The place of a window, or the middle of the screen when the screen it stood on is gone.
QPoint OnScreen(const QWidget& window, const TRect& at) {
    constexpr int reach = 24; // pixels of a window that can be taken hold of
    const QRect title(at.Left, at.Top, at.Width, reach);
    for (const QScreen* const screen : QGuiApplication::screens()) {
        const QRect seen = screen->availableGeometry() & title;
        if (seen.width() >= reach && seen.height() >= reach / 2) return {at.Left, at.Top};
    }
    QRect place(0, 0, at.Width, at.Height);
    place.moveCenter(window.screen()->availableGeometry().center());
    return {std::max(place.x(), 0), std::max(place.y(), 0)};
}

/// In the middle of another window, but not beyond the left and upper edge of its screen.
TRect Amid(const QWidget& other, TRect at) {
    const QPoint corner = other.screen()->availableGeometry().topLeft();
    const QRect around = other.frameGeometry();
    at.Left = std::max(around.center().x() - at.Width / 2, corner.x());
    at.Top = std::max(around.center().y() - at.Height / 2, corner.y());
    return at;
}

} // namespace

/// The window stands where the form says when it appears, and the form where the user moves it. A
/// form without controls has nothing to show: it only says that a question is open.
void TFormMirror::SyncPlace() {
    const bool isNew = !std::exchange(FPlaced, true);
    const QWidget* const main = FrontEnd().WidgetOf(FrontEnd().Ide().MainForm());
    // A script sees the places that need no screen.
    if (isNew && !FrontEnd().Watched() && main && Self().Left() == 0 && Self().Top() == 0)
        Self().SetBoundsRect(Amid(*main, Self().BoundsRect()));
    const TRect& at = Self().BoundsRect();
    if (QRect(View().pos(), View().size()) != QRect(at.Left, at.Top, at.Width, at.Height)) {
        View().resize(std::max(at.Width, 1), std::max(at.Height, 1));
        if (!isNew || at.Left != 0 || at.Top != 0) View().move(OnScreen(View(), at));
    }
    const bool onTop = Self().FormStyle() == fsStayOnTop;
    if (View().windowFlags().testFlag(Qt::WindowStaysOnTopHint) != onTop && !Self().Modal())
        View().setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    if (Self().Modal() && !View().isVisible()) ComeInFront(View());
    const Qt::WindowStates states[] = {Qt::WindowNoState, Qt::WindowMinimized, Qt::WindowMaximized};
    if (View().windowState() != states[Self().WindowState()] && !View().isActiveWindow())
        View().setWindowState(states[Self().WindowState()]);
    View().setVisible(Self().Visible() && Self().ControlCount() > 0);
}

void TFormMirror::SyncState() {
    View().setWindowTitle(FromText(Self().Caption()));
    if (View().isVisible() && Screen()->ActiveForm() == &Self() && !View().isActiveWindow()) {
        View().raise();
        View().activateWindow();
    }
}

void TFormMirror::UserCloses() {
    FrontEnd().AsUser([&] { Self().Close(); });
}

/// Whether the active form is this one, or stands in its window.
bool TFormMirror::HoldsActiveForm() const {
    const TForm* const active = Screen()->ActiveForm();
    const QWidget* const widget = active ? FrontEnd().WidgetOf(*active) : nullptr;
    return active == &Self() || (widget && widget->window() == &View());
}

bool TFormMirror::eventFilter(QObject* object, QEvent* event) {
    if (object != &View()) return false;
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        UserCloses();
        return true;
    case QEvent::WindowActivate:
        if (!Syncing() && !HoldsActiveForm() && Self().Visible())
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
    constexpr int frame = 40; // pixels for what the desktop puts around it
    const QSize room = Window().screen()->availableSize() - QSize(0, frame);
    Window().resize(QSize(1000, 700).boundedTo(room));
    FPlace->setTextFormat(Qt::PlainText);
    Window().statusBar()->addPermanentWidget(FPlace);
    SyncMenu();
}

void TMainFormMirror::SyncState() {
    ShowFile();
}

void TMainFormMirror::ShowFile() {
    QString title = FromText(Application()->Title), place;
    if (const TSourceBuffer* const buffer = FrontEnd().Ide().CurrentBuffer()) {
        const TTextPos cursor = buffer->View()->Cursor();
        const bool modified = buffer->Modified();
        title =
            FromText(ExtractFileName(buffer->FileName())) + (modified ? " * - " : " - ") + title;
        place = QString("%1: %2%3")
                    .arg(cursor.Row)
                    .arg(SeenAt(buffer->Text(), cursor))
                    .arg(modified ? "   Modified" : "");
    }
    Window().setWindowTitle(title);
    FPlace->setText(place);
}

void TMainFormMirror::SyncMenu() {
    QMenuBar& bar = *Window().menuBar();
    for (QAction* const action : bar.actions()) action->menu()->deleteLater();
    bar.clear();
    TMenuItem& items = *static_cast<TIdeMainForm&>(Self()).MainMenu().Items();
    for (int i = 0; i < items.Count(); ++i) {
        TMenuItem& item = *items.Items(i);
        if (!item.Visible()) continue;
        QMenu* const menu = bar.addMenu(FromText(item.Caption()));
        connect(menu, &QMenu::aboutToShow, this,
                [this, menu, weak = TWeak<TMenuItem>(&item)] { FrontEnd().OpenMenu(*menu, weak); });
    }
}

/// The place of an item among those of its parent that are seen.
int ShownIndex(TMenuItem& item) {
    int index = 0;
    for (int i = 0; i < item.MenuIndex(); ++i) index += item.Parent()->Items(i)->Visible();
    return index;
}

QMenu* TMainFormMirror::OpenMenu(TMenuItem& item) {
    if (!item.Parent()) return nullptr;
    QMenu* const above = OpenMenu(*item.Parent());
    QWidget* const holder = above ? static_cast<QWidget*>(above) : Window().menuBar();
    QAction* const action = holder->actions().value(ShownIndex(item));
    if (!action || !action->menu()) return above;
    QPoint place;
    if (above) {
        above->setActiveAction(action);
        place = above->mapToGlobal(above->actionGeometry(action).topRight());
    } else {
        QMenuBar& bar = *Window().menuBar();
        place = bar.mapToGlobal(bar.actionGeometry(action).bottomLeft());
    }
    action->menu()->popup(place);
    action->menu()->move(place); // a picture has room where the screen ends
    return action->menu();
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
