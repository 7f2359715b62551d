#include "platform/linux/X11HotKeyGrabber.h"

#include "platform/linux/X11KeyTable.h"
#include "platform/linux/XTestKeystrokeSender.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QTimer>

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>

// X11 last: its macros (None, KeyPress, Bool…) clash with Qt names.
#include <X11/Xlib.h>
#include <X11/keysym.h>

namespace glyphmill {

namespace {

constexpr std::uint16_t shiftMask = XCB_MOD_MASK_SHIFT;
constexpr std::uint16_t capsLockMask = XCB_MOD_MASK_LOCK;
constexpr std::uint16_t controlMask = XCB_MOD_MASK_CONTROL;
// Where the usual keyboard mappings put Alt and Super, for keyboards that bind neither.
constexpr std::uint16_t fallbackAltMask = XCB_MOD_MASK_1;
constexpr std::uint16_t fallbackSuperMask = XCB_MOD_MASK_4;
// The core modifiers; the pointer buttons share the state field.
constexpr std::uint16_t allModifiersMask = 0xFF;

constexpr auto releasePollInterval = std::chrono::milliseconds(20);
constexpr auto releaseWaitLimit = std::chrono::milliseconds(1000);

std::uint16_t modifierMaskOf(const X11KeyboardMapping &mapping, std::initializer_list<std::uint32_t> keysyms,
                             std::uint16_t fallback) {
    for (auto keysym : keysyms) {
        if (auto mask = mapping.modifierMaskFor(keysym))
            return mask;
    }
    return fallback;
}

std::uint16_t altMask(const X11KeyboardMapping &mapping) {
    return modifierMaskOf(mapping, {XK_Alt_L, XK_Alt_R, XK_Meta_L}, fallbackAltMask);
}

std::uint16_t superMask(const X11KeyboardMapping &mapping) {
    return modifierMaskOf(mapping, {XK_Super_L, XK_Super_R}, fallbackSuperMask);
}

std::uint16_t xModifiersOf(std::uint32_t carbonModifiers, const X11KeyboardMapping &mapping) {
    std::uint16_t modifiers = 0;
    if (carbonModifiers & carbonModifier::shift)
        modifiers |= shiftMask;
    if (carbonModifiers & carbonModifier::control)
        modifiers |= controlMask;
    if (carbonModifiers & carbonModifier::option)
        modifiers |= altMask(mapping);
    if (carbonModifiers & carbonModifier::command)
        modifiers |= superMask(mapping);
    return modifiers;
}

xcb_window_t defaultRootWindow(xcb_connection_t *connection, Display *display) {
    if (display)
        return static_cast<xcb_window_t>(DefaultRootWindow(display));
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

} // namespace

X11HotKeyGrabber::X11HotKeyGrabber(QObject *parent) : QObject(parent) {
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    // The offscreen platform offers the interface too; only a live connection means a display.
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    if (!connection || xcb_connection_has_error(connection))
        return;
    connection_ = connection;
    rootWindow_ = defaultRootWindow(connection, x11->display());
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeyGrabber::~X11HotKeyGrabber() {
    if (!connection_)
        return;
    if (auto *application = QCoreApplication::instance())
        application->removeNativeEventFilter(this);
    for (const auto &grab : grabs_)
        ungrabCombinations(grab.keys);
    xcb_flush(connection_);
}

std::optional<X11HotKeyGrabber::XKeyCombination>
X11HotKeyGrabber::translate(const KeyboardShortcutChord &chord, const X11KeyboardMapping &mapping) {
    const auto keysym = keysymForMacKeyCode(chord.keyCode);
    if (!keysym)
        return std::nullopt;
    const auto keycode = mapping.keycodeFor(*keysym);
    if (!keycode)
        return std::nullopt;
    return XKeyCombination{*keycode, xModifiersOf(chord.carbonModifiers, mapping)};
}

std::vector<std::uint16_t> X11HotKeyGrabber::lockCombinations(const X11KeyboardMapping &mapping) const {
    const std::uint16_t numLock = mapping.modifierMaskFor(XK_Num_Lock);
    if (numLock == 0)
        return {0, capsLockMask};
    return {0, capsLockMask, numLock, static_cast<std::uint16_t>(capsLockMask | numLock)};
}

bool X11HotKeyGrabber::grab(const KeyboardShortcutChord &chord) {
    if (!connection_)
        return false;
    const auto mapping = X11KeyboardMapping::read(connection_);
    const auto keys = translate(chord, mapping);
    if (!keys)
        return false;
    // The server would merge a second grab of the same keys into ours without an error.
    const bool alreadyOurs = std::any_of(grabs_.begin(), grabs_.end(), [&keys](const Grab &grab) {
        return grab.keys.keycode == keys->keycode && grab.keys.modifiers == keys->modifiers;
    });
    if (alreadyOurs)
        return false;
    numLockMask_ = mapping.modifierMaskFor(XK_Num_Lock);

    // All requests first, then one round trip per answer: an error names its own request.
    std::vector<xcb_void_cookie_t> cookies;
    for (auto locks : lockCombinations(mapping)) {
        cookies.push_back(xcb_grab_key_checked(connection_, 0, rootWindow_,
                                               static_cast<std::uint16_t>(keys->modifiers | locks),
                                               keys->keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool grabbed = true;
    for (auto cookie : cookies) {
        if (xcb_generic_error_t *error = xcb_request_check(connection_, cookie)) {
            // BadAccess is the usual refusal (another client grabbed the combination); any other
            // error leaves the chord unusable just the same.
            grabbed = false;
            std::free(error);
        }
    }
    if (!grabbed) {
        // UngrabKey releases only our own grabs, so the other client's stays intact.
        ungrabCombinations(*keys);
        xcb_flush(connection_);
        return false;
    }
    grabs_.push_back({chord, *keys});
    return true;
}

void X11HotKeyGrabber::ungrab(const KeyboardShortcutChord &chord) {
    const auto found = std::find_if(grabs_.begin(), grabs_.end(),
                                    [&chord](const Grab &grab) { return grab.chord == chord; });
    if (found == grabs_.end())
        return;
    ungrabCombinations(found->keys);
    xcb_flush(connection_);
    // A key held across the change would otherwise look like autorepeat when pressed next.
    std::erase(keysDown_, found->keys.keycode);
    grabs_.erase(found);
}

void X11HotKeyGrabber::ungrabCombinations(const XKeyCombination &keys) {
    const auto mapping = X11KeyboardMapping::read(connection_);
    auto locks = lockCombinations(mapping);
    // The NumLock bit may have moved since the grab; release both.
    if (numLockMask_ != 0 && mapping.modifierMaskFor(XK_Num_Lock) != numLockMask_) {
        locks.push_back(numLockMask_);
        locks.push_back(static_cast<std::uint16_t>(numLockMask_ | capsLockMask));
    }
    for (auto lock : locks) {
        xcb_ungrab_key(connection_, keys.keycode, rootWindow_,
                       static_cast<std::uint16_t>(keys.modifiers | lock));
    }
}

bool X11HotKeyGrabber::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *) {
    if (eventType != "xcb_generic_event_t" || grabs_.empty())
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const auto type = event->response_type & 0x7F;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
        return false;
    // Press and release events have the same layout.
    const auto *key = static_cast<const xcb_key_press_event_t *>(message);
    // Our grabs report on the root window; key events of our own windows are not ours to take.
    if (key->event != rootWindow_)
        return false;
    return handleKeyEvent(type == XCB_KEY_PRESS, key->detail, key->state, key->time);
}

bool X11HotKeyGrabber::handleKeyEvent(bool pressed, std::uint8_t keycode, std::uint16_t state,
                                      std::uint32_t time) {
    const auto modifiers =
        static_cast<std::uint16_t>(state & allModifiersMask & ~(capsLockMask | numLockMask_));
    const bool grabbedKey = std::any_of(grabs_.begin(), grabs_.end(),
                                        [keycode](const Grab &grab) { return grab.keys.keycode == keycode; });
    if (!grabbedKey)
        return false;
    if (!pressed) {
        std::erase(keysDown_, keycode);
        lastRelease_ = {keycode, time};
        return true;
    }
    const bool repeated = std::find(keysDown_.begin(), keysDown_.end(), keycode) != keysDown_.end() ||
                          (lastRelease_ && *lastRelease_ == std::pair{keycode, time});
    if (!repeated)
        keysDown_.push_back(keycode);
    const auto found = std::find_if(grabs_.begin(), grabs_.end(), [&](const Grab &grab) {
        return grab.keys.keycode == keycode && grab.keys.modifiers == modifiers;
    });
    if (found != grabs_.end() && !repeated)
        reportPress(found->chord);
    return true;
}

std::vector<std::uint8_t> X11HotKeyGrabber::heldKeysOf(const KeyboardShortcutChord &chord) const {
    std::vector<std::uint8_t> held;
    if (!connection_)
        return held;
    const auto mapping = X11KeyboardMapping::read(connection_);
    const auto keys = translate(chord, mapping);
    if (!keys)
        return held;
    std::vector<std::uint8_t> candidates = mapping.keycodesOfModifiers(keys->modifiers);
    candidates.push_back(keys->keycode);

    struct FreeReply {
        void operator()(void *reply) const { std::free(reply); }
    };
    std::unique_ptr<xcb_query_keymap_reply_t, FreeReply> keymap(
        xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    if (!keymap)
        return held;
    for (auto keycode : candidates) {
        const bool down = (keymap->keys[keycode / 8] >> (keycode % 8)) & 1;
        if (down && std::find(held.begin(), held.end(), keycode) == held.end())
            held.push_back(keycode);
    }
    return held;
}

void X11HotKeyGrabber::afterChordReleased(const KeyboardShortcutChord &chord, std::function<void()> then) {
    if (heldKeysOf(chord).empty()) {
        then();
        return;
    }
    auto *poll = new QTimer(this);
    poll->setInterval(releasePollInterval);
    const QDeadlineTimer deadline(releaseWaitLimit);
    connect(poll, &QTimer::timeout, this, [this, poll, chord, deadline, then = std::move(then)] {
        const auto held = heldKeysOf(chord);
        if (!held.empty() && !deadline.hasExpired())
            return;
        // Keys still down after the limit are most likely stuck (a lost release); lift them so
        // the keystroke that follows is not combined with them.
        if (!held.empty())
            XTestKeystrokeSender::releaseKeys(held);
        poll->stop();
        poll->deleteLater();
        then();
    });
    poll->start();
}

} // namespace glyphmill
