#include "clipboard/ClipboardManager.h"

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/PasteboardText.h"
#include "clipboard/TextClasses.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "transform/ProtectedTermsStore.h"

namespace glyphmill {

ClipboardManager::ClipboardManager(Pasteboard &pasteboard, Dialogs &dialogs, KeystrokeSender &keystrokes,
                                   PreferenceStore &userDefaults, AppSettings &settings,
                                   ClipboardHistory &history, ClipboardMonitor &monitor, QObject *parent)
    : QObject(parent), pasteboard_(pasteboard), dialogs_(dialogs), keystrokes_(keystrokes),
      userDefaults_(userDefaults), settings_(settings), history_(history), monitor_(monitor) {}

ClipboardManager &ClipboardManager::shared() {
    static ClipboardManager *instance = [] {
        const auto &services = platformServices();
        return new ClipboardManager(*services.pasteboard, *services.dialogs, *services.keystrokes,
                                    *services.preferences, AppSettings::shared(), ClipboardHistory::shared(),
                                    ClipboardMonitor::shared());
    }();
    return *instance;
}

std::optional<std::u16string> ClipboardManager::readText(bool requireNonBlank) const {
    return pasteboardText::readText(pasteboard_, requireNonBlank);
}

std::optional<std::u16string> ClipboardManager::readHTMLAsText() const {
    return pasteboardText::readHTMLAsText(pasteboard_);
}

bool ClipboardManager::hasRichFormatting() const {
    return pasteboardText::hasRichFormatting(pasteboard_);
}

std::u16string ClipboardManager::normalizeLineBreaks(std::u16string_view text) {
    return textClasses::normalizeLineBreaks(text);
}

void ClipboardManager::writePlainText(std::u16string_view text) {
    pasteboardText::writePlainText(pasteboard_, text);
}

bool ClipboardManager::clearFormattingIfRich() {
    return pasteboardText::clearFormattingIfRich(pasteboard_);
}

void ClipboardManager::clearClipboardFormatting() {
    auto text = readText(false);
    if (!text) {
        monitor_.refresh();
        showClipboardAlert(missingTextMessage);
        return;
    }
    replaceClipboardText([&] { return normalizeLineBreaks(*text); });
}

void ClipboardManager::pasteAsPlainText(bool reportMissingText) {
    auto text = readText(false);
    if (!text || textClasses::isBlank(*text)) {
        if (reportMissingText) {
            monitor_.refresh();
            showClipboardAlert(missingTextMessage);
        }
        return;
    }
    replaceClipboardText([&] { return normalizeLineBreaks(*text); });
    postPasteKeystroke();
    if (reportMissingText)
        monitor_.refresh();
}

void ClipboardManager::transformClipboard(TextTransformKind kind, const ProtectedTermsStore *termsStore,
                                          bool reportMissingText) {
    std::vector<std::u16string> terms =
        termsStore ? termsStore->terms() : ProtectedTermsStore(userDefaults_).terms();
    const TextProtectionOptions options = settings_.textProtectionOptions();
    auto text = readText(true);
    if (!text) {
        monitor_.refresh();
        if (reportMissingText)
            showClipboardAlert(missingTextMessage);
        return;
    }
    // The untrimmed text, line breaks as they are.
    replaceClipboardText([&] { return TextTransformer{std::move(terms), options}.apply(kind, *text); });
}

void ClipboardManager::applyTextOperation(const TextOperation &operation) {
    auto text = readText(true);
    if (!text) {
        monitor_.refresh();
        showClipboardAlert(missingTextMessage);
        return;
    }
    replaceClipboardText([&] { return operation(*text); });
}

void ClipboardManager::replaceClipboardText(const std::function<std::u16string()> &result) {
    history_.saveCurrentText();
    writePlainText(result());
    monitor_.refresh();
}

void ClipboardManager::showClipboardAlert(std::u16string_view message) {
    dialogs_.showAlert(alertTitle, message);
}

void ClipboardManager::postPasteKeystroke() {
    keystrokes_.postPasteKeystroke();
}

} // namespace glyphmill
