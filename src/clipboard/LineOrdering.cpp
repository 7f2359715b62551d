// The tools that compare whole lines with one another: sorting and removing duplicates.
#include "clipboard/LineTools.h"

#include "clipboard/LocaleCollator.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>

namespace glyphmill::lineTools {

namespace {

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

// Every line's sort key, made once, in one buffer. The sort moves entries that carry the first
// eight bytes of their key, so most comparisons end there without a look into the buffer, which
// on large texts is a cache miss each time.
class SortKeys {
public:
    struct Entry {
        std::uint64_t prefix; // the key's first bytes, big-endian, zero-padded
        std::size_t line;
    };

    SortKeys(const icu::Collator &collator, const std::vector<std::u16string_view> &lines) {
        spans_.reserve(lines.size());
        bytes_.resize(lines.size() * 16 + 64);
        std::size_t used = 0;
        for (std::u16string_view line : lines) {
            auto length = [&] {
                return std::size_t(
                    collator.getSortKey(line.data(), int32_t(line.size()), bytes_.data() + used,
                                        int32_t(std::min<std::size_t>(bytes_.size() - used, INT32_MAX))));
            };
            std::size_t needed = length();
            if (used + needed > bytes_.size()) {
                bytes_.resize(std::max(bytes_.size() * 2, used + needed));
                needed = length();
            }
            spans_.push_back({used, needed});
            used += needed;
        }
    }

    std::vector<Entry> entries() const {
        std::vector<Entry> entries;
        entries.reserve(spans_.size());
        for (std::size_t line = 0; line < spans_.size(); ++line) {
            std::uint64_t prefix = 0;
            const Span &span = spans_[line];
            for (std::size_t i = 0; i < prefixLength; ++i)
                prefix = (prefix << 8) | (i < span.length ? bytes_[span.offset + i] : 0);
            entries.push_back({prefix, line});
        }
        return entries;
    }

    // Key order, then line order: a total order, so an unstable sort keeps equal lines in place.
    bool less(const Entry &a, const Entry &b) const {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        const Span &left = spans_[a.line];
        const Span &right = spans_[b.line];
        // A key ends with its only zero byte: equal prefixes that hold it are equal keys.
        if (left.length > prefixLength && right.length > prefixLength) {
            const std::size_t common = std::min(left.length, right.length) - prefixLength;
            const int order = std::memcmp(bytes_.data() + left.offset + prefixLength,
                                          bytes_.data() + right.offset + prefixLength, common);
            if (order != 0)
                return order < 0;
            if (left.length != right.length)
                return left.length < right.length;
        }
        return a.line < b.line;
    }

private:
    static constexpr std::size_t prefixLength = sizeof(std::uint64_t);
    struct Span {
        std::size_t offset;
        std::size_t length;
    };
    std::vector<uint8_t> bytes_;
    std::vector<Span> spans_;
};

// The forms of the lines kept so far: open addressing in one array, so that a look-up touches
// one slot instead of a chain of nodes spread over the heap. On a large text every look-up
// misses the cache; asking for a slot some lines ahead lets those misses overlap.
class SeenForms {
public:
    explicit SeenForms(std::size_t lineCount) {
        std::size_t capacity = 16;
        while (capacity < lineCount + lineCount / 2)
            capacity *= 2;
        slots_.resize(capacity);
        mask_ = capacity - 1;
    }

    static std::size_t hashOf(std::u16string_view form) { return std::hash<std::u16string_view>{}(form); }

    void prefetch(std::size_t hash) const { __builtin_prefetch(&slots_[hash & mask_]); }

    // False when an equal form was added before.
    bool add(std::u16string_view form, std::size_t hash) {
        for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
            Slot &slot = slots_[i];
            if (slot.form.data() == nullptr) {
                slot = {hash, form};
                return true;
            }
            if (slot.hash == hash && slot.form == form)
                return false;
        }
    }

private:
    struct Slot {
        std::size_t hash = 0;
        std::u16string_view form; // no data marks a free slot
    };
    std::vector<Slot> slots_;
    std::size_t mask_ = 0;
};

// Nothing below U+00C0 changes under NFD or reorders with its neighbours.
bool isPlainlyDecomposed(std::u16string_view line) {
    char16_t highest = 0;
    for (char16_t unit : line)
        highest = std::max(highest, unit);
    return highest < 0xC0;
}

} // namespace

std::u16string sortedLines(std::u16string_view text) {
    const BrokenLines broken = breakLines(text);
    // Letter case does not count; accents only between otherwise equal lines.
    std::unique_ptr<icu::Collator> collator = numericLocaleCollator(icu::Collator::SECONDARY);
    if (!collator)
        return std::u16string(text);
    const SortKeys keys(*collator, broken.lines);
    std::vector<SortKeys::Entry> order = keys.entries();
    std::sort(order.begin(), order.end(),
              [&](const SortKeys::Entry &a, const SortKeys::Entry &b) { return keys.less(a, b); });

    std::vector<std::u16string_view> sorted;
    sorted.reserve(order.size());
    for (const SortKeys::Entry &entry : order)
        sorted.push_back(broken.lines[entry.line]);
    return assembleLines(sorted, broken.endsWithLineBreak);
}

std::u16string uniqueLines(std::u16string_view text) {
    BrokenLines broken = breakLines(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return std::u16string(text);

    // Lines are told apart by their NFD form; most lines already are in NFD and are used as
    // they stand, the others are kept here (a deque never moves what it holds).
    std::deque<std::u16string> decomposedLines;
    struct Form {
        std::u16string_view units;
        std::size_t hash;
    };
    std::vector<Form> forms;
    forms.reserve(broken.lines.size());
    // An empty line of an empty text has no data, which marks a free slot: any pointer does.
    static constexpr char16_t emptyLine[] = u"";
    for (std::u16string_view line : broken.lines) {
        std::u16string_view form = line.empty() ? std::u16string_view(emptyLine, 0) : line;
        if (!isPlainlyDecomposed(line)) {
            UErrorCode lineStatus = U_ZERO_ERROR;
            const icu::UnicodeString alias = aliasOf(line);
            if (nfd->spanQuickCheckYes(alias, lineStatus) != alias.length()) {
                icu::UnicodeString decomposed = nfd->normalize(alias, lineStatus);
                form = decomposedLines.emplace_back(decomposed.getBuffer(), std::size_t(decomposed.length()));
            }
        }
        forms.push_back({form, SeenForms::hashOf(form)});
    }

    constexpr std::size_t lookAhead = 8;
    SeenForms seen(forms.size());
    std::size_t keptCount = 0;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        if (i + lookAhead < forms.size())
            seen.prefetch(forms[i + lookAhead].hash);
        if (seen.add(forms[i].units, forms[i].hash))
            broken.lines[keptCount++] = broken.lines[i];
    }
    broken.lines.resize(keptCount);
    return assembleLines(broken.lines, broken.endsWithLineBreak);
}

} // namespace glyphmill::lineTools
