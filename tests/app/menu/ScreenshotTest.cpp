// Renders the menu and the palette in a light and a dark palette to PNG files for a person to
// look at; skipped unless GLYPHMILL_SHOTS_DIR names the folder to write them to.
#include "MenuFixture.h"

#include "app/menu/AppIcons.h"
#include "app/menu/FloatingPalettePanel.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace glyphmill {
namespace {

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
    dark.setColor(QPalette::Light, QColor(0x4a, 0x4c, 0x50));
    dark.setColor(QPalette::Midlight, QColor(0x40, 0x42, 0x46));
    dark.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x36));
    dark.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    dark.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(0x78, 0x7a, 0x7e));
    return dark;
}

// The pictures side by side on a neutral backdrop, with a gap between them.
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
