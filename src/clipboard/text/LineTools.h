// The line tools: pure functions that reshape a text line by line. Lines are cut at LF only;
// a CR stays part of its line.
#pragma once

#include "common/FindReplaceRequest.h"
#include "transform/FastScan.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace glyphmill::lineTools {

enum class NumberingStyle { period, zeroPadded, parenthesis };
inline constexpr std::array allNumberingStyles{NumberingStyle::period, NumberingStyle::zeroPadded,
                                               NumberingStyle::parenthesis};
std::u16string_view choiceTitle(NumberingStyle style);
// 7 gives "7.", "07." or "7)"; numbers past two digits are never cut ("101.").
std::u16string numberLabel(NumberingStyle style, std::int64_t number);

enum class JoinSeparator { space, comma, commaSpace, semicolon, pipe };
inline constexpr std::array allJoinSeparators{JoinSeparator::space, JoinSeparator::comma,
                                              JoinSeparator::commaSpace, JoinSeparator::semicolon,
                                              JoinSeparator::pipe};
std::u16string_view choiceTitle(JoinSeparator separator);
std::u16string_view separatorText(JoinSeparator separator);

enum class SplitDelimiter { comma, tab, semicolon, custom };
inline constexpr std::array allSplitDelimiters{SplitDelimiter::comma, SplitDelimiter::tab,
                                               SplitDelimiter::semicolon, SplitDelimiter::custom};
std::u16string_view choiceTitle(SplitDelimiter delimiter);
// None for custom: the user types that one.
std::optional<std::u16string_view> delimiterText(SplitDelimiter delimiter);

enum class RegexPreset { email, url, containsAt, containsDigit, nonEmpty, custom };
inline constexpr std::array allRegexPresets{RegexPreset::email,      RegexPreset::url,
                                            RegexPreset::containsAt, RegexPreset::containsDigit,
                                            RegexPreset::nonEmpty,   RegexPreset::custom};
std::u16string_view choiceTitle(RegexPreset preset);
// None for custom: the user types that one.
std::optional<std::u16string_view> presetPattern(RegexPreset preset);

using glyphmill::FindReplaceRequest;

// The lines view the text they were broken from, which must outlive them.
struct BrokenLines {
    std::vector<std::u16string_view> lines;
    bool endsWithLineBreak = false;
};

BrokenLines breakLines(std::u16string_view text);
std::u16string assembleLines(const std::vector<std::u16string_view> &lines, bool endsWithLineBreak);

// The lines of breakLines one at a time, in order, without a list of them: a list of ten
// million empty lines takes 160 MB. A visit that returns false stops there.
template <typename Visit> void forEachLine(std::u16string_view text, Visit &&visit) {
    std::size_t start = 0;
    while (true) {
        const std::size_t end = scan::findAnyOf(text, start, u'\n');
        // The empty piece after a final line break is no line.
        if (end == text.size() && start == end && start > 0)
            return;
        const std::u16string_view line = text.substr(start, end - start);
        if constexpr (std::is_same_v<decltype(visit(line)), bool>) {
            if (!visit(line))
                return;
        } else {
            visit(line);
        }
        if (end == text.size())
            return;
        start = end + 1;
    }
}
// As many as forEachLine visits.
std::size_t lineCount(std::u16string_view text);
inline bool endsWithLineBreak(std::u16string_view text) {
    return !text.empty() && text.back() == u'\n';
}

std::u16string sortedLines(std::u16string_view text);
std::u16string uniqueLines(std::u16string_view text);
std::u16string nonEmptyLines(std::u16string_view text);
// firstNumber is that of the text's first line: a long text can be numbered a piece of whole
// lines at a time.
std::u16string numberedLines(std::u16string_view text, NumberingStyle style, std::size_t firstNumber = 1);
std::u16string bulletedLines(std::u16string_view text);
std::u16string joinedLines(std::u16string_view text, std::u16string_view separator);
std::u16string splitText(std::u16string_view text, std::u16string_view delimiter);
// Why matchingLines kept no text.
enum class MatchingFailure {
    invalidPattern, // the pattern does not compile
    // The search ran past its deadline and was stopped: about a second for the whole text, one
    // more for every 10 MB, however many lines it has. A search that runs out of room to
    // backtrack in a line fails the same way.
    tooSlow,
};
struct MatchingResult {
    std::u16string lines; // the kept lines; empty when the search failed
    std::optional<MatchingFailure> failure;

    bool operator==(const MatchingResult &) const = default;
};
MatchingResult matchingLines(std::u16string_view pattern, std::u16string_view text);
// Whether the pattern compiles with no options, that is whether matchingLines can keep lines.
bool isValidPattern(std::u16string_view pattern);
std::u16string containingLines(std::u16string_view needle, std::u16string_view text);
std::u16string fixedWhitespace(std::u16string_view text);
std::u16string replacedText(std::u16string_view text, const FindReplaceRequest &request);

// Sorting and removing duplicates keep offsets into the text, 32 bits wide up to this many
// UTF-16 units (a gigabyte) and 64 bits past it.
inline constexpr std::size_t narrowOffsetLimit = std::size_t(1) << 29;
// The same tools with 64-bit offsets whatever the size of the text, for tests.
namespace wideOffsets {
std::u16string sortedLines(std::u16string_view text);
std::u16string uniqueLines(std::u16string_view text);
} // namespace wideOffsets

} // namespace glyphmill::lineTools
