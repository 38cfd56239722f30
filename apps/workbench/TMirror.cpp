#include "TMirror.h"

#include "TFrontEnd.h"
#include "vcl/TLabel.h"

namespace tarn {

constexpr const char* MirrorProperty = "mirror"; ///< of its widget

TMirror::TMirror(TFrontEnd& frontEnd, TControl& control, QWidget* widget)
    : FFrontEnd(frontEnd), FControl(control), FWidget(widget) {
    widget->setObjectName(FromText(control.Name()));
    widget->setProperty(MirrorProperty, QVariant::fromValue<QObject*>(this));
}

TMirror* TMirror::Of(const QWidget& widget) {
    return static_cast<TMirror*>(widget.property(MirrorProperty).value<QObject*>());
}

TMirror::~TMirror() {
    Hide();
}

void TMirror::Hide() {
    // The widget may be the one whose event is being handled.
    QWidget* const widget = FWidget;
    FWidget = nullptr;
    if (!widget) return;
    // What it still has to say, as the focus leaves it, is said of a control that is no more.
    QObjectList parts = widget->findChildren<QObject*>();
    parts << widget;
    for (QObject* const part : parts) {
        part->disconnect(this);
        part->removeEventFilter(this);
    }
    widget->setProperty(MirrorProperty, {});
    widget->hide();
    widget->deleteLater();
}

namespace {

/// What a screen reader says where no label tells: the component's name, "Unit list" of UnitList.
QString SpokenName(const TControl& control) {
    QString name;
    for (const QChar c : FromText(control.Name())) {
        const bool begins = c.isUpper() && !name.isEmpty() && name.back().isLower();
        name += begins ? QString(" ") + c.toLower() : QString(c);
    }
    return name;
}

} // namespace

void TMirror::SyncPlace() {
    TControl* const parent = FControl.Parent();
    TMirror* const above = parent ? FFrontEnd.MirrorOf(*parent) : nullptr;
    QWidget* const holder = above ? above->ChildParent() : nullptr;
    if (holder && FWidget->parentWidget() != holder) FWidget->setParent(holder);
    const TRect& at = FControl.BoundsRect();
    FWidget->setGeometry(at.Left, at.Top, at.Width, at.Height);
    FWidget->setVisible(FControl.Visible() && holder);
}

void TMirror::Sync() {
    if (!FWidget) return;
    const TScopedValue syncing(FSyncing, true);
    SyncPlace();
    if (!FWidget) return;
    FWidget->setEnabled(FControl.Enabled());
    if (FControl.HasFont()) FWidget->setFont(FromFont(*FControl.FontObject()));
    FWidget->setToolTip(FromText(FControl.Hint()));
    SyncState();
    if (!FWidget) return; // the focus has moved, and somebody has freed the control for that
    if (FWidget->accessibleName().isEmpty()) FWidget->setAccessibleName(SpokenName(FControl));
    if (FControl.Focused() && !HasFocus() && FWidget->isVisible()) FWidget->setFocus();
}

/// Whether the widget or a part of it, such as the field of a cell, gets the keys.
bool TMirror::HasFocus() const {
    const QWidget* const focus = FWidget->window()->focusWidget();
    return FWidget->hasFocus() || (focus && FWidget->isAncestorOf(focus));
}

} // namespace tarn
