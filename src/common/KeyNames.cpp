// How a chord is shown to the user, the way Linux desktops write key combinations: the
// modifiers' names, then the key's, joined by "+" ("Shift+Super+T"). Command is the Super key
// and Option the Alt key on a PC keyboard.
#include "common/KeyboardShortcut.h"

#include <utility>

namespace glyphmill {

namespace {

// Indexed by key code 0 to 50: the unshifted US ANSI character of the key, upper-cased.
// A space marks a code that is not a character key (10 has no US key; Return, Tab and Space
// have names of their own).
constexpr std::u16string_view characterKeys = u"ASDFHGZXCV BQWERYT123465=97-80]OU[IP LJ'K;\\,/NM.  `";
static_assert(characterKeys.size() == 51);

constexpr std::pair<std::uint32_t, std::u16string_view> namedKeys[] = {
    {36, u"Return"},
    {48, u"Tab"},
    {49, u"Space"},
    {51, u"Backspace"}, // the Mac's Delete key
    {53, u"Esc"},
    {76, u"Enter"}, // keypad Enter
    {115, u"Home"},
    {116, u"Page Up"},
    {117, u"Delete"}, // the Mac's Forward Delete key
    {119, u"End"},
    {121, u"Page Down"},
    {123, u"Left"},
    {124, u"Right"},
    {125, u"Down"},
    {126, u"Up"},
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
    // Always Ctrl, Alt, Shift, Super, whatever order the keys were pressed in.
    constexpr std::pair<std::uint32_t, std::u16string_view> modifierNames[] = {
        {carbonModifier::control, u"Ctrl"},
        {carbonModifier::option, u"Alt"},
        {carbonModifier::shift, u"Shift"},
        {carbonModifier::command, u"Super"},
    };
    std::u16string shown;
    for (const auto &[bit, name] : modifierNames)
        if (chord.carbonModifiers & bit)
            shown.append(name).push_back(u'+');
    return shown + keyName(chord.keyCode);
}

} // namespace glyphmill
