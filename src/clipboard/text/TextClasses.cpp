#include "clipboard/text/TextClasses.h"

#include "transform/TextModel.h"

#include <unicode/uchar.h>

namespace glyphmill::textClasses {

bool isWhiteSpace(char32_t c) {
    if (c < 0x80)
        return c == u' ' || c == tab;
    return u_charType(UChar32(c)) == U_SPACE_SEPARATOR;
}

bool isWhiteSpaceOrLineBreak(char32_t c) {
    if (c < 0x80)
        return text::isAsciiWhiteSpace(char16_t(c));
    return text::isWhiteSpaceOrNewline(c);
}

bool hasWhiteSpaceProperty(char32_t c) {
    if (c < 0x80)
        return text::isAsciiWhiteSpace(char16_t(c));
    return u_hasBinaryProperty(UChar32(c), UCHAR_WHITE_SPACE) != 0;
}

namespace {

template <typename Predicate> std::u16string_view trimmed(std::u16string_view text, Predicate isTrimmed) {
    std::size_t start = 0;
    std::size_t end = text.size();
    while (start < end) {
        char32_t c = text::codePointAt(text, start);
        if (!isTrimmed(c))
            break;
        start += text::codeUnitCount(c);
    }
    while (end > start) {
        char32_t c = text::codePointBefore(text, end);
        if (!isTrimmed(c))
            break;
        end -= text::codeUnitCount(c);
    }
    return text.substr(start, end - start);
}

} // namespace

std::u16string_view trimmedWhiteSpace(std::u16string_view text) {
    return trimmed(text, isWhiteSpace);
}

// Not text::trimmedWhiteSpaceAndNewlines: that class leaves TAB out, this one takes it in.
std::u16string_view trimmedWhiteSpaceAndLineBreaks(std::u16string_view text) {
    return trimmed(text, isWhiteSpaceOrLineBreak);
}

bool isBlank(std::u16string_view text) {
    return trimmedWhiteSpaceAndLineBreaks(text).empty();
}

std::u16string normalizeLineBreaks(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != text::carriageReturn) {
            result.push_back(text[i]);
            continue;
        }
        result.push_back(text::lineFeed);
        if (i + 1 < text.size() && text[i + 1] == text::lineFeed)
            ++i;
    }
    return result;
}

} // namespace glyphmill::textClasses
