// The pass reads the document the way libxml2 2.9's HTML parser does (HTMLparser.c:
// htmlParseDocument, htmlParseContentInternal and the functions they call, in recovery mode), far
// enough to know where every start tag and attribute lies, and copies it with the unread
// attributes left out. Where libxml2 decides on a byte by one reading function or another, so
// does the pass: the raw text of script and style and what ends it, comments closed by "-->" or
// "--!>", processing instructions and their targets, DOCTYPE literals, names cut at 100 bytes,
// a NUL where the parser stops.
//
// Open elements. The pass keeps the parser's stack of open elements as it does: elements closed
// by start tags, by end tags up to one of higher end priority, implied html, head, body and p,
// misplaced html, head and body tags counted and dropped. libxml2 looks through the whole stack for
// an end tag it ignores in the end and for every <body>, which makes a deep document full of them
// quadratic; the pass replaces such tags by ones the parser ignores at once.
//
// Encodings. libxml2 reads the bytes as UTF-8 until something switches it: a byte-order mark or
// the first four bytes, a <meta> charset, or a byte that is not UTF-8 (after which it reads the
// rest as Latin-1). From a switch on it parses the rest converted to UTF-8 in one go. The pass
// makes the same conversion with libxml2's own converter at the same place and goes on in the
// converted text; the result is therefore parsed with the encoding named UTF-8, so that libxml2
// does not switch again.
//
// Cost. A first run only adds up what libxml2 would spend on attributes and open elements. Most
// documents stay below the bar and go to the parser as they are; the second run, which writes the
// result, is for the others.
#include "clipboard/text/HtmlParserInput.h"

#include "common/AsciiText.h"

#include <libxml/HTMLparser.h>
#include <libxml/encoding.h>
#include <libxml/globals.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace glyphmill::clipboard {
namespace {

// Thrown where the pass cannot tell with certainty what libxml2 does next.
struct NotFollowed {};

// libxml2 cuts tag and attribute names after this many bytes and reads on from there.
constexpr std::size_t htmlNameLimit = 100;

// An ignored end tag or <body> for which libxml2 looks through at least this many open elements is
// replaced by one it ignores at once.
constexpr std::size_t expensiveLook = 16;

constexpr std::size_t endPriorityLevels = 8;

// Past libxml2's INPUT_CHUNK (250 bytes) from the end of its buffer.
constexpr std::size_t nearTheEnd = 300;

bool isBlankByte(int c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

char asciiLower(int c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 0x20 : c);
}

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiLower(static_cast<unsigned char>(a[i])) != asciiLower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

std::size_t findIgnoringAsciiCase(std::string_view text, std::string_view word) {
    for (std::size_t i = 0; i + word.size() <= text.size(); ++i)
        if (equalsIgnoringAsciiCase(text.substr(i, word.size()), word))
            return i;
    return std::string_view::npos;
}

// UTF-8 as RFC 3629 has it: what both of libxml2's character readers take without complaint.
bool isValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t length = 0;
        std::uint32_t value = 0;
        if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
            value = c & 0x1Fu;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            value = c & 0x0Fu;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            value = c & 0x07u;
        } else {
            return false;
        }
        if (i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            const auto continuation = static_cast<unsigned char>(text[i + k]);
            if ((continuation & 0xC0) != 0x80)
                return false;
            value = (value << 6) | (continuation & 0x3Fu);
        }
        if ((length == 3 && value < 0x800) || (length == 4 && (value < 0x10000 || value > 0x10FFFF)) ||
            (value >= 0xD800 && value <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

// The first byte at or after `from` that is '<', '&' or not ASCII, eight bytes at a time.
std::size_t endOfPlainText(std::string_view text, std::size_t from) {
    constexpr std::uint64_t ones = 0x0101010101010101ULL;
    constexpr std::uint64_t highs = 0x8080808080808080ULL;
    auto holds = [](std::uint64_t word, unsigned char byte) {
        const std::uint64_t x = word ^ (ones * byte);
        return (x - ones) & ~x & highs;
    };
    std::size_t i = from;
    while (i + 8 <= text.size()) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        if ((word & highs) | holds(word, '<') | holds(word, '&'))
            break;
        i += 8;
    }
    while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80 && text[i] != '<' && text[i] != '&')
        ++i;
    return i;
}

// As libxml2 writes a character into an attribute value.
void appendUtf8(std::string &out, std::uint32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

struct HandlerClose {
    void operator()(xmlCharEncodingHandler *handler) const { xmlCharEncCloseFunc(handler); }
};
using EncodingHandler = std::unique_ptr<xmlCharEncodingHandler, HandlerClose>;

struct BufferFree {
    void operator()(xmlBuffer *buffer) const { xmlBufferFree(buffer); }
};
using XmlBuffer = std::unique_ptr<xmlBuffer, BufferFree>;

// The bytes as libxml2's parser reads them after switching to the handler's encoding. None when the
// conversion fails on the way: libxml2 then ends or stops the document there, depending on how the
// switch came about and how much it converted at once, which the pass does not follow. None too
// when a character is cut off at the end: a <meta> that names another encoding later has libxml2
// convert those bytes with it.
std::optional<std::string> decodedWith(xmlCharEncodingHandler &handler, std::string_view bytes) {
    XmlBuffer in(xmlBufferCreate());
    XmlBuffer out(xmlBufferCreate());
    if (!in || !out ||
        xmlBufferAdd(in.get(), reinterpret_cast<const xmlChar *>(bytes.data()),
                     static_cast<int>(bytes.size())) != 0)
        return std::nullopt;
    while (xmlBufferLength(in.get()) > 0) {
        const int before = xmlBufferLength(in.get());
        if (xmlCharEncInFunc(&handler, out.get(), in.get()) == -2 || xmlBufferLength(in.get()) == before)
            return std::nullopt;
    }
    std::string text(reinterpret_cast<const char *>(xmlBufferContent(out.get())),
                     static_cast<std::size_t>(xmlBufferLength(out.get())));
    if (!isValidUtf8(text))
        return std::nullopt;
    return text;
}

struct Char {
    std::uint32_t value;
    std::size_t length;
};

// How the parser uses a character it reads where a byte is not UTF-8. In text, comments, scripts
// and processing instructions it copies the converted bytes as they come, so the switch to
// Latin-1 there does not show; in attribute values and names it does show, and the pass gives up.
enum class Reading { text, valueOrName };

using Attribute = std::pair<std::string, std::optional<std::string>>;

class ParserInputPass {
public:
    // Without `writing`, the pass only adds up what libxml2 would spend on the document.
    ParserInputPass(std::string_view html, std::span<const std::string_view> keep, bool writing)
        : text_(html), keep_(keep), writing_(writing) {}

    // The steps libxml2 would take over attributes and open elements; none where the pass gives up.
    std::optional<std::size_t> parserSteps() {
        try {
            startEncoding();
            document();
        } catch (const NotFollowed &) {
            return std::nullopt;
        }
        return steps_;
    }

    std::optional<std::string> result() {
        out_.reserve(text_.size() + 64);
        try {
            startEncoding();
            document();
        } catch (const NotFollowed &) {
            return std::nullopt;
        }
        if (!changed_)
            return std::nullopt;
        out_.append(text_.substr(emitted_));
        if (!startsTheSameAsUtf8(out_) || (nameReadAfresh_ && out_.size() - nameReadAfreshEnd_ < nearTheEnd))
            return std::nullopt;
        return std::move(out_);
    }

private:
    // --- Bytes and characters -------------------------------------------------------------------

    int byteAt(std::size_t i) const { return i < text_.size() ? static_cast<unsigned char>(text_[i]) : 0; }
    int current() const { return byteAt(pos_); }
    int ahead(std::size_t n) const { return byteAt(pos_ + n); }

    bool startsWith(std::string_view word) const { return text_.substr(pos_).starts_with(word); }

    // As the parser's UPP(): toupper() of the C library, in whatever locale the process has.
    bool startsWithUpper(std::size_t offset, std::string_view word) const {
        for (std::size_t i = 0; i < word.size(); ++i)
            if (std::toupper(ahead(offset + i)) != word[i])
                return false;
        return true;
    }

    bool atComment() const { return startsWith("<!--"); }
    bool atProcessingInstruction() const { return startsWith("<?"); }
    bool atDoctype() const { return current() == '<' && ahead(1) == '!' && startsWithUpper(2, "DOCTYPE"); }

    void skipBlanks() {
        while (isBlankByte(current()))
            ++pos_;
    }

    // libxml2's htmlCurrentChar on bytes it has not converted.
    std::optional<Char> decodedLikeCurrentChar() const {
        const int c = current();
        const int c1 = ahead(1);
        if ((c & 0x40) == 0 || (c1 & 0xC0) != 0x80)
            return std::nullopt;
        if ((c & 0xE0) == 0xE0) {
            const int c2 = ahead(2);
            if ((c2 & 0xC0) != 0x80)
                return std::nullopt;
            if ((c & 0xF0) == 0xF0) {
                const int c3 = ahead(3);
                if ((c & 0xF8) != 0xF0 || (c3 & 0xC0) != 0x80)
                    return std::nullopt;
                const auto value = static_cast<std::uint32_t>(((c & 0x07) << 18) | ((c1 & 0x3F) << 12) |
                                                              ((c2 & 0x3F) << 6) | (c3 & 0x3F));
                if (value < 0x10000)
                    return std::nullopt;
                return Char{value, 4};
            }
            const auto value =
                static_cast<std::uint32_t>(((c & 0x0F) << 12) | ((c1 & 0x3F) << 6) | (c2 & 0x3F));
            if (value < 0x800)
                return std::nullopt;
            return Char{value, 3};
        }
        const auto value = static_cast<std::uint32_t>(((c & 0x1F) << 6) | (c1 & 0x3F));
        if (value < 0x80)
            return std::nullopt;
        return Char{value, 2};
    }

    // The parser's CUR_CHAR: the character here (a NUL inside the input reads as a space), 0 at the end.
    Char currentChar(Reading reading) {
        for (;;) {
            if (pos_ >= text_.size())
                return {0, 1};
            const int c = current();
            if (c < 0x80)
                return {c == 0 ? std::uint32_t(' ') : std::uint32_t(c), 1};
            if (const auto decoded = decodedLikeCurrentChar())
                return *decoded;
            // Only unconverted bytes can fail; libxml2 reads the rest of the document as Latin-1.
            if (reading != Reading::text)
                throw NotFollowed{};
            EncodingHandler latin1(xmlGetCharEncodingHandler(XML_CHAR_ENCODING_8859_1));
            if (!latin1)
                throw NotFollowed{};
            convertRest(*latin1);
        }
    }

    // The parser's NEXT (xmlNextChar): one character on, by its own reading of UTF-8.
    void nextChar() {
        if (pos_ >= text_.size())
            return;
        const int c = current();
        if (c < 0x80) {
            ++pos_;
            return;
        }
        if (!converted_) {
            // A byte libxml2 finds wrong here only marks the input as not UTF-8, and its guess at the
            // encoding later depends on what follows; not followed.
            const int c1 = ahead(1);
            if (c == 0xC0 || (c1 & 0xC0) != 0x80)
                throw NotFollowed{};
            if ((c & 0xE0) == 0xE0) {
                if ((ahead(2) & 0xC0) != 0x80)
                    throw NotFollowed{};
                if ((c & 0xF0) == 0xF0) {
                    if ((c & 0xF8) != 0xF0 || (ahead(3) & 0xC0) != 0x80)
                        throw NotFollowed{};
                    pos_ += 4;
                } else {
                    pos_ += 3;
                }
            } else {
                pos_ += 2;
            }
            return;
        }
        pos_ += c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : 2;
    }

    // --- Output -----------------------------------------------------------------------------------

    void flush() {
        if (writing_)
            out_.append(text_.substr(emitted_, pos_ - emitted_));
        emitted_ = pos_;
    }

    std::size_t mark() {
        flush();
        return out_.size();
    }

    void dropSince(std::size_t outputMark) {
        flush();
        out_.resize(outputMark);
        changed_ = true;
    }

    // --- Encodings --------------------------------------------------------------------------------

    // From here on libxml2 parses the rest of the input converted by the handler.
    void convertRest(xmlCharEncodingHandler &handler) {
        if (converted_)
            throw NotFollowed{};
        flush();
        auto rest = decodedWith(handler, text_.substr(pos_));
        if (!rest)
            throw NotFollowed{};
        convertedText_ = std::move(*rest);
        if (writing_)
            out_.reserve(out_.size() + convertedText_.size() + 64);
        text_ = convertedText_;
        pos_ = emitted_ = 0;
        converted_ = true;
    }

    // htmlParseDocument's look at the first four bytes (xmlDetectCharEncoding, xmlSwitchEncoding).
    void startEncoding() {
        if (text_.size() < 4)
            return;
        const auto encoding = xmlDetectCharEncoding(reinterpret_cast<const unsigned char *>(text_.data()), 4);
        if (encoding == XML_CHAR_ENCODING_NONE)
            return;
        if (encoding == XML_CHAR_ENCODING_UTF8) {
            if (startsWith("\xEF\xBB\xBF"))
                pos_ = 3;
            byteOrderMarkKept_ = pos_ == 3;
            return;
        }
        EncodingHandler handler(xmlGetCharEncodingHandler(encoding));
        if (!handler)
            throw NotFollowed{}; // libxml2 stops at once
        const std::string_view name = handler->name;
        if (((name == "UTF-16LE" || name == "UTF-16") && startsWith("\xFF\xFE")) ||
            (name == "UTF-16BE" && startsWith("\xFE\xFF")))
            pos_ = 2;
        else if (name == "UTF-8" && startsWith("\xEF\xBB\xBF"))
            pos_ = 3;
        emitted_ = pos_;
        convertRest(*handler);
    }

    // xmlSwitchEncoding as htmlCheckEncodingDirect calls it.
    void switchEncoding(xmlCharEncoding encoding) {
        if (encoding == XML_CHAR_ENCODING_NONE || encoding == XML_CHAR_ENCODING_UTF8)
            return;
        EncodingHandler handler(xmlGetCharEncodingHandler(encoding));
        if (!handler) {
            if (encoding == XML_CHAR_ENCODING_ASCII ||
                (encoding >= XML_CHAR_ENCODING_8859_1 && encoding <= XML_CHAR_ENCODING_8859_9))
                return;
            throw NotFollowed{}; // libxml2 stops the parser
        }
        // Once the input is converted, a second converter has nothing left to convert.
        if (!converted_)
            convertRest(*handler);
    }

    // htmlCheckEncodingDirect: only the first encoding a <meta> names counts.
    void declareEncoding(std::string_view name) {
        if (encodingDeclared_)
            return;
        while (!name.empty() && (name.front() == ' ' || name.front() == '\t'))
            name.remove_prefix(1);
        encodingDeclared_ = true;
        const std::string terminated(name);
        const auto encoding = xmlParseCharEncoding(terminated.c_str());
        if (encoding != XML_CHAR_ENCODING_ERROR) {
            const bool isWide = encoding == XML_CHAR_ENCODING_UTF16LE ||
                                encoding == XML_CHAR_ENCODING_UTF16BE ||
                                encoding == XML_CHAR_ENCODING_UCS4LE || encoding == XML_CHAR_ENCODING_UCS4BE;
            if (isWide && !converted_)
                return; // refused while the bytes are read as they are
            switchEncoding(encoding);
            return;
        }
        EncodingHandler handler(xmlFindCharEncodingHandler(terminated.c_str()));
        if (handler && !converted_)
            convertRest(*handler);
    }

    // htmlCheckMeta and htmlCheckEncoding, on the values as the parser decoded them (C strings).
    void checkMeta(const std::vector<Attribute> &attributes) {
        auto cString = [](const std::string &value) { return std::string_view(value.c_str()); };
        bool isContentType = false;
        std::optional<std::string_view> content;
        for (const auto &[name, value] : attributes) {
            if (!value)
                continue;
            if (name == "http-equiv" && equalsIgnoringAsciiCase(cString(*value), "Content-Type"))
                isContentType = true;
            else if (name == "charset")
                declareEncoding(cString(*value));
            else if (name == "content")
                content = cString(*value);
        }
        if (!isContentType || !content)
            return;
        std::size_t at = findIgnoringAsciiCase(*content, "charset");
        if (at == std::string_view::npos)
            return;
        at += 7;
        if (at < content->size() && isBlankByte(static_cast<unsigned char>((*content)[at])))
            at = content->find('=');
        if (at < content->size() && (*content)[at] == '=')
            declareEncoding(content->substr(at + 1));
    }

    // --- The parser's stack of open elements -------------------------------------------------------
    // Followed as htmlnamePush and htmlnamePop change it, so that the pass knows what an end tag or
    // a <body> does and what libxml2 pays for it: it looks for them through the stack, which is
    // quadratic in documents that are deep and full of such tags.

    // What the pass needs to know of an element name, worked out once per name.
    struct Element {
        std::string name;
        std::size_t endPriorityLevel = 0;
        bool isHtml = false, isHead = false, isBody = false;
        bool holdsRawText = false;   // script, style
        bool belongsInHead = false;  // what htmlCheckImplied puts into head
        bool isFrameElement = false; // noframes, frame, frameset: no implied body
        bool closesItsOwnKind = false;
        bool isEmpty = false; // closed right after its start tag
        std::vector<std::size_t> openAt;
        std::unordered_map<const Element *, bool> closes;
    };
    using Name = Element *;

    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
    };

    Name intern(std::string_view name) {
        // Pages use few names, over and over: a small table in front of the map.
        Name &recent =
            recentNames_[name.empty() ? 0
                                      : (name.size() * 31 + static_cast<unsigned char>(name.front()) * 7 +
                                         static_cast<unsigned char>(name.back())) %
                                            recentNames_.size()];
        if (recent && recent->name == name)
            return recent;
        auto found = elements_.find(name);
        if (found != elements_.end())
            return recent = &found->second;
        Element &element = elements_.emplace(std::string(name), Element{}).first->second;
        element.name = name;
        // htmlGetEndPriority, as a rank: an end tag does not close past a more important element.
        static constexpr std::pair<std::string_view, std::size_t> levels[] = {
            {"div", 1},   {"td", 2},    {"th", 2},   {"tr", 3},   {"thead", 4}, {"tbody", 4},
            {"tfoot", 4}, {"table", 5}, {"head", 6}, {"body", 6}, {"html", 7}};
        for (const auto &[candidate, level] : levels)
            if (name == candidate)
                element.endPriorityLevel = level;
        element.isHtml = name == "html";
        element.isHead = name == "head";
        element.isBody = name == "body";
        element.holdsRawText = name == "script" || name == "style";
        static constexpr std::string_view headElements[] = {"script", "style", "meta",
                                                            "link",   "title", "base"};
        element.belongsInHead =
            std::find(std::begin(headElements), std::end(headElements), name) != std::end(headElements);
        element.isFrameElement = name == "noframes" || name == "frame" || name == "frameset";
        // libxml2's table closes these on a start tag of their own name; htmlAutoCloseTag, which
        // tells the rest, cannot be asked about equal names.
        static constexpr std::string_view selfClosing[] = {"a", "col",   "colgroup", "form", "li", "option",
                                                           "p", "tbody", "td",       "th",   "tr"};
        element.closesItsOwnKind =
            std::find(std::begin(selfClosing), std::end(selfClosing), name) != std::end(selfClosing);
        const htmlElemDesc *description =
            htmlTagLookup(reinterpret_cast<const xmlChar *>(element.name.c_str()));
        element.isEmpty = description && description->empty;
        return recent = &element;
    }

    Name top() const { return open_.empty() ? nullptr : open_.back(); }
    static bool holdsRawText(Name name) { return name && name->holdsRawText; }

    void push(Name name) {
        name->openAt.push_back(open_.size());
        moreImportant_[name->endPriorityLevel].push_back(open_.size());
        open_.push_back(name);
        if (name->isHead && htmlLevel_ < 3)
            htmlLevel_ = 3;
        if (name->isBody && htmlLevel_ < 10)
            htmlLevel_ = 10;
    }

    void pop() {
        if (open_.empty())
            return;
        const Name name = open_.back();
        name->openAt.pop_back();
        moreImportant_[name->endPriorityLevel].pop_back();
        open_.pop_back();
    }

    // Whether an element of higher end priority is open inside the innermost `name`.
    bool isShieldedByMoreImportant(Name name) const {
        const std::size_t at = name->openAt.back();
        for (std::size_t level = name->endPriorityLevel + 1; level < endPriorityLevels; ++level)
            if (!moreImportant_[level].empty() && moreImportant_[level].back() > at)
                return true;
        return false;
    }

    // htmlCheckAutoClose: whether a start tag named `next` closes an open `element`.
    static bool closes(Name next, Name element) {
        if (next == element)
            return next->closesItsOwnKind;
        const auto known = next->closes.find(element);
        if (known != next->closes.end())
            return known->second;
        xmlNode node{};
        node.type = XML_ELEMENT_NODE;
        node.name = reinterpret_cast<const xmlChar *>(next->name.c_str());
        const bool answer =
            htmlAutoCloseTag(nullptr, reinterpret_cast<const xmlChar *>(element->name.c_str()), &node) == 1;
        next->closes.emplace(element, answer);
        return answer;
    }

    // htmlAutoClose; the elements closed are added to `closed`.
    void autoClose(Name next, std::vector<Name> *closed) {
        while (top() && closes(next, top())) {
            if (closed)
                closed->push_back(top());
            pop();
        }
    }

    // htmlCheckImplied: the html, head or body element a tag needs around it.
    void checkImplied(Name next) {
        if (next->isHtml)
            return;
        if (open_.empty())
            push(html_);
        if (next->isBody || next->isHead)
            return;
        if (open_.size() <= 1 && next->belongsInHead) {
            if (htmlLevel_ < 3)
                push(head_);
        } else if (!next->isFrameElement) {
            if (htmlLevel_ >= 10 || !body_->openAt.empty() || !head_->openAt.empty())
                return;
            push(body_);
        }
    }

    bool topHoldsNoText() const { return !top() || top()->isHtml || top()->isHead; }

    // htmlCheckParagraph: text straight in html or head, or in no element, opens a p.
    void checkParagraph() {
        if (!topHoldsNoText())
            return;
        autoClose(paragraph_, nullptr);
        checkImplied(paragraph_);
        push(paragraph_);
    }

    // --- Names ------------------------------------------------------------------------------------

    // htmlParseHTMLName: ASCII, lowercased, cut at 100 bytes. Empty when there is no name.
    std::string htmlName() {
        std::string name;
        const int first = current();
        if (!ascii::isLetter(first) && first != '_' && first != ':' && first != '.')
            return name;
        for (int c = first; name.size() < htmlNameLimit && (ascii::isLetter(c) || ascii::isDigit(c) ||
                                                            c == ':' || c == '-' || c == '_' || c == '.');
             c = current()) {
            name.push_back(asciiLower(c));
            ++pos_;
        }
        return name;
    }

    // htmlParseHTMLName_nonInvasive: the name of the tag at '<', without moving.
    std::string tagNameAhead() const {
        std::string name;
        for (std::size_t i = 1; name.size() < htmlNameLimit; ++i) {
            const int c = ahead(i);
            const bool fits =
                i == 1 ? ascii::isLetter(c) || c == '_' || c == ':'
                       : ascii::isLetter(c) || ascii::isDigit(c) || c == ':' || c == '-' || c == '_';
            if (!fits)
                break;
            name.push_back(asciiLower(c));
        }
        return name;
    }

    // htmlParseName (targets, DOCTYPE names, entity names): XML name characters of any script.
    std::optional<std::string> xmlName() {
        const std::size_t start = pos_;
        const int first = current();
        if (ascii::isLetter(first) || first == '_' || first == ':') {
            std::size_t end = pos_ + 1;
            while (end < text_.size()) {
                const int c = byteAt(end);
                if (!ascii::isLetter(c) && !ascii::isDigit(c) && c != '_' && c != '-' && c != ':' && c != '.')
                    break;
                ++end;
            }
            if (end == text_.size())
                return std::nullopt; // libxml2 does not take a name that runs to the end of the input
            if (byteAt(end) > 0 && byteAt(end) < 0x80) {
                pos_ = end;
                return std::string(text_.substr(start, end - start));
            }
        }
        auto isNameChar = [](std::uint32_t c) {
            const auto i = static_cast<int>(c);
            return c != ' ' && c != '>' && c != '/' &&
                   (IS_LETTER(i) || IS_DIGIT(i) || c == '.' || c == '-' || c == '_' || c == ':' ||
                    IS_COMBINING(i) || IS_EXTENDER(i));
        };
        Char c = currentChar(Reading::valueOrName);
        const auto i = static_cast<int>(c.value);
        if (c.value == ' ' || c.value == '>' || c.value == '/' ||
            (!IS_LETTER(i) && c.value != '_' && c.value != ':'))
            return std::nullopt;
        while (isNameChar(c.value)) {
            pos_ += c.length;
            c = currentChar(Reading::valueOrName);
        }
        // libxml2 starts such a name over, dropping what it had read, when its buffer moves while it
        // reads; that happens where it grows the buffer, in the last 250 bytes, and depends on how
        // the buffer was allocated, which differs between the document and the result.
        if (text_.size() - pos_ < nearTheEnd)
            throw NotFollowed{};
        nameReadAfresh_ = true;
        nameReadAfreshEnd_ = out_.size() + (pos_ - emitted_);
        return std::string(text_.substr(start, pos_ - start));
    }

    // --- References -------------------------------------------------------------------------------

    // htmlParseCharRef: the value, or 0 when it is no character.
    std::uint32_t characterReference() {
        std::uint32_t value = 0;
        const bool isHex = ahead(2) == 'x' || ahead(2) == 'X';
        pos_ += isHex ? 3 : 2;
        while (current() != ';') {
            const int digit = isHex                       ? ascii::hexValue(current())
                              : ascii::isDigit(current()) ? current() - '0'
                                                          : -1;
            if (digit < 0)
                break;
            if (value < 0x110000)
                value = value * (isHex ? 16 : 10) + static_cast<std::uint32_t>(digit);
            ++pos_;
        }
        if (current() == ';')
            ++pos_;
        return IS_CHAR(static_cast<int>(value)) ? value : 0;
    }

    // htmlParseEntityRef, at '&': the entity, if the name is one and ends in ';'. Whether it is
    // one only decides whether the ';' goes with it, which matters only for a value being decoded.
    const htmlEntityDesc *entityReference(std::optional<std::string> &name, bool decoding) {
        ++pos_;
        name = xmlName();
        if (!decoding || !name || current() != ';')
            return nullptr;
        const htmlEntityDesc *entity = htmlEntityLookup(reinterpret_cast<const xmlChar *>(name->c_str()));
        if (entity)
            ++pos_;
        return entity;
    }

    // --- Markup -----------------------------------------------------------------------------------

    void document() {
        skipBlanks();
        commentsAndProcessingInstructions();
        if (atDoctype())
            doctype();
        skipBlanks();
        commentsAndProcessingInstructions();
        content();
    }

    void commentsAndProcessingInstructions() {
        while (atComment() || atProcessingInstruction()) {
            comment();
            processingInstruction();
            skipBlanks();
        }
    }

    // htmlParseContentInternal, with its record of the element it is in (currentNode, depth).
    void content() {
        currentNode_ = top();
        currentDepth_ = open_.size();
        for (;;) {
            if (current() == '<' && ahead(1) == '/') {
                if (endTag() && (currentNode_ || open_.empty())) {
                    currentNode_ = top();
                    currentDepth_ = open_.size();
                }
                continue;
            }
            if (current() == '<' && (ascii::isLetter(ahead(1)) || ahead(1) == '_' || ahead(1) == ':') &&
                top()) {
                const Name next = intern(tagNameAhead());
                nameAhead_ = next;
                nameAheadAt_ = pos_;
                if (closes(next, top())) {
                    closedAhead_.clear();
                    closedAheadAt_ = pos_;
                    autoClose(next, &closedAhead_);
                    continue;
                }
            }
            if (!open_.empty() && currentDepth_ >= open_.size() && currentNode_ != top()) {
                currentNode_ = top();
                currentDepth_ = open_.size();
                continue;
            }
            if (current() != 0 && holdsRawText(currentNode_)) {
                rawText();
                continue;
            }
            // The token after a DOCTYPE in the middle skips the checks above: "</x>" there is text.
            afterDoctype_ = atDoctype();
            if (afterDoctype_)
                doctype();
            if (atComment()) {
                comment();
            } else if (atProcessingInstruction()) {
                processingInstruction();
            } else if (current() == '<' && ascii::isLetter(ahead(1))) {
                if (!startTag())
                    return;
                currentNode_ = top();
                currentDepth_ = open_.size();
            } else if (current() == '<') {
                ++pos_;
            } else if (current() == '&') {
                reference();
            } else if (current() == 0) {
                return; // the end, or a NUL here, where the parser stops
            } else {
                characterData();
            }
        }
    }

    // htmlParseCharDataInternal: the text goes to the parser in pieces of about 1,000 bytes; a piece
    // straight in html or head (or in no element) opens a p, unless it is blank and followed by
    // '<' or the end (areBlanks).
    void characterData() {
        if (!topHoldsNoText()) {
            for (;;) {
                pos_ = endOfPlainText(text_, pos_);
                const Char c = currentChar(Reading::text);
                if (c.value == 0 || c.value == '<' || c.value == '&')
                    return;
                pos_ += c.length;
            }
        }
        std::size_t copied = 0;
        bool blank = true;
        auto opensParagraph = [&] { return !blank || (current() != '<' && current() != 0); };
        for (;;) {
            const Char c = currentChar(Reading::text);
            if (c.value == 0 || c.value == '<' || c.value == '&')
                break;
            if (IS_CHAR(static_cast<int>(c.value))) {
                copied += c.length;
                blank = blank && isBlankByte(static_cast<int>(c.value));
            }
            if (copied >= 1000) {
                if (opensParagraph()) {
                    checkParagraph();
                    pos_ += c.length;
                    characterData(); // in the p now
                    return;
                }
                copied = 0;
                blank = true;
            }
            pos_ += c.length;
        }
        if (copied > 0 && opensParagraph())
            checkParagraph();
    }

    // htmlParseReference: every reference but one to no character goes to the parser as text.
    void reference() {
        if (ahead(1) == '#') {
            if (characterReference() != 0)
                checkParagraph();
            return;
        }
        std::optional<std::string> name;
        entityReference(name, false);
        checkParagraph();
    }

    // htmlParseScript in recovery mode: up to "</" and the element's name in any case.
    void rawText() {
        stoppedByEndTag_ = false;
        const std::string &element = top()->name;
        for (;;) {
            const Char c = currentChar(Reading::text);
            if (c.value == 0)
                return;
            if (c.value == '<' && ahead(1) == '/' && endsRawText(element, pos_ + 2)) {
                stoppedByEndTag_ = true;
                return;
            }
            pos_ += c.length;
        }
    }

    bool endsRawText(const std::string &element, std::size_t at) const {
        for (std::size_t i = 0; i < element.size(); ++i)
            if (asciiLower(byteAt(at + i)) != element[i])
                return false;
        return true;
    }

    // htmlParseComment.
    void comment() {
        if (!atComment())
            return;
        pos_ += 4;
        Char q = currentChar(Reading::text);
        if (q.value == 0)
            return;
        pos_ += q.length;
        Char r = currentChar(Reading::text);
        if (r.value == 0)
            return;
        pos_ += r.length;
        Char c = currentChar(Reading::text);
        while (c.value != 0 && (c.value != '>' || r.value != '-' || q.value != '-')) {
            pos_ += c.length;
            const Char next = currentChar(Reading::text);
            if (q.value == '-' && r.value == '-' && c.value == '!' && next.value == '>') {
                c = next; // "--!>" closes it too
                break;
            }
            q = r;
            r = c;
            c = next;
        }
        if (c.value == '>')
            ++pos_;
    }

    // htmlParsePI: without a target only "<?" goes, and what follows is text.
    void processingInstruction() {
        if (!atProcessingInstruction())
            return;
        pos_ += 2;
        if (!xmlName())
            return;
        if (current() == '>') {
            ++pos_;
            return;
        }
        skipBlanks();
        Char c = currentChar(Reading::text);
        while (c.value != 0 && c.value != '>') {
            pos_ += c.length;
            c = currentChar(Reading::text);
        }
        if (c.value == '>')
            ++pos_;
    }

    // htmlParseDocTypeDecl: a quoted identifier may hold '>'.
    void doctype() {
        pos_ += 9;
        skipBlanks();
        xmlName();
        skipBlanks();
        if (startsWithUpper(0, "SYSTEM")) {
            pos_ += 6;
            skipBlanks();
            literal();
        } else if (startsWithUpper(0, "PUBLIC")) {
            pos_ += 6;
            skipBlanks();
            literal();
            skipBlanks();
            if (current() == '"' || current() == '\'')
                literal();
        }
        skipBlanks();
        while (current() != 0 && current() != '>')
            nextChar();
        if (current() == '>')
            ++pos_;
    }

    void literal() {
        const int quote = current();
        if (quote != '"' && quote != '\'')
            return;
        nextChar();
        while (current() != 0 && current() != quote)
            nextChar();
        if (current() == quote)
            nextChar();
    }

    // htmlParseEndTag. True when it closes the element it names.
    bool endTag() {
        const bool afterRawText = std::exchange(stoppedByEndTag_, false);
        const std::size_t tagMark = mark();
        pos_ += 2;
        const std::string nameText = htmlName();
        if (nameText.empty())
            return false; // only "</" goes
        skipBlanks();
        while (current() != 0 && current() != '>')
            nextChar();
        if (current() == '>')
            ++pos_;
        const Name name = intern(nameText);
        if (misplaced_ > 0 && (name->isHtml || name->isBody || name->isHead)) {
            --misplaced_;
            return false;
        }
        // libxml2 looks for the element from the innermost down; it ignores the tag if the element
        // is not open, or if a more important one (a table, say) is open inside it.
        const auto &at = name->openAt;
        if (!at.empty() && !isShieldedByMoreImportant(name)) {
            while (top() != name)
                pop();
            pop();
            return true;
        }
        const std::size_t looked = at.empty() ? open_.size() : open_.size() - at.back();
        steps_ += looked;
        if (writing_ && looked >= expensiveLook && !open_.empty())
            replaceIgnoredEndTag(tagMark, afterRawText);
        return false;
    }

    // An end tag the parser ignores after looking through many open elements becomes one it
    // ignores at once: a misplaced <html> and its end tag. In a script or style, where those would
    // be text, "</" without a name (a space after it, if a name would follow, goes into the
    // script's text); but where the text before ended because of the tag ("</script" and more),
    // the tag can only go altogether, and only if that joins the texts around it into one that
    // ends at the same place.
    void replaceIgnoredEndTag(std::size_t tagMark, bool afterRawText) {
        const bool inRawText = holdsRawText(currentNode_);
        if (inRawText && afterRawText && !canJoinRawText(tagMark))
            return;
        flush();
        out_.resize(tagMark);
        if (!inRawText) {
            out_ += "<html></html>";
        } else if (!afterRawText) {
            out_ += "</";
            const int c = current();
            if (ascii::isLetter(c) || c == '_' || c == ':' || c == '.')
                out_ += ' ';
        } else {
            // The joined text goes on to what follows; an end tag right after it is reached from
            // the text now.
            stoppedByEndTag_ = true;
        }
        changed_ = true;
    }

    // Whether the raw text before an end tag (up to `tagMark` in the output) and the text after it
    // are read as one text if the tag goes: nothing after it that the parser takes up at the start
    // of a turn (an end tag, a tag closing the element, a NUL), and no new end of the element
    // across the join.
    bool canJoinRawText(std::size_t tagMark) {
        const std::string &element = top()->name;
        const int c = current();
        if (pos_ < text_.size() && c == 0)
            return false;
        if (c == '<' && ahead(1) == '/' && !endsRawText(element, pos_ + 2))
            return false;
        if (c == '<' && (ascii::isLetter(ahead(1)) || ahead(1) == '_' || ahead(1) == ':') &&
            closes(intern(tagNameAhead()), top()))
            return false;
        flush();
        const std::size_t reach = element.size() + 1;
        const std::size_t before = std::min(reach, tagMark);
        const std::string window =
            out_.substr(tagMark - before, before) + std::string(text_.substr(pos_, reach));
        for (std::size_t start = 0; start < before; ++start) {
            if (start + 2 + element.size() > window.size() || start + 2 + element.size() <= before)
                continue;
            bool ends = window[start] == '<' && window[start + 1] == '/';
            for (std::size_t i = 0; ends && i < element.size(); ++i)
                ends = asciiLower(static_cast<unsigned char>(window[start + 2 + i])) == element[i];
            if (ends)
                return false;
        }
        return true;
    }

    // htmlParseStartTag and the end of htmlParseElementInternal. False where the parser stops.
    bool startTag() {
        const std::size_t tagMark = mark();
        const std::size_t tagStart = pos_;
        ++pos_;
        // The name looked at before the tag, unless a '.' made it shorter there.
        const std::string nameText = htmlName();
        const Name name =
            nameAheadAt_ == tagStart && nameAhead_->name == nameText ? nameAhead_ : intern(nameText);
        std::vector<Name> closed;
        if (closedAheadAt_ == tagStart)
            closed = std::move(closedAhead_);
        closedAheadAt_ = std::string::npos;
        autoClose(name, &closed);
        checkImplied(name);
        // Misplaced html, head and body tags are dropped; libxml2 counts them to ignore as many end
        // tags of the kind. For <body> it looks through all open elements.
        bool discarded = false;
        if ((name->isHtml && !open_.empty()) || (name->isHead && open_.size() != 1)) {
            discarded = true;
            ++misplaced_;
        }
        bool asHtml = false;
        if (name->isBody) {
            steps_ += open_.size();
            const std::size_t bodies = name->openAt.size();
            discarded = bodies > 0;
            misplaced_ += static_cast<int>(bodies);
            // Equal for the parser and cheap: end tags for what it closed first, and a misplaced <html>.
            asHtml = writing_ && discarded && open_.size() >= expensiveLook &&
                     !(afterDoctype_ && !closed.empty()) &&
                     std::none_of(closed.begin(), closed.end(),
                                  [](Name n) { return n->isHtml || n->isBody || n->isHead; });
            if (asHtml) {
                flush();
                out_.resize(tagMark);
                for (auto element = closed.begin(); element != closed.end(); ++element)
                    out_ += "</" + (*element)->name + ">";
                out_ += "<html";
                emitted_ = pos_;
                changed_ = true;
            }
        }
        const bool isMeta = name->name == "meta";
        skipBlanks();
        std::vector<std::string> keptNames;
        std::vector<Attribute> encodingAttributes;
        bool hasAttributes = false;
        std::size_t attributeCount = 0;
        // A kept attribute without a value looks for '=' past the blanks after its name. When the
        // attributes after it are left out and stray text starting with '=' follows, something
        // must stand between them that the parser skips as well.
        bool valueCouldJoinUp = false;
        while (current() != 0 && current() != '>' && !(current() == '/' && ahead(1) == '>')) {
            const std::size_t itemMark = mark();
            std::string attribute = htmlName();
            if (attribute.empty()) {
                if (writing_ && current() == '=' && valueCouldJoinUp)
                    out_ += "% ";
                valueCouldJoinUp = false;
                // Not an attribute: skipped up to a blank or the end of the tag.
                while (current() != 0 && !isBlankByte(current()) && current() != '>' &&
                       !(current() == '/' && ahead(1) == '>'))
                    nextChar();
                skipBlanks();
                continue;
            }
            skipBlanks();
            const bool setsEncoding =
                isMeta && (attribute == "charset" || attribute == "http-equiv" || attribute == "content");
            std::optional<std::string> value;
            if (current() == '=') {
                ++pos_;
                skipBlanks();
                value.emplace();
                attributeValue(setsEncoding ? &*value : nullptr);
            }
            skipBlanks();
            hasAttributes = true;
            // Compared with every earlier one, and appended behind them.
            steps_ += attributeCount++;
            // libxml2 drops an attribute whose name came earlier in the tag; only those that are
            // kept need that check.
            const bool isWanted = !asHtml && (setsEncoding || isKept(attribute));
            const bool isFirst =
                isWanted && std::find(keptNames.begin(), keptNames.end(), attribute) == keptNames.end();
            if (isFirst) {
                if (setsEncoding)
                    encodingAttributes.emplace_back(attribute, std::move(value));
                keptNames.push_back(std::move(attribute));
                valueCouldJoinUp = !value;
            } else {
                dropSince(itemMark);
            }
        }
        if (isMeta && hasAttributes)
            checkMeta(encodingAttributes);
        if (!discarded)
            push(name);
        // htmlParseElementInternal goes on with the innermost element, the new one or, after a
        // dropped tag, the one it was in.
        if (!top()) {
            if (current() == '>')
                ++pos_;
            return true;
        }
        if (current() == '/' && ahead(1) == '>') {
            pos_ += 2;
            pop();
            return true;
        }
        if (current() != '>') {
            pop();
            return false; // unfinished: the parser closes everything and stops
        }
        ++pos_;
        if (top()->isEmpty)
            pop();
        return true;
    }

    bool isKept(const std::string &attribute) const {
        for (std::string_view name : keep_)
            if (name == attribute)
                return true;
        return false;
    }

    // htmlParseAttValue and htmlParseHTMLAttribute; the decoded value goes to `decoded` if given.
    void attributeValue(std::string *decoded) {
        int stop = 0;
        if (current() == '"' || current() == '\'') {
            stop = current();
            ++pos_;
        }
        while (current() != 0 && current() != stop) {
            if (stop == 0 && (current() == '>' || isBlankByte(current())))
                break;
            if (current() == '&') {
                if (ahead(1) == '#') {
                    const std::uint32_t c = characterReference();
                    if (decoded)
                        appendUtf8(*decoded, c);
                    continue;
                }
                std::optional<std::string> name;
                const htmlEntityDesc *entity = entityReference(name, decoded != nullptr);
                if (decoded) {
                    if (entity)
                        appendUtf8(*decoded, entity->value);
                    else
                        *decoded += '&' + name.value_or("");
                }
                continue;
            }
            if (!decoded && current() < 0x80) {
                ++pos_;
                continue;
            }
            const Char c = currentChar(Reading::valueOrName);
            if (decoded)
                appendUtf8(*decoded, c.value);
            pos_ += c.length;
        }
        if (stop != 0 && current() == stop)
            ++pos_;
    }

    std::string_view text_;
    std::span<const std::string_view> keep_;
    std::string convertedText_;
    std::size_t pos_ = 0;
    bool converted_ = false;
    bool encodingDeclared_ = false;
    bool byteOrderMarkKept_ = false;

    // The parser's stack of open elements and what it keeps beside it (ctxt->html, ctxt->depth).
    std::unordered_map<std::string, Element, NameHash, std::equal_to<>> elements_;
    std::array<Name, 64> recentNames_{};
    Name html_ = intern("html");
    Name head_ = intern("head");
    Name body_ = intern("body");
    Name paragraph_ = intern("p");
    std::vector<Name> open_;
    std::array<std::vector<std::size_t>, endPriorityLevels> moreImportant_;
    int htmlLevel_ = 1;
    int misplaced_ = 0;
    Name currentNode_ = nullptr;
    std::size_t currentDepth_ = 0;
    std::vector<Name> closedAhead_;
    Name nameAhead_ = nullptr;
    std::size_t nameAheadAt_ = std::string::npos;
    bool stoppedByEndTag_ = false;
    bool afterDoctype_ = false;
    bool nameReadAfresh_ = false;
    std::size_t nameReadAfreshEnd_ = 0;
    std::size_t closedAheadAt_ = std::string::npos;

    bool writing_;
    std::size_t steps_ = 0;
    std::string out_;
    std::size_t emitted_ = 0;
    bool changed_ = false;

    // The result is parsed with the encoding named UTF-8: libxml2 then skips a byte-order mark and
    // still looks at the next four bytes. Only the mark it skipped in the original may go, and the
    // four bytes must not make it switch or skip again.
    bool startsTheSameAsUtf8(std::string_view bytes) const {
        if (byteOrderMarkKept_)
            bytes.remove_prefix(3);
        if (bytes.starts_with("\xEF\xBB\xBF"))
            return false;
        if (bytes.size() < 4)
            return true;
        const auto encoding = xmlDetectCharEncoding(reinterpret_cast<const unsigned char *>(bytes.data()), 4);
        return encoding == XML_CHAR_ENCODING_NONE || encoding == XML_CHAR_ENCODING_UTF8;
    }
};

} // namespace

std::optional<std::string> htmlForParser(std::string_view html, std::span<const std::string_view> keep,
                                         std::size_t stepsWorthRewriting) {
    // The pass follows libxml2 2.9; other versions read markup differently (and may not need it).
    if (std::atoi(xmlParserVersion) / 100 != 209)
        return std::nullopt;
    // A document libxml2 reads quickly as it is goes to it as it is.
    const auto steps = ParserInputPass(html, keep, false).parserSteps();
    if (!steps || *steps < stepsWorthRewriting)
        return std::nullopt;
    return ParserInputPass(html, keep, true).result();
}

} // namespace glyphmill::clipboard
