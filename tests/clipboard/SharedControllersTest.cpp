// The shared instances are wired to one another and to the installed platform services.
#include "clipboard/CaptureHistory.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/ScriptedDialogs.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TEST(SharedControllers, OneCommandReachesTheInstalledServicesAndTheOtherSharedControllers) {
    // Installed once for the whole process, as the application does at start.
    static InMemoryPreferenceStore preferences;
    static InMemoryPasteboard clipboard;
    static ScriptedDialogs dialogs;
    static RecordingKeystrokeSender keystrokes;
    static InMemoryLoginItem loginItem;
    installPlatformServices({&preferences, &clipboard, &dialogs, &keystrokes, &loginItem});

    AppSettings::shared().setPreserveURLs(false);
    clipboard.copyTextFromOtherApplication(u"see https://example.com/Path");
    ClipboardManager::shared().transformClipboard(TextTransformKind::uppercase, nullptr, true);

    EXPECT_EQ(clipboard.string("text/plain"), u"SEE HTTPS://EXAMPLE.COM/PATH");
    EXPECT_TRUE(ClipboardHistory::shared().canRestore());
    EXPECT_TRUE(ClipboardMonitor::shared().hasUsableText());
    EXPECT_EQ(preferences.boolValue("smartCase.preserveURLs"), false);

    ClipboardManager::shared().pasteAsPlainText(false);
    EXPECT_EQ(keystrokes.pasteKeystrokes, 1);

    CaptureHistory::shared().add(u"captured");
    EXPECT_TRUE(preferences.dataValue("captureHistory.items").has_value());
    QCoreApplication::processEvents();
}

} // namespace
} // namespace glyphmill
