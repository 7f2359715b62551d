// The tools that compare whole lines with one another: sorting and removing duplicates.
//
// Both keep what they know about lines in a few bytes a line at most, so that a text of ten
// million empty lines takes no more memory than one of a few long ones: offsets into the text
// rather than views of it, one sort key for all the lines that share it, and results written
// straight to their place rather than assembled from a list of lines.
#include "clipboard/text/LineTools.h"

#include "clipboard/text/LocaleCollator.h"

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <optional>

namespace glyphmill::lineTools {

namespace {

constexpr char16_t lineFeed = u'\n';

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

template <typename Index> Index shortHash(std::size_t hash) {
    if constexpr (sizeof(Index) < sizeof(std::size_t))
        return Index(hash ^ (hash >> 32));
    else
        return Index(hash);
}

// Numbers in open addressing in one array, so that a look-up touches one slot rather than a
// chain of nodes: four bytes a slot, never more than half full. What the numbers stand for,
// their hashes and so what equal means are the caller's.
template <typename Index> class NumberSet {
public:
    NumberSet() : slots_(16) {}

    // The member for which equal(member) holds, if any, or else none after adding candidate.
    // hashOf(member) gives the hash of a member again when the set grows, which it does before
    // the candidate is in: the caller stores what the candidate stands for afterwards.
    template <typename Equal, typename HashOf>
    std::optional<Index> findOrAdd(Index hash, Index candidate, Equal &&equal, HashOf &&hashOf) {
        std::size_t free = hash & mask();
        for (; slots_[free] != 0; free = (free + 1) & mask()) {
            if (equal(Index(slots_[free] - 1)))
                return Index(slots_[free] - 1);
        }
        if ((size_ + 1) * 2 > slots_.size()) {
            grow(hashOf);
            free = hash & mask();
            while (slots_[free] != 0)
                free = (free + 1) & mask();
        }
        slots_[free] = Index(candidate + 1);
        ++size_;
        return std::nullopt;
    }

private:
    std::size_t mask() const { return slots_.size() - 1; }

    template <typename HashOf> void grow(HashOf &&hashOf) {
        std::vector<Index> old(slots_.size() * 2);
        old.swap(slots_);
        for (Index numberAfter : old) {
            if (numberAfter == 0)
                continue;
            std::size_t i = hashOf(Index(numberAfter - 1)) & mask();
            while (slots_[i] != 0)
                i = (i + 1) & mask();
            slots_[i] = numberAfter;
        }
    }

    std::vector<Index> slots_; // a number plus one; zero marks a free slot
    std::size_t size_ = 0;
};

// A buffer that grows with realloc, which moves a large block by remapping its pages rather
// than copying them, and leaves the room past what is written untouched.
template <typename Unit> class GrowingBuffer {
public:
    GrowingBuffer() = default;
    GrowingBuffer(const GrowingBuffer &) = delete;
    GrowingBuffer &operator=(const GrowingBuffer &) = delete;
    ~GrowingBuffer() { std::free(data_); }

    Unit *data() const { return data_; }
    std::size_t capacity() const { return capacity_; }

    // At least the capacity asked, and at least twice the current one.
    void grow(std::size_t capacity) {
        if (capacity <= capacity_)
            return;
        capacity = std::max(capacity, capacity_ * 2);
        void *grown = std::realloc(data_, capacity * sizeof(Unit));
        if (!grown)
            throw std::bad_alloc();
        data_ = static_cast<Unit *>(grown);
        capacity_ = capacity;
    }

    void release() {
        std::free(data_);
        data_ = nullptr;
        capacity_ = 0;
    }

private:
    Unit *data_ = nullptr;
    std::size_t capacity_ = 0;
};

template <typename Vector> void releaseVector(Vector &vector) {
    Vector().swap(vector);
}

// The lines gathered by sort key: the lines whose keys are equal form a group, whose key is
// made and kept once. Each line costs the number of its group; each group its key and three
// numbers.
template <typename Index> class SortKeyGroups {
public:
    // Packed: a third less to move about than with padding.
    struct [[gnu::packed]] Entry {
        std::uint64_t prefix; // the key's first bytes, big-endian, zero-padded
        Index group;
    };

    // Room for a group a line is reserved at once: what is never used is never mapped in.
    SortKeyGroups(const icu::Collator &collator, std::size_t lineCount) : collator_(collator) {
        keyEnds_.reserve(lineCount);
        units_.reserve(lineCount);
        hashes_.reserve(lineCount);
    }

    // The group of the line; none when the keys outgrow the offsets.
    std::optional<Index> add(std::u16string_view line) {
        std::size_t length = keyInto(line);
        if (keysUsed_ + length > std::numeric_limits<Index>::max() ||
            units_.size() + 1 >= std::numeric_limits<Index>::max())
            return std::nullopt;
        const std::uint8_t *key = keys_.data() + keysUsed_;
        const Index hash = shortHash<Index>(
            std::hash<std::string_view>{}(std::string_view(reinterpret_cast<const char *>(key), length)));
        const Index candidate = Index(units_.size());
        std::optional<Index> existing = groups_.findOrAdd(
            hash, candidate,
            [&](Index group) {
                return hashes_[group] == hash && keyLength(group) == length &&
                       std::memcmp(keyOf(group), key, length) == 0;
            },
            [&](Index group) { return hashes_[group]; });
        const Index lineUnits = Index(line.size() + 1); // with its line break
        if (existing) {
            units_[*existing] = Index(units_[*existing] + lineUnits);
            return existing;
        }
        keysUsed_ += length;
        keyEnds_.push_back(Index(keysUsed_));
        units_.push_back(lineUnits);
        hashes_.push_back(hash);
        return candidate;
    }

    // Where each group starts in the sorted text, its lines and line breaks in line order; the
    // keys are let go first.
    std::vector<Index> startsInOrder() {
        groups_ = NumberSet<Index>();
        releaseVector(hashes_);
        std::vector<Entry> order;
        order.reserve(units_.size());
        for (std::size_t group = 0; group < units_.size(); ++group) {
            const std::uint8_t *key = keyOf(Index(group));
            const std::size_t length = keyLength(Index(group));
            std::uint64_t prefix = 0;
            for (std::size_t i = 0; i < prefixLength; ++i)
                prefix = (prefix << 8) | (i < length ? key[i] : 0);
            order.push_back({prefix, Index(group)});
        }
        std::sort(order.begin(), order.end(), [&](const Entry &a, const Entry &b) { return less(a, b); });
        keys_.release();
        releaseVector(keyEnds_);

        std::vector<Index> starts = std::move(units_);
        Index start = 0;
        for (const Entry &entry : order) {
            const Index group = entry.group;
            const Index units = starts[group];
            starts[group] = start;
            start = Index(start + units);
        }
        return starts;
    }

private:
    static constexpr std::size_t prefixLength = sizeof(std::uint64_t);

    // Made at the end of the buffer, where it stays if its group is new.
    std::size_t keyInto(std::u16string_view line) {
        // Room for most keys, so that few are made twice; more than doubling wastes nothing,
        // since realloc maps in only the pages that are written.
        keys_.grow(keysUsed_ + 4 * line.size() + 64);
        auto make = [&] {
            const std::size_t room = std::min<std::size_t>(keys_.capacity() - keysUsed_, INT32_MAX);
            return std::size_t(collator_.getSortKey(line.data(), int32_t(line.size()),
                                                    keys_.data() + keysUsed_, int32_t(room)));
        };
        std::size_t length = make();
        if (keysUsed_ + length > keys_.capacity()) {
            keys_.grow(keysUsed_ + length);
            length = make();
        }
        return length;
    }

    std::size_t keyStart(Index group) const { return group == 0 ? 0 : keyEnds_[group - 1]; }
    std::size_t keyLength(Index group) const { return keyEnds_[group] - keyStart(group); }
    const std::uint8_t *keyOf(Index group) const { return keys_.data() + keyStart(group); }

    // Keys of different groups differ, and a key ends with its only zero byte: equal prefixes
    // that hold it cannot both belong to groups. The group numbers only make the order total.
    bool less(const Entry &a, const Entry &b) const {
        const std::uint64_t leftPrefix = a.prefix, rightPrefix = b.prefix;
        if (leftPrefix != rightPrefix)
            return leftPrefix < rightPrefix;
        const Index leftGroup = a.group, rightGroup = b.group;
        const std::size_t left = keyLength(leftGroup);
        const std::size_t right = keyLength(rightGroup);
        if (left > prefixLength && right > prefixLength) {
            const int order = std::memcmp(keyOf(leftGroup) + prefixLength, keyOf(rightGroup) + prefixLength,
                                          std::min(left, right) - prefixLength);
            if (order != 0)
                return order < 0;
            if (left != right)
                return left < right;
        }
        return leftGroup < rightGroup;
    }

    const icu::Collator &collator_;
    GrowingBuffer<std::uint8_t> keys_;
    std::size_t keysUsed_ = 0;
    std::vector<Index> keyEnds_; // a group's key ends where the next one's starts
    std::vector<Index> units_;   // the units of a group's lines, with their line breaks
    std::vector<Index> hashes_;  // of the keys
    NumberSet<Index> groups_;
};

// Key order, and line order among lines of equal keys: the lines of a group go out together, in
// the order they came. None when Index is too narrow for the text.
template <typename Index>
std::optional<std::u16string> sortedLinesWith(const icu::Collator &collator, std::u16string_view text) {
    const std::size_t lines = lineCount(text);
    std::vector<Index> groupOfLine;
    groupOfLine.reserve(lines);
    std::optional<std::vector<Index>> starts;
    {
        SortKeyGroups<Index> groups(collator, lines);
        bool fits = true;
        forEachLine(text, [&](std::u16string_view line) {
            std::optional<Index> group = groups.add(line);
            if (group)
                groupOfLine.push_back(*group);
            return fits = group.has_value();
        });
        if (!fits)
            return std::nullopt;
        starts = groups.startsInOrder();
    }

    // Every line with its line break: one more than the text unless that ends with one.
    std::u16string result(text.size() + (endsWithLineBreak(text) ? 0 : 1), u'\0');
    std::size_t line = 0;
    forEachLine(text, [&](std::u16string_view units) {
        Index &start = (*starts)[groupOfLine[line++]];
        std::copy(units.begin(), units.end(), result.begin() + std::ptrdiff_t(start));
        result[start + units.size()] = lineFeed;
        start = Index(start + units.size() + 1);
    });
    if (!endsWithLineBreak(text))
        result.pop_back();
    return result;
}

// The NFD form of the line, made in the buffer past what is used and a unit short of its end, so
// that it can stay there with a line feed after it.
std::u16string_view decomposedInto(const icu::Normalizer2 &nfd, std::u16string_view line,
                                   GrowingBuffer<char16_t> &buffer, std::size_t used) {
    // NFD makes a text at most three times longer.
    buffer.grow(used + 3 * line.size() + 16);
    const std::size_t room = std::min<std::size_t>(buffer.capacity() - used - 1, INT32_MAX);
    icu::UnicodeString form(buffer.data() + used, 0, int32_t(room));
    UErrorCode status = U_ZERO_ERROR;
    nfd.normalize(aliasOf(line), form, status);
    const std::size_t length = std::size_t(form.length());
    // Past the room given, ICU makes a buffer of its own.
    if (form.getBuffer() != buffer.data() + used) {
        buffer.grow(used + length + 1);
        std::copy(form.getBuffer(), form.getBuffer() + length, buffer.data() + used);
    }
    return {buffer.data() + used, length};
}

// Nothing below U+00C0 changes under NFD or reorders with its neighbours.
bool isPlainlyDecomposed(std::u16string_view line) {
    char16_t highest = 0;
    for (char16_t unit : line)
        highest = std::max(highest, unit);
    return highest < 0xC0;
}

// The first line of each NFD form, in order. Forms are known by where they are: a line already
// in NFD by its offset in the text, another by the offset past the text of its form, kept once
// for all the lines that have it. Each form ends at a line feed or at the end of its text.
template <typename Index>
std::optional<std::u16string> uniqueLinesWith(const icu::Normalizer2 &nfd, std::u16string_view text) {
    GrowingBuffer<char16_t> decomposedForms; // NFD forms, each with a line feed after it
    std::size_t decomposedUsed = 0;
    // The text or the forms past it, and the offset there.
    auto whereStored = [&](Index position) -> std::pair<std::u16string_view, std::size_t> {
        if (position < text.size())
            return {text, position};
        return {std::u16string_view(decomposedForms.data(), decomposedUsed), position - text.size()};
    };
    auto storedForm = [&](Index position) {
        const auto [in, at] = whereStored(position);
        return in.substr(at, scan::findAnyOf(in, at, lineFeed) - at);
    };
    // Without looking for the end of the stored form first, which takes longer than most
    // comparisons.
    auto isStored = [&](Index position, std::u16string_view form) {
        const auto [in, at] = whereStored(position);
        return in.size() - at >= form.size() && in.compare(at, form.size(), form) == 0 &&
               (at + form.size() == in.size() || in[at + form.size()] == lineFeed);
    };
    auto hashOf = [](std::u16string_view form) {
        return shortHash<Index>(std::hash<std::u16string_view>{}(form));
    };

    std::u16string result;
    result.reserve(text.size());
    NumberSet<Index> seen;
    bool fits = true;
    forEachLine(text, [&](std::u16string_view line) {
        std::u16string_view form = line;
        bool isDecomposed = false;
        if (!isPlainlyDecomposed(line)) {
            UErrorCode status = U_ZERO_ERROR;
            const icu::UnicodeString alias = aliasOf(line);
            if (nfd.spanQuickCheckYes(alias, status) != alias.length()) {
                form = decomposedInto(nfd, line, decomposedForms, decomposedUsed);
                isDecomposed = true;
            }
        }
        const std::size_t position =
            isDecomposed ? text.size() + decomposedUsed : std::size_t(line.data() - text.data());
        if (position + form.size() + 1 >= std::numeric_limits<Index>::max()) {
            fits = false;
            return false;
        }
        const auto existing = seen.findOrAdd(
            hashOf(form), Index(position), [&](Index member) { return isStored(member, form); },
            [&](Index member) { return hashOf(storedForm(member)); });
        if (existing)
            return true;
        if (isDecomposed) {
            // Kept where it was made, behind the last form kept.
            decomposedUsed += form.size();
            decomposedForms.data()[decomposedUsed++] = lineFeed;
        }
        result.append(line);
        result.push_back(lineFeed);
        return true;
    });
    if (!fits)
        return std::nullopt;
    // The first line is always kept, with a line break the text may not have.
    if (!endsWithLineBreak(text))
        result.pop_back();
    return result;
}

std::u16string sortedLinesWithOffsets(std::u16string_view text, bool wide) {
    // Letter case does not count; accents only between otherwise equal lines.
    std::unique_ptr<icu::Collator> collator = numericLocaleCollator(icu::Collator::SECONDARY);
    if (!collator)
        return std::u16string(text);
    if (!wide && text.size() <= narrowOffsetLimit) {
        if (auto sorted = sortedLinesWith<std::uint32_t>(*collator, text))
            return std::move(*sorted);
    }
    return std::move(*sortedLinesWith<std::uint64_t>(*collator, text));
}

std::u16string uniqueLinesWithOffsets(std::u16string_view text, bool wide) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return std::u16string(text);
    // The empty text has one line, and no offset in the text to know it by.
    if (text.empty())
        return {};
    if (!wide && text.size() <= narrowOffsetLimit) {
        if (auto unique = uniqueLinesWith<std::uint32_t>(*nfd, text))
            return std::move(*unique);
    }
    return std::move(*uniqueLinesWith<std::uint64_t>(*nfd, text));
}

} // namespace

std::u16string sortedLines(std::u16string_view text) {
    return sortedLinesWithOffsets(text, false);
}

std::u16string uniqueLines(std::u16string_view text) {
    return uniqueLinesWithOffsets(text, false);
}

std::u16string wideOffsets::sortedLines(std::u16string_view text) {
    return sortedLinesWithOffsets(text, true);
}

std::u16string wideOffsets::uniqueLines(std::u16string_view text) {
    return uniqueLinesWithOffsets(text, true);
}

} // namespace glyphmill::lineTools
