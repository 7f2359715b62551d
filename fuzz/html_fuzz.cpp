// Arbitrary bytes as clipboard HTML: parsing and collecting the visible text must never crash or
// hang, and the text must never hold an unpaired surrogate.
#include "clipboard/HtmlText.h"
#include "transform/TextModel.h"

#include <libxml/parser.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    xmlInitParser();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    const auto text = glyphmill::clipboard::htmlVisibleText(bytes);
    if (!text)
        return 0;
    const std::u16string &units = *text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (glyphmill::text::isLeadSurrogate(units[i]) && i + 1 < units.size() &&
            glyphmill::text::isTrailSurrogate(units[i + 1]))
            ++i;
        else if (glyphmill::text::isLeadSurrogate(units[i]) || glyphmill::text::isTrailSurrogate(units[i]))
            std::abort();
    }
    return 0;
}
