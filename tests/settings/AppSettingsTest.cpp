#include "settings/AppSettings.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPreferenceStore.h"
#include "settings/preferences/SettingsPreferences.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

PreferenceData bytes(std::string_view text) {
    return PreferenceData(text.begin(), text.end());
}

struct AppSettingsTest : ::testing::Test {
    InMemoryPreferenceStore store;
    InMemoryLoginItem loginItem;
    int hotKeyRegistrations = 0;
    int menuRebuilds = 0;

    std::unique_ptr<AppSettings> load() {
        auto settings = std::make_unique<AppSettings>(store, loginItem);
        settings->setHotKeyReregistration([this] { ++hotKeyRegistrations; });
        settings->setMenuRebuild([this] { ++menuRebuilds; });
        return settings;
    }
};

TEST_F(AppSettingsTest, FirstLaunchReadsDefaultsAndWritesNothing) {
    auto settings = load();
    EXPECT_EQ(settings->textProtectionOptions(), TextProtectionOptions{});
    EXPECT_FALSE(settings->launchAtLogin());
    EXPECT_FALSE(settings->onboardingCompleted());
    EXPECT_FALSE(settings->automaticallyClearFormatting());
    EXPECT_FALSE(settings->applySmartCaseToAllCapsCaptures());
    for (auto id : allKeyboardShortcutIDs) {
        EXPECT_EQ(settings->shortcut(id), defaultChord(id));
        EXPECT_FALSE(settings->shortcutRegistrationFailed(id));
    }
    EXPECT_EQ(store.writeCount(), 0);
    EXPECT_EQ(loginItem.registerCalls + loginItem.unregisterCalls, 0);
}

TEST_F(AppSettingsTest, SwitchesReadFalseOnlyFromAStoredFalse) {
    store.setValue(settingsKeys::preserveURLs, false);
    store.setValue(settingsKeys::preserveEmails, std::u16string(u"false"));
    store.setValue(settingsKeys::correctAllUppercaseProse, false);
    store.setValue(settingsKeys::automaticallyClearFormatting, std::u16string(u"true"));
    store.setValue(settingsKeys::onboardingCompleted, true);
    auto settings = load();
    auto options = settings->textProtectionOptions();
    EXPECT_FALSE(options.preserveURLs);
    EXPECT_TRUE(options.preserveEmails);
    EXPECT_FALSE(options.correctAllUppercaseProse);
    EXPECT_TRUE(options.preserveCodeLikeTokens);
    EXPECT_FALSE(settings->automaticallyClearFormatting()); // a string is not a Boolean
    EXPECT_TRUE(settings->onboardingCompleted());
    EXPECT_EQ(readTextProtectionOptions(store), options); // the command line reads the same
}

TEST_F(AppSettingsTest, UndecodableChordFallsBackToDefaultAndStaysStored) {
    store.setValue("shortcut.titleCase", bytes(R"({"keyCode":17})"));
    store.setValue("shortcut.palette", bytes(R"({"carbonModifiers":4352,"keyCode":0,"extra":1})"));
    auto settings = load();
    EXPECT_EQ(settings->shortcut(KeyboardShortcutID::titleCase), defaultChord(KeyboardShortcutID::titleCase));
    EXPECT_EQ(settings->shortcut(KeyboardShortcutID::palette), (KeyboardShortcutChord{0, 0x1100}));
    EXPECT_EQ(store.dataValue("shortcut.titleCase"), bytes(R"({"keyCode":17})"));
}

TEST_F(AppSettingsTest, EveryWriteIsPersistedAndNotifiedEvenWhenUnchanged) {
    auto settings = load();
    QSignalSpy spy(settings.get(), &AppSettings::preserveFilePathsChanged);
    settings->setPreserveFilePaths(true);
    settings->setPreserveFilePaths(false);
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(store.boolValue(settingsKeys::preserveFilePaths), false);
    EXPECT_FALSE(settings->textProtectionOptions().preserveFilePaths);

    settings->setApplySmartCaseToAllCapsCaptures(true);
    EXPECT_EQ(store.boolValue("smartCaseAllCapsScreenCapture"), true);
    settings->setOnboardingCompleted(true);
    EXPECT_EQ(store.boolValue("onboardingCompletedV11"), true);
}

TEST_F(AppSettingsTest, RegistrationFailedFlagsAreNotPersisted) {
    auto settings = load();
    QSignalSpy spy(settings.get(), &AppSettings::screenCaptureShortcutRegistrationFailedChanged);
    settings->setShortcutRegistrationFailed(KeyboardShortcutID::screenCapture, true);
    EXPECT_TRUE(settings->screenCaptureShortcutRegistrationFailed());
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(store.writeCount(), 0);
}

TEST_F(AppSettingsTest, LoginItemFollowsTheSettingAndRefusalsAreIgnored) {
    store.setValue(settingsKeys::launchAtLogin, true);
    auto settings = load();
    EXPECT_EQ(loginItem.registerCalls, 1); // registered again at every start
    loginItem.refuses = true;
    settings->setLaunchAtLogin(false);
    EXPECT_EQ(loginItem.unregisterCalls, 1);
    EXPECT_EQ(store.boolValue(settingsKeys::launchAtLogin), false);
    EXPECT_FALSE(settings->launchAtLogin());
}

TEST_F(AppSettingsTest, TurningAutomaticClearingOnRequestsOnePassAfterTheWrite) {
    auto settings = load();
    QSignalSpy requested(settings.get(), &AppSettings::automaticClearingRequested);
    settings->setAutomaticallyClearFormatting(true);
    EXPECT_EQ(store.boolValue(settingsKeys::automaticallyClearFormatting), true);
    EXPECT_EQ(requested.count(), 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(requested.count(), 1);
}

TEST_F(AppSettingsTest, ChordHeldByAnotherActionIsRefusedWithoutEffects) {
    auto settings = load();
    int writesBefore = store.writeCount();
    EXPECT_FALSE(
        settings->setShortcut(defaultChord(KeyboardShortcutID::palette), KeyboardShortcutID::titleCase));
    QCoreApplication::processEvents();
    EXPECT_EQ(settings->shortcut(KeyboardShortcutID::titleCase), defaultChord(KeyboardShortcutID::titleCase));
    EXPECT_EQ(store.writeCount(), writesBefore);
    EXPECT_EQ(hotKeyRegistrations, 0);
    EXPECT_EQ(menuRebuilds, 0);
}

TEST_F(AppSettingsTest, AcceptedChordIsPersistedReregisteredAndTheMenuRebuiltLater) {
    auto settings = load();
    // The action's own current chord is accepted like any other.
    EXPECT_TRUE(
        settings->setShortcut(defaultChord(KeyboardShortcutID::titleCase), KeyboardShortcutID::titleCase));
    EXPECT_EQ(hotKeyRegistrations, 1);
    EXPECT_EQ(menuRebuilds, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(menuRebuilds, 1);

    KeyboardShortcutChord chord{40, carbonModifier::control | carbonModifier::option};
    EXPECT_TRUE(settings->setShortcut(chord, KeyboardShortcutID::screenCapture));
    EXPECT_EQ(decodeChordData(*store.dataValue("shortcut.screenCapture")), chord);
    EXPECT_EQ(AppSettings(store, loginItem).shortcut(KeyboardShortcutID::screenCapture), chord);
}

TEST_F(AppSettingsTest, RestoringDefaultsWritesAllFourAndReregistersOnce) {
    auto settings = load();
    settings->setShortcut({0, carbonModifier::command}, KeyboardShortcutID::palette);
    hotKeyRegistrations = 0;
    QCoreApplication::processEvents();
    menuRebuilds = 0;
    int writesBefore = store.writeCount();

    settings->restoreDefaultShortcuts();
    QCoreApplication::processEvents();
    EXPECT_EQ(store.writeCount(), writesBefore + 4);
    EXPECT_EQ(hotKeyRegistrations, 1);
    EXPECT_EQ(menuRebuilds, 1);
    for (auto id : allKeyboardShortcutIDs)
        EXPECT_EQ(decodeChordData(*store.dataValue(preferenceKey(id))), defaultChord(id));
}

TEST_F(AppSettingsTest, ChangesWrittenByAnotherProgramNotifyAsIfMadeHereAndWriteNothing) {
    auto settings = load();
    QSignalSpy urls(settings.get(), &AppSettings::preserveURLsChanged);
    QSignalSpy emails(settings.get(), &AppSettings::preserveEmailsChanged);
    QSignalSpy clearing(settings.get(), &AppSettings::automaticClearingRequested);
    QSignalSpy titleCaseChord(settings.get(), &AppSettings::titleCaseShortcutChanged);
    QSignalSpy paletteChord(settings.get(), &AppSettings::paletteShortcutChanged);
    const int writes = store.writeCount();

    const KeyboardShortcutChord chord{defaultChord(KeyboardShortcutID::titleCase).keyCode,
                                      defaultChord(KeyboardShortcutID::palette).carbonModifiers};
    store.storeFromElsewhere(settingsKeys::preserveURLs, false);
    store.storeFromElsewhere(settingsKeys::launchAtLogin, true);
    store.storeFromElsewhere(settingsKeys::automaticallyClearFormatting, true);
    store.storeFromElsewhere(preferenceKey(KeyboardShortcutID::titleCase), encodeChordData(chord));

    EXPECT_FALSE(settings->preserveURLs());
    EXPECT_EQ(urls.count(), 1);
    EXPECT_EQ(urls.at(0).at(0).toBool(), false);
    EXPECT_EQ(emails.count(), 0) << "unchanged values stay quiet";
    EXPECT_TRUE(settings->launchAtLogin());
    EXPECT_EQ(loginItem.registerCalls, 1);
    EXPECT_EQ(settings->shortcut(KeyboardShortcutID::titleCase), chord);
    EXPECT_EQ(titleCaseChord.count(), 1);
    EXPECT_EQ(paletteChord.count(), 0);
    EXPECT_EQ(hotKeyRegistrations, 1);
    EXPECT_EQ(store.writeCount(), writes);
    QCoreApplication::processEvents();
    EXPECT_EQ(clearing.count(), 1);
    EXPECT_EQ(menuRebuilds, 1);

    // Removed elsewhere: back to the defaults, announced once more.
    store.storeFromElsewhere(settingsKeys::preserveURLs, std::nullopt);
    EXPECT_TRUE(settings->preserveURLs());
    EXPECT_EQ(urls.count(), 2);
}

} // namespace
} // namespace glyphmill
