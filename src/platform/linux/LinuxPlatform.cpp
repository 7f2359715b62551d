#include "platform/linux/LinuxPlatform.h"

#include "platform/JsonFilePreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/linux/DesktopUrlOpener.h"
#include "platform/linux/PreferenceFileWatcher.h"
#include "platform/linux/QtDialogs.h"
#include "platform/linux/QtPasteboard.h"
#include "platform/linux/QtScreenGrabber.h"
#include "platform/linux/SyslogSystemLog.h"
#include "platform/linux/TesseractTextRecognizer.h"
#include "platform/linux/X11HotKeyGrabber.h"
#include "platform/linux/X11ScreenCaptureAccess.h"
#include "platform/linux/XTestKeystrokeSender.h"
#include "platform/linux/XdgAutostartLoginItem.h"

#include <QCoreApplication>

namespace glyphmill {

void installLinuxPlatformServices() {
    // Never destroyed: controllers that are never destroyed either hold these.
    static auto *preferences = [] {
        auto *store = new JsonFilePreferenceStore();
        // Ends with the application, before the store it follows.
        new PreferenceFileWatcher(*store, QCoreApplication::instance());
        return store;
    }();
    static const PlatformServices services{
        .preferences = preferences,
        .pasteboard = new QtPasteboard(),
        .dialogs = new QtDialogs(),
        .keystrokes = new XTestKeystrokeSender(),
        .loginItem = new XdgAutostartLoginItem(),
        .hotKeys = new X11HotKeyGrabber(),
        .urls = new DesktopUrlOpener(),
        .log = new SyslogSystemLog(),
        .screenAccess = new X11ScreenCaptureAccess(),
        .screenGrabber = new QtScreenGrabber(),
        .textRecognizer = new TesseractTextRecognizer(),
    };
    installPlatformServices(services);
}

} // namespace glyphmill
