#include "SpanDetectors.h"

#include "FastScan.h"
#include "TextModel.h"

#include <unicode/uchar.h>

#include <optional>

namespace glyphmill {
namespace {

using text::codePointAt;
using text::codePointBefore;
using text::codeUnitCount;
using text::isAsciiAlphanumeric;
using text::isAsciiLetter;

// [A-Z0-9._%+\-] matched without regard to case: ICU closes the set over case, which adds
// the long s and the Kelvin sign.
bool isEmailLocalCharacter(char32_t c) {
    if (c < 0x80) {
        auto unit = char16_t(c);
        return isAsciiAlphanumeric(unit) || unit == u'.' || unit == u'_' || unit == u'%' || unit == u'+' ||
               unit == u'-';
    }
    return c == 0x017F || c == 0x212A;
}

// [A-Z0-9.\-] and [A-Z] without regard to case.
bool isEmailDomainCharacter(char16_t c) {
    return isAsciiAlphanumeric(c) || c == u'.' || c == u'-' || c == 0x017F || c == 0x212A;
}
bool isEmailTopLevelCharacter(char16_t c) {
    return isAsciiLetter(c) || c == 0x017F || c == 0x212A;
}

// The end of "@[A-Z0-9.\-]+\.[A-Z]{2,}" matched from the @ at position at, if it matches: the
// greedy domain run gives back characters until a full stop is followed by two or more letters.
std::optional<std::size_t> emailDomainEnd(std::u16string_view text, std::size_t at) {
    std::size_t runEnd = at + 1;
    while (runEnd < text.size() && isEmailDomainCharacter(text[runEnd]))
        ++runEnd;
    for (std::size_t dot = runEnd; dot-- > at + 2;) {
        if (text[dot] != u'.')
            continue;
        std::size_t end = dot + 1;
        while (end < text.size() && isEmailTopLevelCharacter(text[end]))
            ++end;
        if (end - dot - 1 >= 2)
            return end;
    }
    return std::nullopt;
}

// The end of "[^\s<>'\"]+" from position i, if at least one character qualifies.
std::optional<std::size_t> linkTailEnd(std::u16string_view text, std::size_t i) {
    std::size_t end = i;
    while (end < text.size()) {
        char32_t c = codePointAt(text, end);
        if (c == u'<' || c == u'>' || c == u'\'' || c == u'"' || isRegexSpace(c))
            break;
        end += codeUnitCount(c);
    }
    return end > i ? std::optional(end) : std::nullopt;
}

bool equalsIgnoringAsciiCase(std::u16string_view text, std::size_t start, std::u16string_view lower) {
    if (start + lower.size() > text.size())
        return false;
    for (std::size_t k = 0; k < lower.size(); ++k) {
        char16_t unit = text[start + k];
        if (unit >= 0x80 || char16_t(unit | 0x20) != lower[k])
            return false;
    }
    return true;
}

// A link starts with "http://", "https://" or "www." in any letter case (the s may also be
// the long s, which folds to s). Every link therefore holds "://" or "www." near its start:
// given the colon or the full stop, this is where the link would start.
std::optional<std::size_t> linkStartBefore(std::u16string_view text, std::size_t anchor) {
    if (text[anchor] == u'.')
        return anchor >= 3 && equalsIgnoringAsciiCase(text, anchor - 3, u"www") ? std::optional(anchor - 3)
                                                                                : std::nullopt;
    if (anchor + 2 >= text.size() || text[anchor + 1] != u'/' || text[anchor + 2] != u'/' || anchor < 4)
        return std::nullopt;
    if (equalsIgnoringAsciiCase(text, anchor - 4, u"http"))
        return anchor - 4;
    char16_t s = text[anchor - 1];
    if (anchor >= 5 && (s == u's' || s == u'S' || s == 0x017F) &&
        equalsIgnoringAsciiCase(text, anchor - 5, u"http"))
        return anchor - 5;
    return std::nullopt;
}

// The end of the run of non-space code points that starts at i.
std::size_t skipNonSpace(std::u16string_view text, std::size_t i) {
    while (i < text.size()) {
        char16_t unit = text[i];
        if (unit < 0x80) {
            if (unit == u' ' || (unit >= 0x09 && unit <= 0x0D))
                break;
            ++i;
            continue;
        }
        char32_t c = codePointAt(text, i);
        if (isRegexSpace(c))
            break;
        i += codeUnitCount(c);
    }
    return i;
}

// The end of a path match that starts at i, if one does.
std::optional<std::size_t> pathMatchAt(std::u16string_view text, std::size_t i) {
    static constexpr std::u16string_view topFolders[] = {
        u"Users", u"home", u"var", u"tmp", u"private", u"Applications", u"Library", u"System", u"Volumes"};
    auto optionalTail = [&](std::size_t end) {
        return (end < text.size() && text[end] == u'/') ? skipNonSpace(text, end + 1) : end;
    };
    char16_t unit = text[i];
    if (unit == u'/') {
        for (auto folder : topFolders)
            if (text.substr(i + 1, folder.size()) == folder)
                return optionalTail(i + 1 + folder.size());
        return std::nullopt;
    }
    if (unit == u'~')
        return optionalTail(i + 1);
    if (isAsciiLetter(unit) && i + 2 < text.size() && text[i + 1] == u':' && text[i + 2] == u'\\')
        return skipNonSpace(text, i + 3);
    return std::nullopt;
}

bool isTagCharacter(char32_t c) {
    if (c < 0x80)
        return isAsciiAlphanumeric(char16_t(c)) || c == u'_';
    return (U_GET_GC_MASK(UChar32(c)) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

bool isCombiningForBoundary(char32_t c) {
    return u_hasBinaryProperty(UChar32(c), UCHAR_GRAPHEME_EXTEND) || u_charType(UChar32(c)) == U_FORMAT_CHAR;
}

} // namespace

bool isRegexSpace(char32_t c) {
    if (c < 0x80)
        return c == u' ' || (c >= 0x09 && c <= 0x0D);
    return u_isUWhiteSpace(UChar32(c));
}

bool isRegexWordCharacter(char32_t c) {
    if (c < 0x80)
        return isAsciiAlphanumeric(char16_t(c)) || c == u'_';
    if (c == 0x200C || c == 0x200D)
        return true;
    if (u_isUAlphabetic(UChar32(c)))
        return true;
    return (U_GET_GC_MASK(UChar32(c)) & (U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK)) != 0;
}

bool isRegexWordBoundary(std::u16string_view text, std::size_t position) {
    bool currentIsWord = false;
    if (position < text.size()) {
        char32_t c = codePointAt(text, position);
        if (c >= 0x80 && isCombiningForBoundary(c))
            return false;
        currentIsWord = isRegexWordCharacter(c);
    }
    // The word-ness of the character before, looking through combining marks.
    bool previousIsWord = false;
    for (std::size_t i = position; i > 0;) {
        char32_t c = codePointBefore(text, i);
        i -= codeUnitCount(c);
        if (c < 0x80 || !isCombiningForBoundary(c)) {
            previousIsWord = isRegexWordCharacter(c);
            break;
        }
    }
    return currentIsWord != previousIsWord;
}

std::vector<TextRange> findLinks(std::u16string_view text) {
    std::vector<TextRange> matches;
    std::size_t searchFrom = 0;
    for (std::size_t anchor = 0;
         (anchor = scan::findAnyOf(text, anchor, u':', u'.', u':', u'.')) < text.size(); ++anchor) {
        auto start = linkStartBefore(text, anchor);
        if (!start || *start < searchFrom)
            continue;
        // The prefix is "www." (4) or "http://" / "https://" (the anchor plus 3).
        std::size_t prefixEnd = text[anchor] == u'.' ? anchor + 1 : anchor + 3;
        if (!isRegexWordBoundary(text, *start))
            continue;
        if (auto end = linkTailEnd(text, prefixEnd)) {
            matches.push_back({*start, *end});
            searchFrom = *end;
            anchor = *end - 1;
        }
    }
    return matches;
}

std::vector<TextRange> findEmailAddresses(std::u16string_view text) {
    std::vector<TextRange> matches;
    std::size_t searchFrom = 0;
    for (std::size_t at = scan::findAnyOf(text, 0, u'@'); at < text.size();
         at = scan::findAnyOf(text, at + 1, u'@')) {
        if (at < searchFrom)
            continue;
        // Every match holds exactly one @, and the leftmost one starts where the run of
        // local-part characters before it starts.
        std::size_t start = at;
        while (start > searchFrom) {
            char32_t c = codePointBefore(text, start);
            if (!isEmailLocalCharacter(c))
                break;
            start -= codeUnitCount(c);
        }
        if (start == at)
            continue;
        if (auto end = emailDomainEnd(text, at)) {
            matches.push_back({start, *end});
            searchFrom = *end;
        }
    }
    return matches;
}

std::vector<TextRange> findFilePaths(std::u16string_view text) {
    std::vector<TextRange> matches;
    std::size_t searchFrom = 0;
    for (std::size_t i = 0; (i = scan::findAnyOf(text, i, u'/', u'~', u':', u'/')) < text.size(); ++i) {
        char16_t unit = text[i];
        std::size_t start;
        if (unit == u'/' || unit == u'~')
            start = i;
        else if (unit == u':' && i > 0)
            start = i - 1; // a drive letter
        else
            continue; // a colon at the very start
        if (start < searchFrom)
            continue;
        if (auto end = pathMatchAt(text, start)) {
            matches.push_back({start, *end});
            searchFrom = *end;
            i = *end - 1;
        }
    }
    return matches;
}

std::vector<TextRange> findHashtagsAndMentions(std::u16string_view text) {
    std::vector<TextRange> matches;
    for (std::size_t i = 0; (i = scan::findAnyOf(text, i, u'@', u'#', u'@', u'#')) < text.size(); ++i) {
        std::size_t end = i + 1;
        while (end < text.size()) {
            char32_t c = codePointAt(text, end);
            if (!isTagCharacter(c))
                break;
            end += codeUnitCount(c);
        }
        if (end > i + 1) {
            matches.push_back({i, end});
            i = end - 1;
        }
    }
    return matches;
}

std::vector<TextRange> findCodeSpans(std::u16string_view text) {
    std::vector<TextRange> matches;
    std::size_t open = scan::findAnyOf(text, 0, u'`');
    while (open < text.size()) {
        std::size_t close = scan::findAnyOf(text, open + 1, u'`');
        if (close == text.size())
            break;
        if (close == open + 1) { // nothing between: the second backtick may open a span
            open = close;
            continue;
        }
        matches.push_back({open, close + 1});
        open = scan::findAnyOf(text, close + 1, u'`');
    }
    return matches;
}

} // namespace glyphmill
