// Renders the menu and the palette in a light and a dark palette to PNG files for a person to
// look at; skipped unless GLYPHMILL_SHOTS_DIR names the folder to write them to.
#include "MenuFixture.h"
#include "support/ScreenshotSupport.h"

#include "app/menu/FloatingPalettePanel.h"
#include "ui/AppIcons.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace glyphmill {
namespace {

using testSupport::darkPalette;
using testSupport::sideBySide;

class Screenshots : public MenuTest {
protected:
    void SetUp() override {
        directory = qEnvironmentVariable("GLYPHMILL_SHOTS_DIR");
        if (directory.isEmpty())
            GTEST_SKIP() << "GLYPHMILL_SHOTS_DIR is not set";
        QDir().mkpath(directory);
        defaultPalette = QApplication::palette();
    }
    void TearDown() override {
        if (!directory.isEmpty())
            QApplication::setPalette(defaultPalette);
    }
    QPixmap menuPicture() {
        openMenu();
        controller.menu()->adjustSize();
        return controller.menu()->grab();
    }
    QPixmap palettePicture() {
        palette.show();
        QPixmap picture = palette.panel()->grab();
        palette.close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return picture;
    }

    QString directory;
    QPalette defaultPalette;
};

TEST_F(Screenshots, MenuAndPaletteInLightAndDark) {
    captures.add(u"Invoice 2024-117, due 30 days after receipt");
    captures.add(u"Meeting notes & action items from the quarterly review");
    settings.setAutomaticallyClearFormatting(true);
    copy(u"the quick brown fox\njumps over the lazy dog");

    const QPixmap lightMenu = menuPicture();
    const QPixmap lightPalettePicture = palettePicture();
    clipboard.copyTextFromOtherApplication(u" ");
    const QPixmap lightEmptyPalette = palettePicture();

    // Dark desktop themes hand menus a palette of their own.
    QApplication::setPalette(darkPalette());
    QApplication::setPalette(darkPalette(), "QMenu");
    QCoreApplication::processEvents();
    controller.menu()->setPalette(darkPalette());
    copy(u"the quick brown fox\njumps over the lazy dog");
    const QPixmap darkMenu = menuPicture();
    const QPixmap darkPalettePicture = palettePicture();
    clipboard.copyTextFromOtherApplication(u" ");
    const QPixmap darkEmptyPalette = palettePicture();

    ASSERT_TRUE(sideBySide({lightMenu, darkMenu}).save(directory + "/menu.png"));
    ASSERT_TRUE(sideBySide({lightPalettePicture, lightEmptyPalette, darkPalettePicture, darkEmptyPalette})
                    .save(directory + "/palette.png"));
}

TEST_F(Screenshots, IconsOnLightAndDarkPanels) {
    std::vector<QPixmap> pictures;
    for (const QColor panel : {QColor(0xf6, 0xf5, 0xf4), QColor(0x24, 0x24, 0x24)}) {
        QPixmap strip(140, 40);
        strip.fill(panel);
        QPainter painter(&strip);
        int x = 8;
        for (const int size : {16, 22, 24, 32}) {
            painter.drawPixmap(x, (40 - size) / 2, appIcons::trayIcon().pixmap(size, size));
            x += size + 8;
        }
        painter.end();
        pictures.push_back(strip);
    }
    pictures.push_back(appIcons::applicationIcon().pixmap(128, 128));
    pictures.push_back(appIcons::applicationIcon().pixmap(48, 48));
    ASSERT_TRUE(sideBySide(pictures).save(directory + "/icons.png"));
}

} // namespace
} // namespace glyphmill
