// System-wide key chords: the window system reports a grabbed chord whichever application has the
// keyboard focus. Chords keep the stored form (macOS key code, Carbon modifier mask); each
// implementation translates them to its own keys.
#pragma once

#include "common/KeyboardShortcut.h"

#include <functional>
#include <utility>

namespace glyphmill {

class HotKeyGrabber {
public:
    using PressHandler = std::function<void(const KeyboardShortcutChord &chord)>;

    virtual ~HotKeyGrabber() = default;

    // False where the window system offers no global grabs at all (no X display, Wayland):
    // then every grab fails as well.
    virtual bool isAvailable() const = 0;
    // False when the chord cannot be grabbed: another client holds it, or it names no key of the
    // keyboard. A failed grab leaves nothing of itself behind.
    virtual bool grab(const KeyboardShortcutChord &chord) = 0;
    // Releases a chord grabbed by grab(); other chords are unaffected.
    virtual void ungrab(const KeyboardShortcutChord &chord) = 0;
    // Runs `then` once no key of the chord is held any more, so a synthetic keystroke sent from
    // it is not combined with the user's modifiers. Never waits long: keys still held after a
    // short while are released on the user's behalf.
    virtual void afterChordReleased(const KeyboardShortcutChord &chord, std::function<void()> then) = 0;

    // Called once per press of a grabbed chord; keyboard autorepeat does not call it again.
    void setPressHandler(PressHandler handler) { pressHandler_ = std::move(handler); }

protected:
    void reportPress(const KeyboardShortcutChord &chord) const {
        // A copy: the handler may replace itself while it runs.
        if (auto handler = pressHandler_)
            handler(chord);
    }

private:
    PressHandler pressHandler_;
};

} // namespace glyphmill
