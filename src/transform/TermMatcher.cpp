#include "TermMatcher.h"

#include "TextModel.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace glyphmill {
namespace {

using text::codePointAt;
using text::codeUnitCount;

// A code unit that is a letter, mark or number; half a surrogate pair never is.
bool isAlphanumericUnit(char16_t unit) {
    if (unit < 0x80)
        return text::isAsciiAlphanumeric(unit);
    if (text::isLeadSurrogate(unit) || text::isTrailSurrogate(unit))
        return false;
    return text::isLetterMarkOrNumber(unit);
}

const icu::Normalizer2 *decomposition() {
    static const icu::Normalizer2 *nfd = [] {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Normalizer2 *instance = icu::Normalizer2::getNFDInstance(status);
        return U_SUCCESS(status) ? instance : nullptr;
    }();
    return nfd;
}

// Where a match may end: before a character that starts a new decomposition chunk.
bool startsChunk(std::u16string_view text, std::size_t i) {
    if (text[i] < 0x300)
        return true;
    const icu::Normalizer2 *nfd = decomposition();
    return !nfd || nfd->hasBoundaryBefore(UChar32(codePointAt(text, i)));
}

} // namespace

TermMatcher::TermMatcher(const std::vector<std::u16string> &terms) {
    std::fill(std::begin(rootAscii_), std::end(rootAscii_), -1);
    nodes_.emplace_back();
    std::vector<std::size_t> graphemes(terms.size());
    for (std::size_t i = 0; i < terms.size(); ++i)
        graphemes[i] = text::graphemeCount(terms[i]);
    std::vector<std::size_t> order(terms.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return graphemes[a] > graphemes[b]; });
    for (std::size_t rank = 0; rank < order.size(); ++rank) {
        const std::u16string &term = terms[order[rank]];
        ordered_.push_back(&term);
        std::u16string key = text::caselessForm(term);
        if (key.empty())
            continue; // an empty term never matches
        int node = 0;
        for (char16_t unit : key) {
            int next = child(node, unit);
            node = next >= 0 ? next : addChild(node, unit);
        }
        if (nodes_[node].bestOrder < 0)
            nodes_[node].bestOrder = int(rank);
        if (key[0] < 0x80) {
            std::uint64_t *pairs = &asciiPairs_[key[0] * 2];
            if (key.size() == 1)
                pairs[0] = pairs[1] = ~std::uint64_t(0); // a one-unit term may be followed by anything
            else if (key[1] < 0x80)
                pairs[key[1] / 64] |= std::uint64_t(1) << (key[1] % 64);
        }
    }
}

int TermMatcher::child(int node, char16_t unit) const {
    if (node == 0 && unit < 128)
        return rootAscii_[unit];
    for (const auto &[u, next] : nodes_[node].children)
        if (u == unit)
            return next;
    return -1;
}

int TermMatcher::addChild(int node, char16_t unit) {
    int next = int(nodes_.size());
    nodes_.emplace_back();
    nodes_[node].children.emplace_back(unit, next);
    if (node == 0 && unit < 128)
        rootAscii_[unit] = next;
    return next;
}

std::size_t TermMatcher::caselessChunk(std::u16string_view text, std::size_t position,
                                       std::u16string &units) const {
    units.clear();
    char32_t first = codePointAt(text, position);
    std::size_t end = position + codeUnitCount(first);
    while (end < text.size() && !startsChunk(text, end))
        end += codeUnitCount(codePointAt(text, end));
    if (end == position + codeUnitCount(first)) {
        if (first < 0x80) {
            units.push_back(first >= u'A' && first <= u'Z' ? char16_t(first + 0x20) : char16_t(first));
            return end;
        }
        auto memo = caselessMemo_.find(first);
        if (memo == caselessMemo_.end())
            memo =
                caselessMemo_.emplace(first, text::caselessForm(text.substr(position, end - position))).first;
        units = memo->second;
        return end;
    }
    units = text::caselessForm(text.substr(position, end - position));
    return end;
}

std::optional<TermMatcher::Match> TermMatcher::matchAt(std::u16string_view text, std::size_t position) const {
    std::size_t walked = 0;
    return walkFrom(text, position, walked);
}

std::optional<TermMatcher::Match> TermMatcher::matchAt(std::u16string_view text, std::size_t position,
                                                       Scan &scan) const {
    if (scan.everywhere && scan.orderAt[position] != notChunkStart) {
        const std::int32_t order = scan.orderAt[position];
        if (order < 0)
            return std::nullopt;
        return Match{scan.endAt[position], ordered_[std::size_t(order)]};
    }
    std::size_t walked = 0;
    auto match = walkFrom(text, position, walked);
    if (!scan.everywhere) {
        scan.walkBudget -= std::min(walked, scan.walkBudget);
        if (scan.walkBudget == 0 && text.size() < std::numeric_limits<std::uint32_t>::max())
            findEverywhere(text, scan);
    }
    return match;
}

std::optional<TermMatcher::Match> TermMatcher::walkFrom(std::u16string_view text, std::size_t position,
                                                        std::size_t &walked) const {
    if (position > 0 && isAlphanumericUnit(text[position - 1]))
        return std::nullopt;
    char16_t firstUnit = text[position];
    if (firstUnit < 0x80 &&
        child(0, firstUnit >= u'A' && firstUnit <= u'Z' ? char16_t(firstUnit + 0x20) : firstUnit) < 0)
        return std::nullopt;
    int node = 0;
    int best = -1;
    std::size_t bestEnd = 0;
    std::u16string units;
    for (std::size_t p = position; p < text.size(); ++walked) {
        char16_t unit = text[p];
        if (unit < 0x80 && (p + 1 == text.size() || text[p + 1] < 0x300)) {
            // An ASCII character that no mark follows is its own caseless form, lowered.
            node = child(node, unit >= u'A' && unit <= u'Z' ? char16_t(unit + 0x20) : unit);
            if (node < 0)
                break;
            ++p;
        } else {
            p = caselessChunk(text, p, units);
            for (char16_t folded : units) {
                node = child(node, folded);
                if (node < 0)
                    break;
            }
            if (node < 0)
                break;
        }
        int order = nodes_[node].bestOrder;
        if (order >= 0 && (best < 0 || order < best) && (p == text.size() || !isAlphanumericUnit(text[p]))) {
            best = order;
            bestEnd = p;
        }
        if (nodes_[node].children.empty())
            break;
    }
    if (best < 0)
        return std::nullopt;
    return Match{bestEnd, ordered_[std::size_t(best)]};
}

int TermMatcher::next(int node, char16_t unit) const {
    for (;;) {
        const int found = child(node, unit);
        if (found >= 0)
            return found;
        if (node == 0)
            return 0;
        node = suffix_[std::size_t(node)];
    }
}

void TermMatcher::buildLinks() const {
    if (!suffix_.empty())
        return;
    suffix_.assign(nodes_.size(), 0);
    termSuffix_.assign(nodes_.size(), -1);
    depth_.assign(nodes_.size(), 0);
    // Breadth first, so that a node's suffix is linked before the node's children need it.
    std::vector<int> queue{0};
    for (std::size_t head = 0; head < queue.size(); ++head) {
        const int node = queue[head];
        for (const auto &[unit, childNode] : nodes_[std::size_t(node)].children) {
            const auto c = std::size_t(childNode);
            depth_[c] = depth_[std::size_t(node)] + 1;
            suffix_[c] = node == 0 ? 0 : next(suffix_[std::size_t(node)], unit);
            const auto link = std::size_t(suffix_[c]);
            termSuffix_[c] = nodes_[link].bestOrder >= 0 ? int(link) : termSuffix_[link];
            queue.push_back(childNode);
        }
    }
}

// One pass over the text's caseless form, chunk by chunk as the walk reads it. Every term that
// ends at a chunk's end and begins at a chunk's start is a candidate at that start; the lowest
// order among those with free boundaries is what the walk from that start would accept. A start
// inside a chunk (a mark after a non-letter) reads a chunk of its own, so the walk decides there.
void TermMatcher::findEverywhere(std::u16string_view text, Scan &scan) const {
    buildLinks();
    scan.everywhere = true;
    scan.orderAt.assign(text.size(), notChunkStart);
    scan.endAt.assign(text.size(), 0);
    // For each caseless unit read so far, the text position of the chunk it begins, if it does.
    std::vector<std::uint32_t> chunkStartAt;
    constexpr std::uint32_t inside = std::numeric_limits<std::uint32_t>::max();
    std::u16string units;
    int node = 0;
    for (std::size_t p = 0; p < text.size();) {
        const std::size_t start = p;
        scan.orderAt[start] = noTerm;
        const char16_t unit = text[p];
        if (unit < 0x80 && (p + 1 == text.size() || text[p + 1] < 0x300)) {
            units.assign(1, asciiLower(unit));
            ++p;
        } else {
            p = caselessChunk(text, p, units);
        }
        for (std::size_t i = 0; i < units.size(); ++i) {
            chunkStartAt.push_back(i == 0 ? std::uint32_t(start) : inside);
            node = next(node, units[i]);
        }
        if (p < text.size() && isAlphanumericUnit(text[p]))
            continue;
        const std::size_t read = chunkStartAt.size();
        for (int term = nodes_[std::size_t(node)].bestOrder >= 0 ? node : termSuffix_[std::size_t(node)];
             term >= 0; term = termSuffix_[std::size_t(term)]) {
            const std::uint32_t begin = chunkStartAt[read - depth_[std::size_t(term)]];
            if (begin == inside || (begin > 0 && isAlphanumericUnit(text[begin - 1])))
                continue;
            std::int32_t &order = scan.orderAt[begin];
            const std::int32_t termOrder = nodes_[std::size_t(term)].bestOrder;
            if (order < 0 || termOrder < order) {
                order = termOrder;
                scan.endAt[begin] = std::uint32_t(p);
            }
        }
    }
}

} // namespace glyphmill
