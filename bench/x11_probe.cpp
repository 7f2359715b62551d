// Times two moments of the tray application from the X server's side, to the microsecond, so the
// figures hold no polling interval:
//
//   x11_probe launch COMMAND [ARGUMENT...]  start COMMAND; wait until a window of it is
//                                           reparented into trayer's window and mapped
//   x11_probe chord                         press Shift+Super+T through XTest; wait until another
//                                           client takes the CLIPBOARD selection
//
// Prints milliseconds (and for launch, the process id) on standard output; exits 1 after ten
// seconds without the event.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <X11/keysym.h>

#include <poll.h>
#include <strings.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

double nowMs() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// Blocks for the next event, giving up once the deadline has passed.
bool nextEvent(Display *display, XEvent &event, double deadlineMs) {
    while (XPending(display) == 0) {
        const double left = deadlineMs - nowMs();
        if (left <= 0)
            return false;
        pollfd descriptor{ConnectionNumber(display), POLLIN, 0};
        poll(&descriptor, 1, static_cast<int>(left) + 1);
    }
    XNextEvent(display, &event);
    return true;
}

bool hasClassTrayer(Display *display, Window window) {
    XClassHint hint{};
    if (XGetClassHint(display, window, &hint) == 0)
        return false;
    // The panel that holds the icons is ("panel", "trayer"), its leader ("trayer", "Trayer").
    const bool trayer = (hint.res_name && strcasecmp(hint.res_name, "trayer") == 0) ||
                        (hint.res_class && strcasecmp(hint.res_class, "trayer") == 0);
    XFree(hint.res_name);
    XFree(hint.res_class);
    return trayer;
}

bool insideTrayer(Display *display, Window window) {
    const Window root = DefaultRootWindow(display);
    while (window != 0 && window != root) {
        if (hasClassTrayer(display, window))
            return true;
        Window parent = 0, rootReturned = 0, *children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, window, &rootReturned, &parent, &children, &count) == 0)
            return false;
        if (children)
            XFree(children);
        window = parent;
    }
    return false;
}

int launch(Display *display, char **command) {
    const Window root = DefaultRootWindow(display);
    XSelectInput(display, root, SubstructureNotifyMask);
    XSync(display, False);
    const double start = nowMs();
    const pid_t child = fork();
    if (child == 0) {
        close(ConnectionNumber(display));
        // Standard output carries the figures; the application's messages go with ours.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        execvp(command[0], command);
        _exit(127);
    }
    const double deadline = start + 10000;
    Window icon = 0;
    XEvent event{};
    while (nextEvent(display, event, deadline)) {
        if (icon == 0 && event.type == ReparentNotify && insideTrayer(display, event.xreparent.parent)) {
            icon = event.xreparent.window;
            XSelectInput(display, icon, StructureNotifyMask);
            XWindowAttributes attributes{};
            if (XGetWindowAttributes(display, icon, &attributes) != 0 && attributes.map_state != IsUnmapped) {
                std::printf("%.3f %d\n", nowMs() - start, static_cast<int>(child));
                return 0;
            }
        } else if (icon != 0 && event.type == MapNotify && event.xmap.window == icon) {
            std::printf("%.3f %d\n", nowMs() - start, static_cast<int>(child));
            return 0;
        }
    }
    std::fprintf(stderr, "x11_probe: no icon in the tray after ten seconds\n");
    std::printf("- %d\n", static_cast<int>(child));
    return 1;
}

void sendKey(Display *display, KeySym symbol, bool press) {
    XTestFakeKeyEvent(display, XKeysymToKeycode(display, symbol), press ? True : False, CurrentTime);
}

int chord(Display *display) {
    int eventBase = 0, errorBase = 0;
    if (XFixesQueryExtension(display, &eventBase, &errorBase) == 0) {
        std::fprintf(stderr, "x11_probe: no XFixes\n");
        return 2;
    }
    const Window root = DefaultRootWindow(display);
    const Atom clipboard = XInternAtom(display, "CLIPBOARD", False);
    XFixesSelectSelectionInput(display, root, clipboard, XFixesSetSelectionOwnerNotifyMask);
    const Window before = XGetSelectionOwner(display, clipboard);
    sendKey(display, XK_Shift_L, true);
    sendKey(display, XK_Super_L, true);
    XSync(display, False);
    // The chord is complete with the T; time from there.
    const double start = nowMs();
    sendKey(display, XK_t, true);
    XFlush(display);
    sendKey(display, XK_t, false);
    sendKey(display, XK_Super_L, false);
    sendKey(display, XK_Shift_L, false);
    XFlush(display);
    XEvent event{};
    while (nextEvent(display, event, start + 10000)) {
        if (event.type != eventBase + XFixesSelectionNotify)
            continue;
        const auto &notify = reinterpret_cast<const XFixesSelectionNotifyEvent &>(event);
        if (notify.selection == clipboard && notify.owner != before && notify.owner != 0) {
            std::printf("%.3f\n", nowMs() - start);
            return 0;
        }
    }
    std::fprintf(stderr, "x11_probe: the clipboard did not change hands within ten seconds\n");
    return 1;
}

} // namespace

int main(int argc, char **argv) {
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        std::fprintf(stderr, "x11_probe: cannot open the display\n");
        return 2;
    }
    if (argc >= 3 && std::strcmp(argv[1], "launch") == 0)
        return launch(display, argv + 2);
    if (argc == 2 && std::strcmp(argv[1], "chord") == 0)
        return chord(display);
    std::fprintf(stderr, "usage: x11_probe launch COMMAND [ARGUMENT...] | x11_probe chord\n");
    return 64;
}
