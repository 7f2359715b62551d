// Conversion between UTF-8 at the program's edges and the UTF-16 the engine works on.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace glyphmill::utf8 {

struct DecodeError {
    std::size_t byteOffset; // of the first byte that is not part of valid UTF-8
};

// Strict UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
// On failure nothing is written to out.
std::optional<DecodeError> decode(std::string_view bytes, std::u16string &out);
std::u16string decodeLossy(std::string_view bytes); // bad sequences become U+FFFD

// An unpaired surrogate becomes U+FFFD.
void encode(std::u16string_view text, std::string &out);
std::string encode(std::u16string_view text);
// False, writing nothing, when the text holds an unpaired surrogate.
bool encodeStrict(std::u16string_view text, std::string &out);

} // namespace glyphmill::utf8
