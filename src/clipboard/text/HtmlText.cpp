// How an HTML document becomes plain text, close to what a browser shows:
// - Nothing is shown of head (title, meta), script, style, template, noscript, svg, iframe,
//   audio, video, canvas, select, comments, nor of elements marked hidden or styled display:none.
// - Runs of white space collapse to one space, which disappears at the start and end of a line;
//   pre, textarea, listing and xmp keep their text as written (less the LF right after the tag).
// - Block elements (paragraphs, headings, divisions, lists, tables, rows, ...) start and end a
//   line. Margins make no blank lines: consecutive block edges give one LF; br gives one LF each.
// - List items start with "• " in unordered and "N. " in ordered lists (from the start
//   attribute), one TAB of indent per level of nesting.
// - Table cells are separated by TAB, each row on a line of its own.
// - Entities and character references are decoded; line breaks at the end are dropped.
// Documents of any depth and length are read whole, and in time linear in their size.
#include "clipboard/text/HtmlText.h"

#include "clipboard/text/HtmlParserInput.h"
#include "common/Utf8.h"

#include <libxml/HTMLparser.h>
#include <libxml/SAX2.h>
#include <libxml/dict.h>
#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

namespace glyphmill::clipboard {
namespace {

enum class ElementKind : std::uint8_t {
    inlineContent,
    invisible,
    block,
    lineBreak,
    unorderedList,
    orderedList,
    listItem,
    row,
    cell,
    preformatted,
};

ElementKind kindOf(const xmlNode *element) {
    static const std::unordered_map<std::string_view, ElementKind> kinds = [] {
        std::unordered_map<std::string_view, ElementKind> table;
        for (std::string_view name : {"head", "title", "script", "style", "template", "noscript", "svg",
                                      "iframe", "audio", "video", "canvas", "select", "embed"})
            table.emplace(name, ElementKind::invisible);
        for (std::string_view name :
             {"address", "article", "aside", "blockquote", "caption", "center",   "dd",         "details",
              "dialog",  "dir",     "div",   "dl",         "dt",      "fieldset", "figcaption", "figure",
              "footer",  "form",    "h1",    "h2",         "h3",      "h4",       "h5",         "h6",
              "header",  "hgroup",  "hr",    "legend",     "main",    "menu",     "nav",        "p",
              "section", "summary", "table", "tbody",      "thead",   "tfoot",    "body",       "html"})
            table.emplace(name, ElementKind::block);
        for (std::string_view name : {"pre", "textarea", "listing", "xmp", "plaintext"})
            table.emplace(name, ElementKind::preformatted);
        table.emplace("br", ElementKind::lineBreak);
        table.emplace("ul", ElementKind::unorderedList);
        table.emplace("ol", ElementKind::orderedList);
        table.emplace("li", ElementKind::listItem);
        table.emplace("tr", ElementKind::row);
        table.emplace("td", ElementKind::cell);
        table.emplace("th", ElementKind::cell);
        return table;
    }();
    auto found = kinds.find(reinterpret_cast<const char *>(element->name));
    return found == kinds.end() ? ElementKind::inlineContent : found->second;
}

// The only attributes the text depends on (below); the others may be left out before parsing, so a
// rule that reads another attribute needs it added here.
constexpr std::string_view readAttributes[] = {"hidden", "style", "start"};

struct XmlStringFree {
    void operator()(xmlChar *text) const { xmlFree(text); }
};
using XmlString = std::unique_ptr<xmlChar, XmlStringFree>;

std::string attribute(const xmlNode *element, const char *name) {
    XmlString value(xmlGetProp(element, reinterpret_cast<const xmlChar *>(name)));
    return value ? std::string(reinterpret_cast<const char *>(value.get())) : std::string();
}

bool isHiddenByAttributes(const xmlNode *element) {
    if (element->properties == nullptr)
        return false;
    if (xmlHasProp(element, reinterpret_cast<const xmlChar *>("hidden")) != nullptr)
        return true;
    std::string style = attribute(element, "style");
    std::erase_if(style, [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
    std::transform(style.begin(), style.end(), style.begin(),
                   [](char c) { return char(std::tolower(static_cast<unsigned char>(c))); });
    return style.find("display:none") != std::string::npos;
}

bool isCollapsibleSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

// Collects UTF-8 lines; boundaries and spaces wait until text follows, so none pile up.
class PlainTextWriter {
public:
    void flowText(std::string_view text) {
        std::size_t i = 0;
        while (i < text.size()) {
            if (isCollapsibleSpace(text[i])) {
                if (!atSegmentStart_)
                    pendingSpace_ = true;
                ++i;
                continue;
            }
            std::size_t end = i;
            while (end < text.size() && !isCollapsibleSpace(text[end]))
                ++end;
            startContent();
            out_.append(text.substr(i, end - i));
            i = end;
        }
    }

    void preformattedText(std::string_view text) {
        if (text.empty())
            return;
        startContent();
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\r') {
                out_.push_back('\n');
                if (i + 1 < text.size() && text[i + 1] == '\n')
                    ++i;
            } else {
                out_.push_back(text[i]);
            }
        }
        atSegmentStart_ = out_.back() == '\n';
    }

    // A block edge: what follows goes on a new line, if anything follows.
    void blockBoundary() {
        pendingBoundary_ = true;
        pendingSpace_ = false;
    }

    // Rows and list items start their line now, so that empty cells and markers land on it.
    void beginLine() {
        if (!out_.empty() && out_.back() != '\n')
            out_.push_back('\n');
        settleAtSegmentStart();
    }

    void lineBreak() {
        if (pendingBoundary_ && !atSegmentStart_)
            out_.push_back('\n');
        out_.push_back('\n');
        settleAtSegmentStart();
    }

    void cellSeparator() {
        out_.push_back('\t');
        settleAtSegmentStart();
    }

    void marker(std::size_t indent, std::string_view text) {
        out_.append(indent, '\t');
        out_.append(text);
        settleAtSegmentStart();
    }

    std::string finish() {
        while (!out_.empty() && out_.back() == '\n')
            out_.pop_back();
        return std::move(out_);
    }

private:
    void startContent() {
        if (pendingBoundary_ && !atSegmentStart_)
            out_.push_back('\n');
        else if (pendingSpace_ && !atSegmentStart_)
            out_.push_back(' ');
        pendingBoundary_ = pendingSpace_ = atSegmentStart_ = false;
    }

    void settleAtSegmentStart() {
        pendingBoundary_ = pendingSpace_ = false;
        atSegmentStart_ = true;
    }

    std::string out_;
    bool pendingBoundary_ = false;
    bool pendingSpace_ = false;
    bool atSegmentStart_ = true;
};

class TreeTextCollector {
public:
    std::string collect(xmlDoc *document) {
        xmlNode *node = document->children;
        while (node != nullptr) {
            if (enter(node)) {
                if (node->children != nullptr) {
                    node = node->children;
                    continue;
                }
                leave(node);
            }
            while (node != nullptr && node->next == nullptr) {
                node = node->parent;
                if (node == nullptr || node == reinterpret_cast<xmlNode *>(document))
                    return writer_.finish();
                leave(node);
            }
            node = node->next;
        }
        return writer_.finish();
    }

private:
    struct ListLevel {
        bool isOrdered;
        long nextNumber;
    };

    // True when the node's children are to be visited (and leave called afterwards).
    bool enter(xmlNode *node) {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
            writeText(node);
            return false;
        }
        if (node->type != XML_ELEMENT_NODE || node->name == nullptr)
            return false;
        const ElementKind kind = kindOf(node);
        if (kind == ElementKind::invisible || isHiddenByAttributes(node))
            return false;
        switch (kind) {
        case ElementKind::block:
            writer_.blockBoundary();
            break;
        case ElementKind::lineBreak:
            writer_.lineBreak();
            break;
        case ElementKind::unorderedList:
        case ElementKind::orderedList:
            writer_.blockBoundary();
            lists_.push_back({kind == ElementKind::orderedList, startNumber(node)});
            break;
        case ElementKind::listItem:
            writeListMarker();
            break;
        case ElementKind::row:
            writer_.beginLine();
            cellsInRows_.push_back(0);
            break;
        case ElementKind::cell:
            if (cellsInRows_.empty())
                writer_.blockBoundary();
            else if (cellsInRows_.back()++ > 0)
                writer_.cellSeparator();
            break;
        case ElementKind::preformatted:
            writer_.blockBoundary();
            ++preformattedDepth_;
            isAtPreformattedStart_ = true;
            break;
        case ElementKind::inlineContent:
        case ElementKind::invisible:
            break;
        }
        return true;
    }

    void leave(xmlNode *node) {
        if (node->type != XML_ELEMENT_NODE || node->name == nullptr)
            return;
        switch (kindOf(node)) {
        case ElementKind::block:
        case ElementKind::listItem:
            writer_.blockBoundary();
            break;
        case ElementKind::unorderedList:
        case ElementKind::orderedList:
            lists_.pop_back();
            writer_.blockBoundary();
            break;
        case ElementKind::row:
            cellsInRows_.pop_back();
            writer_.blockBoundary();
            break;
        case ElementKind::cell:
            if (cellsInRows_.empty())
                writer_.blockBoundary();
            break;
        case ElementKind::preformatted:
            --preformattedDepth_;
            isAtPreformattedStart_ = false;
            writer_.blockBoundary();
            break;
        case ElementKind::lineBreak:
        case ElementKind::inlineContent:
        case ElementKind::invisible:
            break;
        }
    }

    void writeText(const xmlNode *node) {
        if (node->content == nullptr)
            return;
        std::string_view text = reinterpret_cast<const char *>(node->content);
        if (preformattedDepth_ == 0) {
            writer_.flowText(text);
            return;
        }
        // A browser drops the line break that directly follows the opening tag.
        if (isAtPreformattedStart_ && !text.empty() && text.front() == '\n')
            text.remove_prefix(1);
        isAtPreformattedStart_ = false;
        writer_.preformattedText(text);
    }

    void writeListMarker() {
        writer_.beginLine();
        if (lists_.empty()) {
            writer_.marker(0, "• ");
            return;
        }
        ListLevel &level = lists_.back();
        const std::size_t indent = lists_.size() - 1;
        if (level.isOrdered)
            writer_.marker(indent, std::to_string(level.nextNumber++) + ". ");
        else
            writer_.marker(indent, "• ");
    }

    static long startNumber(const xmlNode *list) {
        const std::string start = attribute(list, "start");
        long number = 1;
        auto [end, error] = std::from_chars(start.data(), start.data() + start.size(), number);
        (void)end;
        return error == std::errc() && number > -1000000000 && number < 1000000000 ? number : 1;
    }

    PlainTextWriter writer_;
    std::vector<ListLevel> lists_;
    std::vector<std::size_t> cellsInRows_;
    std::size_t preformattedDepth_ = 0;
    bool isAtPreformattedStart_ = false;
};

struct DocumentFree {
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, DocumentFree>;

struct ParserContextFree {
    void operator()(xmlParserCtxt *context) const { xmlFreeParserCtxt(context); }
};

// What htmlReadMemory does, without its limits: XML_PARSE_HUGE lifts the nesting limit (libxml2
// stops the whole parse below 256 open elements otherwise) and the 10,000,000-byte limit on a text
// node; the dictionary of names gets no limit either (past about 22 MB of names it refuses new
// ones, and libxml2 then loops forever at the next tag). A named encoding is used as it is,
// whatever the document says.
Document parsedHtml(std::string_view bytes, const char *encoding) {
    std::unique_ptr<xmlParserCtxt, ParserContextFree> context(
        xmlCreateMemoryParserCtxt(bytes.data(), static_cast<int>(bytes.size())));
    if (!context || !context->sax || !context->input)
        return nullptr;
    htmlDefaultSAXHandlerInit();
    std::memcpy(context->sax, &htmlDefaultSAXHandler, sizeof(xmlSAXHandlerV1));
    htmlCtxtUseOptions(context.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                          HTML_PARSE_NONET | XML_PARSE_HUGE);
    xmlDictSetLimit(context->dict, 0);
    context->html = 1;
    if (encoding) {
        xmlCharEncodingHandlerPtr handler = xmlFindCharEncodingHandler(encoding);
        if (!handler)
            return nullptr;
        xmlSwitchToEncoding(context.get(), handler);
        xmlFree(const_cast<xmlChar *>(context->input->encoding));
        context->input->encoding = xmlStrdup(reinterpret_cast<const xmlChar *>(encoding));
    }
    htmlParseDocument(context.get());
    Document document(context->myDoc);
    context->myDoc = nullptr;
    return document;
}

// Windows-style clipboard HTML starts with "Version:0.9" and byte offsets before the markup.
std::string_view withoutClipboardHeader(std::string_view html) {
    if (html.starts_with("Version:") && html.find("StartHTML:") != std::string_view::npos) {
        const std::size_t markup = html.find('<');
        return markup == std::string_view::npos ? std::string_view() : html.substr(markup);
    }
    return html;
}

// The parser reports some problems (bad bytes for the declared encoding) whatever the options say;
// a clipboard reader has no one to tell, so the reports are silenced for the parse.
class SilencedParserMessages {
public:
    SilencedParserMessages() : function_(xmlGenericError), context_(xmlGenericErrorContext) {
        xmlSetGenericErrorFunc(nullptr, &ignore);
    }
    ~SilencedParserMessages() { xmlSetGenericErrorFunc(context_, function_); }
    SilencedParserMessages(const SilencedParserMessages &) = delete;
    SilencedParserMessages &operator=(const SilencedParserMessages &) = delete;

private:
    static void ignore(void *, const char *, ...) {}
    xmlGenericErrorFunc function_;
    void *context_;
};

} // namespace

std::optional<std::u16string> htmlVisibleText(std::string_view html) {
    html = withoutClipboardHeader(html);
    if (html.empty() || html.size() > std::size_t(INT32_MAX))
        return std::nullopt;
    const SilencedParserMessages silenced;
    // With no encoding named, libxml2 follows a byte-order mark or a <meta> charset and reads
    // UTF-8 otherwise (Latin-1 when the bytes are not UTF-8). A rewritten document is UTF-8.
    const auto rewritten = htmlForParser(html, readAttributes);
    Document document = rewritten && rewritten->size() <= std::size_t(INT32_MAX)
                            ? parsedHtml(*rewritten, "UTF-8")
                            : parsedHtml(html, nullptr);
    if (!document)
        return std::nullopt;
    return utf8::decodeLossy(TreeTextCollector().collect(document.get()));
}

} // namespace glyphmill::clipboard
