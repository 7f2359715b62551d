#include "clipboard/text/LiteralSearch.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace glyphmill::lineTools {
namespace {

constexpr std::size_t npos = LiteralSearch::npos;

// Every occurrence tried in turn, the way the tools searched before.
template <typename Accept>
std::size_t firstAcceptedByTryingEach(std::u16string_view haystack, std::u16string_view needle,
                                      std::size_t from, Accept accept) {
    for (std::size_t at = haystack.find(needle, from); at != npos; at = haystack.find(needle, at + 1)) {
        if (accept(at))
            return at;
    }
    return npos;
}

TEST(LiteralSearch, FindsTheFirstOccurrenceFromAPosition) {
    const LiteralSearch search(u"ab");
    EXPECT_EQ(search.find(u"xxabab"), 2u);
    EXPECT_EQ(search.find(u"xxabab", 3), 4u);
    EXPECT_EQ(search.find(u"xxabab", 5), npos);
    EXPECT_EQ(search.find(u"xxabab", 6), npos);
    EXPECT_EQ(search.find(u"xxabab", 7), npos);
    EXPECT_EQ(search.find(u""), npos);
    EXPECT_EQ(LiteralSearch(u"").find(u"abc"), npos);
    EXPECT_EQ(LiteralSearch(u"\U0001F600").find(u"a\U0001F601\U0001F600"), 3u);
}

// U+6100 is the bytes 00 61 and "a" is 61 00: between two units of U+6100 stands an "a" that is
// not in the text.
TEST(LiteralSearch, NeverMatchesAcrossTwoUnits) {
    EXPECT_EQ(LiteralSearch(u"a").find(u"\u6100\u6100"), npos);
    EXPECT_EQ(LiteralSearch(u"a").find(u"\u6100\u6100a"), 2u);
    EXPECT_EQ(LiteralSearch(u"aa").find(u"\u6100\u6100\u6100\u0061a"), 3u);
    const std::u16string shifted(1000, u'\u6100');
    EXPECT_EQ(LiteralSearch(std::u16string(100, u'a')).find(shifted), npos);
}

// Long runs of overlapping occurrences, most of them refused, over texts made of few letters.
TEST(LiteralSearch, AgreesWithTryingEveryOccurrenceWhenMostAreRefused) {
    std::mt19937 random(12);
    auto pick = [&](std::size_t bound) { return std::size_t(random() % bound); };
    const std::u16string letters = u"aab\u6100\u0061";
    for (int round = 0; round < 3000; ++round) {
        std::u16string unit;
        for (std::size_t i = 1 + pick(3); i > 0; --i)
            unit.push_back(letters[pick(letters.size())]);
        std::u16string haystack;
        for (std::size_t i = pick(40); i > 0; --i)
            haystack += pick(4) == 0 ? std::u16string(1, letters[pick(letters.size())]) : unit;
        std::u16string needle;
        for (std::size_t i = 1 + pick(5); i > 0; --i)
            needle += unit;
        if (pick(2) == 0)
            needle.push_back(letters[pick(letters.size())]);
        // Refuses a random set of positions, or all but every third, or nothing.
        std::set<std::size_t> refused;
        const std::size_t kind = pick(3);
        for (std::size_t i = 0; i <= haystack.size(); ++i)
            if ((kind == 0 && pick(3) != 0) || (kind == 1 && i % 3 != 0))
                refused.insert(i);
        auto accept = [&](std::size_t at) { return !refused.contains(at); };
        const std::size_t from = pick(haystack.size() + 2);
        EXPECT_EQ(LiteralSearch(needle).find(haystack, from, accept),
                  firstAcceptedByTryingEach(haystack, needle, from, accept))
            << "needle " << ::testing::PrintToString(needle) << " in " << ::testing::PrintToString(haystack)
            << " from " << from;
    }
}

TEST(LiteralSearch, LongNeedlesWithPartialMatches) {
    const std::u16string as(1'000'000, u'a');
    const std::u16string aThenB = std::u16string(99'999, u'a') + u'b';
    const std::u16string bThenA = u'b' + std::u16string(99'999, u'a');
    const std::u16string aBa = std::u16string(50'000, u'a') + u'b' + std::u16string(50'000, u'a');
    for (const std::u16string &needle : {aThenB, bThenA, aBa}) {
        const LiteralSearch search(needle);
        EXPECT_EQ(search.find(as), npos);
        EXPECT_EQ(search.find(as + needle), as.size());
        EXPECT_EQ(search.find(needle + as), 0u);
    }
    // Every position of the text starts an occurrence, and all but the last are refused.
    const std::u16string needle(100'000, u'a');
    const std::size_t last = as.size() - needle.size();
    EXPECT_EQ(LiteralSearch(needle).find(as, 0, [&](std::size_t at) { return at == last; }), last);
    EXPECT_EQ(LiteralSearch(needle).find(as, 0, [](std::size_t) { return false; }), npos);
}

} // namespace
} // namespace glyphmill::lineTools
