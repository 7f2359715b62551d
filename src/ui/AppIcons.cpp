#include "ui/AppIcons.h"

#include <QFont>
#include <QPainter>
#include <QPixmap>

// Resources of a static library are registered by name, from the global namespace.
static void registerIconResources() {
    Q_INIT_RESOURCE(GlyphmillIcons);
}

namespace glyphmill::appIcons {

namespace {

// Without the SVG image plugin an SVG icon paints nothing; a tile with "Aa" keeps the tray
// entry visible and clickable.
QIcon paintedFallback() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0xe5, 0xe9, 0xf0), 1));
        painter.setBrush(QColor(0x2e, 0x34, 0x40));
        const double radius = size * 0.2;
        painter.drawRoundedRect(QRectF(0.5, 0.5, size - 1.0, size - 1.0), radius, radius);
        QFont font;
        font.setBold(true);
        font.setPixelSize(size * 9 / 16);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(pixmap.rect(), Qt::AlignCenter, QStringLiteral("Aa"));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon loadIcon(const QString &resourceName) {
    static const bool registered = (registerIconResources(), true);
    (void)registered;
    QIcon icon(QStringLiteral(":/glyphmill/icons/") + resourceName);
    if (icon.pixmap(22, 22).isNull())
        return paintedFallback();
    return icon;
}

} // namespace

QIcon applicationIcon() {
    return loadIcon(QStringLiteral("glyphmill.svg"));
}

QIcon trayIcon() {
    return loadIcon(QStringLiteral("glyphmill-symbolic.svg"));
}

} // namespace glyphmill::appIcons
