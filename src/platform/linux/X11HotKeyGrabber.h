// Global hot keys on X11: passive key grabs on the root window, one per combination of the lock
// keys (Caps Lock, NumLock) so a chord works whatever lock is on. Presses arrive through Qt's
// native event filter on the main thread; keyboard autorepeat is filtered out.
#pragma once

#include "platform/HotKeyGrabber.h"
#include "platform/linux/X11KeyboardMapping.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace glyphmill {

class X11HotKeyGrabber final : public QObject, public HotKeyGrabber, private QAbstractNativeEventFilter {
public:
    // Uses the X connection of the running QGuiApplication. Without one (the offscreen platform,
    // a Wayland session) the grabber is unavailable and every grab fails; nothing else changes.
    explicit X11HotKeyGrabber(QObject *parent = nullptr);
    ~X11HotKeyGrabber() override;

    bool isAvailable() const override { return connection_ != nullptr; }
    bool grab(const KeyboardShortcutChord &chord) override;
    void ungrab(const KeyboardShortcutChord &chord) override;
    // Polls the keyboard every 20 ms from the event loop; after about a second, releases the
    // keys still down through XTest.
    void afterChordReleased(const KeyboardShortcutChord &chord, std::function<void()> then) override;

    // The chord's keys (its key and every key of its modifiers) that are down at this moment.
    std::vector<std::uint8_t> heldKeysOf(const KeyboardShortcutChord &chord) const;

private:
    struct XKeyCombination {
        std::uint8_t keycode = 0;
        std::uint16_t modifiers = 0;
    };
    struct Grab {
        KeyboardShortcutChord chord;
        XKeyCombination keys;
    };

    static std::optional<XKeyCombination> translate(const KeyboardShortcutChord &chord,
                                                    const X11KeyboardMapping &mapping);
    std::vector<std::uint16_t> lockCombinations(const X11KeyboardMapping &mapping) const;
    void ungrabCombinations(const XKeyCombination &keys);
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    bool handleKeyEvent(bool pressed, std::uint8_t keycode, std::uint16_t state, std::uint32_t time);

    xcb_connection_t *connection_ = nullptr;
    std::uint32_t rootWindow_ = 0;
    std::vector<Grab> grabs_;
    // The NumLock bit of the mapping the grabs were made with; ignored like Caps Lock in events.
    std::uint16_t numLockMask_ = 0;
    // Autorepeat shows as presses without releases (detectable autorepeat) or as a release and
    // a press with the same timestamp; both are told apart from a new press with these.
    std::vector<std::uint8_t> keysDown_;
    std::optional<std::pair<std::uint8_t, std::uint32_t>> lastRelease_;
};

} // namespace glyphmill
