#include "capture/ScreenTextCaptureCoordinator.h"

#include "capture/CaptureStatusHUD.h"
#include "capture/ScreenRecordingPermission.h"
#include "capture/text/LineAssembly.h"
#include "clipboard/CaptureHistory.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "platform/PlatformServices.h"
#include "platform/SystemLog.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "transform/CaseRules.h"
#include "transform/TextTransformer.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cmath>
#include <utility>

namespace glyphmill {

namespace {

constexpr std::string_view logCategory = "ScreenCapture";

// Halves away from zero, as the output size of a capture is rounded.
long long roundedPixels(double points, double scale) {
    return std::llround(points * scale);
}

} // namespace

std::optional<ScreenImage> cropScreenImage(const ScreenImage &image, QRectF rect) {
    const double scale = image.devicePixelRatio > 0 ? image.devicePixelRatio : 1.0;
    const long long width = std::max(1LL, roundedPixels(rect.width(), scale));
    const long long height = std::max(1LL, roundedPixels(rect.height(), scale));
    long long left = roundedPixels(rect.x(), scale);
    long long top = roundedPixels(rect.y(), scale);
    // The origin and the size are rounded apart, so a rectangle reaching the picture's edge can
    // overshoot it by one pixel.
    if (left > 0 && left + width == image.width + 1LL)
        --left;
    if (top > 0 && top + height == image.height + 1LL)
        --top;
    const auto available = static_cast<long long>(image.pixels.size());
    if (image.isEmpty() || available < static_cast<long long>(image.width) * image.height || left < 0 ||
        top < 0 || left + width > image.width || top + height > image.height)
        return std::nullopt;

    ScreenImage cropped;
    cropped.width = static_cast<int>(width);
    cropped.height = static_cast<int>(height);
    cropped.devicePixelRatio = scale;
    cropped.pixels.reserve(static_cast<std::size_t>(width * height));
    for (long long row = top; row < top + height; ++row) {
        const auto begin = image.pixels.begin() + static_cast<std::ptrdiff_t>(row * image.width + left);
        cropped.pixels.insert(cropped.pixels.end(), begin, begin + static_cast<std::ptrdiff_t>(width));
    }
    return cropped;
}

ScreenTextCaptureCoordinator::ScreenTextCaptureCoordinator(ScreenTextCaptureServices services,
                                                           QObject *parent)
    : QObject(parent), services_(std::move(services)), overlay_(*services_.grabber) {
    QPointer<ScreenTextCaptureCoordinator> self(this);
    overlay_.onSelect = [self](QRectF rect, QScreen *screen) {
        if (self)
            self->handleSelection(rect, screen);
    };
    overlay_.onCancel = [self] {
        if (self)
            self->setActive(false);
    };
    workers_.setMaxThreadCount(1);
    // The shared coordinator is never destroyed: a recognition still running at quit must end
    // before the process tears down what it uses.
    if (QCoreApplication *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, [this] {
            dropRecognition();
            workers_.waitForDone();
        });
}

ScreenTextCaptureCoordinator::~ScreenTextCaptureCoordinator() {
    overlay_.onSelect = nullptr;
    overlay_.onCancel = nullptr;
    workers_.waitForDone();
}

ScreenTextCaptureCoordinator &ScreenTextCaptureCoordinator::shared() {
    static ScreenTextCaptureCoordinator *const coordinator = [] {
        const PlatformServices &installed = platformServices();
        return new ScreenTextCaptureCoordinator({
            .grabber = &installedScreenGrabber(),
            .recognizer = &installedTextRecognizer(),
            .log = &installedSystemLog(),
            .preferences = installed.preferences,
            .settings = &AppSettings::shared(),
            .clipboardHistory = &ClipboardHistory::shared(),
            .clipboard = &ClipboardManager::shared(),
            .captureHistory = &CaptureHistory::shared(),
            .monitor = &ClipboardMonitor::shared(),
            .ensurePermission = ensureScreenRecordingPermission,
            .closePalette = {}, // handed in by the application: setPaletteCloser
            .showHUD = showHUD,
        });
    }();
    return *coordinator;
}

void ScreenTextCaptureCoordinator::setPaletteCloser(std::function<void()> closePalette) {
    services_.closePalette = std::move(closePalette);
}

void ScreenTextCaptureCoordinator::startCapture() {
    if (isActive_)
        return;
    if (services_.closePalette)
        services_.closePalette();
    if (!services_.ensurePermission()) {
        log("Capture aborted: permissionDenied");
        return;
    }
    setActive(true);
    overlay_.present();
    // The recognizer loads its model while the user drags (once; later calls return at once), so
    // the first capture does not wait for it and an idle application never holds it.
    TextRecognizer *recognizer = services_.recognizer;
    if (recognizer)
        workers_.start([recognizer] { recognizer->prepare(); });
}

void ScreenTextCaptureCoordinator::cancelCapture() {
    if (!isActive_)
        return;
    ++serial_;
    dropRecognition();
    overlay_.cancel();
    setActive(false);
}

void ScreenTextCaptureCoordinator::handleSelection(QRectF rect, QScreen *screen) {
    const QPointF anchor(rect.center().x(), rect.bottom());
    const int serial = serial_;
    // The screen may go away while the capture waits.
    const QPointer<QScreen> target(screen);
    QTimer::singleShot(captureDelayMs, this, [this, rect, target, anchor, serial] {
        if (serial != serial_)
            return;
        CaptureResult captured = captureImage(rect, target.data());
        if (auto *image = std::get_if<ScreenImage>(&captured)) {
            recognize(std::move(*image), anchor);
            return;
        }
        reportError(std::get<ScreenCaptureError>(captured), anchor);
        setActive(false);
    });
}

ScreenTextCaptureCoordinator::CaptureResult ScreenTextCaptureCoordinator::captureImage(QRectF rect,
                                                                                       QScreen *screen) {
    // Taken first, whatever follows: taking releases every screen's picture.
    std::optional<ScreenImage> frozen = overlay_.takeFrozenImage(screen);
    if (!screen)
        return ScreenCaptureError::noDisplay;
    const QRectF frame(screen->geometry());
    const QRectF clipped = rect.intersected(frame);
    if (clipped.width() < minimumSelectionSize || clipped.height() < minimumSelectionSize)
        return ScreenCaptureError::invalidSelection;
    if (!QGuiApplication::screens().contains(screen))
        return ScreenCaptureError::noDisplay;
    if (!frozen) {
        log("Shareable content failed: permissionDenied");
        return ScreenCaptureError::permissionDenied;
    }
    std::optional<ScreenImage> cropped = cropScreenImage(*frozen, clipped.translated(-frame.topLeft()));
    if (!cropped) {
        log("Screenshot capture failed");
        return ScreenCaptureError::captureFailed;
    }
    return std::move(*cropped);
}

void ScreenTextCaptureCoordinator::recognize(ScreenImage image, QPointF anchor) {
    auto *watcher = new QFutureWatcher<Recognition>(this);
    recognition_ = watcher;
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, anchor] {
        watcher->deleteLater();
        if (recognition_ != watcher)
            return;
        recognition_ = nullptr;
        const Recognition fragments = watcher->result();
        if (fragments)
            deliverText(lineAssembly::assembleText(*fragments), anchor);
        else
            reportFailure(anchor);
        setActive(false);
    });
    TextRecognizer *recognizer = services_.recognizer;
    watcher->setFuture(QtConcurrent::run(
        &workers_, [recognizer, picture = std::move(image)] { return recognizer->recognize(picture); }));
}

void ScreenTextCaptureCoordinator::deliverText(std::u16string text, QPointF anchor) {
    if (text.empty()) {
        services_.showHUD(tr("No text detected"), anchor);
        return;
    }
    if (services_.settings->applySmartCaseToAllCapsCaptures() && looksAllCaps(text)) {
        const ProtectedTermsStore terms(*services_.preferences);
        const TextTransformer transformer{terms.terms(), services_.settings->textProtectionOptions()};
        text = transformer.apply(TextTransformKind::smartCase, text);
    }
    // The previous clipboard stays restorable only when the write took; the text is kept in the
    // capture history either way.
    std::optional<std::u16string> previous = services_.clipboardHistory->currentText();
    if (services_.clipboard->writePlainText(text))
        services_.clipboardHistory->save(std::move(previous));
    services_.captureHistory->add(text);
    services_.monitor->refresh();
    services_.showHUD(tr("Text copied"), anchor);
}

void ScreenTextCaptureCoordinator::reportError(ScreenCaptureError error, QPointF anchor) {
    switch (error) {
    case ScreenCaptureError::invalidSelection:
        return;
    case ScreenCaptureError::permissionDenied:
        log("Capture failed: permissionDenied");
        services_.ensurePermission();
        return;
    case ScreenCaptureError::noDisplay:
    case ScreenCaptureError::captureFailed:
        reportFailure(anchor);
        return;
    }
}

void ScreenTextCaptureCoordinator::reportFailure(QPointF anchor) {
    log("Capture failed: captureOrRecognition");
    services_.showHUD(tr("Couldn't capture text"), anchor);
}

void ScreenTextCaptureCoordinator::log(const char *message) {
    services_.log->error(logCategory, message);
}

void ScreenTextCaptureCoordinator::setActive(bool active) {
    if (isActive_ == active)
        return;
    isActive_ = active;
    emit isActiveChanged(active);
}

void ScreenTextCaptureCoordinator::dropRecognition() {
    // The worker finishes on its own; its answer no longer reaches anyone.
    delete recognition_.data();
    recognition_ = nullptr;
}

} // namespace glyphmill
