#include "ui/AppIcons.h"

#include <QImage>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

// Sampled where each drawing has its tile and no letter, so a fallback or an empty picture fails.
TEST(AppIcons, BothIconsAreDrawnFromTheirSvg) {
    const QImage tray = appIcons::trayIcon().pixmap(22, 22).toImage();
    ASSERT_FALSE(tray.isNull());
    EXPECT_EQ(tray.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(tray.pixelColor(3, 9), QColor(0x2e, 0x34, 0x40));

    const QImage application = appIcons::applicationIcon().pixmap(128, 128).toImage();
    ASSERT_FALSE(application.isNull());
    const QColor tile = application.pixelColor(64, 12);
    EXPECT_GT(tile.blue(), tile.red() + 40);
    EXPECT_EQ(tile.alpha(), 255);
}

} // namespace
} // namespace glyphmill
