#include "CaseRules.h"

#include "FastScan.h"
#include "LineChunks.h"
#include "ProtectedSpans.h"
#include "SpanDetectors.h"
#include "TextModel.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace glyphmill {
namespace {

using text::codePointAt;
using text::codeUnitCount;
using text::GraphemeCursor;

constexpr std::size_t minimumAlphabeticForAllCaps = 4;
constexpr double allCapsShare = 0.85;
constexpr std::size_t looksAllCapsMinimumLetters = 5;
constexpr double looksAllCapsShare = 0.92;

bool isTerminatorUnit(char16_t unit) {
    return unit == u'.' || unit == u'!' || unit == u'?' || unit == 0x2026;
}
bool isSentenceTerminator(std::u16string_view g) {
    return g.size() == 1 && isTerminatorUnit(g[0]);
}
bool isBullet(std::u16string_view g) {
    return g == u"\u2022" || g == u"-" || g == u"*" || g == u"\u2013" || g == u"\u2014";
}

bool containsPrivateUse(std::u16string_view text) {
    for (char16_t unit : text)
        if (unit >= 0xE000 && unit <= 0xF8FF)
            return true;
    return false;
}

bool isLetter(char32_t c) {
    if (c < 0x80)
        return text::isAsciiLetter(char16_t(c));
    return (U_GET_GC_MASK(UChar32(c)) & U_GC_L_MASK) != 0;
}
bool isUppercaseLetter(char32_t c) {
    if (c < 0x80)
        return c >= u'A' && c <= u'Z';
    return u_charType(UChar32(c)) == U_UPPERCASE_LETTER;
}

// All matches of \b[class]{minimum,}\b, as ICU's engine finds them left to right.
// skipTo(text, i) gives the first position at or after i where a run could start;
// asciiRunEnd(text, i) the end of the run of ASCII class members from i.
template <typename InClass, typename SkipTo, typename AsciiRunEnd>
std::vector<TextRange> findBoundedRuns(std::u16string_view text, InClass inClass, std::size_t minimum,
                                       SkipTo skipTo, AsciiRunEnd asciiRunEnd) {
    std::vector<TextRange> matches;
    std::size_t i = 0;
    while ((i = skipTo(text, i)) < text.size()) {
        char32_t c = codePointAt(text, i);
        if (!inClass(c) || !isRegexWordBoundaryQuick(text, i)) {
            i += codeUnitCount(c);
            continue;
        }
        std::size_t runEnd = i;
        std::size_t count = 0;
        // ASCII members of the class first, then anything else.
        runEnd = asciiRunEnd(text, runEnd);
        count = runEnd - i;
        while (runEnd < text.size()) {
            char32_t d = codePointAt(text, runEnd);
            if (!inClass(d))
                break;
            runEnd += codeUnitCount(d);
            ++count;
        }
        // Give back code points until the end sits on a word boundary.
        std::optional<std::size_t> end;
        for (std::size_t k = runEnd; count >= minimum && count > 0; --count) {
            if (isRegexWordBoundaryQuick(text, k)) {
                end = k;
                break;
            }
            k -= codeUnitCount(text::codePointBefore(text, k));
        }
        if (end) {
            matches.push_back({i, *end});
            i = *end;
        } else {
            i += codeUnitCount(c);
        }
    }
    return matches;
}

std::vector<TextRange> findWords(std::u16string_view text) {
    return findBoundedRuns(
        text, [](char32_t c) { return isLetter(c); }, 1, [](std::u16string_view, std::size_t i) { return i; },
        scan::findNonAsciiLetter);
}
std::vector<TextRange> findShoutedRuns(std::u16string_view text) {
    auto capitalRunEnd = [](std::u16string_view run, std::size_t i) {
        while (i < run.size() && run[i] >= u'A' && run[i] <= u'Z')
            ++i;
        return i;
    };
    return findBoundedRuns(
        text, [](char32_t c) { return isUppercaseLetter(c); }, 2, scan::findAsciiCapitalOrNonAscii,
        capitalRunEnd);
}

struct LetterCounts {
    std::size_t alphabetic = 0;
    std::size_t uppercase = 0;
};

LetterCounts countLetters(std::u16string_view text) {
    GraphemeCursor cursor(text);
    LetterCounts counts;
    auto &[alphabetic, uppercase] = counts;
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size;) {
        // A block of ASCII that no mark follows: one grapheme per character.
        std::size_t block = scan::asciiBlockRun(text.data() + i, size - i);
        while (block > 0 && i + block < size && text[i + block] >= 0x300)
            block -= 8;
        for (std::size_t end = i + block; i < end; ++i) {
            char16_t unit = text[i];
            bool letter = text::isAsciiLetter(unit);
            alphabetic += letter;
            uppercase += letter && unit <= u'Z';
        }
        if (i >= size)
            break;
        char16_t unit = text[i];
        if (unit < 0x80 && (i + 1 == size || text[i + 1] < 0x300)) {
            // One ASCII character; a CR LF pair counts as no letter either way.
            if (text::isAsciiLetter(unit)) {
                ++alphabetic;
                uppercase += unit <= u'Z';
            }
            ++i;
            continue;
        }
        std::size_t end = cursor.next(i);
        auto g = text.substr(i, end - i);
        if (text::isAlphabeticGrapheme(g)) {
            ++alphabetic;
            if (text::isUppercaseGrapheme(g))
                ++uppercase;
        }
        i = end;
    }
    return counts;
}

bool isMostlyUppercase(std::u16string_view text) {
    auto chunks = lineChunks(text);
    std::vector<LetterCounts> counts(chunks.size());
    runInParallel(chunks.size(), [&](std::size_t i) { counts[i] = countLetters(chunks[i]); });
    LetterCounts total;
    for (const auto &part : counts) {
        total.alphabetic += part.alphabetic;
        total.uppercase += part.uppercase;
    }
    if (total.alphabetic < minimumAlphabeticForAllCaps)
        return false;
    return double(total.uppercase) / double(total.alphabetic) >= allCapsShare;
}

// Rebuilds text with each range replaced by what replace(range text) gives; a none keeps it.
template <typename Replace>
std::u16string replaceRanges(std::u16string_view text, const std::vector<TextRange> &ranges,
                             Replace replace) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t copied = 0;
    for (const auto &range : ranges) {
        out.append(text.substr(copied, range.start - copied));
        auto matched = text.substr(range.start, range.end - range.start);
        if (!replace(out, matched))
            out.append(matched);
        copied = range.end;
    }
    out.append(text.substr(copied));
    return out;
}

// The words of a text and whether they still stand where they stood (see capitalizeAllCapsWords).
struct WordsFound {
    std::vector<TextRange> words;
    bool stillValid = true;
};

// Capitalises the words in capitals. When every word it changed was ASCII, each changed word
// kept its length and its letters, so the text's words are the same ranges afterwards and
// words.stillValid spares the next step a search.
std::u16string capitalizeAllCapsWords(std::u16string_view text, WordsFound &found) {
    found.words = findWords(text);
    return replaceRanges(text, found.words, [&](std::u16string &out, std::u16string_view word) {
        if (std::all_of(word.begin(), word.end(), [](char16_t unit) { return unit < 0x80; })) {
            // ASCII letters, one grapheme each.
            if (!std::all_of(word.begin(), word.end(), [](char16_t unit) { return unit <= u'Z'; }))
                return false;
            text::appendCapitalizedWord(out, word);
            return true;
        }
        if (containsPrivateUse(word))
            return false;
        GraphemeCursor cursor(word);
        bool anyAlphabetic = false;
        for (std::size_t i = 0; i < word.size();) {
            std::size_t end = cursor.next(i);
            auto g = word.substr(i, end - i);
            if (text::isAlphabeticGrapheme(g)) {
                anyAlphabetic = true;
                if (!text::isUppercaseGrapheme(g))
                    return false;
            }
            i = end;
        }
        if (!anyAlphabetic)
            return false;
        text::appendCapitalizedWord(out, text::lowerMapped(word));
        found.stillValid = false;
        return true;
    });
}

// Whether the gap between two words ends a sentence or a line.
bool gapStartsSentence(std::u16string_view gap) {
    if (gap.find_first_of(u".!?\u2026\n") == std::u16string_view::npos)
        return false;
    GraphemeCursor cursor(gap);
    for (std::size_t i = 0; i < gap.size();) {
        std::size_t end = cursor.next(i);
        auto g = gap.substr(i, end - i);
        if (isSentenceTerminator(g) || text::isLineFeedGrapheme(g))
            return true;
        i = end;
    }
    return false;
}

std::u16string lowercaseMinorWords(std::u16string_view text, const WordsFound &found) {
    bool sentenceStart = true;
    std::size_t previousEnd = 0;
    auto words = found.stillValid ? found.words : findWords(text);
    return replaceRanges(text, words, [&](std::u16string &out, std::u16string_view word) {
        auto gapStart = previousEnd;
        auto wordStart = std::size_t(word.data() - text.data());
        previousEnd = wordStart + word.size();
        if (gapStartsSentence(text.substr(gapStart, wordStart - gapStart)))
            sentenceStart = true;
        bool keep = sentenceStart || containsPrivateUse(word) || !text::isMinorWord(word);
        sentenceStart = false;
        if (keep)
            return false;
        text::appendLowerMapped(out, word);
        return true;
    });
}

std::u16string lowercaseShoutedRuns(std::u16string_view text) {
    return replaceRanges(text, findShoutedRuns(text), [&](std::u16string &out, std::u16string_view run) {
        if (containsPrivateUse(run))
            return false;
        auto start = std::size_t(run.data() - text.data());
        if (start > 0 &&
            (text[start - 1] == text::placeholderStart || text[start - 1] == text::placeholderEnd))
            return false;
        text::appendLowerMapped(out, run);
        return true;
    });
}

// List markers, read forward from the grapheme that starts at i.
class ListMarkers {
public:
    explicit ListMarkers(const GraphemeCursor &cursor) : cursor_(cursor), text_(cursor.text()) {}

    // The position after the marker and the white space that follows it, when a marker starts at i.
    std::optional<std::size_t> markerEnd(std::size_t i) const {
        std::size_t end = cursor_.next(i);
        auto g = text_.substr(i, end - i);
        std::size_t afterMarker;
        if (isBullet(g)) {
            if (end < text_.size() && !isWhiteSpaceAt(end))
                return std::nullopt;
            afterMarker = end;
        } else if (text::isNumericGrapheme(g)) {
            std::size_t k = end;
            while (k < text_.size() && text::isNumericGrapheme(graphemeAt(k)))
                k = cursor_.next(k);
            if (k >= text_.size())
                return std::nullopt;
            auto closer = graphemeAt(k);
            if (closer != u"." && closer != u")")
                return std::nullopt;
            afterMarker = cursor_.next(k);
            if (afterMarker < text_.size() && !isWhiteSpaceAt(afterMarker))
                return std::nullopt;
        } else {
            return std::nullopt;
        }
        while (afterMarker < text_.size() && isWhiteSpaceAt(afterMarker))
            afterMarker = cursor_.next(afterMarker);
        return afterMarker;
    }

private:
    std::u16string_view graphemeAt(std::size_t i) const { return text_.substr(i, cursor_.next(i) - i); }
    bool isWhiteSpaceAt(std::size_t i) const { return text::isWhiteSpaceGrapheme(graphemeAt(i)); }

    const GraphemeCursor &cursor_;
    std::u16string_view text_;
};

std::u16string sentenceCase(std::u16string_view text) {
    GraphemeCursor cursor(text);
    ListMarkers markers(cursor);
    std::u16string out;
    out.reserve(text.size() + 16);
    std::size_t copied = 0; // text before this position is in out
    bool sentenceStart = true;
    std::size_t nextEllipsis = 0; // the next standalone U+2026 at or after it was looked for
    bool ellipsisKnown = false;
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t end = cursor.next(i);
        auto g = text.substr(i, end - i);
        if (text::isLineFeedGrapheme(g)) {
            sentenceStart = true;
        } else if (sentenceStart) {
            if (auto afterMarker = markers.markerEnd(i)) {
                i = *afterMarker;
                continue;
            }
            if (text::isAlphabeticGrapheme(g)) {
                out.append(text.substr(copied, i - copied));
                text::appendUpperMapped(out, g);
                i = end;
                // The rest of the first word goes to lower case, across apostrophes.
                while (i < text.size()) {
                    end = cursor.next(i);
                    g = text.substr(i, end - i);
                    if (g.size() == 1 && g[0] < 0x80 && text::isAsciiLetter(g[0]))
                        out.push_back(char16_t(g[0] | 0x20));
                    else if (text::isAlphabeticGrapheme(g))
                        text::appendLowerMapped(out, g);
                    else if (g == u"'")
                        out.push_back(u'\'');
                    else
                        break;
                    i = end;
                }
                copied = i;
                sentenceStart = false;
                continue;
            }
        } else {
            // Inside a sentence only a terminator or a line feed matters: jump to the next one
            // that stands as a grapheme of its own.
            std::size_t next = scan::findAnyOf(text, i, u'.', u'!', u'?', u'\n');
            while (next < text.size() && !text::isStandaloneGrapheme(text, next))
                next = scan::findAnyOf(text, next + 1, u'.', u'!', u'?', u'\n');
            if (!ellipsisKnown || nextEllipsis < i) {
                ellipsisKnown = true;
                nextEllipsis = scan::findAnyOf(text, i, u'\u2026');
                while (nextEllipsis < text.size() && !text::isStandaloneGrapheme(text, nextEllipsis))
                    nextEllipsis = scan::findAnyOf(text, nextEllipsis + 1, u'\u2026');
            }
            next = std::min(next, nextEllipsis);
            if (next >= text.size())
                break;
            sentenceStart = true;
            i = next + 1;
            continue;
        }
        i = end;
    }
    out.append(text.substr(copied));
    return out;
}

enum class Correction { none, allCaps, shoutedRuns };

std::u16string correctedSentences(std::u16string_view text, Correction correction) {
    switch (correction) {
    case Correction::allCaps: {
        WordsFound words;
        auto capitalized = capitalizeAllCapsWords(text, words);
        return sentenceCase(lowercaseMinorWords(capitalized, words));
    }
    case Correction::shoutedRuns:
        return sentenceCase(lowercaseShoutedRuns(text));
    case Correction::none:
        break;
    }
    return sentenceCase(text);
}

} // namespace

std::u16string smartCaseText(std::u16string_view text, const std::vector<std::u16string> &terms,
                             const TextProtectionOptions &options) {
    if (text.empty())
        return std::u16string(text);
    MaskedText masked = maskProtectedSpans(text, options);
    if (options.preserveProtectedTerms)
        maskProtectedTerms(masked, terms);
    const std::u16string &working = masked.text;
    // From here every step starts afresh at each line feed, so long texts go line chunk by
    // line chunk; only the all-caps test looks at the whole.
    Correction correction = Correction::none;
    if (options.correctAllUppercaseProse)
        correction = isMostlyUppercase(working) ? Correction::allCaps : Correction::shoutedRuns;
    return transformAndRestore(
        working, masked.placeholders, true,
        [&](std::u16string_view chunk, std::u16string &out) { out = correctedSentences(chunk, correction); });
}

bool looksAllCaps(std::u16string_view text) {
    std::size_t upper = 0;
    std::size_t lower = 0;
    for (std::size_t i = 0; i < text.size();) {
        char32_t c = codePointAt(text, i);
        auto type = u_charType(UChar32(c));
        if (type == U_UPPERCASE_LETTER || type == U_TITLECASE_LETTER)
            ++upper;
        else if (type == U_LOWERCASE_LETTER)
            ++lower;
        i += codeUnitCount(c);
    }
    if (upper + lower < looksAllCapsMinimumLetters)
        return false;
    return double(upper) / double(upper + lower) >= looksAllCapsShare;
}

} // namespace glyphmill
