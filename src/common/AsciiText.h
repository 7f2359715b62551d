// Byte-level classes of ASCII characters, for the readers of formats whose syntax is ASCII (RTF
// control words, HTML names and character references). Anything outside ASCII, and the -1 a reader
// uses for the end of its input, is in no class.
#pragma once

namespace glyphmill::ascii {

constexpr bool isLetter(int c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit in either case; -1 for any other character.
constexpr int hexValue(int c) {
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace glyphmill::ascii
