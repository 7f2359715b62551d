#include "ProtectedSpans.h"

#include "FastScan.h"
#include "LineChunks.h"
#include "SpanDetectors.h"
#include "TermMatcher.h"
#include "TextModel.h"

#include <algorithm>
#include <memory>

namespace glyphmill {
namespace {

// Replaces each range by a placeholder. Numbers are handed out from the last range back to
// the first, so that the earliest range gets the highest number.
// Writes working with the ranges masked into masked; false (and nothing written) when every
// range overlaps an earlier placeholder.
bool maskRanges(std::u16string_view working, const std::vector<TextRange> &ranges,
                PlaceholderMap &placeholders, std::u16string &masked) {
    std::vector<const TextRange *> kept;
    kept.reserve(ranges.size());
    for (const auto &range : ranges) {
        auto matched = working.substr(range.start, range.end - range.start);
        if (matched.find(text::placeholderStart) == std::u16string_view::npos)
            kept.push_back(&range);
    }
    if (kept.empty())
        return false;
    std::vector<std::uint32_t> numbers(kept.size());
    for (std::size_t k = kept.size(); k-- > 0;) {
        const TextRange &range = *kept[k];
        numbers[k] = placeholders.addSpan(working.substr(range.start, range.end - range.start));
    }
    masked.clear();
    masked.reserve(working.size() + kept.size() * 8);
    OwnStartTracker own(working, placeholders.ownStarts());
    std::size_t copied = 0;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        masked.append(working.substr(copied, kept[k]->start - copied));
        own.copy(copied, kept[k]->start);
        appendPlaceholder(masked, numbers[k]);
        own.replace(kept[k]->start, kept[k]->end);
        copied = kept[k]->end;
    }
    masked.append(working.substr(copied));
    own.copy(copied, working.size());
    placeholders.setOwnStarts(own.take());
    return true;
}

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

// Whether [start, end) of a span-masked text overlaps a placeholder of ours; asked for ranges
// in ascending order. In the usual text without U+E000 of its own every U+E000 is ours, and a
// look at the range and the digits before it tells.
std::function<bool(std::size_t, std::size_t)> spanOverlapTest(std::u16string_view text,
                                                              const std::vector<std::size_t> &ownStarts) {
    if (ownStarts.empty()) {
        return [text](std::size_t start, std::size_t end) {
            std::size_t before = start;
            while (before > 0 && isDigit(text[before - 1]))
                --before;
            if (before > 0 && text[before - 1] == text::placeholderStart)
                return true; // start lies inside a placeholder
            for (std::size_t i = start; i < end; ++i) {
                if (text[i] == text::placeholderStart)
                    return true;
                if (text[i] == text::placeholderEnd) { // ours only if digits and U+E000 precede it
                    std::size_t digits = i;
                    while (digits > 0 && isDigit(text[digits - 1]))
                        --digits;
                    if (digits < i && digits > 0 && text[digits - 1] == text::placeholderStart)
                        return true;
                }
            }
            return false;
        };
    }
    // The text brought U+E000 of its own: list the placeholders of ours once.
    auto ranges = std::make_shared<std::vector<TextRange>>();
    std::size_t ordinal = 0;
    auto nextOwn = ownStarts.begin();
    for (std::size_t at = scan::findAnyOf(text, 0, text::placeholderStart); at < text.size();
         at = scan::findAnyOf(text, at + 1, text::placeholderStart), ++ordinal) {
        if (nextOwn != ownStarts.end() && *nextOwn == ordinal) {
            ++nextOwn;
            continue;
        }
        ranges->push_back({at, scan::findAnyOf(text, at, text::placeholderEnd) + 1});
    }
    return [ranges, next = std::size_t(0)](std::size_t start, std::size_t end) mutable {
        while (next < ranges->size() && (*ranges)[next].end <= start)
            ++next;
        return next < ranges->size() && (*ranges)[next].start < end;
    };
}

} // namespace

MaskedText maskProtectedSpans(std::u16string_view input, const TextProtectionOptions &options) {
    MaskedText result;
    using Detector = std::vector<TextRange> (*)(std::u16string_view);
    const std::pair<bool, Detector> detectors[] = {
        {options.preserveURLs, findLinks},
        {options.preserveEmails, findEmailAddresses},
        {options.preserveFilePaths, findFilePaths},
        {options.preserveHashtagsAndMentions, findHashtagsAndMentions},
        {options.preserveCodeLikeTokens, findCodeSpans},
    };
    // Two buffers take turns, so a long text is not allocated afresh for every detector; the
    // input itself is read by the first detector that finds something.
    std::u16string buffers[2];
    std::u16string_view working = input;
    if (std::size_t inputStarts = placeholderStartCount(input)) {
        std::vector<std::size_t> own(inputStarts);
        for (std::size_t n = 0; n < inputStarts; ++n)
            own[n] = n;
        result.placeholders.setOwnStarts(std::move(own));
    }
    int current = -1;
    for (const auto &[enabled, detect] : detectors) {
        if (!enabled)
            continue;
        int next = current == 0 ? 1 : 0;
        if (maskRanges(working, detect(working), result.placeholders, buffers[next])) {
            current = next;
            working = buffers[current];
        }
    }
    result.text = current < 0 ? std::u16string(input) : std::move(buffers[current]);
    return result;
}

std::vector<TextTransformer::Segment> splitByProtectedTerms(std::u16string_view text,
                                                            const std::vector<std::u16string> &terms) {
    using Segment = TextTransformer::Segment;
    std::vector<Segment> segments;
    if (text.empty() || terms.empty()) {
        segments.push_back({Segment::Kind::plain, std::u16string(text)});
        return segments;
    }
    TermMatcher matcher(terms);
    std::size_t runStart = 0;
    matcher.forEachMatch(text, [&](std::size_t start, std::size_t end, const std::u16string &term) {
        if (start > runStart)
            segments.push_back(
                {Segment::Kind::plain, std::u16string(text.substr(runStart, start - runStart))});
        segments.push_back({Segment::Kind::protectedTerm, term});
        runStart = end;
    });
    if (runStart < text.size() || segments.empty())
        segments.push_back({Segment::Kind::plain, std::u16string(text.substr(runStart))});
    return segments;
}

void maskProtectedTerms(MaskedText &masked, const std::vector<std::u16string> &terms) {
    std::u16string_view text = masked.text;
    PlaceholderMap &placeholders = masked.placeholders;
    if (text.empty() || terms.empty())
        return;
    // A term found in a span's placeholder (a term of digits can match its number) stays: the
    // placeholder brings the span back whole.
    auto overlapsSpan = spanOverlapTest(text, placeholders.ownStarts());
    std::u16string result;
    result.reserve(text.size());
    OwnStartTracker own(text, placeholders.ownStarts());
    std::size_t copied = 0;
    TermMatcher(terms).forEachMatch(text,
                                    [&](std::size_t start, std::size_t end, const std::u16string &term) {
                                        if (overlapsSpan(start, end))
                                            return;
                                        result.append(text.substr(copied, start - copied));
                                        own.copy(copied, start);
                                        appendPlaceholder(result, placeholders.addTerm(term));
                                        own.replace(start, end);
                                        copied = end;
                                    });
    result.append(text.substr(copied));
    own.copy(copied, text.size());
    placeholders.setOwnStarts(own.take());
    masked.text = std::move(result);
}

std::u16string
transformAndRestore(std::u16string_view maskedText, const PlaceholderMap &placeholders, bool lineLocal,
                    const std::function<void(std::u16string_view, std::u16string &)> &transform) {
    auto chunks = lineLocal ? lineChunks(maskedText) : std::vector<std::u16string_view>{maskedText};
    if (chunks.size() == 1) {
        std::u16string body;
        transform(maskedText, body);
        return restorePlaceholders(body, placeholders);
    }
    // Each chunk is transformed and measured on its own thread, then restored straight into
    // its place in the result. Where the text has U+E000 of its own, a chunk's restoration needs
    // to know how many U+E000 the chunks before it hold.
    const bool countStarts = !placeholders.ownStarts().empty();
    std::vector<std::u16string> bodies(chunks.size());
    std::vector<std::size_t> firstStarts(chunks.size() + 1, 0);
    std::vector<std::size_t> sizes(chunks.size());
    runInParallel(chunks.size(), [&](std::size_t i) {
        transform(chunks[i], bodies[i]);
        if (countStarts)
            firstStarts[i + 1] = placeholderStartCount(chunks[i]);
        else
            sizes[i] = restoredSize(bodies[i], placeholders, 0);
    });
    if (countStarts) {
        for (std::size_t i = 1; i <= chunks.size(); ++i)
            firstStarts[i] += firstStarts[i - 1];
        runInParallel(chunks.size(), [&](std::size_t i) {
            sizes[i] = restoredSize(bodies[i], placeholders, firstStarts[i]);
        });
    }
    std::vector<std::size_t> offsets(chunks.size());
    std::size_t total = 0;
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        offsets[i] = total;
        total += sizes[i];
    }
    std::u16string out(total, u'\0');
    runInParallel(chunks.size(), [&](std::size_t i) {
        writeRestored(bodies[i], placeholders, firstStarts[i], out.data() + offsets[i]);
        std::u16string().swap(bodies[i]);
    });
    return out;
}

} // namespace glyphmill
