#include "clipboard/CaptureHistory.h"

#include "platform/InMemoryPreferenceStore.h"

#include <QDateTime>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

class CaptureHistoryTest : public ::testing::Test {
protected:
    CaptureHistory makeHistory() {
        return CaptureHistory(userDefaults, [this] { return clock += 1.5; });
    }
    void store(std::string_view json) {
        userDefaults.setValue(CaptureHistory::preferenceKey, PreferenceData(json.begin(), json.end()));
    }
    std::string stored() const {
        auto bytes = userDefaults.dataValue(CaptureHistory::preferenceKey);
        return bytes ? std::string(bytes->begin(), bytes->end()) : "<none>";
    }
    static std::string itemJson(int number, std::string_view id = "6f1c4b9e-0000-4000-8000-0000000000") {
        const std::string digits = (number < 10 ? "0" : "") + std::to_string(number);
        return R"({"text":"t)" + digits + R"(","extra":null,"capturedAt":1,"id":")" + std::string(id) +
               digits + "\"}";
    }

    InMemoryPreferenceStore userDefaults;
    double clock = 100;
};

TEST_F(CaptureHistoryTest, KeepsTheTenNewestTextsOnceEachAndReloadsThem) {
    CaptureHistory history = makeHistory();
    for (char16_t letter = u'a'; letter <= u'k'; ++letter)
        history.add(std::u16string(u"text ") + letter);
    history.add(u"text i"); // the third item moves to the top
    for (std::u16string text : {u"cafe\u0301", u"Caf\u00E9", u"caf\u00E9", u" \n\t\u3000"})
        history.add(text);
    const std::vector<std::u16string> expected = {u"caf\u00E9", u"Caf\u00E9", u"text i", u"text k",
                                                  u"text j",    u"text h",    u"text g", u"text f",
                                                  u"text e",    u"text d"};
    ASSERT_EQ(history.items().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(history.items()[i].text, expected[i]);
    EXPECT_EQ(history.items()[2].capturedAt, 100 + 12 * 1.5);

    CaptureHistory reloaded = makeHistory();
    EXPECT_EQ(reloaded.items(), history.items());
    EXPECT_EQ(reloaded.textForID(history.items()[4].id), u"text j");
    EXPECT_EQ(reloaded.textForID(QUuid::createUuid()), std::nullopt);
}

TEST_F(CaptureHistoryTest, StoresIdTextAndSecondsSince2001AndWritesOnlyRealChanges) {
    CaptureHistory history = makeHistory();
    const int writesBefore = userDefaults.writeCount();
    history.clear();
    history.add(u"\n ");
    EXPECT_EQ(userDefaults.writeCount(), writesBefore);
    history.add(u"a \"quoted\" line\n");
    const std::string id = history.items()[0].id.toString(QUuid::WithoutBraces).toUpper().toStdString();
    EXPECT_EQ(stored(), R"([{"id":")" + id + R"(","text":"a \"quoted\" line\n","capturedAt":101.5}])");
    history.clear();
    EXPECT_EQ(stored(), "[]");
    history.add(u"lone \xD800 surrogate");
    EXPECT_EQ(history.items().size(), 1u);
    EXPECT_EQ(stored(), "[]"); // not encodable: the stored value stays

    const QDateTime referenceDate(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const auto before = referenceDate.secsTo(QDateTime::currentDateTimeUtc());
    const double now = CaptureHistory::currentTime();
    EXPECT_TRUE(now >= double(before) &&
                now < double(referenceDate.secsTo(QDateTime::currentDateTimeUtc()) + 1));
}

TEST_F(CaptureHistoryTest, LoadsTheFirstTenAndTreatsAnyUnreadableValueAsEmpty) {
    std::string twelve = "[" + itemJson(1);
    for (int i = 2; i <= 12; ++i)
        twelve += "," + itemJson(i);
    store(twelve + "]");
    EXPECT_EQ(makeHistory().items().size(), 10u);
    EXPECT_EQ(makeHistory().items()[0].id,
              QUuid::fromString(QStringLiteral("6F1C4B9E-0000-4000-8000-000000000001")));

    for (const std::string &value :
         {std::string("not json"), std::string("{}"), "[" + itemJson(1) + ",7]",
          std::string(R"([{"id":"{6F1C4B9E-0000-4000-8000-000000000001}","text":"t","capturedAt":1}])"),
          "[" + itemJson(1, "6f1c4b9e00004000800000000000") + "]",
          std::string(R"([{"id":"6f1c4b9e-0000-4000-8000-000000000001","text":"t"}])"),
          std::string(R"([{"id":"6f1c4b9e-0000-4000-8000-000000000001","text":7,"capturedAt":1}])")}) {
        store(value);
        const int writes = userDefaults.writeCount();
        CaptureHistory history = makeHistory();
        EXPECT_TRUE(history.items().empty()) << value;
        history.clear();
        EXPECT_EQ(stored(), value);
        EXPECT_EQ(userDefaults.writeCount(), writes);
    }
}

TEST_F(CaptureHistoryTest, AddsToTheStoredListAndFollowsChangesMadeElsewhere) {
    CaptureHistory history = makeHistory();
    QSignalSpy changes(&history, &CaptureHistory::itemsChanged);
    // Written by another program after this history was loaded: a new capture keeps it.
    store("[" + itemJson(1) + "]");
    history.add(u"new");
    ASSERT_EQ(history.items().size(), 2u);
    EXPECT_EQ(history.items()[0].text, u"new");
    EXPECT_EQ(history.items()[1].text, u"t01");
    EXPECT_EQ(makeHistory().items(), history.items());

    userDefaults.storeFromElsewhere(CaptureHistory::preferenceKey, std::nullopt);
    EXPECT_TRUE(history.items().empty());
    userDefaults.storeFromElsewhere("unrelated", true);
    EXPECT_EQ(changes.count(), 2) << "an announcement that changes nothing stays quiet";
}

TEST(CaptureHistoryMenuTitle, OneLineCutToTheLimitInCharacters) {
    const std::u16string fiftySix(56, u'x');
    std::u16string accented;
    for (int i = 0; i < 57; ++i)
        accented += u"e\u0301";
    const std::u16string family = u"\U0001F469\u200D\U0001F467";
    const std::vector<std::pair<std::u16string, std::u16string>> cases = {
        {u"\n  one\ttwo \r\n\u2028three\u00A0four  ", u"one two three four"},
        {fiftySix, fiftySix},
        {fiftySix + u"y", std::u16string(55, u'x') + u"\u2026"},
        {accented, accented.substr(0, 110) + u"\u2026"},
        {std::u16string(53, u'a') + u"  " + family + family + family,
         std::u16string(53, u'a') + u" " + family + u"\u2026"},
        {u" \t\n\u3000", u"Captured Text"},
    };
    for (const auto &[text, title] : cases)
        EXPECT_EQ(CaptureHistory::menuTitle(text, CaptureHistory::menuTitleLimit), title);
}

} // namespace
} // namespace glyphmill
