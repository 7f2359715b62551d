// The one place where the system's services are handed to the shared controllers: the
// application installs the Linux implementations at start, tests install in-memory ones.
#pragma once

namespace glyphmill {

class Dialogs;
class HotKeyGrabber;
class KeystrokeSender;
class LoginItem;
class Pasteboard;
class PreferenceStore;

struct PlatformServices {
    PreferenceStore *preferences = nullptr;
    Pasteboard *pasteboard = nullptr;
    Dialogs *dialogs = nullptr;
    KeystrokeSender *keystrokes = nullptr;
    LoginItem *loginItem = nullptr;
    HotKeyGrabber *hotKeys = nullptr;
};

// Must happen before the first shared controller is made; the objects must outlive the process.
void installPlatformServices(const PlatformServices &services);
// Stops the program with a message naming the missing service if it was never installed.
const PlatformServices &platformServices();
// The same for the hot-key grabber, which only the hot-key manager needs; the other controllers
// can be used without one.
HotKeyGrabber &installedHotKeyGrabber();

} // namespace glyphmill
