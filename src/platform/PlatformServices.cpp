#include "platform/PlatformServices.h"

#include <cstdio>
#include <cstdlib>

namespace glyphmill {

namespace {
PlatformServices installed;

void requirePresent(const void *service, const char *name) {
    if (service)
        return;
    std::fprintf(stderr, "glyphmill: no %s was installed before the controllers were first used\n", name);
    std::abort();
}
} // namespace

void installPlatformServices(const PlatformServices &services) {
    installed = services;
}

const PlatformServices &platformServices() {
    requirePresent(installed.preferences, "preference store");
    requirePresent(installed.pasteboard, "pasteboard");
    requirePresent(installed.dialogs, "dialog service");
    requirePresent(installed.keystrokes, "keystroke sender");
    requirePresent(installed.loginItem, "login item service");
    return installed;
}

HotKeyGrabber &installedHotKeyGrabber() {
    requirePresent(installed.hotKeys, "hot key grabber");
    return *installed.hotKeys;
}

UrlOpener &installedUrlOpener() {
    requirePresent(installed.urls, "address opener");
    return *installed.urls;
}

SystemLog &installedSystemLog() {
    requirePresent(installed.log, "system log");
    return *installed.log;
}

ScreenCaptureAccess &installedScreenCaptureAccess() {
    requirePresent(installed.screenAccess, "screen capture access check");
    return *installed.screenAccess;
}

ScreenGrabber &installedScreenGrabber() {
    requirePresent(installed.screenGrabber, "screen grabber");
    return *installed.screenGrabber;
}

TextRecognizer &installedTextRecognizer() {
    requirePresent(installed.textRecognizer, "text recognizer");
    return *installed.textRecognizer;
}

} // namespace glyphmill
