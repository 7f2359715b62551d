#include "ui/WindowActions.h"

#include <utility>

namespace glyphmill {

namespace {
WindowActions &installed() {
    static WindowActions actions;
    return actions;
}
} // namespace

void installWindowActions(WindowActions actions) {
    installed() = std::move(actions);
}

const WindowActions &windowActions() {
    return installed();
}

} // namespace glyphmill
