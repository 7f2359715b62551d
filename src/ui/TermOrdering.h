// The order in which the protected terms are listed: the way a file browser orders names, so
// "Item 9" comes before "Item 10" and letter case and accents matter only between otherwise equal
// terms. No Qt here.
#pragma once

#include <string>
#include <vector>

namespace glyphmill::termOrdering {

// The terms in display order; terms the order cannot tell apart keep their given order. The
// terms are returned unsorted if no collator can be made.
std::vector<std::u16string> sortedForDisplay(std::vector<std::u16string> terms);

} // namespace glyphmill::termOrdering
