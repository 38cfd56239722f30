#include "Theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace tarn {
namespace {

QPalette DarkPalette() {
    QPalette palette(QColor(53, 53, 53));
    palette.setColor(QPalette::Base, QColor(35, 35, 35));
    palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
    palette.setColor(QPalette::ToolTipBase, QColor(66, 66, 66));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(42, 110, 180));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(110, 170, 240));
    palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(128, 128, 128));
    return palette;
}

} // namespace

void ApplyTheme(TTheme theme) {
    if (theme == thSystem) return;
    // The desktop's own style may not take other colours.
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(theme == thDark ? DarkPalette()
                                             : QApplication::style()->standardPalette());
}

} // namespace tarn
