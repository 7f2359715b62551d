// The placeholders that hide protected text during a transform must never be confused with each
// other or with the text: not with many thousands of spans and terms, not when the text itself
// holds U+E000, U+E001 and digits, and not when long texts are cut into chunks.
#include "support/RepeatedText.h"
#include "transform/LineChunks.h"
#include "transform/ProtectedSpans.h"
#include "transform/TextTransformer.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace glyphmill {
namespace {

using Kind = TextTransformKind;

const std::vector<std::u16string> defaultTerms = {
    u"LLC",    u"Inc.", u"USA",   u"US",  u"U.S.",      u"NY",      u"NJ",         u"MA",
    u"API",    u"PDF",  u"QR",    u"URL", u"HTML",      u"CSS",     u"JavaScript", u"SwiftUI",
    u"iPhone", u"iPad", u"macOS", u"iOS", u"App Store", u"ChatGPT", u"OpenAI"};

std::u16string number(std::size_t n) {
    std::string digits = std::to_string(n);
    return std::u16string(digits.begin(), digits.end());
}

class Placeholders : public ::testing::Test {
protected:
    void TearDown() override { setParallelThresholdForTesting(0); }
};

TEST_F(Placeholders, MoreSpansThanTheTermNumbersStartFromStayApartFromTheTerms) {
    // Span number 10000 once came out as the term that got the same number.
    std::u16string text = u"iPhone " + repeated(u"a@b.org ", 10001);
    EXPECT_EQ(TextTransformer({u"iPhone"}, {}).apply(Kind::smartCase, text), text);

    // The sentence's capital would go to the first letter after the addresses: the terms'.
    std::u16string spansThenTerms = repeated(u"x@y.org ", 10500) + repeated(u"iphone ", 3);
    EXPECT_EQ(TextTransformer({u"iPhone"}, {}).apply(Kind::smartCase, spansThenTerms),
              repeated(u"x@y.org ", 10500) + repeated(u"iPhone ", 3));
}

// 17,000 lines with three spans and one term each: 51,000 spans and 17,000 terms, on the
// multi-core path, with every kind's whole output checked.
TEST_F(Placeholders, FiftyThousandSpansAndTermsComeBackWhereTheyWere) {
    constexpr std::size_t lines = 17000;
    std::u16string input;
    std::map<Kind, std::u16string> expected;
    for (std::size_t i = 0; i < lines; ++i) {
        std::u16string n = number(i);
        std::u16string address = u"A" + n + u"@B.org", tag = u"#Tag" + n, link = u"https://X.io/P" + n;
        input += u"iphone sees " + address + u" and " + tag + u" at " + link + u"\n";
        expected[Kind::smartCase] += u"iPhone Sees " + address + u" and " + tag + u" at " + link + u"\n";
        expected[Kind::titleCase] += u"iPhone Sees " + address + u" and " + tag + u" at " + link + u"\n";
        expected[Kind::uppercase] += u"iPhone SEES " + address + u" AND " + tag + u" AT " + link + u"\n";
        expected[Kind::lowercase] += u"iPhone sees " + address + u" and " + tag + u" at " + link + u"\n";
        expected[Kind::capitalizeWords] +=
            u"iPhone Sees " + address + u" And " + tag + u" At " + link + u"\n";
    }
    TextTransformer transformer{defaultTerms, {}};
    for (Kind kind : allTextTransformKinds)
        EXPECT_TRUE(transformer.apply(kind, input) == expected[kind]) << "kind " << int(kind);
}

TEST_F(Placeholders, PlaceholderCharactersOfTheTextItselfAreKept) {
    const std::u16string ownKeys[] = {u"\uE0000\uE001", u"\uE00010000\uE001",
                                      u"\uE0007\uE001", u"\uE000",
                                      u"\uE001",        u"\uE000\uE0000\uE001\uE001"};
    for (const auto &own : ownKeys) {
        std::u16string text = u"KEEP " + own + u" AND mail@example.com #Tag IPHONE";
        for (Kind kind : allTextTransformKinds) {
            std::u16string output = TextTransformer(defaultTerms, {}).apply(kind, text);
            EXPECT_NE(output.find(own + u" "), std::u16string::npos)
                << "kind " << int(kind) << " lost " << testing::PrintToString(own);
            EXPECT_NE(output.find(u"mail@example.com #Tag iPhone"), std::u16string::npos) << int(kind);
        }
    }
    EXPECT_EQ(
        TextTransformer(defaultTerms, {}).apply(Kind::lowercase, u"KEEP \uE0000\uE001 AND mail@example.com"),
        u"keep \uE0000\uE001 and mail@example.com");
}

TEST_F(Placeholders, ATermOfDigitsInsideASpanPlaceholderLeavesTheSpanWhole) {
    // Span placeholder 0 and 1 hold the digits the terms spell.
    std::vector<std::u16string> terms = {u"0", u"1"};
    EXPECT_EQ(TextTransformer(terms, {}).apply(Kind::smartCase, u"see A@b.org and C@d.org, 1 and 0"),
              u"See A@b.org and C@d.org, 1 and 0");
    // Title Case finds the terms in the placeholders and counts them as words, so «and» is not
    // taken for the last word.
    EXPECT_EQ(TextTransformer(terms, {}).apply(Kind::titleCase, u"see A@b.org and C@d.org"),
              u"See A@b.org and C@d.org");
}

TEST_F(Placeholders, ATermSpellingAPlaceholderIsATermLikeAnyOther) {
    std::vector<std::u16string> terms = {u"\uE0000\uE001"};
    for (Kind kind : {Kind::uppercase, Kind::smartCase})
        EXPECT_EQ(TextTransformer(terms, {}).apply(kind, u"a@b.org \uE0000\uE001 x"),
                  u"a@b.org \uE0000\uE001 X");
}

TEST_F(Placeholders, LongTextsCutIntoChunksKeepTheTextsOwnPlaceholderCharacters) {
    std::u16string text;
    for (std::size_t i = 0; i < 300; ++i)
        text += (i % 3 == 0 ? u"\uE000" + number(i % 7) + u"\uE001 " : u"") + u"line #Tag" + number(i) +
                u" A@b.org IPHONE words\n" + (i % 5 == 0 ? u"\uE000\n" : u"");
    TextTransformer transformer{defaultTerms, {}};
    for (Kind kind : allTextTransformKinds) {
        setParallelThresholdForTesting(SIZE_MAX);
        std::u16string whole = transformer.apply(kind, text);
        setParallelThresholdForTesting(1);
        std::u16string chunked = transformer.apply(kind, text);
        EXPECT_TRUE(whole == chunked) << "kind " << int(kind);
        std::size_t ownKeys = 0;
        for (std::size_t at = whole.find(u'\uE000'); at != std::u16string::npos;
             at = whole.find(u'\uE000', at + 1))
            ++ownKeys;
        EXPECT_EQ(ownKeys, 100u + 60u) << "kind " << int(kind);
    }
}

} // namespace
} // namespace glyphmill
