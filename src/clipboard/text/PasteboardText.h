// Reading the clipboard as text and writing text back: the primitives under every clipboard
// command. They read the pasteboard afresh on every call and keep nothing.
#pragma once

#include "platform/Pasteboard.h"

#include <optional>
#include <string>
#include <string_view>

namespace glyphmill::pasteboardText {

// The plain string if there is one, else the RTF's visible text; without requireNonBlank, the
// HTML's visible text last. With requireNonBlank a blank text counts as none. Never trimmed.
std::optional<std::u16string> readText(const Pasteboard &pasteboard, bool requireNonBlank);

// The visible text of the HTML on the clipboard, or of a plain string that holds markup (a "<"
// and a ">"); none when that text is blank.
std::optional<std::u16string> readHTMLAsText(const Pasteboard &pasteboard);

// One of the rich types is on the clipboard.
bool hasRichFormatting(const Pasteboard &pasteboard);

// Clears the clipboard, then puts the text there as its only representation. False when the
// clipboard did not end up holding it (the window system gave it to someone else).
[[nodiscard]] bool writePlainText(Pasteboard &pasteboard, std::u16string_view text);

// Rewrites a rich clipboard whose text is not blank as its plain text with LF line breaks.
// True when it rewrote the clipboard; false when there was nothing to do or the write failed.
bool clearFormattingIfRich(Pasteboard &pasteboard);

} // namespace glyphmill::pasteboardText
