#include "app/menu/PalettePlacement.h"

#include <gtest/gtest.h>

namespace glyphmill {
namespace {

const QSize panel{280, 220};
// A 1920 × 1080 screen with a 32-point panel along its top.
const QRect area{0, 32, 1920, 1048};

TEST(PalettePlacement, OpensCentredBelowThePointer) {
    EXPECT_EQ(palettePosition({600, 400}, panel, area), QPoint(460, 416));
}

TEST(PalettePlacement, NearTheBottomEdgeItOpensAboveThePointer) {
    EXPECT_EQ(palettePosition({600, 1000}, panel, area), QPoint(460, 1000 - 16 - 220));
    // Exactly fitting below still opens below.
    EXPECT_EQ(palettePosition({600, 1080 - 16 - 220}, panel, area).y(), 1080 - 220);
}

TEST(PalettePlacement, SideEdgesPullItEightPointsInside) {
    EXPECT_EQ(palettePosition({1900, 400}, panel, area).x(), 1920 - 280 - 8);
    EXPECT_EQ(palettePosition({50, 400}, panel, area).x(), 8);
    EXPECT_EQ(palettePosition({50, 400}, panel, QRect(1920, 0, 1280, 1024)).x(), 1920 + 8);
}

TEST(PalettePlacement, TheTopEdgeRuleAppliesWhenAbovePushesItOut) {
    // Too little room below and above: above is tried, then pulled back under the top edge.
    const QRect shallow{0, 32, 1920, 300};
    EXPECT_EQ(palettePosition({600, 200}, panel, shallow).y(), 32 + 8);
}

TEST(PalettePlacement, OnAnAreaSmallerThanThePaletteTheRightAndBottomEdgesWin) {
    const QRect tiny{100, 100, 200, 150};
    EXPECT_EQ(palettePosition({150, 150}, panel, tiny), QPoint(300 - 280 - 8, 250 - 220 - 8));
}

TEST(PaletteArea, UsesTheScreenUnderThePointerThenThePrimaryThenAFixedArea) {
    const ScreenArea left{{0, 0, 1920, 1080}, {0, 32, 1920, 1048}};
    const ScreenArea right{{1920, 0, 1280, 1024}, {1920, 0, 1280, 980}};
    EXPECT_EQ(paletteArea({2000, 500}, {left, right}, left), right.availableFrame);
    // A point on the shared edge belongs to the first screen in the list that holds it.
    EXPECT_EQ(paletteArea({1919, 10}, {left, right}, right), left.availableFrame);
    EXPECT_EQ(paletteArea({-50, 500}, {left, right}, right), right.availableFrame);
    EXPECT_EQ(paletteArea({-50, 500}, {}, std::nullopt), QRect(0, 0, 800, 600));
}

} // namespace
} // namespace glyphmill
