// The five span detectors. Each returns the matches, in order and without overlaps, that
// ICU's regular-expression engine finds for the detector's pattern over the whole text:
//   links      (?i)\b(?:https?://|www\.)[^\s<>'\"]+
//   e-mail     [A-Z0-9._%+\-]+@[A-Z0-9.\-]+\.[A-Z]{2,}           (case-insensitive)
//   paths      (?:/(?:Users|home|var|tmp|private|Applications|Library|System|Volumes)(?:/[^\s]*)?
//              |~(?:/[^\s]*)?|[A-Za-z]:\\[^\s]*)
//   tags       [@#][\p{L}\p{N}_]+
//   code       `[^`]+`
// Instead of trying the pattern at every position, each detector jumps to the characters a
// match must start with or contain, so the cost follows the number of candidates.
#pragma once

#include "TextModel.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace glyphmill {

struct TextRange {
    std::size_t start;
    std::size_t end;
    friend bool operator==(const TextRange &, const TextRange &) = default;
};

std::vector<TextRange> findLinks(std::u16string_view text);
std::vector<TextRange> findEmailAddresses(std::u16string_view text);
std::vector<TextRange> findFilePaths(std::u16string_view text);
std::vector<TextRange> findHashtagsAndMentions(std::u16string_view text);
std::vector<TextRange> findCodeSpans(std::u16string_view text);

// ICU's \s and \w, and its default (non-UAX #29) \b at a code point boundary.
bool isRegexSpace(char32_t codePoint);
bool isRegexWordCharacter(char32_t codePoint);
bool isRegexWordBoundary(std::u16string_view text, std::size_t position);

// The same, answered in place when the characters on both sides are ASCII (never combining).
inline bool isRegexWordBoundaryQuick(std::u16string_view text, std::size_t position) {
    auto isAsciiWord = [](char16_t unit) { return text::isAsciiAlphanumeric(unit) || unit == u'_'; };
    bool currentAscii = position >= text.size() || text[position] < 0x80;
    bool previousAscii = position == 0 || text[position - 1] < 0x80;
    if (!currentAscii || !previousAscii)
        return isRegexWordBoundary(text, position);
    bool current = position < text.size() && isAsciiWord(text[position]);
    bool previous = position > 0 && isAsciiWord(text[position - 1]);
    return current != previous;
}

} // namespace glyphmill
