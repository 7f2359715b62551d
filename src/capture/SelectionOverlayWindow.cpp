#include "capture/SelectionOverlayWindow.h"

#include "capture/ScreenSelectionOverlayController.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace glyphmill {

namespace {

constexpr int keyboardGrabAttempts = 50;
constexpr int keyboardGrabRetryMilliseconds = 20;

// Only X11 lets a window raise itself and grab the keyboard; elsewhere focus has to do.
bool windowsMayGrab() {
    return QGuiApplication::platformName() == QStringLiteral("xcb");
}

QRectF spanned(QPointF a, QPointF b) {
    return {std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::abs(b.x() - a.x()), std::abs(b.y() - a.y())};
}

} // namespace

SelectionOverlayView::SelectionOverlayView(ScreenSelectionOverlayController *controller, QRectF screenFrame,
                                           QImage frozen, QWidget *parent)
    : QWidget(parent), controller_(controller), screenFrame_(screenFrame), frozen_(std::move(frozen)) {
    setCursor(Qt::CrossCursor);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    // The frozen picture covers every pixel; without it the window is see-through where a
    // compositor allows.
    if (!frozen_.isNull())
        setAttribute(Qt::WA_OpaquePaintEvent);
}

QRectF SelectionOverlayView::selectionInView() const {
    if (!dragStart_ || !dragCurrent_)
        return {};
    const QRectF selection = spanned(*dragStart_, *dragCurrent_).intersected(screenFrame_);
    if (selection.isEmpty())
        return {};
    return selection.translated(-screenFrame_.topLeft());
}

void SelectionOverlayView::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    dragStart_ = event->globalPosition();
    dragCurrent_ = dragStart_;
    update();
}

void SelectionOverlayView::mouseMoveEvent(QMouseEvent *event) {
    if (!dragStart_)
        return;
    dragCurrent_ = event->globalPosition();
    update();
}

void SelectionOverlayView::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton || !dragStart_)
        return;
    const QPointF start = *dragStart_;
    const QPointF end = event->globalPosition();
    dragStart_.reset();
    dragCurrent_.reset();
    update();
    if (controller_)
        controller_->finishSelection(start, end, screenFrame_);
}

void SelectionOverlayView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (!frozen_.isNull())
        painter.drawImage(QRectF(rect()), frozen_, QRectF(frozen_.rect()));
    const QRectF selection = selectionInView();
    if (selection.isEmpty())
        return;

    QColor accent = palette().color(QPalette::Highlight);
    accent.setAlphaF(0.16f);
    painter.fillRect(selection, accent);

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    QColor outer = Qt::black;
    outer.setAlphaF(0.85f);
    QPen pen(outer, 2);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(selection.adjusted(0.5, 0.5, -0.5, -0.5));
    pen.setColor(Qt::white);
    pen.setWidthF(1);
    painter.setPen(pen);
    painter.drawRect(selection.adjusted(1.5, 1.5, -1.5, -1.5));
}

SelectionOverlayWindow::SelectionOverlayWindow(ScreenSelectionOverlayController *controller, QScreen *screen,
                                               QImage frozen)
    // Bypassing the window manager is what puts the window above docks and panels on X11; it also
    // means the window manager gives it neither focus nor a place, so both are done here.
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::BypassWindowManagerHint | Qt::NoDropShadowWindowHint) {
    setWindowTitle(tr("Glyphmill Selection"));
    setAttribute(Qt::WA_QuitOnClose, false);
    const bool seeThrough = frozen.isNull();
    if (seeThrough) {
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_NoSystemBackground);
    }
    setCursor(Qt::CrossCursor);
    setScreen(screen);
    const QRect frame = screen->geometry();
    view_ = new SelectionOverlayView(controller, QRectF(frame), std::move(frozen), this);
    setGeometry(frame);
    setFocusProxy(view_);
}

void SelectionOverlayWindow::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    view_->setGeometry(rect());
}

void SelectionOverlayWindow::takeKeyboard() {
    holdsInput_ = true;
    view_->setFocus(Qt::ActiveWindowFocusReason);
    if (!windowsMayGrab())
        return;
    raise();
    activateWindow();
    // Routes key events inside the application to the view even when the window is not active.
    view_->grabKeyboard();
    tryKeyboardGrab(keyboardGrabAttempts);
}

void SelectionOverlayWindow::tryKeyboardGrab(int attemptsLeft) {
    if (!holdsInput_ || attemptsLeft <= 0)
        return;
    // A window the window manager does not manage gets focus only through a grab of the display.
    QWindow *handle = windowHandle();
    if (handle && handle->isExposed() && handle->setKeyboardGrabEnabled(true)) {
        activateWindow();
        return;
    }
    QTimer::singleShot(keyboardGrabRetryMilliseconds, this,
                       [this, attemptsLeft] { tryKeyboardGrab(attemptsLeft - 1); });
}

void SelectionOverlayWindow::releaseInput() {
    if (!holdsInput_)
        return;
    holdsInput_ = false;
    if (!windowsMayGrab())
        return;
    view_->releaseKeyboard();
    if (QWindow *handle = windowHandle())
        handle->setKeyboardGrabEnabled(false);
}

} // namespace glyphmill
