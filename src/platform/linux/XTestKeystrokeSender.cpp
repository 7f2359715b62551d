#include "platform/linux/XTestKeystrokeSender.h"

#include <QGuiApplication>

// X11 last: its macros (None, KeyPress, Bool…) clash with Qt names.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace glyphmill {

namespace {

Display *x11Display() {
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    // The interface exists on platforms without a display too; only the display tells.
    return x11 ? x11->display() : nullptr;
}

bool hasXTest(Display *display) {
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    return XTestQueryExtension(display, &eventBase, &errorBase, &major, &minor) != 0;
}

} // namespace

void XTestKeystrokeSender::postPasteKeystroke() {
    Display *display = x11Display();
    if (!display || !hasXTest(display))
        return;
    const KeyCode control = XKeysymToKeycode(display, XK_Control_L);
    const KeyCode v = XKeysymToKeycode(display, XK_v);
    if (control == 0 || v == 0)
        return;
    XTestFakeKeyEvent(display, control, True, CurrentTime);
    XTestFakeKeyEvent(display, v, True, CurrentTime);
    XTestFakeKeyEvent(display, v, False, CurrentTime);
    XTestFakeKeyEvent(display, control, False, CurrentTime);
    XFlush(display);
}

void XTestKeystrokeSender::releaseKeys(std::span<const std::uint8_t> keycodes) {
    Display *display = x11Display();
    if (!display || !hasXTest(display) || keycodes.empty())
        return;
    for (auto keycode : keycodes)
        XTestFakeKeyEvent(display, keycode, False, CurrentTime);
    XFlush(display);
}

} // namespace glyphmill
