// Another program holding a global key: grabs Shift+Super+T on the root window, prints "grabbed"
// once the server has accepted the grab, and keeps it until it is ended.
#include "platform/linux/X11KeyboardMapping.h"

#include <xcb/xcb.h>

#include <X11/keysym.h>

#include <cstdio>
#include <cstdlib>

int main() {
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection))
        return 69;
    const auto mapping = glyphmill::X11KeyboardMapping::read(connection);
    const auto keycode = mapping.keycodeFor(XK_t);
    const std::uint16_t superMask = mapping.modifierMaskFor(XK_Super_L);
    if (!keycode || superMask == 0)
        return 69;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto modifiers = static_cast<std::uint16_t>(XCB_MOD_MASK_SHIFT | superMask);
    auto cookie = xcb_grab_key_checked(connection, 0, root, modifiers, *keycode, XCB_GRAB_MODE_ASYNC,
                                       XCB_GRAB_MODE_ASYNC);
    if (xcb_generic_error_t *error = xcb_request_check(connection, cookie)) {
        std::free(error);
        return 1;
    }
    std::puts("grabbed");
    std::fflush(stdout);
    // The grabbed presses arrive here and are dropped; the loop ends when the server goes away.
    while (xcb_generic_event_t *event = xcb_wait_for_event(connection))
        std::free(event);
    xcb_disconnect(connection);
    return 0;
}
