#include "ReferenceTransformer.h"

#include "ReferenceText.h"

#include <unicode/regex.h>

#include <algorithm>
#include <array>

namespace glyphmill::reference {

namespace {

constexpr char16_t placeholderStart = u'\uE000';
constexpr char16_t placeholderEnd = u'\uE001';
constexpr unsigned firstTermPlaceholder = 10000;

struct SpanDetector {
    bool TextProtectionOptions::*enabled;
    std::u16string_view pattern;
    std::uint32_t flags;
};

const std::array<SpanDetector, 5> &spanDetectors() {
    static const std::array<SpanDetector, 5> detectors = {{
        {&TextProtectionOptions::preserveURLs, uR"re((?i)\b(?:https?://|www\.)[^\s<>'\"]+)re", 0},
        {&TextProtectionOptions::preserveEmails, uR"re([A-Z0-9._%+\-]+@[A-Z0-9.\-]+\.[A-Z]{2,})re",
         UREGEX_CASE_INSENSITIVE},
        {&TextProtectionOptions::preserveFilePaths,
         uR"re((?:/(?:Users|home|var|tmp|private|Applications|Library|System|Volumes)(?:/[^\s]*)?|~(?:/[^\s]*)?|[A-Za-z]:\\[^\s]*))re",
         0},
        {&TextProtectionOptions::preserveHashtagsAndMentions, uR"re([@#][\p{L}\p{N}_]+)re", 0},
        {&TextProtectionOptions::preserveCodeLikeTokens, uR"re(`[^`]+`)re", 0},
    }};
    return detectors;
}

// A range can be taken out of the text unless one of its ends falls inside a surrogate pair.
bool splitsSurrogatePair(std::u16string_view text, std::size_t index) {
    return index > 0 && index < text.size() && U16_IS_LEAD(text[index - 1]) && U16_IS_TRAIL(text[index]);
}

std::u16string transformedPlainSegment(TextTransformKind kind, std::u16string_view segment) {
    switch (kind) {
    case TextTransformKind::uppercase:
        return text::upperMapped(segment);
    case TextTransformKind::lowercase:
        return text::lowerMapped(segment);
    case TextTransformKind::capitalizeWords:
        return capitalizeWordRuns(segment);
    case TextTransformKind::smartCase:
    case TextTransformKind::titleCase:
        break;
    }
    return std::u16string(segment);
}

} // namespace

std::u16string placeholder(unsigned number) {
    std::u16string out(1, placeholderStart);
    for (char digit : std::to_string(number))
        out.push_back(static_cast<char16_t>(digit));
    out.push_back(placeholderEnd);
    return out;
}

Masked maskProtectedSpans(std::u16string_view text, const TextProtectionOptions &options) {
    unsigned counter = 0;
    Masked result{std::u16string(text), {}};
    for (const SpanDetector &detector : spanDetectors()) {
        if (!(options.*detector.enabled))
            continue;
        auto matches = text::findAllMatches(detector.pattern, detector.flags, result.text);
        if (!matches)
            continue;
        for (auto match = matches->rbegin(); match != matches->rend(); ++match) {
            if (splitsSurrogatePair(result.text, match->start) ||
                splitsSurrogatePair(result.text, match->end))
                continue;
            std::u16string matched = result.text.substr(match->start, match->end - match->start);
            if (matched.find(placeholderStart) != std::u16string::npos)
                continue;
            std::u16string key = placeholder(counter++);
            result.placeholders[key] = matched;
            result.text.replace(match->start, match->end - match->start, key);
        }
    }
    return result;
}

std::vector<TextTransformer::Segment> splitByProtectedTerms(std::u16string_view text,
                                                            const std::vector<std::u16string> &terms) {
    using Segment = TextTransformer::Segment;
    if (text.empty() || terms.empty())
        return {Segment{Segment::Kind::plain, std::u16string(text)}};

    struct OrderedTerm {
        std::size_t graphemeLength;
        std::u16string term;
        std::u16string caselessForm;
    };
    std::vector<OrderedTerm> ordered;
    for (const std::u16string &term : terms)
        ordered.push_back({text::graphemeCount(term), term, text::caselessForm(term)});
    std::stable_sort(ordered.begin(), ordered.end(), [](const OrderedTerm &a, const OrderedTerm &b) {
        return a.graphemeLength > b.graphemeLength;
    });

    std::vector<Segment> segments;
    const std::size_t length = text.size();
    std::size_t runStart = 0;
    std::size_t position = 0;
    while (position < length) {
        bool accepted = false;
        text::CaselessPrefixes prefixes(text, position);
        for (const OrderedTerm &candidate : ordered) {
            std::optional<std::size_t> end =
                text::caselessOccurrenceEnd(text, prefixes, position, candidate.caselessForm);
            if (!end)
                continue;
            if (position > 0 && text::isAlphanumericUnit(text[position - 1]))
                continue;
            if (*end < length && text::isAlphanumericUnit(text[*end]))
                continue;
            if (runStart < position)
                segments.push_back(
                    {Segment::Kind::plain, std::u16string(text.substr(runStart, position - runStart))});
            segments.push_back({Segment::Kind::protectedTerm, candidate.term});
            runStart = *end;
            position = *end;
            accepted = true;
            break;
        }
        if (!accepted)
            ++position;
    }
    if (runStart < length)
        segments.push_back({Segment::Kind::plain, std::u16string(text.substr(runStart))});
    return segments;
}

Masked maskProtectedTerms(std::u16string_view text, const std::vector<std::u16string> &terms) {
    if (text.empty() || terms.empty())
        return {std::u16string(text), {}};
    Masked result;
    unsigned counter = firstTermPlaceholder;
    for (const auto &segment : splitByProtectedTerms(text, terms)) {
        if (segment.kind == TextTransformer::Segment::Kind::plain) {
            result.text += segment.text;
            continue;
        }
        std::u16string key = placeholder(counter++);
        result.placeholders[key] = segment.text;
        result.text += key;
    }
    return result;
}

thread_local bool placeholdersAmbiguous = false;

std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderEntries &placeholders) {
    std::vector<std::pair<std::size_t, std::u16string>> keys;
    for (const auto &entry : placeholders)
        keys.emplace_back(text::graphemeCount(entry.first), entry.first);
    std::sort(keys.begin(), keys.end(), [](const auto &a, const auto &b) {
        return a.first != b.first ? a.first > b.first : a.second < b.second;
    });

    std::u16string current(text);
    for (const auto &[graphemeLength, key] : keys) {
        if (key.empty())
            continue;
        const std::u16string &replacement = placeholders.at(key);
        if (replacement.find_first_of(u"\uE000\uE001") != std::u16string::npos)
            placeholdersAmbiguous = true;
        std::u16string next;
        std::size_t copied = 0;
        std::size_t replaced = 0;
        for (std::size_t found = current.find(key); found != std::u16string::npos;
             found = current.find(key, copied)) {
            next.append(current, copied, found - copied);
            next += replacement;
            copied = found + key.size();
            ++replaced;
        }
        if (replaced != 1)
            placeholdersAmbiguous = true;
        next.append(current, copied, std::u16string::npos);
        current = std::move(next);
    }
    return current;
}

std::u16string placeholderSkeleton(std::u16string_view text) {
    std::u16string skeleton;
    for (char16_t unit : text)
        if (unit == u'\uE000' || unit == u'\uE001' || (unit >= u'0' && unit <= u'9'))
            skeleton.push_back(unit);
    return skeleton;
}

std::optional<std::u16string> applyWhereUnambiguous(TextTransformKind kind, std::u16string_view text,
                                                    const std::vector<std::u16string> &terms,
                                                    const TextProtectionOptions &options) {
    placeholdersAmbiguous = false;
    std::u16string result = apply(kind, text, terms, options);
    if (placeholdersAmbiguous)
        return std::nullopt;
    return result;
}

std::u16string capitalizeWordRuns(std::u16string_view text) {
    std::u16string out;
    std::u16string word;
    for (const std::u16string &grapheme : text::graphemes(text)) {
        if (text::isLetterGrapheme(grapheme)) {
            word += grapheme;
            continue;
        }
        out += text::capitalizedWord(word);
        word.clear();
        out += grapheme;
    }
    out += text::capitalizedWord(word);
    return out;
}

std::u16string apply(TextTransformKind kind, std::u16string_view text,
                     const std::vector<std::u16string> &terms, const TextProtectionOptions &options) {
    if (kind == TextTransformKind::smartCase)
        return smartCaseText(text, terms, options);

    TextProtectionOptions spanOptions = options;
    spanOptions.preserveProtectedTerms = false;
    Masked masked = maskProtectedSpans(text, spanOptions);

    std::u16string body;
    if (kind == TextTransformKind::titleCase) {
        body = titleCaseText(masked.text, terms);
    } else {
        for (const auto &segment : splitByProtectedTerms(masked.text, terms)) {
            body += segment.kind == TextTransformer::Segment::Kind::plain
                        ? transformedPlainSegment(kind, segment.text)
                        : segment.text;
        }
    }
    return restorePlaceholders(body, masked.placeholders);
}

} // namespace glyphmill::reference
