#include "common/KeyboardShortcut.h"

#include "common/Utf8.h"

#include <gtest/gtest.h>

#include <utility>

namespace glyphmill {
namespace {

using Chord = KeyboardShortcutChord;
namespace mod = carbonModifier;
namespace flag = eventModifierFlag;

TEST(KeyboardShortcutTest, EachActionHasItsRawValueKeyAndDefaultChordInOrder) {
    struct Expected {
        KeyboardShortcutID id;
        std::string_view raw;
        std::string_view key;
        Chord chord;
        std::u16string_view shown;
        std::string_view json;
    };
    const Expected expected[] = {{KeyboardShortcutID::palette,
                                  "palette",
                                  "shortcut.palette",
                                  {17, 0x1900},
                                  u"Ctrl+Alt+Super+T",
                                  R"({"keyCode":17,"carbonModifiers":6400})"},
                                 {KeyboardShortcutID::titleCase,
                                  "titleCase",
                                  "shortcut.titleCase",
                                  {17, 0x0300},
                                  u"Shift+Super+T",
                                  R"({"keyCode":17,"carbonModifiers":768})"},
                                 {KeyboardShortcutID::screenCapture,
                                  "screenCapture",
                                  "shortcut.screenCapture",
                                  {19, 0x0300},
                                  u"Shift+Super+2",
                                  R"({"keyCode":19,"carbonModifiers":768})"},
                                 {KeyboardShortcutID::pastePlainText,
                                  "pastePlainText",
                                  "shortcut.pastePlainText",
                                  {9, 0x0B00},
                                  u"Alt+Shift+Super+V",
                                  R"({"keyCode":9,"carbonModifiers":2816})"}};
    ASSERT_EQ(allKeyboardShortcutIDs.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const auto &row = expected[i];
        SCOPED_TRACE(row.raw);
        EXPECT_EQ(allKeyboardShortcutIDs[i], row.id);
        EXPECT_EQ(rawValue(row.id), row.raw);
        EXPECT_EQ(keyboardShortcutIDFromRawValue(row.raw), row.id);
        EXPECT_EQ(preferenceKey(row.id), row.key);
        EXPECT_EQ(defaultChord(row.id), row.chord);
        EXPECT_EQ(displayString(defaultChord(row.id)), row.shown);
        EXPECT_EQ(encodeChordJson(defaultChord(row.id)), row.json);
    }
}

TEST(KeyboardShortcutTest, RawValuesMustMatchExactly) {
    for (std::string_view raw : {"TitleCase", "titlecase", " titleCase", "titleCase ", "shortcut.titleCase",
                                 "", "Palette", "screencapture"})
        EXPECT_EQ(keyboardShortcutIDFromRawValue(raw), std::nullopt) << '"' << raw << '"';
}

TEST(KeyboardShortcutTest, ModifiersAlwaysComeCtrlAltShiftSuper) {
    // Every combination of the four modifiers, on the A key (code 0).
    const std::pair<std::uint32_t, std::u16string_view> cases[] = {
        {0, u"A"},
        {mod::control, u"Ctrl+A"},
        {mod::option, u"Alt+A"},
        {mod::shift, u"Shift+A"},
        {mod::command, u"Super+A"},
        {mod::command | mod::control, u"Ctrl+Super+A"},
        {mod::command | mod::option, u"Alt+Super+A"},
        {mod::command | mod::shift, u"Shift+Super+A"},
        {mod::shift | mod::control, u"Ctrl+Shift+A"},
        {mod::shift | mod::option, u"Alt+Shift+A"},
        {mod::option | mod::control, u"Ctrl+Alt+A"},
        {mod::command | mod::shift | mod::option, u"Alt+Shift+Super+A"},
        {mod::command | mod::shift | mod::control, u"Ctrl+Shift+Super+A"},
        {mod::command | mod::option | mod::control, u"Ctrl+Alt+Super+A"},
        {mod::shift | mod::option | mod::control, u"Ctrl+Alt+Shift+A"},
        {mod::command | mod::shift | mod::option | mod::control, u"Ctrl+Alt+Shift+Super+A"},
        {0x0400 | 0x0001 | mod::command, u"Super+A"}, // Caps Lock and other Carbon bits show nothing
    };
    for (const auto &[modifiers, shown] : cases)
        EXPECT_EQ(displayString({0, modifiers}), shown) << std::hex << modifiers;
}

TEST(KeyboardShortcutTest, NamedAndUnnamedKeys) {
    EXPECT_EQ(displayString({49, mod::command}), u"Super+Space");
    EXPECT_EQ(displayString({105, mod::control}), u"Ctrl+Key105");
    EXPECT_EQ(displayString({122, mod::shift | mod::option}), u"Alt+Shift+F1");
    // clang-format off
    const std::pair<std::uint32_t, std::u16string_view> names[] = {
        {36, u"Return"}, {48, u"Tab"}, {51, u"Backspace"}, {53, u"Esc"}, {76, u"Enter"}, {115, u"Home"},
        {116, u"Page Up"}, {117, u"Delete"}, {119, u"End"}, {121, u"Page Down"}, {123, u"Left"},
        {124, u"Right"}, {125, u"Down"}, {126, u"Up"}, {122, u"F1"}, {120, u"F2"}, {99, u"F3"},
        {118, u"F4"}, {96, u"F5"}, {97, u"F6"}, {98, u"F7"}, {100, u"F8"}, {101, u"F9"}, {109, u"F10"},
        {103, u"F11"}, {111, u"F12"}, {10, u"Key10"}, {127, u"Key127"}, {0xFFFFFFFF, u"Key4294967295"}};
    // clang-format on
    for (const auto &[code, name] : names)
        EXPECT_EQ(keyName(code), name) << code;
}

TEST(KeyboardShortcutTest, CharacterKeysFollowTheUsAnsiLayout) {
    const std::u16string_view byCode[] = {
        u"A", u"S", u"D", u"F",  u"H", u"G", u"Z", u"X", u"C", u"V",   u"Key10",  u"B", u"Q",
        u"W", u"E", u"R", u"Y",  u"T", u"1", u"2", u"3", u"4", u"6",   u"5",      u"=", u"9",
        u"7", u"-", u"8", u"0",  u"]", u"O", u"U", u"[", u"I", u"P",   u"Return", u"L", u"J",
        u"'", u"K", u";", u"\\", u",", u"/", u"N", u"M", u".", u"Tab", u"Space",  u"`"};
    for (std::uint32_t code = 0; code < std::size(byCode); ++code)
        EXPECT_EQ(keyName(code), byCode[code]) << code << " gave " << utf8::encode(keyName(code));
}

TEST(KeyboardShortcutTest, JsonRoundTripKeepsBothFields) {
    for (const Chord chord : {Chord{0, 0}, Chord{105, 0x1B00}, Chord{0xFFFFFFFF, 0xFFFFFFFF}}) {
        EXPECT_EQ(decodeChordJson(encodeChordJson(chord)), chord);
        EXPECT_EQ(decodeChordData(encodeChordData(chord)), chord);
    }
    EXPECT_EQ(encodeChordJson({0xFFFFFFFF, 0}), R"({"keyCode":4294967295,"carbonModifiers":0})");
}

TEST(KeyboardShortcutTest, DecodingAcceptsAnyMemberOrderSpacingAndExtraMembers) {
    const Chord titleCase = defaultChord(KeyboardShortcutID::titleCase);
    for (std::string_view json : {
             R"({"carbonModifiers":768,"keyCode":17})",
             " {\n \"keyCode\" : 17 ,\t\"carbonModifiers\" : 768 }\n",
             R"({"keyCode":17,"carbonModifiers":768,"extra":[1,{"x":null}],"name":"⇧⌘T"})",
             R"({"keyCode":17.0,"carbonModifiers":7.68e2})", // integral numbers however written
         })
        EXPECT_EQ(decodeChordJson(json), titleCase) << json;
}

TEST(KeyboardShortcutTest, DecodingRejectsAnythingButTwoUnsigned32BitNumbers) {
    for (std::string_view json : {
             "", "{", "null", "17", R"([17,768])", R"({"keyCode":17})", R"({"carbonModifiers":768})",
             R"({"KeyCode":17,"carbonModifiers":768})", R"({"keyCode":"17","carbonModifiers":768})",
             R"({"keyCode":17,"carbonModifiers":true})", R"({"keyCode":null,"carbonModifiers":768})",
             R"({"keyCode":-1,"carbonModifiers":768})", R"({"keyCode":17.5,"carbonModifiers":768})",
             R"({"keyCode":4294967296,"carbonModifiers":768})", R"({"keyCode":17,"carbonModifiers":1e300})",
             R"({"keyCode":17,"carbonModifiers":768} trailing)",
             "{\"keyCode\":17,\"carbonModifiers\":768,\"bad\":\"\xff\"}", // not UTF-8
         })
        EXPECT_EQ(decodeChordJson(json), std::nullopt) << json;
    EXPECT_EQ(decodeChordData(std::vector<std::uint8_t>{1, 2, 3}), std::nullopt);
}

TEST(KeyboardShortcutTest, EventFlagsBecomeTheCarbonMaskDroppingOtherBits) {
    const std::pair<std::uint64_t, std::uint32_t> cases[] = {
        {0, 0},
        {flag::command | flag::capsLock, mod::command},
        {flag::shift, mod::shift},
        {flag::option, mod::option},
        {flag::control, mod::control},
        {flag::command | flag::shift | flag::option | flag::control, 0x1B00},
        {flag::function | flag::numericPad | flag::help | flag::capsLock | 0xFFFF, 0},
        {~std::uint64_t{0}, 0x1B00}};
    for (const auto &[flags, mask] : cases)
        EXPECT_EQ(carbonModifiersFromEventFlags(flags), mask) << std::hex << flags;
}

TEST(KeyboardShortcutTest, RecordedChordNeedsCommandOptionOrControl) {
    for (std::uint64_t flags : {flag::command, flag::option, flag::control, flag::shift | flag::control})
        EXPECT_TRUE(eventFlagsAllowRecordedChord(flags)) << std::hex << flags;
    for (std::uint64_t flags : {std::uint64_t{0}, flag::shift, flag::shift | flag::capsLock | flag::function})
        EXPECT_FALSE(eventFlagsAllowRecordedChord(flags)) << std::hex << flags;
}

} // namespace
} // namespace glyphmill
