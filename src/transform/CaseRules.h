// Smart Case, Title Case and the all-caps test that screen capture uses.
#pragma once

#include "TextTransformer.h"

#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

std::u16string smartCaseText(std::u16string_view text, const std::vector<std::u16string> &terms,
                             const TextProtectionOptions &options);

// Title Case of text whose spans are already masked; every line is its own title.
std::u16string titleCaseText(std::u16string_view maskedText, const std::vector<std::u16string> &terms);

// Each maximal run of letter graphemes becomes capitalised; everything else stays.
std::u16string capitalizeWordRuns(std::u16string_view text);

// Whether recognised text is written in capitals (scalars, not graphemes).
bool looksAllCaps(std::u16string_view text);

} // namespace glyphmill
