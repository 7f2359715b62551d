#include "capture/text/LineAssembly.h"

#include <gtest/gtest.h>

namespace glyphmill::lineAssembly {
namespace {

// A fragment by its left edge, its middle and its height (normalised, y growing upward).
RecognizedFragment at(double x, double middle, double height, std::u16string text) {
    return {x, middle - height / 2, 0.1, height, std::move(text)};
}

TEST(LineAssembly, ReadsRowsTopDownAndEachRowLeftToRight) {
    // Two columns handed over column by column, lower rows first: read across, row by row.
    const std::vector<RecognizedFragment> found = {
        at(0.05, 0.40, 0.03, u"Left 2"),
        at(0.05, 0.80, 0.03, u"Left 1"),
        at(0.55, 0.81, 0.03, u"Right 1"),
        at(0.55, 0.39, 0.03, u"Right 2"),
    };
    EXPECT_EQ(assembleText(found), u"Left 1 Right 1\nLeft 2 Right 2");
}

TEST(LineAssembly, ALabelAndATallerValueShareALine) {
    // 0.014 apart: within 0.6 of the taller height (0.05), beyond 0.6 of the label's own.
    const std::vector<RecognizedFragment> found = {at(0.40, 0.514, 0.05, u"Glyphmill"),
                                                   at(0.10, 0.500, 0.02, u"Name:")};
    EXPECT_EQ(assembleText(found), u"Name: Glyphmill");
}

TEST(LineAssembly, ALineKeepsTheMiddleOfItsFirstFragment) {
    // Each step of the slope is within the tolerance (0.012), the whole slope is not.
    const std::vector<RecognizedFragment> found = {at(0.0, 0.500, 0.02, u"one"), at(0.3, 0.509, 0.02, u"two"),
                                                   at(0.6, 0.518, 0.02, u"three")};
    EXPECT_EQ(groupIntoLines(orderObservations(found)), u"one two\nthree");
}

TEST(LineAssembly, TinyFragmentsAreMeasuredAgainstTheHeightFloor) {
    // Tolerance 0.6 × 0.012 = 0.0072, not 0.6 × 0.005.
    EXPECT_EQ(assembleText({at(0.5, 0.507, 0.005, u"b"), at(0.1, 0.500, 0.005, u"a")}), u"a b");
    EXPECT_EQ(assembleText({at(0.5, 0.508, 0.005, u"b"), at(0.1, 0.500, 0.005, u"a")}), u"b\na");
}

TEST(LineAssembly, BlankReadingsAreDroppedBeforeTheyCanOpenALine) {
    // Kept, the blank one would open the line at 0.500 and push "b" onto a line of its own.
    const std::vector<RecognizedFragment> found = {
        at(0.0, 0.500, 0.02, u" \n\t"), at(0.2, 0.511, 0.02, u"  a\n"), at(0.4, 0.522, 0.02, u"b ")};
    EXPECT_EQ(assembleText(found), u"a b");
    EXPECT_EQ(assembleText({at(0.0, 0.5, 0.02, u"\u3000 ")}), u"");
    EXPECT_EQ(assembleText({}), u"");
}

TEST(LineAssembly, CleanUpKeepsOneEmptyLineBetweenParagraphs) {
    EXPECT_EQ(cleanUpLines(u"\n \n  a \t\n\n\n\t\n b\r\nc\r\n\r\n"), u"a\n\nb\nc");
    EXPECT_EQ(cleanUpLines(u"x\u2028\u2028y\ry"), u"x\n\ny\ny");
    EXPECT_EQ(cleanUpLines(u" \t "), u"");
}

} // namespace
} // namespace glyphmill::lineAssembly
