#include "platform/linux/X11KeyTable.h"

#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <utility>

namespace glyphmill {

namespace {

struct KeyPosition {
    std::uint32_t macKeyCode;
    std::uint32_t keysym;
};

// clang-format off
constexpr std::array keyPositions{
    // Letters, digits and punctuation of the US ANSI layout.
    KeyPosition{0, XK_a}, KeyPosition{1, XK_s}, KeyPosition{2, XK_d}, KeyPosition{3, XK_f},
    KeyPosition{4, XK_h}, KeyPosition{5, XK_g}, KeyPosition{6, XK_z}, KeyPosition{7, XK_x},
    KeyPosition{8, XK_c}, KeyPosition{9, XK_v}, KeyPosition{11, XK_b}, KeyPosition{12, XK_q},
    KeyPosition{13, XK_w}, KeyPosition{14, XK_e}, KeyPosition{15, XK_r}, KeyPosition{16, XK_y},
    KeyPosition{17, XK_t}, KeyPosition{18, XK_1}, KeyPosition{19, XK_2}, KeyPosition{20, XK_3},
    KeyPosition{21, XK_4}, KeyPosition{22, XK_6}, KeyPosition{23, XK_5}, KeyPosition{24, XK_equal},
    KeyPosition{25, XK_9}, KeyPosition{26, XK_7}, KeyPosition{27, XK_minus}, KeyPosition{28, XK_8},
    KeyPosition{29, XK_0}, KeyPosition{30, XK_bracketright}, KeyPosition{31, XK_o}, KeyPosition{32, XK_u},
    KeyPosition{33, XK_bracketleft}, KeyPosition{34, XK_i}, KeyPosition{35, XK_p}, KeyPosition{37, XK_l},
    KeyPosition{38, XK_j}, KeyPosition{39, XK_apostrophe}, KeyPosition{40, XK_k},
    KeyPosition{41, XK_semicolon}, KeyPosition{42, XK_backslash}, KeyPosition{43, XK_comma},
    KeyPosition{44, XK_slash}, KeyPosition{45, XK_n}, KeyPosition{46, XK_m}, KeyPosition{47, XK_period},
    KeyPosition{50, XK_grave},
    // Named keys. The Mac Help key sits where PC keyboards have Insert.
    KeyPosition{36, XK_Return}, KeyPosition{48, XK_Tab}, KeyPosition{49, XK_space},
    KeyPosition{51, XK_BackSpace}, KeyPosition{53, XK_Escape}, KeyPosition{114, XK_Insert},
    KeyPosition{115, XK_Home}, KeyPosition{116, XK_Page_Up}, KeyPosition{117, XK_Delete},
    KeyPosition{119, XK_End}, KeyPosition{121, XK_Page_Down}, KeyPosition{123, XK_Left},
    KeyPosition{124, XK_Right}, KeyPosition{125, XK_Down}, KeyPosition{126, XK_Up},
    // Function keys.
    KeyPosition{122, XK_F1}, KeyPosition{120, XK_F2}, KeyPosition{99, XK_F3}, KeyPosition{118, XK_F4},
    KeyPosition{96, XK_F5}, KeyPosition{97, XK_F6}, KeyPosition{98, XK_F7}, KeyPosition{100, XK_F8},
    KeyPosition{101, XK_F9}, KeyPosition{109, XK_F10}, KeyPosition{103, XK_F11}, KeyPosition{111, XK_F12},
    KeyPosition{105, XK_F13}, KeyPosition{107, XK_F14}, KeyPosition{113, XK_F15}, KeyPosition{106, XK_F16},
    KeyPosition{64, XK_F17}, KeyPosition{79, XK_F18}, KeyPosition{80, XK_F19}, KeyPosition{90, XK_F20},
    // Keypad; the digits are the keysyms of NumLock on, the key is the same either way.
    KeyPosition{65, XK_KP_Decimal}, KeyPosition{67, XK_KP_Multiply}, KeyPosition{69, XK_KP_Add},
    KeyPosition{71, XK_Num_Lock}, KeyPosition{75, XK_KP_Divide}, KeyPosition{76, XK_KP_Enter},
    KeyPosition{78, XK_KP_Subtract}, KeyPosition{81, XK_KP_Equal}, KeyPosition{82, XK_KP_0},
    KeyPosition{83, XK_KP_1}, KeyPosition{84, XK_KP_2}, KeyPosition{85, XK_KP_3}, KeyPosition{86, XK_KP_4},
    KeyPosition{87, XK_KP_5}, KeyPosition{88, XK_KP_6}, KeyPosition{89, XK_KP_7}, KeyPosition{91, XK_KP_8},
    KeyPosition{92, XK_KP_9},
};

// What the same keys type with Shift on the US layout, for recording.
constexpr std::pair<std::uint32_t, std::uint32_t> shiftedPunctuation[]{
    {XK_exclam, XK_1}, {XK_at, XK_2}, {XK_numbersign, XK_3},
    {XK_dollar, XK_4}, {XK_percent, XK_5}, {XK_asciicircum, XK_6}, {XK_ampersand, XK_7},
    {XK_asterisk, XK_8}, {XK_parenleft, XK_9}, {XK_parenright, XK_0}, {XK_underscore, XK_minus},
    {XK_plus, XK_equal}, {XK_braceleft, XK_bracketleft}, {XK_braceright, XK_bracketright},
    {XK_bar, XK_backslash}, {XK_colon, XK_semicolon}, {XK_quotedbl, XK_apostrophe},
    {XK_less, XK_comma}, {XK_greater, XK_period}, {XK_question, XK_slash}, {XK_asciitilde, XK_grave},
    {XK_ISO_Left_Tab, XK_Tab}, {XK_KP_Delete, XK_KP_Decimal}, {XK_KP_Insert, XK_KP_0},
    {XK_KP_End, XK_KP_1}, {XK_KP_Down, XK_KP_2}, {XK_KP_Page_Down, XK_KP_3}, {XK_KP_Left, XK_KP_4},
    {XK_KP_Begin, XK_KP_5}, {XK_KP_Right, XK_KP_6}, {XK_KP_Home, XK_KP_7}, {XK_KP_Up, XK_KP_8},
    {XK_KP_Page_Up, XK_KP_9},
};
// clang-format on

} // namespace

std::optional<std::uint32_t> keysymForMacKeyCode(std::uint32_t keyCode) {
    const auto *found = std::find_if(keyPositions.begin(), keyPositions.end(),
                                     [keyCode](const KeyPosition &key) { return key.macKeyCode == keyCode; });
    if (found == keyPositions.end())
        return std::nullopt;
    return found->keysym;
}

std::optional<std::uint32_t> macKeyCodeForKeysym(std::uint32_t keysym) {
    if (keysym >= XK_A && keysym <= XK_Z)
        keysym += XK_a - XK_A;
    for (const auto &[shifted, unshifted] : shiftedPunctuation) {
        if (shifted == keysym) {
            keysym = unshifted;
            break;
        }
    }
    const auto *found = std::find_if(keyPositions.begin(), keyPositions.end(),
                                     [keysym](const KeyPosition &key) { return key.keysym == keysym; });
    if (found == keyPositions.end())
        return std::nullopt;
    return found->macKeyCode;
}

} // namespace glyphmill
