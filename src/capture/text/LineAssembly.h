// Turns the fragments a text recognizer found into lines of text: fragments on the same line
// (middles within a tolerance of each other) are read left to right, lines from the top down.
#pragma once

#include "platform/TextRecognizer.h"

#include <string>
#include <string_view>
#include <vector>

namespace glyphmill::lineAssembly {

// Two fragments are on one line when their middles are at most this share of the taller one's
// height apart (heights under the floor count as the floor).
inline constexpr double lineTolerance = 0.6;
inline constexpr double minimumHeight = 0.012;

// Top to bottom, and left to right within a line. Stable; the same-line rule is not transitive,
// so the result depends on the order of comparisons, which is that of an insertion sort.
std::vector<RecognizedFragment> orderObservations(std::vector<RecognizedFragment> fragments);
// Opens a line at the first fragment and keeps that fragment's middle and height as the line's
// reference while it grows; fragments are joined with one space, lines with "\n".
std::u16string groupIntoLines(const std::vector<RecognizedFragment> &fragments);
// Trims spaces and tabs from each line, drops leading empty lines, keeps one empty line of a run,
// and trims the whole.
std::u16string cleanUpLines(std::u16string_view text);

// The whole road from the recognizer's answer to the text: each fragment trimmed of white space
// and line breaks, blank ones dropped, then ordered, grouped and cleaned up.
std::u16string assembleText(const std::vector<RecognizedFragment> &fragments);

} // namespace glyphmill::lineAssembly
