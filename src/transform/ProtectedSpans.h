// Masking of links, addresses, paths, tags and code behind private-use placeholders,
// and the cutting of text at the user's protected terms.
#pragma once

#include "Placeholders.h"
#include "TextTransformer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

struct MaskedText {
    std::u16string text;
    PlaceholderMap placeholders;
};

// Only the five span switches are read.
MaskedText maskProtectedSpans(std::u16string_view text, const TextProtectionOptions &options);

std::vector<TextTransformer::Segment> splitByProtectedTerms(std::u16string_view text,
                                                            const std::vector<std::u16string> &terms);

// Masks the terms of a text whose spans are masked, numbering after the span placeholders.
void maskProtectedTerms(MaskedText &masked, const std::vector<std::u16string> &terms);

// transform, then restorePlaceholders, over a masked text. When lineLocal says the transform
// works line by line, long texts go line chunk by line chunk on several threads.
std::u16string
transformAndRestore(std::u16string_view maskedText, const PlaceholderMap &placeholders, bool lineLocal,
                    const std::function<void(std::u16string_view, std::u16string &)> &transform);

} // namespace glyphmill
