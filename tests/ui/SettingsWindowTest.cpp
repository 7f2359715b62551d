#include "ui/SettingsWindow.h"
#include "platform/InMemoryHotKeyGrabber.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/RecordingUrlOpener.h"
#include "platform/ScriptedDialogs.h"
#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "support/PlatformWording.h"
#include "ui/ProtectedTermsEditor.h"
#include "ui/ShortcutRecorder.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

using ID = KeyboardShortcutID;

// In-memory services for the shared controllers behind showSettingsWindow; installed anew by each
// test, since other tests of this program install their own.
RecordingUrlOpener &installInMemoryServices() {
    static InMemoryPreferenceStore preferences;
    static InMemoryPasteboard pasteboard;
    static ScriptedDialogs dialogs;
    static RecordingKeystrokeSender keystrokes;
    static InMemoryLoginItem loginItem;
    static InMemoryHotKeyGrabber hotKeys;
    static RecordingUrlOpener urls;
    PlatformServices services;
    services.preferences = &preferences;
    services.pasteboard = &pasteboard;
    services.dialogs = &dialogs;
    services.keystrokes = &keystrokes;
    services.loginItem = &loginItem;
    services.hotKeys = &hotKeys;
    services.urls = &urls;
    installPlatformServices(services);
    urls.requested.clear();
    return urls;
}

struct SettingsWindowTest : ::testing::Test {
    SettingsWindowTest() {
        settings.setHotKeyReregistration([this] { hotKeys.registerHotKeys(); });
        hotKeys.registerHotKeys();
    }

    template <typename Widget = QPushButton> Widget *find(const QString &text) const {
        for (auto *widget : window.findChildren<Widget *>())
            if (widget->text() == text)
                return widget;
        ADD_FAILURE() << "nothing shows " << text.toStdString();
        return nullptr;
    }
    QLabel *labelNamed(const QString &name) const { return window.findChild<QLabel *>(name); }
    QString footer(const char *name) const { return labelNamed(QString::fromLatin1(name))->text(); }
    ShortcutRecordingMonitor &monitor() const { return window.recordingMonitor(); }

    RecordingUrlOpener &urls = installInMemoryServices();
    InMemoryPreferenceStore store;
    InMemoryLoginItem loginItem;
    InMemoryHotKeyGrabber grabber;
    AppSettings settings{store, loginItem};
    HotKeyManager hotKeys{grabber, settings};
    ProtectedTermsStore terms{store};
    SettingsWindowContent content{{"https://example.com/review", "hello@example.com", ""},
                                  QStringLiteral("2.3 (45)")};
    SettingsWindow window{terms, settings, hotKeys, content};
};

TEST(SettingsWindowOpening, OneWindowIsBuiltAndBroughtBackAfterClosing) {
    installInMemoryServices();
    InMemoryPreferenceStore store;
    ProtectedTermsStore terms{store};
    showSettingsWindow(terms);
    QWidget *first = existingSettingsWindow();
    ASSERT_NE(first, nullptr);
    showSettingsWindow(terms);
    EXPECT_EQ(existingSettingsWindow(), first);
    int settingsWindows = 0;
    for (auto *widget : QApplication::topLevelWidgets())
        settingsWindows += widget->objectName() == QStringLiteral("protected-terms");
    EXPECT_EQ(settingsWindows, 1);

    EXPECT_EQ(first->windowTitle(), QStringLiteral("Settings"));
    EXPECT_EQ(first->minimumSize(), QSize(520, 680));
    EXPECT_EQ(first->maximumSize(), QSize(520, 680));
    const auto flags = first->windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));

    first->findChild<QPushButton *>(QStringLiteral("doneButton"))->click();
    EXPECT_FALSE(first->isVisible());
    EXPECT_EQ(existingSettingsWindow(), first) << "closing keeps the window";
    showSettingsWindow(terms);
    EXPECT_TRUE(first->isVisible());
    first->close();
}

TEST_F(SettingsWindowTest, SectionsComeInOrderAndTheDoneButtonIsLabelledForAssistiveTechnology) {
    const QStringList headers{"General",  "Keyboard Shortcuts", "Smart Case", "Screen Text Capture",
                              "Services", "Protected Terms",    "About"};
    QStringList shown;
    for (auto *label : window.findChildren<QLabel *>())
        if (headers.contains(label->text()))
            shown << label->text();
    EXPECT_EQ(shown, headers);
    auto *done = window.findChild<QPushButton *>(QStringLiteral("doneButton"));
    EXPECT_EQ(done->text(), QStringLiteral("Done"));
    EXPECT_EQ(done->accessibleName(), QStringLiteral("Close Settings"));
    EXPECT_TRUE(done->isDefault());
}

TEST_F(SettingsWindowTest, TogglesFollowTheSettingsBothWays) {
    auto *launch = find<QCheckBox>(QStringLiteral("Launch at Login"));
    EXPECT_EQ(launch->accessibleName(), QStringLiteral("Launch Glyphmill at login"));
    launch->click();
    EXPECT_TRUE(settings.launchAtLogin());
    EXPECT_TRUE(loginItem.registered);

    auto *urlsToggle = find<QCheckBox>(QStringLiteral("Preserve URLs"));
    EXPECT_TRUE(urlsToggle->isChecked());
    settings.setPreserveURLs(false);
    EXPECT_FALSE(urlsToggle->isChecked());
    find<QCheckBox>(QStringLiteral("Apply Smart Case when captured text is ALL CAPS"))->click();
    EXPECT_TRUE(settings.applySmartCaseToAllCapsCaptures());
}

TEST_F(SettingsWindowTest, FailureNotesAppearOnlyWhileTheirFlagIsRaised) {
    auto *palette = labelNamed(QStringLiteral("paletteShortcutNote"));
    auto *paste = labelNamed(QStringLiteral("pastePlainTextShortcutNote"));
    EXPECT_TRUE(palette->isHidden());
    settings.setPaletteShortcutRegistrationFailed(true);
    EXPECT_FALSE(palette->isHidden());
    EXPECT_TRUE(paste->isHidden());
    EXPECT_EQ(
        palette->text(),
        QStringLiteral(
            "The floating palette shortcut could not be registered because another app may be using it."));
    settings.setPaletteShortcutRegistrationFailed(false);
    EXPECT_TRUE(palette->isHidden());
}

TEST_F(SettingsWindowTest, FootersShowTheCurrentChords) {
    EXPECT_EQ(
        footer("generalFooter"),
        QStringLiteral(
            "Automatically Clear Formatting replaces copied rich text with plain text. Shift+Super+T applies "
            "Title Case to the clipboard. Ctrl+Alt+Super+T opens the floating palette. Shift+Super+2 "
            "captures text "
            "from the screen."));
    ASSERT_TRUE(
        settings.setShortcut({14, carbonModifier::control | carbonModifier::option}, ID::screenCapture));
    EXPECT_TRUE(
        footer("generalFooter").endsWith(QStringLiteral("Ctrl+Alt+E captures text from the screen.")));
    EXPECT_TRUE(footer("screenTextCaptureFooter").startsWith(QStringLiteral("Press Ctrl+Alt+E and drag")));
    settings.restoreDefaultShortcuts();
    EXPECT_TRUE(footer("screenTextCaptureFooter").startsWith(QStringLiteral("Press Shift+Super+2 and drag")));
}

TEST_F(SettingsWindowTest, RestoreDefaultShortcutsAndClosingTheWindowEndRecording) {
    ASSERT_TRUE(settings.setShortcut({0, carbonModifier::control}, ID::palette));
    window.show();
    find(QStringLiteral("Ctrl+A"))->click();
    EXPECT_EQ(monitor().recordingID(), ID::palette);
    EXPECT_TRUE(grabber.grabbed.empty());
    find(QStringLiteral("Restore Default Shortcuts"))->click();
    EXPECT_EQ(monitor().recordingID(), std::nullopt);
    EXPECT_EQ(settings.shortcut(ID::palette), defaultChord(ID::palette));
    EXPECT_EQ(grabber.grabbed.size(), 4u);

    find(QStringLiteral("Shift+Super+T"))->click();
    EXPECT_TRUE(grabber.grabbed.empty());
    window.close();
    EXPECT_EQ(monitor().recordingID(), std::nullopt);
    EXPECT_EQ(grabber.grabbed.size(), 4u) << "a hidden window must not keep the hot keys released";
}

TEST_F(SettingsWindowTest, ProtectedTermsOpensOneSheet) {
    window.show();
    auto *open = find<SettingsNavigationButton>(QStringLiteral("Protected Terms…"));
    EXPECT_EQ(open->accessibleName(), QStringLiteral("Protected Terms"));
    EXPECT_EQ(open->accessibleDescription(), QStringLiteral("Opens the list of protected terms"));
    open->click();
    open->click();
    EXPECT_EQ(window.findChildren<ProtectedTermsEditor *>().size(), 1);
    ASSERT_NE(window.protectedTermsSheet(), nullptr);
    EXPECT_EQ(window.protectedTermsSheet()->windowModality(), Qt::WindowModal);
    window.protectedTermsSheet()->close();
    window.close();
}

TEST_F(SettingsWindowTest, AboutShowsTheVersionAndOpensOnlyLinksWithAnAddress) {
    EXPECT_EQ(labelNamed(QStringLiteral("versionValue"))->text(), QStringLiteral("2.3 (45)"));
    auto *review = find(QStringLiteral("Love Glyphmill? Your review helps us grow!"));
    auto *feedback = find(QStringLiteral("Feedback / Questions"));
    auto *more = find(QStringLiteral("More Apps"));
    EXPECT_EQ(feedback->accessibleName(), QStringLiteral("Send feedback or questions by email"));
    EXPECT_FALSE(more->isEnabled());
    review->click();
    feedback->click();
    more->click();
    EXPECT_EQ(urls.requested,
              (std::vector<std::string>{"https://example.com/review", "mailto:hello@example.com"}));
}

TEST(SettingsVersion, MissingPartsReadAsAnEmDash) {
    EXPECT_EQ(versionString("0.1.0", "1"), QStringLiteral("0.1.0 (1)"));
    EXPECT_EQ(versionString("0.1.0", ""), QStringLiteral("0.1.0 (—)"));
    EXPECT_EQ(versionString("", ""), QStringLiteral("— (—)"));
}

TEST_F(SettingsWindowTest, NoTextSpeaksOfAnotherPlatform) {
    for (const bool failed : {false, true}) {
        settings.setPaletteShortcutRegistrationFailed(failed);
        settings.setTitleCaseShortcutRegistrationFailed(failed);
        settings.setScreenCaptureShortcutRegistrationFailed(failed);
        settings.setPastePlainTextShortcutRegistrationFailed(failed);
        EXPECT_EQ(glyphmill::testing::textsNamingAnotherPlatform(glyphmill::testing::textsShownBy(window)),
                  QStringList());
    }
}

} // namespace
} // namespace glyphmill
