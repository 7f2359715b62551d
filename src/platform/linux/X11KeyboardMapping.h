// A snapshot of the X server's keyboard and modifier mappings: which keycode types a keysym, and
// which modifier bit (Mod1…Mod5) carries Alt, Super and NumLock on this keyboard.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace glyphmill {

class X11KeyboardMapping {
public:
    // Asks the server; an empty mapping (no keycodes, no modifiers) when the connection fails.
    static X11KeyboardMapping read(xcb_connection_t *connection);

    // The key that gives the keysym without modifiers if there is one, else any key that gives it.
    std::optional<std::uint8_t> keycodeFor(std::uint32_t keysym) const;
    // The modifier bit some key of the keysym is bound to; 0 when none is.
    std::uint16_t modifierMaskFor(std::uint32_t keysym) const;
    // Every key bound to one of the modifier bits of the mask.
    std::vector<std::uint8_t> keycodesOfModifiers(std::uint16_t mask) const;

private:
    std::vector<std::uint8_t> keycodesFor(std::uint32_t keysym) const;

    std::uint8_t firstKeycode_ = 0;
    std::uint8_t keysymsPerKeycode_ = 0;
    std::vector<std::uint32_t> keysyms_;
    std::uint8_t keycodesPerModifier_ = 0;
    std::vector<std::uint8_t> modifierKeycodes_;
};

} // namespace glyphmill
