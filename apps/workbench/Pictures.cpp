#include "Pictures.h"

#include "TFormMirror.h"
#include "TFrontEnd.h"
#include "rtl/SafeFile.h"
#include "rtl/SysUtils.h"

#include <QApplication>
#include <QBuffer>
#include <QPainter>

namespace tarn {
namespace {

constexpr int TitleHeight = 28, PictureMargin = 16; // pixels

/// A visible window, and where it stands in the picture, its title included.
struct TShownWindow {
    QWidget* Window;
    QRect Place;
    QString Title;
};

/// The visible windows from back to front: the main one, then the forms, then menus.
QList<TShownWindow> ShownWindows(TFrontEnd& frontEnd) {
    QList<QWidget*> windows{frontEnd.WidgetOf(frontEnd.Ide().MainForm())};
    for (int i = Screen()->FormCount() - 1; i >= 0; --i)
        if (QWidget* const widget = frontEnd.WidgetOf(*Screen()->Forms(i)))
            if (widget->isWindow() && widget->isVisible() && !windows.contains(widget))
                windows << widget;
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->windowType() == Qt::Popup) windows << widget;
    // The folder of the pack is another one in each run of a script.
    const QString folder = FromText(ExtractFilePath(frontEnd.Session().OS().GetModuleFileName()));
    QList<TShownWindow> shown;
    for (QWidget* const window : windows) {
        QRect place = window->geometry();
        if (window->windowType() != Qt::Popup) place.setTop(place.top() - TitleHeight);
        shown << TShownWindow{window, place, window->windowTitle().remove(folder)};
    }
    return shown;
}

/// Windows that have not been placed stand in the middle of the first one.
void Arrange(QList<TShownWindow>& windows) {
    for (TShownWindow& each : windows)
        if (each.Window != windows[0].Window && each.Window->pos().isNull())
            each.Place.moveCenter(windows[0].Place.center());
}

void DrawTitle(QPainter& painter, const TShownWindow& shown) {
    const QPalette palette = QApplication::palette();
    const QRect title(shown.Place.topLeft(), QSize(shown.Place.width(), TitleHeight));
    painter.fillRect(title, palette.color(QPalette::Mid).lighter(115));
    painter.setPen(palette.color(QPalette::WindowText));
    QFont font = QApplication::font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(title, Qt::AlignCenter, shown.Title);
}

void DrawWindow(QPainter& painter, const TShownWindow& shown) {
    QRect place = shown.Place;
    if (shown.Window->windowType() != Qt::Popup) {
        DrawTitle(painter, shown);
        place.setTop(place.top() + TitleHeight);
    }
    painter.drawPixmap(place.topLeft(), shown.Window->grab());
    painter.setPen(QApplication::palette().color(QPalette::Dark));
    painter.drawRect(shown.Place.adjusted(-1, -1, 0, 0));
}

} // namespace

void SavePicture(TFrontEnd& frontEnd, const std::filesystem::path& folder, const std::string& name,
                 TMenuItem* item) {
    auto* const main = dynamic_cast<TMainFormMirror*>(frontEnd.MirrorOf(frontEnd.Ide().MainForm()));
    if (!main) return;
    if (item) main->OpenMenu(*item);
    QList<TShownWindow> windows = ShownWindows(frontEnd);
    Arrange(windows);
    QRect all;
    for (const TShownWindow& each : windows) all |= each.Place;
    all.adjust(-PictureMargin, -PictureMargin, PictureMargin, PictureMargin);
    const qreal ratio = windows[0].Window->devicePixelRatioF();
    QPixmap picture(all.size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.translate(-all.topLeft());
    for (const TShownWindow& each : windows) DrawWindow(painter, each);
    painter.end();
    while (QWidget* const popup = QApplication::activePopupWidget()) popup->close();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    SaveFileText((folder / (name + ".png")).string(),
                 std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

} // namespace tarn
