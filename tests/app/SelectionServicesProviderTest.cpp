#include "app/SelectionServicesProvider.h"
#include "app/DBusAdaptors.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"

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
