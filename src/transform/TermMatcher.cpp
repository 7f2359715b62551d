#include "TermMatcher.h"

#include "TextModel.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
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
    for (std::size_t p = position; p < text.size();) {
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

} // namespace glyphmill
