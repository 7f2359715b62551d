// Arbitrary bytes as clipboard HTML: parsing and collecting the visible text must never crash or
// hang, and the text must never hold an unpaired surrogate. The document the reader gives libxml2
// (less the attributes it never reads, with ignored end tags made cheap) must parse into the same
// nodes as the bytes themselves.
//
// Deep documents from short inputs: after a first byte 1 the rest is read inside 1,000 open
// elements; after a first byte 2 and a count n the rest is repeated 16·(n+1) times, so that its
// unclosed tags nest as deep as that. (libxml2 used to give up below 256 levels.)
#include "clipboard/text/HtmlParserInput.h"
#include "clipboard/text/HtmlText.h"
#include "transform/TextModel.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view readAttributes[] = {"hidden", "style", "start"};

struct DocumentFree {
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};

std::unique_ptr<xmlDoc, DocumentFree> parse(std::string_view bytes, const char *encoding) {
    return std::unique_ptr<xmlDoc, DocumentFree>(htmlReadMemory(
        bytes.data(), static_cast<int>(bytes.size()), nullptr, encoding,
        HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET | XML_PARSE_HUGE));
}

std::string_view text(const xmlChar *s) {
    return s ? std::string_view(reinterpret_cast<const char *>(s)) : std::string_view("(null)");
}

// Every node, one a line, with the attributes the reader keeps; not the text of scripts and
// styles, which is never shown (an ignored end tag in one may leave a space there).
std::string outline(const xmlDoc *document) {
    std::string out;
    if (!document)
        return out;
    const xmlNode *node = document->children;
    while (node) {
        out += std::to_string(node->type);
        out += ' ';
        out += text(node->name);
        const bool isElement = node->type == XML_ELEMENT_NODE;
        const bool isMeta = isElement && text(node->name) == "meta";
        if (isElement) {
            for (const xmlAttr *a = node->properties; a; a = a->next) {
                const std::string_view name = text(a->name);
                bool kept = isMeta && (name == "charset" || name == "http-equiv" || name == "content");
                for (std::string_view read : readAttributes)
                    kept = kept || name == read;
                if (!kept)
                    continue;
                out += ' ';
                out += name;
                out += '=';
                out += a->children ? text(a->children->content) : "(none)";
            }
        } else if (node->type != XML_DTD_NODE) {
            out += " [";
            out += text(node->content);
            out += ']';
        }
        out += '\n';
        const bool rawText = isElement && (text(node->name) == "script" || text(node->name) == "style");
        if (isElement && !rawText && node->children) {
            out += "{\n";
            node = node->children;
            continue;
        }
        while (node && !node->next) {
            node = node->parent;
            if (!node || node->type == XML_HTML_DOCUMENT_NODE || node->type == XML_DOCUMENT_NODE)
                return out;
            out += "}\n";
        }
        if (node)
            node = node->next;
    }
    return out;
}

std::string markup(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    if (size >= 1 && data[0] == 1) {
        std::string deep;
        for (int i = 0; i < 1000; ++i)
            deep += "<span>";
        return deep.append(bytes.substr(1));
    }
    if (size >= 2 && data[0] == 2) {
        std::string repeated;
        for (int i = 0; i < 16 * (data[1] + 1); ++i)
            repeated.append(bytes.substr(2));
        return repeated;
    }
    return std::string(bytes);
}

void ignoreMessage(void *, const char *, ...) {}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    xmlInitParser();
    // The parses here are not silenced by the reader, and converters report bad input loudly.
    xmlSetGenericErrorFunc(nullptr, &ignoreMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string html = markup(data, size);
    const auto text = glyphmill::clipboard::htmlVisibleText(html);
    if (text) {
        const std::u16string &units = *text;
        for (std::size_t i = 0; i < units.size(); ++i) {
            if (glyphmill::text::isLeadSurrogate(units[i]) && i + 1 < units.size() &&
                glyphmill::text::isTrailSurrogate(units[i + 1]))
                ++i;
            else if (glyphmill::text::isLeadSurrogate(units[i]) ||
                     glyphmill::text::isTrailSurrogate(units[i]))
                std::abort();
        }
    }
    if (const auto lean = glyphmill::clipboard::htmlForParser(html, readAttributes, 0))
        if (outline(parse(*lean, "UTF-8").get()) != outline(parse(html, nullptr).get()))
            std::abort();
    return 0;
}
