// Smart Case, Title Case and the all-caps test of the reference transformer.
#include "ReferenceText.h"
#include "ReferenceTransformer.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace glyphmill::reference {

namespace {

constexpr std::u16string_view wordPattern = uR"re(\b[\p{L}]+\b)re";
constexpr std::u16string_view shoutedRunPattern = uR"re(\b[\p{Lu}]{2,}\b)re";

bool isOneOf(std::u16string_view grapheme, std::initializer_list<std::u16string_view> choices) {
    return std::find(choices.begin(), choices.end(), grapheme) != choices.end();
}

bool isSentenceTerminator(std::u16string_view grapheme) {
    return isOneOf(grapheme, {u".", u"!", u"?", u"\u2026"});
}

bool isBullet(std::u16string_view grapheme) {
    return isOneOf(grapheme, {u"\u2022", u"-", u"*", u"\u2013", u"\u2014"});
}

bool isNumberCloser(std::u16string_view grapheme) {
    return isOneOf(grapheme, {u".", u")"});
}

// --- Smart Case --------------------------------------------------------------------------------

bool isMostlyUppercase(std::u16string_view text) {
    std::size_t alphabetic = 0;
    std::size_t uppercase = 0;
    for (const auto &grapheme : text::graphemes(text)) {
        if (!text::isAlphabeticGrapheme(grapheme))
            continue;
        ++alphabetic;
        if (text::isUppercaseGrapheme(grapheme))
            ++uppercase;
    }
    if (alphabetic < 4)
        return false;
    return static_cast<double>(uppercase) / static_cast<double>(alphabetic) >= 0.85;
}

std::u16string capitalizeAllCapsWords(std::u16string_view input) {
    auto matches = text::findAllMatches(wordPattern, 0, input);
    if (!matches)
        return text::lowerMapped(input);
    std::u16string out(input);
    for (auto match = matches->rbegin(); match != matches->rend(); ++match) {
        std::u16string matched = out.substr(match->start, match->end - match->start);
        if (text::containsPrivateUseScalar(matched))
            continue;
        std::size_t alphabetic = 0;
        bool allUppercase = true;
        for (const auto &grapheme : text::graphemes(matched)) {
            if (!text::isAlphabeticGrapheme(grapheme))
                continue;
            ++alphabetic;
            allUppercase = allUppercase && text::isUppercaseGrapheme(grapheme);
        }
        if (alphabetic == 0 || !allUppercase)
            continue;
        out.replace(match->start, match->end - match->start,
                    text::capitalizedWord(text::lowerMapped(matched)));
    }
    return out;
}

std::u16string lowercaseMinorWords(std::u16string_view input) {
    auto matches = text::findAllMatches(wordPattern, 0, input);
    if (!matches)
        return std::u16string(input);
    std::u16string out;
    bool atSentenceStart = true;
    std::size_t copied = 0;
    for (const auto &match : *matches) {
        std::u16string_view gap = input.substr(copied, match.start - copied);
        out += gap;
        for (const auto &grapheme : text::graphemes(gap)) {
            if (isSentenceTerminator(grapheme) || text::isLineFeedGrapheme(grapheme))
                atSentenceStart = true;
        }
        std::u16string_view matched = input.substr(match.start, match.end - match.start);
        std::u16string lowered = text::lowerMapped(matched);
        if (text::containsPrivateUseScalar(matched) || atSentenceStart || !text::isMinorWord(lowered))
            out += matched;
        else
            out += lowered;
        atSentenceStart = false;
        copied = match.end;
    }
    out += input.substr(copied);
    return out;
}

std::u16string lowercaseShoutedRuns(std::u16string_view input) {
    auto matches = text::findAllMatches(shoutedRunPattern, 0, input);
    if (!matches)
        return std::u16string(input);
    std::u16string out(input);
    for (auto match = matches->rbegin(); match != matches->rend(); ++match) {
        std::u16string matched = out.substr(match->start, match->end - match->start);
        if (text::containsPrivateUseScalar(matched))
            continue;
        if (match->start > 0 && (out[match->start - 1] == u'\uE000' || out[match->start - 1] == u'\uE001'))
            continue;
        out.replace(match->start, match->end - match->start, text::lowerMapped(matched));
    }
    return out;
}

bool isListMarker(const std::vector<std::u16string> &graphemes, std::size_t index) {
    const std::size_t count = graphemes.size();
    if (isBullet(graphemes[index]))
        return index + 1 == count || text::isWhiteSpaceGrapheme(graphemes[index + 1]);
    if (!text::isNumericGrapheme(graphemes[index]))
        return false;
    std::size_t after = index;
    while (after < count && text::isNumericGrapheme(graphemes[after]))
        ++after;
    if (after == count || !isNumberCloser(graphemes[after]))
        return false;
    return after + 1 == count || text::isWhiteSpaceGrapheme(graphemes[after + 1]);
}

std::size_t skipListMarker(const std::vector<std::u16string> &graphemes, std::size_t index) {
    std::size_t next = index;
    if (isBullet(graphemes[next])) {
        ++next;
    } else {
        while (text::isNumericGrapheme(graphemes[next]))
            ++next;
        ++next; // the "." or ")"
    }
    while (next < graphemes.size() && text::isWhiteSpaceGrapheme(graphemes[next]))
        ++next;
    return next;
}

std::u16string sentenceCase(std::u16string_view input) {
    std::vector<std::u16string> graphemes = text::graphemes(input);
    bool atSentenceStart = true;
    std::size_t i = 0;
    while (i < graphemes.size()) {
        const std::u16string &grapheme = graphemes[i];
        if (text::isLineFeedGrapheme(grapheme)) {
            atSentenceStart = true;
            ++i;
        } else if (atSentenceStart && isListMarker(graphemes, i)) {
            i = skipListMarker(graphemes, i);
        } else if (atSentenceStart && text::isAlphabeticGrapheme(grapheme)) {
            graphemes[i] = text::upperMapped(grapheme);
            ++i;
            while (i < graphemes.size()) {
                if (text::isAlphabeticGrapheme(graphemes[i])) {
                    graphemes[i] = text::lowerMapped(graphemes[i]);
                    ++i;
                } else if (graphemes[i] == u"'") {
                    ++i;
                } else {
                    break;
                }
            }
            atSentenceStart = false;
        } else if (text::isAlphabeticGrapheme(grapheme)) {
            ++i;
        } else {
            if (isSentenceTerminator(grapheme))
                atSentenceStart = true;
            ++i;
        }
    }
    return text::joined(graphemes);
}

// --- Title Case --------------------------------------------------------------------------------

struct Token {
    std::size_t start; // in graphemes
    std::size_t end;
};

std::vector<Token> tokensOf(const std::vector<std::u16string> &graphemes) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < graphemes.size()) {
        if (text::isWhiteSpaceGrapheme(graphemes[i])) {
            ++i;
            continue;
        }
        std::size_t start = i;
        while (i < graphemes.size() && !text::isWhiteSpaceGrapheme(graphemes[i]))
            ++i;
        tokens.push_back({start, i});
    }
    return tokens;
}

std::size_t wordCount(std::u16string_view input) {
    return tokensOf(text::graphemes(input)).size();
}

std::u16string joinedRange(const std::vector<std::u16string> &graphemes, std::size_t start, std::size_t end) {
    std::u16string out;
    for (std::size_t i = start; i < end; ++i)
        out += graphemes[i];
    return out;
}

struct Affixes {
    std::u16string prefix;
    std::u16string core;
    std::u16string suffix;
};

Affixes splitAffixes(std::u16string_view token) {
    std::vector<std::u16string> graphemes = text::graphemes(token);
    auto firstLetter = std::find_if(graphemes.begin(), graphemes.end(),
                                    [](const std::u16string &g) { return text::isLetterGrapheme(g); });
    if (firstLetter == graphemes.end())
        return {{}, std::u16string(token), {}};
    auto lastLetter = std::find_if(graphemes.rbegin(), graphemes.rend(),
                                   [](const std::u16string &g) { return text::isLetterGrapheme(g); });
    auto coreStart = static_cast<std::size_t>(firstLetter - graphemes.begin());
    auto coreEnd = graphemes.size() - static_cast<std::size_t>(lastLetter - graphemes.rbegin());
    return {joinedRange(graphemes, 0, coreStart), joinedRange(graphemes, coreStart, coreEnd),
            joinedRange(graphemes, coreEnd, graphemes.size())};
}

std::u16string titleCaseSegment(std::u16string_view segment, long firstIndex, long total) {
    std::vector<std::u16string> graphemes = text::graphemes(segment);
    std::vector<Token> tokens = tokensOf(graphemes);
    if (tokens.empty())
        return std::u16string(segment);
    std::u16string out;
    std::size_t copied = 0;
    for (std::size_t j = 0; j < tokens.size(); ++j) {
        long index = firstIndex + static_cast<long>(j);
        out += joinedRange(graphemes, copied, tokens[j].start);
        std::u16string token = joinedRange(graphemes, tokens[j].start, tokens[j].end);
        copied = tokens[j].end;
        if (token.find(u'\uE000') != std::u16string::npos) {
            out += token;
            continue;
        }
        Affixes parts = splitAffixes(token);
        std::u16string loweredCore = text::lowerMapped(parts.core);
        bool isInner = index != 0 && index != total - 1;
        std::u16string core =
            isInner && text::isMinorWord(loweredCore) ? loweredCore : text::capitalizedWord(parts.core);
        out += parts.prefix + core + parts.suffix;
    }
    out += joinedRange(graphemes, copied, graphemes.size());
    return out;
}

std::u16string titleCaseLine(std::u16string_view line, const std::vector<std::u16string> &terms) {
    std::vector<TextTransformer::Segment> segments = splitByProtectedTerms(line, terms);
    auto total = static_cast<long>(wordCount(line));
    if (total == 0)
        return std::u16string(line);
    long runningIndex = 0;
    std::u16string out;
    for (const auto &segment : segments) {
        if (segment.kind == TextTransformer::Segment::Kind::plain)
            out += titleCaseSegment(segment.text, runningIndex, total);
        else
            out += segment.text;
        runningIndex += static_cast<long>(wordCount(segment.text));
    }
    return out;
}

} // namespace

std::u16string smartCaseText(std::u16string_view text, const std::vector<std::u16string> &terms,
                             const TextProtectionOptions &options) {
    if (text.empty())
        return {};
    TextProtectionOptions spanOptions = options;
    spanOptions.preserveProtectedTerms = false;
    Masked masked = maskProtectedSpans(text, spanOptions);
    if (options.preserveProtectedTerms) {
        Masked termsMasked = maskProtectedTerms(masked.text, terms);
        masked.text = std::move(termsMasked.text);
        for (auto &[key, value] : termsMasked.placeholders) {
            if (masked.placeholders.count(key))
                placeholdersAmbiguous = true;
            masked.placeholders[key] = value;
        }
    }
    if (options.correctAllUppercaseProse) {
        masked.text = isMostlyUppercase(masked.text)
                          ? lowercaseMinorWords(capitalizeAllCapsWords(masked.text))
                          : lowercaseShoutedRuns(masked.text);
    }
    return restorePlaceholders(sentenceCase(masked.text), masked.placeholders);
}

bool looksAllCaps(std::u16string_view text) {
    std::size_t uppercase = 0;
    std::size_t lowercase = 0;
    for (char32_t codePoint : text::codePoints(text)) {
        auto category = u_charType(static_cast<UChar32>(codePoint));
        if (category == U_UPPERCASE_LETTER || category == U_TITLECASE_LETTER)
            ++uppercase;
        else if (category == U_LOWERCASE_LETTER)
            ++lowercase;
    }
    if (uppercase + lowercase < 5)
        return false;
    return static_cast<double>(uppercase) / static_cast<double>(uppercase + lowercase) >= 0.92;
}

std::u16string titleCaseText(std::u16string_view maskedText, const std::vector<std::u16string> &terms) {
    if (maskedText.empty())
        return {};
    std::vector<std::u16string> lines(1);
    for (const auto &grapheme : text::graphemes(maskedText)) {
        if (text::isLineFeedGrapheme(grapheme))
            lines.emplace_back();
        else
            lines.back() += grapheme;
    }
    std::u16string out;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            out += u'\n';
        out += titleCaseLine(lines[i], terms);
    }
    return out;
}

} // namespace glyphmill::reference
