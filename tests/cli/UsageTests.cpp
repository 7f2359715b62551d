#include "GlyphmillProcess.h"

#include <gtest/gtest.h>

namespace glyphmill::testing {
namespace {

class Usage : public ::testing::Test {
protected:
    GlyphmillProcess glyphmill;
};

TEST_F(Usage, MistakesGetOneLineAndStatus64) {
    const std::vector<std::vector<std::string>> mistakes = {
        {"frobnicate"},
        {"--frobnicate"},
        {"transform"},
        {"transform", "sideways"},
        {"transform", "smart case"}, // titles must match exactly
        {"transform", "uppercase", "--bogus"},
        {"transform", "uppercase", "-x"},
        {"transform", "uppercase", "--text"},
        {"transform", "uppercase", "--text", "a", "file.txt"},
        {"transform", "uppercase", "a.txt", "b.txt"},
        {"transform", "uppercase", "--text", "a", "--text", "b"},
        {"transform", "uppercase", "--no-terms=yes", "--text", "a"},
        {"transform", "uppercase", "--term", "x", "--no-terms", "--text", "a"},
        {"transform", "uppercase", "--option", "preserveURLs", "--text", "a"},
        {"transform", "uppercase", "--option", "preserveUrls=true", "--text", "a"},
        {"transform", "uppercase", "--option", "preserveURLs=yes", "--text", "a"},
        {"terms"},
        {"terms", "shuffle"},
        {"terms", "add"},
        {"terms", "remove", "a", "b"},
        {"terms", "list", "extra"},
        {"terms", "list", "--all"},
        // The application's commands are checked before the application is started.
        {"clipboard"},
        {"clipboard", "sideways"},
        {"clipboard", "uppercase", "twice"},
        {"palette", "now"},
        {"quit", "--force"},
        {"service"},
        {"service", "smart case"},
    };
    for (const auto &arguments : mistakes) {
        std::string line;
        for (const auto &argument : arguments)
            line += argument + " ";
        SCOPED_TRACE(line);
        ProcessResult result = glyphmill.run(arguments);
        EXPECT_EQ(result.exitStatus, 64);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_TRUE(result.standardError.starts_with("glyphmill: ")) << result.standardError;
        EXPECT_EQ(result.standardError.find('\n'), result.standardError.size() - 1) << result.standardError;
    }
    EXPECT_FALSE(std::filesystem::exists(glyphmill.configHome()));
}

TEST_F(Usage, HelpIsOnEveryLevelAndWinsOverMistakes) {
    const std::vector<std::vector<std::string>> requests = {
        {"--help"},
        {"-h"},
        {"transform", "--help"},
        {"transform", "sideways", "--bogus", "--help"},
        {"terms", "--help"},
        {"terms", "add", "--help"},
        {"terms", "remove", "-h"},
        {"terms", "list", "--help"},
        {"terms", "restore-defaults", "--help"},
        {"palette", "--help"},
        {"clipboard", "sideways", "--help"},
        {"service", "-h"},
    };
    for (const auto &arguments : requests) {
        SCOPED_TRACE(arguments.back());
        ProcessResult result = glyphmill.run(arguments);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
        EXPECT_TRUE(result.standardOutput.starts_with("Usage: glyphmill")) << result.standardOutput;
    }
    ProcessResult transformHelp = glyphmill.run({"transform", "--help"});
    EXPECT_NE(transformHelp.standardOutput.find("preserveHashtagsAndMentions"), std::string::npos);
    EXPECT_NE(transformHelp.standardOutput.find("\"Capitalize Words\""), std::string::npos);
    // Every clipboard kind the application takes is listed in the help.
    const std::string clipboardHelp = glyphmill.run({"clipboard", "--help"}).standardOutput;
    for (const char *kind : {"smart-case", "capitalize-words", "clear-formatting", "html-to-text",
                             "remove-duplicates", "fix-whitespace", "matching", "find-replace"})
        EXPECT_NE(clipboardHelp.find(kind), std::string::npos) << kind;

    // After "--" the word is a term, not a request for help.
    ASSERT_EQ(glyphmill.run({"terms", "add", "--", "--help"}).exitStatus, 0);
    EXPECT_TRUE(glyphmill.run({"terms", "list"}).standardOutput.ends_with("\n--help\n"));
}

TEST_F(Usage, VersionNamesTheBuild) {
    const std::string expected = "glyphmill " GLYPHMILL_VERSION " (build " GLYPHMILL_BUILD_NUMBER ")\n";
    for (const auto &arguments :
         std::vector<std::vector<std::string>>{{"--version"}, {"terms", "--version"}}) {
        ProcessResult result = glyphmill.run(arguments);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardOutput, expected);
        EXPECT_EQ(result.standardError, "");
    }
}

} // namespace
} // namespace glyphmill::testing
