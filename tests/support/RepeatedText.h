// A piece written count times over: the long and deep inputs of the tests.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace glyphmill {

inline std::string repeated(std::string_view piece, std::size_t count) {
    std::string out;
    out.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

inline std::u16string repeated(std::u16string_view piece, std::size_t count) {
    std::u16string out;
    out.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

} // namespace glyphmill
