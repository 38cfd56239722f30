#include "TMirror.h"

#include "TFrontEnd.h"
#include "vcl/TLabel.h"

namespace tarn {

TMirror::TMirror(TFrontEnd& frontEnd, TControl& control, QWidget* widget)
    : FFrontEnd(frontEnd), FControl(control), FWidget(widget) {
    widget->setObjectName(FromText(control.Name()));
}

TMirror::~TMirror() {
    // The widget may be the one whose event is being handled.
    if (FWidget) {
        FWidget->hide();
        FWidget->deleteLater();
    }
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
    FWidget->setEnabled(FControl.Enabled());
    if (FControl.HasFont()) FWidget->setFont(FromFont(*FControl.FontObject()));
    FWidget->setToolTip(FromText(FControl.Hint()));
    SyncState();
    if (FWidget->accessibleName().isEmpty()) FWidget->setAccessibleName(SpokenName(FControl));
    if (FControl.Focused() && !FWidget->hasFocus() && FWidget->isVisible()) FWidget->setFocus();
}

} // namespace tarn
