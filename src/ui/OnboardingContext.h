// What the guide's pages read and write outside themselves. The sample transforms are built
// from the store's terms and the settings' switches at the moment they run.
#pragma once

#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "transform/TextTransformer.h"

#include <QString>

namespace glyphmill {

class Pasteboard;

struct OnboardingContext {
    AppSettings &settings;
    ProtectedTermsStore &store;
    Pasteboard &pasteboard;
    bool reduceMotion = false;

    QString transformed(TextTransformKind kind, const QString &text) const {
        const TextTransformer transformer{store.terms(), settings.textProtectionOptions()};
        return QString::fromStdU16String(transformer.apply(kind, text.toStdU16String()));
    }
};

} // namespace glyphmill
