#include "CpuMirrors.h"

#include "TFrontEnd.h"

#include <QFontDatabase>

namespace tarn {
namespace {

constexpr int PaneMargin = 4; // pixels

void MakePane(QWidget& widget) {
    widget.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    widget.setBackgroundRole(QPalette::Base);
    widget.setAutoFillBackground(true);
    widget.setFocusPolicy(Qt::StrongFocus);
}

} // namespace

// --- Registers and flags ----------------------------------------------------------------------

TCpuValuesMirror::TCpuValuesMirror(TFrontEnd& frontEnd, TCpuPane& pane)
    : TMirrorOf(frontEnd, pane, new QLabel) {
    MakePane(View());
    View().setMargin(PaneMargin);
    View().setAlignment(Qt::AlignLeft | Qt::AlignTop);
    View().setTextFormat(Qt::PlainText);
}

void TCpuValuesMirror::SyncState() {
    const TMachineState& state = Self().State();
    QStringList lines;
    if (dynamic_cast<const TRegisterView*>(&Self()))
        for (std::size_t i = 0; i < CpuRegisterCount; ++i)
            lines << FromText(CpuRegisters[i].Name).leftJustified(4) +
                         FromText(HexText(state.Register(static_cast<TCpuRegister>(i)),
                                          CpuRegisters[i].Digits));
    else
        for (std::size_t i = 0; i < CpuFlagCount; ++i)
            lines << FromText(CpuFlags[i].Short) + " " +
                         QString::number(state.Flag(static_cast<TCpuFlag>(i)));
    View().setText(lines.join('\n'));
    View().setAccessibleDescription(lines.join(", "));
}

// --- Addresses --------------------------------------------------------------------------------

TAddressMirror::TAddressMirror(TFrontEnd& frontEnd, TAddressPane& pane)
    : TMirrorOf(frontEnd, pane, new QWidget) {
    MakePane(View());
    View().installEventFilter(this);
}

std::vector<TAddressMirror::TRow> TAddressMirror::Rows() const {
    std::vector<TRow> rows;
    const int height = View().fontMetrics().height();
    std::uint32_t address = FTop;
    for (int top = PaneMargin; top < View().height(); address = Self().NextRow(address)) {
        const QStringList lines = FromText(Self().RowText(address)).split('\n');
        const int size = height * static_cast<int>(lines.size());
        rows.push_back({address, QRect(0, top, View().width(), size), lines});
        top += size;
    }
    return rows;
}

void TAddressMirror::SyncState() {
    const std::uint32_t row = Self().RowAt(static_cast<std::uint32_t>(Self().Selected()));
    const auto isSeen = [&] {
        for (const TRow& each : Rows())
            if (each.Address == row) return each.Place.bottom() < View().height();
        return false;
    };
    if (!isSeen()) FTop = row;
    View().setAccessibleDescription(FromText(Self().RowText(row)));
    View().update();
}

void TAddressMirror::Paint() {
    QPainter painter(&View());
    const QPalette& palette = View().palette();
    const std::uint32_t selected = Self().RowAt(static_cast<std::uint32_t>(Self().Selected()));
    const int height = View().fontMetrics().height();
    for (const TRow& row : Rows()) {
        for (qsizetype i = 0; i < row.Lines.size(); ++i) {
            const bool isLast = i + 1 == row.Lines.size();
            const QRect place(0, row.Place.top() + static_cast<int>(i) * height, View().width(),
                              height);
            const bool marked = isLast && row.Address == selected;
            if (marked) painter.fillRect(place, palette.highlight());
            painter.setPen(palette.color(marked   ? QPalette::HighlightedText
                                         : isLast ? QPalette::Text
                                                  : QPalette::Link));
            painter.drawText(place.adjusted(PaneMargin, 0, 0, 0), Qt::AlignLeft, row.Lines[i]);
        }
    }
    painter.setPen(palette.color(QPalette::Mid));
    painter.drawRect(View().rect().adjusted(0, 0, -1, -1));
}

void TAddressMirror::Select(std::uint32_t address) {
    FrontEnd().AsUser([&] { Self().SetSelected(static_cast<int>(address)); });
}

void TAddressMirror::Scroll(int rows) {
    for (; rows > 0; --rows) FTop = Self().NextRow(FTop);
    for (; rows < 0; ++rows) FTop = Self().PreviousRow(FTop);
    View().update();
}

bool TAddressMirror::Key(int key) {
    const auto selected = static_cast<std::uint32_t>(Self().Selected());
    std::uint32_t row = Self().RowAt(selected);
    const std::uint32_t within = selected - row;
    const bool isDump = dynamic_cast<const TDumpView*>(&Self()) != nullptr;
    const auto page = std::max(static_cast<int>(Rows().size()) - 1, 1);
    switch (key) {
    case Qt::Key_Up:
        row = Self().PreviousRow(row);
        break;
    case Qt::Key_Down:
        row = Self().NextRow(row);
        break;
    case Qt::Key_PageUp:
        for (int i = 0; i < page; ++i) row = Self().PreviousRow(row);
        break;
    case Qt::Key_PageDown:
        for (int i = 0; i < page; ++i) row = Self().NextRow(row);
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (!isDump) return false;
        Select(selected + (key == Qt::Key_Left ? -1u : 1u));
        return true;
    default:
        return false;
    }
    if (key == Qt::Key_Up && row == Self().PreviousRow(FTop)) FTop = row;
    Select(isDump ? row + within : row);
    return true;
}

bool TAddressMirror::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::Paint:
        Paint();
        return true;
    case QEvent::KeyPress:
        return Key(static_cast<QKeyEvent*>(event)->key());
    case QEvent::Wheel:
        Scroll(static_cast<QWheelEvent*>(event)->angleDelta().y() > 0 ? -3 : 3);
        return true;
    case QEvent::MouseButtonPress: {
        const QPoint place = static_cast<QMouseEvent*>(event)->position().toPoint();
        for (const TRow& row : Rows())
            if (row.Place.contains(place)) {
                Select(row.Address);
                break;
            }
        return false;
    }
    default:
        return false;
    }
}

} // namespace tarn
