#include "ProtectedSpans.h"

#include "FastScan.h"
#include "LineChunks.h"
#include "SpanDetectors.h"
#include "TermMatcher.h"
#include "TextModel.h"

#include <algorithm>
#include <charconv>

namespace glyphmill {
namespace {

void appendPlaceholder(std::u16string &out, std::uint32_t number) {
    char digits[16];
    auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out.push_back(text::placeholderStart);
    for (char *d = digits; d != end; ++d)
        out.push_back(char16_t(*d));
    out.push_back(text::placeholderEnd);
}

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
        numbers[k] =
            placeholders.addSpan(std::u16string(working.substr(range.start, range.end - range.start)));
    }
    masked.clear();
    masked.reserve(working.size() + kept.size() * 8);
    std::size_t copied = 0;
    for (std::size_t k = 0; k < kept.size(); ++k) {
        masked.append(working.substr(copied, kept[k]->start - copied));
        appendPlaceholder(masked, numbers[k]);
        copied = kept[k]->end;
    }
    masked.append(working.substr(copied));
    return true;
}

// The number of a placeholder key that starts at text[i] (which is U+E000), and its length.
std::optional<std::pair<std::uint32_t, std::size_t>> placeholderAt(std::u16string_view text, std::size_t i) {
    std::size_t digitsStart = i + 1;
    std::size_t j = digitsStart;
    std::uint64_t number = 0;
    while (j < text.size() && text[j] >= u'0' && text[j] <= u'9' && j - digitsStart < 10) {
        number = number * 10 + (text[j] - u'0');
        ++j;
    }
    if (j == digitsStart || j >= text.size() || text[j] != text::placeholderEnd)
        return std::nullopt;
    if (text[digitsStart] == u'0' && j - digitsStart > 1) // keys have no leading zeros
        return std::nullopt;
    if (number > UINT32_MAX)
        return std::nullopt;
    return std::pair{std::uint32_t(number), j + 1 - i};
}

// Key by key, longest first, every occurrence replaced left to right. Used only when the text
// holds stray placeholder characters or a remembered text holds one, where the order shows.
std::u16string restoreKeyByKey(std::u16string_view text, const PlaceholderMap &placeholders) {
    auto entries = placeholders.entries();
    std::vector<std::pair<std::u16string, std::u16string>> ordered(entries.begin(), entries.end());
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto &a, const auto &b) {
        return text::graphemeCount(a.first) > text::graphemeCount(b.first);
    });
    std::u16string result(text);
    for (const auto &[key, value] : ordered) {
        std::u16string next;
        std::size_t copied = 0;
        for (std::size_t at = result.find(key); at != std::u16string::npos;
             at = result.find(key, at + key.size())) {
            next.append(result, copied, at - copied);
            next.append(value);
            copied = at + key.size();
        }
        if (copied == 0)
            continue;
        next.append(result, copied, std::u16string::npos);
        result = std::move(next);
    }
    return result;
}

} // namespace

std::u16string placeholder(std::uint32_t number) {
    std::u16string out;
    appendPlaceholder(out, number);
    return out;
}

void PlaceholderMap::noteText(const std::u16string &value) {
    if (!hasPlaceholderCharacters_ && value.find_first_of(u"\uE000\uE001") != std::u16string::npos)
        hasPlaceholderCharacters_ = true;
}

std::uint32_t PlaceholderMap::addSpan(std::u16string value) {
    noteText(value);
    spans_.push_back(std::move(value));
    return std::uint32_t(spans_.size() - 1);
}

std::uint32_t PlaceholderMap::addTerm(std::u16string value) {
    noteText(value);
    terms_.push_back(std::move(value));
    return firstTermPlaceholderNumber + std::uint32_t(terms_.size() - 1);
}

const std::u16string *PlaceholderMap::find(std::uint32_t number) const {
    if (number >= firstTermPlaceholderNumber && number - firstTermPlaceholderNumber < terms_.size())
        return &terms_[number - firstTermPlaceholderNumber];
    if (number < spans_.size())
        return &spans_[number];
    return nullptr;
}

std::map<std::u16string, std::u16string> PlaceholderMap::entries() const {
    std::map<std::u16string, std::u16string> all;
    for (std::size_t n = 0; n < spans_.size(); ++n)
        all[placeholder(std::uint32_t(n))] = spans_[n];
    for (std::size_t n = 0; n < terms_.size(); ++n)
        all[placeholder(firstTermPlaceholderNumber + std::uint32_t(n))] = terms_[n];
    return all;
}

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

std::u16string maskProtectedTerms(std::u16string_view text, const std::vector<std::u16string> &terms,
                                  PlaceholderMap &placeholders) {
    if (text.empty() || terms.empty())
        return std::u16string(text);
    std::u16string masked;
    masked.reserve(text.size());
    std::size_t copied = 0;
    TermMatcher(terms).forEachMatch(text,
                                    [&](std::size_t start, std::size_t end, const std::u16string &term) {
                                        masked.append(text.substr(copied, start - copied));
                                        appendPlaceholder(masked, placeholders.addTerm(term));
                                        copied = end;
                                    });
    masked.append(text.substr(copied));
    return masked;
}

namespace {

// One pass that replaces each key where it stands stands for key-by-key replacement when every
// placeholder character of the text belongs to a key of the map and no remembered text holds
// one: keys then cannot overlap or arise from a replacement. Keys hold no line feed, so line
// chunks can be restored apart.

// The length of the one-pass restoration of text, when it stands for key-by-key replacement.
std::optional<std::size_t> onePassRestoredSize(std::u16string_view text, const PlaceholderMap &placeholders) {
    if (placeholders.hasPlaceholderCharacters())
        return std::nullopt;
    std::size_t size = text.size();
    std::size_t keys = 0;
    for (std::size_t at = scan::findAnyOf(text, 0, text::placeholderStart); at < text.size();
         at = scan::findAnyOf(text, at + 1, text::placeholderStart)) {
        auto key = placeholderAt(text, at);
        const std::u16string *value = key ? placeholders.find(key->first) : nullptr;
        if (!value)
            return std::nullopt;
        size = size - key->second + value->size();
        at += key->second - 1;
        ++keys;
    }
    if (std::size_t(std::count(text.begin(), text.end(), text::placeholderEnd)) != keys)
        return std::nullopt;
    return size;
}

// Writes the one-pass restoration of text (measured by onePassRestoredSize) to dest.
void writeOnePassRestored(std::u16string_view text, const PlaceholderMap &placeholders, char16_t *dest) {
    std::size_t copied = 0;
    for (std::size_t at = scan::findAnyOf(text, 0, text::placeholderStart); at < text.size();
         at = scan::findAnyOf(text, at + 1, text::placeholderStart)) {
        auto key = placeholderAt(text, at);
        const std::u16string *value = placeholders.find(key->first);
        dest = std::copy(text.begin() + std::ptrdiff_t(copied), text.begin() + std::ptrdiff_t(at), dest);
        dest = std::copy(value->begin(), value->end(), dest);
        copied = at + key->second;
        at = copied - 1;
    }
    std::copy(text.begin() + std::ptrdiff_t(copied), text.end(), dest);
}

} // namespace

std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderMap &placeholders) {
    if (placeholders.empty())
        return std::u16string(text);
    auto size = onePassRestoredSize(text, placeholders);
    if (!size)
        return restoreKeyByKey(text, placeholders);
    std::u16string out(*size, u'\0');
    writeOnePassRestored(text, placeholders, out.data());
    return out;
}

std::u16string
transformAndRestore(std::u16string_view maskedText, const PlaceholderMap &placeholders, bool lineLocal,
                    const std::function<void(std::u16string_view, std::u16string &)> &transform) {
    auto wholeText = [&] {
        std::u16string body;
        transform(maskedText, body);
        return restorePlaceholders(body, placeholders);
    };
    auto chunks = lineLocal ? lineChunks(maskedText) : std::vector<std::u16string_view>{maskedText};
    if (chunks.size() == 1)
        return wholeText();
    // Each chunk is transformed and measured on its own thread, then restored straight into
    // its place in the result.
    std::vector<std::u16string> bodies(chunks.size());
    std::vector<std::optional<std::size_t>> sizes(chunks.size());
    runInParallel(chunks.size(), [&](std::size_t i) {
        transform(chunks[i], bodies[i]);
        sizes[i] = onePassRestoredSize(bodies[i], placeholders);
    });
    std::vector<std::size_t> offsets(chunks.size());
    std::size_t total = 0;
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        if (!sizes[i])
            return wholeText(); // stray placeholder characters: restore key by key, whole
        offsets[i] = total;
        total += *sizes[i];
    }
    std::u16string out(total, u'\0');
    runInParallel(chunks.size(), [&](std::size_t i) {
        writeOnePassRestored(bodies[i], placeholders, out.data() + offsets[i]);
        std::u16string().swap(bodies[i]);
    });
    return out;
}

} // namespace glyphmill
