// Reading the desktops' animation switches.
#include "ui/DesktopMotionSetting.h"

#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TEST(DesktopMotionSetting, GnomeTurnsMotionDownOnlyWhenAnimationsAreOff) {
    EXPECT_TRUE(gnomeSettingDisablesAnimations(u"false\n"));
    EXPECT_FALSE(gnomeSettingDisablesAnimations(u"true\n"));
    EXPECT_FALSE(gnomeSettingDisablesAnimations(u""));
}

TEST(DesktopMotionSetting, KdeTurnsMotionDownOnlyForAZeroFactorInItsOwnGroup) {
    EXPECT_TRUE(kdeGlobalsDisableAnimations(u"[General]\nfoo=1\n\n[KDE]\nAnimationDurationFactor=0\n"));
    EXPECT_TRUE(kdeGlobalsDisableAnimations(u"[KDE]\r\nAnimationDurationFactor = 0.0\r\n"));
    EXPECT_FALSE(kdeGlobalsDisableAnimations(u"[KDE]\nAnimationDurationFactor=0.5\n"));
    EXPECT_FALSE(kdeGlobalsDisableAnimations(u"[General]\nAnimationDurationFactor=0\n"));
    EXPECT_FALSE(kdeGlobalsDisableAnimations(u"[KDE]\nSingleClick=false\n"));
    EXPECT_FALSE(kdeGlobalsDisableAnimations(u""));
}

} // namespace
} // namespace glyphmill
