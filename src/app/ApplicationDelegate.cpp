#include "app/ApplicationDelegate.h"

#include "app/DBusNames.h"
#include "app/ShellPieces.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/LineToolCommands.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <QTimer>

namespace glyphmill {

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
    // Once the application runs: the guide is the first thing a new user sees.
    QTimer::singleShot(0, this, [this] { shellPieces::showWelcomeGuideIfNeeded(termsStore_); });
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
