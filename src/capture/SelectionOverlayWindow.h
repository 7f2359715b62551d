// One screen's part of the selection overlay: a frameless window over the whole screen showing the
// screen as it was when the overlay opened, on which the user drags a rectangle.
#pragma once

#include <QImage>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QWidget>

#include <optional>

namespace glyphmill {

class ScreenSelectionOverlayController;

// Tracks the drag in global logical coordinates and draws the selection over the frozen screen.
class SelectionOverlayView final : public QWidget {
    Q_OBJECT
public:
    SelectionOverlayView(ScreenSelectionOverlayController *controller, QRectF screenFrame, QImage frozen,
                         QWidget *parent);

    QRectF screenFrame() const { return screenFrame_; }
    // The selection in the view's own coordinates; empty when no drag is under way.
    QRectF selectionInView() const;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPointer<ScreenSelectionOverlayController> controller_;
    QRectF screenFrame_;
    QImage frozen_;
    std::optional<QPointF> dragStart_;
    std::optional<QPointF> dragCurrent_;
};

// The top-level window: on top of everything, docks and panels included, with the crosshair.
class SelectionOverlayWindow final : public QWidget {
    Q_OBJECT
public:
    SelectionOverlayWindow(ScreenSelectionOverlayController *controller, QScreen *screen, QImage frozen);

    SelectionOverlayView *view() const { return view_; }
    // Brings the window forward and routes the keyboard to it. The grab is retried until the
    // window system grants it: it fails while the window is not yet mapped.
    void takeKeyboard();
    void releaseInput();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void tryKeyboardGrab(int attemptsLeft);

    SelectionOverlayView *view_ = nullptr;
    bool holdsInput_ = false;
};

} // namespace glyphmill
