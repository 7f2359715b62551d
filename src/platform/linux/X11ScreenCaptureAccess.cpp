#include "platform/linux/X11ScreenCaptureAccess.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace glyphmill {

namespace {

bool inWaylandSession() {
    return qEnvironmentVariable("XDG_SESSION_TYPE").compare(QLatin1String("wayland"), Qt::CaseInsensitive) ==
               0 ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

bool X11ScreenCaptureAccess::hasAccess() {
    if (!qGuiApp || QGuiApplication::platformName() != QLatin1String("xcb") || inWaylandSession())
        return false;
    // The offscreen platform offers the interface too; only a live connection means a display.
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    return connection && !xcb_connection_has_error(connection);
}

bool X11ScreenCaptureAccess::requestAccess() {
    return hasAccess();
}

} // namespace glyphmill
