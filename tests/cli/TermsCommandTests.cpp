#include "GlyphmillProcess.h"

#include "platform/JsonFilePreferenceStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>

namespace glyphmill::testing {
namespace {

const std::string builtInListing =
    "LLC\nInc.\nUSA\nUS\nU.S.\nNY\nNJ\nMA\nAPI\nPDF\nQR\nURL\nHTML\nCSS\nJavaScript\n"
    "SwiftUI\niPhone\niPad\nmacOS\niOS\nApp Store\nChatGPT\nOpenAI\n";

class TermsCommand : public ::testing::Test {
protected:
    void runQuietly(const std::vector<std::string> &arguments) {
        ProcessResult result = glyphmill.run(arguments);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.standardError, "");
    }

    std::string listing() {
        ProcessResult result = glyphmill.run({"terms", "list"});
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
        return result.standardOutput;
    }

    GlyphmillProcess glyphmill;
};

TEST_F(TermsCommand, ListingTheBuiltInTermsWritesNothing) {
    EXPECT_EQ(listing(), builtInListing);
    EXPECT_FALSE(std::filesystem::exists(glyphmill.configHome()));
}

TEST_F(TermsCommand, ChangesPersistAcrossInvocations) {
    runQuietly({"terms", "add", "  Kubernetes\n"});
    runQuietly({"terms", "add", "KUBERNETES"}); // present in another case: the list keeps its form
    runQuietly({"terms", "add",
                "Stra\xC3\x9F"
                "e"});
    runQuietly({"terms", "add", "--", "--verbose"});
    EXPECT_EQ(listing(), builtInListing + "Kubernetes\nStra\xC3\x9F"
                                          "e\n--verbose\n");

    runQuietly({"terms", "remove", "us"}); // only the whole term, not USA or U.S.
    std::string expected = builtInListing;
    expected.erase(expected.find("\nUS\n"), 3);
    EXPECT_EQ(listing(), expected + "Kubernetes\nStra\xC3\x9F"
                                    "e\n--verbose\n");

    runQuietly({"terms", "restore-defaults"});
    EXPECT_EQ(listing(), builtInListing);
}

TEST_F(TermsCommand, InvalidUtf8TermIsRefusedBeforeAnythingIsWritten) {
    ProcessResult result = glyphmill.run({"terms", "add", "ab\xE2\x82"});
    EXPECT_EQ(result.exitStatus, 65);
    EXPECT_EQ(result.standardError, "glyphmill: the term is not valid UTF-8 at byte 2\n");
    EXPECT_FALSE(std::filesystem::exists(glyphmill.configHome()));
}

TEST_F(TermsCommand, CorruptPreferenceFileIsSetAsideWithAWarning) {
    glyphmill.writeFile("config/glyphmill/preferences.json", "{ \"protectedTerms\": [");
    ProcessResult result = glyphmill.run({"terms", "list"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardOutput, builtInListing);

    // The warning is one line and names the file the broken preferences were moved to.
    ASSERT_TRUE(result.standardError.starts_with("glyphmill: warning: "));
    EXPECT_EQ(result.standardError.find('\n'), result.standardError.size() - 1);
    std::vector<std::filesystem::path> setAside;
    for (const auto &entry : std::filesystem::directory_iterator(glyphmill.configHome() / "glyphmill"))
        if (entry.path().filename().string().find(".corrupt") != std::string::npos)
            setAside.push_back(entry.path());
    ASSERT_EQ(setAside.size(), 1u);
    EXPECT_NE(result.standardError.find(setAside[0].string()), std::string::npos);

    // The next run finds nothing wrong.
    EXPECT_EQ(listing(), builtInListing);
}

TEST_F(TermsCommand, PreferencesThatCannotBeSavedAreReported) {
    // A file where the preference folder should be cannot be written into, even by root.
    glyphmill.writeFile("config/glyphmill", "in the way");
    ProcessResult result = glyphmill.run({"terms", "add", "Kubernetes"});
    EXPECT_EQ(result.exitStatus, 73);
    EXPECT_TRUE(result.standardError.ends_with("\n"));
    EXPECT_NE(result.standardError.rfind("glyphmill: cannot save the protected terms"), std::string::npos);
}

TEST_F(TermsCommand, PreferenceFileThatCannotBeReadIsReportedAndLeftAsItIs) {
    // A folder in the file's place cannot be read, not even by root.
    std::filesystem::create_directories(glyphmill.preferenceFile() / "inside");
    const std::string message = "glyphmill: cannot read the preference file \"" +
                                glyphmill.preferenceFile().string() + "\": Is a directory\n";
    const std::vector<std::string> commands[] = {
        {"terms", "list"},
        {"terms", "add", "Kubernetes"},
        {"terms", "restore-defaults"},
        // The switches come from the file too, whatever the terms.
        {"transform", "uppercase", "--text", "abc"},
        {"transform", "uppercase", "--no-terms", "--text", "abc"},
    };
    for (const auto &command : commands) {
        SCOPED_TRACE(command[1]);
        ProcessResult result = glyphmill.run(command);
        EXPECT_EQ(result.exitStatus, 73);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.standardError, message);
    }
    EXPECT_TRUE(std::filesystem::is_directory(glyphmill.preferenceFile() / "inside"));

    ProcessResult defaults = glyphmill.run({"transform", "uppercase", "--defaults", "--text", "abc"});
    EXPECT_EQ(defaults.exitStatus, 0);
    EXPECT_EQ(defaults.standardOutput, "ABC");
}

TEST_F(TermsCommand, TemporaryLeftByAKilledWriterIsClearedByTheNextChange) {
    glyphmill.writeFile("config/glyphmill/preferences.json.tmp-k1LLed", "{\"protectedTerms\": [\"ha");
    runQuietly({"terms", "add", "Kubernetes"});
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(glyphmill.configHome() / "glyphmill"))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"preferences.json", "preferences.json.lock"}));
    EXPECT_EQ(listing(), builtInListing + "Kubernetes\n");
}

// Runs every command at once, each in its own process, and waits for them all.
std::vector<ProcessResult> runTogether(const GlyphmillProcess &glyphmill,
                                       const std::vector<std::vector<std::string>> &commands) {
    std::vector<ProcessResult> results(commands.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < commands.size(); ++i)
        threads.emplace_back([&, i] { results[i] = glyphmill.run(commands[i]); });
    for (auto &thread : threads)
        thread.join();
    return results;
}

std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

TEST_F(TermsCommand, FiftyConcurrentAddsKeepEveryTerm) {
    std::vector<std::vector<std::string>> commands;
    for (int i = 0; i < 50; ++i)
        commands.push_back({"terms", "add", "Term" + std::to_string(i)});
    for (const ProcessResult &result : runTogether(glyphmill, commands)) {
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
    }
    const auto listed = lines(listing());
    ASSERT_EQ(listed.size(), 23u + 50u);
    for (int i = 0; i < 50; ++i)
        EXPECT_NE(std::find(listed.begin(), listed.end(), "Term" + std::to_string(i)), listed.end()) << i;
}

TEST_F(TermsCommand, ConcurrentAddsRemovesAndOtherWritersLoseNothing) {
    for (int i = 0; i < 10; ++i)
        runQuietly({"terms", "add", "Old" + std::to_string(i)});
    std::vector<std::vector<std::string>> commands;
    for (int i = 0; i < 10; ++i) {
        commands.push_back({"terms", "add", "New" + std::to_string(i)});
        commands.push_back({"terms", "remove", "old" + std::to_string(i)});
    }
    // Meanwhile another program sets its own keys in the same file, as the tray does for its settings.
    std::atomic<bool> otherWriterFailed = false;
    std::thread otherWriter([&] {
        JsonFilePreferenceStore settings(glyphmill.preferenceFile());
        for (int i = 0; i < 40; ++i)
            if (!settings.setValue("setting" + std::to_string(i), i % 2 == 0))
                otherWriterFailed = true;
    });
    for (const ProcessResult &result : runTogether(glyphmill, commands))
        EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    otherWriter.join();
    EXPECT_FALSE(otherWriterFailed);

    std::string expected = builtInListing;
    std::vector<std::string> added;
    for (const auto &term : lines(listing()))
        if (expected.find(term + "\n") == std::string::npos)
            added.push_back(term);
    std::sort(added.begin(), added.end());
    EXPECT_EQ(added, (std::vector<std::string>{"New0", "New1", "New2", "New3", "New4", "New5", "New6", "New7",
                                               "New8", "New9"}));
    JsonFilePreferenceStore result(glyphmill.preferenceFile());
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(result.boolValue("setting" + std::to_string(i)), i % 2 == 0) << i;
}

} // namespace
} // namespace glyphmill::testing
