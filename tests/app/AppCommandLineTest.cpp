#include "cli/AppCommandLine.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace glyphmill::appCommands {
namespace {

Parsed parseWords(std::vector<const char *> words) {
    return parse(words);
}

TEST(AppCommandLine, ReadsEveryCommandAndItsKind) {
    EXPECT_EQ(parseWords({}).request->command, Command::launch);
    EXPECT_EQ(parseWords({"paste-plain"}).request->command, Command::pastePlain);
    EXPECT_EQ(parseWords({"quit"}).request->command, Command::quit);

    Parsed clipboard = parseWords({"clipboard", "--", "remove-duplicates"});
    ASSERT_TRUE(clipboard.request);
    EXPECT_EQ(clipboard.request->command, Command::clipboard);
    EXPECT_EQ(clipboard.request->clipboardAction,
              (ClipboardAction{.edit = ClipboardEdit::lineTool,
                               .lineTool = lineTools::LineTool::removeDuplicates}));

    // A kind may be named as in `glyphmill transform`, by name or by title.
    EXPECT_EQ(parseWords({"service", "title-case"}).request->serviceKind, TextTransformKind::titleCase);
    EXPECT_EQ(parseWords({"service", "Capitalize Words"}).request->serviceKind,
              TextTransformKind::capitalizeWords);

    std::set<std::string_view> seen;
    for (std::string_view name : clipboardActionNames()) {
        EXPECT_TRUE(seen.insert(name).second) << name << " names two commands";
        EXPECT_EQ(clipboardActionName(*clipboardActionNamed(name)), name);
    }
}

TEST(AppCommandLine, MistakesAreOneLineAndHelpWinsOverThem) {
    for (const auto &words : std::vector<std::vector<const char *>>{{"clipboard"},
                                                                    {"clipboard", "sideways"},
                                                                    {"palette", "extra"},
                                                                    {"service", "smart case"},
                                                                    {"restore", "--force"},
                                                                    {"frobnicate"}}) {
        Parsed parsed = parseWords(words);
        EXPECT_FALSE(parsed.request);
        EXPECT_FALSE(parsed.mistake.empty());
        EXPECT_EQ(parsed.mistake.find('\n'), std::string::npos);
    }
    Parsed help = parseWords({"clipboard", "sideways", "--help"});
    EXPECT_TRUE(help.wantsHelp);
    EXPECT_FALSE(help.request);
}

} // namespace
} // namespace glyphmill::appCommands
