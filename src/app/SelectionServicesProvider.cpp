#include "app/SelectionServicesProvider.h"

#include "clipboard/text/TextClasses.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill {

SelectionServicesProvider::SelectionServicesProvider(ProtectedTermsStore &termsStore, AppSettings &settings)
    : termsStore_(termsStore), settings_(settings) {}

bool SelectionServicesProvider::transform(TextTransformKind kind, Pasteboard &pasteboard) {
    std::optional<std::u16string> text = pasteboard.string(pasteboardType::plainText);
    if (!text || textClasses::isBlank(*text))
        return false;
    // The text as read, untrimmed: white space around the selection survives.
    std::u16string result =
        TextTransformer{termsStore_.terms(), settings_.textProtectionOptions()}.apply(kind, *text);
    const bool cleared = pasteboard.clearContents();
    return pasteboard.setString(result, pasteboardType::plainText) && cleared;
}

} // namespace glyphmill
