// The collator of the user's locale with digit runs compared by value, the order a file browser
// gives names: "Item 9" before "Item 10".
#pragma once

#include <unicode/coll.h>

#include <memory>

namespace glyphmill {

// None if ICU can make no collator at all. Under the C locale ICU picks en_US_POSIX, whose
// tailoring puts every capital before every small letter; the root order is used instead.
std::unique_ptr<icu::Collator> numericLocaleCollator(icu::Collator::ECollationStrength strength);

} // namespace glyphmill
