#include "GlyphmillProcess.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace glyphmill::testing
