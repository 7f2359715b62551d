#include "CaseRules.h"

#include "FastScan.h"
#include "TermMatcher.h"
#include "TextModel.h"

#include <algorithm>

namespace glyphmill {
namespace {

using text::GraphemeCursor;

// Calls token(start, end, ascii) for every maximal run of non-white-space graphemes; ascii
// tells that the token holds only ASCII characters, each a grapheme of its own.
template <typename Token> void forEachToken(std::u16string_view text, Token token) {
    GraphemeCursor cursor(text);
    const std::size_t size = text.size();
    std::size_t i = 0;
    while (i < size) {
        // White space up to the token.
        while (i < size) {
            char16_t unit = text[i];
            if (unit < 0x80 && (i + 1 == size || text[i + 1] < 0x300)) {
                if (!text::isAsciiWhiteSpace(unit))
                    break;
                ++i; // a CR LF pair is white space either way
                continue;
            }
            std::size_t end = cursor.next(i);
            if (!text::isWhiteSpaceGrapheme(text.substr(i, end - i)))
                break;
            i = end;
        }
        if (i == size)
            return;
        std::size_t start = i;
        bool ascii = true;
        while (i < size) {
            char16_t unit = text[i];
            if (unit < 0x80 && (i + 1 == size || text[i + 1] < 0x300)) {
                if (text::isAsciiWhiteSpace(unit))
                    break;
                ++i;
                continue;
            }
            std::size_t end = cursor.next(i);
            if (text::isWhiteSpaceGrapheme(text.substr(i, end - i)))
                break;
            ascii = false;
            i = end;
        }
        token(start, i, ascii);
    }
}

std::size_t wordCount(std::u16string_view text) {
    GraphemeCursor cursor(text);
    const std::size_t size = text.size();
    std::size_t count = 0;
    bool inToken = false;
    for (std::size_t i = 0; i < size;) {
        // Eight ASCII characters that no mark follows are eight graphemes: count the places
        // where a token begins among them all at once.
        if (i + 8 <= size && (i + 8 == size || text[i + 8] < 0x300)) {
            if (auto white = scan::asciiWhiteSpaceMask8(text.data() + i)) {
                unsigned tokenUnits = ~*white & 0xFFu;
                unsigned starts = tokenUnits & ~((tokenUnits << 1) | (inToken ? 1u : 0u));
                count += std::size_t(__builtin_popcount(starts & 0xFFu));
                inToken = (tokenUnits >> 7) & 1u;
                i += 8;
                continue;
            }
        }
        std::size_t end = cursor.next(i);
        bool white = text::isWhiteSpaceGrapheme(text.substr(i, end - i));
        if (!white && !inToken)
            ++count;
        inToken = !white;
        i = end;
    }
    return count;
}

// Prefix and suffix are the runs of non-letter graphemes at either end of the token.
struct Affixes {
    std::size_t coreStart;
    std::size_t coreEnd;
};
Affixes splitAffixes(std::u16string_view token) {
    GraphemeCursor cursor(token);
    std::optional<std::size_t> firstLetter;
    std::size_t afterLastLetter = 0;
    for (std::size_t i = 0; i < token.size();) {
        std::size_t end = cursor.next(i);
        if (text::isLetterGrapheme(token.substr(i, end - i))) {
            if (!firstLetter)
                firstLetter = i;
            afterLastLetter = end;
        }
        i = end;
    }
    if (!firstLetter)
        return {0, token.size()};
    return {*firstLetter, afterLastLetter};
}

// The common case of a token of ASCII characters only, one grapheme each, written in place.
void appendAsciiTitleCasedToken(std::u16string &out, std::u16string_view token, bool mayBeMinor) {
    std::size_t coreStart = 0;
    std::size_t coreEnd = token.size();
    while (coreStart < coreEnd && !text::isAsciiLetter(token[coreStart]))
        ++coreStart;
    if (coreStart == coreEnd) { // no letters: the whole token is the core, and nothing in it has case
        out.append(token);
        return;
    }
    while (!text::isAsciiLetter(token[coreEnd - 1]))
        --coreEnd;
    std::size_t start = out.size();
    out.resize(start + token.size());
    char16_t *dest = out.data() + start;
    auto lower = [](char16_t unit) { return unit >= u'A' && unit <= u'Z' ? char16_t(unit + 0x20) : unit; };
    bool minor = mayBeMinor && text::isMinorWord(token.substr(coreStart, coreEnd - coreStart));
    for (std::size_t i = 0; i < token.size(); ++i) {
        char16_t unit = token[i];
        if (i < coreStart || i >= coreEnd)
            dest[i] = unit;
        else if (i == coreStart && !minor)
            dest[i] = unit >= u'a' && unit <= u'z' ? char16_t(unit - 0x20) : unit;
        else
            dest[i] = lower(unit);
    }
}

// Returns the number of tokens of the segment.
std::size_t appendTitleCasedSegment(std::u16string &out, std::u16string_view segment, std::size_t firstIndex,
                                    std::size_t total) {
    std::size_t copied = 0;
    std::size_t index = firstIndex;
    forEachToken(segment, [&](std::size_t start, std::size_t end, bool ascii) {
        out.append(segment.substr(copied, start - copied));
        copied = end;
        auto token = segment.substr(start, end - start);
        std::size_t position = index++;
        if (ascii) {
            appendAsciiTitleCasedToken(out, token, position != 0 && position + 1 != total);
            return;
        }
        if (token.find(text::placeholderStart) != std::u16string_view::npos) {
            out.append(token);
            return;
        }
        auto [coreStart, coreEnd] = splitAffixes(token);
        auto core = token.substr(coreStart, coreEnd - coreStart);
        out.append(token.substr(0, coreStart));
        bool minor = position != 0 && position + 1 != total && text::isMinorWord(core);
        if (minor)
            text::appendLowerMapped(out, core);
        else
            text::appendCapitalizedWord(out, core);
        out.append(token.substr(coreEnd));
    });
    out.append(segment.substr(copied));
    return index - firstIndex;
}

void appendTitleCasedLine(std::u16string &out, std::u16string_view line, const TermMatcher &terms) {
    std::size_t total = wordCount(line);
    if (total == 0) {
        out.append(line);
        return;
    }
    std::size_t runningIndex = 0;
    std::size_t runStart = 0;
    terms.forEachMatch(line, [&](std::size_t start, std::size_t end, const std::u16string &term) {
        if (start > runStart)
            runningIndex +=
                appendTitleCasedSegment(out, line.substr(runStart, start - runStart), runningIndex, total);
        out.append(term);
        runningIndex += wordCount(term);
        runStart = end;
    });
    if (runStart < line.size())
        appendTitleCasedSegment(out, line.substr(runStart), runningIndex, total);
}

} // namespace

std::u16string titleCaseText(std::u16string_view text, const std::vector<std::u16string> &terms) {
    if (text.empty())
        return std::u16string(text);
    TermMatcher matcher(terms);
    std::u16string out;
    out.reserve(text.size() + text.size() / 8);
    // Lines end at every line feed that is not the second half of a CR LF.
    std::size_t lineStart = 0;
    for (std::size_t i = text.find(text::lineFeed); i != std::u16string_view::npos;
         i = text.find(text::lineFeed, i + 1)) {
        if (i > 0 && text[i - 1] == text::carriageReturn)
            continue;
        appendTitleCasedLine(out, text.substr(lineStart, i - lineStart), matcher);
        out.push_back(text::lineFeed);
        lineStart = i + 1;
    }
    appendTitleCasedLine(out, text.substr(lineStart), matcher);
    return out;
}

std::u16string capitalizeWordRuns(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size() + 16);
    GraphemeCursor cursor(text);
    constexpr std::size_t noWord = std::u16string_view::npos;
    std::size_t wordStart = noWord;
    auto endWord = [&](std::size_t at) {
        if (wordStart != noWord) {
            text::appendCapitalizedWord(out, text.substr(wordStart, at - wordStart));
            wordStart = noWord;
        }
    };
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size;) {
        char16_t unit = text[i];
        std::size_t end;
        bool letter;
        if (unit < 0x80 && (i + 1 == size || text[i + 1] < 0x300)) {
            end = i + 1; // CR LF is two non-letters either way
            letter = text::isAsciiLetter(unit);
        } else {
            end = cursor.next(i);
            letter = text::isLetterGrapheme(text.substr(i, end - i));
        }
        if (letter) {
            if (wordStart == noWord)
                wordStart = i;
        } else {
            endWord(i);
            out.append(text.substr(i, end - i));
        }
        i = end;
    }
    endWord(size);
    return out;
}

} // namespace glyphmill
