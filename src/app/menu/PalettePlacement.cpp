#include "app/menu/PalettePlacement.h"

#include <QGuiApplication>
#include <QScreen>

namespace glyphmill {

namespace {

// QRect::right() and bottom() are inclusive; the edge rules compare against the first pixel
// past the area, as x + width and y + height do.
int endX(const QRect &area) {
    return area.x() + area.width();
}
int endY(const QRect &area) {
    return area.y() + area.height();
}

ScreenArea areaOf(const QScreen &screen) {
    return {screen.geometry(), screen.availableGeometry()};
}

} // namespace

QRect paletteArea(QPoint anchor, const std::vector<ScreenArea> &screens,
                  const std::optional<ScreenArea> &primaryScreen) {
    for (const ScreenArea &screen : screens)
        if (screen.frame.contains(anchor))
            return screen.availableFrame;
    if (primaryScreen)
        return primaryScreen->availableFrame;
    return paletteFallbackArea;
}

QPoint palettePosition(QPoint anchor, QSize size, const QRect &area) {
    const int width = size.width();
    const int height = size.height();
    int x = anchor.x() - width / 2;
    int y = anchor.y() + paletteGapToPointer;
    if (y + height > endY(area))
        y = anchor.y() - paletteGapToPointer - height;
    if (x < area.x())
        x = area.x() + paletteMarginToEdge;
    if (x + width > endX(area))
        x = endX(area) - width - paletteMarginToEdge;
    if (y < area.y())
        y = area.y() + paletteMarginToEdge;
    if (y + height > endY(area))
        y = endY(area) - height - paletteMarginToEdge;
    return {x, y};
}

std::vector<ScreenArea> currentScreenAreas() {
    std::vector<ScreenArea> areas;
    for (const QScreen *screen : QGuiApplication::screens())
        areas.push_back(areaOf(*screen));
    return areas;
}

std::optional<ScreenArea> primaryScreenArea() {
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        return areaOf(*screen);
    return std::nullopt;
}

} // namespace glyphmill
