// A Qt key press as the shortcut recorder needs it: the macOS key code of the pressed key's
// position and the pressed modifiers as macOS event flags, so recorded chords are stored in the
// same form on every platform.
#pragma once

#include "common/TranslatedKey.h"

#include <Qt>

#include <cstdint>
#include <optional>

class QKeyEvent;

namespace glyphmill {

TranslatedKey translateKeyEvent(const QKeyEvent &event);

// The X keysym Qt's key stands for; keypad keys need the keypad modifier to be told apart.
std::optional<std::uint32_t> keysymForQtKey(int key, Qt::KeyboardModifiers modifiers);
// Control → control, Alt → option, Meta (Super on X11) → command, Shift → shift, keypad → numeric pad.
std::uint64_t eventModifierFlags(Qt::KeyboardModifiers modifiers);

} // namespace glyphmill
