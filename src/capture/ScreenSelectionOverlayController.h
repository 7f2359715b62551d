// Lets the user drag out a rectangle on any screen over a frozen picture of it, then hands the
// rectangle (or a cancellation) back.
#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/ScreenImage.h"

#include <QObject>
#include <QPointF>
#include <QRectF>

#include <functional>
#include <optional>
#include <vector>

class QScreen;
class QWidget;

namespace glyphmill {

// Whether a screen's frame holds point, with the edges the window system uses for the pointer:
// the left and bottom edges belong to the screen, the right and top ones do not.
bool screenFrameContains(const QRectF &frame, QPointF point);

class ScreenSelectionOverlayController : public QObject {
    Q_OBJECT
public:
    explicit ScreenSelectionOverlayController(ScreenGrabber &grabber, QObject *parent = nullptr);
    ~ScreenSelectionOverlayController() override;

    // Rect in global logical coordinates, already clipped to the screen.
    std::function<void(QRectF rect, QScreen *screen)> onSelect;
    std::function<void()> onCancel;

    void present();
    void cancel();
    void finishSelection(QPointF start, QPointF end, QRectF screenFrame);
    void closeOverlay();
    bool isOpen() const;

    // The picture of a screen taken by the last present(), before any panel appeared; none when the
    // grab was refused or the screen is unknown. Taking one releases all of them (no memory held
    // while idle).
    std::optional<ScreenImage> takeFrozenImage(QScreen *screen);

    // For tests.
    const std::vector<QWidget *> &windows() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct FrozenScreen {
        QScreen *screen = nullptr;
        std::optional<ScreenImage> image;
    };

    void endSelection();
    void dropWindows();
    // The Escape filter and the screen-layout watch, while the overlay is up.
    void watch();
    void unwatch();

    ScreenGrabber &grabber_;
    std::vector<QWidget *> windows_;
    std::vector<FrozenScreen> frozen_;
    std::vector<QMetaObject::Connection> screenConnections_;
    bool finished_ = true;
    bool filtering_ = false;
};

} // namespace glyphmill
