// The choice lists, line breaking and assembly, and the tools that reshape lines one at a time.
#include "clipboard/text/LineTools.h"

#include "clipboard/text/LiteralSearch.h"
#include "clipboard/text/TextClasses.h"
#include "transform/FastScan.h"
#include "transform/TextModel.h"

namespace glyphmill::lineTools {

using textClasses::trimmedWhiteSpace;

namespace {

constexpr char16_t lineFeed = text::lineFeed;
constexpr char16_t space = u' ';
constexpr char16_t bullet = u'\u2022';

void appendDecimal(std::u16string &out, std::int64_t number) {
    for (char digit : std::to_string(number))
        out.push_back(char16_t(digit));
}

std::size_t totalSize(const std::vector<std::u16string_view> &lines) {
    std::size_t size = lines.size();
    for (std::u16string_view line : lines)
        size += line.size();
    return size;
}

std::size_t decimalDigits(std::size_t number) {
    std::size_t digits = 1;
    for (; number >= 10; number /= 10)
        ++digits;
    return digits;
}

// Zero-width characters that only get in the way of plain text.
bool isRemovedInvisible(char16_t unit) {
    return unit == u'\u200B' || unit == u'\u200C' || unit == u'\u200D' || unit == u'\uFEFF';
}

// Spaces of other widths and no-break spaces that read as an ordinary space.
bool isSpaceLookalike(char16_t unit) {
    return unit == u'\u00A0' || unit == u'\u1680' || (unit >= u'\u2000' && unit <= u'\u200A') ||
           unit == u'\u202F' || unit == u'\u205F' || unit == u'\u3000';
}

// Runs of spaces become one space; then white space of any kind leaves the end of the line.
void appendTidiedLine(std::u16string &out, std::u16string_view line) {
    const std::size_t lineStart = out.size();
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == space && i > 0 && line[i - 1] == space)
            continue;
        out.push_back(line[i]);
    }
    std::size_t end = out.size();
    while (end > lineStart) {
        char32_t c = text::codePointBefore(std::u16string_view(out).substr(lineStart), end - lineStart);
        if (!textClasses::hasWhiteSpaceProperty(c))
            break;
        end -= text::codeUnitCount(c);
    }
    out.resize(end);
}

} // namespace

std::u16string_view choiceTitle(NumberingStyle style) {
    switch (style) {
    case NumberingStyle::period:
        return u"1.  2.  3.";
    case NumberingStyle::zeroPadded:
        return u"01.  02.  03.";
    case NumberingStyle::parenthesis:
        return u"1)  2)  3)";
    }
    return {};
}

std::u16string numberLabel(NumberingStyle style, std::int64_t number) {
    std::u16string label;
    if (style == NumberingStyle::zeroPadded && number >= 0 && number < 10)
        label.push_back(u'0');
    appendDecimal(label, number);
    label.push_back(style == NumberingStyle::parenthesis ? u')' : u'.');
    return label;
}

std::u16string_view choiceTitle(JoinSeparator separator) {
    switch (separator) {
    case JoinSeparator::space:
        return u"Space";
    case JoinSeparator::comma:
        return u"Comma (,)";
    case JoinSeparator::commaSpace:
        return u"Comma + space";
    case JoinSeparator::semicolon:
        return u"Semicolon (;)";
    case JoinSeparator::pipe:
        return u"Pipe (|)";
    }
    return {};
}

std::u16string_view separatorText(JoinSeparator separator) {
    switch (separator) {
    case JoinSeparator::space:
        return u" ";
    case JoinSeparator::comma:
        return u",";
    case JoinSeparator::commaSpace:
        return u", ";
    case JoinSeparator::semicolon:
        return u";";
    case JoinSeparator::pipe:
        return u"|";
    }
    return {};
}

std::u16string_view choiceTitle(SplitDelimiter delimiter) {
    switch (delimiter) {
    case SplitDelimiter::comma:
        return u"Comma (,)";
    case SplitDelimiter::tab:
        return u"Tab";
    case SplitDelimiter::semicolon:
        return u"Semicolon (;)";
    case SplitDelimiter::custom:
        return u"Custom\u2026";
    }
    return {};
}

std::optional<std::u16string_view> delimiterText(SplitDelimiter delimiter) {
    switch (delimiter) {
    case SplitDelimiter::comma:
        return u",";
    case SplitDelimiter::tab:
        return u"\t";
    case SplitDelimiter::semicolon:
        return u";";
    case SplitDelimiter::custom:
        return std::nullopt;
    }
    return std::nullopt;
}

std::u16string_view choiceTitle(RegexPreset preset) {
    switch (preset) {
    case RegexPreset::email:
        return u"Email address";
    case RegexPreset::url:
        return u"URL (http/https)";
    case RegexPreset::containsAt:
        return u"Contains @";
    case RegexPreset::containsDigit:
        return u"Contains a digit";
    case RegexPreset::nonEmpty:
        return u"Non-empty lines";
    case RegexPreset::custom:
        return u"Custom pattern\u2026";
    }
    return {};
}

std::optional<std::u16string_view> presetPattern(RegexPreset preset) {
    switch (preset) {
    case RegexPreset::email:
        return u"[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,}";
    case RegexPreset::url:
        return u"https?://\\S+";
    case RegexPreset::containsAt:
        return u"@";
    case RegexPreset::containsDigit:
        return u"\\d";
    case RegexPreset::nonEmpty:
        return u"\\S";
    case RegexPreset::custom:
        return std::nullopt;
    }
    return std::nullopt;
}

BrokenLines breakLines(std::u16string_view text) {
    BrokenLines broken;
    broken.endsWithLineBreak = endsWithLineBreak(text);
    broken.lines.reserve(lineCount(text));
    forEachLine(text, [&](std::u16string_view line) { broken.lines.push_back(line); });
    return broken;
}

std::size_t lineCount(std::u16string_view text) {
    std::size_t lineFeeds = 0;
    for (std::size_t at = scan::findAnyOf(text, 0, lineFeed); at < text.size();
         at = scan::findAnyOf(text, at + 1, lineFeed))
        ++lineFeeds;
    return lineFeeds + 1 - (endsWithLineBreak(text) ? 1 : 0);
}

std::u16string assembleLines(const std::vector<std::u16string_view> &lines, bool endsWithLineBreak) {
    std::u16string result;
    result.reserve(totalSize(lines));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            result.push_back(lineFeed);
        result.append(lines[i]);
    }
    if (endsWithLineBreak)
        result.push_back(lineFeed);
    return result;
}

// The tools below build their result as they go through the lines, in a buffer reserved at a
// bound of its size: the pages of the bound that are never written are never mapped in.

std::u16string nonEmptyLines(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size());
    bool hasKept = false;
    forEachLine(text, [&](std::u16string_view line) {
        if (trimmedWhiteSpace(line).empty())
            return;
        if (hasKept)
            result.push_back(lineFeed);
        result.append(line);
        hasKept = true;
    });
    if (endsWithLineBreak(text))
        result.push_back(lineFeed);
    return result;
}

std::u16string numberedLines(std::u16string_view text, NumberingStyle style, std::size_t firstNumber) {
    const std::size_t lines = lineCount(text);
    // A label and its space take at most the digits of the last number, a zero, the mark and
    // the space.
    std::u16string result;
    result.reserve(text.size() + lines * (decimalDigits(firstNumber + lines) + 3));
    std::size_t index = firstNumber - 1;
    forEachLine(text, [&](std::u16string_view line) {
        if (index >= firstNumber)
            result.push_back(lineFeed);
        ++index;
        std::u16string_view trimmed = trimmedWhiteSpace(line);
        if (trimmed.empty()) {
            result.append(line);
            return;
        }
        result.append(numberLabel(style, std::int64_t(index)));
        result.push_back(space);
        result.append(trimmed);
    });
    if (endsWithLineBreak(text))
        result.push_back(lineFeed);
    return result;
}

std::u16string bulletedLines(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size() + lineCount(text) * 2);
    bool first = true;
    forEachLine(text, [&](std::u16string_view line) {
        if (!first)
            result.push_back(lineFeed);
        first = false;
        std::u16string_view trimmed = trimmedWhiteSpace(line);
        if (trimmed.empty() || trimmed.front() == bullet) {
            result.append(line);
            return;
        }
        result.push_back(bullet);
        result.push_back(space);
        result.append(trimmed);
    });
    if (endsWithLineBreak(text))
        result.push_back(lineFeed);
    return result;
}

std::u16string joinedLines(std::u16string_view text, std::u16string_view separator) {
    std::u16string result;
    result.reserve(text.size() + lineCount(text) * separator.size());
    bool hasKept = false;
    forEachLine(text, [&](std::u16string_view line) {
        if (trimmedWhiteSpace(line).empty())
            return;
        if (hasKept)
            result.append(separator);
        result.append(line);
        hasKept = true;
    });
    return result;
}

std::u16string splitText(std::u16string_view text, std::u16string_view delimiter) {
    std::u16string result;
    result.reserve(text.size());
    const LiteralSearch search(delimiter); // an empty delimiter is never found
    std::size_t start = 0;
    while (true) {
        std::size_t end = search.find(text, start);
        if (end == LiteralSearch::npos) {
            result.append(trimmedWhiteSpace(text.substr(start)));
            return result;
        }
        result.append(trimmedWhiteSpace(text.substr(start, end - start)));
        result.push_back(lineFeed);
        start = end + delimiter.size();
    }
}

std::u16string fixedWhitespace(std::u16string_view text) {
    // Line breaks and characters in one pass: on a large text every extra copy is a pass to memory.
    std::u16string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit == text::carriageReturn) {
            plain.push_back(lineFeed);
            if (i + 1 < text.size() && text[i + 1] == lineFeed)
                ++i;
        } else if (!isRemovedInvisible(unit)) {
            plain.push_back(isSpaceLookalike(unit) || unit == textClasses::tab ? space : unit);
        }
    }

    std::u16string result;
    result.reserve(plain.size());
    bool previousWasBlank = false;
    bool hasLines = false;
    forEachLine(plain, [&](std::u16string_view rawLine) {
        // Each line is tidied in place at the end of the result, where it stays unless it is
        // blank; a blank line after a kept one leaves its line break.
        const std::size_t before = result.size();
        if (hasLines)
            result.push_back(lineFeed);
        const std::size_t lineStart = result.size();
        appendTidiedLine(result, rawLine);
        const bool isBlankLine = trimmedWhiteSpace(std::u16string_view(result).substr(lineStart)).empty();
        if (isBlankLine)
            result.resize(!previousWasBlank && hasLines ? lineStart : before);
        if (!isBlankLine || (!previousWasBlank && hasLines))
            hasLines = true;
        previousWasBlank = isBlankLine;
    });
    std::u16string_view kept = textClasses::trimmedWhiteSpaceAndLineBreaks(result);
    const std::size_t keptStart = std::size_t(kept.data() - result.data());
    result.resize(keptStart + kept.size());
    result.erase(0, keptStart);
    return result;
}

} // namespace glyphmill::lineTools
