// Times two moments of the tray application from the X server's side, to the microsecond, so the
// figures hold no polling interval:
//
//   x11_probe launch COMMAND [ARGUMENT...]  start COMMAND; wait until a window of it is
//                                           reparented into trayer's window and mapped
//   x11_probe chord                         press Shift+Super+T through XTest; wait until another
//                                           client takes the CLIPBOARD selection
//   x11_probe capture PID SCREENS X1 Y1 X2 Y2
//                                           press Shift+Super+2; wait until PID has mapped SCREENS
//                                           screen-sized windows (the overlay), drag from X1,Y1 to
//                                           X2,Y2 and release; wait until a client takes CLIPBOARD
//                                           and PID maps a small window (the status bubble)
//
// Prints milliseconds (and for launch, the process id) on standard output; exits 1 after ten
// seconds without the event (two minutes for the recognition after a capture drag). capture prints
// three figures: key press to the first overlay window mapped, button release to the clipboard
// taken, button release to the bubble mapped; "-" for the clipboard when the bubble came without it
// (no text found), with exit status 3.
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
#include <cstdlib>
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

// Presses Shift+Super+KEY through XTest and lets go; the time is that of KEY's press, which
// completes the chord.
double pressShiftSuper(Display *display, KeySym key) {
    sendKey(display, XK_Shift_L, true);
    sendKey(display, XK_Super_L, true);
    XSync(display, False);
    const double pressed = nowMs();
    sendKey(display, key, true);
    XFlush(display);
    sendKey(display, key, false);
    sendKey(display, XK_Super_L, false);
    sendKey(display, XK_Shift_L, false);
    XFlush(display);
    return pressed;
}

// XFixes tells who takes the clipboard; its events are numbered from eventBase.
bool hasXFixes(Display *display, int &eventBase) {
    int errorBase = 0;
    if (XFixesQueryExtension(display, &eventBase, &errorBase) != 0)
        return true;
    std::fprintf(stderr, "x11_probe: no XFixes\n");
    return false;
}

int chord(Display *display) {
    int eventBase = 0;
    if (!hasXFixes(display, eventBase))
        return 2;
    const Window root = DefaultRootWindow(display);
    const Atom clipboard = XInternAtom(display, "CLIPBOARD", False);
    XFixesSelectSelectionInput(display, root, clipboard, XFixesSetSelectionOwnerNotifyMask);
    const Window before = XGetSelectionOwner(display, clipboard);
    const double start = pressShiftSuper(display, XK_t);
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

// The process id a window was made by, from _NET_WM_PID; 0 when it has none.
long windowPid(Display *display, Window window) {
    const Atom pidAtom = XInternAtom(display, "_NET_WM_PID", False);
    Atom type = 0;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char *data = nullptr;
    long pid = 0;
    if (XGetWindowProperty(display, window, pidAtom, 0, 1, False, XA_CARDINAL, &type, &format, &count, &after,
                           &data) == Success &&
        data != nullptr && format == 32 && count == 1)
        pid = *reinterpret_cast<long *>(data);
    if (data)
        XFree(data);
    return pid;
}

// The window of pid that a newly mapped top-level window is or holds (a window manager's frame holds
// the client one or two levels down); 0 when it is someone else's.
Window clientOf(Display *display, Window window, long pid, int depth = 0) {
    if (windowPid(display, window) == pid)
        return window;
    if (depth == 2)
        return 0;
    Window rootReturned = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &rootReturned, &parent, &children, &count) == 0)
        return 0;
    Window found = 0;
    for (unsigned i = 0; i < count && found == 0; ++i)
        found = clientOf(display, children[i], pid, depth + 1);
    if (children)
        XFree(children);
    return found;
}

enum class Shown { other, overlay, bubble };

Shown classify(Display *display, const XEvent &event, long pid) {
    if (event.type != MapNotify)
        return Shown::other;
    const Window client = clientOf(display, event.xmap.window, pid);
    XWindowAttributes attributes{};
    if (client == 0 || XGetWindowAttributes(display, client, &attributes) == 0)
        return Shown::other;
    if (attributes.width >= 640 && attributes.height >= 480)
        return Shown::overlay;
    if (attributes.width <= 400 && attributes.height <= 120)
        return Shown::bubble;
    return Shown::other;
}

// A window may be gone by the time it is looked at; that is no reason to stop.
int ignoreErrors(Display *, XErrorEvent *) {
    return 0;
}

int capture(Display *display, char **arguments) {
    XSetErrorHandler(ignoreErrors);
    const long pid = std::atol(arguments[0]);
    const int screens = std::atoi(arguments[1]);
    const int x1 = std::atoi(arguments[2]), y1 = std::atoi(arguments[3]);
    const int x2 = std::atoi(arguments[4]), y2 = std::atoi(arguments[5]);
    int eventBase = 0;
    if (!hasXFixes(display, eventBase))
        return 2;
    const Window root = DefaultRootWindow(display);
    const Atom clipboard = XInternAtom(display, "CLIPBOARD", False);
    XSelectInput(display, root, SubstructureNotifyMask);
    XFixesSelectSelectionInput(display, root, clipboard, XFixesSetSelectionOwnerNotifyMask);
    XSync(display, False);

    const double pressed = pressShiftSuper(display, XK_2);
    double overlayMs = -1;
    int overlays = 0;
    XEvent event{};
    while (overlays < screens && nextEvent(display, event, pressed + 10000)) {
        if (classify(display, event, pid) == Shown::overlay && ++overlays == 1)
            overlayMs = nowMs() - pressed;
    }
    if (overlays < screens) {
        std::fprintf(stderr, "x11_probe: %d of %d overlay windows after ten seconds\n", overlays, screens);
        return 1;
    }
    // Let the overlay finish setting itself up, so the release is timed on an idle application.
    const double settled = nowMs() + 300;
    while (nextEvent(display, event, settled)) {
    }

    XTestFakeMotionEvent(display, -1, x1, y1, CurrentTime);
    XTestFakeButtonEvent(display, 1, True, CurrentTime);
    constexpr int steps = 8;
    for (int i = 1; i <= steps; ++i)
        XTestFakeMotionEvent(display, -1, x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps,
                             CurrentTime);
    XSync(display, False);
    usleep(50000);
    while (XPending(display) > 0)
        XNextEvent(display, &event);
    const double released = nowMs();
    XTestFakeButtonEvent(display, 1, False, CurrentTime);
    XFlush(display);
    double clipboardMs = -1, bubbleMs = -1;
    while (bubbleMs < 0 && nextEvent(display, event, released + 120000)) {
        if (event.type == eventBase + XFixesSelectionNotify) {
            const auto &notify = reinterpret_cast<const XFixesSelectionNotifyEvent &>(event);
            if (notify.selection == clipboard && notify.owner != 0 && clipboardMs < 0)
                clipboardMs = nowMs() - released;
        } else if (classify(display, event, pid) == Shown::bubble) {
            bubbleMs = nowMs() - released;
        }
    }
    if (bubbleMs < 0) {
        std::fprintf(stderr, "x11_probe: no status bubble within two minutes of the release\n");
        return 1;
    }
    if (clipboardMs < 0) {
        std::printf("%.3f - %.3f\n", overlayMs, bubbleMs);
        return 3;
    }
    std::printf("%.3f %.3f %.3f\n", overlayMs, clipboardMs, bubbleMs);
    return 0;
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
    if (argc == 8 && std::strcmp(argv[1], "capture") == 0)
        return capture(display, argv + 2);
    std::fprintf(stderr, "usage: x11_probe launch COMMAND [ARGUMENT...] | x11_probe chord |\n"
                         "       x11_probe capture PID SCREENS X1 Y1 X2 Y2\n");
    return 64;
}
