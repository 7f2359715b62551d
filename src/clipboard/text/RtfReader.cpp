#include "clipboard/text/RtfReader.h"

#include "common/AsciiText.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace glyphmill::clipboard {
namespace {

// Deeper groups share their parent's state, so hostile nesting costs no memory or stack.
constexpr std::size_t maxGroupDepth = 1000;
constexpr int westernCodePage = 1252;
constexpr int useDocumentCodePage = 0;
constexpr int symbolCodePage = -2; // fonts of the Symbol charset; their bytes are glyph numbers
constexpr std::size_t maxControlWordLength = 32;

// Windows font charsets and the code pages their bytes are in.
constexpr std::pair<int, int> charsetCodePages[] = {
    {2, symbolCodePage}, {77, 10000}, {128, 932},  {129, 949},  {134, 936},  {136, 950},
    {161, 1253},         {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257},
    {204, 1251},         {222, 874},  {238, 1250}, {254, 437},  {255, 850},
};

int codePageOfCharset(int charset) {
    for (auto [knownCharset, codePage] : charsetCodePages)
        if (knownCharset == charset)
            return codePage;
    return useDocumentCodePage;
}

struct ConverterCloser {
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using ConverterPtr = std::unique_ptr<UConverter, ConverterCloser>;

ConverterPtr openConverter(int codePage) {
    std::string name;
    switch (codePage) {
    case 437:
        name = "ibm-437";
        break;
    case 850:
        name = "ibm-850";
        break;
    case 932:
        name = "windows-31j";
        break;
    case 10000:
        name = "macintosh";
        break;
    default:
        name = "windows-" + std::to_string(codePage);
        break;
    }
    UErrorCode status = U_ZERO_ERROR;
    ConverterPtr converter(ucnv_open(name.c_str(), &status));
    if (U_FAILURE(status) || !converter) {
        status = U_ZERO_ERROR;
        converter.reset(ucnv_open("windows-1252", &status));
    }
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

// Turns the document's 8-bit bytes into UTF-16; single-byte code pages through a table made once.
class ByteDecoder {
public:
    void decode(int codePage, std::string_view bytes, std::u16string &out) {
        Entry &entry = entryFor(codePage);
        if (entry.isSingleByte) {
            for (char byte : bytes) {
                char16_t unit = entry.table[std::uint8_t(byte)];
                if (unit != 0)
                    out.push_back(unit);
            }
            return;
        }
        ucnv_reset(entry.converter.get());
        const std::size_t start = out.size();
        out.resize(start + bytes.size() * 2);
        UChar *target = reinterpret_cast<UChar *>(out.data() + start);
        const char *source = bytes.data();
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(entry.converter.get(), &target, reinterpret_cast<UChar *>(out.data() + out.size()),
                       &source, bytes.data() + bytes.size(), nullptr, true, &status);
        out.resize(U_SUCCESS(status) ? std::size_t(reinterpret_cast<char16_t *>(target) - out.data())
                                     : start);
    }

private:
    struct Entry {
        ConverterPtr converter;
        bool isSingleByte = true;
        std::array<char16_t, 256> table{};
    };

    Entry &entryFor(int codePage) {
        auto found = entries_.find(codePage);
        if (found != entries_.end())
            return found->second;
        Entry &entry = entries_[codePage];
        entry.converter = openConverter(codePage == symbolCodePage ? westernCodePage : codePage);
        entry.isSingleByte = !entry.converter || ucnv_getMaxCharSize(entry.converter.get()) == 1;
        if (entry.isSingleByte) {
            for (int byte = 0; byte < 256; ++byte)
                entry.table[std::size_t(byte)] = singleByteUnit(entry.converter.get(), char(byte));
            if (codePage == symbolCodePage)
                entry.table[0xB7] = u'\u2022'; // the bullet of list markers
        }
        return entry;
    }

    static char16_t singleByteUnit(UConverter *converter, char byte) {
        if (!converter)
            return std::uint8_t(byte) < 0x80 ? char16_t(byte) : u'\uFFFD';
        UChar unit[2];
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = ucnv_toUChars(converter, unit, 2, &byte, 1, &status);
        return U_SUCCESS(status) && length == 1 ? char16_t(unit[0]) : u'\uFFFD';
    }

    std::unordered_map<int, Entry> entries_;
};

enum class Destination : std::uint8_t { text, fontTable, ignored };

struct GroupState {
    Destination destination = Destination::text;
    bool isHidden = false;
    int unicodeSkipCount = 1;
    int font = -1;
};

enum class Action : std::uint8_t {
    pageBreak,
    row,
    character,
    unicode,
    unicodeSkip,
    codePage,
    codePageNumber,
    defaultFont,
    font,
    fontCharset,
    fontCodePage,
    plain,
    hidden,
    fontTable,
    ignoredDestination,
    binary,
};

struct WordMeaning {
    Action action;
    char16_t character = 0;
    int codePage = 0;
};

// Control words that stand for one character.
constexpr std::pair<std::string_view, char16_t> characterWords[] = {
    {"par", u'\n'},         {"sect", u'\n'},        {"line", u'\n'},          {"tab", u'\t'},
    {"cell", u'\t'},        {"nestcell", u'\t'},    {"emdash", u'\u2014'},    {"endash", u'\u2013'},
    {"emspace", u'\u2003'}, {"enspace", u'\u2002'}, {"qmspace", u'\u2005'},   {"bullet", u'\u2022'},
    {"lquote", u'\u2018'},  {"rquote", u'\u2019'},  {"ldblquote", u'\u201C'}, {"rdblquote", u'\u201D'},
    {"zwj", u'\u200D'},     {"zwnj", u'\u200C'},    {"zwbo", u'\u200B'},      {"ltrmark", u'\u200E'},
    {"rtlmark", u'\u200F'},
};

const std::unordered_map<std::string_view, WordMeaning> &controlWords() {
    static const std::unordered_map<std::string_view, WordMeaning> words = [] {
        std::unordered_map<std::string_view, WordMeaning> table{{"page", {Action::pageBreak}},
                                                                {"row", {Action::row}},
                                                                {"nestrow", {Action::row}},
                                                                {"u", {Action::unicode}},
                                                                {"uc", {Action::unicodeSkip}},
                                                                {"ansi", {Action::codePage, 0, 1252}},
                                                                {"mac", {Action::codePage, 0, 10000}},
                                                                {"pc", {Action::codePage, 0, 437}},
                                                                {"pca", {Action::codePage, 0, 850}},
                                                                {"ansicpg", {Action::codePageNumber}},
                                                                {"deff", {Action::defaultFont}},
                                                                {"f", {Action::font}},
                                                                {"fcharset", {Action::fontCharset}},
                                                                {"cpg", {Action::fontCodePage}},
                                                                {"plain", {Action::plain}},
                                                                {"v", {Action::hidden}},
                                                                {"fonttbl", {Action::fontTable}},
                                                                {"bin", {Action::binary}}};
        for (auto [name, character] : characterWords)
            table.emplace(name, WordMeaning{Action::character, character});
        // Destinations whose text is never shown in the document body.
        constexpr std::string_view ignoredDestinations =
            "colortbl stylesheet info pict listtable listoverridetable revtbl rsidtbl generator filetbl "
            "header headerl headerr headerf footer footerl footerr footerf footnote annotation atnid "
            "atnauthor fldinst xmlnstbl themedata colorschememapping latentstyles datastore objdata "
            "objclass nonshppict bkmkstart bkmkend xe tc txe rxe pn docvar template private userprops "
            "pgdsctbl mmathPr background";
        for (std::size_t start = 0; start < ignoredDestinations.size();) {
            std::size_t end = std::min(ignoredDestinations.find(' ', start), ignoredDestinations.size());
            std::string_view name = ignoredDestinations.substr(start, end - start);
            start = end + 1;
            table.emplace(name, WordMeaning{Action::ignoredDestination});
        }
        return table;
    }();
    return words;
}

class RtfReader {
public:
    explicit RtfReader(std::string_view rtf) : input_(rtf) {}

    // Reads from the document's opening brace up to its matching closing brace.
    std::u16string read(std::size_t openingBrace) {
        position_ = openingBrace;
        while (position_ < input_.size()) {
            const char c = input_[position_];
            if (c == '{') {
                ++position_;
                openGroup();
            } else if (c == '}') {
                ++position_;
                if (!closeGroup())
                    break;
            } else if (c == '\\') {
                readControl();
            } else if (c == '\r' || c == '\n') {
                ++position_; // line ends in the source are not text
            } else {
                ++position_;
                if (consumeSkippedCharacter())
                    continue;
                if (std::uint8_t(c) >= 0x80)
                    appendByte(c);
                else if (c == '\t')
                    emit(u'\t');
                else
                    emit(char16_t(c));
            }
        }
        flushBytes();
        // The mark that ends the last paragraph separates it from nothing.
        if (!text_.empty() && text_.back() == u'\n')
            text_.pop_back();
        return std::move(text_);
    }

private:
    GroupState &state() { return groups_.back(); }

    bool isVisible() const {
        return !groups_.empty() && groups_.back().destination == Destination::text &&
               !groups_.back().isHidden;
    }

    void openGroup() {
        flushBytes();
        pendingSkip_ = 0;
        if (groups_.size() >= maxGroupDepth) {
            ++excessDepth_;
            return;
        }
        groups_.push_back(groups_.empty() ? GroupState{} : groups_.back());
    }

    // False once the document's outermost group has closed.
    bool closeGroup() {
        flushBytes();
        pendingSkip_ = 0;
        if (excessDepth_ > 0) {
            --excessDepth_;
            return true;
        }
        groups_.pop_back();
        return !groups_.empty();
    }

    // After \uN the next characters are the fallback for readers without Unicode.
    bool consumeSkippedCharacter() {
        if (pendingSkip_ == 0)
            return false;
        --pendingSkip_;
        return true;
    }

    void readControl() {
        const std::size_t start = position_ + 1;
        if (start >= input_.size()) {
            position_ = input_.size();
            return;
        }
        const char first = input_[start];
        if (ascii::isLetter(first)) {
            readControlWord(start);
            return;
        }
        position_ = start + 1;
        if (first == '\'') {
            int high = position_ < input_.size() ? ascii::hexValue(input_[position_]) : -1;
            int low = position_ + 1 < input_.size() ? ascii::hexValue(input_[position_ + 1]) : -1;
            if (high < 0 || low < 0)
                return;
            position_ += 2;
            if (!consumeSkippedCharacter())
                appendByte(char(high * 16 + low));
            return;
        }
        if (consumeSkippedCharacter())
            return;
        switch (first) {
        case '\\':
        case '{':
        case '}':
            emit(char16_t(first));
            break;
        case '~':
            emit(u'\u00A0');
            break;
        case '_':
            emit(u'\u2011');
            break;
        case '\r':
        case '\n':
            emit(u'\n');
            break;
        case '*':
            if (!groups_.empty())
                state().destination = Destination::ignored;
            break;
        default:
            break; // \- optional hyphen, \: index subentry, \| formula: nothing to show
        }
    }

    void readControlWord(std::size_t start) {
        std::size_t end = start;
        while (end < input_.size() && ascii::isLetter(input_[end]))
            ++end;
        std::string_view name = input_.substr(start, end - start);
        bool isNegative = false;
        if (end + 1 < input_.size() && input_[end] == '-' && ascii::isDigit(input_[end + 1])) {
            isNegative = true;
            ++end;
        }
        std::int64_t magnitude = 0;
        bool hasParameter = false;
        while (end < input_.size() && ascii::isDigit(input_[end])) {
            hasParameter = true;
            magnitude = std::min<std::int64_t>(magnitude * 10 + (input_[end] - '0'), INT32_MAX);
            ++end;
        }
        if (end < input_.size() && input_[end] == ' ')
            ++end;
        position_ = end;
        const int parameter = int(isNegative ? -magnitude : magnitude);

        if (name.size() > maxControlWordLength)
            return;
        auto found = controlWords().find(name);
        if (found == controlWords().end()) {
            consumeSkippedCharacter();
            return;
        }
        if (found->second.action == Action::binary) {
            std::size_t length = hasParameter && parameter > 0 ? std::size_t(parameter) : 0;
            position_ += std::min(length, input_.size() - position_);
            consumeSkippedCharacter();
            return;
        }
        if (consumeSkippedCharacter() || groups_.empty())
            return;
        apply(found->second, hasParameter, parameter);
    }

    void apply(const WordMeaning &meaning, bool hasParameter, int parameter) {
        GroupState &group = state();
        switch (meaning.action) {
        case Action::pageBreak:
            if (!text_.empty() && text_.back() != u'\n')
                emit(u'\n');
            break;
        case Action::row:
            // The row's last cell closes with a TAB that the row break replaces.
            if (isVisible() && !text_.empty() && text_.back() == u'\t')
                text_.pop_back();
            emit(u'\n');
            break;
        case Action::character:
            emit(meaning.character);
            break;
        case Action::unicode: {
            // The parameter is a signed 16-bit value: negative numbers stand for units above U+7FFF.
            const int unit = parameter < 0 ? parameter + 0x10000 : parameter;
            if (unit > 0 && unit <= 0xFFFF)
                emit(char16_t(unit));
            pendingSkip_ = group.unicodeSkipCount;
            break;
        }
        case Action::unicodeSkip:
            group.unicodeSkipCount = std::clamp(parameter, 0, 16);
            break;
        case Action::codePage:
            documentCodePage_ = meaning.codePage;
            break;
        case Action::codePageNumber:
            if (parameter > 0)
                documentCodePage_ = parameter;
            break;
        case Action::defaultFont:
            defaultFont_ = parameter;
            break;
        case Action::font:
            flushBytes();
            if (group.destination == Destination::fontTable)
                fontBeingDefined_ = parameter;
            else
                group.font = parameter;
            break;
        case Action::fontCharset:
            if (group.destination == Destination::fontTable &&
                codePageOfCharset(parameter) != useDocumentCodePage)
                fontCodePages_[fontBeingDefined_] = codePageOfCharset(parameter);
            break;
        case Action::fontCodePage:
            if (group.destination == Destination::fontTable && parameter > 0)
                fontCodePages_[fontBeingDefined_] = parameter;
            break;
        case Action::plain:
            group.isHidden = false;
            group.font = -1;
            break;
        case Action::hidden:
            group.isHidden = !hasParameter || parameter != 0;
            break;
        case Action::fontTable:
            group.destination = Destination::fontTable;
            break;
        case Action::ignoredDestination:
            group.destination = Destination::ignored;
            break;
        case Action::binary:
            break;
        }
    }

    int currentCodePage() {
        const int font = state().font >= 0 ? state().font : defaultFont_;
        auto found = fontCodePages_.find(font);
        return found != fontCodePages_.end() ? found->second : documentCodePage_;
    }

    void emit(char16_t unit) {
        if (!isVisible())
            return;
        flushBytes();
        text_.push_back(unit);
    }

    void appendByte(char byte) {
        if (!isVisible())
            return;
        const int codePage = currentCodePage();
        if (!pendingBytes_.empty() && codePage != pendingCodePage_)
            flushBytes();
        pendingCodePage_ = codePage;
        pendingBytes_.push_back(byte);
    }

    // Bytes wait so that a double-byte character written as two \'hh is decoded whole.
    void flushBytes() {
        if (pendingBytes_.empty())
            return;
        decoder_.decode(pendingCodePage_, pendingBytes_, text_);
        pendingBytes_.clear();
    }

    std::string_view input_;
    std::size_t position_ = 0;
    std::vector<GroupState> groups_;
    std::size_t excessDepth_ = 0;
    int pendingSkip_ = 0;
    int documentCodePage_ = westernCodePage;
    int defaultFont_ = -1;
    int fontBeingDefined_ = -1;
    std::unordered_map<int, int> fontCodePages_;
    std::string pendingBytes_;
    int pendingCodePage_ = westernCodePage;
    ByteDecoder decoder_;
    std::u16string text_;
};

} // namespace

std::optional<std::u16string> rtfVisibleText(std::string_view rtf) {
    std::size_t start = 0;
    while (start < rtf.size() && (rtf[start] == ' ' || (rtf[start] >= '\t' && rtf[start] <= '\r')))
        ++start;
    if (rtf.substr(start, 5) != "{\\rtf")
        return std::nullopt;
    return RtfReader(rtf).read(start);
}

} // namespace glyphmill::clipboard
