// The short-lived bubble under a capture that tells what became of it.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QWidget>

#include <optional>
#include <vector>

namespace glyphmill {

inline constexpr double hudWidth = 220;
inline constexpr double hudHeight = 44;
inline constexpr int hudLifetimeMilliseconds = 1600;

// Shows message in a bubble just below anchor (global logical coordinates), replacing any bubble
// on screen; it hides itself after 1.6 s.
void showHUD(const QString &message, QPointF anchor);
void hideHUD();
// For tests.
QWidget *currentHUD();

struct HUDScreen {
    QRectF frame;
    // Without panels and docks.
    QRectF visibleFrame;
};

// The visible frame of the first screen holding anchor, else the primary screen's, else the first
// screen's; 0,0 800 x 600 when there is no screen.
QRectF hudVisibleFrame(QPointF anchor, const std::vector<HUDScreen> &screens,
                       const std::optional<HUDScreen> &primary);
// Centred under anchor with its top 24 points below it, kept 8 points inside visibleFrame; on a
// frame too small for it the right and top edges win.
QRectF hudFrame(QPointF anchor, const QRectF &visibleFrame);

// The message in the system font, 13 points medium, on a capsule.
class CaptureStatusHUDView final : public QWidget {
    Q_OBJECT
public:
    explicit CaptureStatusHUDView(const QString &message, QWidget *parent = nullptr);
    QString message() const { return message_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QString message_;
};

} // namespace glyphmill
