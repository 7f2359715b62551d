// Screen pictures through Qt: on X11 a copy of the root window's pixels under the screen.
#pragma once

#include "platform/ScreenGrabber.h"

namespace glyphmill {

class QtScreenGrabber final : public ScreenGrabber {
public:
    // The screen at the area's index in the application's screen list; none when there is no such
    // screen or the window system hands out nothing.
    std::optional<ScreenImage> grabScreen(const ScreenToGrab &screen) override;
};

} // namespace glyphmill
