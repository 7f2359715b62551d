#include "support/ScreenshotSupport.h"

#include <QPainter>

#include <algorithm>

namespace glyphmill::testSupport {

QPalette darkPalette() {
    QPalette dark;
    const QColor window(0x2b, 0x2d, 0x30), base(0x1f, 0x20, 0x22), text(0xe8, 0xe8, 0xe8);
    dark.setColor(QPalette::Window, window);
    dark.setColor(QPalette::WindowText, text);
    dark.setColor(QPalette::Base, base);
    dark.setColor(QPalette::AlternateBase, window);
    dark.setColor(QPalette::Text, text);
    dark.setColor(QPalette::Button, QColor(0x3a, 0x3c, 0x40));
    dark.setColor(QPalette::ButtonText, text);
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x7a, 0xd6));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9c, 0xa0));
    dark.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xff));
    dark.setColor(QPalette::LinkVisited, QColor(0xb4, 0x9c, 0xff));
    dark.setColor(QPalette::Light, QColor(0x4a, 0x4c, 0x50));
    dark.setColor(QPalette::Midlight, QColor(0x40, 0x42, 0x46));
    dark.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x36));
    dark.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    dark.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(0x78, 0x7a, 0x7e));
    return dark;
}

QPixmap sideBySide(const std::vector<QPixmap> &pictures) {
    constexpr int gap = 24;
    int width = gap, height = 0;
    for (const QPixmap &picture : pictures) {
        width += picture.width() + gap;
        height = std::max(height, picture.height());
    }
    QPixmap sheet(width, height + 2 * gap);
    sheet.fill(QColor(0x8a, 0x8f, 0x96));
    QPainter painter(&sheet);
    int x = gap;
    for (const QPixmap &picture : pictures) {
        painter.drawPixmap(x, gap, picture);
        x += picture.width() + gap;
    }
    return sheet;
}

} // namespace glyphmill::testSupport
