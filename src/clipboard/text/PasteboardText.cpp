#include "clipboard/text/PasteboardText.h"

#include "clipboard/text/HtmlText.h"
#include "clipboard/text/RtfReader.h"
#include "clipboard/text/TextClasses.h"
#include "common/Utf8.h"

#include <algorithm>

namespace glyphmill::pasteboardText {

namespace {

std::string_view asChars(const PasteboardData &bytes) {
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

std::optional<std::u16string> unlessBlank(std::optional<std::u16string> text, bool requireNonBlank) {
    if (text && requireNonBlank && textClasses::isBlank(*text))
        return std::nullopt;
    return text;
}

std::optional<PasteboardData> rtfData(const Pasteboard &pasteboard) {
    for (auto type : pasteboardType::rtf)
        if (auto bytes = pasteboard.data(type))
            return bytes;
    return std::nullopt;
}

std::optional<std::u16string> visibleTextUnlessBlank(std::string_view html) {
    auto text = clipboard::htmlVisibleText(html);
    if (!text || textClasses::isBlank(*text))
        return std::nullopt;
    return text;
}

} // namespace

std::optional<std::u16string> readText(const Pasteboard &pasteboard, bool requireNonBlank) {
    if (auto plain = pasteboard.string(pasteboardType::plainText))
        return unlessBlank(std::move(plain), requireNonBlank);
    if (auto rtf = rtfData(pasteboard))
        if (auto text = clipboard::rtfVisibleText(asChars(*rtf)))
            return unlessBlank(std::move(text), requireNonBlank);
    if (requireNonBlank)
        return std::nullopt;
    return readHTMLAsText(pasteboard);
}

std::optional<std::u16string> readHTMLAsText(const Pasteboard &pasteboard) {
    if (auto html = pasteboard.data(pasteboardType::html))
        if (auto text = visibleTextUnlessBlank(asChars(*html)))
            return text;
    auto plain = pasteboard.string(pasteboardType::plainText);
    if (!plain || plain->find(u'<') == std::u16string::npos || plain->find(u'>') == std::u16string::npos)
        return std::nullopt;
    // A lone surrogate cannot be encoded without loss; such a string is not parsed.
    std::string bytes;
    if (!utf8::encodeStrict(*plain, bytes))
        return std::nullopt;
    return visibleTextUnlessBlank(bytes);
}

bool hasRichFormatting(const Pasteboard &pasteboard) {
    for (const auto &type : pasteboard.types())
        if (std::find(pasteboardType::rich.begin(), pasteboardType::rich.end(), type) !=
            pasteboardType::rich.end())
            return true;
    return false;
}

bool writePlainText(Pasteboard &pasteboard, std::u16string_view text) {
    // What counts is the text in place at the end: a clear that did not take is replaced anyway.
    [[maybe_unused]] const bool cleared = pasteboard.clearContents();
    return pasteboard.setString(text, pasteboardType::plainText);
}

bool clearFormattingIfRich(Pasteboard &pasteboard) {
    if (!hasRichFormatting(pasteboard))
        return false;
    auto text = readText(pasteboard, false);
    if (!text || textClasses::isBlank(*text))
        return false;
    return writePlainText(pasteboard, textClasses::normalizeLineBreaks(*text));
}

} // namespace glyphmill::pasteboardText
