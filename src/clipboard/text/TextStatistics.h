// The counts of lines, words and characters that the menu shows for the clipboard's text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace glyphmill {

struct TextStatistics {
    std::int64_t lines = 0;
    std::int64_t words = 0;
    std::int64_t characters = 0;

    // Lines: LFs plus one, after CR LF and lone CR count as LF (a final break starts one more
    // line). Words: runs of characters that are not white space. Characters: grapheme clusters.
    static TextStatistics compute(std::u16string_view text);

    // "3 lines · 12 words · 64 characters": no digit grouping and no singular forms.
    std::u16string displayText() const;

    friend bool operator==(const TextStatistics &, const TextStatistics &) = default;
};

} // namespace glyphmill
