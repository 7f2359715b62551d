#include "common/KeyboardShortcut.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace glyphmill {

std::string_view rawValue(KeyboardShortcutID id) {
    switch (id) {
    case KeyboardShortcutID::palette:
        return "palette";
    case KeyboardShortcutID::titleCase:
        return "titleCase";
    case KeyboardShortcutID::screenCapture:
        return "screenCapture";
    case KeyboardShortcutID::pastePlainText:
        return "pastePlainText";
    }
    return {};
}

std::optional<KeyboardShortcutID> keyboardShortcutIDFromRawValue(std::string_view raw) {
    for (auto id : allKeyboardShortcutIDs)
        if (rawValue(id) == raw)
            return id;
    return std::nullopt;
}

std::string_view preferenceKey(KeyboardShortcutID id) {
    switch (id) {
    case KeyboardShortcutID::palette:
        return "shortcut.palette";
    case KeyboardShortcutID::titleCase:
        return "shortcut.titleCase";
    case KeyboardShortcutID::screenCapture:
        return "shortcut.screenCapture";
    case KeyboardShortcutID::pastePlainText:
        return "shortcut.pastePlainText";
    }
    return {};
}

KeyboardShortcutChord defaultChord(KeyboardShortcutID id) {
    using namespace carbonModifier;
    constexpr std::uint32_t tKey = 17, twoKey = 19, vKey = 9;
    switch (id) {
    case KeyboardShortcutID::palette:
        return {tKey, control | option | command};
    case KeyboardShortcutID::titleCase:
        return {tKey, shift | command};
    case KeyboardShortcutID::screenCapture:
        return {twoKey, shift | command};
    case KeyboardShortcutID::pastePlainText:
        return {vKey, option | shift | command};
    }
    return {};
}

std::uint32_t carbonModifiersFromEventFlags(std::uint64_t flags) {
    std::uint32_t mask = 0;
    if (flags & eventModifierFlag::command)
        mask |= carbonModifier::command;
    if (flags & eventModifierFlag::shift)
        mask |= carbonModifier::shift;
    if (flags & eventModifierFlag::option)
        mask |= carbonModifier::option;
    if (flags & eventModifierFlag::control)
        mask |= carbonModifier::control;
    return mask;
}

bool eventFlagsAllowRecordedChord(std::uint64_t flags) {
    return (flags & eventModifierFlag::requiredForChord) != 0;
}

namespace {

constexpr auto keyCodeMember = "keyCode";
constexpr auto carbonModifiersMember = "carbonModifiers";

// A number written as 17.0 or 1.7e1 still names the integer exactly, so it is accepted; a
// fraction, a negative value or anything past 32 bits is not.
std::optional<std::uint32_t> unsigned32(const nlohmann::json &value) {
    constexpr auto max = std::numeric_limits<std::uint32_t>::max();
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number <= max)
            return static_cast<std::uint32_t>(number);
    } else if (value.is_number_integer()) {
        const auto number = value.get<std::int64_t>();
        if (number >= 0 && static_cast<std::uint64_t>(number) <= max)
            return static_cast<std::uint32_t>(number);
    } else if (value.is_number_float()) {
        const auto number = value.get<double>();
        if (std::isfinite(number) && number >= 0 && number <= max && std::floor(number) == number)
            return static_cast<std::uint32_t>(number);
    }
    return std::nullopt;
}

std::optional<std::uint32_t> memberUnsigned32(const nlohmann::json &object, const char *name) {
    const auto found = object.find(name);
    if (found == object.end())
        return std::nullopt;
    return unsigned32(*found);
}

} // namespace

std::string encodeChordJson(const KeyboardShortcutChord &chord) {
    // A plain json object sorts its members; the stored form has "keyCode" first.
    nlohmann::ordered_json object;
    object[keyCodeMember] = chord.keyCode;
    object[carbonModifiersMember] = chord.carbonModifiers;
    return object.dump();
}

std::optional<KeyboardShortcutChord> decodeChordJson(std::string_view utf8Json) {
    const auto parsed = nlohmann::json::parse(utf8Json, nullptr, /*allow_exceptions=*/false);
    if (!parsed.is_object())
        return std::nullopt;
    const auto keyCode = memberUnsigned32(parsed, keyCodeMember);
    const auto modifiers = memberUnsigned32(parsed, carbonModifiersMember);
    if (!keyCode || !modifiers)
        return std::nullopt;
    return KeyboardShortcutChord{*keyCode, *modifiers};
}

std::vector<std::uint8_t> encodeChordData(const KeyboardShortcutChord &chord) {
    const std::string json = encodeChordJson(chord);
    return {json.begin(), json.end()};
}

std::optional<KeyboardShortcutChord> decodeChordData(std::span<const std::uint8_t> bytes) {
    const std::string json(bytes.begin(), bytes.end());
    return decodeChordJson(json);
}

} // namespace glyphmill
