#include "ui/TermOrdering.h"

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace glyphmill::termOrdering {

namespace {

// The user's locale with digit runs compared by value. Under the C locale ICU picks
// en_US_POSIX, whose tailoring puts every capital before every small letter; the root order is
// used instead.
std::unique_ptr<icu::Collator> displayCollator() {
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
    // Tertiary strength: base letters first, then accents, then case.
    collator->setStrength(icu::Collator::TERTIARY);
    return U_SUCCESS(status) ? std::move(collator) : nullptr;
}

} // namespace

std::vector<std::u16string> sortedForDisplay(std::vector<std::u16string> terms) {
    const std::unique_ptr<icu::Collator> collator = displayCollator();
    if (!collator)
        return terms;
    std::stable_sort(terms.begin(), terms.end(), [&](const std::u16string &a, const std::u16string &b) {
        UErrorCode status = U_ZERO_ERROR;
        return collator->compare(a.data(), int32_t(a.size()), b.data(), int32_t(b.size()), status) ==
               UCOL_LESS;
    });
    return terms;
}

} // namespace glyphmill::termOrdering
