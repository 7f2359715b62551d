#include "ui/ShortcutRecorder.h"
#include "platform/InMemoryHotKeyGrabber.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/linux/QtKeyTranslation.h"
#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <gtest/gtest.h>

#include <memory>

namespace glyphmill {
namespace {

using ID = KeyboardShortcutID;
using Chords = std::vector<KeyboardShortcutChord>;

constexpr auto command = Qt::MetaModifier;
constexpr auto commandShift = Qt::MetaModifier | Qt::ShiftModifier;

struct ShortcutRecorderTest : ::testing::Test {
    ShortcutRecorderTest() {
        installKeyEventTranslator(translateKeyEvent);
        settings.setHotKeyReregistration([this] { hotKeys.registerHotKeys(); });
        hotKeys.registerHotKeys();
        monitor->setBeep([this] { ++beeps; });
    }

    // As the window system delivers it: to whatever has the focus, here a text field.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, bool autoRepeat = false) {
        const QString text =
            key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde ? QString(QChar(key)).toLower() : QString();
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text, autoRepeat);
        QCoreApplication::sendEvent(&focus, &event);
    }
    bool hotKeysRegistered() const { return grabber.grabbed.size() == 4; }

    InMemoryPreferenceStore store;
    InMemoryLoginItem loginItem;
    InMemoryHotKeyGrabber grabber;
    AppSettings settings{store, loginItem};
    HotKeyManager hotKeys{grabber, settings};
    std::unique_ptr<ShortcutRecordingMonitor> monitor =
        std::make_unique<ShortcutRecordingMonitor>(settings, hotKeys);
    QLineEdit focus;
    int beeps = 0;
};

TEST_F(ShortcutRecorderTest, HotKeysStayReleasedForTheWholeRecordingEvenAcrossRows) {
    monitor->setRecordingID(ID::palette);
    EXPECT_TRUE(grabber.grabbed.empty());
    EXPECT_FALSE(grabber.press(defaultChord(ID::palette))) << "the chord must reach the recorder instead";

    const auto attempts = grabber.attempts.size();
    monitor->setRecordingID(ID::titleCase);
    EXPECT_EQ(grabber.attempts.size(), attempts) << "switching rows must not register in between";
    EXPECT_TRUE(grabber.grabbed.empty());

    press(Qt::Key_Escape);
    EXPECT_EQ(monitor->recordingID(), std::nullopt);
    EXPECT_TRUE(hotKeysRegistered());
    EXPECT_EQ(settings.shortcut(ID::titleCase), defaultChord(ID::titleCase)) << "Escape changes nothing";

    // Ending twice does not register twice.
    const auto afterEnd = grabber.attempts.size();
    monitor->endRecording();
    EXPECT_EQ(grabber.attempts.size(), afterEnd);
}

TEST_F(ShortcutRecorderTest, AcceptedChordIsStoredAndGrabbedWhenRecordingEnds) {
    monitor->setRecordingID(ID::titleCase);
    press(Qt::Key_K, commandShift | Qt::ControlModifier);
    const KeyboardShortcutChord recorded{40, carbonModifier::command | carbonModifier::shift |
                                                 carbonModifier::control};
    EXPECT_EQ(settings.shortcut(ID::titleCase), recorded);
    EXPECT_EQ(monitor->recordingID(), std::nullopt);
    EXPECT_EQ(beeps, 0);
    EXPECT_TRUE(hotKeysRegistered());
    EXPECT_TRUE(grabber.press(recorded));
}

TEST_F(ShortcutRecorderTest, KeysThatAreNoChordBeepOrAreIgnoredAndEveryPressIsSwallowed) {
    monitor->setRecordingID(ID::screenCapture);
    press(Qt::Key_A);
    press(Qt::Key_A, Qt::ShiftModifier);
    EXPECT_EQ(beeps, 2) << "a chord needs Control, Option or Command";
    press(Qt::Key_Control, Qt::ControlModifier);
    press(Qt::Key_Meta, Qt::MetaModifier);
    press(Qt::Key_Shift, Qt::ShiftModifier);
    EXPECT_EQ(beeps, 2) << "a modifier alone is not an attempt";
    press(Qt::Key_5, commandShift, /*autoRepeat=*/true);
    EXPECT_EQ(beeps, 2);
    EXPECT_EQ(settings.shortcut(ID::screenCapture), defaultChord(ID::screenCapture)) << "repeats are ignored";
    EXPECT_EQ(monitor->recordingID(), ID::screenCapture);
    EXPECT_TRUE(focus.text().isEmpty()) << "no key press may reach the focused field while recording";

    monitor->endRecording();
    press(Qt::Key_A);
    EXPECT_EQ(focus.text(), QStringLiteral("a")) << "once recording ended, typing reaches the field again";
    EXPECT_EQ(beeps, 2);
}

TEST_F(ShortcutRecorderTest, ChordOfAnotherActionIsRefusedAndBothKeepTheirChords) {
    monitor->setRecordingID(ID::titleCase);
    press(Qt::Key_T, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(monitor->recordingID(), ID::titleCase);
    EXPECT_EQ(settings.shortcut(ID::titleCase), defaultChord(ID::titleCase));
    EXPECT_EQ(settings.shortcut(ID::palette), defaultChord(ID::palette));
    EXPECT_TRUE(grabber.grabbed.empty());
}

TEST_F(ShortcutRecorderTest, DeleteAndForwardDeleteRestoreTheRowsDefault) {
    const KeyboardShortcutChord custom{0, carbonModifier::option};
    ASSERT_TRUE(settings.setShortcut(custom, ID::pastePlainText));
    monitor->setRecordingID(ID::pastePlainText);
    press(Qt::Key_Backspace, command);
    EXPECT_EQ(settings.shortcut(ID::pastePlainText), defaultChord(ID::pastePlainText));
    EXPECT_EQ(monitor->recordingID(), std::nullopt);

    ASSERT_TRUE(settings.setShortcut(custom, ID::titleCase));
    monitor->setRecordingID(ID::titleCase);
    press(Qt::Key_Delete);
    EXPECT_EQ(settings.shortcut(ID::titleCase), defaultChord(ID::titleCase));
    EXPECT_EQ(monitor->recordingID(), std::nullopt);
    EXPECT_EQ(beeps, 0);
    EXPECT_TRUE(hotKeysRegistered());
}

TEST_F(ShortcutRecorderTest, MonitorGoingAwayWhileRecordingRegistersTheHotKeysAgain) {
    monitor->setRecordingID(ID::palette);
    monitor.reset();
    EXPECT_TRUE(hotKeysRegistered());
    press(Qt::Key_B);
    EXPECT_EQ(focus.text(), QStringLiteral("b"));
}

TEST_F(ShortcutRecorderTest, RowShowsTheChordOrTypeShortcutAndItsButtonTogglesRecording) {
    ShortcutRecorderRow palette(QStringLiteral("Floating Palette"), ID::palette, settings, *monitor);
    ShortcutRecorderRow titleCase(QStringLiteral("Title Case"), ID::titleCase, settings, *monitor);
    EXPECT_EQ(palette.button()->text(), QStringLiteral("Ctrl+Alt+Super+T"));
    EXPECT_EQ(palette.accessibleValue(), QStringLiteral("Ctrl+Alt+Super+T"));
    EXPECT_GE(palette.button()->minimumWidth(), 96);
    EXPECT_EQ(palette.button()->accessibleName(), QStringLiteral("Floating Palette"));

    palette.button()->click();
    EXPECT_EQ(palette.button()->text(), QStringLiteral("Type Shortcut"));
    const auto *accessible = QAccessible::queryAccessibleInterface(palette.button());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Value), QStringLiteral("Recording a new shortcut"));
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Floating Palette"));
    titleCase.button()->click();
    EXPECT_EQ(monitor->recordingID(), ID::titleCase);
    EXPECT_EQ(palette.button()->text(), QStringLiteral("Ctrl+Alt+Super+T"));

    press(Qt::Key_Y, Qt::AltModifier);
    EXPECT_EQ(titleCase.button()->text(), QStringLiteral("Alt+Y")) << "the row follows the stored chord";

    titleCase.button()->click();
    titleCase.button()->click();
    EXPECT_EQ(monitor->recordingID(), std::nullopt) << "pressing the recording row's button stops it";
    EXPECT_TRUE(hotKeysRegistered());
}

} // namespace
} // namespace glyphmill
