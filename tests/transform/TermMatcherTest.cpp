#include "transform/TermMatcher.h"
#include "support/RepeatedText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace glyphmill {
namespace {

using Found = std::tuple<std::size_t, std::size_t, std::u16string>;

// Walking the terms from every position, the way a scan without a budget goes.
std::vector<Found> walkedEverywhere(const TermMatcher &matcher, std::u16string_view text) {
    std::vector<Found> found;
    for (std::size_t p = 0; p < text.size();) {
        if (auto match = matcher.matchAt(text, p)) {
            found.emplace_back(p, match->end, *match->term);
            p = match->end;
        } else {
            ++p;
        }
    }
    return found;
}

std::vector<Found> scanned(const TermMatcher &matcher, std::u16string_view text) {
    std::vector<Found> found;
    matcher.forEachMatch(text, [&](std::size_t start, std::size_t end, const std::u16string &term) {
        found.emplace_back(start, end, term);
    });
    return found;
}

// Long terms that the text nearly repeats exhaust the walking budget part way through a text,
// and the rest is found in one pass of the automaton: every accepted term must be the same.
TEST(TermMatcher, OnePassFindsWhatWalkingFromEveryPositionFinds) {
    const std::vector<std::u16string> terms = {repeated(u"Ab ", 300) + u"Stop",
                                               repeated(u"ab ", 200) + u"ab",
                                               repeated(u"ab ", 2) + u"x",
                                               repeated(u"Stra\u00DFe ", 90) + u"x",
                                               repeated(u"e\u0301 ", 120) + u"end",
                                               u"\u0301ab ab",
                                               u"AB",
                                               u"\uFB01 ab",
                                               u"\U0001D400b ab"};
    const std::u16string_view pieces[] = {u"ab ",      u"AB ",           u"Ab ",          u"aB ",
                                          u"Stop ",    u"STRASSE ",      u"stra\u00DFe ", u"\u00E9 ",
                                          u"e\u0301 ", u" \u0301ab ab ", u"x ",           u"end ",
                                          u"abab ",    u"\uFB01 ab ",    u"FI AB ",       u"\U0001D400b ab ",
                                          u"\u0301",   u"9ab ",          u"ab\u0301 ",    u"\n"};
    std::mt19937 random(11);
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
    const TermMatcher matcher(terms);
    for (int probe = 0; probe < 12; ++probe) {
        std::u16string text;
        const std::size_t size = 2'000 + pick(60'000);
        while (text.size() < size) {
            text += repeated(pieces[pick(std::size(pieces))], 1 + pick(probe % 2 ? 20 : 400));
            text += pieces[pick(std::size(pieces))];
        }
        EXPECT_EQ(scanned(matcher, text), walkedEverywhere(matcher, text)) << "probe " << probe;
    }
}

} // namespace
} // namespace glyphmill
