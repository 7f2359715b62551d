#include "settings/preferences/ProtectedTermsStore.h"

#include "platform/InMemoryPreferenceStore.h"

#include <gtest/gtest.h>

namespace glyphmill {
namespace {

using Terms = std::vector<std::u16string>;
constexpr std::string_view key = ProtectedTermsStore::preferenceKey;

// Records what observers were told.
struct Notifications {
    explicit Notifications(ProtectedTermsStore &store) {
        store.addObserver([this](const Terms &terms) { received.push_back(terms); });
    }
    std::vector<Terms> received;
};

TEST(ProtectedTermsStoreTest, FirstLaunchUsesTheDefaultsAndWritesNothing) {
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore store(userDefaults);
    ASSERT_EQ(store.terms().size(), 23u);
    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(store.terms()[3], u"US");
    EXPECT_EQ(store.terms()[20], u"App Store");
    EXPECT_EQ(userDefaults.writeCount(), 0);
}

TEST(ProtectedTermsStoreTest, UnusableStoredValueLoadsTheDefaultsAndIsLeftAsItWas) {
    const std::vector<PreferenceValue> unusable = {Terms{}, true, std::u16string(u"iPhone"),
                                                   PreferenceData{1}};
    for (const auto &stored : unusable) {
        InMemoryPreferenceStore userDefaults;
        userDefaults.setValue(key, stored);
        ProtectedTermsStore store(userDefaults);
        EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms()) << stored.index();
        EXPECT_EQ(userDefaults.value(key), stored);
        EXPECT_EQ(userDefaults.writeCount(), 1);
    }
}

TEST(ProtectedTermsStoreTest, AddTermIgnoresBlanksAndTermsAlreadyPresentIgnoringCase) {
    InMemoryPreferenceStore userDefaults;
    userDefaults.setValue(key,
                          Terms{u"iPhone", u"Stra\u00dfe", u"Caf\u00e9", u"\u03a3\u039f\u03a6\u039f\u03a3"});
    ProtectedTermsStore store(userDefaults);
    const Terms before = store.terms();
    Notifications notifications(store);
    const std::u16string_view ignored[] = {
        u"",
        u" \r\n\v\f",
        u"\u00a0\u2003\u0085\u2028", // no-break, em and line separator spaces, next line
        u"  iPhone  ",
        u"IPHONE",
        u"\niphone\u3000",
        u"STRASSE",                        // full case folding: ß is ss
        u"CAFE\u0301",                     // canonical equivalence: é is e + combining acute
        u"\u03c3\u03bf\u03c6\u03bf\u03c2", // final and medial sigma fold alike
    };
    for (auto text : ignored)
        store.addTerm(text);
    EXPECT_EQ(store.terms(), before);
    EXPECT_TRUE(notifications.received.empty());
    EXPECT_EQ(userDefaults.writeCount(), 1);
}

TEST(ProtectedTermsStoreTest, AddTermAppendsTheTrimmedTextAndWritesTheWholeList) {
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore store(userDefaults);
    Notifications notifications(store);
    store.addTerm(u" \u00a0Kubernetes\n");
    Terms expected = ProtectedTermsStore::defaultTerms();
    expected.push_back(u"Kubernetes");
    EXPECT_EQ(store.terms(), expected);
    EXPECT_EQ(userDefaults.stringArrayValue(key), expected);
    EXPECT_EQ(notifications.received, std::vector<Terms>{expected});
}

TEST(ProtectedTermsStoreTest, RemoveTermRemovesEveryEntryEqualIgnoringCaseAndNothingElse) {
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore defaults(userDefaults);
    defaults.removeTerm(u"us");
    Terms expected = ProtectedTermsStore::defaultTerms();
    std::erase(expected, u"US");
    EXPECT_EQ(defaults.terms(), expected); // "USA" and "U.S." stay

    // A stored list is loaded as it is, duplicates and blanks included.
    userDefaults.setValue(key, Terms{u"Foo", u"Bar", u"FOO", u" "});
    ProtectedTermsStore store(userDefaults);
    store.removeTerm(u"foo");
    EXPECT_EQ(store.terms(), (Terms{u"Bar", u" "}));

    // Not trimmed, so nothing matches; observers and the store still hear of it.
    Notifications notifications(store);
    const int writesBefore = userDefaults.writeCount();
    store.removeTerm(u"Bar ");
    EXPECT_EQ(notifications.received, std::vector<Terms>{store.terms()});
    EXPECT_EQ(userDefaults.writeCount(), writesBefore + 1);
}

TEST(ProtectedTermsStoreTest, ListEmptiedByTheUserComesBackAsTheDefaults) {
    InMemoryPreferenceStore userDefaults;
    userDefaults.setValue(key, Terms{u"Only"});
    ProtectedTermsStore store(userDefaults);
    store.removeTerm(u"ONLY");
    EXPECT_TRUE(store.terms().empty());
    EXPECT_EQ(userDefaults.stringArrayValue(key), Terms{});
    EXPECT_EQ(ProtectedTermsStore(userDefaults).terms(), ProtectedTermsStore::defaultTerms());
}

TEST(ProtectedTermsStoreTest, RestoreDefaultTermsDropsTheUsersTerms) {
    InMemoryPreferenceStore userDefaults;
    userDefaults.setValue(key, Terms{u"Mine", u"LLC"});
    ProtectedTermsStore store(userDefaults);
    Notifications notifications(store);
    store.restoreDefaultTerms();
    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(userDefaults.stringArrayValue(key), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(notifications.received.size(), 1u);
}

TEST(ProtectedTermsStoreTest, ObserversMayRemoveObserversWhileBeingCalled) {
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore store(userDefaults);
    std::vector<std::string> calls;
    int second = 0;
    const int first = store.addObserver([&](const Terms &) {
        calls.push_back("first");
        store.removeObserver(second);
    });
    second = store.addObserver([&](const Terms &) { calls.push_back("second"); });
    store.addObserver([&](const Terms &) { calls.push_back("third"); });
    store.addTerm(u"One");
    store.removeObserver(first);
    store.addTerm(u"Two");
    EXPECT_EQ(calls, (std::vector<std::string>{"first", "third", "third"}));
}

TEST(ProtectedTermsStoreTest, ChangesStartFromTheStoredListAndFollowChangesMadeElsewhere) {
    InMemoryPreferenceStore userDefaults;
    ProtectedTermsStore store(userDefaults);
    Notifications notifications(store);

    // Another program added a term this store has not heard of yet: adding keeps it.
    userDefaults.setValue(key, Terms{u"Kubernetes"});
    store.addTerm(u"Grafana");
    EXPECT_EQ(store.terms(), (Terms{u"Kubernetes", u"Grafana"}));
    EXPECT_EQ(userDefaults.stringArrayValue(key), store.terms());
    userDefaults.setValue(key, Terms{u"Kubernetes", u"Grafana", u"Helm"});
    store.removeTerm(u"grafana");
    EXPECT_EQ(store.terms(), (Terms{u"Kubernetes", u"Helm"}));
    // A duplicate of a stored term writes nothing, but the list still catches up.
    userDefaults.setValue(key, Terms{u"Helm", u"Istio"});
    const int writes = userDefaults.writeCount();
    store.addTerm(u"ISTIO");
    EXPECT_EQ(userDefaults.writeCount(), writes);
    EXPECT_EQ(store.terms(), (Terms{u"Helm", u"Istio"}));
    ASSERT_EQ(notifications.received.size(), 3u);

    // Announced changes are followed; an announcement that changes nothing is not passed on.
    userDefaults.storeFromElsewhere(key, Terms{u"Only"});
    EXPECT_EQ(store.terms(), Terms{u"Only"});
    userDefaults.storeFromElsewhere("someOtherKey", true);
    userDefaults.storeFromElsewhere(key, std::nullopt);
    EXPECT_EQ(store.terms(), ProtectedTermsStore::defaultTerms());
    EXPECT_EQ(notifications.received.size(), 5u);
}

TEST(ProtectedTermsStoreTest, AShortLivedStoreStopsListeningWhenItEnds) {
    InMemoryPreferenceStore userDefaults;
    { ProtectedTermsStore shortLived(userDefaults); }
    userDefaults.storeFromElsewhere(key, Terms{u"After"}); // would reach a dead store otherwise
    EXPECT_EQ(ProtectedTermsStore(userDefaults).terms(), Terms{u"After"});
}

} // namespace
} // namespace glyphmill
