// Masking of links, addresses, paths, tags and code behind private-use placeholders,
// and the cutting of text at the user's protected terms.
#pragma once

#include "TextTransformer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

// Term placeholders count from here so that they stay apart from span placeholders.
inline constexpr std::uint32_t firstTermPlaceholderNumber = 10000;

// U+E000, the decimal digits of the number, U+E001.
std::u16string placeholder(std::uint32_t number);

// Placeholder number -> the text it stands for. Span numbers are dense from 0, term numbers
// dense from firstTermPlaceholderNumber; a term entry wins over a span entry of the same number.
class PlaceholderMap {
public:
    std::uint32_t addSpan(std::u16string text);
    std::uint32_t addTerm(std::u16string text);
    const std::u16string *find(std::uint32_t number) const;
    bool empty() const { return spans_.empty() && terms_.empty(); }
    // Every entry keyed by its placeholder string, after the term-over-span rule.
    std::map<std::u16string, std::u16string> entries() const;
    // True when some remembered text holds U+E000 or U+E001 and so could form a key itself.
    bool hasPlaceholderCharacters() const { return hasPlaceholderCharacters_; }

private:
    void noteText(const std::u16string &text);
    std::vector<std::u16string> spans_;
    std::vector<std::u16string> terms_;
    bool hasPlaceholderCharacters_ = false;
};

struct MaskedText {
    std::u16string text;
    PlaceholderMap placeholders;
};

// Only the five span switches are read.
MaskedText maskProtectedSpans(std::u16string_view text, const TextProtectionOptions &options);

std::vector<TextTransformer::Segment> splitByProtectedTerms(std::u16string_view text,
                                                            const std::vector<std::u16string> &terms);

// Adds term placeholders (numbered from firstTermPlaceholderNumber) to the given map.
std::u16string maskProtectedTerms(std::u16string_view text, const std::vector<std::u16string> &terms,
                                  PlaceholderMap &placeholders);

std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderMap &placeholders);

// transform, then restorePlaceholders, over a masked text. When lineLocal says the transform
// works line by line, long texts go line chunk by line chunk on several threads.
std::u16string
transformAndRestore(std::u16string_view maskedText, const PlaceholderMap &placeholders, bool lineLocal,
                    const std::function<void(std::u16string_view, std::u16string &)> &transform);

} // namespace glyphmill
