#include "TFrontEnd.h"

#include "QtKeys.h"
#include "TFormMirror.h"
#include "vcl/TScrollBox.h"

#include <QApplication>
#include <QEventLoop>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>

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
}

TFrontEnd::~TFrontEnd() {
    qApp->removeEventFilter(this);
    for (const auto& [control, mirror] : FMirrors) const_cast<TControl*>(control)->Peer = nullptr;
    FMirrors.clear();
    InstallTextMeasure(FFormerMeasure);
    if (!Screen()) return;
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
    FMirrors.erase(&control);
    if (FIsChanged.erase(&control) == 0) return;
    std::erase(FChanged, &control);
}

void TFrontEnd::SetRedraw(TControl& control, bool on) {
    if (QWidget* const widget = WidgetOf(control)) widget->setUpdatesEnabled(on);
}

void TFrontEnd::Redraw(TControl& control, std::uint32_t flags) {
    StateChanged(control);
    if ((flags & RDW_UPDATENOW) == 0) return;
    if (QWidget* const widget = WidgetOf(control)) widget->update();
}

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
    if (!std::exchange(FMenuChanged, false)) return;
    if (auto* const main = dynamic_cast<TMainFormMirror*>(MirrorOf(Ide().MainForm())))
        main->SyncMenu();
}

void TFrontEnd::Pump() {
    // A command that does nothing would still end what is undone as one piece of typing.
    if (FSession.OS().PendingMessages() > 0)
        Ide().PumpMessages();
    else
        Application()->Idle();
    Flush();
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

/// Keys go the way that they go in the IDE before the widget that has the focus gets them.
bool TFrontEnd::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return QObject::eventFilter(object, event);
    auto* const widget = qobject_cast<QWidget*>(object);
    if (!widget || widget != QApplication::focusWidget() || QApplication::activePopupWidget())
        return false;
    auto* const key = static_cast<QKeyEvent*>(event);
    const TShortCut shortCut = ShortCutOf(*key);
    if (event->type() == QEvent::ShortcutOverride) {
        // No shortcut of Qt's own comes before the pack's; access keys of menus do.
        if (shortCut != 0 && (shortCut & scAlt) == 0) event->accept();
        return false;
    }
    return shortCut != 0 && !IsTyped(*key) && OfferKey(shortCut);
}

// --- Modal forms ------------------------------------------------------------------------------

void TFrontEnd::RunModal(TForm& form) {
    const TWeak<TForm> alive(&form);
    Pump();
    QWidget* const window = WidgetOf(form);
    if (!window) return;
    window->setWindowModality(Qt::ApplicationModal);
    QEventLoop loop;
    QTimer watch; // the result may be set by anything
    connect(&watch, &QTimer::timeout, &loop, [&] {
        if (!alive || form.ModalResult != mrNone) loop.quit();
    });
    watch.start(10);
    loop.exec();
}

// --- Menus ------------------------------------------------------------------------------------

void TFrontEnd::MenuChanged(TMenu&) {
    FMenuChanged = true;
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
                    [this, below, weak = TWeak<TMenuItem>(&item)] {
                        if (!weak) return;
                        // The item's handler may change what stands below it.
                        AsUser([&] { weak->Click(); });
                        if (weak) FillMenu(*below, *weak);
                    });
            FillMenu(*below, item);
            continue;
        }
        item.InitiateAction();
        QAction* const action = menu.addAction(caption);
        action->setEnabled(item.Enabled());
        action->setCheckable(item.Checked() || item.RadioItem());
        action->setChecked(item.Checked());
        if (item.ShortCut() != 0)
            action->setText(caption + "\t" + FromText(ShortCutToText(item.ShortCut())));
        connect(action, &QAction::triggered, this, [this, weak = TWeak<TMenuItem>(&item)] {
            // When the menu is closed: the command may open windows.
            QTimer::singleShot(0, this, [this, weak] {
                if (!weak) return;
                Ide().ClickMenuItem(*weak);
                Pump();
            });
        });
    }
}

void TFrontEnd::Popup(TPopupMenu& menu) {
    if (FWatched) return;
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
