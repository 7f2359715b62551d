#include "platform/linux/QtKeyTranslation.h"

#include "common/KeyboardShortcut.h"
#include "platform/linux/X11KeyTable.h"

#include <QKeyEvent>
#include <X11/keysym.h>

#include <algorithm>
#include <utility>

namespace glyphmill {

namespace {

// clang-format off
constexpr std::pair<int, std::uint32_t> namedKeys[]{
    {Qt::Key_Escape, XK_Escape}, {Qt::Key_Tab, XK_Tab}, {Qt::Key_Backtab, XK_ISO_Left_Tab},
    {Qt::Key_Backspace, XK_BackSpace}, {Qt::Key_Return, XK_Return}, {Qt::Key_Enter, XK_KP_Enter},
    {Qt::Key_Insert, XK_Insert}, {Qt::Key_Delete, XK_Delete}, {Qt::Key_Home, XK_Home},
    {Qt::Key_End, XK_End}, {Qt::Key_Left, XK_Left}, {Qt::Key_Up, XK_Up}, {Qt::Key_Right, XK_Right},
    {Qt::Key_Down, XK_Down}, {Qt::Key_PageUp, XK_Page_Up}, {Qt::Key_PageDown, XK_Page_Down},
    {Qt::Key_NumLock, XK_Num_Lock}, {Qt::Key_Help, XK_Help},
};

constexpr std::pair<int, std::uint32_t> keypadKeys[]{
    {Qt::Key_Asterisk, XK_KP_Multiply}, {Qt::Key_Plus, XK_KP_Add}, {Qt::Key_Minus, XK_KP_Subtract},
    {Qt::Key_Period, XK_KP_Decimal}, {Qt::Key_Comma, XK_KP_Decimal}, {Qt::Key_Slash, XK_KP_Divide},
    {Qt::Key_Equal, XK_KP_Equal}, {Qt::Key_Enter, XK_KP_Enter}, {Qt::Key_Delete, XK_KP_Delete},
    {Qt::Key_Insert, XK_KP_Insert}, {Qt::Key_End, XK_KP_End}, {Qt::Key_Down, XK_KP_Down},
    {Qt::Key_PageDown, XK_KP_Page_Down}, {Qt::Key_Left, XK_KP_Left}, {Qt::Key_Clear, XK_KP_Begin},
    {Qt::Key_Right, XK_KP_Right}, {Qt::Key_Home, XK_KP_Home}, {Qt::Key_Up, XK_KP_Up},
    {Qt::Key_PageUp, XK_KP_Page_Up},
};
// clang-format on

template <std::size_t N>
std::optional<std::uint32_t> lookUp(const std::pair<int, std::uint32_t> (&table)[N], int key) {
    const auto *found = std::find_if(std::begin(table), std::end(table),
                                     [key](const auto &entry) { return entry.first == key; });
    if (found == std::end(table))
        return std::nullopt;
    return found->second;
}

bool isModifierQtKey(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_Mode_switch:
        return true;
    default:
        return false;
    }
}

bool isModifierKeysym(std::uint32_t keysym) {
    return (keysym >= XK_Shift_L && keysym <= XK_Hyper_R) || keysym == XK_ISO_Level3_Shift ||
           keysym == XK_ISO_Level5_Shift || keysym == XK_Mode_switch;
}

} // namespace

std::optional<std::uint32_t> keysymForQtKey(int key, Qt::KeyboardModifiers modifiers) {
    if (modifiers.testFlag(Qt::KeypadModifier)) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9)
            return XK_KP_0 + static_cast<std::uint32_t>(key - Qt::Key_0);
        if (auto keysym = lookUp(keypadKeys, key))
            return keysym;
    }
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return XK_a + static_cast<std::uint32_t>(key - Qt::Key_A);
    // Printable ASCII: Qt's key values and the Latin-1 keysyms are both the character itself.
    if (key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde)
        return static_cast<std::uint32_t>(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return XK_F1 + static_cast<std::uint32_t>(key - Qt::Key_F1);
    return lookUp(namedKeys, key);
}

std::uint64_t eventModifierFlags(Qt::KeyboardModifiers modifiers) {
    std::uint64_t flags = 0;
    if (modifiers.testFlag(Qt::ShiftModifier))
        flags |= eventModifierFlag::shift;
    if (modifiers.testFlag(Qt::ControlModifier))
        flags |= eventModifierFlag::control;
    if (modifiers.testFlag(Qt::AltModifier))
        flags |= eventModifierFlag::option;
    if (modifiers.testFlag(Qt::MetaModifier))
        flags |= eventModifierFlag::command;
    if (modifiers.testFlag(Qt::KeypadModifier))
        flags |= eventModifierFlag::numericPad;
    return flags;
}

TranslatedKey translateKeyEvent(const QKeyEvent &event) {
    TranslatedKey translated;
    translated.modifierFlags = eventModifierFlags(event.modifiers());
    translated.isAutoRepeat = event.isAutoRepeat();
    // The keysym X reported is the most faithful; synthesized events and other platforms carry none.
    const auto nativeKeysym = event.nativeVirtualKey();
    translated.isModifierOnly =
        isModifierQtKey(event.key()) || (nativeKeysym != 0 && isModifierKeysym(nativeKeysym));
    if (translated.isModifierOnly)
        return translated;
    const auto keysym = nativeKeysym != 0 ? std::optional<std::uint32_t>(nativeKeysym)
                                          : keysymForQtKey(event.key(), event.modifiers());
    if (keysym)
        translated.macKeyCode = macKeyCodeForKeysym(*keysym);
    return translated;
}

} // namespace glyphmill
