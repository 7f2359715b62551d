// The visible text of an RTF document, as the clipboard's RTF fallback reads it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace glyphmill::clipboard {

// The characters a reader of the document sees, with LF after each paragraph but the last and
// TAB between table cells. Font, colour and style tables, document information, pictures, fields'
// instructions, headers, footers, footnotes, hidden text and every "\*" destination contribute
// nothing. None when the bytes do not start with "{\rtf" after optional white space.
std::optional<std::u16string> rtfVisibleText(std::string_view rtf);

} // namespace glyphmill::clipboard
