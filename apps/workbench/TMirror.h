#pragma once

#include "vcl/TControl.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace tarn {

class TFrontEnd;

/// What shows one control: the widget, brought up to date from the control, and what the user does
/// to the widget, done to the control. The widget knows nothing that the control does not.
class TMirror : public QObject {
public:
    TMirror(TFrontEnd& frontEnd, TControl& control, QWidget* widget);
    ~TMirror() override;

    /// The mirror whose widget that is; null for any other.
    static TMirror* Of(const QWidget& widget);

    TControl& Control() const { return FControl; }
    QWidget* Widget() const { return FWidget; }
    /// The widget that takes the widgets of the control's children; null when it shows none.
    virtual QWidget* ChildParent() const { return FWidget; }

    /// Brings the widget up to date.
    void Sync();
    /// Takes the widget away; the mirror is done with then.
    void Hide();
    /// Whether the widget is being brought up to date.
    bool Busy() const { return FSyncing; }
    /// The control's children have changed their order or number.
    virtual void ChildrenChanged() {}

protected:
    /// The control's own state; place, visibility and the like are done.
    virtual void SyncState() {}
    /// Whether the mirror is bringing the widget up to date: its signals are nobody's doing.
    bool Syncing() const { return FSyncing; }
    TFrontEnd& FrontEnd() const { return FFrontEnd; }
    virtual void SyncPlace();

private:
    bool HasFocus() const;
    TFrontEnd& FFrontEnd;
    TControl& FControl;
    QPointer<QWidget> FWidget; ///< owned
    bool FSyncing = false;
};

/// The mirror of a control, by its class.
std::unique_ptr<TMirror> MakeMirror(TFrontEnd& frontEnd, TControl& control);

QString FromText(std::string_view text);
std::string ToText(const QString& text);

} // namespace tarn
