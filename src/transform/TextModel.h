// The text model shared by every transform: code points, grapheme clusters, the grapheme
// classes, full locale-independent case mapping, and caseless comparison.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace glyphmill::text {

inline constexpr char16_t lineFeed = u'\n';
inline constexpr char16_t carriageReturn = u'\r';
inline constexpr char16_t placeholderStart = u'\uE000';
inline constexpr char16_t placeholderEnd = u'\uE001';

inline bool isLeadSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
inline bool isTrailSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// The code point at index (an unpaired surrogate stands for itself).
inline char32_t codePointAt(std::u16string_view text, std::size_t index) {
    char16_t unit = text[index];
    if (isLeadSurrogate(unit) && index + 1 < text.size() && isTrailSurrogate(text[index + 1]))
        return 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(text[index + 1]) - 0xDC00);
    return unit;
}
// The code point that ends just before index.
inline char32_t codePointBefore(std::u16string_view text, std::size_t index) {
    char16_t unit = text[index - 1];
    if (isTrailSurrogate(unit) && index >= 2 && isLeadSurrogate(text[index - 2]))
        return 0x10000 + ((char32_t(text[index - 2]) - 0xD800) << 10) + (char32_t(unit) - 0xDC00);
    return unit;
}
inline std::size_t codeUnitCount(char32_t codePoint) {
    return codePoint >= 0x10000 ? 2 : 1;
}
inline void appendCodePoint(std::u16string &out, char32_t codePoint) {
    if (codePoint >= 0x10000) {
        out.push_back(char16_t(0xD800 + ((codePoint - 0x10000) >> 10)));
        out.push_back(char16_t(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
    } else {
        out.push_back(char16_t(codePoint));
    }
}

// Walks extended grapheme clusters (UAX #29, as ICU draws them) over one text. Boundaries
// between everyday characters are decided in place; only emoji sequences and regional
// indicators ask ICU's break iterator.
class GraphemeCursor {
public:
    explicit GraphemeCursor(std::u16string_view text) : text_(text) {}
    // The end of the grapheme that starts at start (start < size).
    std::size_t next(std::size_t start) const {
        // Below U+0300 every pair of characters is a boundary except CR LF.
        char16_t first = text_[start];
        std::size_t following = start + 1;
        if (first < 0x300 && (following >= text_.size() || text_[following] < 0x300))
            return (first == carriageReturn && following < text_.size() && text_[following] == lineFeed)
                       ? following + 1
                       : following;
        return slowNext(start);
    }
    std::u16string_view text() const { return text_; }

private:
    std::size_t slowNext(std::size_t start) const;
    std::u16string_view text_;
};

std::size_t graphemeCount(std::u16string_view text);

// Whether the BMP character at index forms a grapheme on its own, when index starts a grapheme
// or the character is a line feed: nothing joins it from either side.
bool isStandaloneGrapheme(std::u16string_view text, std::size_t index);

inline bool isAsciiLetter(char16_t unit) {
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}
inline bool isAsciiDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
inline bool isAsciiAlphanumeric(char16_t unit) {
    return isAsciiLetter(unit) || isAsciiDigit(unit);
}
inline bool isAsciiWhiteSpace(char16_t unit) {
    return unit == u' ' || (unit >= 0x09 && unit <= 0x0D);
}

namespace detail {
bool isAlphabeticGrapheme(std::u16string_view grapheme);
bool isLetterGrapheme(std::u16string_view grapheme);
bool isNumericGrapheme(std::u16string_view grapheme);
bool isWhiteSpaceGrapheme(std::u16string_view grapheme);
bool isUppercaseGrapheme(std::u16string_view grapheme);
} // namespace detail

// Grapheme classes; each takes one whole grapheme. One ASCII character is answered in place.
inline bool isAlphabeticGrapheme(std::u16string_view g) {
    return g[0] < 0x80 ? isAsciiLetter(g[0]) : detail::isAlphabeticGrapheme(g);
}
inline bool isLetterGrapheme(std::u16string_view g) {
    return g.size() == 1 && g[0] < 0x80 ? isAsciiLetter(g[0]) : detail::isLetterGrapheme(g);
}
inline bool isNumericGrapheme(std::u16string_view g) {
    return g[0] < 0x80 ? isAsciiDigit(g[0]) : detail::isNumericGrapheme(g);
}
inline bool isWhiteSpaceGrapheme(std::u16string_view g) {
    return g[0] < 0x80 ? isAsciiWhiteSpace(g[0]) : detail::isWhiteSpaceGrapheme(g);
}
inline bool isUppercaseGrapheme(std::u16string_view g) {
    return g.size() == 1 && g[0] < 0x80 ? (g[0] >= u'A' && g[0] <= u'Z') : detail::isUppercaseGrapheme(g);
}
inline bool isLineFeedGrapheme(std::u16string_view g) {
    return g.size() == 1 && g[0] == lineFeed;
}

bool isLetterOrMark(char32_t codePoint);        // general category L or M
bool isLetterMarkOrNumber(char32_t codePoint);  // general category L, M or N
bool isWhiteSpaceOrNewline(char32_t codePoint); // category Z, U+000A..U+000D, U+0085

// Full locale-independent case mapping of a whole string (the final sigma rule included).
std::u16string upperMapped(std::u16string_view text);
std::u16string lowerMapped(std::u16string_view text);
void appendUpperMapped(std::u16string &out, std::u16string_view text);
void appendLowerMapped(std::u16string &out, std::u16string_view text);

// Upper-mapped first grapheme, then the lower-mapped rest.
std::u16string capitalizedWord(std::u16string_view word);
void appendCapitalizedWord(std::u16string &out, std::u16string_view word);

// One of the 23 minor words of titles, compared after lower-mapping.
bool isMinorWord(std::u16string_view word);

// Canonical caseless form: NFD of the full case folding of the NFD.
std::u16string caselessForm(std::u16string_view text);
bool equalIgnoringCase(std::u16string_view a, std::u16string_view b);

// Without white space and line breaks at either end.
std::u16string_view trimmedWhiteSpaceAndNewlines(std::u16string_view text);

} // namespace glyphmill::text
