#include "platform/linux/QtScreenGrabber.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

#include <cstring>

namespace glyphmill {

std::optional<ScreenImage> QtScreenGrabber::grabScreen(const ScreenToGrab &screen) {
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screen.index < 0 || screen.index >= screens.size())
        return std::nullopt;
    // Window 0 is the whole screen; the picture comes in device pixels.
    const QPixmap grabbed = screens[screen.index]->grabWindow(0);
    if (grabbed.isNull())
        return std::nullopt;
    const QImage image = grabbed.toImage().convertToFormat(QImage::Format_ARGB32);
    if (image.isNull())
        return std::nullopt;

    ScreenImage result;
    result.width = image.width();
    result.height = image.height();
    result.devicePixelRatio = grabbed.devicePixelRatio();
    const auto rowLength = static_cast<std::size_t>(result.width);
    result.pixels.resize(rowLength * static_cast<std::size_t>(result.height));
    for (int row = 0; row < result.height; ++row)
        std::memcpy(result.pixels.data() + rowLength * static_cast<std::size_t>(row),
                    image.constScanLine(row), rowLength * sizeof(std::uint32_t));
    return result;
}

} // namespace glyphmill
