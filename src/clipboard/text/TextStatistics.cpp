#include "clipboard/text/TextStatistics.h"

#include "clipboard/text/TextClasses.h"
#include "transform/TextModel.h"

namespace glyphmill {

namespace {

void appendDecimal(std::u16string &out, std::int64_t number) {
    for (char digit : std::to_string(number))
        out.push_back(char16_t(digit));
}

} // namespace

// Counted on the text as it is: CR LF is already one grapheme and a lone CR one grapheme too,
// and both are white space, so converting the breaks to LF first would change no count.
TextStatistics TextStatistics::compute(std::u16string_view text) {
    TextStatistics statistics;
    statistics.lines = 1;
    const text::GraphemeCursor cursor(text);
    bool inWord = false;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = cursor.next(start);
        const char16_t first = text[start];
        if (first == text::lineFeed || first == text::carriageReturn)
            ++statistics.lines;
        const bool isWhiteSpace = textClasses::hasWhiteSpaceProperty(text::codePointAt(text, start));
        if (!isWhiteSpace && !inWord)
            ++statistics.words;
        inWord = !isWhiteSpace;
        ++statistics.characters;
        start = end;
    }
    return statistics;
}

std::u16string TextStatistics::displayText() const {
    std::u16string display;
    appendDecimal(display, lines);
    display.append(u" lines \u00B7 ");
    appendDecimal(display, words);
    display.append(u" words \u00B7 ");
    appendDecimal(display, characters);
    display.append(u" characters");
    return display;
}

} // namespace glyphmill
