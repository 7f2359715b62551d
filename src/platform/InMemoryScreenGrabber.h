// Hands out a picture of the given size filled with one colour, or refuses, for tests; records
// every screen it was asked for.
#pragma once

#include "platform/ScreenGrabber.h"

#include <cmath>
#include <vector>

namespace glyphmill {

class InMemoryScreenGrabber final : public ScreenGrabber {
public:
    std::optional<ScreenImage> grabScreen(const ScreenToGrab &screen) override {
        requested.push_back(screen);
        if (refuses)
            return std::nullopt;
        ScreenImage image;
        image.width = static_cast<int>(std::lround(screen.width * screen.devicePixelRatio));
        image.height = static_cast<int>(std::lround(screen.height * screen.devicePixelRatio));
        image.devicePixelRatio = screen.devicePixelRatio;
        image.pixels.assign(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height),
                            fill);
        return image;
    }

    bool refuses = false;
    std::uint32_t fill = 0xFFFFFFFF;
    std::vector<ScreenToGrab> requested;
};

} // namespace glyphmill
