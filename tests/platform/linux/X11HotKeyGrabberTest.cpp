// Global hot keys on a real X server: keys typed through XTest (xdotool) reach the grab, another
// client's grab is respected, autorepeat and the lock keys do not get in the way.
#include "platform/linux/X11HotKeyGrabber.h"
#include "platform/linux/X11KeyTable.h"
#include "platform/linux/X11KeyboardMapping.h"
#include "support/SpinUntil.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <gtest/gtest.h>

#include <xcb/xcb.h>

#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace glyphmill {
namespace {

const KeyboardShortcutChord superShiftT{17, carbonModifier::command | carbonModifier::shift};
const KeyboardShortcutChord superShift2{19, carbonModifier::command | carbonModifier::shift};
const KeyboardShortcutChord superAltShiftV{9, carbonModifier::command | carbonModifier::option |
                                                  carbonModifier::shift};

void xdotool(const QStringList &arguments) {
    ASSERT_EQ(QProcess::execute("xdotool", arguments), 0) << arguments.join(' ').toStdString();
}

// Sees the raw key presses before the grabber does (filters installed later
// run first), so a test can wait for autorepeat to have happened.
class RootKeyPressCounter final : public QAbstractNativeEventFilter {
public:
    RootKeyPressCounter() { QCoreApplication::instance()->installNativeEventFilter(this); }
    ~RootKeyPressCounter() override { QCoreApplication::instance()->removeNativeEventFilter(this); }
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *) override {
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if (eventType == "xcb_generic_event_t") {
            const auto type = event->response_type & 0x7F;
            presses += type == XCB_KEY_PRESS;
        }
        return false;
    }
    int presses = 0;
};

// A second X client, as another program holding key grabs would be.
class OtherClient {
public:
    OtherClient() : connection_(xcb_connect(nullptr, nullptr)) {}
    ~OtherClient() { xcb_disconnect(connection_); }
    bool grabKey(std::uint32_t keysym, std::uint16_t modifiers) {
        const auto keycode = X11KeyboardMapping::read(connection_).keycodeFor(keysym);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        auto cookie = xcb_grab_key_checked(connection_, 0, root, modifiers, keycode.value_or(0),
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_generic_error_t *error = xcb_request_check(connection_, cookie);
        std::free(error);
        return error == nullptr;
    }
    void setAutorepeat(bool on) {
        const std::uint32_t mode = on ? XCB_AUTO_REPEAT_MODE_ON : XCB_AUTO_REPEAT_MODE_OFF;
        xcb_change_keyboard_control(connection_, XCB_KB_AUTO_REPEAT_MODE, &mode);
        // A round trip: the server has made the change before the keys typed next reach it.
        std::free(
            xcb_get_keyboard_control_reply(connection_, xcb_get_keyboard_control(connection_), nullptr));
    }
    X11KeyboardMapping mapping() const { return X11KeyboardMapping::read(connection_); }

private:
    xcb_connection_t *connection_;
};

struct X11HotKeys : ::testing::Test {
    X11HotKeyGrabber grabber;
    std::vector<KeyboardShortcutChord> pressed;

    X11HotKeys() {
        grabber.setPressHandler([this](const KeyboardShortcutChord &chord) { pressed.push_back(chord); });
    }
    long timesPressed(const KeyboardShortcutChord &chord) const {
        return std::count(pressed.begin(), pressed.end(), chord);
    }
    // Events arrive in order: once a later chord was seen, every event before it was handled.
    void pressMarkerChord() {
        ASSERT_TRUE(grabber.grab(superShift2));
        xdotool({"key", "super+shift+2"});
        ASSERT_TRUE(spinUntil([&] { return timesPressed(superShift2) > 0; }));
    }
};

TEST_F(X11HotKeys, EveryKeyOfTheTableHasAKeyOnAUSKeyboard) {
    OtherClient client;
    const auto mapping = client.mapping();
    std::vector<std::uint32_t> keyCodes;
    for (std::uint32_t code = 0; code <= 50; ++code) {
        if (code != 10)
            keyCodes.push_back(code);
    }
    for (std::uint32_t code : {51, 53, 76, 115, 116, 117, 119, 121, 122, 120, 99,  118,
                               96, 97, 98, 100, 101, 109, 103, 111, 123, 124, 125, 126})
        keyCodes.push_back(code);
    for (auto code : keyCodes) {
        const auto keysym = keysymForMacKeyCode(code);
        ASSERT_TRUE(keysym) << code;
        EXPECT_TRUE(mapping.keycodeFor(*keysym)) << code;
        EXPECT_EQ(macKeyCodeForKeysym(*keysym), code);
    }
    EXPECT_FALSE(keysymForMacKeyCode(10));
    EXPECT_EQ(macKeyCodeForKeysym(XK_T), 17u);
    EXPECT_EQ(macKeyCodeForKeysym(XK_at), 19u);
    EXPECT_NE(mapping.modifierMaskFor(XK_Num_Lock), 0);
}

TEST_F(X11HotKeys, AGrabbedChordFiresOncePerPressAndNotAfterUngrab) {
    ASSERT_TRUE(grabber.isAvailable());
    ASSERT_TRUE(grabber.grab(superShiftT));
    xdotool({"key", "super+shift+t"});
    ASSERT_TRUE(spinUntil([&] { return timesPressed(superShiftT) > 0; }));

    grabber.ungrab(superShiftT);
    xdotool({"key", "super+shift+t"});
    pressMarkerChord();
    EXPECT_EQ(timesPressed(superShiftT), 1);
}

TEST_F(X11HotKeys, AChordHeldByAnotherClientFailsAloneAndLeavesNoGrabBehind) {
    OtherClient other;
    const std::uint16_t numLock = other.mapping().modifierMaskFor(XK_Num_Lock);
    const std::uint16_t superShift = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
    // Only the NumLock variant: the grabs made before it must be rolled back.
    ASSERT_TRUE(other.grabKey(XK_t, superShift | numLock));

    EXPECT_FALSE(grabber.grab(superShiftT));
    EXPECT_TRUE(grabber.grab(superAltShiftV));
    EXPECT_TRUE(other.grabKey(XK_t, superShift)) << "our partial grab was not released";

    xdotool({"key", "super+alt+shift+v"});
    ASSERT_TRUE(spinUntil([&] { return timesPressed(superAltShiftV) > 0; }));
}

TEST_F(X11HotKeys, HeldKeysFireOnceDespiteAutorepeat) {
    OtherClient settingsClient;
    settingsClient.setAutorepeat(true);
    ASSERT_TRUE(grabber.grab(superShiftT));
    RootKeyPressCounter counter;
    xdotool({"keydown", "super+shift+t"});
    // A few repeated presses of T after the first press of each key.
    ASSERT_TRUE(spinUntil([&] { return counter.presses >= 4; })) << "the server did not repeat the key";
    xdotool({"keyup", "super+shift+t"});
    pressMarkerChord();
    EXPECT_EQ(timesPressed(superShiftT), 1);
}

TEST_F(X11HotKeys, ChordsFireWithNumLockAndCapsLockOn) {
    ASSERT_TRUE(grabber.grab(superShiftT));
    xdotool({"key", "Num_Lock", "Caps_Lock"});
    xdotool({"key", "super+shift+t"});
    xdotool({"key", "Caps_Lock"});
    xdotool({"key", "super+shift+t"});
    xdotool({"key", "Num_Lock"});
    ASSERT_TRUE(spinUntil([&] { return timesPressed(superShiftT) == 2; }));
}

TEST_F(X11HotKeys, WaitsForTheChordToBeReleasedOrReleasesItItself) {
    ASSERT_TRUE(grabber.grab(superAltShiftV));
    bool ran = false;
    xdotool({"keydown", "super+alt+shift+v"});
    ASSERT_TRUE(spinUntil([&] { return timesPressed(superAltShiftV) > 0; }));
    EXPECT_FALSE(grabber.heldKeysOf(superAltShiftV).empty());

    grabber.afterChordReleased(superAltShiftV, [&] { ran = true; });
    EXPECT_FALSE(ran);
    xdotool({"keyup", "v"});
    ASSERT_TRUE(spinUntil([&] { return ran; }));
    EXPECT_TRUE(grabber.heldKeysOf(superAltShiftV).empty()) << "the stuck modifiers were not released";

    ran = false;
    grabber.afterChordReleased(superAltShiftV, [&] { ran = true; });
    EXPECT_TRUE(ran) << "nothing held: runs at once";
}

} // namespace
} // namespace glyphmill
