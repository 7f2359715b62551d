#include "clipboard/text/LineTools.h"

#include "clipboard/text/LocaleCollator.h"
#include "support/RepeatedText.h"
#include "transform/TextModel.h"

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <set>
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

TEST(BreakLines, TheLinesVisitedOneByOneAreTheLinesBroken) {
    for (std::u16string text : {u"", u"\n", u"\n\n", u"a", u"a\n", u"a\n\nb\r\n", u"\na"}) {
        std::vector<std::u16string_view> visited;
        forEachLine(text, [&](std::u16string_view line) { visited.push_back(line); });
        EXPECT_EQ(visited, breakLines(text).lines);
        EXPECT_EQ(lineCount(text), visited.size());
    }
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

// Random texts of pieces that make line tools work: letters whose case or canonical forms meet
// ("ß" and "SS", "é" whole and decomposed, the Kelvin and Angstrom signs), marks alone,
// characters outside the BMP, numbers, white space of several kinds, CR LF and empty lines.
class RandomText {
public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t bound) { return std::size_t(random_() % bound); }

    std::u16string text(std::size_t pieces) {
        static const std::vector<std::u16string> all = {
            u"a",
            u"A",
            u"b",
            u"B",
            u"s",
            u"S",
            u"ss",
            u"\u00DF",
            u"\u1E9E",
            u"e",
            u"E",
            u"\u00E9",
            u"\u00C9",
            u"e\u0301",
            u"\u0301",
            u"\u0323",
            u"\uFB01",
            u"fi",
            u"\u0131",
            u"\u0130",
            u"i",
            u"\u03C3",
            u"\u03C2",
            u"\u03A3",
            u"\U0001F600",
            u"\u212A",
            u"k",
            u"\u212B",
            u"\u00C5",
            u"1",
            u"2",
            u"10",
            u"9",
            u" ",
            u"  ",
            u"\t",
            u"\u00A0",
            u"\u200B",
            u",",
            u";",
            u"\n",
            u"\n",
            u"\n",
            u"\r\n",
            u"\r",
            u"\u2022",
            u"a\u0308",
            u"\u0345",
            u"\u0390",
            u"\u1F80",
            u"x@y.z",
            u"ab",
            // Unpaired surrogates, which may also meet as a pair.
            std::u16string(1, char16_t(0xD83D)),
            std::u16string(1, char16_t(0xDE00)),
        };
        std::u16string made;
        for (std::size_t i = 0; i < pieces; ++i)
            made += all[below(all.size())];
        return made;
    }

private:
    std::mt19937 random_;
};

std::vector<std::u16string> linesOf(std::u16string_view text) {
    std::vector<std::u16string> lines;
    for (std::u16string_view line : breakLines(text).lines)
        lines.emplace_back(line);
    return lines;
}

std::u16string joined(const std::vector<std::u16string> &lines, bool endsWithLineBreak) {
    std::vector<std::u16string_view> views(lines.begin(), lines.end());
    return assembleLines(views, endsWithLineBreak);
}

std::u16string nfdOf(std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString form = icu::Normalizer2::getNFDInstance(status)->normalize(
        icu::UnicodeString(false, text.data(), int32_t(text.size())), status);
    return std::u16string(form.getBuffer(), std::size_t(form.length()));
}

// A stable sort on whole collation keys.
std::u16string sortedByKeys(std::u16string_view text) {
    std::unique_ptr<icu::Collator> collator = numericLocaleCollator(icu::Collator::SECONDARY);
    std::vector<std::pair<std::vector<std::uint8_t>, std::u16string>> keyed;
    for (const std::u16string &line : linesOf(text)) {
        std::vector<std::uint8_t> key(
            std::size_t(collator->getSortKey(line.data(), int32_t(line.size()), nullptr, 0)));
        collator->getSortKey(line.data(), int32_t(line.size()), key.data(), int32_t(key.size()));
        keyed.emplace_back(std::move(key), line);
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::u16string> lines;
    for (auto &[key, line] : keyed)
        lines.push_back(std::move(line));
    return joined(lines, endsWithLineBreak(text));
}

std::u16string firstOfEachNfdForm(std::u16string_view text) {
    std::set<std::u16string> seen;
    std::vector<std::u16string> kept;
    for (const std::u16string &line : linesOf(text))
        if (seen.insert(nfdOf(line)).second)
            kept.push_back(line);
    return joined(kept, endsWithLineBreak(text));
}

// Every occurrence of the needle's caseless form in the line's, tried in turn.
std::u16string containingByTryingEach(std::u16string_view needle, std::u16string_view text) {
    const std::u16string needleForm = text::caselessForm(needle);
    std::vector<std::u16string> kept;
    for (const std::u16string &line : linesOf(text)) {
        const std::u16string form = text::caselessForm(line);
        for (std::size_t at = form.find(needleForm); !needleForm.empty() && at != std::u16string::npos;
             at = form.find(needleForm, at + 1)) {
            const std::size_t end = at + needleForm.size();
            if (end == form.size() || u_getCombiningClass(UChar32(text::codePointAt(form, end))) == 0) {
                kept.push_back(line);
                break;
            }
        }
    }
    return joined(kept, false);
}

// The form of every canonical segment made on its own (NFD, or NFD after case folding), a map
// from the form's segment ends back to the text's, and every occurrence tried in turn.
std::u16string replacedByTryingEach(std::u16string_view text, const FindReplaceRequest &request) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    auto formOf = [&](std::u16string_view piece) {
        return request.matchCase ? nfdOf(piece) : text::caselessForm(piece);
    };
    const std::u16string needle = formOf(request.find);
    if (needle.empty())
        return std::u16string(text);
    std::u16string form;
    std::map<std::size_t, std::size_t> originalOfEnd = {{0, 0}};
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = start + text::codeUnitCount(text::codePointAt(text, start));
        while (end < text.size() && !nfd->hasBoundaryBefore(UChar32(text::codePointAt(text, end))))
            end += text::codeUnitCount(text::codePointAt(text, end));
        form += formOf(text.substr(start, end - start));
        originalOfEnd[form.size()] = end;
        start = end;
    }
    std::u16string result;
    std::size_t copiedUpTo = 0;
    for (std::size_t at = form.find(needle); at != std::u16string::npos;) {
        const auto start = originalOfEnd.find(at);
        const auto end = originalOfEnd.find(at + needle.size());
        if (start == originalOfEnd.end() || end == originalOfEnd.end()) {
            at = form.find(needle, at + 1);
            continue;
        }
        result.append(text.substr(copiedUpTo, start->second - copiedUpTo));
        result.append(request.replacement);
        copiedUpTo = end->second;
        at = form.find(needle, at + needle.size());
    }
    result.append(text.substr(copiedUpTo));
    return result;
}

std::string printed(std::u16string_view text) {
    return ::testing::PrintToString(std::u16string(text));
}

TEST(LineTools, SortingAndRemovingDuplicatesAgreeWithPlainDefinitionsOnRandomTexts) {
    RandomText random(3);
    for (int round = 0; round < 400; ++round) {
        const std::u16string text = random.text(random.below(80));
        const std::u16string sorted = sortedByKeys(text);
        EXPECT_EQ(sortedLines(text), sorted) << printed(text);
        EXPECT_EQ(wideOffsets::sortedLines(text), sorted) << printed(text);
        const std::u16string unique = firstOfEachNfdForm(text);
        EXPECT_EQ(uniqueLines(text), unique) << printed(text);
        EXPECT_EQ(wideOffsets::uniqueLines(text), unique) << printed(text);
    }
}

// Texts of one line shape over and over: lines that share one key or one form, or few.
TEST(LineTools, SortingAndRemovingDuplicatesOnTextsOfOneLineShape) {
    RandomText random(5);
    const std::vector<std::u16string> shapes = {u"\n", u"x\n", u"\u00E9\n", u"e\u0301\n",
                                                u"a\nA\n\u00C5\n\u212B\n"};
    for (const std::u16string &shape : shapes) {
        for (bool finalBreak : {true, false}) {
            std::u16string text = repeated(shape, 3000);
            if (!finalBreak)
                text.pop_back();
            EXPECT_EQ(sortedLines(text), sortedByKeys(text)) << printed(shape);
            EXPECT_EQ(uniqueLines(text), firstOfEachNfdForm(text)) << printed(shape);
        }
    }
    std::u16string manyDistinct;
    for (int i = 0; i < 20'000; ++i)
        manyDistinct += random.text(3) + u"\n";
    EXPECT_EQ(sortedLines(manyDistinct), sortedByKeys(manyDistinct));
    EXPECT_EQ(uniqueLines(manyDistinct), firstOfEachNfdForm(manyDistinct));
}

TEST(LineTools, SearchingToolsAgreeWithTryingEveryOccurrenceOnRandomTexts) {
    RandomText random(4);
    for (int round = 0; round < 1500; ++round) {
        const std::u16string text = random.text(random.below(60));
        std::u16string needle = random.text(1 + random.below(3));
        std::erase(needle, u'\n');
        if (needle.empty())
            continue;
        EXPECT_EQ(containingLines(needle, text), containingByTryingEach(needle, text))
            << printed(needle) << " in " << printed(text);
        for (bool matchCase : {false, true}) {
            const FindReplaceRequest request{needle, u"<>", matchCase};
            EXPECT_EQ(replacedText(text, request), replacedByTryingEach(text, request))
                << printed(needle) << " in " << printed(text) << (matchCase ? " matching case" : "");
        }
    }
}

// Texts with more matches than replace lists, which it then finds a second time.
TEST(ReplacedText, TextsDenseWithMatchesAgreeWithTryingEveryOccurrence) {
    RandomText random(6);
    for (int round = 0; round < 20; ++round) {
        const std::u16string text = random.text(2000 + random.below(2000));
        for (std::u16string needle : {u"s", u"a", u"\u00DF", u"e", u"\n", u"S"}) {
            for (bool matchCase : {false, true}) {
                const FindReplaceRequest request{needle, u"<>", matchCase};
                EXPECT_EQ(replacedText(text, request), replacedByTryingEach(text, request))
                    << printed(needle);
            }
        }
    }
    EXPECT_EQ(replacedText(repeated(u"ab", 10'000), {u"B", u"", false}), repeated(u"a", 10'000));
}

// A needle that repeats itself over a text of its repeats: long runs of overlapping matches,
// most of which end inside a character or a folded "ß".
TEST(LineTools, SearchingToolsOnRunsOfOverlappingMatches) {
    struct Case {
        std::u16string needle;
        std::u16string text;
    };
    const std::vector<Case> cases = {
        {repeated(u"s", 1001), repeated(u"\u00DF", 5000)},
        {repeated(u"s", 1000), repeated(u"\u00DF", 5000)},
        {u"s" + repeated(u"\u00DF", 500), u"x" + repeated(u"\u00DF", 5000)},
        {repeated(u"e\u0301", 300) + u"e", repeated(u"e\u0301", 5000)},
        {repeated(u"\U0001F600", 200), repeated(u"\U0001F600", 3001)},
        {repeated(u"\u212Ak", 100), repeated(u"K", 5000)},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(containingLines(c.needle, c.text), containingByTryingEach(c.needle, c.text))
            << printed(c.needle.substr(0, 4));
        for (bool matchCase : {false, true}) {
            const FindReplaceRequest request{c.needle, u"#", matchCase};
            EXPECT_EQ(replacedText(c.text, request), replacedByTryingEach(c.text, request))
                << printed(c.needle.substr(0, 4));
        }
    }
    // The odd number of "s" never ends on a whole "ß"; the even one does, from the first.
    EXPECT_EQ(replacedText(repeated(u"\u00DF", 5000), {repeated(u"s", 1001), u"#", false}),
              repeated(u"\u00DF", 5000));
    EXPECT_EQ(replacedText(repeated(u"\u00DF", 5000), {repeated(u"S", 1000), u"#", false}),
              repeated(u"#", 10));
    EXPECT_EQ(containingLines(repeated(u"s", 1001), repeated(u"\u00DF", 5000)), repeated(u"\u00DF", 5000));
}

// "a" × k + "b" and its kind over "a" × n: every position starts a long partial match.
TEST(LineTools, SearchingToolsWithLongNeedlesOverLongRuns) {
    const std::u16string as(1'000'000, u'a');
    const std::u16string needles[] = {
        std::u16string(99'999, u'a') + u'b',
        u'b' + std::u16string(99'999, u'a'),
        std::u16string(50'000, u'a') + u'b' + std::u16string(50'000, u'a'),
    };
    for (const std::u16string &needle : needles) {
        EXPECT_EQ(containingLines(needle, as), u"");
        EXPECT_EQ(replacedText(as, {needle, u"x", false}), as);
        EXPECT_EQ(replacedText(as, {needle, u"x", true}), as);
        EXPECT_EQ(splitText(as, needle), as);

        const std::u16string withNeedle = u"A" + as + needle + u"B";
        EXPECT_EQ(containingLines(needle, u"x\n" + withNeedle), withNeedle);
        EXPECT_EQ(replacedText(withNeedle, {needle, u"x", true}), u"A" + as + u"xB");
        EXPECT_EQ(splitText(withNeedle, needle), u"A" + as + u"\nB");
    }
    // Matches of a needle of "a"s one after the other, the last cut short.
    const std::u16string needle(300'000, u'a');
    EXPECT_EQ(replacedText(as, {needle, u"x", false}), u"xxx" + std::u16string(100'000, u'a'));
    EXPECT_EQ(splitText(as, needle), u"\n\n\n" + std::u16string(100'000, u'a'));
}

TEST(LineTools, SearchingToolsWithNeedlesOutsideTheBasicPlane) {
    const std::u16string loneHighSurrogate(1, char16_t(0xD83D));
    EXPECT_EQ(containingLines(u"\U0001F600", u"a\U0001F601\n\U0001F600b\n" + loneHighSurrogate),
              u"\U0001F600b");
    EXPECT_EQ(replacedText(u"\U0001F600\U0001F601\U0001F600", {u"\U0001F600", u"-", true}), u"-\U0001F601-");
    EXPECT_EQ(splitText(u"a\U0001F600b\U0001F600", u"\U0001F600"), u"a\nb\n");
    // The Deseret capitals fold to small letters outside the BMP too.
    EXPECT_EQ(containingLines(u"\U00010400", u"x\U00010428y\nz"), u"x\U00010428y");
    EXPECT_EQ(replacedText(u"\U00010428\U00010400", {u"\U00010400", u"D", false}), u"DD");
}

// Lines far longer than the pieces a line is made caseless in, with matches across the places
// it is cut.
TEST(ContainingLines, FindsMatchesAcrossThePiecesOfALongLine) {
    RandomText random(9);
    std::u16string longLine;
    while (longLine.size() < 300'000)
        longLine += random.text(1) + (random.below(50) == 0 ? u"Stra\u00DFe" : u"");
    std::erase(longLine, u'\n');
    std::erase(longLine, u'\r');
    const std::u16string text = u"short\n" + longLine + u"\nStrasse";
    for (std::u16string needle : {u"STRASSE", u"e\u0301", u"\u00E9a", u"ss", u"k\u212A"})
        EXPECT_EQ(containingLines(needle, text), containingByTryingEach(needle, text)) << printed(needle);
}

} // namespace
} // namespace glyphmill::lineTools
