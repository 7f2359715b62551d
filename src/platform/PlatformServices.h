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
class ScreenCaptureAccess;
class ScreenGrabber;
class SystemLog;
class TextRecognizer;
class UrlOpener;

struct PlatformServices {
    PreferenceStore *preferences = nullptr;
    Pasteboard *pasteboard = nullptr;
    Dialogs *dialogs = nullptr;
    KeystrokeSender *keystrokes = nullptr;
    LoginItem *loginItem = nullptr;
    HotKeyGrabber *hotKeys = nullptr;
    UrlOpener *urls = nullptr;
    SystemLog *log = nullptr;
    ScreenCaptureAccess *screenAccess = nullptr;
    ScreenGrabber *screenGrabber = nullptr;
    TextRecognizer *textRecognizer = nullptr;
};

// Must happen before the first shared controller is made; the objects must outlive the process.
void installPlatformServices(const PlatformServices &services);
// Stops the program with a message naming the missing service if it was never installed.
const PlatformServices &platformServices();
// The same for the hot-key grabber, which only the hot-key manager needs; the other controllers
// can be used without one.
HotKeyGrabber &installedHotKeyGrabber();
// The same for the services only some controllers need.
UrlOpener &installedUrlOpener();
SystemLog &installedSystemLog();
ScreenCaptureAccess &installedScreenCaptureAccess();
ScreenGrabber &installedScreenGrabber();
TextRecognizer &installedTextRecognizer();

} // namespace glyphmill
