// Scans over UTF-16 that look at eight code units at a time where SSE2 is available.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace glyphmill::scan {

// The first index at or after from whose unit is one of the four given, or text.size().
inline std::size_t findAnyOf(std::u16string_view text, std::size_t from, char16_t a, char16_t b, char16_t c,
                             char16_t d) {
    const std::size_t size = text.size();
    const char16_t *data = text.data();
    std::size_t i = from;
#if defined(__SSE2__)
    const __m128i va = _mm_set1_epi16(short(a)), vb = _mm_set1_epi16(short(b));
    const __m128i vc = _mm_set1_epi16(short(c)), vd = _mm_set1_epi16(short(d));
    for (; i + 8 <= size; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + i));
        __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(units, va), _mm_cmpeq_epi16(units, vb)),
                                    _mm_or_si128(_mm_cmpeq_epi16(units, vc), _mm_cmpeq_epi16(units, vd)));
        int mask = _mm_movemask_epi8(hits);
        if (mask != 0)
            return i + std::size_t(__builtin_ctz(unsigned(mask)) / 2);
    }
#endif
    for (; i < size; ++i) {
        char16_t unit = data[i];
        if (unit == a || unit == b || unit == c || unit == d)
            return i;
    }
    return size;
}

inline std::size_t findAnyOf(std::u16string_view text, std::size_t from, char16_t a) {
    return findAnyOf(text, from, a, a, a, a);
}

// The number of units from from on that are all below 0x80, counted in blocks of eight.
inline std::size_t asciiBlockRun(const char16_t *data, std::size_t size) {
    std::size_t i = 0;
#if defined(__SSE2__)
    const __m128i high = _mm_set1_epi16(short(0xFF80));
    for (; i + 8 <= size; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + i));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(units, high), _mm_setzero_si128())) != 0xFFFF)
            break;
    }
#else
    (void)data;
    (void)size;
#endif
    return i;
}

// For eight units from data: bit k is set when unit k is ASCII white space (tab to carriage
// return, or space); none when a unit is not ASCII.
inline std::optional<unsigned> asciiWhiteSpaceMask8(const char16_t *data) {
#if defined(__SSE2__)
    __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(units, _mm_set1_epi16(short(0xFF80))),
                                          _mm_setzero_si128())) != 0xFFFF)
        return std::nullopt;
    __m128i space = _mm_cmpeq_epi16(units, _mm_set1_epi16(u' '));
    __m128i control = _mm_and_si128(_mm_cmpgt_epi16(units, _mm_set1_epi16(0x08)),
                                    _mm_cmplt_epi16(units, _mm_set1_epi16(0x0E)));
    __m128i white = _mm_or_si128(space, control);
    return unsigned(_mm_movemask_epi8(_mm_packs_epi16(white, _mm_setzero_si128())));
#else
    unsigned mask = 0;
    for (int k = 0; k < 8; ++k) {
        if (data[k] >= 0x80)
            return std::nullopt;
        if (data[k] == u' ' || (data[k] >= 0x09 && data[k] <= 0x0D))
            mask |= 1u << k;
    }
    return mask;
#endif
}

// The first index at or after from whose unit is an ASCII capital or not ASCII, or text.size().
inline std::size_t findAsciiCapitalOrNonAscii(std::u16string_view text, std::size_t from) {
    const std::size_t size = text.size();
    const char16_t *data = text.data();
    std::size_t i = from;
#if defined(__SSE2__)
    const __m128i beforeA = _mm_set1_epi16(u'A' - 1), afterZ = _mm_set1_epi16(u'Z' + 1);
    const __m128i lastAscii = _mm_set1_epi16(0x7F);
    for (; i + 8 <= size; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + i));
        __m128i capital = _mm_and_si128(_mm_cmpgt_epi16(units, beforeA), _mm_cmplt_epi16(units, afterZ));
        // Units of 0x8000 and above compare as negative, so test the high bits apart.
        __m128i high =
            _mm_or_si128(_mm_cmpgt_epi16(units, lastAscii), _mm_cmplt_epi16(units, _mm_setzero_si128()));
        int mask = _mm_movemask_epi8(_mm_or_si128(capital, high));
        if (mask != 0)
            return i + std::size_t(__builtin_ctz(unsigned(mask)) / 2);
    }
#endif
    for (; i < size; ++i)
        if (data[i] >= 0x80 || (data[i] >= u'A' && data[i] <= u'Z'))
            return i;
    return size;
}

// The first index at or after from whose unit is not an ASCII letter (nor, withDigits, an
// ASCII digit), or text.size().
template <bool withDigits>
inline std::size_t findOutsideAsciiWord(std::u16string_view text, std::size_t from) {
    const std::size_t size = text.size();
    const char16_t *data = text.data();
    std::size_t i = from;
#if defined(__SSE2__)
    const __m128i caseBit = _mm_set1_epi16(0x20);
    const __m128i beforeA = _mm_set1_epi16(u'a' - 1), afterZ = _mm_set1_epi16(u'z' + 1);
    const __m128i before0 = _mm_set1_epi16(u'0' - 1), after9 = _mm_set1_epi16(u'9' + 1);
    for (; i + 8 <= size; i += 8) {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + i));
        __m128i folded = _mm_or_si128(units, caseBit);
        __m128i inside = _mm_and_si128(_mm_cmpgt_epi16(folded, beforeA), _mm_cmplt_epi16(folded, afterZ));
        if constexpr (withDigits)
            inside = _mm_or_si128(
                inside, _mm_and_si128(_mm_cmpgt_epi16(units, before0), _mm_cmplt_epi16(units, after9)));
        int mask = _mm_movemask_epi8(inside);
        if (mask != 0xFFFF)
            return i + std::size_t(__builtin_ctz(unsigned(~mask & 0xFFFF)) / 2);
    }
#endif
    for (; i < size; ++i) {
        char16_t unit = data[i];
        bool inside = (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
        if constexpr (withDigits)
            inside = inside || (unit >= u'0' && unit <= u'9');
        if (!inside)
            return i;
    }
    return size;
}

inline std::size_t findNonAsciiLetter(std::u16string_view text, std::size_t from) {
    return findOutsideAsciiWord<false>(text, from);
}
inline std::size_t findNonAsciiAlphanumeric(std::u16string_view text, std::size_t from) {
    return findOutsideAsciiWord<true>(text, from);
}

} // namespace glyphmill::scan
