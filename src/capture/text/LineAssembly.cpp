#include "capture/text/LineAssembly.h"

#include "clipboard/text/TextClasses.h"

#include <algorithm>
#include <cmath>

namespace glyphmill::lineAssembly {

namespace {

double midY(const RecognizedFragment &fragment) {
    return fragment.y + fragment.height / 2;
}

double toleranceFor(double height) {
    return std::max(height, minimumHeight) * lineTolerance;
}

bool comesBefore(const RecognizedFragment &a, const RecognizedFragment &b) {
    const double tolerance = toleranceFor(std::max(a.height, b.height));
    const double aMid = midY(a);
    const double bMid = midY(b);
    if (std::abs(aMid - bMid) > tolerance)
        return aMid > bMid; // y grows upward: the higher fragment is read first
    return a.x < b.x;
}

bool isNewline(char16_t unit) {
    return (unit >= 0x000A && unit <= 0x000D) || unit == 0x0085 || unit == 0x2028 || unit == 0x2029;
}

} // namespace

std::vector<RecognizedFragment> orderObservations(std::vector<RecognizedFragment> fragments) {
    // Recognizers hand fragments over nearly in reading order, so this is close to linear.
    for (std::size_t sorted = 1; sorted < fragments.size(); ++sorted) {
        std::size_t position = sorted;
        if (!comesBefore(fragments[position], fragments[position - 1]))
            continue;
        RecognizedFragment moving = std::move(fragments[position]);
        do {
            fragments[position] = std::move(fragments[position - 1]);
            --position;
        } while (position > 0 && comesBefore(moving, fragments[position - 1]));
        fragments[position] = std::move(moving);
    }
    return fragments;
}

std::u16string groupIntoLines(const std::vector<RecognizedFragment> &fragments) {
    std::u16string text;
    if (fragments.empty())
        return text;
    double referenceMiddle = midY(fragments.front());
    double referenceHeight = fragments.front().height;
    text += fragments.front().text;
    for (std::size_t index = 1; index < fragments.size(); ++index) {
        const RecognizedFragment &fragment = fragments[index];
        const double tolerance = toleranceFor(std::max(fragment.height, referenceHeight));
        if (std::abs(midY(fragment) - referenceMiddle) <= tolerance) {
            text += u' ';
        } else {
            text += u'\n';
            referenceMiddle = midY(fragment);
            referenceHeight = fragment.height;
        }
        text += fragment.text;
    }
    return text;
}

std::u16string cleanUpLines(std::u16string_view text) {
    std::u16string joined;
    bool keptAny = false;
    bool lastKeptEmpty = false;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = start;
        while (end < text.size() && !isNewline(text[end]))
            ++end;
        const std::u16string_view line = textClasses::trimmedWhiteSpace(text.substr(start, end - start));
        // An empty line is kept only right after a non-empty one.
        if (!line.empty() || (keptAny && !lastKeptEmpty)) {
            if (keptAny)
                joined += u'\n';
            joined += line;
            keptAny = true;
            lastKeptEmpty = line.empty();
        }
        if (end == text.size())
            break;
        // CR LF is one line break.
        start = end + ((text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n') ? 2 : 1);
    }
    return std::u16string(textClasses::trimmedWhiteSpaceAndLineBreaks(joined));
}

std::u16string assembleText(const std::vector<RecognizedFragment> &fragments) {
    std::vector<RecognizedFragment> kept;
    kept.reserve(fragments.size());
    for (const RecognizedFragment &fragment : fragments) {
        const std::u16string_view trimmed = textClasses::trimmedWhiteSpaceAndLineBreaks(fragment.text);
        if (trimmed.empty())
            continue;
        RecognizedFragment copy = fragment;
        copy.text.assign(trimmed);
        kept.push_back(std::move(copy));
    }
    return cleanUpLines(groupIntoLines(orderObservations(std::move(kept))));
}

} // namespace glyphmill::lineAssembly
