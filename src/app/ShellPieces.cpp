// Each function is where its controller plugs in. Those whose controller is not part of this
// build do nothing, and the commands that need one answer that it is not available.
#include "app/ShellPieces.h"

#include "app/SelectionServicesProvider.h"
#include "app/menu/FloatingPaletteController.h"
#include "app/menu/MenuBarController.h"
#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"

namespace glyphmill::shellPieces {

void installMenuBar(ProtectedTermsStore &termsStore) {
    MenuBarController::shared().install(termsStore);
    // A change of the chords changes the menu's hints.
    AppSettings::shared().setMenuRebuild(rebuildMenu);
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
    HotKeyManager::shared().onOpenPalette = [] { FloatingPaletteController::shared().show(); };
}

void registerHotKeys() {
    HotKeyManager::shared().registerHotKeys();
}

void unregisterHotKeys() {
    HotKeyManager::shared().unregisterHotKeys();
}

void cancelScreenCapture() {}

void closeFloatingPalette() {
    FloatingPaletteController::shared().close();
}

bool showFloatingPalette() {
    FloatingPaletteController::shared().show();
    return true;
}

bool showSettingsWindow() {
    return false;
}

bool startScreenCapture() {
    return false;
}

} // namespace glyphmill::shellPieces
