#include "TFrontEnd.h"

#include "QtKeys.h"
#include "TFormMirror.h"
#include "vcl/TScrollBox.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEventLoop>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QThread>
#include <QWindow>

namespace tarn {

QString FromText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string ToText(const QString& text) {
    return text.toStdString();
}

QFont FromFont(const TFont& font) {
    QFont result = QApplication::font();
    if (font.Pitch() == fpFixed) result = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (!font.Name().empty() && font.Name() != "MS Sans Serif")
        result.setFamily(FromText(font.Name()));
    if (font.Height() != 0) result.setPixelSize(std::max(std::abs(font.Height()), 1));
    result.setBold(font.Style().Contains(fsBold));
    result.setItalic(font.Style().Contains(fsItalic));
    result.setUnderline(font.Style().Contains(fsUnderline));
    result.setStrikeOut(font.Style().Contains(fsStrikeOut));
    return result;
}

TExtent TFrontEnd::TextExtent(const TFont& font, std::string_view line) {
    const QFontMetrics metrics(FromFont(font));
    return {metrics.horizontalAdvance(FromText(line)), metrics.height()};
}

// --- Controls and mirrors ---------------------------------------------------------------------

TFrontEnd::TFrontEnd(TSession& session, bool watched)
    : FSession(session), FWatched(watched), FFormerPeer(std::exchange(Screen()->Peer, this)),
      FFormerMeasure(InstallTextMeasure(watched ? nullptr : this)) {
    Screen()->MenuPeer = this;
    for (int i = 0; i < Screen()->FormCount(); ++i) Adopt(*Screen()->Forms(i));
    qApp->installEventFilter(this);
    if (watched) return;
    Screen()->Fonts().Clear();
    for (const QString& family : QFontDatabase::families()) Screen()->Fonts().Add(ToText(family));
    FClock.start();
    FTick.setSingleShot(true);
    connect(&FTick, &QTimer::timeout, this, [this] { Pump(); });
    FBeeps = FSession.OS().Beeps();
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, [this] { TakeClipboard(); });
    TakeClipboard();
}

TFrontEnd::~TFrontEnd() {
    qApp->removeEventFilter(this);
    for (const auto& [control, mirror] : FMirrors) const_cast<TControl*>(control)->Peer = nullptr;
    FMirrors.clear();
    InstallTextMeasure(FFormerMeasure);
    if (!Screen()) return;
    for (int i = 0; i < Screen()->FormCount(); ++i) Leave(*Screen()->Forms(i));
    Screen()->Peer = FFormerPeer;
    Screen()->MenuPeer = nullptr;
}

TMirror* TFrontEnd::MirrorOf(const TControl& control) const {
    const auto found = FMirrors.find(&control);
    return found == FMirrors.end() ? nullptr : found->second.get();
}

QWidget* TFrontEnd::WidgetOf(const TControl& control) const {
    TMirror* const mirror = MirrorOf(control);
    return mirror ? mirror->Widget() : nullptr;
}

/// Takes the control over with all that it holds.
void TFrontEnd::Adopt(TControl& control) {
    control.Peer = this;
    StateChanged(control);
    for (int i = 0; i < control.ControlCount(); ++i) Adopt(*control.Controls(i));
}

/// The opposite, also of what was never shown.
void TFrontEnd::Leave(TControl& control) {
    if (control.Peer == this) control.Peer = nullptr;
    for (int i = 0; i < control.ControlCount(); ++i) Leave(*control.Controls(i));
}

void TFrontEnd::StateChanged(TControl& control) {
    // What a scroll box holds makes its content.
    if (auto* const box = dynamic_cast<TScrollBox*>(control.Parent())) StateChanged(*box);
    if (!FIsChanged.insert(&control).second) return;
    FChanged.push_back(&control);
    if (std::exchange(FFlushPosted, true)) return;
    QMetaObject::invokeMethod(
        this, [this] { Flush(); }, Qt::QueuedConnection);
}

void TFrontEnd::Gone(TControl& control) {
    control.Peer = nullptr;
    if (FIsChanged.erase(&control) != 0) std::erase(FChanged, &control);
    auto gone = FMirrors.extract(&control);
    if (gone.empty()) return;
    TMirror* const mirror = gone.mapped().release();
    mirror->deleteLater(); // it may be the one that handles an event
    if (!mirror->Widget()) return;
    // The widget's focus goes elsewhere at once; the form's may still go where the program wants
    // it.
    const TScopedValue going(FGoing, true);
    const bool hadFocus = mirror->Widget()->hasFocus();
    mirror->Hide();
    if (!hadFocus) return;
    const auto follow = [this] {
        if (QWidget* const focus = QApplication::focusWidget()) TakeFocus(*focus);
    };
    QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
}

void TFrontEnd::SetRedraw(TControl& control, bool on) {
    if (QWidget* const widget = WidgetOf(control)) widget->setUpdatesEnabled(on);
}

void TFrontEnd::Redraw(TControl& control, std::uint32_t flags) {
    StateChanged(control);
    if ((flags & RDW_UPDATENOW) == 0) return;
    if (QWidget* const widget = WidgetOf(control)) widget->update();
}

namespace {

/// A modal window stands in front of the one that it keeps from being used.
void SetModal(QWidget& window, bool modal) {
    window.setWindowModality(modal ? Qt::ApplicationModal : Qt::NonModal);
    const QWidget* const below = modal ? QApplication::activeWindow() : nullptr;
    if (!modal && !window.windowHandle()) return;
    window.winId(); // which makes the handle
    window.windowHandle()->setTransientParent(below ? below->windowHandle() : nullptr);
}

} // namespace

/// Makes the mirror of a control whose parent has one, and brings it up to date.
void TFrontEnd::Shown(TControl& control) {
    std::unique_ptr<TMirror>& mirror = FMirrors[&control];
    if (!mirror) {
        mirror = MakeMirror(*this, control);
        if (!mirror) {
            FMirrors.erase(&control);
            return;
        }
    }
    // A window becomes modal before it is shown, or not at all.
    auto* const form = ClassCast<TForm>(&control);
    if (form && mirror->Widget() && !mirror->Widget()->isVisible())
        SetModal(*mirror->Widget(), form->Modal());
    mirror->Sync();
}

void TFrontEnd::Flush() {
    FFlushPosted = false;
    // What a mirror does may change controls again, once or twice, or free one that waits.
    for (std::size_t most = 4 * FChanged.size(); most > 0 && !FChanged.empty(); --most) {
        TControl* const control = FChanged.front();
        FChanged.pop_front();
        FIsChanged.erase(control);
        Shown(*control);
    }
    if (TMirror* const editor = MirrorOf(Ide().EditWindow().Editor())) editor->Sync();
    ShowActiveForm();
    auto* const main = dynamic_cast<TMainFormMirror*>(MirrorOf(Ide().MainForm()));
    if (!main) return;
    main->ShowFile();
    // A menu that is open, or is just being opened, is not taken from under the mouse.
    if (FMenuOpens || QApplication::activePopupWidget() || !std::exchange(FMenuChanged, false))
        return;
    main->SyncMenu();
}

/// When the active form is gone, the one behind it is active, as on any desktop.
void TFrontEnd::ActivateNext() {
    for (int i = 0; i < Screen()->FormCount(); ++i)
        if (TForm* const form = Screen()->Forms(i); form->Visible() && WidgetOf(*form))
            return (void)Ide().RunCommand([&] { Screen()->SetActiveForm(form); });
}

/// The window of a form that has become the active one comes to the front, also when the form
/// stands in another's.
void TFrontEnd::ShowActiveForm() {
    if (!Screen()->ActiveForm() && !FWatched) ActivateNext();
    TForm* const form = Screen()->ActiveForm();
    QWidget* const widget = form && form->Visible() ? WidgetOf(*form) : nullptr;
    QWidget* const window = widget ? widget->window() : nullptr;
    // A question stays in front until it is answered.
    const QWidget* const modal = QApplication::activeModalWidget();
    if (modal && modal != window) return;
    if (std::exchange(FActiveForm, form) == form) return;
    if (!window || !window->isVisible() || window->isActiveWindow()) return;
    window->raise();
    window->activateWindow();
}

void TFrontEnd::Pump() {
    if (!FWatched) PassTime();
    // A command that does nothing would still end what is undone as one piece of typing.
    if (FSession.OS().PendingMessages() > 0)
        Ide().PumpMessages();
    else
        Application()->Idle();
    Flush();
    if (FWatched) return;
    ShareClipboard();
    const int beeps = FSession.OS().Beeps();
    if (std::exchange(FBeeps, beeps) != beeps) QApplication::beep();
    const auto next = FSession.OS().NextTimer();
    if (!next)
        FTick.stop();
    else if (!FTick.isActive() || FTick.remainingTime() > static_cast<int>(*next))
        FTick.start(static_cast<int>(*next));
}

/// The session's time stands still by itself.
void TFrontEnd::PassTime() {
    FSession.OS().AdvanceTime(static_cast<std::uint64_t>(FClock.restart()));
}

// --- The clipboard ----------------------------------------------------------------------------

/// A text of ours on the desktop's clipboard, which has no bytes that are no characters.
constexpr const char* BytesFormat = "application/x-tarnexperts-text";

/// What the session has put on its clipboard goes to the desktop's.
void TFrontEnd::ShareClipboard() {
    const std::optional<std::string> text = FSession.OS().ClipboardText();
    if (!text || *text == FClipboard) return;
    FClipboard = *text;
    auto* const data = new QMimeData; // the clipboard's
    data->setText(FromText(*text));
    data->setData(BytesFormat, QByteArray(text->data(), static_cast<qsizetype>(text->size())));
    QApplication::clipboard()->setMimeData(data);
}

/// What somebody has put on the desktop's goes to the session.
void TFrontEnd::TakeClipboard() {
    const QMimeData* const data = QApplication::clipboard()->mimeData();
    if (!data || !data->hasText()) return;
    std::string text =
        data->hasFormat(BytesFormat) ? data->data(BytesFormat).toStdString() : ToText(data->text());
    if (text == FClipboard) return;
    FClipboard = std::move(text);
    FSession.OS().SetClipboardText(FClipboard);
}

void TFrontEnd::AsUser(const std::function<void()>& action) {
    Ide().RunCommand(action);
    Pump();
}

bool TFrontEnd::OfferKey(TShortCut key) {
    const bool taken = Ide().PressShortCut(key);
    if (taken) Pump();
    return taken;
}

// --- Keys -------------------------------------------------------------------------------------

namespace {

/// The mirror that a widget belongs to; null for one of a dialog that no form knows of.
TMirror* MirrorAt(const QWidget* widget) {
    for (; widget; widget = widget->parentWidget())
        if (TMirror* const mirror = TMirror::Of(*widget)) return mirror;
    return nullptr;
}

} // namespace

bool TFrontEnd::eventFilter(QObject* object, QEvent* event) {
    auto* const widget = qobject_cast<QWidget*>(object);
    switch (widget ? event->type() : QEvent::None) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        return Key(*widget, *event);
    case QEvent::FocusIn:
        TakeFocus(*widget);
        return false;
    case QEvent::ContextMenu:
        return ContextMenu(*widget, static_cast<QContextMenuEvent*>(event)->globalPos());
    default:
        return false;
    }
}

namespace {

/// Whether a field or a list has a use for the key that is another's in the main menu.
bool IsEditKey(const QKeyEvent& key) {
    constexpr QKeySequence::StandardKey keys[] = {QKeySequence::Copy,  QKeySequence::Cut,
                                                  QKeySequence::Paste, QKeySequence::Undo,
                                                  QKeySequence::Redo,  QKeySequence::SelectAll};
    return std::any_of(std::begin(keys), std::end(keys),
                       [&](QKeySequence::StandardKey each) { return key.matches(each); });
}

} // namespace

/// Offers a key of the widget that has the focus. What edits a text is not the main menu's while
/// the text is not the source's.
bool TFrontEnd::OfferKey(const QWidget& widget, const QKeyEvent& key) {
    const TMirror* const mirror = MirrorAt(&widget);
    const bool isEditor = mirror && &mirror->Control() == &Ide().EditWindow().Editor();
    if (isEditor || !IsEditKey(key)) return OfferKey(ShortCutOf(key));
    TForm* const form = Screen()->ActiveForm();
    bool taken = false;
    const auto offer = [&] { taken = form && form->IsShortCut(ShortCutOf(key)); };
    if (form != &Ide().MainForm() && !Ide().RunCommand(offer)) taken = true; // and has failed
    if (taken) Pump();
    return taken;
}

/// Keys go the way that they go in the IDE before the widget that has the focus gets them. Those
/// of a message box are its own.
bool TFrontEnd::Key(QWidget& widget, QEvent& event) {
    QWidget* const focus = QApplication::focusWidget();
    const bool goesHere = focus ? focus == &widget : widget.isWindow();
    if (!goesHere) return false;
    if (event.type() == QEvent::ShortcutOverride) FKeyDone = false;
    if (QApplication::activePopupWidget()) return false;
    // A window of Qt's own that stands in front of a form is the child of one.
    const TMirror* const window = MirrorAt(widget.window());
    if (!window || window->Widget() != widget.window()) return false;
    const auto& key = static_cast<QKeyEvent&>(event);
    const TShortCut shortCut = ShortCutOf(key);
    const bool alt = (shortCut & scAlt) != 0;
    const bool offered = shortCut != 0 && !IsTyped(key);
    if (event.type() == QEvent::ShortcutOverride) {
        // No shortcut of Qt's own comes before the pack's. An access key of a menu is one.
        FKeyDone = offered && alt && OfferKey(widget, key);
        if (shortCut != 0 && (!alt || FKeyDone)) event.accept();
        return false;
    }
    if (std::exchange(FKeyDone, false)) return true;
    return offered && OfferKey(widget, key);
}

/// The control of the widget that has got the focus has it as well.
void TFrontEnd::TakeFocus(const QWidget& widget) {
    TMirror* const mirror = FGoing ? nullptr : MirrorAt(&widget);
    if (!mirror || mirror->Busy()) return;
    TControl& control = mirror->Control();
    TForm* const form = control.ParentForm();
    if (!form || form == &control || form->ActiveControl() == &control || !control.CanFocus())
        return;
    AsUser([&] { control.SetFocus(); });
}

/// Shows the menu of a control where the mouse is; false when it has none.
bool TFrontEnd::ContextMenu(QWidget& widget, QPoint place) {
    TMirror* const mirror = MirrorAt(&widget);
    TPopupMenu* const menu = mirror ? mirror->Control().PopupMenu() : nullptr;
    if (!menu) return false;
    const TScopedValue showing(FPopsUp, true);
    FPopupPlace = place;
    AsUser([&] { menu->Popup(&mirror->Control()); });
    return true;
}

// --- Modal forms ------------------------------------------------------------------------------

void TFrontEnd::RunModal(TForm& form) {
    const TWeak<TForm> alive(&form);
    Pump();
    QWidget* const window = WidgetOf(form);
    if (!window) return;
    QEventLoop loop;
    QTimer watch; // the result may be set by anything
    const int level = QThread::currentThread()->loopLevel() + 1;
    connect(&watch, &QTimer::timeout, &loop, [&] {
        // While a question about closing is open, the result is not the last one.
        if (QThread::currentThread()->loopLevel() > level) return;
        if (!alive || form.ModalResult != mrNone) loop.quit();
    });
    watch.start(10);
    loop.exec();
}

// --- Menus ------------------------------------------------------------------------------------

void TFrontEnd::MenuChanged(TMenu&) {
    FMenuChanged = true;
}

void TFrontEnd::OpenMenu(QMenu& menu, const TWeak<TMenuItem>& items) {
    if (!items) return;
    const TScopedValue opens(FMenuOpens, true);
    // The item's handler may change what stands below it.
    AsUser([&] { items->Click(); });
    if (items) FillMenu(menu, *items);
}

void TFrontEnd::FillMenu(QMenu& menu, TMenuItem& items) {
    for (QAction* const action : menu.actions())
        if (action->menu()) action->menu()->deleteLater();
    menu.clear();
    for (int i = 0; i < items.Count(); ++i) {
        TMenuItem& item = *items.Items(i);
        if (!item.Visible()) continue;
        if (item.IsLine()) {
            menu.addSeparator();
            continue;
        }
        const QString caption = FromText(item.Caption());
        if (item.Count() > 0) {
            QMenu* const below = menu.addMenu(caption);
            below->setEnabled(item.Enabled());
            connect(below, &QMenu::aboutToShow, this,
                    [this, below, weak = TWeak<TMenuItem>(&item)] { OpenMenu(*below, weak); });
            FillMenu(*below, item);
            continue;
        }
        item.InitiateAction();
        QAction* const action = menu.addAction(caption);
        action->setEnabled(item.Enabled());
        action->setCheckable(item.Checked()); // others have no box, radio items among them
        action->setChecked(item.Checked());
        if (item.RadioItem()) action->setActionGroup(new QActionGroup(action));
        if (item.ShortCut() != 0)
            action->setText(caption + "\t" + FromText(ShortCutToText(item.ShortCut())));
        connect(action, &QAction::triggered, this, [this, weak = TWeak<TMenuItem>(&item)] {
            // When the menu is closed: the command may open windows.
            QMetaObject::invokeMethod(
                this,
                [this, weak] {
                    if (!weak) return;
                    Ide().ClickMenuItem(*weak);
                    Pump();
                },
                Qt::QueuedConnection);
        });
    }
}

void TFrontEnd::Popup(TPopupMenu& menu) {
    if (FWatched) return;
    if (FPopsUp) return ShowPopup(menu, FPopupPlace);
    QPoint place = QCursor::pos();
    if (auto* const control = ClassCast<TControl>(menu.PopupComponent.Get()))
        if (QWidget* const widget = WidgetOf(*control))
            place = widget->mapToGlobal(QPoint(0, widget->height()));
    ShowPopup(menu, place);
}

void TFrontEnd::ShowPopup(TPopupMenu& menu, QPoint place) {
    QMenu shown;
    FillMenu(shown, *menu.Items());
    shown.exec(place);
}

} // namespace tarn
