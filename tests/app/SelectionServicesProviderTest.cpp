#include "app/SelectionServicesProvider.h"
#include "app/DBusAdaptors.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/RecordingUrlOpener.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "support/PlatformWording.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

class SelectionServices : public ::testing::Test {
protected:
    std::optional<std::u16string> selection() const { return pasteboard.string(pasteboardType::plainText); }

    InMemoryPreferenceStore userDefaults;
    InMemoryLoginItem loginItem;
    AppSettings settings{userDefaults, loginItem};
    ProtectedTermsStore terms{userDefaults};
    SelectionServicesProvider provider{terms, settings};
    InMemoryPasteboard pasteboard;
};

TEST_F(SelectionServices, TransformsTheUntrimmedSelectionAndLeavesOnlyPlainText) {
    pasteboard.copyFromOtherApplication({{"text/plain", InMemoryPasteboard::bytes("  hello world  ")},
                                         {"text/html", InMemoryPasteboard::bytes("<b>hello world</b>")}});
    EXPECT_TRUE(provider.transformSmartCase(pasteboard));
    EXPECT_EQ(selection(), u"  Hello world  ");
    EXPECT_EQ(pasteboard.types(), std::vector<std::string>{"text/plain"});

    pasteboard.copyTextFromOtherApplication(u"the end of the road\n");
    EXPECT_TRUE(provider.transformTitleCase(pasteboard));
    EXPECT_EQ(selection(), u"The End of the Road\n");
    EXPECT_TRUE(provider.transformUppercase(pasteboard));
    EXPECT_EQ(selection(), u"THE END OF THE ROAD\n");
    EXPECT_TRUE(provider.transformLowercase(pasteboard));
    EXPECT_EQ(selection(), u"the end of the road\n");
    EXPECT_TRUE(provider.transformCapitalizeWords(pasteboard));
    EXPECT_EQ(selection(), u"The End Of The Road\n");
}

TEST_F(SelectionServices, BlankOrMissingTextIsNotHandledAndNothingIsWritten) {
    for (std::u16string blank : {u"", u"   ", u" \n\t\r\n "}) {
        pasteboard.copyTextFromOtherApplication(blank);
        const int writesBefore = pasteboard.writeCount();
        EXPECT_FALSE(provider.transformUppercase(pasteboard));
        EXPECT_EQ(pasteboard.writeCount(), writesBefore);
        EXPECT_EQ(selection(), blank);
    }
    pasteboard.copyFromOtherApplication({{"image/png", InMemoryPasteboard::bytes("\x89PNG")}});
    EXPECT_FALSE(provider.transformSmartCase(pasteboard));
    EXPECT_EQ(pasteboard.types(), std::vector<std::string>{"image/png"});
}

TEST_F(SelectionServices, ReadsTheTermsAndSwitchesAtEveryRequest) {
    pasteboard.copyTextFromOtherApplication(u"zorblax ships today");
    ASSERT_TRUE(provider.transformUppercase(pasteboard));
    EXPECT_EQ(selection(), u"ZORBLAX SHIPS TODAY");

    // The same store the terms editor changes.
    terms.addTerm(u"zorBlax");
    pasteboard.copyTextFromOtherApplication(u"zorblax ships today");
    ASSERT_TRUE(provider.transformUppercase(pasteboard));
    EXPECT_EQ(selection(), u"zorBlax SHIPS TODAY");

    pasteboard.copyTextFromOtherApplication(u"see https://example.com/Path");
    ASSERT_TRUE(provider.transformUppercase(pasteboard));
    EXPECT_EQ(selection(), u"SEE https://example.com/Path");
    settings.setPreserveURLs(false);
    pasteboard.copyTextFromOtherApplication(u"see https://example.com/Path");
    ASSERT_TRUE(provider.transformUppercase(pasteboard));
    EXPECT_EQ(selection(), u"SEE HTTPS://EXAMPLE.COM/PATH");
}

// Runs the help alert and presses the button with the given title once it shows; answers what
// the alert said and which addresses were opened.
std::pair<QStringList, std::vector<std::string>> runServicesHelp(const QString &pressed) {
    RecordingUrlOpener urls;
    PlatformServices services;
    services.urls = &urls;
    installPlatformServices(services);
    QStringList shown;
    QTimer answerer;
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!alert)
            return;
        answerer.stop();
        shown = glyphmill::testing::textsShownBy(*alert) << alert->text() << alert->informativeText();
        for (QAbstractButton *button : alert->buttons())
            if (button->text() == pressed)
                button->click();
    });
    answerer.start(0);
    SelectionServicesProvider::showServicesHelp();
    installPlatformServices({});
    return {shown, urls.requested};
}

TEST(ServicesHelp, OnlyTheSecondButtonOpensTheKeyboardShortcutSettings) {
    const auto [texts, openedByOk] = runServicesHelp(QStringLiteral("OK"));
    EXPECT_TRUE(texts.contains(QStringLiteral("Transform Text with Services")));
    EXPECT_EQ(glyphmill::testing::textsNamingAnotherPlatform(texts), QStringList());
    EXPECT_TRUE(openedByOk.empty());

    const auto opened = runServicesHelp(QStringLiteral("Open Shortcuts Settings")).second;
    EXPECT_EQ(opened,
              std::vector<std::string>{"x-apple.systempreferences:com.apple.Keyboard-Settings.extension"});
}

// What the D-Bus method answers: the text travels in the call instead of on a pasteboard.
TEST_F(SelectionServices, BusMethodsAnswerHandledAndTheText) {
    QObject busObject;
    auto *adaptor = new ServicesAdaptor(&busObject);
    QString result;
    EXPECT_FALSE(adaptor->transformSmartCase(QStringLiteral("before launch"), result));
    EXPECT_EQ(result, QStringLiteral("before launch"));

    adaptor->setProvider(&provider);
    EXPECT_TRUE(adaptor->transformSmartCase(QStringLiteral("  hello wörld 👋 "), result));
    EXPECT_EQ(result, QStringLiteral("  Hello wörld 👋 "));
    EXPECT_TRUE(adaptor->transformCapitalizeWords(QStringLiteral("ab cd"), result));
    EXPECT_EQ(result, QStringLiteral("Ab Cd"));
    EXPECT_FALSE(adaptor->transformLowercase(QStringLiteral(" \n "), result));
    EXPECT_EQ(result, QStringLiteral(" \n "));
}

} // namespace
} // namespace glyphmill
