#include "clipboard/text/HtmlText.h"
#include "support/RepeatedText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace glyphmill::clipboard {
namespace {

// Shaped like a browser's text/html for a selection across a heading, a paragraph, lists and a table.
constexpr std::string_view browserFragment =
    "<meta charset='utf-8'><html><head><title>Caf\xC3\xA9 site</title><style>p { margin: 0 }</style></head>"
    "<body>\n<!--StartFragment--><h2 style=\"color: rgb(32, 33, 36); font-family: Roboto, sans-serif;\">"
    "Caf&eacute; &amp; Bar</h2>\n<p style=\"margin: 0px;\"><span style=\"font-weight: 700;\">Open</span>\n"
    "   daily&nbsp;from 9&#8212;5.<br>Closed on<br>\n holidays. </p>"
    "<ul><li>Tea</li>\n  <li><a "
    "href=\"https://example.org/coffee\">Coffee</a><ul><li>Espresso</li></ul></li></ul>"
    "<ol start=\"3\"><li><p>Third</p></li><li>Fourth</li></ol>"
    "<table style=\"border-collapse: collapse;\"><tbody><tr><th>Item</th><th>Price</th></tr>\n"
    "<tr><td><p>Scone</p></td><td>\xE2\x82\xAC"
    "3</td></tr><tr><td></td><td>free</td></tr></tbody></table>"
    "<script>document.write('<p>not shown</p>');</script><div hidden>hidden</div>"
    "<span style=\"DISPLAY : None\">none</span><p>Done  <!-- a comment -->  <i>now</i>.</p>"
    "<!--EndFragment-->\n</body>\n</html>";

TEST(HtmlTextTest, BrowserFragmentGivesItsVisibleText) {
    EXPECT_EQ(htmlVisibleText(browserFragment), u"Café & Bar\n"
                                                u"Open daily\u00A0from 9—5.\n"
                                                u"Closed on\n"
                                                u"holidays.\n"
                                                u"• Tea\n"
                                                u"• Coffee\n"
                                                u"\t• Espresso\n"
                                                u"3. Third\n"
                                                u"4. Fourth\n"
                                                u"Item\tPrice\n"
                                                u"Scone\t€3\n"
                                                u"\tfree\n"
                                                u"Done now.");
}

TEST(HtmlTextTest, LayoutRules) {
    struct Case {
        std::string_view html;
        std::u16string_view text;
    };
    const Case cases[] = {
        {"<b>word</b>", u"word"},
        {"  a  <b> b </b>  c  ", u"a b c"},
        {"<p>one</p>\n\n<p>two</p><div><div><p>three</p></div></div>", u"one\ntwo\nthree"},
        {"a<br>b<br><br>c<br><br>", u"a\nb\n\nc"},
        {"<p>a</p><br>b", u"a\n\nb"},
        {"<p>x</p><hr><p>y</p>", u"x\ny"},
        {"<pre>\n  two  spaces\n\tand tab\n</pre>after", u"  two  spaces\n\tand tab\nafter"},
        {"<pre>a\r\nb\rc</pre>", u"a\nb\nc"},
        {"<div>in <pre>x  y</pre> out</div>", u"in\nx  y\nout"},
        {"<title>Tab title</title><p>body</p>", u"body"},
        {"<noscript>enable scripts</noscript><template><p>t</p></template>x<style>.a{}</style>", u"x"},
        {"<svg><text>icon</text></svg>label", u"label"},
        {"<li>loose item</li>", u"• loose item"},
        {"<ol><li>a<li>b</ol><ul><li></ul>", u"1. a\n2. b\n• "},
        {"<ol start=\"junk\"><li>a</ol>", u"1. a"},
        {"<table><tr><td>a<td>b</table>", u"a\tb"},
        {"&lt;tag&gt; &quot;q&quot; &#x1F600; &copy;", u"<tag> \"q\" 😀 ©"},
        {"<p>   </p>", u""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(htmlVisibleText(c.html), std::u16string(c.text)) << c.html;
}

TEST(HtmlTextTest, Encodings) {
    EXPECT_EQ(htmlVisibleText("<meta charset=\"windows-1251\"><p>\xCF\xF0\xE8</p>"), u"При");
    EXPECT_EQ(
        htmlVisibleText("<meta http-equiv=\"Content-Type\" content=\"text/html; charset=ISO-8859-2\">\xB1"),
        u"ą");
    // Some browsers put UTF-16 with a byte-order mark on the clipboard.
    const std::string utf16 = std::string("\xFF\xFE<\0b\0>\0\xE9\0<\0/\0b\0>\0", 18);
    EXPECT_EQ(htmlVisibleText(utf16), u"é");
    EXPECT_EQ(htmlVisibleText("Version:0.9\r\nStartHTML:0000000105\r\nEndHTML:0000000150\r\n<p>x</p>"), u"x");
}

TEST(HtmlTextTest, EmptyInputGivesNone) {
    EXPECT_EQ(htmlVisibleText(""), std::nullopt);
    EXPECT_EQ(htmlVisibleText(" \n "), u"");
}

TEST(HtmlTextTest, DeepNestingAndUnclosedElements) {
    EXPECT_EQ(htmlVisibleText(repeated("<div><span>", 100) + "x"), u"x");
    // Pasted mail leaves hundreds of spans open; all that lies deeper is read.
    EXPECT_EQ(htmlVisibleText("<p>a" + repeated("<span>", 400) + "b<div>c</div>d"), u"ab\nc\nd");
    EXPECT_EQ(htmlVisibleText(repeated("<span>", 100000) + "deep" + repeated("</span>", 100000) + " end"),
              u"deep end");
    EXPECT_EQ(htmlVisibleText(repeated("<div><b>", 50000) + "x<p>y"), u"x\ny");
    // End tags of elements that are not open, inside a deep document (libxml2 looks for each).
    EXPECT_EQ(htmlVisibleText("<b>a</b>" + repeated("<span>", 20000) + repeated("</b>x", 20000)),
              u"a" + std::u16string(20000, u'x'));
    EXPECT_EQ(htmlVisibleText(repeated("<span>", 20000) + "<script>" + repeated("</scriptx>y</a>", 5000) +
                              "</script>" + repeated("<body>z", 3)),
              u"zzz");
    EXPECT_EQ(htmlVisibleText("<p>a<table><tr><td>b"), u"a\nb");
}

TEST(HtmlTextTest, TextNodesPastTenMillionBytesAreKeptWhole) {
    const std::string text(12'000'000, 'a');
    const auto visible = htmlVisibleText("<p>" + text + "b</p><p>after</p>");
    ASSERT_TRUE(visible);
    EXPECT_EQ(visible->size(), text.size() + 7);
    EXPECT_TRUE(visible->ends_with(u"ab\nafter"));
}

TEST(HtmlTextTest, ManyAttributesLeaveTheTextAsItWas) {
    std::string attributes;
    for (int i = 0; i < 40000; ++i)
        attributes += " data-a" + std::to_string(i) + "=\"v " + std::to_string(i) + "\"";
    const std::string page = "<div" + attributes + ">shown</div><span" + attributes +
                             " hidden>not shown</span>" + "<span style=\"color: red\"" + attributes +
                             " style=\"display: none\">first style</span>" + "<ol" + attributes +
                             " START=\"7\"><li>seventh</ol><p" + attributes + ">last";
    EXPECT_EQ(htmlVisibleText(page), u"shown\nfirst style\n7. seventh\nlast");
    // Declared and detected encodings are read as before.
    EXPECT_EQ(htmlVisibleText("<meta charset=\"windows-1251\"><p" + attributes + ">\xCF\xF0\xE8</p>"),
              u"При");
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("<p" + attributes.substr(0, 20000) + ">")) {
        utf16 += c;
        utf16 += '\0';
    }
    utf16 += std::string("\xE9\0", 2);
    EXPECT_EQ(htmlVisibleText(utf16), u"é");
}

TEST(HtmlTextTest, ManyDistinctNamesDoNotStopTheParser) {
    // libxml2 keeps every name it meets in a dictionary that would refuse new ones after about
    // 22 MB, and then loop forever at the next tag whose name no longer fits.
    std::string page;
    page.reserve(26'000'000);
    char name[128];
    for (int i = 0; page.size() < 25'000'000; ++i) {
        std::snprintf(name, sizeof name, "&n%097d ", i);
        page += name;
    }
    page += "<z" + std::string(99, '0') + ">end";
    const auto visible = htmlVisibleText(page);
    ASSERT_TRUE(visible);
    EXPECT_TRUE(visible->ends_with(u" end"));
}

} // namespace
} // namespace glyphmill::clipboard
