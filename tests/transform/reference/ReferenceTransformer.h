// A deliberately slow second implementation of the case transforms, used as an oracle for the
// engine in src/transform. Every step is written the obvious way: patterns are compiled on each
// call, graphemes come straight from ICU's break iterator, and the term search tries every end.
// It shares nothing with the engine but the public types of TextTransformer.h.
#pragma once

#include "transform/TextTransformer.h"

#include <map>
#include <optional>
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

// Set by the steps above when a placeholder's text could be mixed up with another's or with the
// text around it: a key restored other than exactly once (the text held a copy of it, or a span
// and a term got the same number), a remembered text holding a placeholder character, a term
// number equal to a span number. Only where this stays false do the literal rules keep every
// text apart.
extern thread_local bool placeholdersAmbiguous;

// The placeholder characters and ASCII digits of a text, in order. No transform adds, drops or
// moves one, and every protected text comes back whole, so input and output agree on this.
std::u16string placeholderSkeleton(std::u16string_view text);

// apply, or nothing where placeholdersAmbiguous became true.
std::optional<std::u16string> applyWhereUnambiguous(TextTransformKind kind, std::u16string_view text,
                                                    const std::vector<std::u16string> &terms,
                                                    const TextProtectionOptions &options);

} // namespace glyphmill::reference
