#include "Placeholders.h"

#include "FastScan.h"
#include "TextModel.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <optional>
#include <utility>

namespace glyphmill {
namespace {

// The number of the placeholder that starts at text[i] (which is U+E000), and its length.
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
    if (text[digitsStart] == u'0' && j - digitsStart > 1) // placeholders have no leading zeros
        return std::nullopt;
    if (number > UINT32_MAX)
        return std::nullopt;
    return std::pair{std::uint32_t(number), j + 1 - i};
}

// Calls each(position, length, text it stands for) for every placeholder of ours in text, in order.
template <typename Each>
void forEachPlaceholder(std::u16string_view text, const PlaceholderMap &placeholders, std::size_t firstStart,
                        Each &&each) {
    const auto &own = placeholders.ownStarts();
    auto nextOwn = std::lower_bound(own.begin(), own.end(), firstStart);
    std::size_t ordinal = firstStart;
    for (std::size_t at = scan::findAnyOf(text, 0, text::placeholderStart); at < text.size();
         at = scan::findAnyOf(text, at + 1, text::placeholderStart), ++ordinal) {
        if (nextOwn != own.end() && *nextOwn == ordinal) {
            ++nextOwn;
            continue;
        }
        auto key = placeholderAt(text, at);
        auto value = key ? placeholders.find(key->first) : std::nullopt;
        assert(value && "a transform broke a placeholder");
        if (!value)
            continue;
        each(at, key->second, *value);
        at += key->second - 1;
    }
}

} // namespace

void appendPlaceholder(std::u16string &out, std::uint32_t number) {
    char digits[16];
    auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out.push_back(text::placeholderStart);
    for (char *d = digits; d != end; ++d)
        out.push_back(char16_t(*d));
    out.push_back(text::placeholderEnd);
}

std::u16string placeholder(std::uint32_t number) {
    std::u16string out;
    appendPlaceholder(out, number);
    return out;
}

std::uint32_t PlaceholderMap::addSpan(std::u16string_view value) {
    assert(ends_.size() == spanCount_ && "spans are masked before terms");
    texts_.append(value);
    ends_.push_back(texts_.size());
    return std::uint32_t(spanCount_++);
}

std::uint32_t PlaceholderMap::addTerm(std::u16string_view value) {
    if (ends_.size() == spanCount_)
        firstTermNumber_ = std::max(firstTermPlaceholderNumber, std::uint32_t(spanCount_));
    texts_.append(value);
    ends_.push_back(texts_.size());
    return firstTermNumber_ + std::uint32_t(ends_.size() - 1 - spanCount_);
}

std::optional<std::u16string_view> PlaceholderMap::find(std::uint32_t number) const {
    const std::size_t termCount = ends_.size() - spanCount_;
    if (termCount > 0 && number >= firstTermNumber_ && number - firstTermNumber_ < termCount)
        return text(spanCount_ + (number - firstTermNumber_));
    if (number < spanCount_)
        return text(number);
    return std::nullopt;
}

std::map<std::u16string, std::u16string> PlaceholderMap::entries() const {
    std::map<std::u16string, std::u16string> all;
    for (std::size_t n = 0; n < spanCount_; ++n)
        all[placeholder(std::uint32_t(n))] = std::u16string(text(n));
    for (std::size_t n = spanCount_; n < ends_.size(); ++n)
        all[placeholder(firstTermNumber_ + std::uint32_t(n - spanCount_))] = std::u16string(text(n));
    return all;
}

void OwnStartTracker::walk(std::size_t from, std::size_t to, bool kept) {
    if (own_.empty())
        return;
    for (std::size_t at = scan::findAnyOf(old_.substr(0, to), from, text::placeholderStart); at < to;
         at = scan::findAnyOf(old_.substr(0, to), at + 1, text::placeholderStart)) {
        bool isOwn = nextOwn_ < own_.size() && own_[nextOwn_] == oldOrdinal_;
        if (isOwn)
            ++nextOwn_;
        ++oldOrdinal_;
        if (kept) {
            if (isOwn)
                newOwn_.push_back(newOrdinal_);
            ++newOrdinal_;
        }
    }
}

std::size_t placeholderStartCount(std::u16string_view text) {
    std::size_t count = 0;
    for (std::size_t at = scan::findAnyOf(text, 0, text::placeholderStart); at < text.size();
         at = scan::findAnyOf(text, at + 1, text::placeholderStart))
        ++count;
    return count;
}

std::size_t restoredSize(std::u16string_view text, const PlaceholderMap &placeholders,
                         std::size_t firstStart) {
    std::size_t size = text.size();
    forEachPlaceholder(text, placeholders, firstStart,
                       [&](std::size_t, std::size_t length, std::u16string_view value) {
                           size = size - length + value.size();
                       });
    return size;
}

void writeRestored(std::u16string_view text, const PlaceholderMap &placeholders, std::size_t firstStart,
                   char16_t *dest) {
    std::size_t copied = 0;
    forEachPlaceholder(
        text, placeholders, firstStart, [&](std::size_t at, std::size_t length, std::u16string_view value) {
            dest = std::copy(text.begin() + std::ptrdiff_t(copied), text.begin() + std::ptrdiff_t(at), dest);
            dest = std::copy(value.begin(), value.end(), dest);
            copied = at + length;
        });
    std::copy(text.begin() + std::ptrdiff_t(copied), text.end(), dest);
}

std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderMap &placeholders) {
    if (placeholders.empty())
        return std::u16string(text);
    std::u16string out(restoredSize(text, placeholders, 0), u'\0');
    writeRestored(text, placeholders, 0, out.data());
    return out;
}

} // namespace glyphmill
