#include "ClipboardControllersFixture.h"

namespace glyphmill {
namespace {

using Command = void (LineToolCommands::*)();
using LineToolCommandTest = ClipboardControllersTest;

TEST_F(LineToolCommandTest, ToolsWithoutInputReplaceTheClipboardTextAndHtmlNeedsHtml) {
    using lineTools::LineTool;
    const std::vector<std::tuple<LineTool, std::u16string, std::u16string>> cases = {
        {LineTool::sort, u"b\r\na\r\n", u"a\r\nb\r\n"},
        {LineTool::removeDuplicates, u"x\ny\nx\nX", u"x\ny\nX"},
        {LineTool::removeEmpty, u"a\n \t\nb\n", u"a\nb\n"},
        {LineTool::bullet, u"a\n  \u2022 b", u"\u2022 a\n  \u2022 b"},
        {LineTool::fixWhitespace, u"  a\t\tb  \r\n\n\n\nc", u"a b\n\nc"},
        {LineTool::htmlToText, u"<p>one</p>\r\n<p>two</p>", u"one\ntwo"},
    };
    for (const auto &[tool, input, expected] : cases) {
        copy(input);
        lineTools.run(tool);
        EXPECT_EQ(plainText(), expected);
        EXPECT_EQ(history.savedText(), input);
        EXPECT_EQ(monitor.statistics(), TextStatistics::compute(expected));
    }
    EXPECT_TRUE(alerts().empty());

    copyAs("text/rtf", "{\\rtf1 <b>rich</b>}");
    refreshes = 0;
    const int writes = clipboard.writeCount();
    lineTools.htmlToPlainText();
    EXPECT_EQ(alerts(), std::vector<std::u16string>{u"Clipboard does not contain HTML."});
    EXPECT_EQ(refreshes, 0);
    EXPECT_EQ(clipboard.writeCount(), writes);
}

TEST_F(LineToolCommandTest, CancellingAnyPromptLeavesEverythingAsItWas) {
    copy(u"text");
    monitor.refresh();
    for (const auto &entry : lineTools::lineToolCatalogue)
        if (entry.question != lineTools::Question::none)
            lineTools.run(entry.tool);
    dialogs.answerChoice(3);
    lineTools.splitLines(); // "Custom…", then cancel the text prompt
    EXPECT_EQ(dialogs.shown().size(), 8u);
    EXPECT_EQ(clipboard.writeCount(), 0);
    EXPECT_FALSE(history.canRestore());
    EXPECT_TRUE(alerts().empty());
}

TEST_F(LineToolCommandTest, AnswersAreTrimmedAndValidatedBeforeTheClipboardIsRead) {
    const std::vector<std::tuple<Command, std::ptrdiff_t, std::u16string, std::u16string>> invalid = {
        {&LineToolCommands::splitLines, 3, u" \n ", u"Enter a delimiter."},
        {&LineToolCommands::linesMatchingRegex, 5, u"\t", u"Enter a regex pattern."},
        {&LineToolCommands::linesMatchingRegex, 5, u"(unclosed", u"Invalid regular expression."},
    };
    for (const auto &[command, choice, answer, message] : invalid) { // the clipboard is empty
        dialogs.answerChoice(choice);
        dialogs.answerText(answer);
        (lineTools.*command)();
        EXPECT_EQ(alerts().back(), message);
    }
    const std::vector<std::tuple<Command, std::ptrdiff_t, std::optional<std::u16string>, std::u16string>>
        valid = {
            {&LineToolCommands::numberLines, 1, std::nullopt, u"01. 12 x\n02. x 12 a-b"},
            {&LineToolCommands::joinLines, 2, std::nullopt, u"12 x, x 12 a-b"},
            {&LineToolCommands::splitLines, 3, u" - ", u"12 x\nx 12 a\nb"},
            {&LineToolCommands::linesMatchingRegex, 5, u"^\\d+ ", u"12 x"},
            {&LineToolCommands::linesMatchingRegex, 0, std::nullopt, u""}, // no e-mail address: emptied
        };
    for (const auto &[command, choice, answer, result] : valid) {
        copy(u"12 x\nx 12 a-b");
        dialogs.answerChoice(choice);
        if (answer)
            dialogs.answerText(*answer);
        (lineTools.*command)();
        EXPECT_EQ(plainText(), result);
    }
    EXPECT_EQ(alerts().size(), invalid.size());
}

TEST_F(LineToolCommandTest, ARunawayPatternIsStoppedAndChangesNothing) {
    const std::u16string text = u"aa\n" + std::u16string(40, u'a') + u"b";
    copy(text);
    dialogs.answerChoice(5);
    dialogs.answerText(u"(a+)+$");
    lineTools.linesMatchingRegex();
    EXPECT_EQ(alerts(), std::vector<std::u16string>{u"The pattern takes too long on this text."});
    EXPECT_EQ(plainText(), text);
    EXPECT_EQ(clipboard.writeCount(), 0);
    EXPECT_FALSE(history.canRestore());
}

TEST_F(LineToolCommandTest, ContainingAndFindReplaceAskTheMonitorBeforeAnyPrompt) {
    copy(u"xabcx\nno");
    lineTools.linesContaining();
    lineTools.findAndReplaceClipboard();
    EXPECT_EQ(dialogs.shown().size(), 2u);
    EXPECT_EQ(alerts(), std::vector<std::u16string>(2, missingText));
    EXPECT_EQ(refreshes, 0);

    monitor.refresh();
    dialogs.answerText(u"  ");
    lineTools.linesContaining();
    EXPECT_EQ(alerts().back(), u"Enter text to match.");
    dialogs.answerText(u" ABC\n");
    lineTools.linesContaining();
    EXPECT_EQ(plainText(), u"xabcx");
    const int writes = clipboard.writeCount();
    for (FindReplaceRequest request :
         {FindReplaceRequest{u"", u"never"}, FindReplaceRequest{u"X", u"-"},
          FindReplaceRequest{u"b", u" B ", true}, FindReplaceRequest{u" ", u"_", true}}) {
        dialogs.answerFindReplace(request);
        lineTools.findAndReplaceClipboard();
    }
    EXPECT_EQ(plainText(), u"-a_B_c-");
    EXPECT_EQ(clipboard.writeCount(), writes + 3 * 2); // the empty find wrote nothing
    EXPECT_EQ(alerts().size(), 3u);

    copy(u"   "); // the monitor has not seen this yet
    dialogs.answerText(u"t");
    lineTools.linesContaining();
    EXPECT_EQ(alerts().back(), missingText);
    EXPECT_FALSE(monitor.hasUsableText());
}

} // namespace
} // namespace glyphmill
