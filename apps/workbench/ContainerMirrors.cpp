// Mirrors of what holds or parts other controls.

#include "Mirrors.h"
#include "TFrontEnd.h"

namespace tarn {

// --- The header -------------------------------------------------------------------------------

THeaderMirror::THeaderMirror(TFrontEnd& frontEnd, THeaderControl& header)
    : TMirrorOf(frontEnd, header, new QWidget) {
    View().installEventFilter(this);
    View().setMouseTracking(true);
}

void THeaderMirror::Paint() {
    QPainter painter(&View());
    int left = 0;
    for (int i = 0; i < Self().SectionCount(); ++i) {
        QStyleOptionHeader option;
        option.initFrom(&View());
        option.section = i;
        option.text = FromText(Self().SectionText(i));
        option.textAlignment = Qt::AlignLeft | Qt::AlignVCenter;
        option.rect = QRect(left, 0, Self().SectionWidth(i), View().height());
        option.state |= QStyle::State_Raised;
        View().style()->drawControl(QStyle::CE_Header, &option, &painter, &View());
        left += Self().SectionWidth(i);
    }
}

/// The section whose right edge is there; -1 for none.
int THeaderMirror::EdgeAt(int x) const {
    constexpr int reach = 4;
    int edge = 0;
    for (int i = 0; i < Self().SectionCount(); ++i) {
        edge += Self().SectionWidth(i);
        if (std::abs(edge - x) <= reach) return i;
    }
    return -1;
}

bool THeaderMirror::eventFilter(QObject*, QEvent* event) {
    const auto x = [&] { return static_cast<QMouseEvent*>(event)->position().toPoint().x(); };
    switch (event->type()) {
    case QEvent::Paint:
        Paint();
        return true;
    case QEvent::MouseButtonPress:
        FDragged = EdgeAt(x());
        return true;
    case QEvent::MouseButtonRelease:
        FDragged = -1;
        return true;
    case QEvent::MouseMove: {
        View().setCursor(FDragged >= 0 || EdgeAt(x()) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
        if (FDragged < 0) return true;
        int left = 0;
        for (int i = 0; i < FDragged; ++i) left += Self().SectionWidth(i);
        FrontEnd().AsUser([&] { Self().DragSection(FDragged, x() - left); });
        return true;
    }
    default:
        return false;
    }
}

// --- The scroll box ---------------------------------------------------------------------------

TScrollBoxMirror::TScrollBoxMirror(TFrontEnd& frontEnd, TScrollBox& box)
    : TMirrorOf(frontEnd, box, new QScrollArea) {
    View().setWidget(new QWidget);
    View().setFocusPolicy(Qt::NoFocus); // a focus that nobody would see
    View().setFrameStyle(QFrame::NoFrame);
    View().setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(View().verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
        if (!Syncing()) Self().SetScrollTop(value);
    });
}

void TScrollBoxMirror::SyncState() {
    View().widget()->resize(Self().Width(), std::max(Self().ContentHeight(), 1));
    View().verticalScrollBar()->setValue(Self().ScrollTop());
}

// --- The splitter -----------------------------------------------------------------------------

TSplitterMirror::TSplitterMirror(TFrontEnd& frontEnd, TSplitter& splitter)
    : TMirrorOf(frontEnd, splitter, new QWidget) {
    View().setCursor(Qt::SplitHCursor);
    View().installEventFilter(this);
}

bool TSplitterMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::MouseMove) return false;
    const QPoint place = View().mapToParent(static_cast<QMouseEvent*>(event)->position().toPoint());
    FrontEnd().AsUser([&] { Self().DragTo(place.x()); });
    return true;
}

} // namespace tarn
