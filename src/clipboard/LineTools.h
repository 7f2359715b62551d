// The line tools: pure functions that reshape a text line by line. Lines are cut at LF only;
// a CR stays part of its line.
#pragma once

#include "clipboard/FindReplaceRequest.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
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

std::u16string sortedLines(std::u16string_view text);
std::u16string uniqueLines(std::u16string_view text);
std::u16string nonEmptyLines(std::u16string_view text);
std::u16string numberedLines(std::u16string_view text, NumberingStyle style);
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

} // namespace glyphmill::lineTools
