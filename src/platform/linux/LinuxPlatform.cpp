#include "platform/linux/LinuxPlatform.h"

#include "platform/JsonFilePreferenceStore.h"
#include "platform/PlatformServices.h"
#include "platform/linux/QtDialogs.h"
#include "platform/linux/QtPasteboard.h"
#include "platform/linux/X11HotKeyGrabber.h"
#include "platform/linux/XTestKeystrokeSender.h"
#include "platform/linux/XdgAutostartLoginItem.h"

namespace glyphmill {

void installLinuxPlatformServices() {
    // Never destroyed: controllers that are never destroyed either hold these.
    static const PlatformServices services{
        .preferences = new JsonFilePreferenceStore(),
        .pasteboard = new QtPasteboard(),
        .dialogs = new QtDialogs(),
        .keystrokes = new XTestKeystrokeSender(),
        .loginItem = new XdgAutostartLoginItem(),
        .hotKeys = new X11HotKeyGrabber(),
    };
    installPlatformServices(services);
}

} // namespace glyphmill
