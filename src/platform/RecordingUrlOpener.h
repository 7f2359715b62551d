// Records the addresses it is asked to open, for tests; it opens those that begin with one of
// the accepted prefixes (all of them when none is given).
#pragma once

#include "platform/UrlOpener.h"

#include <string>
#include <vector>

namespace glyphmill {

class RecordingUrlOpener final : public UrlOpener {
public:
    bool openUrl(std::string_view address) override {
        requested.emplace_back(address);
        if (acceptedPrefixes.empty())
            return true;
        for (const auto &prefix : acceptedPrefixes)
            if (address.starts_with(prefix))
                return true;
        return false;
    }

    std::vector<std::string> acceptedPrefixes;
    std::vector<std::string> requested;
};

} // namespace glyphmill
