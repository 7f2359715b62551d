// The four global shortcut actions and the key chords that trigger them. A chord keeps the
// macOS virtual key code (a key position on the US layout) and the Carbon modifier mask, so
// stored preferences move between platforms unchanged; translation to the window system
// happens at the platform edge.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

enum class KeyboardShortcutID { palette, titleCase, screenCapture, pastePlainText };

// The order used wherever the four actions are listed, registered or persisted.
inline constexpr std::array<KeyboardShortcutID, 4> allKeyboardShortcutIDs = {
    KeyboardShortcutID::palette, KeyboardShortcutID::titleCase, KeyboardShortcutID::screenCapture,
    KeyboardShortcutID::pastePlainText};

std::string_view rawValue(KeyboardShortcutID id);
// Only one of the four raw values, spelled exactly, names an action.
std::optional<KeyboardShortcutID> keyboardShortcutIDFromRawValue(std::string_view raw);
// The preference key under which the action's chord is stored ("shortcut." + raw value).
std::string_view preferenceKey(KeyboardShortcutID id);

namespace carbonModifier {
inline constexpr std::uint32_t command = 0x0100;
inline constexpr std::uint32_t shift = 0x0200;
inline constexpr std::uint32_t option = 0x0800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace carbonModifier

// Device-independent modifier flags of a key event, numbered as on macOS.
namespace eventModifierFlag {
inline constexpr std::uint64_t capsLock = 0x10000;
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::uint64_t numericPad = 0x200000;
inline constexpr std::uint64_t help = 0x400000;
inline constexpr std::uint64_t function = 0x800000;
// What the shortcut recorder keeps of an event's flags before converting them.
inline constexpr std::uint64_t chordModifiers = shift | control | option | command;
// A recorded chord needs at least one of these; Shift alone would steal ordinary typing.
inline constexpr std::uint64_t requiredForChord = control | option | command;
} // namespace eventModifierFlag

struct KeyboardShortcutChord {
    std::uint32_t keyCode = 0;
    std::uint32_t carbonModifiers = 0;

    friend bool operator==(const KeyboardShortcutChord &, const KeyboardShortcutChord &) = default;
};

KeyboardShortcutChord defaultChord(KeyboardShortcutID id);

// "Ctrl+Alt+Shift+Super+" (the modifiers held, in that order), then the key name.
std::u16string displayString(const KeyboardShortcutChord &chord);
// The key's US-layout character in upper case, a fixed key name, else "Key" + code.
std::u16string keyName(std::uint32_t keyCode);

// Unknown bits (Caps Lock, Function, numeric pad, help) are dropped.
std::uint32_t carbonModifiersFromEventFlags(std::uint64_t flags);
bool eventFlagsAllowRecordedChord(std::uint64_t flags);

// The stored form: {"keyCode":K,"carbonModifiers":M} as UTF-8.
std::string encodeChordJson(const KeyboardShortcutChord &chord);
// None unless the text is a JSON object holding both members as numbers in the unsigned
// 32-bit range; other members are ignored.
std::optional<KeyboardShortcutChord> decodeChordJson(std::string_view utf8Json);

// The same, as the bytes of a preference data value.
std::vector<std::uint8_t> encodeChordData(const KeyboardShortcutChord &chord);
std::optional<KeyboardShortcutChord> decodeChordData(std::span<const std::uint8_t> bytes);

} // namespace glyphmill
