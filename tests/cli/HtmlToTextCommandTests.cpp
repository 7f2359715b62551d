#include "GlyphmillProcess.h"
#include "support/RepeatedText.h"

#include <gtest/gtest.h>

#include <string>

namespace glyphmill::testing {
namespace {

class HtmlToTextCommand : public ::testing::Test {
protected:
    ProcessResult convert(const std::string &html) const {
        return glyphmill.run({"html-to-text", glyphmill.writeFile("page.html", html).string()});
    }

    GlyphmillProcess glyphmill;
};

TEST_F(HtmlToTextCommand, ReadsDeeplyNestedMarkupToTheEnd) {
    // As mail clients paste it: hundreds of spans never closed, and text after them.
    const ProcessResult few = convert("<p>Dear all," + repeated("<span style=\"font-size:11pt\">", 400) +
                                      "the figures are attached.</p><p>Regards</p>");
    EXPECT_EQ(few.exitStatus, 0);
    EXPECT_EQ(few.standardError, "");
    EXPECT_EQ(few.standardOutput, "Dear all,the figures are attached.\nRegards");

    const ProcessResult many =
        convert(repeated("<div><span>", 100000) + "bottom" + repeated("</b>", 1000) + " line");
    EXPECT_EQ(many.exitStatus, 0);
    EXPECT_EQ(many.standardError, "");
    EXPECT_EQ(many.standardOutput, "bottom line");
}

TEST_F(HtmlToTextCommand, TagsWithThousandsOfAttributesGiveTheirText) {
    std::string attributes;
    for (int i = 0; i < 40000; ++i)
        attributes += " data-k" + std::to_string(i) + "=\"" + std::to_string(i) + "\"";
    const ProcessResult result = convert("<ul" + attributes + "><li" + attributes + ">one<li hidden" +
                                         attributes + ">two<li>three</ul>");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_EQ(result.standardOutput, "• one\n• three");
}

TEST_F(HtmlToTextCommand, KeepsATextNodeOfMoreThanTenMillionBytes) {
    const ProcessResult result = convert("<pre>" + std::string(10'500'000, 'x') + "\nend</pre>");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardOutput.size(), 10'500'004u);
    EXPECT_TRUE(result.standardOutput.ends_with("x\nend"));
}

} // namespace
} // namespace glyphmill::testing
