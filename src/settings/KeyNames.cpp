// How a chord is shown to the user: modifier glyphs followed by the key's name.
#include "settings/KeyboardShortcut.h"

#include <utility>

namespace glyphmill {

namespace {

// Indexed by key code 0 to 50: the unshifted US ANSI character of the key, upper-cased.
// A space marks a code that is not a character key (10 has no US key; Return, Tab and Space
// have names of their own).
constexpr std::u16string_view characterKeys = u"ASDFHGZXCV BQWERYT123465=97-80]OU[IP LJ'K;\\,/NM.  `";
static_assert(characterKeys.size() == 51);

constexpr std::pair<std::uint32_t, std::u16string_view> namedKeys[] = {
    {36, u"\u21a9"},  // ↩ Return
    {48, u"\u21e5"},  // ⇥ Tab
    {49, u"Space"},   // Space bar
    {51, u"\u232b"},  // ⌫ Delete
    {53, u"\u238b"},  // ⎋ Escape
    {76, u"\u2324"},  // ⌤ keypad Enter
    {115, u"\u2196"}, // ↖ Home
    {116, u"\u21de"}, // ⇞ Page Up
    {117, u"\u2326"}, // ⌦ Forward Delete
    {119, u"\u2198"}, // ↘ End
    {121, u"\u21df"}, // ⇟ Page Down
    {123, u"\u2190"}, // ← Left Arrow
    {124, u"\u2192"}, // → Right Arrow
    {125, u"\u2193"}, // ↓ Down Arrow
    {126, u"\u2191"}, // ↑ Up Arrow
    // Function keys: their codes follow no order.
    {122, u"F1"},
    {120, u"F2"},
    {99, u"F3"},
    {118, u"F4"},
    {96, u"F5"},
    {97, u"F6"},
    {98, u"F7"},
    {100, u"F8"},
    {101, u"F9"},
    {109, u"F10"},
    {103, u"F11"},
    {111, u"F12"},
};

} // namespace

std::u16string keyName(std::uint32_t keyCode) {
    if (keyCode < characterKeys.size() && characterKeys[keyCode] != u' ')
        return std::u16string(1, characterKeys[keyCode]);
    for (const auto &[code, name] : namedKeys)
        if (code == keyCode)
            return std::u16string(name);
    std::u16string fallback = u"Key";
    for (const char digit : std::to_string(keyCode))
        fallback.push_back(static_cast<char16_t>(digit));
    return fallback;
}

std::u16string displayString(const KeyboardShortcutChord &chord) {
    // Always Control, Option, Shift, Command, whatever order the keys were pressed in.
    constexpr std::pair<std::uint32_t, char16_t> modifierGlyphs[] = {
        {carbonModifier::control, u'\u2303'}, // ⌃
        {carbonModifier::option, u'\u2325'},  // ⌥
        {carbonModifier::shift, u'\u21e7'},   // ⇧
        {carbonModifier::command, u'\u2318'}, // ⌘
    };
    std::u16string shown;
    for (const auto &[bit, glyph] : modifierGlyphs)
        if (chord.carbonModifiers & bit)
            shown.push_back(glyph);
    return shown + keyName(chord.keyCode);
}

} // namespace glyphmill
