// A deliberately slow second implementation of the case transforms, used as an oracle for the
// engine in src/transform. Every step is written the obvious way: patterns are compiled on each
// call, graphemes come straight from ICU's break iterator, and the term search tries every end.
// It shares nothing with the engine but the public types of TextTransformer.h.
#pragma once

#include "transform/TextTransformer.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill::reference {

using PlaceholderEntries = std::map<std::u16string, std::u16string>;

struct Masked {
    std::u16string text;
    PlaceholderEntries placeholders;
};

std::u16string placeholder(unsigned number);

// Only the five span switches are read; placeholders count from 0.
Masked maskProtectedSpans(std::u16string_view text, const TextProtectionOptions &options);
std::vector<TextTransformer::Segment> splitByProtectedTerms(std::u16string_view text,
                                                            const std::vector<std::u16string> &terms);
// Placeholders count from 10000.
Masked maskProtectedTerms(std::u16string_view text, const std::vector<std::u16string> &terms);
// Keys longest first in graphemes, ties by key; each key replaced everywhere before the next.
std::u16string restorePlaceholders(std::u16string_view text, const PlaceholderEntries &placeholders);

std::u16string smartCaseText(std::u16string_view text, const std::vector<std::u16string> &terms,
                             const TextProtectionOptions &options);
std::u16string titleCaseText(std::u16string_view maskedText, const std::vector<std::u16string> &terms);
std::u16string capitalizeWordRuns(std::u16string_view text);
bool looksAllCaps(std::u16string_view text);

std::u16string apply(TextTransformKind kind, std::u16string_view text,
                     const std::vector<std::u16string> &terms, const TextProtectionOptions &options);

} // namespace glyphmill::reference
