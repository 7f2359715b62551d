// Without an X display (the offscreen platform here, a Wayland session in use) the hot-key
// grabber must say so and refuse every chord rather than crash or pretend.
#include "platform/linux/X11HotKeyGrabber.h"

#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TEST(X11HotKeyGrabberWithoutDisplay, IsUnavailableAndRefusesEveryChord) {
    const KeyboardShortcutChord chord{17, carbonModifier::command | carbonModifier::shift};
    X11HotKeyGrabber grabber;
    EXPECT_FALSE(grabber.isAvailable());
    EXPECT_FALSE(grabber.grab(chord));
    grabber.ungrab(chord);
    EXPECT_TRUE(grabber.heldKeysOf(chord).empty());
    bool ran = false;
    grabber.afterChordReleased(chord, [&] { ran = true; });
    EXPECT_TRUE(ran);
}

} // namespace
} // namespace glyphmill
