#include "clipboard/ClipboardManager.h"

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/text/PasteboardText.h"
#include "clipboard/text/TextClasses.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill {
namespace {

ClipboardManager::Outcome outcomeOf(bool written) {
    return written ? ClipboardManager::Outcome::changed : ClipboardManager::Outcome::notWritten;
}

} // namespace

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

bool ClipboardManager::writePlainText(std::u16string_view text) {
    return pasteboardText::writePlainText(pasteboard_, text);
}

bool ClipboardManager::clearFormattingIfRich() {
    return pasteboardText::clearFormattingIfRich(pasteboard_);
}

ClipboardManager::Outcome ClipboardManager::clearClipboardFormatting() {
    auto text = readText(false);
    if (!text) {
        monitor_.refresh();
        showClipboardAlert(missingTextMessage);
        return Outcome::noText;
    }
    return outcomeOf(replaceClipboardText([&] { return normalizeLineBreaks(*text); }));
}

ClipboardManager::Outcome ClipboardManager::pasteAsPlainText(bool reportMissingText) {
    auto text = readText(false);
    if (!text || textClasses::isBlank(*text)) {
        if (reportMissingText) {
            monitor_.refresh();
            showClipboardAlert(missingTextMessage);
        }
        return Outcome::noText;
    }
    if (!replaceClipboardText([&] { return normalizeLineBreaks(*text); }, reportMissingText))
        return Outcome::notWritten;
    postPasteKeystroke();
    if (reportMissingText)
        monitor_.refresh();
    return Outcome::changed;
}

ClipboardManager::Outcome ClipboardManager::transformClipboard(TextTransformKind kind,
                                                               const ProtectedTermsStore *termsStore,
                                                               bool reportMissingText) {
    std::vector<std::u16string> terms =
        termsStore ? termsStore->terms() : ProtectedTermsStore(userDefaults_).terms();
    const TextProtectionOptions options = settings_.textProtectionOptions();
    auto text = readText(true);
    if (!text) {
        monitor_.refresh();
        if (reportMissingText)
            showClipboardAlert(missingTextMessage);
        return Outcome::noText;
    }
    // The untrimmed text, line breaks as they are.
    return outcomeOf(replaceClipboardText(
        [&] {
            return TextTransformer{std::move(terms), options}.apply(kind, *text);
        },
        reportMissingText));
}

ClipboardManager::Outcome ClipboardManager::applyTextOperation(const TextOperation &operation) {
    auto text = readText(true);
    if (!text) {
        monitor_.refresh();
        showClipboardAlert(missingTextMessage);
        return Outcome::noText;
    }
    return outcomeOf(replaceClipboardText([&] { return operation(*text); }));
}

bool ClipboardManager::replaceClipboardText(const std::function<std::u16string()> &result,
                                            bool reportFailure) {
    // Taken before the write, kept only after it: a refused write leaves the earlier previous
    // clipboard restorable.
    std::optional<std::u16string> previous = history_.currentText();
    const bool written = writePlainText(result());
    if (written)
        history_.save(std::move(previous));
    monitor_.refresh();
    emit clipboardReplaced(written);
    if (!written && reportFailure)
        showClipboardAlert(writeFailedMessage);
    return written;
}

void ClipboardManager::showClipboardAlert(std::u16string_view message) {
    dialogs_.showAlert(alertTitle, message);
}

void ClipboardManager::postPasteKeystroke() {
    keystrokes_.postPasteKeystroke();
}

} // namespace glyphmill
