// Transforms a selection handed over by another application: the five Services handlers. Each
// reads the plain string from the pasteboard it is given and, when the text is not blank, puts
// the transformed text back in its place. The clipboard is not involved.
#pragma once

#include "platform/Pasteboard.h"
#include "transform/TextTransformer.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>

namespace glyphmill {

class AppSettings;
class ProtectedTermsStore;

class SelectionServicesProvider {
public:
    // The store is the long-lived one, so a term added in the editor counts for the next request.
    SelectionServicesProvider(ProtectedTermsStore &termsStore, AppSettings &settings);

    // False, with the pasteboard untouched, when it holds no plain string or only white space.
    bool transformSmartCase(Pasteboard &pasteboard) {
        return transform(TextTransformKind::smartCase, pasteboard);
    }
    bool transformTitleCase(Pasteboard &pasteboard) {
        return transform(TextTransformKind::titleCase, pasteboard);
    }
    bool transformUppercase(Pasteboard &pasteboard) {
        return transform(TextTransformKind::uppercase, pasteboard);
    }
    bool transformLowercase(Pasteboard &pasteboard) {
        return transform(TextTransformKind::lowercase, pasteboard);
    }
    bool transformCapitalizeWords(Pasteboard &pasteboard) {
        return transform(TextTransformKind::capitalizeWords, pasteboard);
    }

    bool transform(TextTransformKind kind, Pasteboard &pasteboard);

    // The "Transform Text with Services" alert; its second button opens the shortcut settings.
    static void showServicesHelp();
    // The keyboard shortcut page of the running desktop's own settings, where it has one;
    // nothing happens otherwise, and a failure to open is silent.
    static void openKeyboardShortcutsSettings();

private:
    ProtectedTermsStore &termsStore_;
    AppSettings &settings_;
};

} // namespace glyphmill
