#include "ui/TermOrdering.h"

#include "clipboard/text/LocaleCollator.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace glyphmill::termOrdering {

std::vector<std::u16string> sortedForDisplay(std::vector<std::u16string> terms) {
    const std::unique_ptr<icu::Collator> collator = numericLocaleCollator(icu::Collator::TERTIARY);
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
