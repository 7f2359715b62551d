#include "GlyphmillProcess.h"

#include <gtest/gtest.h>

namespace glyphmill::testing {
namespace {

class TransformCommand : public ::testing::Test {
protected:
    // The output of a transform that is expected to succeed without a word on standard error.
    std::string transformed(std::vector<std::string> arguments, const std::string &input = {}) {
        arguments.insert(arguments.begin(), "transform");
        ProcessResult result = glyphmill.run(arguments, input);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
        return result.standardOutput;
    }

    GlyphmillProcess glyphmill;
};

TEST_F(TransformCommand, EveryKindIsNamedByItsNameOrItsTitle) {
    struct Case {
        std::string kind, input, expected;
    };
    const Case cases[] = {
        {"uppercase", "hello world", "HELLO WORLD"},
        {"UPPERCASE", "hello world", "HELLO WORLD"},
        {"lowercase", "HELLO World", "hello world"}, // the name and the title are the same
        {"capitalize-words", "hello world", "Hello World"},
        {"Capitalize Words", "jean-luc", "Jean-Luc"},
        {"title-case", "the cat and the hat", "The Cat and the Hat"},
        {"Title Case", "the cat and the hat", "The Cat and the Hat"},
        {"smart-case", "hello world. how are you?", "Hello world. How are you?"},
        {"Smart Case", "hello world. how are you?", "Hello world. How are you?"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.kind);
        EXPECT_EQ(transformed({c.kind, "--defaults", "--text", c.input}), c.expected);
    }
}

TEST_F(TransformCommand, ReadsTextFromArgumentStandardInputOrFileAndAddsNothing) {
    auto file = glyphmill.writeFile("notes.txt", "abc\r\nline two\n");
    glyphmill.writeFile("-dashed.txt", "dashed");
    glyphmill.writeFile("empty.txt", "");

    EXPECT_EQ(transformed({"uppercase", "--text", "hello\n"}), "HELLO\n");
    EXPECT_EQ(transformed({"uppercase"}, "no newline"), "NO NEWLINE");
    EXPECT_EQ(transformed({"uppercase", "-"}, "dash\n\n"), "DASH\n\n");
    EXPECT_EQ(transformed({"uppercase", file.string()}), "ABC\r\nLINE TWO\n");
    EXPECT_EQ(transformed({"uppercase", "--", "-dashed.txt"}), "DASHED");
    EXPECT_EQ(transformed({"uppercase", "empty.txt"}), "");
    EXPECT_EQ(transformed({"uppercase"}, ""), "");
    // A byte order mark is text like any other and comes back where it was.
    EXPECT_EQ(transformed({"uppercase", "--text", "\xEF\xBB\xBFhi"}), "\xEF\xBB\xBFHI");
}

TEST_F(TransformCommand, LargeInputsComeBackWhole) {
    std::string input, expected;
    // Over 4 MB, so that reading it from a file restarts the program on huge pages first.
    while (input.size() < (5u << 20)) {
        input += "the quick brown fox jumps over the lazy dog, \xC3\xA9t\xC3\xA9\n";
        expected += "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG, \xC3\x89T\xC3\x89\n";
    }
    auto file = glyphmill.writeFile("large.txt", input);
    EXPECT_EQ(transformed({"uppercase", "--no-terms"}, input), expected);
    EXPECT_EQ(transformed({"uppercase", "--no-terms", file.string()}), expected);

    // Output is encoded in blocks. After one leading letter every surrogate pair starts at an odd
    // position, so whatever the block size, some pair straddles a block boundary.
    std::string emoji;
    for (int k = 0; k < 200000; ++k)
        emoji += "\xF0\x9F\x98\x80";
    EXPECT_EQ(transformed({"uppercase", "--no-terms"}, "a" + emoji), "A" + emoji);
}

TEST_F(TransformCommand, ProtectedTextComesBackWhateverItsCountOrWhatTheTextHolds) {
    // More addresses than term numbers start from: none may come back as the term.
    std::string addresses = "iPhone ";
    for (int k = 0; k < 10001; ++k)
        addresses += "a@b.org ";
    EXPECT_EQ(transformed({"smart-case", "--defaults"}, addresses), addresses);

    // U+E000, digits and U+E001 in the text are the text's own.
    const std::string own = "\xEE\x80\x80"
                            "0"
                            "\xEE\x80\x81",
                      ownTerm = "\xEE\x80\x80"
                                "10000"
                                "\xEE\x80\x81";
    EXPECT_EQ(transformed({"lowercase", "--defaults", "--text", "KEEP " + own + " AND mail@example.com"}),
              "keep " + own + " and mail@example.com");
    EXPECT_EQ(transformed({"smart-case", "--defaults", "--text", "IPHONE " + ownTerm + " and " + own}),
              "iPhone " + ownTerm + " And " + own); // the term passes the sentence's capital on
}

TEST_F(TransformCommand, TermsComeFromTheUsersListUnlessTheCommandLineNamesThem) {
    auto lowercase = [&](std::vector<std::string> extra) {
        extra.insert(extra.begin(), {"lowercase", "--text", "NEW IPHONE FOR MACOS"});
        return transformed(extra);
    };
    EXPECT_EQ(lowercase({}), "new iPhone for macOS"); // no list saved yet: the built-in one

    ASSERT_EQ(glyphmill.run({"terms", "remove", "iphone"}).exitStatus, 0);
    EXPECT_EQ(lowercase({}), "new iphone for macOS");
    EXPECT_EQ(lowercase({"--default-terms"}), "new iPhone for macOS");
    EXPECT_EQ(lowercase({"--defaults"}), "new iPhone for macOS");
    EXPECT_EQ(lowercase({"--no-terms"}), "new iphone for macos");
    EXPECT_EQ(lowercase({"--term", "MacOS", "--term=IPhone"}), "new IPhone for MacOS");
    EXPECT_EQ(lowercase({"--defaults", "--no-terms"}), "new iphone for macos");
    EXPECT_EQ(lowercase({"--defaults", "--term", "iPhone"}), "new iPhone for macos");
}

TEST_F(TransformCommand, OptionsTurnSwitchesOffAndLaterOnesWin) {
    auto uppercase = [&](std::vector<std::string> extra) {
        extra.insert(extra.begin(), {"uppercase", "--text", "see https://example.com/Path now"});
        return transformed(extra);
    };
    EXPECT_EQ(uppercase({}), "SEE https://example.com/Path NOW");
    EXPECT_EQ(uppercase({"--option", "preserveURLs=false"}), "SEE HTTPS://EXAMPLE.COM/PATH NOW");
    EXPECT_EQ(uppercase({"--option=preserveURLs=false", "--option", "preserveURLs=true"}),
              "SEE https://example.com/Path NOW");
    EXPECT_EQ(uppercase({"--defaults", "--option", "preserveURLs=false"}),
              "SEE HTTPS://EXAMPLE.COM/PATH NOW");

    const std::string shouting = "THIS IS A TEST OF THE SYSTEM.";
    EXPECT_EQ(transformed({"smart-case", "--text", shouting}), "This Is a Test of the System.");
    EXPECT_EQ(transformed({"smart-case", "--option", "correctAllUppercaseProse=false", "--text", shouting}),
              "This IS A TEST OF THE SYSTEM.");
}

TEST_F(TransformCommand, SwitchesComeFromTheSettingsUnlessDefaultsAreAsked) {
    glyphmill.writeFile("config/glyphmill/preferences.json",
                        R"({"smartCase.preserveURLs": false, "smartCase.preserveEmails": "no"})");
    const std::string text = "see https://example.com/Path or me@Example.com";
    EXPECT_EQ(transformed({"uppercase", "--text", text}), "SEE HTTPS://EXAMPLE.COM/PATH OR me@Example.com");
    EXPECT_EQ(transformed({"uppercase", "--no-terms", "--text", text}),
              "SEE HTTPS://EXAMPLE.COM/PATH OR me@Example.com");
    EXPECT_EQ(transformed({"uppercase", "--option", "preserveURLs=true", "--text", text}),
              "SEE https://example.com/Path OR me@Example.com");
    EXPECT_EQ(transformed({"uppercase", "--defaults", "--text", text}),
              "SEE https://example.com/Path OR me@Example.com");
}

TEST_F(TransformCommand, DefaultsLeaveEvenACorruptPreferenceFileUntouched) {
    auto corrupt = glyphmill.writeFile("config/glyphmill/preferences.json", "{ not json");
    EXPECT_EQ(transformed({"uppercase", "--defaults", "--text", "abc"}), "ABC");
    EXPECT_TRUE(std::filesystem::exists(corrupt));
}

TEST_F(TransformCommand, InvalidUtf8IsRefusedWithItsOffsetAndNothingWritten) {
    std::string large(200000, 'a');
    large += "\xC3\x28 and more";
    auto largeFile = glyphmill.writeFile("large.txt", large);
    struct Case {
        std::vector<std::string> arguments;
        std::string input;
        std::size_t offset;
    };
    const Case cases[] = {
        {{"uppercase"}, "abc\xFF", 3},
        {{"uppercase"}, large, 200000},
        {{"uppercase", largeFile.string()}, "", 200000},
        {{"smart-case", "--text", "ok \xED\xA0\x80"}, "", 3}, // an encoded surrogate
        {{"lowercase", "--text", "\xC0\xAF"}, "", 0},         // an overlong form
    };
    for (const auto &c : cases) {
        std::vector<std::string> arguments{"transform"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        ProcessResult result = glyphmill.run(arguments, c.input);
        EXPECT_EQ(result.exitStatus, 65);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.standardError,
                  "glyphmill: input is not valid UTF-8 at byte " + std::to_string(c.offset) + "\n");
    }

    ProcessResult badTerm = glyphmill.run({"transform", "uppercase", "--term", "\xFF", "--text", "x"});
    EXPECT_EQ(badTerm.exitStatus, 65);
    EXPECT_EQ(badTerm.standardOutput, "");
    EXPECT_TRUE(badTerm.standardError.starts_with("glyphmill: "));
}

TEST_F(TransformCommand, UnreadableFileIsNamedWithTheReason) {
    auto missing = glyphmill.directory() / "missing.txt";
    ProcessResult result = glyphmill.run({"transform", "uppercase", missing.string()});
    EXPECT_EQ(result.exitStatus, 66);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError,
              "glyphmill: cannot read \"" + missing.string() + "\": No such file or directory\n");

    result = glyphmill.run({"transform", "uppercase", glyphmill.directory().string()});
    EXPECT_EQ(result.exitStatus, 66);
    EXPECT_EQ(result.standardError,
              "glyphmill: cannot read \"" + glyphmill.directory().string() + "\": Is a directory\n");
}

TEST_F(TransformCommand, OutputThatCannotBeWrittenIsReported) {
    ProcessResult result = glyphmill.run({"transform", "uppercase", "--defaults", "--text", "abc"}, "",
                                         OutputTarget::pipeWithReaderClosed);
    EXPECT_EQ(result.exitStatus, 74);
    EXPECT_EQ(result.standardError, "glyphmill: cannot write to standard output: Broken pipe\n");

    result = glyphmill.run({"transform", "uppercase", "--defaults", "--text", "abc"}, "",
                           OutputTarget::deviceFull);
    EXPECT_EQ(result.exitStatus, 74);
    EXPECT_EQ(result.standardError, "glyphmill: cannot write to standard output: No space left on device\n");
}

} // namespace
} // namespace glyphmill::testing
