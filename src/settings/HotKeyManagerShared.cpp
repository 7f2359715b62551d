// The shared hot-key manager with its clipboard actions. Kept apart from HotKeyManager.cpp so the
// settings controllers need not link the clipboard controllers, which link them.
#include "clipboard/ClipboardManager.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"

namespace glyphmill {

HotKeyManager &HotKeyManager::shared() {
    static HotKeyManager *instance = [] {
        auto &settings = AppSettings::shared();
        auto *manager = new HotKeyManager(installedHotKeyGrabber(), settings);
        // The terms are read from the preference store at each press (no terms store is passed),
        // and an empty clipboard is passed over without a message.
        manager->titleCaseAction = [] {
            ClipboardManager::shared().transformClipboard(TextTransformKind::titleCase, nullptr, false);
        };
        manager->pastePlainTextAction = [] { ClipboardManager::shared().pasteAsPlainText(false); };
        settings.setHotKeyReregistration([manager] { manager->registerHotKeys(); });
        return manager;
    }();
    return *instance;
}

} // namespace glyphmill
