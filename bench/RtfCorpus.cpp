// An RTF document as a word processor saves it: the tables of fonts, colours, styles and lists,
// document information, then paragraphs with character formatting, Western letters as \'hh in
// the document's code page, everything else as \uN with a "?" fallback under \uc1, Japanese
// as double-byte \'hh pairs in a font of the Japanese charset, bulleted lists, tables, fields,
// footnotes, hidden text, and pictures as hex (each in two forms, as Word writes them).
#include "ClipboardCorpus.h"

#include "CorpusVocabulary.h"
#include "SeededRandom.h"

#include "common/Utf8.h"

#include <cstdint>
#include <string_view>

namespace glyphmill::bench {
namespace {

constexpr std::uint64_t rtfSeed = 0x7274666465636B73ULL;

constexpr std::string_view documentStart =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\nouicompat\\deflang1033"
    "{\\fonttbl{\\f0\\fswiss\\fprq2\\fcharset0 Calibri;}{\\f1\\froman\\fprq2\\fcharset0 Times New Roman;}"
    "{\\f2\\fnil\\fcharset2 Symbol;}{\\f3\\fnil\\fprq1\\fcharset128 MS Gothic;}"
    "{\\f4\\fmodern\\fprq1\\fcharset0 Consolas;}}\r\n"
    "{\\colortbl ;\\red0\\green0\\blue0;\\red31\\green73\\blue125;\\red192\\green0\\blue0;"
    "\\red5\\green99\\blue193;}\r\n"
    "{\\*\\defchp \\fs22}{\\stylesheet{ Normal;}{\\s1 heading 1;}{\\s2 heading 2;}"
    "{\\*\\cs10 Default Paragraph Font;}{\\s15 footnote text;}}\r\n"
    "{\\*\\listtable{\\list\\listtemplateid1{\\listlevel\\levelnfc23\\leveljc0\\levelfollow0"
    "{\\leveltext\\'01\\u-3913 ?;}{\\levelnumbers;}\\f2\\fi-360\\li720}\\listid1}}\r\n"
    "{\\*\\listoverridetable{\\listoverride\\listid1\\listoverridecount0\\ls1}}\r\n"
    "{\\*\\generator Riched20 10.0.22621}{\\info{\\title Quarterly report}{\\author Zo\\'eb M\\'fcller}"
    "{\\operator Zo\\'eb "
    "M\\'fcller}{\\creatim\\yr2024\\mo3\\dy5\\hr9\\min30}{\\revtim\\yr2024\\mo3\\dy7}}\r\n"
    "\\viewkind4\\uc1 \r\n";

// Windows-1252 bytes of the punctuation outside Latin-1 that prose uses.
constexpr std::pair<char16_t, std::string_view> windows1252Bytes[] = {
    {u'\u2013', "96"}, {u'\u2014', "97"}, {u'\u2018', "91"}, {u'\u2019', "92"},
    {u'\u201C', "93"}, {u'\u201D', "94"}, {u'\u2026', "85"}, {u'\u20AC', "80"},
};

// Shift-JIS bytes, as a Japanese font's text is written.
constexpr std::string_view japaneseWords[] = {
    "\\'93\\'8c\\'8b\\'9e", "\\'93\\'fa\\'96\\'7b\\'8c\\'ea",
    "\\'89\\'ef\\'8b\\'63", "\\'82\\'a0\\'82\\'e8\\'82\\'aa\\'82\\'c6\\'82\\'a4",
    "\\'8e\\'91\\'97\\'bf",
};

constexpr std::string_view hyperlinks[] = {"https://www.example.com/reports/q3", "https://example.org/help",
                                           "mailto:team@example.com"};

std::string hexByte(unsigned value) {
    constexpr std::string_view digits = "0123456789abcdef";
    return {digits[(value >> 4) & 0xF], digits[value & 0xF]};
}

// Text as RTF writes it: specials escaped, the document's code page as \'hh, the rest as \uN?.
std::string rtfText(std::string_view utf8Text) {
    std::string out;
    for (char16_t unit : utf8::decodeLossy(utf8Text)) {
        if (unit == u'\\' || unit == u'{' || unit == u'}') {
            out += '\\';
            out += char(unit);
        } else if (unit < 0x80) {
            out += char(unit);
        } else if (unit >= 0xA0 && unit <= 0xFF) {
            out += "\\'" + hexByte(unit);
        } else {
            std::string_view known;
            for (auto [character, bytes] : windows1252Bytes)
                if (character == unit)
                    known = bytes;
            if (!known.empty())
                out += "\\'" + std::string(known);
            else // signed 16-bit, as the format has it
                out += "\\u" + std::to_string(unit >= 0x8000 ? int(unit) - 0x10000 : int(unit)) + "?";
        }
    }
    return out;
}

class RtfGenerator {
public:
    explicit RtfGenerator(std::size_t minimumBytes) : random_(rtfSeed), minimumBytes_(minimumBytes) {}

    std::string generate() {
        out_ += documentStart;
        while (out_.size() < minimumBytes_)
            block();
        out_ += "}\r\n";
        return std::move(out_);
    }

private:
    void block() {
        const std::size_t kind = random_.below(100);
        if (kind < 58)
            paragraph();
        else if (kind < 66)
            heading();
        else if (kind < 78)
            bulletedList();
        else if (kind < 90)
            table();
        else if (kind < 91)
            picture();
        else
            codeParagraph();
    }

    void paragraph() {
        out_ += "\\pard\\widctlpar\\sa200\\sl276\\slmult1\\f0\\fs22\\lang9 ";
        runs(random_.between(20, 120));
        out_ += "\\par\r\n";
    }

    void heading() {
        out_ += "\\pard\\keepn\\s1\\sb240\\sa60\\b\\f1\\fs32\\cf2 ";
        out_ += rtfText(words(random_.between(2, 8)));
        out_ += "\\cf0\\b0\\f0\\fs22\\par\r\n";
    }

    void bulletedList() {
        const std::size_t items = random_.between(2, 7);
        for (std::size_t i = 0; i < items; ++i) {
            out_ += "{\\pntext\\f2\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf2\\pnindent0{\\pntxtb\\'B7}}"
                    "\\pard\\ls1\\fi-360\\li720\\sa200\\sl276\\slmult1\\f0\\fs22 ";
            runs(random_.between(3, 15));
            out_ += "\\par\r\n";
        }
        out_ += "\\pard\\sa200\\sl276\\slmult1\r\n";
    }

    void table() {
        const std::size_t columns = random_.between(2, 5);
        const std::size_t rows = random_.between(2, 12);
        std::string rowDefinition =
            "\\trowd\\trgaph108\\trleft-108\\trbrdrt\\brdrs\\brdrw10 \\trbrdrb\\brdrs\\brdrw10 ";
        for (std::size_t c = 1; c <= columns; ++c)
            rowDefinition += "\\clbrdrb\\brdrw10\\brdrs\\cellx" + std::to_string(c * 9000 / columns);
        for (std::size_t r = 0; r < rows; ++r) {
            out_ += rowDefinition + "\r\n\\pard\\intbl\\widctlpar\\f0\\fs20 ";
            for (std::size_t c = 0; c < columns; ++c) {
                if (r == 0)
                    append("{\\b ", rtfText(words(random_.between(1, 2))), "}");
                else if (c == 0)
                    out_ += std::to_string(random_.between(1, 99999));
                else if (random_.percent(90))
                    runs(random_.between(1, 5));
                out_ += "\\cell ";
            }
            out_ += "\\row\r\n";
        }
        out_ += "\\pard\\sa200\\sl276\\slmult1\\f0\\fs22\r\n";
    }

    // The picture once as PNG for readers that can show it and once as a metafile for the others.
    void picture() {
        const std::size_t width = random_.between(200, 1600);
        const std::size_t height = random_.between(150, 1200);
        const std::string size = "\\picw" + std::to_string(width * 26) + "\\pich" +
                                 std::to_string(height * 26) + "\\picwgoal" + std::to_string(width * 15) +
                                 "\\pichgoal" + std::to_string(height * 15);
        out_ += "{\\*\\shppict{\\pict{\\*\\picprop}\\pngblip" + size + "\r\n";
        hexData(random_.between(3'000, 15'000));
        out_ += "}}{\\nonshppict{\\pict\\wmetafile8" + size + "\r\n";
        hexData(random_.between(500, 3'000));
        out_ += "}}\\par\r\n";
    }

    void hexData(std::size_t bytes) {
        for (std::size_t i = 0; i < bytes; ++i) {
            out_ += hexByte(unsigned(random_.below(256)));
            if (i % 64 == 63)
                out_ += "\r\n";
        }
        out_ += "\r\n";
    }

    void codeParagraph() {
        out_ += "\\pard\\li360\\f4\\fs18 ";
        const std::size_t lines = random_.between(2, 8);
        for (std::size_t i = 0; i < lines; ++i) {
            if (i > 0)
                out_ += "\\line ";
            out_ += "if (count < limit) \\{ total += " + std::string(random_.pick(vocabulary::commonWords)) +
                    "_" + std::to_string(i) + "; \\}";
        }
        out_ += "\\f0\\fs22\\par\r\n";
    }

    // Words in runs of formatting, with the odd field, footnote, hidden run or special character.
    void runs(std::size_t wordCount) {
        std::size_t lineStart = out_.size();
        for (std::size_t i = 0; i < wordCount; ++i) {
            if (i > 0)
                out_ += random_.percent(5) ? ", " : " ";
            // Word breaks its output into short lines; the line ends are not text.
            if (out_.size() - lineStart > 200) {
                out_ += "\r\n";
                lineStart = out_.size();
            }
            switch (random_.below(60)) {
            case 0:
                append("{\\b ", rtfText(words(random_.between(1, 3))), "}");
                break;
            case 1:
                append("{\\i ", rtfText(words(random_.between(1, 3))), "}");
                break;
            case 2:
                append("\\ul ", rtfText(words(random_.between(1, 3))), "\\ulnone ");
                break;
            case 3:
                append("{\\cf3 ", rtfText(words(2)), "}");
                break;
            case 4:
                append("{\\field{\\*\\fldinst{HYPERLINK \"", random_.pick(hyperlinks), "\"}}");
                append("{\\fldrslt{\\cf4\\ul ", rtfText(words(random_.between(1, 4))), "}}}");
                break;
            case 5:
                append("{\\f3\\fs22\\loch\\af3\\hich\\af3\\dbch\\f3 ", random_.pick(japaneseWords), "}");
                break;
            case 6:
                append("{\\super\\chftn}{\\footnote\\pard\\plain\\s15\\fs20 {\\super\\chftn} ",
                       rtfText(words(random_.between(4, 12))), "}");
                break;
            case 7:
                append("{\\v ", rtfText(words(3)), "}");
                break;
            case 8:
                out_ += "\\emdash ";
                break;
            case 9:
                append("\\ldblquote ", rtfText(words(random_.between(1, 4))), "\\rdblquote ");
                break;
            case 10:
                out_ += "\\tab ";
                break;
            default:
                out_ += rtfText(word());
                break;
            }
        }
    }

    void append(std::string_view opening, std::string_view text, std::string_view closing) {
        out_ += opening;
        out_ += text;
        out_ += closing;
    }

    std::string word() {
        return std::string(random_.percent(6) ? random_.pick(vocabulary::internationalWords)
                                              : random_.pick(vocabulary::commonWords));
    }

    std::string words(std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0)
                text += ' ';
            text += word();
        }
        return text;
    }

    SeededRandom random_;
    std::size_t minimumBytes_;
    std::string out_;
};

} // namespace

std::string makeRtfDocument(std::size_t minimumBytes) {
    return RtfGenerator(minimumBytes).generate();
}

} // namespace glyphmill::bench
