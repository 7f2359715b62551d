#include "app/menu/PaletteGlyphs.h"

#include <QFont>
#include <QPainter>
#include <QPixmap>

namespace glyphmill::paletteGlyphs {

namespace {

// Drawn at twice the size and scaled down, so they stay crisp on high-density screens.
constexpr int pixelScale = 2;

QPixmap canvas(int logicalSize) {
    QPixmap pixmap(logicalSize * pixelScale, logicalSize * pixelScale);
    pixmap.setDevicePixelRatio(pixelScale);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

QString sampleText(TextTransformKind kind) {
    switch (kind) {
    case TextTransformKind::smartCase:
        return QStringLiteral("Aa");
    case TextTransformKind::titleCase:
        return QStringLiteral("Tt");
    case TextTransformKind::uppercase:
        return QStringLiteral("AB");
    case TextTransformKind::lowercase:
        return QStringLiteral("ab");
    case TextTransformKind::capitalizeWords:
        return QStringLiteral("Ab");
    }
    return {};
}

} // namespace

QIcon modeIcon(TextTransformKind kind, const QPalette &palette) {
    constexpr int size = 18;
    QPixmap pixmap = canvas(size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor rim = palette.color(QPalette::ButtonText);
    rim.setAlphaF(0.45f);
    painter.setPen(QPen(rim, 1));
    painter.drawRoundedRect(QRectF(0.5, 0.5, size - 1.0, size - 1.0), 4, 4);
    QFont font;
    font.setBold(true);
    font.setPixelSize(10);
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::ButtonText));
    painter.drawText(QRectF(0, 0, size, size), Qt::AlignCenter, sampleText(kind));
    painter.end();
    return QIcon(pixmap);
}

QIcon closeIcon(const QPalette &palette) {
    constexpr int size = 16;
    QPixmap pixmap = canvas(size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.color(QPalette::PlaceholderText));
    painter.drawEllipse(QRectF(1, 1, size - 2.0, size - 2.0));
    painter.setPen(QPen(palette.color(QPalette::Window), 1.6, Qt::SolidLine, Qt::RoundCap));
    const double inset = 5.2;
    painter.drawLine(QPointF(inset, inset), QPointF(size - inset, size - inset));
    painter.drawLine(QPointF(size - inset, inset), QPointF(inset, size - inset));
    painter.end();
    return QIcon(pixmap);
}

} // namespace glyphmill::paletteGlyphs
