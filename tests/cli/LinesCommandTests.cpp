#include "GlyphmillProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace glyphmill::testing {
namespace {

class LinesCommand : public ::testing::Test {
protected:
    // The output of a command that is expected to succeed without a word on standard error.
    std::string output(const std::vector<std::string> &arguments, const std::string &input = {}) {
        ProcessResult result = glyphmill.run(arguments, input);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
        return result.standardOutput;
    }

    GlyphmillProcess glyphmill;
};

TEST_F(LinesCommand, EveryToolReachesItsLineFunctionWithTheChosenOption) {
    struct Case {
        std::vector<std::string> arguments;
        std::string input, expected;
    };
    const Case cases[] = {
        {{"lines", "sort"}, "b\na\n", "a\nb\n"},
        {{"lines", "remove-duplicates"}, "b\na\nb", "b\na"},
        {{"lines", "remove-empty"}, "a\n\nb", "a\nb"},
        {{"lines", "number"}, "x\ny", "1. x\n2. y"},
        {{"lines", "number", "--style", "zero-padded"}, "x\ny", "01. x\n02. y"},
        {{"lines", "number", "--style=parenthesis"}, "x", "1) x"},
        {{"lines", "join"}, "x\ny", "x y"},
        {{"lines", "join", "--separator", "comma-space"}, "x\ny", "x, y"},
        {{"lines", "join", "--separator", "pipe"}, "x\ny", "x|y"},
        {{"lines", "split"}, "a,b", "a\nb"},
        {{"lines", "split", "--delimiter", "semicolon"}, "a;b", "a\nb"},
        {{"lines", "split", "--delimiter", " :: "}, "a::b", "a\nb"}, // custom, trimmed
        {{"lines", "matching", "--preset", "contains-digit"}, "a1\nb\n2", "a1\n2"},
        {{"lines", "matching", "--pattern", "^\\d+ "}, "12\nx3", "12"}, // trimmed to ^\d+
        {{"lines", "containing", " @ "}, "a@b\nc", "a@b"},
        {{"lines", "replace", "FOO", "bar"}, "foo Foo", "bar bar"},
        {{"lines", "replace", "--match-case", "FOO", "bar"}, "foo FOO", "foo bar"},
        {{"lines", "replace", "", "bar"}, "foo", "foo"},
        {{"stats"}, "a b\nc", "2 lines · 3 words · 5 characters\n"},
        {{"rtf-to-text"}, "{\\rtf1 Hello\\par World}", "Hello\nWorld"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.back());
        EXPECT_EQ(output(c.arguments, c.input), c.expected);
    }
}

TEST_F(LinesCommand, ReadsFileOrTextLikeTransform) {
    auto file = glyphmill.writeFile("list.txt", "b\r\na\r\n");
    EXPECT_EQ(output({"lines", "containing", "a", file.string()}), "a\r");
    EXPECT_EQ(output({"lines", "sort", "--text", "b\na"}), "a\nb");
    EXPECT_EQ(output({"stats", "-"}, ""), "1 lines · 0 words · 0 characters\n");
}

TEST_F(LinesCommand, HtmlComesOutWithLineFeedsOnly) {
    std::string text = output({"html-to-text"}, "<p>Hi\r\nthere</p><p>Next</p>");
    EXPECT_EQ(text.find('\r'), std::string::npos);
    EXPECT_NE(text.find("Next"), std::string::npos);
}

TEST_F(LinesCommand, RefusesBadArgumentsBeforeReadingInput) {
    struct Case {
        std::vector<std::string> arguments;
        int exitStatus;
        std::string message;
    };
    const Case cases[] = {
        {{"lines", "split", "--delimiter", "   "}, 65, "glyphmill: Enter a delimiter.\n"},
        {{"lines", "matching", "--pattern", "("}, 65, "glyphmill: Invalid regular expression.\n"},
        {{"lines", "matching", "--pattern", " \n"}, 65, "glyphmill: Enter a regex pattern.\n"},
        {{"lines", "containing", " "}, 65, "glyphmill: Enter text to match.\n"},
        {{"rtf-to-text"}, 65, ""},
        {{"html-to-text"}, 65, ""},
        {{"lines", "sort", "--text", "\xFF"}, 65, ""},
        {{"lines", "number", "--style", "roman"}, 64, ""},
        {{"lines", "sort", "--style", "period"}, 64, ""},
        {{"lines", "matching"}, 64, ""},
        {{"lines", "replace", "only-find"}, 64, ""},
        {{"lines", "shuffle"}, 64, ""},
        {{"stats", "missing.txt"}, 66, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.back());
        ProcessResult result = glyphmill.run(c.arguments);
        EXPECT_EQ(result.exitStatus, c.exitStatus);
        EXPECT_EQ(result.standardOutput, "");
        if (!c.message.empty())
            EXPECT_EQ(result.standardError, c.message);
        else
            EXPECT_EQ(std::count(result.standardError.begin(), result.standardError.end(), '\n'), 1);
    }
}

TEST_F(LinesCommand, ARunawayPatternIsRefusedWithoutOutput) {
    // The first line matches at once; the second would backtrack for hours.
    ProcessResult result =
        glyphmill.run({"lines", "matching", "--pattern", "(a+)+$"}, "aa\n" + std::string(40, 'a') + "b\n");
    EXPECT_EQ(result.exitStatus, 65);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "glyphmill: The pattern takes too long on this text.\n");
}

TEST_F(LinesCommand, SortsUnderLocaleNamesIcuCannotRead) {
    // The child takes this process's environment; the test's own LC_ALL would hide LANG.
    const char *savedAll = std::getenv("LC_ALL");
    const std::string saved = savedAll ? savedAll : "";
    ::unsetenv("LC_ALL");
    for (const char *lang : {"aaaaaaaaaaaa", "x", "de_DE@", "C", "POSIX"}) {
        ::setenv("LANG", lang, 1);
        EXPECT_EQ(output({"lines", "sort"}, "b\nitem 10\na\nitem 9\n"), "a\nb\nitem 9\nitem 10\n") << lang;
    }
    ::unsetenv("LANG");
    if (savedAll)
        ::setenv("LC_ALL", saved.c_str(), 1);
}

TEST_F(LinesCommand, HelpAtEveryLevelWinsOverMistakes) {
    EXPECT_TRUE(output({"lines", "--help"}).starts_with("Usage: glyphmill lines TOOL"));
    EXPECT_TRUE(output({"lines", "number", "--style", "roman", "--help"})
                    .starts_with("Usage: glyphmill lines number"));
    EXPECT_TRUE(output({"lines", "replace", "-h"}).starts_with("Usage: glyphmill lines replace"));
    for (std::string command : {"html-to-text", "rtf-to-text", "stats"})
        EXPECT_TRUE(output({command, "--help"}).starts_with("Usage: glyphmill " + command));
}

// Long texts are numbered a piece at a time: the numbers run on across the pieces, and a line
// longer than a piece, blank lines and characters outside the BMP stay whole.
TEST_F(LinesCommand, NumberingALongTextGivesWhatNumberingItWholeGives) {
    std::string input, expected;
    const std::string longLine(1'300'000, 'w');
    for (int index = 1; index <= 400'000; ++index) {
        std::string line = index % 7 == 0 ? "  " : index % 5 == 0 ? " \xF0\x9F\x98\x80 x" : "line";
        if (index == 150'000)
            line = longLine;
        input += line + "\n";
        const bool blank = line.find_first_not_of(' ') == std::string::npos;
        expected +=
            (blank ? line : std::to_string(index) + ". " + line.substr(line.find_first_not_of(' '))) + "\n";
    }
    input += "last";
    expected += "400001. last";
    // Compared by hand: a failure message of two 3 MB strings would take gigabytes to make.
    const std::string numbered = output({"lines", "number"}, input);
    const auto [mismatch, unused] =
        std::mismatch(numbered.begin(), numbered.end(), expected.begin(), expected.end());
    const auto at = std::size_t(mismatch - numbered.begin());
    EXPECT_TRUE(numbered == expected)
        << "sizes " << numbered.size() << " and " << expected.size() << ", first difference at byte " << at
        << ": \"" << numbered.substr(at, 40) << "\" instead of \"" << expected.substr(at, 40) << '"';
}

} // namespace
} // namespace glyphmill::testing
