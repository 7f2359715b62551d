#include "clipboard/LocaleCollator.h"

#include <unicode/locid.h>

#include <cstring>

namespace glyphmill {

std::unique_ptr<icu::Collator> numericLocaleCollator(icu::Collator::ECollationStrength strength) {
    icu::Locale locale = icu::Locale::getDefault();
    if (std::strcmp(locale.getVariant(), "POSIX") == 0)
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
