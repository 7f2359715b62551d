#include "capture/ScreenRecordingPermission.h"
#include "capture/PermissionGateServices.h"
#include "support/PlatformWording.h"

#include <QDialog>
#include <QPushButton>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

class ScreenRecordingPermission : public ::testing::Test, protected PermissionGateServices {
protected:
    ScreenRecordingPermission() { access.granted = false; }
    static void press(const QString &title) {
        for (auto *button : screenRecordingExplanationPanel()->findChildren<QPushButton *>())
            if (button->text() == title)
                button->click();
    }
    std::optional<bool> explained() const { return userDefaults.boolValue(screenRecordingExplainedKey); }
};

const std::vector<std::string> allAddresses(screenRecordingSettingsAddresses.begin(),
                                            screenRecordingSettingsAddresses.end());

TEST_F(ScreenRecordingPermission, GrantedAccessShowsNothing) {
    access.grantOnRequest = true;
    EXPECT_TRUE(ensureScreenRecordingPermission());
    EXPECT_TRUE(ensureScreenRecordingPermission());
    EXPECT_EQ(access.requests, 1);
    EXPECT_EQ(screenRecordingExplanationPanel(), nullptr);
    EXPECT_TRUE(dialogs.shown().empty());
    EXPECT_EQ(explained(), std::nullopt);
}

TEST_F(ScreenRecordingPermission, TheFirstRefusalExplainsAndLaterOnesAlert) {
    EXPECT_FALSE(ensureScreenRecordingPermission());
    QDialog *panel = screenRecordingExplanationPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->windowTitle(), QStringLiteral("Screen Text Capture"));
    EXPECT_EQ(panel->size(), QSize(420, 220));
    EXPECT_EQ(glyphmill::testing::textsNamingAnotherPlatform(glyphmill::testing::textsShownBy(*panel)),
              QStringList());
    EXPECT_EQ(explained(), true);
    // Shown again while it is open: the same panel comes forward.
    showScreenRecordingExplanation();
    EXPECT_EQ(screenRecordingExplanationPanel(), panel);
    press(QStringLiteral("Not Now"));
    EXPECT_EQ(screenRecordingExplanationPanel(), nullptr);
    EXPECT_TRUE(dialogs.shown().empty());

    dialogs.answerConfirm(false);
    EXPECT_FALSE(ensureScreenRecordingPermission());
    EXPECT_EQ(screenRecordingExplanationPanel(), nullptr);
    ASSERT_EQ(dialogs.shown().size(), 1u);
    const auto &alert = dialogs.shown().front();
    EXPECT_EQ(alert.title, u"Screen Recording Is Required");
    EXPECT_EQ(alert.message, u"Glyphmill can read the screen only in an X11 session. Log in to an X11 "
                             u"session, then try Capture Text from Screen again.");
    EXPECT_EQ(alert.options, (std::vector<std::u16string>{u"Open Settings", u"Cancel"}));
    EXPECT_TRUE(urls.requested.empty());

    // When no page opens, every one was tried.
    urls.acceptedPrefixes = {"nothing opens"};
    dialogs.answerConfirm(true);
    EXPECT_FALSE(ensureScreenRecordingPermission());
    EXPECT_EQ(urls.requested, allAddresses);
}

TEST_F(ScreenRecordingPermission, OpenSettingsStopsAtTheFirstPageThatOpensAndClosesThePanel) {
    urls.acceptedPrefixes = {allAddresses[1]};
    showScreenRecordingExplanation();
    press(QStringLiteral("Open Settings"));
    EXPECT_EQ(urls.requested, (std::vector<std::string>{allAddresses[0], allAddresses[1]}));
    EXPECT_EQ(screenRecordingExplanationPanel(), nullptr);
}

} // namespace
} // namespace glyphmill
