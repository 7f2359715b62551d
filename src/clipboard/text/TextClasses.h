// The character classes the clipboard tools share, and the one line-break conversion they use.
#pragma once

#include <string>
#include <string_view>

namespace glyphmill::textClasses {

inline constexpr char16_t tab = u'\t';

// White space: general category Zs, plus TAB. Line breaks are not white space here.
bool isWhiteSpace(char32_t codePoint);
// White space and line breaks: categories Zs, Zl and Zp, U+0009 to U+000D and U+0085.
bool isWhiteSpaceOrLineBreak(char32_t codePoint);
// The Unicode White_Space property, which word counting and line-end trimming go by.
bool hasWhiteSpaceProperty(char32_t codePoint);

std::u16string_view trimmedWhiteSpace(std::u16string_view text);
std::u16string_view trimmedWhiteSpaceAndLineBreaks(std::u16string_view text);

// Nothing left after trimming white space and line breaks; the empty text is blank.
bool isBlank(std::u16string_view text);

// CR LF pairs, then the remaining lone CRs, become LF.
std::u16string normalizeLineBreaks(std::u16string_view text);

} // namespace glyphmill::textClasses
