#include "clipboard/text/LocaleCollator.h"

#include <unicode/locid.h>

#include <cstring>

namespace glyphmill {

std::unique_ptr<icu::Collator> numericLocaleCollator(icu::Collator::ECollationStrength strength) {
    icu::Locale locale = icu::Locale::getDefault();
    // A locale name ICU cannot make sense of (LANG=aaaaaaaaaaaa) gives a bogus locale, whose
    // parts are null; like the POSIX locale it sorts by the root rules.
    const char *variant = locale.getVariant();
    if (locale.isBogus() || !variant || std::strcmp(variant, "POSIX") == 0)
        locale = icu::Locale::getRoot();
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status) || !collator) {
        status = U_ZERO_ERROR;
        collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status) || !collator)
            return nullptr;
    }
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    collator->setStrength(strength);
    return U_SUCCESS(status) ? std::move(collator) : nullptr;
}

} // namespace glyphmill
