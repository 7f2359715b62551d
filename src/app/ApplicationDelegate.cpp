#include "app/ApplicationDelegate.h"

#include "app/DBusNames.h"
#include "app/ShellPieces.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/LineToolCommands.h"
#include "common/Utf8.h"
#include "platform/Dialogs.h"
#include "platform/PlatformServices.h"
#include "platform/PreferenceStore.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <QTimer>

namespace glyphmill {

bool alertIfPreferencesUnreadable(const PreferenceStore &preferences, Dialogs &dialogs) {
    const auto failure = preferences.readFailure();
    if (!failure)
        return false;
    dialogs.showAlert(
        u"Preferences Not Read",
        u"Glyphmill could not read its preference file \u201C" + utf8::decodeLossy(failure->file) +
            u"\u201D: " + utf8::decodeLossy(failure->reason) +
            u".\n\nUntil it can, Glyphmill works with the default settings and protected terms, "
            u"saves no change and leaves the file as it is.");
    return true;
}

ApplicationDelegate::ApplicationDelegate()
    : termsStore_(*platformServices().preferences),
      commands_(ClipboardManager::shared(), LineToolCommands::shared(), ClipboardHistory::shared(),
                termsStore_,
                ShellHandlers{
                    .showPalette = shellPieces::showFloatingPalette,
                    .showSettings = shellPieces::showSettingsWindow,
                    .startCapture = shellPieces::startScreenCapture,
                    .wake = [this] { applicationDidBecomeActive(); },
                    .quit = [] { QCoreApplication::quit(); },
                }),
      servicesAdaptor_(new ServicesAdaptor(&busObject_)) {
    new ApplicationAdaptor(&busObject_, commands_);
}

ApplicationDelegate::~ApplicationDelegate() = default;

bool ApplicationDelegate::exportOnBus(QDBusConnection &bus) {
    return bus.registerObject(dbusNames::objectPath, &busObject_, QDBusConnection::ExportAdaptors);
}

void ApplicationDelegate::withdrawFromBus(QDBusConnection &bus) {
    bus.unregisterObject(dbusNames::objectPath);
}

void ApplicationDelegate::applicationDidFinishLaunching() {
    shellPieces::installWindowActions();
    shellPieces::installMenuBar(termsStore_);
    shellPieces::giveTermsStoreToPalette(termsStore_);
    ClipboardMonitor::shared().start();
    shellPieces::connectHotKeyCallbacks();
    shellPieces::registerHotKeys();
    servicesProvider_ = std::make_unique<SelectionServicesProvider>(termsStore_, AppSettings::shared());
    servicesAdaptor_->setProvider(servicesProvider_.get());
    // Once the application runs: the guide is the first thing a new user sees. A user whose
    // preferences could not be read is not new, and is told of that instead.
    QTimer::singleShot(0, this, [this] {
        const PlatformServices &services = platformServices();
        if (!alertIfPreferencesUnreadable(*services.preferences, *services.dialogs))
            shellPieces::showWelcomeGuideIfNeeded(termsStore_);
    });
}

void ApplicationDelegate::applicationDidBecomeActive() {
    shellPieces::rebuildMenu();
}

void ApplicationDelegate::applicationWillTerminate() {
    if (terminated_)
        return;
    terminated_ = true;
    shellPieces::unregisterHotKeys();
    shellPieces::cancelScreenCapture();
    shellPieces::closeFloatingPalette();
    ClipboardMonitor::shared().stop();
}

} // namespace glyphmill
