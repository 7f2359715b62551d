// The paste keystroke on X11: Control+V through the XTest extension, as if typed on the keyboard,
// so it reaches the window that has the keyboard focus.
#pragma once

#include "platform/KeystrokeSender.h"

#include <cstdint>
#include <span>

namespace glyphmill {

// Needs a QGuiApplication. Without an X display (offscreen, Wayland without XWayland for us)
// or without XTest, nothing is sent.
class XTestKeystrokeSender final : public KeystrokeSender {
public:
    // Returns at once: the window that pastes asks us for the clipboard afterwards, which needs
    // the event loop running.
    void postPasteKeystroke() override;

    // Sends a release for each X keycode, as if the user had let go of the keys.
    static void releaseKeys(std::span<const std::uint8_t> keycodes);
};

} // namespace glyphmill
