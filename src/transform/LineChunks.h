// Cutting long texts into line chunks that several cores work on. The text is cut after line
// feeds (never inside a CR LF pair). Only for steps whose result on a whole text equals the
// join of their results on its lines.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

// For tests: makes short texts take the parallel path too. 0 restores the default.
void setParallelThresholdForTesting(std::size_t threshold);

// The pieces a text of this length would be cut into (each ends after a line feed, but the last).
std::vector<std::u16string_view> lineChunks(std::u16string_view text);

// Whether no term can match across a line feed, so that terms are found line by line too.
bool termsStayWithinLines(const std::vector<std::u16string> &terms);

// Runs work(i) for i in [0, count) with one thread per item beyond the first; items whose thread
// cannot be started run on the calling thread. When items throw, the first one's exception (by
// index) is rethrown on the calling thread after every item has finished.
void runInParallel(std::size_t count, const std::function<void(std::size_t)> &work);

} // namespace glyphmill
