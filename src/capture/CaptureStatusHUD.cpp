#include "capture/CaptureStatusHUD.h"

#include "capture/ScreenSelectionOverlayController.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace glyphmill {

namespace {

constexpr double gapBelowAnchor = 24;
constexpr double marginToEdge = 8;
constexpr double horizontalPadding = 16;
constexpr double verticalPadding = 10;
// Our points are logical pixels; a Qt point size would come out a third larger at 96 dpi.
constexpr int fontSize = 13;
constexpr QRectF fallbackFrame{0, 0, 800, 600};

// The one bubble on screen and the timer that hides it (a child of the bubble, so it goes with it).
struct HUDState {
    QPointer<CaptureStatusHUDView> view;
    QPointer<QTimer> hideTimer;
};

HUDState &state() {
    static HUDState hud;
    return hud;
}

HUDScreen hudScreenOf(const QScreen &screen) {
    return {QRectF(screen.geometry()), QRectF(screen.availableGeometry())};
}

QPainterPath capsule(const QRectF &bounds) {
    QPainterPath path;
    const double radius = bounds.height() / 2;
    path.addRoundedRect(bounds, radius, radius);
    return path;
}

} // namespace

QRectF hudVisibleFrame(QPointF anchor, const std::vector<HUDScreen> &screens,
                       const std::optional<HUDScreen> &primary) {
    for (const HUDScreen &screen : screens)
        if (screenFrameContains(screen.frame, anchor))
            return screen.visibleFrame;
    if (primary)
        return primary->visibleFrame;
    if (!screens.empty())
        return screens.front().visibleFrame;
    return fallbackFrame;
}

QRectF hudFrame(QPointF anchor, const QRectF &visibleFrame) {
    const double right = visibleFrame.x() + visibleFrame.width();
    const double bottom = visibleFrame.y() + visibleFrame.height();
    const double x = std::min(std::max(anchor.x() - hudWidth / 2, visibleFrame.x() + marginToEdge),
                              right - hudWidth - marginToEdge);
    const double y = std::max(std::min(anchor.y() + gapBelowAnchor, bottom - hudHeight - marginToEdge),
                              visibleFrame.y() + marginToEdge);
    return {x, y, hudWidth, hudHeight};
}

CaptureStatusHUDView::CaptureStatusHUDView(const QString &message, QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus |
                          Qt::WindowTransparentForInput),
      message_(message) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(message);
    setWindowTitle(message);
    QFont font = this->font();
    font.setPixelSize(fontSize);
    font.setWeight(QFont::Medium);
    setFont(font);
    setFixedSize(static_cast<int>(hudWidth), static_cast<int>(hudHeight));
}

void CaptureStatusHUDView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    // A mask rather than a translucent window: without a compositor translucency paints black.
    setMask(QRegion(capsule(QRectF(rect())).toFillPolygon().toPolygon()));
}

void CaptureStatusHUDView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds(rect());
    QColor rim = palette().color(QPalette::WindowText);
    rim.setAlphaF(0.2f);
    painter.setPen(QPen(rim, 1));
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawPath(capsule(bounds.adjusted(0.5, 0.5, -0.5, -0.5)));

    const QRectF textArea =
        bounds.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);
    painter.setPen(palette().color(QPalette::WindowText));
    const QString shown =
        fontMetrics().elidedText(message_, Qt::ElideRight, static_cast<int>(textArea.width()));
    painter.drawText(textArea, Qt::AlignCenter, shown);
}

void showHUD(const QString &message, QPointF anchor) {
    hideHUD();

    std::vector<HUDScreen> screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens.push_back(hudScreenOf(*screen));
    std::optional<HUDScreen> primary;
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        primary = hudScreenOf(*screen);
    const QRectF frame = hudFrame(anchor, hudVisibleFrame(anchor, screens, primary));

    auto *view = new CaptureStatusHUDView(message);
    view->move(frame.topLeft().toPoint());
    auto *timer = new QTimer(view);
    timer->setSingleShot(true);
    timer->setInterval(hudLifetimeMilliseconds);
    QObject::connect(timer, &QTimer::timeout, view, [view] {
        if (state().view == view)
            hideHUD();
    });
    state() = {view, timer};
    view->show();
    timer->start();
}

void hideHUD() {
    HUDState &hud = state();
    if (hud.hideTimer)
        hud.hideTimer->stop();
    if (hud.view) {
        hud.view->hide();
        hud.view->deleteLater();
    }
    hud = {};
}

QWidget *currentHUD() {
    return state().view;
}

} // namespace glyphmill
