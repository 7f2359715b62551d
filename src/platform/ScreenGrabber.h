// Takes a picture of one whole screen as it is now.
#pragma once

#include "platform/ScreenImage.h"

#include <optional>

namespace glyphmill {

// A screen as the window system lays it out: its place in the screen list, its frame in
// points (top-left origin, y growing downward) and its device pixels per point.
struct ScreenToGrab {
    int index = 0;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double devicePixelRatio = 1.0;
};

class ScreenGrabber {
public:
    virtual ~ScreenGrabber() = default;
    // None when the system refuses to hand out the screen's pixels.
    virtual std::optional<ScreenImage> grabScreen(const ScreenToGrab &screen) = 0;
};

} // namespace glyphmill
