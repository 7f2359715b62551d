// The answer of the Find & Replace dialog.
#pragma once

#include <string>

namespace glyphmill {

struct FindReplaceRequest {
    std::u16string find;
    std::u16string replacement;
    bool matchCase = false;
    friend bool operator==(const FindReplaceRequest &, const FindReplaceRequest &) = default;
};

} // namespace glyphmill
