// The private-use placeholders that stand in for protected text while a transform runs, and
// their restoration.
//
// A placeholder is U+E000, decimal digits, U+E001. No transform creates, removes or reorders
// these characters or the digits between them, so the n-th U+E000 of a transformed text is the
// n-th U+E000 of the masked text it came from. Restoration goes by that order rather than by
// searching for keys: a U+E000 the input itself contained is never taken for a placeholder, and
// a restored text is never searched again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

// Term placeholders count from here (or from the first number after the spans, when a text has
// more spans than that) so that they stay apart from span placeholders.
inline constexpr std::uint32_t firstTermPlaceholderNumber = 10000;

// U+E000, the decimal digits of the number, U+E001.
std::u16string placeholder(std::uint32_t number);
void appendPlaceholder(std::u16string &out, std::uint32_t number);

// Placeholder number -> the text it stands for, and which U+E000 of the masked text belong to
// the text itself. Spans are numbered densely from 0 and must all be added before the first term.
class PlaceholderMap {
public:
    std::uint32_t addSpan(std::u16string_view text);
    std::uint32_t addTerm(std::u16string_view text);
    std::optional<std::u16string_view> find(std::uint32_t number) const;
    bool empty() const { return ends_.empty(); }
    // Every entry keyed by its placeholder string.
    std::map<std::u16string, std::u16string> entries() const;

    // Ordinals, counted over the U+E000 of the current masked text, of those that the text
    // brought with it (ascending). Empty in the usual case of a text without U+E000.
    const std::vector<std::size_t> &ownStarts() const { return ownStarts_; }
    void setOwnStarts(std::vector<std::size_t> ordinals) { ownStarts_ = std::move(ordinals); }

private:
    std::u16string_view text(std::size_t entry) const {
        std::size_t start = entry == 0 ? 0 : ends_[entry - 1];
        return std::u16string_view(texts_).substr(start, ends_[entry] - start);
    }
    // The remembered texts one after another, spans first, each ending where ends_ says: a text
    // with millions of one-character spans must not cost a string object each.
    std::u16string texts_;
    std::vector<std::size_t> ends_;
    std::size_t spanCount_ = 0;
    std::uint32_t firstTermNumber_ = 0; // fixed by the first term
    std::vector<std::size_t> ownStarts_;
};

// Follows the text's own U+E000 while a masked text is rebuilt from an older one: the old text is
// walked once, front to back, each piece either copied or replaced by a placeholder.
class OwnStartTracker {
public:
    OwnStartTracker(std::u16string_view old, const std::vector<std::size_t> &ownOrdinals)
        : old_(old), own_(ownOrdinals) {}
    void copy(std::size_t from, std::size_t to) { walk(from, to, true); }
    void replace(std::size_t from, std::size_t to) {
        walk(from, to, false);
        ++newOrdinal_;
    }
    std::vector<std::size_t> take() { return std::move(newOwn_); }

private:
    void walk(std::size_t from, std::size_t to, bool kept);
    std::u16string_view old_;
    const std::vector<std::size_t> &own_;
    std::size_t nextOwn_ = 0;
    std::size_t oldOrdinal_ = 0;
    std::size_t newOrdinal_ = 0;
    std::vector<std::size_t> newOwn_;
};

// The number of U+E000 in text.
std::size_t placeholderStartCount(std::u16string_view text);

// Restoration of a transformed text, or of a piece of one whose first U+E000 has the ordinal
// firstStart in the whole: first measured, then written to memory of that size.
std::size_t restoredSize(std::u16string_view text, const PlaceholderMap &placeholders,
                         std::size_t firstStart);
void writeRestored(std::u16string_view text, const PlaceholderMap &placeholders, std::size_t firstStart,
                   char16_t *dest);

std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderMap &placeholders);

} // namespace glyphmill
