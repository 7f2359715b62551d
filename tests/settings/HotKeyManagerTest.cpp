#include "settings/HotKeyManager.h"
#include "platform/InMemoryHotKeyGrabber.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPreferenceStore.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

using Chords = std::vector<KeyboardShortcutChord>;

const KeyboardShortcutChord titleCaseChord = defaultChord(KeyboardShortcutID::titleCase);
const KeyboardShortcutChord paletteChord = defaultChord(KeyboardShortcutID::palette);
const KeyboardShortcutChord captureChord = defaultChord(KeyboardShortcutID::screenCapture);
const KeyboardShortcutChord pasteChord = defaultChord(KeyboardShortcutID::pastePlainText);

void runMainThreadTasks() {
    QCoreApplication::sendPostedEvents();
}

struct HotKeyManagerTest : ::testing::Test {
    InMemoryPreferenceStore store;
    InMemoryLoginItem loginItem;
    InMemoryHotKeyGrabber grabber;
    AppSettings settings{store, loginItem};
    std::unique_ptr<HotKeyManager> manager = std::make_unique<HotKeyManager>(grabber, settings);
    std::vector<std::string> actions;

    HotKeyManagerTest() {
        manager->onOpenPalette = [this] { actions.push_back("palette"); };
        manager->onCaptureScreen = [this] { actions.push_back("capture"); };
        manager->titleCaseAction = [this] { actions.push_back("titleCase"); };
        manager->pastePlainTextAction = [this] { actions.push_back("paste"); };
    }

    std::array<bool, 4> flags() const {
        return {settings.titleCaseShortcutRegistrationFailed(), settings.paletteShortcutRegistrationFailed(),
                settings.screenCaptureShortcutRegistrationFailed(),
                settings.pastePlainTextShortcutRegistrationFailed()};
    }
};

TEST_F(HotKeyManagerTest, RegistersInOrderAndRegisteringAgainReplacesTheGrabs) {
    manager->registerHotKeys();
    manager->registerHotKeys();
    const Chords inOrder{titleCaseChord, paletteChord, captureChord, pasteChord};
    EXPECT_EQ(grabber.grabbed, inOrder);
    Chords attemptedTwice = inOrder;
    attemptedTwice.insert(attemptedTwice.end(), inOrder.begin(), inOrder.end());
    EXPECT_EQ(grabber.attempts, attemptedTwice);

    manager->unregisterHotKeys();
    EXPECT_TRUE(grabber.grabbed.empty());
    EXPECT_FALSE(grabber.press(paletteChord));
}

TEST_F(HotKeyManagerTest, ChordHeldElsewhereRaisesOnlyItsFlagInALaterTask) {
    grabber.takenByOthers = {paletteChord};
    manager->registerHotKeys();
    EXPECT_EQ(flags(), (std::array{false, false, false, false})) << "flags are set from a later task";
    runMainThreadTasks();
    EXPECT_EQ(flags(), (std::array{false, true, false, false}));
    EXPECT_FALSE(manager->isRegistered(HotKeyManager::paletteID));

    EXPECT_TRUE(grabber.press(titleCaseChord));
    EXPECT_TRUE(grabber.press(captureChord));
    runMainThreadTasks();
    EXPECT_EQ(actions, (std::vector<std::string>{"titleCase", "capture"}));

    // Unregistering keeps the flags; the next registration recomputes them.
    manager->unregisterHotKeys();
    runMainThreadTasks();
    EXPECT_TRUE(settings.paletteShortcutRegistrationFailed());
    grabber.takenByOthers.clear();
    manager->registerHotKeys();
    runMainThreadTasks();
    EXPECT_EQ(flags(), (std::array{false, false, false, false}));
}

TEST_F(HotKeyManagerTest, WithoutGlobalHotKeysEveryFlagIsRaisedAndNothingIsGrabbed) {
    grabber.available = false;
    manager->registerHotKeys();
    runMainThreadTasks();
    EXPECT_EQ(flags(), (std::array{true, true, true, true}));
    EXPECT_TRUE(grabber.attempts.empty());
}

TEST_F(HotKeyManagerTest, PressesRunTheirActionsLaterOnTheMainThread) {
    manager->registerHotKeys();
    EXPECT_TRUE(grabber.press(paletteChord));
    EXPECT_TRUE(grabber.press(titleCaseChord));
    EXPECT_TRUE(grabber.press(captureChord));
    EXPECT_TRUE(actions.empty()) << "the press itself only schedules";
    runMainThreadTasks();
    EXPECT_EQ(actions, (std::vector<std::string>{"palette", "titleCase", "capture"}));

    EXPECT_FALSE(manager->handleHotKey(5));
    EXPECT_FALSE(manager->handleHotKey(0));
    EXPECT_TRUE(manager->handleHotKey(HotKeyManager::paletteID));
    runMainThreadTasks();
    EXPECT_EQ(actions.size(), 4u);
}

TEST_F(HotKeyManagerTest, PasteWaitsUntilTheChordIsReleased) {
    manager->registerHotKeys();
    grabber.keysHeld = true;
    EXPECT_TRUE(grabber.press(pasteChord));
    runMainThreadTasks();
    EXPECT_TRUE(actions.empty());
    grabber.releaseKeys();
    EXPECT_EQ(actions, (std::vector<std::string>{"paste"}));
}

TEST_F(HotKeyManagerTest, ChangedChordIsGrabbedInPlaceOfTheOldOne) {
    settings.setHotKeyReregistration([this] { manager->registerHotKeys(); });
    manager->registerHotKeys();
    const KeyboardShortcutChord newPalette{0, carbonModifier::control | carbonModifier::option};
    ASSERT_TRUE(settings.setShortcut(newPalette, KeyboardShortcutID::palette));

    EXPECT_FALSE(grabber.press(paletteChord));
    EXPECT_TRUE(grabber.press(newPalette));
    runMainThreadTasks();
    EXPECT_EQ(actions, (std::vector<std::string>{"palette"}));
    EXPECT_EQ(grabber.grabbed.size(), 4u);
}

TEST_F(HotKeyManagerTest, TasksOfADestroyedManagerDoNothing) {
    manager->registerHotKeys();
    grabber.keysHeld = true;
    EXPECT_TRUE(grabber.press(paletteChord));
    EXPECT_TRUE(grabber.press(pasteChord));
    runMainThreadTasks(); // the paste now waits for the keys
    EXPECT_TRUE(grabber.press(captureChord));
    manager.reset();
    EXPECT_TRUE(grabber.grabbed.empty());
    runMainThreadTasks();
    grabber.releaseKeys();
    EXPECT_EQ(actions, (std::vector<std::string>{"palette"}));
}

} // namespace
} // namespace glyphmill
