// Each function is where its controller plugs in.
#include "app/ShellPieces.h"

#include "app/SelectionServicesProvider.h"
#include "app/menu/FloatingPaletteController.h"
#include "app/menu/MenuBarController.h"
#include "capture/ScreenRecordingPermission.h"
#include "capture/ScreenTextCaptureCoordinator.h"
#include "clipboard/ClipboardManager.h"
#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"
#include "ui/SettingsWindow.h"
#include "ui/WelcomeGuide.h"
#include "ui/WindowActions.h"

namespace glyphmill::shellPieces {

namespace {
// The delegate's store, which the settings window opened by a command works on.
ProtectedTermsStore *applicationTermsStore = nullptr;

void startCapture() {
    auto &capture = ScreenTextCaptureCoordinator::shared();
    capture.setPaletteCloser([] { FloatingPaletteController::shared().close(); });
    capture.startCapture();
}
} // namespace

void installMenuBar(ProtectedTermsStore &termsStore) {
    applicationTermsStore = &termsStore;
    auto &menuBar = MenuBarController::shared();
    menuBar.setScreenCaptureStarter(startCapture);
    menuBar.setSettingsOpener([](ProtectedTermsStore *store) {
        if (store)
            glyphmill::showSettingsWindow(*store);
    });
    menuBar.install(termsStore);
    // A change of the chords changes the menu's hints.
    AppSettings::shared().setMenuRebuild(rebuildMenu);
}

void installWindowActions() {
    glyphmill::installWindowActions({
        .showSettingsWindow = glyphmill::showSettingsWindow,
        .showWelcomeGuide = glyphmill::showWelcomeGuide,
        .showServicesHelp = SelectionServicesProvider::showServicesHelp,
        .openKeyboardShortcutsSettings = SelectionServicesProvider::openKeyboardShortcutsSettings,
        .openScreenRecordingSettings = openScreenRecordingSettings,
    });
}

void showWelcomeGuideIfNeeded(ProtectedTermsStore &termsStore) {
    glyphmill::showWelcomeGuideIfNeeded(termsStore);
}

void rebuildMenu() {
    auto &menuBar = MenuBarController::shared();
    if (menuBar.statusItem())
        menuBar.rebuildMenu();
}

void giveTermsStoreToPalette(ProtectedTermsStore &termsStore) {
    auto &palette = FloatingPaletteController::shared();
    palette.setTermsStore(&termsStore);
    palette.setServicesHelp(SelectionServicesProvider::showServicesHelp);
}

void connectHotKeyCallbacks() {
    // The manager already runs its callbacks as main-thread tasks.
    auto &hotKeys = HotKeyManager::shared();
    hotKeys.onOpenPalette = [] { FloatingPaletteController::shared().show(); };
    hotKeys.onCaptureScreen = startCapture;
    // The terms are read from the preference store at each press (no terms store is passed),
    // and an empty clipboard is passed over without a message.
    hotKeys.titleCaseAction = [] {
        ClipboardManager::shared().transformClipboard(TextTransformKind::titleCase, nullptr, false);
    };
    hotKeys.pastePlainTextAction = [] { ClipboardManager::shared().pasteAsPlainText(false); };
}

void registerHotKeys() {
    HotKeyManager::shared().registerHotKeys();
}

void unregisterHotKeys() {
    HotKeyManager::shared().unregisterHotKeys();
}

void cancelScreenCapture() {
    ScreenTextCaptureCoordinator::shared().cancelCapture();
}

void closeFloatingPalette() {
    FloatingPaletteController::shared().close();
}

bool showFloatingPalette() {
    FloatingPaletteController::shared().show();
    return true;
}

bool showSettingsWindow() {
    if (!applicationTermsStore)
        return false;
    glyphmill::showSettingsWindow(*applicationTermsStore);
    return true;
}

bool startScreenCapture() {
    startCapture();
    return true;
}

} // namespace glyphmill::shellPieces
