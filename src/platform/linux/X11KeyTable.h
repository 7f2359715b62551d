// Stored chords name keys by their macOS virtual key code, which is a key position on the US
// layout. On X11 that position becomes the keysym the US layout gives it; the keysym is then looked
// up in the current keyboard mapping, so a chord shown as "T" is the key that types T.
#pragma once

#include <cstdint>
#include <optional>

namespace glyphmill {

// The unshifted keysym of the US-layout key at the macOS key code (lower-case letters, digits,
// punctuation, the named and function keys, the keypad). None for key codes without a PC key.
std::optional<std::uint32_t> keysymForMacKeyCode(std::uint32_t keyCode);
// The way back, for recording a chord from an X key event. Upper-case letters and the shifted
// punctuation of the US layout give the code of their key.
std::optional<std::uint32_t> macKeyCodeForKeysym(std::uint32_t keysym);

} // namespace glyphmill
