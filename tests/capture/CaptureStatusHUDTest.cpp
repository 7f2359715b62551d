#include "capture/CaptureStatusHUD.h"
#include "support/SpinUntil.h"

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TEST(CaptureStatusHUDPlacement, CentredTwentyFourBelowTheAnchorAndEightInsideEachEdge) {
    // An origin away from 0,0 so that edges computed from the wrong corner show.
    const QRectF visible(100, 50, 1000, 700); // right 1100, bottom 750
    struct Case {
        QPointF anchor;
        QPointF topLeft;
    };
    const Case cases[] = {
        {{600, 300}, {490, 324}},  // free
        {{120, 300}, {108, 324}},  // left edge
        {{1090, 300}, {872, 324}}, // right edge: 1100 - 220 - 8
        {{600, 740}, {490, 698}},  // bottom edge: pushed up to 750 - 44 - 8
        {{600, 0}, {490, 58}},     // above the top edge
    };
    for (const Case &c : cases)
        EXPECT_EQ(hudFrame(c.anchor, visible), QRectF(c.topLeft, QSizeF(220, 44)))
            << c.anchor.x() << "," << c.anchor.y();
    // Narrower and lower than the bubble: the right and the top edges win.
    EXPECT_EQ(hudFrame({0, 0}, QRectF(0, 0, 100, 30)).topLeft(), QPointF(-128, 8));
}

TEST(CaptureStatusHUDPlacement, TheScreenHoldingTheAnchorElseThePrimaryElseTheFirst) {
    const HUDScreen left{{0, 0, 800, 600}, {0, 24, 800, 576}};
    const HUDScreen right{{800, 0, 1000, 700}, {800, 0, 1000, 650}};
    const std::vector<HUDScreen> both{left, right};
    EXPECT_EQ(hudVisibleFrame({900, 100}, both, left), right.visibleFrame);
    EXPECT_EQ(hudVisibleFrame({800, 100}, both, left),
              right.visibleFrame); // the left edge belongs to a screen
    EXPECT_EQ(hudVisibleFrame({799.5, 600}, both, right), left.visibleFrame); // and so does the bottom one
    EXPECT_EQ(hudVisibleFrame({100, 0}, both, right), right.visibleFrame);    // but not the top one
    EXPECT_EQ(hudVisibleFrame({1800, 100}, both, right), right.visibleFrame); // nor the right one
    EXPECT_EQ(hudVisibleFrame({-5, -5}, both, std::nullopt), left.visibleFrame);
    EXPECT_EQ(hudVisibleFrame({-5, -5}, {}, std::nullopt), QRectF(0, 0, 800, 600));
}

TEST(CaptureStatusHUD, ABubbleThatNeverTakesFocusOrClicksAndHidesItself) {
    const QPointF anchor(300, 200);
    showHUD(QStringLiteral("No text detected"), anchor);
    QPointer<QWidget> first = currentHUD();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->accessibleName(), QStringLiteral("No text detected"));
    const QRectF visible(QGuiApplication::primaryScreen()->availableGeometry());
    EXPECT_EQ(QRectF(first->geometry()), hudFrame(anchor, visible));
    EXPECT_TRUE(first->windowFlags().testFlags(Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput |
                                               Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint));
    EXPECT_EQ(first->font().pixelSize(), 13);
    // The capsule: the corners are cut away, the middle and the ends of the middle line stay.
    EXPECT_FALSE(first->mask().contains(QPoint(0, 0)));
    EXPECT_FALSE(first->mask().contains(QPoint(219, 43)));
    EXPECT_TRUE(first->mask().contains(QPoint(1, 22)));
    EXPECT_TRUE(first->mask().contains(QPoint(110, 0)));

    showHUD(QStringLiteral("Text copied"), anchor);
    QWidget *second = currentHUD();
    ASSERT_NE(second, first.data());
    EXPECT_EQ(second->accessibleName(), QStringLiteral("Text copied"));
    EXPECT_TRUE(spinUntil([&] { return first.isNull(); }));
    // A fresh 1.6 s life rather than what was left of the first one's.
    const auto timers = second->findChildren<QTimer *>();
    ASSERT_EQ(timers.size(), 1u);
    EXPECT_TRUE(timers[0]->isActive() && timers[0]->isSingleShot());
    EXPECT_EQ(timers[0]->interval(), 1600);
    QPointer<QWidget> watched = second;
    EXPECT_TRUE(spinUntil([&] { return currentHUD() == nullptr && watched.isNull(); }));

    showHUD(QStringLiteral("Text copied"), anchor);
    hideHUD();
    EXPECT_EQ(currentHUD(), nullptr);
}

} // namespace
} // namespace glyphmill
