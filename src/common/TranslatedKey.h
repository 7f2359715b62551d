// A key press in the stored form of chords: the macOS key code of the pressed key's position and
// the pressed modifiers as macOS event flags. The window system's layer makes it from its own
// events; the shortcut recorder reads it.
#pragma once

#include <cstdint>
#include <optional>

namespace glyphmill {

struct TranslatedKey {
    // None for a key that has no macOS counterpart.
    std::optional<std::uint32_t> macKeyCode;
    std::uint64_t modifierFlags = 0;
    bool isAutoRepeat = false;
    // Shift, Control, Alt, Super and the like pressed alone: never a chord by themselves.
    bool isModifierOnly = false;
};

} // namespace glyphmill
