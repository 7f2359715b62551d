#include "common/Utf8.h"

#include <cstdint>
#include <cstring>

namespace glyphmill::utf8 {
namespace {

constexpr char16_t replacementCharacter = 0xFFFD;

bool allAscii8(const unsigned char *p) {
    std::uint64_t block;
    std::memcpy(&block, p, 8);
    return (block & 0x8080808080808080ULL) == 0;
}

// Decodes one non-ASCII sequence at bytes[i]; returns its length, or 0 when invalid.
std::size_t decodeSequence(const unsigned char *p, std::size_t available, char32_t &codePoint) {
    unsigned char lead = p[0];
    std::size_t length;
    char32_t minimum;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, minimum = 0x80, codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, minimum = 0x800, codePoint = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, minimum = 0x10000, codePoint = lead & 0x07;
    } else {
        return 0;
    }
    if (available < length)
        return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((p[k] & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (p[k] & 0x3F);
    }
    if (codePoint < minimum || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        return 0;
    return length;
}

// Decodes into out; the strict form stops at the first invalid byte and reports its offset.
template <bool lossy> std::optional<DecodeError> decodeInto(std::string_view bytes, std::u16string &out) {
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.data());
    const std::size_t size = bytes.size();
    std::size_t start = out.size();
    out.resize(start + size); // UTF-16 never needs more units than UTF-8 has bytes
    char16_t *dest = out.data() + start;
    std::size_t i = 0;
    while (i < size) {
        if (i + 8 <= size && allAscii8(data + i)) {
            for (int k = 0; k < 8; ++k)
                *dest++ = data[i + k];
            i += 8;
            continue;
        }
        if (data[i] < 0x80) {
            *dest++ = data[i++];
            continue;
        }
        char32_t codePoint;
        std::size_t length = decodeSequence(data + i, size - i, codePoint);
        if (length == 0) {
            if constexpr (lossy) {
                *dest++ = replacementCharacter;
                ++i;
                continue;
            } else {
                out.resize(start);
                return DecodeError{i};
            }
        }
        if (codePoint >= 0x10000) {
            *dest++ = char16_t(0xD800 + ((codePoint - 0x10000) >> 10));
            *dest++ = char16_t(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
        } else {
            *dest++ = char16_t(codePoint);
        }
        i += length;
    }
    out.resize(std::size_t(dest - out.data()));
    return std::nullopt;
}

} // namespace

std::optional<DecodeError> decode(std::string_view bytes, std::u16string &out) {
    return decodeInto<false>(bytes, out);
}

std::u16string decodeLossy(std::string_view bytes) {
    std::u16string out;
    decodeInto<true>(bytes, out);
    return out;
}

void encode(std::u16string_view text, std::string &out) {
    std::size_t start = out.size();
    out.resize(start + text.size() * 3); // worst case: three bytes per unit
    auto *dest = reinterpret_cast<unsigned char *>(out.data() + start);
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size; ++i) {
        char32_t c = text[i];
        if (c < 0x80) {
            *dest++ = static_cast<unsigned char>(c);
            continue;
        }
        if (c < 0x800) {
            *dest++ = static_cast<unsigned char>(0xC0 | (c >> 6));
            *dest++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
            continue;
        }
        if ((c & 0xFC00) == 0xD800 && i + 1 < size && (text[i + 1] & 0xFC00) == 0xDC00) {
            c = 0x10000 + ((c - 0xD800) << 10) + (char32_t(text[++i]) - 0xDC00);
            *dest++ = static_cast<unsigned char>(0xF0 | (c >> 18));
            *dest++ = static_cast<unsigned char>(0x80 | ((c >> 12) & 0x3F));
            *dest++ = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
            *dest++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
            continue;
        }
        if ((c & 0xF800) == 0xD800)
            c = replacementCharacter;
        *dest++ = static_cast<unsigned char>(0xE0 | (c >> 12));
        *dest++ = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3F));
        *dest++ = static_cast<unsigned char>(0x80 | (c & 0x3F));
    }
    out.resize(std::size_t(reinterpret_cast<char *>(dest) - out.data()));
}

std::string encode(std::u16string_view text) {
    std::string out;
    encode(text, out);
    return out;
}

bool encodeStrict(std::u16string_view text, std::string &out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xF800) != 0xD800)
            continue;
        if ((text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
            ++i;
            continue;
        }
        return false;
    }
    encode(text, out);
    return true;
}

} // namespace glyphmill::utf8
