#pragma once

#include "TMirror.h"
#include "TSession.h"
#include "vcl/Forms.h"
#include "vcl/TTextMeasure.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class QKeyEvent;
class QMenu;

namespace tarn {

/// Shows the forms, controls and menus of a session as widgets, as long as it lives. A change of a
/// control is shown when the event that made it is over, or at once by Flush.
class TFrontEnd final : public QObject, public IControlPeer, public IMenuPeer, public ITextMeasure {
public:
    /// \param watched whether a script does what a user does, the same everywhere: menus that pop
    /// up are not waited for, and texts have the sizes that need no fonts
    explicit TFrontEnd(TSession& session, bool watched = false);
    ~TFrontEnd() override;

    TSession& Session() { return FSession; }
    TIde& Ide() { return FSession.Ide(); }
    /// Whether a script does what a user does.
    bool Watched() const { return FWatched; }

    /// The mirror of a control; null when it has none.
    TMirror* MirrorOf(const TControl& control) const;
    QWidget* WidgetOf(const TControl& control) const;
    /// Shows all changes that were made.
    void Flush();
    /// Handles the pack's posted messages and shows what they have changed.
    void Pump();
    /// Runs what the user does as one command of his, and shows its changes.
    void AsUser(const std::function<void()>& action);
    /// Sends a key through the bindings, menus and actions; false when nobody has a use for it.
    bool OfferKey(TShortCut key);

    /// Runs a modal form until it is to be closed.
    void RunModal(TForm& form);
    /// Shows a pop-up menu at a place of the screen.
    void ShowPopup(TPopupMenu& menu, QPoint place);
    /// The user opens the menu of an item: what is below that is made anew; nothing when it is
    /// gone.
    void OpenMenu(QMenu& menu, const TWeak<TMenuItem>& items);
    /// The menu's items as actions of `menu`, made anew.
    void FillMenu(QMenu& menu, TMenuItem& items);

    // IControlPeer
    void Invalidate(TControl& control) override { StateChanged(control); }
    void Redraw(TControl& control, std::uint32_t flags) override;
    void StateChanged(TControl& control) override;
    void SetRedraw(TControl& control, bool on) override;
    void Gone(TControl& control) override;
    // IMenuPeer
    void MenuChanged(TMenu& menu) override;
    void Popup(TPopupMenu& menu) override;
    // ITextMeasure
    TExtent TextExtent(const TFont& font, std::string_view line) override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void Adopt(TControl& control);
    void Leave(TControl& control);
    void Changed(TControl& control);
    void Shown(TControl& control);
    bool Key(QWidget& widget, QEvent& event);
    bool OfferKey(const QWidget& widget, const QKeyEvent& key);
    void TakeFocus(const QWidget& widget);
    bool ContextMenu(QWidget& widget, QPoint place);
    void ShowActiveForm();
    void ActivateNext();
    void PassTime();
    void ShareClipboard();
    void TakeClipboard();

    TSession& FSession;
    bool FWatched;
    IControlPeer* FFormerPeer;
    ITextMeasure* FFormerMeasure;
    std::unordered_map<const TControl*, std::unique_ptr<TMirror>> FMirrors;
    std::deque<TControl*> FChanged; ///< in the order of their first change
    std::unordered_set<const TControl*> FIsChanged;
    bool FFlushPosted = false;
    bool FMenuChanged = false;
    bool FMenuOpens = false;
    bool FGoing = false;                ///< a control is being freed
    const TForm* FActiveForm = nullptr; ///< when it was looked up last; compared alone
    bool FKeyDone = false;              ///< the key was taken before it was offered to access keys
    QPoint FPopupPlace;     ///< where the menu of the second button is wanted, on the screen
    bool FPopsUp = false;   ///< that menu is being shown
    QElapsedTimer FClock;   ///< since time went by for the session's timers
    QTimer FTick;           ///< the next of them
    std::string FClipboard; ///< the text that the desktop and the session share
    int FBeeps = 0;         ///< those that were heard
};

/// The font of the system with what a font of the pack's says.
QFont FromFont(const TFont& font);

} // namespace tarn
