#include "platform/linux/X11KeyboardMapping.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace glyphmill {

namespace {

// The eight core modifiers in the order of the modifier mapping: Shift, Lock, Control, Mod1…Mod5.
constexpr int modifierCount = 8;

struct FreeReply {
    void operator()(void *reply) const { std::free(reply); }
};

} // namespace

X11KeyboardMapping X11KeyboardMapping::read(xcb_connection_t *connection) {
    X11KeyboardMapping mapping;
    if (!connection || xcb_connection_has_error(connection))
        return mapping;
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const auto keycodeCount = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    auto keyboardCookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, keycodeCount);
    auto modifierCookie = xcb_get_modifier_mapping(connection);

    std::unique_ptr<xcb_get_keyboard_mapping_reply_t, FreeReply> keyboard(
        xcb_get_keyboard_mapping_reply(connection, keyboardCookie, nullptr));
    std::unique_ptr<xcb_get_modifier_mapping_reply_t, FreeReply> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifierCookie, nullptr));
    if (keyboard) {
        const xcb_keysym_t *keysyms = xcb_get_keyboard_mapping_keysyms(keyboard.get());
        const int length = xcb_get_keyboard_mapping_keysyms_length(keyboard.get());
        mapping.firstKeycode_ = setup->min_keycode;
        mapping.keysymsPerKeycode_ = keyboard->keysyms_per_keycode;
        mapping.keysyms_.assign(keysyms, keysyms + length);
    }
    if (modifiers) {
        const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
        const int length = xcb_get_modifier_mapping_keycodes_length(modifiers.get());
        mapping.keycodesPerModifier_ = modifiers->keycodes_per_modifier;
        mapping.modifierKeycodes_.assign(keycodes, keycodes + length);
    }
    return mapping;
}

std::vector<std::uint8_t> X11KeyboardMapping::keycodesFor(std::uint32_t keysym) const {
    std::vector<std::uint8_t> unmodified;
    std::vector<std::uint8_t> withModifiers;
    if (keysymsPerKeycode_ == 0)
        return unmodified;
    for (std::size_t index = 0; index < keysyms_.size(); ++index) {
        if (keysyms_[index] != keysym)
            continue;
        const auto keycode = static_cast<std::uint8_t>(firstKeycode_ + index / keysymsPerKeycode_);
        auto &list = index % keysymsPerKeycode_ == 0 ? unmodified : withModifiers;
        if (std::find(list.begin(), list.end(), keycode) == list.end())
            list.push_back(keycode);
    }
    unmodified.insert(unmodified.end(), withModifiers.begin(), withModifiers.end());
    return unmodified;
}

std::optional<std::uint8_t> X11KeyboardMapping::keycodeFor(std::uint32_t keysym) const {
    const auto keycodes = keycodesFor(keysym);
    if (keycodes.empty())
        return std::nullopt;
    return keycodes.front();
}

std::uint16_t X11KeyboardMapping::modifierMaskFor(std::uint32_t keysym) const {
    const auto keycodes = keycodesFor(keysym);
    for (int modifier = 0; modifier < modifierCount; ++modifier) {
        for (std::size_t slot = 0; slot < keycodesPerModifier_; ++slot) {
            const std::size_t index = modifier * std::size_t{keycodesPerModifier_} + slot;
            if (index >= modifierKeycodes_.size())
                break;
            const std::uint8_t keycode = modifierKeycodes_[index];
            if (keycode != 0 && std::find(keycodes.begin(), keycodes.end(), keycode) != keycodes.end())
                return static_cast<std::uint16_t>(1u << modifier);
        }
    }
    return 0;
}

std::vector<std::uint8_t> X11KeyboardMapping::keycodesOfModifiers(std::uint16_t mask) const {
    std::vector<std::uint8_t> keycodes;
    for (int modifier = 0; modifier < modifierCount; ++modifier) {
        if ((mask & (1u << modifier)) == 0)
            continue;
        for (std::size_t slot = 0; slot < keycodesPerModifier_; ++slot) {
            const std::size_t index = modifier * std::size_t{keycodesPerModifier_} + slot;
            if (index < modifierKeycodes_.size() && modifierKeycodes_[index] != 0)
                keycodes.push_back(modifierKeycodes_[index]);
        }
    }
    return keycodes;
}

} // namespace glyphmill
