// The system's general clipboard, seen as a list of typed representations. Types are MIME
// names; raw window-system targets are never listed.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

using PasteboardData = std::vector<std::uint8_t>;

namespace pasteboardType {
inline constexpr std::string_view plainText = "text/plain";
inline constexpr std::string_view html = "text/html";
// RTF goes by three names on Linux; readers take the first one present.
inline constexpr std::array<std::string_view, 3> rtf = {"text/rtf", "application/rtf", "text/richtext"};

// Any of these on the clipboard means it carries formatting: the identifiers other systems use
// for RTF, RTFD, HTML and web archives (they reach Linux through cross-platform programs and
// remote desktops), then the Linux rich types.
inline constexpr std::array<std::string_view, 11> rich = {
    "text/rtf",
    "com.apple.flat-rtfd",
    "text/html",
    "com.apple.webarchive",
    "Apple Web Archive pasteboard type",
    "Apple HTML pasteboard type",
    "NeXT Rich Text Format v1.0 pasteboard type",
    "NeXT RTFD pasteboard type",
    "application/rtf",
    "text/richtext",
    "application/x-qt-richtext",
};
} // namespace pasteboardType

class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    virtual std::vector<std::string> types() const = 0;
    // The text held for a type, decoded from UTF-8; none when the type is absent.
    virtual std::optional<std::u16string> string(std::string_view type) const = 0;
    virtual std::optional<PasteboardData> data(std::string_view type) const = 0;
    // Both raise the change count, and answer whether the clipboard now holds what was asked for
    // and is ours: nothing after clearContents, the text after setString. A window system may
    // refuse us the clipboard; the change then did not happen.
    [[nodiscard]] virtual bool clearContents() = 0;
    [[nodiscard]] virtual bool setString(std::u16string_view text, std::string_view type) = 0;
    // Grows on every change of the clipboard, whoever made it.
    virtual std::int64_t changeCount() const = 0;
};

} // namespace glyphmill
