// The welcome guide over in-memory settings, clipboard and terms, with the window actions
// recorded instead of run.
#include "ui/WelcomeGuide.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "support/PlatformWording.h"
#include "support/SpinUntil.h"
#include "ui/OnboardingView.h"
#include "ui/WelcomeGuideFooter.h"
#include "ui/WelcomeGuidePages.h"
#include "ui/WelcomeSamplePage.h"
#include "ui/WindowActions.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

QString qs(std::u16string_view text) {
    return QString::fromStdU16String(std::u16string(text));
}

class WelcomeGuideTest : public ::testing::Test {
protected:
    WelcomeGuideTest() : savedActions(windowActions()) {
        setWelcomeGuideEnvironment({&settings, &clipboard, &userDefaults, true});
        WindowActions actions;
        actions.showSettingsWindow = [this](ProtectedTermsStore &shown) {
            settingsShownWith.push_back(&shown);
        };
        installWindowActions(actions);
    }
    ~WelcomeGuideTest() override {
        // Also deletes the windows forgotten during the test, before the store they observe.
        setWelcomeGuideEnvironment({});
        installWindowActions(savedActions);
    }

    OnboardingView &openGuide() {
        showWelcomeGuide(&store);
        return view();
    }
    static OnboardingView &view() { return *existingWelcomeWindow()->findChild<OnboardingView *>(); }
    static WelcomeGuideFooter &footer() { return view().footer(); }
    static WelcomeSamplePage &sample() { return view().samplePage(); }
    static void pressReturn() {
        QWidget *window = existingWelcomeWindow();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window, waitDeadlineMilliseconds));
        QWidget *target = QApplication::focusWidget() ? QApplication::focusWidget() : window;
        QTest::keyClick(target, Qt::Key_Return);
    }

    WindowActions savedActions;
    InMemoryPreferenceStore userDefaults;
    InMemoryLoginItem loginItem;
    AppSettings settings{userDefaults, loginItem};
    InMemoryPasteboard clipboard;
    ProtectedTermsStore store{userDefaults};
    std::vector<ProtectedTermsStore *> settingsShownWith;
};

TEST_F(WelcomeGuideTest, ContinueAndBackWalkThePagesWithinTheirBounds) {
    OnboardingView &guide = openGuide();
    EXPECT_EQ(existingWelcomeWindow()->windowTitle(), "Welcome to Glyphmill");
    EXPECT_EQ(guide.page(), 0);
    EXPECT_FALSE(footer().backButton().isVisible());
    EXPECT_FALSE(footer().backButton().isEnabled());
    guide.back();
    EXPECT_EQ(guide.page(), 0);

    const std::vector<QString> primaryTitles = {"Continue", "Continue", "Continue", "Start Using Glyphmill"};
    for (int page = 0; page < 4; ++page) {
        guide.setPage(page);
        EXPECT_EQ(footer().primaryButton().text(), primaryTitles[static_cast<std::size_t>(page)]);
        EXPECT_EQ(footer().dots().accessibleName(), QStringLiteral("Step %1 of 4").arg(page + 1));
        EXPECT_EQ(footer().openSettingsButton().isVisible(), page == 3);
        EXPECT_EQ(footer().backButton().isVisible(), page != 0);
    }

    guide.setPage(0);
    footer().primaryButton().click();
    footer().primaryButton().click();
    EXPECT_EQ(guide.page(), 2);
    footer().backButton().click();
    EXPECT_EQ(guide.page(), 1);
    guide.setPage(9);
    EXPECT_EQ(guide.page(), 3);
    guide.setPage(-2);
    EXPECT_EQ(guide.page(), 0);
}

TEST_F(WelcomeGuideTest, ReturnAdvancesExceptOnTheSamplePageWhereItTypesANewline) {
    OnboardingView &guide = openGuide();
    pressReturn();
    EXPECT_EQ(guide.page(), 1);
    EXPECT_FALSE(footer().primaryIsDefault());

    sample().editor().setFocus();
    sample().editor().moveCursor(QTextCursor::End);
    pressReturn();
    EXPECT_EQ(guide.page(), 1);
    EXPECT_EQ(sample().sample(), WelcomeSamplePage::initialSample + "\n");
    sample().kindButton(TextTransformKind::uppercase).setFocus();
    pressReturn();
    EXPECT_EQ(guide.page(), 1);

    guide.setPage(2);
    pressReturn();
    EXPECT_EQ(guide.page(), 3);
    pressReturn();
    EXPECT_TRUE(settings.onboardingCompleted());
    EXPECT_EQ(existingWelcomeWindow(), nullptr);
}

TEST_F(WelcomeGuideTest, TheSampleFollowsTheKindTheTextTheTermsAndReset) {
    openGuide();
    EXPECT_EQ(sample().sample(), "welcome to acme llc and the mac app store");
    EXPECT_EQ(sample().selectedKind(), TextTransformKind::smartCase);
    EXPECT_TRUE(sample().kindButton(TextTransformKind::smartCase).isChecked());

    sample().kindButton(TextTransformKind::capitalizeWords).click();
    EXPECT_EQ(sample().result(), "Welcome To Acme LLC And The Mac App Store");
    EXPECT_FALSE(sample().kindButton(TextTransformKind::smartCase).isChecked());
    EXPECT_EQ(sample().kindButton(TextTransformKind::uppercase).text(), "UPPERCASE");

    sample().editor().setPlainText("new iphone from acme");
    sample().kindButton(TextTransformKind::uppercase).click();
    EXPECT_EQ(sample().result(), "NEW iPhone FROM ACME");
    store.addTerm(u"Acme");
    EXPECT_EQ(sample().result(), "NEW iPhone FROM Acme");

    sample().editor().setPlainText("see https://Example.com/Path");
    EXPECT_EQ(sample().result(), "SEE https://Example.com/Path");
    settings.setPreserveURLs(false);
    EXPECT_EQ(sample().result(), "SEE HTTPS://EXAMPLE.COM/PATH");

    sample().resetButton().click();
    EXPECT_EQ(sample().sample(), WelcomeSamplePage::initialSample);
    EXPECT_EQ(sample().selectedKind(), TextTransformKind::smartCase);
    EXPECT_TRUE(sample().kindButton(TextTransformKind::smartCase).isChecked());
}

TEST_F(WelcomeGuideTest, ABlankResultShowsABlankAndCannotBeCopied) {
    openGuide();
    sample().editor().setPlainText("");
    EXPECT_EQ(sample().result(), " ");
    EXPECT_FALSE(sample().copyButton().isEnabled());
    sample().editor().setPlainText(" \n\t");
    EXPECT_FALSE(sample().copyButton().isEnabled());
    sample().editor().setPlainText("x");
    EXPECT_TRUE(sample().copyButton().isEnabled());
}

TEST_F(WelcomeGuideTest, CopyPutsPlainTextOnTheClipboardAndSaysCopiedUntilAfterTheLatestCopy) {
    openGuide();
    sample().kindButton(TextTransformKind::uppercase).click();
    sample().copyButton().click();
    EXPECT_EQ(clipboard.types(), std::vector<std::string>{"text/plain"});
    EXPECT_EQ(clipboard.string("text/plain"), u"WELCOME TO ACME LLC AND THE MAC App Store");
    EXPECT_EQ(sample().copyButton().text(), "Copied");

    // The first copy's reset falls due while the second copy is fresh, and must find it newer.
    // Timed by the event loop, not the clock: a thread's timers fire in the order they fall due,
    // ties in the order they were started, however late a busy machine gets to them. The look is
    // started after the first copy's reset and before the second copy, with the same duration, so
    // it runs after the first reset and before the second.
    QString afterFirstReset;
    QTimer::singleShot(WelcomeSamplePage::copiedDuration, Qt::PreciseTimer, &sample(),
                       [&afterFirstReset] { afterFirstReset = sample().copyButton().text(); });
    QTimer::singleShot(WelcomeSamplePage::copiedDuration / 2, Qt::PreciseTimer, &sample(),
                       [] { sample().copyButton().click(); });
    ASSERT_TRUE(spinUntil([&afterFirstReset] { return !afterFirstReset.isEmpty(); }));
    EXPECT_EQ(afterFirstReset, "Copied");
    EXPECT_TRUE(spinUntil([] { return sample().copyButton().text() == "Copy Result"; }));
    EXPECT_FALSE(sample().didCopy());
}

TEST_F(WelcomeGuideTest, ChoosingAKindAfterCopyingShowsCopyResultAtOnce) {
    openGuide();
    sample().copyButton().click();
    ASSERT_EQ(sample().copyButton().text(), "Copied");
    sample().kindButton(TextTransformKind::lowercase).click();
    EXPECT_EQ(sample().copyButton().text(), "Copy Result");
}

TEST_F(WelcomeGuideTest, FinishingCompletesOnboardingAndClosesTheGuide) {
    openGuide().setPage(3);
    footer().primaryButton().click();
    EXPECT_TRUE(settings.onboardingCompleted());
    EXPECT_EQ(userDefaults.boolValue("onboardingCompletedV11"), true);
    EXPECT_EQ(existingWelcomeWindow(), nullptr);
    EXPECT_TRUE(settingsShownWith.empty());

    // Built anew on the first page with a fresh sample.
    OnboardingView &again = openGuide();
    EXPECT_EQ(again.page(), 0);
    EXPECT_EQ(sample().sample(), WelcomeSamplePage::initialSample);
}

TEST_F(WelcomeGuideTest, OpenSettingsFinishesThenOpensSettingsWithTheRememberedStore) {
    openGuide().setPage(3);
    footer().openSettingsButton().click();
    EXPECT_TRUE(settings.onboardingCompleted());
    EXPECT_EQ(existingWelcomeWindow(), nullptr);
    EXPECT_EQ(settingsShownWith, std::vector<ProtectedTermsStore *>{&store});
}

TEST_F(WelcomeGuideTest, EditProtectedTermsOpensSettingsWithoutFinishing) {
    openGuide().setPage(1);
    sample().editProtectedTermsButton().click();
    EXPECT_EQ(settingsShownWith, std::vector<ProtectedTermsStore *>{&store});
    EXPECT_FALSE(settings.onboardingCompleted());
    EXPECT_NE(existingWelcomeWindow(), nullptr);
}

TEST_F(WelcomeGuideTest, TheCloseBoxForgetsTheWindowButLeavesOnboardingOpen) {
    openGuide();
    QPointer<QWidget> window = existingWelcomeWindow();
    window->close();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(existingWelcomeWindow(), nullptr);
    EXPECT_TRUE(window.isNull());
    EXPECT_FALSE(settings.onboardingCompleted());
    EXPECT_FALSE(userDefaults.boolValue("onboardingCompletedV11").value_or(false));
}

TEST_F(WelcomeGuideTest, OpeningIfNeededRespectsTheFlagAndASecondShowBringsTheSameWindow) {
    settings.setOnboardingCompleted(true);
    showWelcomeGuideIfNeeded(store);
    EXPECT_EQ(existingWelcomeWindow(), nullptr);

    settings.setOnboardingCompleted(false);
    showWelcomeGuideIfNeeded(store);
    QWidget *first = existingWelcomeWindow();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    view().setPage(2);
    sample().editor().setPlainText("kept");

    showWelcomeGuide(nullptr);
    EXPECT_EQ(existingWelcomeWindow(), first);
    EXPECT_EQ(view().page(), 2);
    EXPECT_EQ(sample().sample(), "kept");
    // The store handed over at start is the one the guide used.
    view().setPage(1);
    sample().editProtectedTermsButton().click();
    EXPECT_EQ(settingsShownWith, std::vector<ProtectedTermsStore *>{&store});
}

TEST_F(WelcomeGuideTest, WithoutAHandedOverStoreTheGuideMakesOneAndKeepsUsingIt) {
    userDefaults.setValue(ProtectedTermsStore::preferenceKey, std::vector<std::u16string>{u"ACME"});
    showWelcomeGuide(nullptr);
    view().setPage(1);
    sample().editor().setPlainText("acme");
    sample().kindButton(TextTransformKind::lowercase).click();
    EXPECT_EQ(sample().result(), "ACME");

    sample().editProtectedTermsButton().click();
    finishWelcomeGuide();
    showWelcomeGuide(nullptr);
    view().setPage(3);
    footer().openSettingsButton().click();
    ASSERT_EQ(settingsShownWith.size(), 2u);
    EXPECT_NE(settingsShownWith[0], &store);
    EXPECT_EQ(settingsShownWith[1], settingsShownWith[0]);
}

TEST_F(WelcomeGuideTest, TheWindowTakesTheSizeRuleAndKeepsIt) {
    EXPECT_EQ(welcomeGuideSize(QSize(900, 600)), QSize(520, 480));
    EXPECT_EQ(welcomeGuideSize(QSize(400, 300)), QSize(420, 320));
    EXPECT_EQ(welcomeGuideSize(QSize(500, 400)), QSize(452, 352));
    EXPECT_EQ(welcomeGuideSize(std::nullopt), QSize(520, 480));

    openGuide();
    QWidget *window = existingWelcomeWindow();
    const QSize expected = welcomeGuideSize(QGuiApplication::primaryScreen()->availableGeometry().size());
    EXPECT_EQ(window->size(), expected);
    EXPECT_EQ(window->minimumSize(), expected);
    EXPECT_EQ(window->maximumSize(), expected);
    EXPECT_FALSE(window->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));

    // The kind buttons share one row when it fits, else the last two move to a second row.
    view().setPage(1);
    const auto rowOf = [](TextTransformKind kind) { return sample().kindButton(kind).geometry().top(); };
    window->setFixedSize(520, 480);
    QCoreApplication::processEvents();
    EXPECT_EQ(rowOf(TextTransformKind::capitalizeWords), rowOf(TextTransformKind::smartCase));
    window->setFixedSize(420, 320);
    QCoreApplication::processEvents();
    EXPECT_EQ(rowOf(TextTransformKind::uppercase), rowOf(TextTransformKind::smartCase));
    EXPECT_GT(rowOf(TextTransformKind::lowercase), rowOf(TextTransformKind::smartCase));
    EXPECT_EQ(rowOf(TextTransformKind::capitalizeWords), rowOf(TextTransformKind::lowercase));
}

TEST_F(WelcomeGuideTest, ThePaletteShortcutTextsFollowTheRegistrationFailure) {
    openGuide();
    PaletteAndServicesPage &palette = view().paletteAndServicesPage();
    ReadyPage &ready = view().readyPage();
    const QString chord = qs(displayString(settings.shortcut(KeyboardShortcutID::palette)));
    EXPECT_EQ(palette.shortcutHeading(), chord);
    EXPECT_EQ(palette.shortcutMessage(),
              "Opens the floating palette near your pointer so you can format clipboard text.");
    EXPECT_EQ(ready.paletteRowMessage(), "Press " + chord +
                                             " to format clipboard text. To change a selection in place, use "
                                             "the glyphmill service command.");
    EXPECT_EQ(palette.exampleResult(),
              qs(TextTransformer{store.terms(), settings.textProtectionOptions()}.apply(
                  TextTransformKind::smartCase, u"WELCOME TO ACME LLC")));

    settings.setPaletteShortcutRegistrationFailed(true);
    EXPECT_EQ(palette.shortcutHeading(), "Palette shortcut unavailable");
    EXPECT_EQ(palette.shortcutMessage(),
              "The floating palette shortcut could not be registered. Open it from the "
              "Glyphmill menu, or choose another shortcut in Settings.");
    EXPECT_EQ(ready.paletteRowMessage(),
              "Open the floating palette from the Glyphmill menu to format clipboard "
              "text. To change a selection in place, use the glyphmill service command.");

    settings.setPaletteShortcutRegistrationFailed(false);
    EXPECT_EQ(palette.shortcutHeading(), chord);
}

TEST_F(WelcomeGuideTest, NoPageSpeaksOfAnotherPlatform) {
    openGuide();
    // The sample and the protected terms it names are the user's text, not the program's.
    sample().editor().clear();
    const QString termsHint =
        QStringLiteral("Protected Terms keep names like LLC, macOS, and iPhone correctly capitalized.");
    for (const bool registrationFailed : {false, true}) {
        settings.setPaletteShortcutRegistrationFailed(registrationFailed);
        QStringList texts = glyphmill::testing::textsShownBy(*existingWelcomeWindow());
        EXPECT_TRUE(texts.removeAll(termsHint) > 0);
        EXPECT_EQ(glyphmill::testing::textsNamingAnotherPlatform(texts), QStringList());
    }
}

TEST_F(WelcomeGuideTest, PagesFadeUnlessReducedMotionIsOn) {
    OnboardingView &still = openGuide();
    still.setPage(1);
    EXPECT_FALSE(still.isAnimatingPageChange());

    setWelcomeGuideEnvironment({&settings, &clipboard, &userDefaults, false});
    OnboardingView &moving = openGuide();
    moving.setPage(1);
    EXPECT_EQ(moving.page(), 1);
    EXPECT_TRUE(moving.isAnimatingPageChange());
    EXPECT_TRUE(spinUntil([&moving] { return !moving.isAnimatingPageChange(); }));
    EXPECT_EQ(moving.samplePage().graphicsEffect(), nullptr);
}

} // namespace
} // namespace glyphmill
