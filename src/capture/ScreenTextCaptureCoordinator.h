// Runs one screen text capture from request to result: the permission gate, the selection
// overlay, the crop of the frozen screen picture, recognition on a worker thread, line assembly,
// the optional Smart Case of text in capitals, the clipboard and capture history, and the bubble
// that reports the outcome.
#pragma once

#include "capture/ScreenSelectionOverlayController.h"
#include "platform/ScreenImage.h"
#include "platform/TextRecognizer.h"

#include <QFutureWatcher>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

class QScreen;

namespace glyphmill {

class AppSettings;
class CaptureHistory;
class ClipboardHistory;
class ClipboardManager;
class ClipboardMonitor;
class PreferenceStore;
class ScreenGrabber;
class SystemLog;

enum class ScreenCaptureError { noDisplay, permissionDenied, captureFailed, invalidSelection };

// Everything a capture reaches beyond itself; shared() fills it from the installed services and
// the shared controllers.
struct ScreenTextCaptureServices {
    ScreenGrabber *grabber = nullptr;
    TextRecognizer *recognizer = nullptr;
    SystemLog *log = nullptr;
    // Where the protected terms are read for Smart Case.
    PreferenceStore *preferences = nullptr;
    AppSettings *settings = nullptr;
    ClipboardHistory *clipboardHistory = nullptr;
    ClipboardManager *clipboard = nullptr;
    CaptureHistory *captureHistory = nullptr;
    ClipboardMonitor *monitor = nullptr;
    // The permission gate; it has told the user why when it answers false.
    std::function<bool()> ensurePermission;
    std::function<void()> closePalette;
    std::function<void(const QString &message, QPointF anchor)> showHUD;
};

// The part of a screen picture under rect, which is in points relative to the screen's top
// left; the picture's device pixel ratio scales it. None when that part is not inside the picture.
std::optional<ScreenImage> cropScreenImage(const ScreenImage &image, QRectF rect);

class ScreenTextCaptureCoordinator final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isActive READ isActive NOTIFY isActiveChanged)

public:
    static constexpr int captureDelayMs = 50;
    // Narrower or lower than this, a selection is dropped without a word.
    static constexpr double minimumSelectionSize = 8;

    explicit ScreenTextCaptureCoordinator(ScreenTextCaptureServices services, QObject *parent = nullptr);
    // Waits for a recognition still under way, which uses the recognizer.
    ~ScreenTextCaptureCoordinator() override;

    // Made on first use over the installed services; never destroyed. The floating palette is the
    // application's: it hands in the palette's closing with setPaletteCloser.
    static ScreenTextCaptureCoordinator &shared();
    void setPaletteCloser(std::function<void()> closePalette);

    // True from the moment the overlay opens until the capture has ended in any way.
    bool isActive() const { return isActive_; }

    // Ignored while a capture is active; main thread only.
    void startCapture();
    // Ends the capture under way, if any, without a result: closes the overlay and forgets a
    // pending capture or recognition. For termination.
    void cancelCapture();

    // The overlay's answer: rect in global logical coordinates, already clipped to screen.
    void handleSelection(QRectF rect, QScreen *screen);

    ScreenSelectionOverlayController &overlay() { return overlay_; }

signals:
    void isActiveChanged(bool isActive);

private:
    using CaptureResult = std::variant<ScreenImage, ScreenCaptureError>;
    using Recognition = std::optional<std::vector<RecognizedFragment>>;

    CaptureResult captureImage(QRectF rect, QScreen *screen);
    void recognize(ScreenImage image, QPointF anchor);
    void deliverText(std::u16string text, QPointF anchor);
    void reportError(ScreenCaptureError error, QPointF anchor);
    // Any failure but permission and a too-small selection: logged and shown in the bubble.
    void reportFailure(QPointF anchor);
    void log(const char *message);
    void setActive(bool active);
    void dropRecognition();

    ScreenTextCaptureServices services_;
    ScreenSelectionOverlayController overlay_;
    bool isActive_ = false;
    // Grows with every cancellation, so a capture's late steps can tell they were abandoned.
    int serial_ = 0;
    // The recognition whose answer is awaited.
    QPointer<QFutureWatcher<Recognition>> recognition_;
    // One worker: the recognizer takes one request at a time, also when an abandoned one is
    // still running as the next capture starts.
    QThreadPool workers_;
};

} // namespace glyphmill
