#include "capture/ScreenTextCaptureCoordinator.h"
#include "capture/PermissionGateServices.h"
#include "clipboard/CaptureHistory.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "platform/InMemoryScreenGrabber.h"
#include "platform/SystemLog.h"
#include "settings/AppSettings.h"
#include "support/SpinUntil.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QSemaphore>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

using Lines = std::vector<std::string>;
const QString failed = QStringLiteral("Couldn't capture text");

// Hands out pictures smaller than the screen when asked to, as a grab cut short would.
class ShrinkableGrabber final : public ScreenGrabber {
public:
    std::optional<ScreenImage> grabScreen(const ScreenToGrab &screen) override {
        auto image = inner.grabScreen(screen);
        if (image && shrinks)
            *image = ScreenImage{16, 16, 1.0, std::vector<std::uint32_t>(256)};
        return image;
    }
    InMemoryScreenGrabber inner;
    bool shrinks = false;
};

// Holds every request until the test lets it go.
class HeldTextRecognizer final : public TextRecognizer {
public:
    std::optional<std::vector<RecognizedFragment>> recognize(const ScreenImage &) override {
        entered.release();
        gate.acquire();
        return std::vector<RecognizedFragment>{{0.1, 0.5, 0.5, 0.1, u"late"}};
    }
    QSemaphore entered, gate;
};

// The permission gate reads the installed services.
class CaptureCoordinator : public ::testing::Test, protected PermissionGateServices {
protected:
    CaptureCoordinator() { clipboard.copyTextFromOtherApplication(u"before"); }
    ScreenTextCaptureServices services(TextRecognizer &textRecognizer) {
        return {.grabber = &grabber,
                .recognizer = &textRecognizer,
                .log = &log,
                .preferences = &userDefaults,
                .settings = &settings,
                .clipboardHistory = &history,
                .clipboard = &manager,
                .captureHistory = &captures,
                .monitor = &monitor,
                .ensurePermission = ensureScreenRecordingPermission,
                .closePalette = [this] { ++paletteCloses; },
                .showHUD =
                    [this](const QString &message, QPointF anchor) {
                        bubbles.push_back(message);
                        anchors.push_back(anchor);
                    }};
    }

    static QScreen *screen() { return QGuiApplication::primaryScreen(); }
    // From the request to the end, the overlay reporting rect (nothing when rect is empty).
    void capture(QRectF rect, QScreen *on = screen()) {
        coordinator.startCapture();
        ASSERT_TRUE(coordinator.isActive());
        coordinator.overlay().closeOverlay();
        coordinator.handleSelection(rect, on);
        ASSERT_TRUE(spinUntil([this] { return !coordinator.isActive(); }));
    }
    // One fragment per text, top down.
    void captureText(std::vector<std::u16string> texts) {
        recognizer.fragments.clear();
        for (std::size_t line = 0; line < texts.size(); ++line)
            recognizer.fragments.push_back({0.1, 0.8 - 0.2 * double(line), 0.5, 0.1, texts[line]});
        capture(QRectF(100, 50, 120, 40));
    }
    std::optional<std::u16string> clipboardText() const { return clipboard.string("text/plain"); }

    RecordingSystemLog log;
    ShrinkableGrabber grabber;
    ScriptedTextRecognizer recognizer;
    AppSettings settings{userDefaults, loginItem};
    ClipboardMonitor monitor{clipboard, settings};
    ClipboardHistory history{clipboard, monitor};
    ClipboardManager manager{clipboard, dialogs, keystrokes, userDefaults, settings, history, monitor};
    CaptureHistory captures{userDefaults};
    std::vector<QString> bubbles;
    std::vector<QPointF> anchors;
    int paletteCloses = 0;
    ScreenTextCaptureCoordinator coordinator{services(recognizer)};
};

TEST_F(CaptureCoordinator, RecognisedTextReachesTheClipboardAndBothHistories) {
    captureText({u"  Hello", u"world  "});
    EXPECT_EQ(clipboardText(), u"Hello\nworld");
    EXPECT_EQ(history.savedText(), u"before");
    ASSERT_EQ(captures.items().size(), 1u);
    EXPECT_EQ(captures.items().front().text, u"Hello\nworld");
    EXPECT_TRUE(monitor.hasUsableText());
    EXPECT_EQ(bubbles, std::vector<QString>{QStringLiteral("Text copied")});
    EXPECT_EQ(anchors, std::vector<QPointF>{QPointF(160, 90)});
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(paletteCloses, 1);
    // Exactly the selection went to the recognizer.
    EXPECT_EQ(recognizer.lastImageWidth, qRound(120 * screen()->devicePixelRatio()));
    EXPECT_EQ(recognizer.lastImageHeight, qRound(40 * screen()->devicePixelRatio()));
}

TEST_F(CaptureCoordinator, TextInCapitalsGetsSmartCaseOnlyWhenAskedFor) {
    captureText({u"HELLO WORLD"});
    EXPECT_EQ(clipboardText(), u"HELLO WORLD");
    settings.setApplySmartCaseToAllCapsCaptures(true);
    captureText({u"HELLO WORLD"});
    EXPECT_EQ(clipboardText(), u"Hello World");
    captureText({u"OK"}); // fewer than five letters
    EXPECT_EQ(clipboardText(), u"OK");
    EXPECT_EQ(captures.items().front().text, u"OK");
}

TEST_F(CaptureCoordinator, NoTextAndTinySelectionsLeaveTheClipboardAlone) {
    captureText({u" ", u"\n"});
    EXPECT_EQ(bubbles, std::vector<QString>{QStringLiteral("No text detected")});
    // Under 8 points either way once clipped to the screen: nothing at all.
    capture(QRectF(10, 10, 7.9, 100));
    capture(QRectF(QRectF(screen()->geometry()).right() - 5, 10, 100, 100));
    EXPECT_EQ(recognizer.requests, 1);
    EXPECT_EQ(bubbles.size(), 1u);
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(clipboardText(), u"before");
    EXPECT_FALSE(history.canRestore());
    EXPECT_TRUE(captures.items().empty());
}

TEST_F(CaptureCoordinator, FailuresOfCaptureAndRecognitionAreLoggedAndShown) {
    recognizer.fails = true;
    captureText({u"lost"});
    EXPECT_EQ(log.lines, Lines{"ScreenCapture: Capture failed: captureOrRecognition"});
    log.lines.clear();
    grabber.shrinks = true;
    captureText({u"lost"});
    EXPECT_EQ(log.lines, (Lines{"ScreenCapture: Screenshot capture failed",
                                "ScreenCapture: Capture failed: captureOrRecognition"}));
    log.lines.clear();
    capture(QRectF(10, 10, 100, 100), nullptr); // a screen that is gone
    EXPECT_EQ(log.lines, Lines{"ScreenCapture: Capture failed: captureOrRecognition"});
    EXPECT_EQ(bubbles, (std::vector<QString>{failed, failed, failed}));
    EXPECT_EQ(recognizer.requests, 1);
    EXPECT_EQ(clipboardText(), u"before");
}

TEST_F(CaptureCoordinator, ARefusedGrabAsksForThePermissionAgain) {
    grabber.inner.refuses = true;
    coordinator.startCapture();
    access.granted = false; // withdrawn while the overlay was up
    coordinator.overlay().finishSelection({100, 100}, {300, 200}, screen()->geometry());
    ASSERT_TRUE(spinUntil([this] { return !coordinator.isActive(); }));
    EXPECT_EQ(log.lines, (Lines{"ScreenCapture: Shareable content failed: permissionDenied",
                                "ScreenCapture: Capture failed: permissionDenied"}));
    EXPECT_NE(screenRecordingExplanationPanel(), nullptr);
    EXPECT_TRUE(bubbles.empty());
}

TEST_F(CaptureCoordinator, OneCaptureAtATimeOnlyWithPermissionAndCancellingEndsIt) {
    std::vector<bool> changes;
    QObject::connect(&coordinator, &ScreenTextCaptureCoordinator::isActiveChanged,
                     [&](bool active) { changes.push_back(active); });
    coordinator.startCapture();
    coordinator.startCapture();
    EXPECT_EQ(paletteCloses, 1);
    EXPECT_EQ(access.preflights, 1);
    coordinator.cancelCapture();
    EXPECT_FALSE(coordinator.overlay().isOpen());
    coordinator.startCapture();
    coordinator.overlay().cancel(); // Escape
    EXPECT_EQ(changes, (std::vector<bool>{true, false, true, false}));

    access.granted = false;
    coordinator.startCapture();
    EXPECT_FALSE(coordinator.isActive());
    EXPECT_FALSE(coordinator.overlay().isOpen());
    EXPECT_EQ(log.lines, Lines{"ScreenCapture: Capture aborted: permissionDenied"});
}

TEST_F(CaptureCoordinator, ACancelledRecognitionDeliversNothing) {
    HeldTextRecognizer held;
    {
        ScreenTextCaptureCoordinator quitting(services(held));
        quitting.startCapture();
        quitting.overlay().finishSelection({100, 100}, {300, 200}, screen()->geometry());
        ASSERT_TRUE(spinUntil([&] { return held.entered.available() == 1; }));
        quitting.cancelCapture();
        EXPECT_FALSE(quitting.isActive());
        held.gate.release();
        // Going away waits for the worker, which still uses the recognizer.
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(clipboardText(), u"before");
    EXPECT_TRUE(bubbles.empty());
}

TEST(ScreenImageCrop, ScalesThePointRectangleAndStaysInsideThePicture) {
    ScreenImage image{20, 10, 2.0, {}};
    for (std::uint32_t index = 0; index < 200; ++index)
        image.pixels.push_back(index);
    auto part = cropScreenImage(image, QRectF(1, 2, 2.25, 1));
    ASSERT_TRUE(part.has_value());
    EXPECT_EQ(std::pair(part->width, part->height), std::pair(5, 2)); // 4.5 rounds away from zero
    EXPECT_EQ(std::pair(part->pixels.front(), part->pixels.back()), std::pair(82u, 106u));
    // Rounding the origin and the size apart may not push a crop at the edge off the picture.
    EXPECT_TRUE(cropScreenImage(image, QRectF(0.25, 0, 9.75, 5)).has_value());
    EXPECT_FALSE(cropScreenImage(image, QRectF(6, 0, 6, 5)).has_value());
    EXPECT_EQ(cropScreenImage(image, QRectF(0, 0, 0.1, 0.1))->width, 1);
}

} // namespace
} // namespace glyphmill
