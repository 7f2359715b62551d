// Screen capture access on Linux: an X11 session hands every client the screen's pixels, so
// access is there exactly when the program talks to a live X server of its own session. Under
// Wayland (XWayland included, whose grabs show no other program's windows) and elsewhere there
// is no grab the program can use, and asking changes nothing.
#pragma once

#include "platform/ScreenCaptureAccess.h"

namespace glyphmill {

class X11ScreenCaptureAccess final : public ScreenCaptureAccess {
public:
    bool hasAccess() override;
    bool requestAccess() override;
};

} // namespace glyphmill
