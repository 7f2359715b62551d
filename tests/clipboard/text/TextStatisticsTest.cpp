#include "clipboard/text/TextStatistics.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace glyphmill {
namespace {

TEST(TextStatistics, CountsLinesWordsAndGraphemes) {
    struct Case {
        std::u16string text;
        TextStatistics expected;
    };
    const std::vector<Case> cases = {
        {u"alpha beta\ngamma", {2, 3, 16}},
        {u"alpha beta\r\ngamma", {2, 3, 16}},
        {u"alpha beta\rgamma", {2, 3, 16}},
        {u"one\n", {2, 1, 4}},
        {u"", {1, 0, 0}},
        {u"  \t\u00A0\u3000 ", {1, 0, 6}},
        {u"cafe\u0301 \U0001F44D\U0001F3FD!", {1, 2, 7}},
        {u"a\u2028b\u0085c", {1, 3, 5}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(TextStatistics::compute(c.text), c.expected) << std::string(c.text.begin(), c.text.end());
}

TEST(TextStatistics, DisplaysEveryCountWithoutGroupingOrSingulars) {
    EXPECT_EQ((TextStatistics{1, 1, 1}).displayText(), u"1 lines \u00B7 1 words \u00B7 1 characters");
    EXPECT_EQ((TextStatistics{3, 12, 1234567}).displayText(),
              u"3 lines \u00B7 12 words \u00B7 1234567 characters");
    EXPECT_EQ(TextStatistics{}.displayText(), u"0 lines \u00B7 0 words \u00B7 0 characters");
}

} // namespace
} // namespace glyphmill
