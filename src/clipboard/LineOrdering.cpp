// The tools that compare whole lines with one another: sorting and removing duplicates.
#include "clipboard/LineTools.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <numeric>
#include <unordered_set>

namespace glyphmill::lineTools {

namespace {

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

// The order of a file browser: digit runs by value, letters without regard to case, in the
// user's locale. Under the C locale ICU picks en_US_POSIX, whose tailoring sorts every capital
// before every small letter; the root order is used instead.
std::unique_ptr<icu::Collator> fileBrowserCollator() {
    icu::Locale locale = icu::Locale::getDefault();
    if (std::strcmp(locale.getVariant(), "POSIX") == 0)
        locale = icu::Locale::getRoot();
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status) || !collator) {
        status = U_ZERO_ERROR;
        collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status))
            return nullptr;
    }
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    collator->setStrength(icu::Collator::SECONDARY);
    return collator;
}

// Every line's sort key, made once, in one buffer: the sort then compares bytes only.
class SortKeys {
public:
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

    bool less(std::size_t a, std::size_t b) const {
        const Span &left = spans_[a];
        const Span &right = spans_[b];
        int order = std::memcmp(bytes_.data() + left.offset, bytes_.data() + right.offset,
                                std::min(left.length, right.length));
        return order < 0 || (order == 0 && left.length < right.length);
    }

private:
    struct Span {
        std::size_t offset;
        std::size_t length;
    };
    std::vector<uint8_t> bytes_;
    std::vector<Span> spans_;
};

} // namespace

std::u16string sortedLines(std::u16string_view text) {
    const BrokenLines broken = breakLines(text);
    std::unique_ptr<icu::Collator> collator = fileBrowserCollator();
    if (!collator)
        return std::u16string(text);
    const SortKeys keys(*collator, broken.lines);
    std::vector<std::size_t> order(broken.lines.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keys.less(a, b); });

    std::vector<std::u16string_view> sorted;
    sorted.reserve(order.size());
    for (std::size_t index : order)
        sorted.push_back(broken.lines[index]);
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
    std::unordered_set<std::u16string_view> seen;
    seen.reserve(broken.lines.size());
    std::erase_if(broken.lines, [&](std::u16string_view line) {
        UErrorCode lineStatus = U_ZERO_ERROR;
        const icu::UnicodeString alias = aliasOf(line);
        std::u16string_view form = line;
        if (nfd->spanQuickCheckYes(alias, lineStatus) != alias.length()) {
            icu::UnicodeString decomposed = nfd->normalize(alias, lineStatus);
            form = decomposedLines.emplace_back(decomposed.getBuffer(), std::size_t(decomposed.length()));
        }
        return !seen.insert(form).second;
    });
    return assembleLines(broken.lines, broken.endsWithLineBreak);
}

} // namespace glyphmill::lineTools
