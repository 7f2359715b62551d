#include "platform/linux/DesktopUrlOpener.h"
#include "platform/linux/X11ScreenCaptureAccess.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <vector>

namespace glyphmill {
namespace {

class DesktopAddresses : public ::testing::Test {
protected:
    DesktopUrlOpener opener(const QString &desktop, bool launches = true) {
        auto launch = [this, launches](const QString &program, const QStringList &arguments) {
            launched.push_back(QStringList{program} + arguments);
            return launches;
        };
        return DesktopUrlOpener(desktop, launch,
                                [this](const QUrl &url) { return handed.push_back(url), true; });
    }
    std::vector<QStringList> launched;
    std::vector<QUrl> handed;
};

TEST_F(DesktopAddresses, KeyboardShortcutPageFollowsTheDesktopNamedFirstThatIsKnown) {
    auto command = DesktopUrlOpener::keyboardShortcutsSettingsCommand;
    EXPECT_EQ(command(QStringLiteral("ubuntu:GNOME")),
              (QStringList{QStringLiteral("gnome-control-center"), QStringLiteral("keyboard")}));
    EXPECT_EQ(command(QStringLiteral("Budgie:XFCE:GNOME")),
              QStringList{QStringLiteral("xfce4-keyboard-settings")});
    EXPECT_EQ(command(QStringLiteral("openbox")), std::nullopt);

    EXPECT_TRUE(opener(QStringLiteral("kde")).openUrl(keyboardShortcutsSettingsAddress));
    const QStringList kcmKeys{QStringLiteral("systemsettings"), QStringLiteral("kcm_keys")};
    EXPECT_EQ(launched, std::vector<QStringList>{kcmKeys});
    // A page whose program would not start, or a desktop without the page, opened nothing.
    EXPECT_FALSE(opener(QStringLiteral("GNOME"), false).openUrl(keyboardShortcutsSettingsAddress));
    EXPECT_FALSE(opener(QStringLiteral("openbox")).openUrl(keyboardShortcutsSettingsAddress));
    EXPECT_FALSE(DesktopUrlOpener::startDetachedFromPath(QStringLiteral("glyphmill-no-such-program"), {}));
}

TEST_F(DesktopAddresses, ScreenRecordingPagesHaveNoCounterpartAndWebAddressesGoToTheDesktop) {
    auto gnome = opener(QStringLiteral("GNOME"));
    EXPECT_FALSE(
        gnome.openUrl("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"));
    EXPECT_TRUE(launched.empty());
    EXPECT_TRUE(gnome.openUrl("https://example.com/a?b=c"));
    EXPECT_TRUE(gnome.openUrl("mailto:someone@example.com"));
    EXPECT_FALSE(gnome.openUrl("no scheme here"));
    EXPECT_EQ(handed, (std::vector<QUrl>{QUrl(QStringLiteral("https://example.com/a?b=c")),
                                         QUrl(QStringLiteral("mailto:someone@example.com"))}));
}

TEST(LinuxScreenCaptureAccess, OffscreenHasNoScreenToGrab) {
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        GTEST_SKIP() << "runs offscreen only";
    X11ScreenCaptureAccess access;
    EXPECT_FALSE(access.hasAccess());
    EXPECT_FALSE(access.requestAccess());
}

} // namespace
} // namespace glyphmill
