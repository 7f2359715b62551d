// Deterministic inputs for the clipboard text benchmarks: a list of lines as people copy them
// (contacts, links, file names, CSV and log rows, prose, repeats, stray white space), an HTML
// page as a site serves it, and an RTF document as a word processor writes it. Each generator
// has its own seed, so every machine measures the same bytes.
#pragma once

#include <cstddef>
#include <string>

namespace glyphmill::bench {

// UTF-8 lines ending in LF (a few in CR LF); about a fifth repeat an earlier line, some of them
// with an accent decomposed, so Remove Duplicates has work to do.
std::string makeLineList(std::size_t minimumBytes);

// One UTF-8 page: head with style and script, then nested divisions holding articles, tables,
// nested lists, preformatted code, forms, figures, hidden and scripted parts, entities.
std::string makeHtmlPage(std::size_t minimumBytes);

// One 7-bit RTF document: font, colour and style tables, document information, paragraphs with
// character formatting, \'hh and \uN bytes under \uc1, Japanese in a double-byte font, lists,
// tables, fields, hidden text, footnotes, and pictures in hex (about a sixth of the bytes).
std::string makeRtfDocument(std::size_t minimumBytes);

// Each of these ends with the element, row or line that reaches minimumBytes.

// Pages made to be hard on an HTML reader, as a hostile site could put them on the clipboard.
enum class HostileHtml {
    attributesInOneTag,     // one start tag with all attributes of the page
    tagsWithManyAttributes, // paragraphs of 1,000 attributes each
    nestedUnclosedElements, // spans opened and never closed, a word every hundred
    oneTextNode,            // a single paragraph of words
    longAttributeValues,    // values of 100,000 bytes
    manyComments,           // a comment before every word
    endTagsInDeepNesting,   // 100,000 open spans, then end tags of elements not open among words
    bodyTagsInDeepNesting,  // 100,000 open spans, then <body> tags among words
};

std::string makeHostileHtml(HostileHtml shape, std::size_t minimumBytes);

} // namespace glyphmill::bench
