#include "clipboard/LineTools.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace glyphmill::lineTools {

// Found by the test framework next to the type.
void PrintTo(const MatchingResult &result, std::ostream *out) {
    if (result.failure)
        *out << (*result.failure == MatchingFailure::tooSlow ? "too slow" : "invalid pattern");
    else
        *out << ::testing::PrintToString(result.lines);
}

namespace {

struct TextCase {
    std::u16string input;
    std::u16string expected;
};

TEST(BreakLines, CutsAtLineFeedOnlyAndDropsTheEmptyPieceAfterAFinalBreak) {
    struct Case {
        std::u16string text;
        std::vector<std::u16string_view> lines;
        bool endsWithLineBreak;
    };
    const std::vector<Case> cases = {
        {u"", {u""}, false},
        {u"\n", {u""}, true},
        {u"a\nb", {u"a", u"b"}, false},
        {u"a\n\n", {u"a", u""}, true},
        {u"a\r\nb\r\n", {u"a\r", u"b\r"}, true},
        {u"a\r", {u"a\r"}, false},
    };
    for (const Case &c : cases) {
        BrokenLines broken = breakLines(c.text);
        EXPECT_EQ(broken.lines, c.lines);
        EXPECT_EQ(broken.endsWithLineBreak, c.endsWithLineBreak);
        EXPECT_EQ(assembleLines(broken.lines, broken.endsWithLineBreak), c.text);
    }
    EXPECT_EQ(assembleLines({}, true), u"\n");
    EXPECT_EQ(assembleLines({}, false), u"");
}

TEST(LineTools, ASingleLineFeedSurvivesTheToolsThatKeepLines) {
    EXPECT_EQ(sortedLines(u"\n"), u"\n");
    EXPECT_EQ(uniqueLines(u"\n"), u"\n");
    EXPECT_EQ(bulletedLines(u"\n"), u"\n");
}

TEST(SortedLines, OrdersDigitRunsByValueIgnoresCaseAndKeepsEqualLinesInOrder) {
    const std::vector<TextCase> cases = {
        {u"file10\nfile9\nFile2", u"File2\nfile9\nfile10"},
        {u"b\nA\na\nB", u"A\na\nb\nB"},
        {u"a\nA\na", u"a\nA\na"},
        {u"b\na\n", u"a\nb\n"},
        {u"b\r\na\r\n", u"a\r\nb\r\n"},
        {u"b\n\na", u"\na\nb"},
        {u"\u00E9\ne\nf", u"e\n\u00E9\nf"},
        // Keys that agree far past their first bytes, and equal keys of different case.
        {u"https://example.com/b\nhttps://example.com/a\nHTTPS://EXAMPLE.COM/a\nhttps://example.com/\n"
         u"https://example.com/a",
         u"https://example.com/\nhttps://example.com/a\nHTTPS://EXAMPLE.COM/a\nhttps://example.com/a\n"
         u"https://example.com/b"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(sortedLines(c.input), c.expected) << std::string(c.input.begin(), c.input.end());
}

TEST(UniqueLines, KeepsTheFirstOfCanonicallyEqualLines) {
    const std::vector<TextCase> cases = {
        {u"x\ny\nx\nX", u"x\ny\nX"},     {u"a\na \na", u"a\na "}, {u"\u00E9\ne\u0301\n", u"\u00E9\n"},
        {u"a\r\na\na\r\n", u"a\r\na\n"}, {u"\n\n", u"\n"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(uniqueLines(c.input), c.expected);

    // Enough distinct lines to make the set of seen lines grow several times.
    std::u16string twice, once;
    for (int copy = 0; copy < 2; ++copy)
        for (int i = 0; i < 2000; ++i) {
            std::u16string line = u"line " + std::u16string(1, char16_t(u'a' + i % 26)) + u"\u00E9 ";
            for (char digit : std::to_string(i * 7919 % 2000))
                line += char16_t(digit);
            twice += line + u"\n";
            if (copy == 0)
                once += line + u"\n";
        }
    EXPECT_EQ(uniqueLines(twice), once);
}

TEST(NonEmptyLines, DropsLinesOfSpacesAndTabsButNotOfCarriageReturns) {
    const std::vector<TextCase> cases = {
        {u"a\n \t\n\u00A0\nb", u"a\nb"}, {u"\n \n\n", u"\n"},  {u" \n ", u""},
        {u"a\r\n\r\nb", u"a\r\n\r\nb"},  {u" a \n", u" a \n"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(nonEmptyLines(c.input), c.expected);
}

TEST(NumberedLines, NumbersByPositionAndLeavesBlankLinesUnlabelled) {
    EXPECT_EQ(numberedLines(u"a\n\nc", NumberingStyle::period), u"1. a\n\n3. c");
    EXPECT_EQ(numberedLines(u"  a\t\n b\n", NumberingStyle::parenthesis), u"1) a\n2) b\n");
    EXPECT_EQ(numberedLines(u" \t\nx", NumberingStyle::zeroPadded), u" \t\n02. x");

    std::u16string manyLines;
    for (int i = 0; i < 101; ++i)
        manyLines += u"x\n";
    const std::u16string numberedText = numberedLines(manyLines, NumberingStyle::zeroPadded);
    const BrokenLines numbered = breakLines(numberedText);
    ASSERT_EQ(numbered.lines.size(), 101u);
    EXPECT_EQ(numbered.lines[0], u"01. x");
    EXPECT_EQ(numbered.lines[9], u"10. x");
    EXPECT_EQ(numbered.lines[100], u"101. x");
    EXPECT_TRUE(numbered.endsWithLineBreak);
}

TEST(BulletedLines, BulletsTrimmedLinesAndLeavesBulletedAndBlankOnesAlone) {
    EXPECT_EQ(bulletedLines(u"  \u2022 a\n b \n\t\nc\n"), u"  \u2022 a\n\u2022 b\n\t\n\u2022 c\n");
}

TEST(JoinedLines, JoinsTheNonBlankLinesUntrimmed) {
    EXPECT_EQ(joinedLines(u"a\n\nb", separatorText(JoinSeparator::comma)), u"a,b");
    EXPECT_EQ(joinedLines(u" a \n \nb\n", separatorText(JoinSeparator::commaSpace)), u" a , b");
    EXPECT_EQ(joinedLines(u"\n \n", separatorText(JoinSeparator::pipe)), u"");
}

TEST(SplitText, CutsAtEveryDelimiterAndTrimsThePieces) {
    struct Case {
        std::u16string text;
        std::u16string delimiter;
        std::u16string expected;
    };
    const std::vector<Case> cases = {
        {u"a, b,,c", u",", u"a\nb\n\nc"},
        {u"x\ny ;z", u";", u"x\ny\nz"},
        {u"a||b|c", u"||", u"a\nb|c"},
        {u"a\tb\t", u"\t", u"a\nb\n"},
        {u"no delimiter ", u",", u"no delimiter"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(splitText(c.text, c.delimiter), c.expected);
}

MatchingResult kept(std::u16string lines) {
    return {std::move(lines), std::nullopt};
}

TEST(MatchingLines, KeepsTheLinesThePatternFindsAMatchIn) {
    EXPECT_EQ(matchingLines(u"^\\d+", u"1a\nb2\n33\n"), kept(u"1a\n33"));
    EXPECT_EQ(matchingLines(u"b$", u"ab\nba\r\nb\r\n"), kept(u"ab\nb\r"));
    EXPECT_EQ(matchingLines(u"abc", u"ABC"), kept(u""));
    EXPECT_EQ(matchingLines(u"(a", u"a"), (MatchingResult{u"", MatchingFailure::invalidPattern}));
    EXPECT_EQ(matchingLines(*presetPattern(RegexPreset::email), u"mail me@example.org\nme@x"),
              kept(u"mail me@example.org"));
    for (RegexPreset preset : allRegexPresets) {
        if (auto pattern = presetPattern(preset)) {
            EXPECT_EQ(matchingLines(*pattern, u""), kept(u""));
        }
    }
}

std::u16string repeated(std::u16string_view piece, std::size_t count) {
    std::u16string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text.append(piece);
    return text;
}

// Each search below would backtrack for minutes or more; it must give up at its deadline, keep
// nothing (not even the lines that matched before) and say why.
TEST(MatchingLines, StopsARunawayPatternOnTheWholeTextAndSaysSo) {
    const std::vector<std::pair<std::u16string, std::u16string>> cases = {
        {u"(a+)+$", u"aa\n" + repeated(u"a", 40) + u"b\naa"},
        {u"(x+x+)+y", u"y\n" + repeated(u"x", 40)},
        // Every line alone backtracks for a millisecond or two, too little for the engine to
        // call back in the middle of it, but 200,000 of them run for minutes: the deadline is
        // for the whole text.
        {repeated(u"()", 60) + u"(a+)+$", repeated(u"aaaaaaaaaaab\n", 200'000)},
        // Out of backtracking room in one long line, early: a line the engine could not answer
        // for must not pass for a line that does not match.
        {u"^(a|b)*$", u"x\n" + repeated(u"ab", 500'000)},
    };
    for (const auto &[pattern, text] : cases) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(matchingLines(pattern, text), (MatchingResult{u"", MatchingFailure::tooSlow}))
            << ::testing::PrintToString(pattern);
        // Far above the deadline: only a search that was never stopped gets here.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    }
}

TEST(ContainingLines, IgnoresCaseAndMatchesCanonicallyEquivalentText) {
    struct Case {
        std::u16string needle;
        std::u16string text;
        std::u16string expected;
    };
    const std::vector<Case> cases = {
        {u"ABC", u"xabcx\nxyz\nAB C", u"xabcx"},
        {u"STRASSE", u"Stra\u00DFe 1\nStrase", u"Stra\u00DFe 1"},
        {u"\u00C9t\u00E9", u"\u00E9te\u0301\n\u00E9t", u"\u00E9te\u0301"},
        {u"e", u"e\u0301\nf", u""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(containingLines(c.needle, c.text), c.expected);
}

TEST(FixedWhitespace, CollapsesSpacesAndBlankLinesAndTrimsTheText) {
    const std::vector<TextCase> cases = {
        {u"  a\t\tb  \n\n\n\nc", u"a b\n\nc"}, {u" \t\n\r\n\u3000\n", u""},
        {u"a\r\n\r\n\rb", u"a\n\nb"},          {u"x\u200By\u00A0\u2003z\uFEFF", u"xy z"},
        {u"a\n  b\u2028\n", u"a\n b"},         {u"\n\na\n \nb\n", u"a\n\nb"},
    };
    for (const TextCase &c : cases)
        EXPECT_EQ(fixedWhitespace(c.input), c.expected);
}

TEST(ReplacedText, ReplacesLiterallyLeftToRightWithoutOverlap) {
    struct Case {
        std::u16string text;
        FindReplaceRequest request;
        std::u16string expected;
    };
    const std::vector<Case> cases = {
        {u"cat CAT Cat", {u"Cat", u"dog", false}, u"dog dog dog"},
        {u"cat CAT Cat", {u"Cat", u"dog", true}, u"cat CAT dog"},
        {u"aaa", {u"aa", u"b", true}, u"ba"},
        {u"a.b", {u".", u"..", true}, u"a..b"},
        {u"caf\u00E9 cafe\u0301", {u"caf\u00E9", u"bar", true}, u"bar bar"},
        {u"cafe\u0301 cafe", {u"cafe", u"X", false}, u"cafe\u0301 X"},
        {u"Stra\u00DFe strasse", {u"SS", u"t", false}, u"Strate strate"},
        {u"\u00C9T\u00C9 \U0001F600 x", {u"\u00E9t\u00E9", u"summer", false}, u"summer \U0001F600 x"},
        {u"\U0001F600\u00C0\U0001F600", {u"\u00E0", u"a", false}, u"\U0001F600a\U0001F600"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(replacedText(c.text, c.request), c.expected);
}

TEST(ChoiceLists, TitlesAndValuesInPromptOrder) {
    std::vector<std::u16string_view> numbering, joins, splits, presets;
    for (NumberingStyle style : allNumberingStyles)
        numbering.push_back(choiceTitle(style));
    for (JoinSeparator separator : allJoinSeparators)
        joins.push_back(choiceTitle(separator));
    for (SplitDelimiter delimiter : allSplitDelimiters)
        splits.push_back(choiceTitle(delimiter));
    for (RegexPreset preset : allRegexPresets)
        presets.push_back(choiceTitle(preset));
    EXPECT_EQ(numbering, (std::vector<std::u16string_view>{u"1.  2.  3.", u"01.  02.  03.", u"1)  2)  3)"}));
    EXPECT_EQ(joins, (std::vector<std::u16string_view>{u"Space", u"Comma (,)", u"Comma + space",
                                                       u"Semicolon (;)", u"Pipe (|)"}));
    EXPECT_EQ(splits,
              (std::vector<std::u16string_view>{u"Comma (,)", u"Tab", u"Semicolon (;)", u"Custom\u2026"}));
    EXPECT_EQ(presets, (std::vector<std::u16string_view>{u"Email address", u"URL (http/https)", u"Contains @",
                                                         u"Contains a digit", u"Non-empty lines",
                                                         u"Custom pattern\u2026"}));
    EXPECT_EQ(numberLabel(NumberingStyle::zeroPadded, 7), u"07.");
    EXPECT_EQ(numberLabel(NumberingStyle::zeroPadded, 123), u"123.");
    EXPECT_EQ(delimiterText(SplitDelimiter::custom), std::nullopt);
    EXPECT_EQ(presetPattern(RegexPreset::custom), std::nullopt);
}

} // namespace
} // namespace glyphmill::lineTools
