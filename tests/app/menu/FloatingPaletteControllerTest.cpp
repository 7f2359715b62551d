#include "MenuFixture.h"

#include "app/menu/FloatingPalettePanel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

namespace glyphmill {
namespace {

using namespace Qt::StringLiterals;

// Another window of the application, which records what reaches it.
class RecordingWindow final : public QWidget {
public:
    RecordingWindow() { resize(600, 400); }
    int keyPresses = 0;
    int mousePresses = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keyPresses; }
    void mousePressEvent(QMouseEvent *) override { ++mousePresses; }
};

class PaletteTest : public MenuTest {
protected:
    ~PaletteTest() override {
        palette.close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    FloatingPalettePanel &openPalette() {
        palette.show();
        EXPECT_NE(palette.panel(), nullptr);
        return *palette.panel();
    }
    static QStringList buttonTitles(const FloatingPalettePanel &panel) {
        QStringList shown;
        for (const QPushButton *button : panel.modeButtons())
            shown << button->text();
        return shown;
    }
    static void press(QWidget &target, QPoint inWindow) {
        QMouseEvent event(QEvent::MouseButtonPress, inWindow, inWindow, target.mapToGlobal(inWindow),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
    static void key(QWidget &target, Qt::Key pressed) {
        QKeyEvent event(QEvent::KeyPress, pressed, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
};

TEST_F(PaletteTest, WithTextItOffersFourEnabledTransformsNextToThePointer) {
    copy(u"some text");
    FloatingPalettePanel &panel = openPalette();

    EXPECT_EQ(panel.size(), QSize(280, 220));
    EXPECT_EQ(buttonTitles(panel), (QStringList{"Smart Case", "Title Case", "UPPERCASE", "lowercase"}));
    for (const QPushButton *button : panel.modeButtons())
        EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(panel.modeButtons()[0]->toolTip(),
              "Fix inconsistent capitalization while protecting brands and links");
    EXPECT_EQ(panel.hintLabel()->text(), "Transform clipboard text");
    EXPECT_EQ(panel.servicesHelpButton(), nullptr);
    EXPECT_EQ(panel.closeButton()->accessibleName(), "Close");
    // The pointer is at (400, 300) on the offscreen 800 × 600 screen.
    EXPECT_EQ(panel.intendedPosition(), QPoint(400 - 140, 316));
    EXPECT_TRUE(panel.windowFlags().testFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint));
}

TEST_F(PaletteTest, BlankClipboardTextDisablesTheTransformsAndOffersServicesHelp) {
    int helpShown = 0;
    palette.setServicesHelp([&] { ++helpShown; });
    copy(u"  \n\t \n");
    FloatingPalettePanel &panel = openPalette();

    // At least the nominal height, and tall enough that the wrapped hint is not cut off.
    EXPECT_EQ(panel.width(), 280);
    EXPECT_GE(panel.height(), 250);
    EXPECT_GE(panel.hintLabel()->height(), panel.hintLabel()->heightForWidth(panel.hintLabel()->width()));
    for (const QPushButton *button : panel.modeButtons())
        EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(panel.hintLabel()->text(),
              u"Copy text first, then choose a conversion. For in-place transforms, "
              u"use the glyphmill service command."_s);
    ASSERT_NE(panel.servicesHelpButton(), nullptr);
    EXPECT_EQ(panel.servicesHelpButton()->text(), u"How to Use Services\u2026"_s);
    panel.servicesHelpButton()->click();
    EXPECT_EQ(helpShown, 1);
    EXPECT_EQ(palette.panel(), &panel);
}

TEST_F(PaletteTest, HtmlOnlyTextCountsAsTextWhenOpening) {
    copyAs("text/html", "<p>Hello</p>");
    EXPECT_TRUE(openPalette().modeButtons()[0]->isEnabled());
}

TEST_F(PaletteTest, OpeningAgainReplacesThePanel) {
    copy(u"text");
    QPointer<FloatingPalettePanel> first = &openPalette();
    FloatingPalettePanel *second = &openPalette();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(palette.panel(), second);
    EXPECT_TRUE(palette.isFilteringEvents());
    palette.close();
    EXPECT_FALSE(palette.isFilteringEvents());
    EXPECT_EQ(palette.panel(), nullptr);
    palette.close();
}

TEST_F(PaletteTest, EscapeClosesAndIsSwallowedWhileOtherKeysPassOn) {
    RecordingWindow other;
    openPalette();
    key(other, Qt::Key_A);
    EXPECT_EQ(other.keyPresses, 1);
    EXPECT_NE(palette.panel(), nullptr);

    key(other, Qt::Key_Escape);
    EXPECT_EQ(other.keyPresses, 1);
    EXPECT_EQ(palette.panel(), nullptr);
    // Closed, the palette no longer takes Escape.
    key(other, Qt::Key_Escape);
    EXPECT_EQ(other.keyPresses, 2);
}

TEST_F(PaletteTest, AClickInsideKeepsItOpenAndAClickOutsideClosesItAndStillArrives) {
    RecordingWindow other;
    FloatingPalettePanel &panel = openPalette();
    press(*panel.hintLabel(), {5, 5});
    press(other, {100, 100});
    EXPECT_EQ(palette.panel(), &panel);

    press(other, {500, 300});
    EXPECT_EQ(palette.panel(), nullptr);
    EXPECT_EQ(other.mousePresses, 2);
}

TEST_F(PaletteTest, AModeButtonTransformsTheClipboardAndCloses) {
    terms.addTerm(u"iPhone");
    palette.setTermsStore(&terms);
    copyWithHtml(u"my iphone");
    FloatingPalettePanel &panel = openPalette();

    panel.modeButtons()[2]->click();
    EXPECT_EQ(plainText(), u"my iphone");
    runQueuedTasks();

    EXPECT_EQ(plainText(), u"MY iPhone");
    EXPECT_TRUE(holdsOnlyPlainText());
    EXPECT_TRUE(history.canRestore());
    EXPECT_EQ(palette.panel(), nullptr);
    EXPECT_TRUE(alerts().empty());
}

TEST_F(PaletteTest, WithoutTextAtTransformTimeNothingIsWrittenAndThePaletteStays) {
    copy(u"text");
    FloatingPalettePanel &panel = openPalette();
    copyAs("text/html", "<p>Only HTML now</p>");
    const int writes = clipboard.writeCount();

    panel.modeButtons()[0]->click();
    runQueuedTasks();
    EXPECT_EQ(clipboard.writeCount(), writes);
    EXPECT_EQ(palette.panel(), &panel);
    EXPECT_FALSE(history.canRestore());
    EXPECT_TRUE(alerts().empty());
}

TEST_F(PaletteTest, TheCloseButtonCloses) {
    openPalette().closeButton()->click();
    EXPECT_EQ(palette.panel(), nullptr);
}

} // namespace
} // namespace glyphmill
