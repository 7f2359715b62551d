// Arbitrary bytes as clipboard RTF: the reader must never crash, hang or grow its output beyond
// two UTF-16 units per input byte, and must answer exactly when the bytes open an RTF group.
#include "clipboard/text/RtfReader.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const auto text = glyphmill::clipboard::rtfVisibleText(bytes);

    std::size_t start = bytes.find_first_not_of(" \t\n\v\f\r");
    const bool looksLikeRtf = start != std::string_view::npos && bytes.substr(start, 5) == "{\\rtf";
    if (text.has_value() != looksLikeRtf)
        std::abort();
    if (text && text->size() > 2 * size)
        std::abort();
    return 0;
}
