// Where the floating palette opens: next to the pointer, inside the usable area of the screen
// under the pointer. Qt's global coordinates: origin top-left, y growing downward.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <vector>

namespace glyphmill {

struct ScreenArea {
    QRect frame;
    // Without panels and docks.
    QRect availableFrame;
};

inline constexpr int paletteGapToPointer = 16;
inline constexpr int paletteMarginToEdge = 8;
inline constexpr QRect paletteFallbackArea{0, 0, 800, 600};

// The available frame of the first screen whose frame holds the point, else the primary
// screen's, else a fixed 800 × 600 area at the origin.
QRect paletteArea(QPoint anchor, const std::vector<ScreenArea> &screens,
                  const std::optional<ScreenArea> &primaryScreen);

// Centred on the pointer with its top 16 points below it, or its bottom 16 points above it when
// that would leave the area; then pulled 8 points inside any edge it crosses. On an area smaller
// than the palette the right and bottom edges win.
QPoint palettePosition(QPoint anchor, QSize size, const QRect &area);

// The screens as the running application sees them.
std::vector<ScreenArea> currentScreenAreas();
std::optional<ScreenArea> primaryScreenArea();

} // namespace glyphmill
