// Hot keys without a window system, for tests: chords can be marked as held by another
// application, presses are simulated, and the keys stay "held" until the test releases them.
#pragma once

#include "platform/HotKeyGrabber.h"

#include <algorithm>
#include <vector>

namespace glyphmill {

class InMemoryHotKeyGrabber final : public HotKeyGrabber {
public:
    bool isAvailable() const override { return available; }
    bool grab(const KeyboardShortcutChord &chord) override {
        attempts.push_back(chord);
        if (!available || contains(takenByOthers, chord) || contains(grabbed, chord))
            return false;
        grabbed.push_back(chord);
        return true;
    }
    void ungrab(const KeyboardShortcutChord &chord) override { std::erase(grabbed, chord); }
    void afterChordReleased(const KeyboardShortcutChord &, std::function<void()> then) override {
        if (keysHeld)
            waitingForRelease.push_back(std::move(then));
        else
            then();
    }

    // What the window system would do on a key press: only grabbed chords are reported.
    bool press(const KeyboardShortcutChord &chord) const {
        if (!contains(grabbed, chord))
            return false;
        reportPress(chord);
        return true;
    }
    void releaseKeys() {
        keysHeld = false;
        auto waiting = std::move(waitingForRelease);
        waitingForRelease.clear();
        for (auto &then : waiting)
            then();
    }

    bool available = true;
    bool keysHeld = false;
    std::vector<KeyboardShortcutChord> takenByOthers;
    std::vector<KeyboardShortcutChord> grabbed;
    std::vector<KeyboardShortcutChord> attempts;
    std::vector<std::function<void()>> waitingForRelease;

private:
    static bool contains(const std::vector<KeyboardShortcutChord> &chords,
                         const KeyboardShortcutChord &chord) {
        return std::find(chords.begin(), chords.end(), chord) != chords.end();
    }
};

} // namespace glyphmill
