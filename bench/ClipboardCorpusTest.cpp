// The clipboard benchmark figures mean something only if the inputs give every function real
// work: repeats for Remove Duplicates, lines each preset keeps and drops, untidy white space,
// and markup whose hidden parts stay hidden while its text comes through.
#include "ClipboardCorpus.h"

#include "clipboard/text/HtmlText.h"
#include "clipboard/text/LineTools.h"
#include "clipboard/text/RtfReader.h"
#include "common/Utf8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>

namespace glyphmill::bench {
namespace {

constexpr std::size_t sampleBytes = 300'000;

std::size_t lineCount(std::u16string_view text) {
    return lineTools::breakLines(text).lines.size();
}

TEST(ClipboardCorpus, EachGeneratorGivesTheSameBytesOfAboutTheAskedSize) {
    for (auto make : {makeLineList, makeHtmlPage, makeRtfDocument}) {
        const std::string text = make(sampleBytes);
        EXPECT_EQ(text, make(sampleBytes));
        EXPECT_GE(text.size(), sampleBytes);
        EXPECT_LT(text.size(), sampleBytes + sampleBytes / 10);
    }
}

TEST(ClipboardCorpus, LineListGivesEveryLineToolWork) {
    const std::string bytes = makeLineList(sampleBytes);
    const std::u16string text = utf8::decodeLossy(bytes);
    ASSERT_EQ(utf8::encode(text), bytes) << "not valid UTF-8";
    const double lines = double(lineCount(text));

    const double unique = double(lineCount(lineTools::uniqueLines(text)));
    EXPECT_GT(unique / lines, 0.6);
    EXPECT_LT(unique / lines, 0.9);
    EXPECT_NE(bytes.find("e\u0301"), std::string::npos) << "no decomposed accent";
    EXPECT_NE(bytes.find("\r\n"), std::string::npos);
    EXPECT_NE(bytes.find("\n\n"), std::string::npos);
    EXPECT_NE(bytes.find("\u00A0"), std::string::npos);
    EXPECT_LT(lineTools::fixedWhitespace(text).size(), text.size());

    for (lineTools::RegexPreset preset : lineTools::allRegexPresets) {
        if (auto pattern = lineTools::presetPattern(preset)) {
            const double kept = double(lineCount(lineTools::matchingLines(*pattern, text).lines));
            EXPECT_GT(kept / lines, 0.05) << utf8::encode(*pattern);
            EXPECT_LT(kept / lines, 0.99) << utf8::encode(*pattern);
        }
    }
}

TEST(ClipboardCorpus, HtmlPageShowsItsTextAndHidesItsScriptsStylesAndHiddenParts) {
    const std::string page = makeHtmlPage(sampleBytes);
    const std::string visible = utf8::encode(clipboard::htmlVisibleText(page).value_or(u""));
    EXPECT_GT(visible.size(), page.size() / 4);
    EXPECT_LT(visible.size(), page.size() * 3 / 4);
    for (std::string_view hidden : {"dataLayer", "track(", "font:", "&amp;", "&nbsp;", "<strong>"})
        EXPECT_EQ(visible.find(hidden), std::string::npos) << hidden;
    for (std::string_view shown : {"\u2022 ", "\t", "1. ", "if (count < limit && ", "\u2014", "\U0001F600"})
        EXPECT_NE(visible.find(shown), std::string::npos) << shown;
}

TEST(ClipboardCorpus, RtfDocumentShowsItsTextAndHidesTablesPicturesAndFieldInstructions) {
    const std::string document = makeRtfDocument(sampleBytes);
    ASSERT_TRUE(std::all_of(document.begin(), document.end(), [](char c) { return (c & 0x80) == 0; }));
    const std::string visible = utf8::encode(clipboard::rtfVisibleText(document).value_or(u""));
    EXPECT_GT(visible.size(), document.size() / 5);
    for (std::string_view hidden : {"Calibri", "HYPERLINK", "Riched20", "Quarterly report", "\\"})
        EXPECT_EQ(visible.find(hidden), std::string::npos) << hidden;
    EXPECT_FALSE(std::regex_search(visible, std::regex("[0-9a-f]{64}"))) << "picture data shows";
    for (std::string_view shown : {"東京", "\u2022\t", "\u201C", "\u2014", "caf\u00E9", "\U0001F600", "\t"})
        EXPECT_NE(visible.find(shown), std::string::npos) << shown;
}

} // namespace
} // namespace glyphmill::bench
