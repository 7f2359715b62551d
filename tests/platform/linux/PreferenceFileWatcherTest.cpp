#include "platform/linux/PreferenceFileWatcher.h"
#include "platform/JsonFilePreferenceStore.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "support/SpinUntil.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>

namespace glyphmill {
namespace {

using Strings = std::vector<std::u16string>;

class PreferenceFileWatcherTest : public ::testing::Test {
protected:
    // The folder does not exist yet: the watcher must still see the first file appear in it.
    QTemporaryDir root;
    std::string path = root.filePath("config/glyphmill/preferences.json").toStdString();
};

TEST_F(PreferenceFileWatcherTest, RunningProgramFollowsWhatAnotherProgramWrites) {
    JsonFilePreferenceStore running(path);
    PreferenceFileWatcher watcher(running);
    ProtectedTermsStore terms(running);
    int termAnnouncements = 0;
    terms.addObserver([&](const Strings &) { ++termAnnouncements; });

    {
        // What `glyphmill terms add` does from its own process.
        JsonFilePreferenceStore commandLine(path);
        ProtectedTermsStore(commandLine).addTerm(u"Kubernetes");
    }
    ASSERT_TRUE(spinUntil([&] { return !terms.terms().empty() && terms.terms().back() == u"Kubernetes"; }));
    EXPECT_EQ(termAnnouncements, 1);

    // A change made here starts from the file's list, and is not announced back to itself.
    terms.addTerm(u"Grafana");
    JsonFilePreferenceStore commandLine(path);
    ProtectedTermsStore(commandLine).removeTerm(u"kubernetes");
    ASSERT_TRUE(spinUntil([&] { return terms.terms().back() == u"Grafana" && terms.terms().size() == 24; }));
    EXPECT_EQ(termAnnouncements, 3);
    EXPECT_EQ(running.stringArrayValue(ProtectedTermsStore::preferenceKey), terms.terms());

    // A file edited in place, as a text editor may, is followed too.
    ASSERT_TRUE(commandLine.setValue("launchAtLogin", true));
    bool announced = false;
    running.addObserver([&] { announced = true; });
    {
        std::FILE *file = std::fopen(path.c_str(), "w");
        ASSERT_NE(file, nullptr);
        std::fputs("{\"protectedTerms\": [\"Only\"]}\n", file);
        std::fclose(file);
    }
    ASSERT_TRUE(spinUntil([&] { return announced && terms.terms() == Strings{u"Only"}; }));
    EXPECT_FALSE(running.boolValue("launchAtLogin"));
}

} // namespace
} // namespace glyphmill
