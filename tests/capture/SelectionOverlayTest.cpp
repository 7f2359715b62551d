#include "capture/CaptureStatusHUD.h"
#include "capture/ScreenSelectionOverlayController.h"
#include "capture/SelectionOverlayWindow.h"
#include "platform/InMemoryScreenGrabber.h"
#include "support/SpinUntil.h"

#include <QApplication>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

// Counts the key presses that reach the object it watches.
class KeyCounter final : public QObject {
public:
    int presses = 0;
    bool eventFilter(QObject *, QEvent *event) override {
        presses += event->type() == QEvent::KeyPress;
        return false;
    }
};

class SelectionOverlayTest : public ::testing::Test {
protected:
    void SetUp() override {
        controller.onSelect = [this](QRectF rect, QScreen *screen) { selections.push_back({rect, screen}); };
        controller.onCancel = [this] { ++cancels; };
    }
    void TearDown() override { controller.cancel(); }

    QScreen *screen() const { return QGuiApplication::screens().front(); }
    QRectF frame() const { return QRectF(screen()->geometry()); }
    SelectionOverlayView *view() const {
        return static_cast<SelectionOverlayWindow *>(controller.windows().front())->view();
    }
    void mouse(QEvent::Type type, QPointF global) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, view()->mapFromGlobal(global), global, Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(view(), &event);
    }
    void drag(QPointF from, QPointF to) {
        mouse(QEvent::MouseButtonPress, from);
        mouse(QEvent::MouseMove, to);
    }

    InMemoryScreenGrabber grabber;
    ScreenSelectionOverlayController controller{grabber};
    std::vector<std::pair<QRectF, QScreen *>> selections;
    int cancels = 0;
};

TEST_F(SelectionOverlayTest, PresentGrabsFirstThenCoversEachScreenWithACrosshairPanel) {
    showHUD(QStringLiteral("Text copied"), {10, 10});
    controller.present();
    EXPECT_EQ(currentHUD(), nullptr);
    ASSERT_EQ(grabber.requested.size(), 1u);
    EXPECT_EQ(grabber.requested[0].index, 0);
    EXPECT_EQ(QRectF(grabber.requested[0].x, grabber.requested[0].y, grabber.requested[0].width,
                     grabber.requested[0].height),
              frame());
    ASSERT_EQ(controller.windows().size(), 1u);
    QWidget *window = controller.windows().front();
    EXPECT_TRUE(controller.isOpen() && window->isVisible());
    EXPECT_EQ(QRectF(window->geometry()), frame());
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(view()->cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(window->focusWidget(), view());
}

TEST_F(SelectionOverlayTest, ADragReportsItsRectangleClippedToTheScreenAndClosesTheOverlay) {
    controller.present();
    QPointer<QWidget> window = controller.windows().front();
    const QPointF start = frame().bottomRight() - QPointF(100, 50);
    const QPointF end = start + QPointF(300, 300);
    drag(start, end);
    // Through the event loop, as the window system delivers it, so the closed panel can go.
    QCoreApplication::postEvent(view(),
                                new QMouseEvent(QEvent::MouseButtonRelease, view()->mapFromGlobal(end), end,
                                                Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
    EXPECT_TRUE(spinUntil([&] { return window.isNull(); }));
    ASSERT_EQ(selections.size(), 1u);
    EXPECT_EQ(selections[0].first, QRectF(start, QSizeF(100, 50)));
    EXPECT_EQ(selections[0].second, screen());
    EXPECT_FALSE(controller.isOpen());
    EXPECT_TRUE(controller.windows().empty());
    EXPECT_EQ(cancels, 0);
}

TEST_F(SelectionOverlayTest, ClicksAndSelectionsUnderEightPointsOrOffEveryScreenCancel) {
    const QPointF origin = frame().topLeft() + QPointF(10, 10);
    struct Case {
        QPointF end;
        QRectF screenFrame;
        bool selects;
    };
    const Case cases[] = {
        {origin + QPointF(7.9, 100), frame(), false},
        {origin + QPointF(100, 7.9), frame(), false},
        {origin, frame(), false},
        {origin + QPointF(8, 8), frame(), true},
        {origin - QPointF(8, 8), frame(), true}, // dragged up and to the left
    };
    for (const Case &c : cases) {
        selections.clear();
        cancels = 0;
        controller.present();
        controller.finishSelection(origin, c.end, c.screenFrame);
        EXPECT_EQ(selections.size(), c.selects ? 1u : 0u) << c.end.x() << "," << c.end.y();
        EXPECT_EQ(cancels, c.selects ? 0 : 1);
        EXPECT_FALSE(controller.isOpen());
    }

    // A frame no screen has: the start point picks the screen, and off every screen it cancels.
    selections.clear();
    controller.present();
    controller.finishSelection(origin, origin + QPointF(50, 50), QRectF(5000, 5000, 10, 10));
    ASSERT_EQ(selections.size(), 1u);
    EXPECT_EQ(selections[0].second, screen());
    cancels = 0;
    controller.present();
    controller.finishSelection({-500, -500}, {100, 100}, QRectF(5000, 5000, 10, 10));
    EXPECT_EQ(cancels, 1);

    // A plain click on the panel.
    cancels = 0;
    controller.present();
    mouse(QEvent::MouseButtonPress, origin);
    mouse(QEvent::MouseButtonRelease, origin);
    EXPECT_EQ(cancels, 1);
}

TEST_F(SelectionOverlayTest, TheSelectionEndsOnceWhateverEndsIt) {
    controller.present();
    controller.cancel();
    controller.cancel();
    controller.closeOverlay();
    controller.finishSelection({0, 0}, {100, 100}, frame());
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(selections.empty());

    controller.present();
    controller.closeOverlay();
    controller.cancel();
    EXPECT_EQ(cancels, 1);
}

TEST_F(SelectionOverlayTest, EscapeCancelsAfterTheEventAndIsSwallowedWhileOtherKeysPass) {
    controller.present();
    KeyCounter counter;
    view()->installEventFilter(&counter);
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QApplication::sendEvent(view(), &letter);
    EXPECT_EQ(counter.presses, 1);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(view(), &escape);
    EXPECT_EQ(counter.presses, 1);
    EXPECT_EQ(cancels, 0);
    EXPECT_TRUE(spinUntil([&] { return cancels == 1; }));

    // Once closed, Escape belongs to the rest of the application again.
    QWidget other;
    other.installEventFilter(&counter);
    QApplication::sendEvent(&other, &escape);
    EXPECT_EQ(counter.presses, 2);
}

TEST_F(SelectionOverlayTest, AChangeOfTheScreensCancelsAfterTheNotificationButOnlyWhileOpen) {
    controller.present();
    emit screen()->geometryChanged(screen()->geometry());
    EXPECT_EQ(cancels, 0);
    EXPECT_TRUE(spinUntil([&] { return cancels == 1; }));

    emit qGuiApp->screenAdded(screen());
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(cancels, 1);
}

TEST_F(SelectionOverlayTest, TheFrozenPictureIsHandedOutOnceAndOnlyAfterASelection) {
    grabber.fill = 0xFF102030;
    controller.present();
    controller.finishSelection({10, 10}, {100, 100}, frame());
    const std::optional<ScreenImage> image = controller.takeFrozenImage(screen());
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(image->width, screen()->geometry().width());
    EXPECT_EQ(image->pixels.front(), 0xFF102030u);
    EXPECT_FALSE(controller.takeFrozenImage(screen()).has_value());

    controller.present();
    controller.cancel();
    EXPECT_FALSE(controller.takeFrozenImage(screen()).has_value());

    grabber.refuses = true;
    controller.present();
    EXPECT_EQ(controller.windows().size(), 1u); // the selection still works, see-through
    controller.finishSelection({10, 10}, {100, 100}, frame());
    EXPECT_EQ(selections.size(), 2u);
    EXPECT_FALSE(controller.takeFrozenImage(screen()).has_value());
}

TEST_F(SelectionOverlayTest, ThePanelShowsTheFrozenScreenWithATintedSelectionInABlackAndWhiteRim) {
    grabber.fill = 0xFF808080;
    controller.present();
    const QPointF origin = frame().topLeft();
    drag(origin + QPointF(100, 100), origin + QPointF(300, 200));
    QImage picture(view()->size(), QImage::Format_ARGB32);
    view()->render(&picture);

    EXPECT_EQ(picture.pixel(50, 50), 0xFF808080u); // no dimming outside
    const QColor inside = picture.pixelColor(200, 150);
    EXPECT_NE(inside.rgb(), 0xFF808080u);
    QColor expected = view()->palette().color(QPalette::Highlight);
    const auto tinted = [](int base, int accent) { return base + (accent - base) * 0.16; };
    EXPECT_NEAR(inside.red(), tinted(0x80, expected.red()), 2);
    EXPECT_NEAR(inside.blue(), tinted(0x80, expected.blue()), 2);
    for (const QPoint rim : {QPoint(100, 150), QPoint(299, 150), QPoint(200, 100), QPoint(200, 199)})
        EXPECT_LT(qGray(picture.pixel(rim)), 0x20) << rim.x() << "," << rim.y();
    for (const QPoint rim : {QPoint(101, 150), QPoint(298, 150), QPoint(200, 101), QPoint(200, 198)})
        EXPECT_EQ(picture.pixel(rim), 0xFFFFFFFFu) << rim.x() << "," << rim.y();
    EXPECT_NEAR(qGray(picture.pixel(102, 150)), qGray(inside.rgb()), 2);
}

} // namespace
} // namespace glyphmill
