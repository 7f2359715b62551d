// The visible text of an HTML document, as the clipboard's HTML fallback reads it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace glyphmill::clipboard {

// What a reader of the rendered page sees, as plain lines; the rules are at the top of
// HtmlText.cpp. The bytes are UTF-8 unless a byte-order mark or a <meta> charset says otherwise.
// None when the parser makes no document of the bytes (empty input).
std::optional<std::u16string> htmlVisibleText(std::string_view html);

} // namespace glyphmill::clipboard
