#include "capture/ScreenSelectionOverlayController.h"

#include "capture/CaptureStatusHUD.h"
#include "capture/SelectionOverlayWindow.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace glyphmill {

namespace {

constexpr double minimumSelectionSide = 8;

ScreenToGrab areaOf(const QScreen &screen, int index) {
    const QRect frame = screen.geometry();
    return {index,
            double(frame.x()),
            double(frame.y()),
            double(frame.width()),
            double(frame.height()),
            screen.devicePixelRatio()};
}

QImage toQImage(const ScreenImage &image) {
    if (image.isEmpty() ||
        image.pixels.size() < static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height))
        return {};
    QImage wrapped(reinterpret_cast<const uchar *>(image.pixels.data()), image.width, image.height,
                   static_cast<qsizetype>(image.width) * 4, QImage::Format_ARGB32);
    // A copy: the window must not depend on the grab, which the caller takes away afterwards.
    QImage copy = wrapped.copy();
    copy.setDevicePixelRatio(image.devicePixelRatio);
    return copy;
}

} // namespace

bool screenFrameContains(const QRectF &frame, QPointF point) {
    return point.x() >= frame.x() && point.x() < frame.x() + frame.width() && point.y() > frame.y() &&
           point.y() <= frame.y() + frame.height();
}

ScreenSelectionOverlayController::ScreenSelectionOverlayController(ScreenGrabber &grabber, QObject *parent)
    : QObject(parent), grabber_(grabber) {}

ScreenSelectionOverlayController::~ScreenSelectionOverlayController() {
    unwatch();
    for (QWidget *window : windows_)
        delete window;
}

void ScreenSelectionOverlayController::present() {
    dropWindows();
    finished_ = false;
    hideHUD();

    // Every screen is grabbed before any panel appears, so no panel is in any picture.
    const QList<QScreen *> screens = QGuiApplication::screens();
    frozen_.clear();
    for (int index = 0; index < screens.size(); ++index)
        frozen_.push_back({screens[index], grabber_.grabScreen(areaOf(*screens[index], index))});

    for (const FrozenScreen &frozen : frozen_) {
        auto *window = new SelectionOverlayWindow(this, frozen.screen,
                                                  frozen.image ? toQImage(*frozen.image) : QImage());
        window->show();
        windows_.push_back(window);
    }

    const QPoint pointer = QCursor::pos();
    SelectionOverlayWindow *active = nullptr;
    for (QWidget *window : windows_)
        if (!active && screenFrameContains(QRectF(window->geometry()), QPointF(pointer)))
            active = static_cast<SelectionOverlayWindow *>(window);
    if (!active && !windows_.empty())
        active = static_cast<SelectionOverlayWindow *>(windows_.front());
    if (active)
        active->takeKeyboard();

    watch();
}

void ScreenSelectionOverlayController::cancel() {
    if (finished_)
        return;
    endSelection();
    frozen_.clear();
    if (auto callback = onCancel)
        callback();
}

void ScreenSelectionOverlayController::closeOverlay() {
    if (finished_)
        return;
    endSelection();
}

void ScreenSelectionOverlayController::endSelection() {
    finished_ = true;
    unwatch();
    dropWindows();
}

bool ScreenSelectionOverlayController::isOpen() const {
    return !finished_;
}

void ScreenSelectionOverlayController::finishSelection(QPointF start, QPointF end, QRectF screenFrame) {
    if (finished_)
        return;
    const QList<QScreen *> screens = QGuiApplication::screens();
    auto found = std::find_if(screens.begin(), screens.end(),
                              [&](QScreen *screen) { return QRectF(screen->geometry()) == screenFrame; });
    if (found == screens.end())
        found = std::find_if(screens.begin(), screens.end(), [&](QScreen *screen) {
            return screenFrameContains(QRectF(screen->geometry()), start);
        });
    if (found == screens.end()) {
        cancel();
        return;
    }
    QScreen *screen = *found;
    const QRectF spanned(std::min(start.x(), end.x()), std::min(start.y(), end.y()),
                         std::abs(end.x() - start.x()), std::abs(end.y() - start.y()));
    const QRectF selection = spanned.intersected(QRectF(screen->geometry()));
    if (selection.width() < minimumSelectionSide || selection.height() < minimumSelectionSide) {
        cancel();
        return;
    }
    closeOverlay();
    if (auto callback = onSelect)
        callback(selection, screen);
}

std::optional<ScreenImage> ScreenSelectionOverlayController::takeFrozenImage(QScreen *screen) {
    std::optional<ScreenImage> taken;
    for (FrozenScreen &frozen : frozen_)
        if (frozen.screen == screen && screen) {
            taken = std::move(frozen.image);
            break;
        }
    frozen_.clear();
    frozen_.shrink_to_fit();
    return taken;
}

const std::vector<QWidget *> &ScreenSelectionOverlayController::windows() const {
    return windows_;
}

bool ScreenSelectionOverlayController::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        QMetaObject::invokeMethod(this, &ScreenSelectionOverlayController::cancel, Qt::QueuedConnection);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void ScreenSelectionOverlayController::dropWindows() {
    for (QWidget *window : windows_) {
        static_cast<SelectionOverlayWindow *>(window)->releaseInput();
        window->hide();
        // Later: this may run inside one of the window's own event handlers.
        window->deleteLater();
    }
    windows_.clear();
}

void ScreenSelectionOverlayController::watch() {
    unwatch();
    QCoreApplication::instance()->installEventFilter(this);
    filtering_ = true;
    // The panels no longer match the screens after any change of their layout.
    const auto cancelLater = [this] {
        QMetaObject::invokeMethod(this, &ScreenSelectionOverlayController::cancel, Qt::QueuedConnection);
    };
    auto *application = qGuiApp;
    screenConnections_.push_back(connect(application, &QGuiApplication::screenAdded, this, cancelLater));
    screenConnections_.push_back(connect(application, &QGuiApplication::screenRemoved, this, cancelLater));
    screenConnections_.push_back(
        connect(application, &QGuiApplication::primaryScreenChanged, this, cancelLater));
    for (QScreen *screen : QGuiApplication::screens())
        screenConnections_.push_back(connect(screen, &QScreen::geometryChanged, this, cancelLater));
}

void ScreenSelectionOverlayController::unwatch() {
    if (filtering_ && QCoreApplication::instance())
        QCoreApplication::instance()->removeEventFilter(this);
    filtering_ = false;
    for (const QMetaObject::Connection &connection : screenConnections_)
        disconnect(connection);
    screenConnections_.clear();
}

} // namespace glyphmill
