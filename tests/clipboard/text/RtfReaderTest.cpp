#include "clipboard/text/RtfReader.h"

#include <gtest/gtest.h>

#include <string>

namespace glyphmill::clipboard {
namespace {

// Shaped like what a word processor puts on the clipboard for a heading, a paragraph, a bulleted
// item, a picture, a link and a two-row table.
constexpr std::string_view wordProcessorDocument =
    R"({\rtf1\ansi\ansicpg1252\deff0\uc1
{\fonttbl{\f0\froman\fprq2\fcharset0 Liberation Serif{\*\falt Times New Roman};}{\f1\fnil\fcharset2 Symbol;}
{\f2\fswiss\fprq2\fcharset204 PT Sans;}}
{\colortbl;\red0\green0\blue0;\red31\green73\blue125;}
{\stylesheet{\s0\snext0\loch\f0\fs24\lang2057 Normal;}{\s1\sbasedon0\snext0\b\fs36 Heading 1;}
{\*\cs15 Hyperlink;}}
{\*\generator Writerly 3.2;}
{\info{\title Opening hours}{\author Ana Ruiz}{\creatim\yr2024\mo3\dy5\hr10\min2}}
{\*\listtable{\list\listtemplateid1{\listlevel\levelnfc23{\leveltext\'01\'b7;}{\levelnumbers;}}\listid1}}
\deftab709\paperh16838\paperw11906\margl1134\sectd\sbknone
{\*\ftnsep\chftnsep}\pard\plain \s1\sb240\sa120\b\fs36{\loch Caf\'e9 menu}
\par \pard\plain \s0\fs24 Prices rose 5\u8212\'97and that\rquote s fine {\v (internal note)}today.
\par \pard\plain {\listtext\pard\plain \f1 \'b7\tab}\ls1 Fresh \ldblquote scones\rdblquote\~daily
\par \pard\plain {\*\shppict{\pict\pngblip\picw12\pich12 89504e470d0a1a0a0000000d49484452}}{\nonshppict{\pict\wmetafile8\bin5 {}\{x}}See {\field{\*\fldinst HYPERLINK "https://example.org/"}{\fldrslt {\cs15\ul example.org}}} or {\f2 \'cf\'f0\'e8\'e2\'e5\'f2}.
\par \trowd\trgaph108\trleft0\cellx3000\cellx6000\pard\plain\intbl Item\cell Price\cell\row
\trowd\trgaph108\trleft0\cellx3000\cellx6000\pard\plain\intbl Scone\cell \u8364\'80 3\cell\row
\pard\plain Thanks\line \u-10179\'3f\u-8694\'3f
\par }
)";

TEST(RtfReaderTest, WordProcessorDocumentGivesItsVisibleText) {
    EXPECT_EQ(rtfVisibleText(wordProcessorDocument), u"Café menu\n"
                                                     u"Prices rose 5—and that’s fine today.\n"
                                                     u"•\tFresh “scones”\u00A0daily\n"
                                                     u"See example.org or Привет.\n"
                                                     u"Item\tPrice\n"
                                                     u"Scone\t€ 3\n"
                                                     u"Thanks\n"
                                                     u"\U0001F60A");
}

TEST(RtfReaderTest, InputThatIsNotRtfGivesNone) {
    for (std::string_view input : {"", "plain words", "{\\rt", "{rtf1 x}", "\\rtf1 x", "x{\\rtf1 y}"})
        EXPECT_EQ(rtfVisibleText(input), std::nullopt) << input;
    EXPECT_EQ(rtfVisibleText(" \r\n\t{\\rtf1 text}"), u"text");
}

TEST(RtfReaderTest, ControlWordsAndSymbols) {
    struct Case {
        std::string_view body;
        std::u16string_view text;
    };
    const Case cases[] = {
        {R"(a\tab b)", u"a\tb"},
        {R"(a\par\par b)", u"a\n\nb"},
        {"a\\\nb", u"a\nb"}, // a backslash before a source line end is a paragraph mark
        {"a\r\nb c", u"ab c"},
        {R"(\emdash\endash\bullet\lquote\rquote\ldblquote\rdblquote)", u"—–•‘’“”"},
        {R"(\{\}\\ a\~b\-c\_d)", u"{}\\ a\u00A0bc\u2011d"},
        {R"(x\unknownword y\unknownword5 z)", u"xyz"},
        {R"(\b bold\b0  plain)", u"bold plain"}, // the delimiter space is not text, the next one is
        {R"(a{\*\bkmkstart m}b{\*\anything {nested} text}c)", u"abc"},
        {R"(a{\v hidden{\v0 shown}}b\v c\plain d)", u"ashownbd"},
        {R"(x\page y\par\page z)", u"x\ny\nz"},
        {R"(a\cell\cell c\cell\row next)", u"a\t\tc\nnext"},
        {R"(x\bin3 {\}y)", u"xy"},
        {R"(a\bin999)", u"a"},
    };
    for (const Case &c : cases) {
        const std::string document = "{\\rtf1\\ansi " + std::string(c.body) + "}";
        EXPECT_EQ(rtfVisibleText(document), std::u16string(c.text)) << c.body;
    }
}

TEST(RtfReaderTest, UnicodeAndItsFallbackCharacters) {
    struct Case {
        std::string_view body;
        std::u16string_view text;
    };
    const Case cases[] = {
        {R"(\u233?x)", u"éx"},
        {R"(\u233\'e9x)", u"éx"},         // a \'hh counts as one character
        {R"(\uc2\u233\'c3\'a9x)", u"éx"}, // two fallback bytes
        {R"(\uc0\u233 x)", u"éx"},
        {R"(\uc3\u233 ab)", u"é"}, // the skip ends early only at a group edge
        {R"({\uc3\u233}ab)", u"éab"},
        {R"(\u233\tab x)", u"éx"},  // a control word is one fallback character too
        {R"(\u-4064?)", u"\uF020"}, // signed 16-bit values
        {R"(\u70000?)", u""},       // outside 16 bits: dropped
        {R"({\uc1 a}\u233?b)", u"aéb"},
    };
    for (const Case &c : cases) {
        const std::string document = "{\\rtf1\\ansi " + std::string(c.body) + "}";
        EXPECT_EQ(rtfVisibleText(document), std::u16string(c.text)) << c.body;
    }
}

TEST(RtfReaderTest, CodePagesFromTheDocumentAndTheFonts) {
    struct Case {
        std::string_view document;
        std::u16string_view text;
    };
    const Case cases[] = {
        {R"({\rtf1\ansi \'e9\'80\'93})", u"é€“"},
        {R"({\rtf1\ansi\ansicpg1251 \'cf\'f0\'e8})", u"При"},
        {R"({\rtf1\mac \'8e})", u"é"},
        {R"({\rtf1\pc \'82})", u"é"},
        {R"({\rtf1\ansi\ansicpg932 \'93\'fa\'96\'7b})", u"日本"},
        {R"({\rtf1\ansi\ansicpg932\uc2 \u26085\'93\'fa\'96\'7b})", u"日本"},
        {R"({\rtf1\ansi\deff1{\fonttbl{\f0 Arial;}{\f1\fcharset238 Arial CE;}}\'b9{\f0 \'b9}})", u"ą¹"},
        {R"({\rtf1\ansi{\fonttbl{\f3\fcharset128 MS Mincho;}}{\f3 \'93\'fa} \'93})", u"日 “"},
        {R"({\rtf1\ansi{\fonttbl{\f0\cpg1253 Greek;}}\f0 \'e1\plain\'e1})", u"αá"},
        {"{\\rtf1\\ansi caf\xe9}", u"café"},         // 8-bit bytes in the source text itself
        {R"({\rtf1\ansi\ansicpg99999 \'e9})", u"é"}, // an unknown code page reads as Western
    };
    for (const Case &c : cases)
        EXPECT_EQ(rtfVisibleText(c.document), std::u16string(c.text)) << c.document;
}

TEST(RtfReaderTest, MalformedInputEndsGracefully) {
    EXPECT_EQ(rtfVisibleText("{\\rtf1 never closed\\par more"), u"never closed\nmore");
    EXPECT_EQ(rtfVisibleText("{\\rtf1 a}} after the end {b}"), u"a");
    EXPECT_EQ(rtfVisibleText("{\\rtf1 a\\"), u"a");
    EXPECT_EQ(rtfVisibleText("{\\rtf1 a\\'zzb}"), u"azzb");
    EXPECT_EQ(rtfVisibleText("{\\rtf1 a\\u99999999999999999999?b}"), u"ab");

    std::string deep = "{\\rtf1 a";
    deep.append(200000, '{');
    deep += "b";
    deep.append(200000, '}');
    deep += "c}";
    EXPECT_EQ(rtfVisibleText(deep), u"abc");
}

} // namespace
} // namespace glyphmill::clipboard
