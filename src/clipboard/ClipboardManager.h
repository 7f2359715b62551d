// The clipboard commands every door of the application runs: transform the clipboard, Clear
// Formatting, Paste as Plain Text and the read-change-write sequence of the line tools. Every
// command that changes the clipboard keeps its previous plain text for restore and then
// refreshes the monitor; a write the window system refused keeps nothing and says so. Holds no
// state; the clipboard is read afresh by every call.
#pragma once

#include "platform/Dialogs.h"
#include "platform/KeystrokeSender.h"
#include "platform/Pasteboard.h"
#include "platform/PreferenceStore.h"
#include "transform/TextTransformer.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace glyphmill {

class AppSettings;
class ClipboardHistory;
class ClipboardMonitor;
class ProtectedTermsStore;

class ClipboardManager final : public QObject {
    Q_OBJECT

public:
    using TextOperation = std::function<std::u16string(std::u16string_view text)>;

    // What a command did: changed the clipboard, found no (usable) text and left it alone, or
    // could not write its result.
    enum class Outcome { changed, noText, notWritten };

    static constexpr std::u16string_view alertTitle = u"Glyphmill";
    static constexpr std::u16string_view missingTextMessage = u"Clipboard does not contain text.";
    static constexpr std::u16string_view writeFailedMessage = u"Glyphmill could not write to the clipboard.";

    // The preference store is where a short-lived terms store reads the protected terms when a
    // caller has no store at hand.
    ClipboardManager(Pasteboard &pasteboard, Dialogs &dialogs, KeystrokeSender &keystrokes,
                     PreferenceStore &userDefaults, AppSettings &settings, ClipboardHistory &history,
                     ClipboardMonitor &monitor, QObject *parent = nullptr);

    // Made on first use from the installed platform services; never destroyed.
    static ClipboardManager &shared();

    std::optional<std::u16string> readText(bool requireNonBlank) const;
    std::optional<std::u16string> readHTMLAsText() const;
    bool hasRichFormatting() const;
    static std::u16string normalizeLineBreaks(std::u16string_view text);
    // False when the clipboard did not end up holding the text.
    [[nodiscard]] bool writePlainText(std::u16string_view text);
    // Automatic clearing: saves nothing and refreshes nothing. True when it rewrote the clipboard.
    bool clearFormattingIfRich();

    // The commands alert about missing text and a failed write where the table of callers says
    // so (reportMissingText), and answer what they did.
    // "Clear Formatting": rewrites any text, blank included, as one plain string with LF breaks.
    Outcome clearClipboardFormatting();
    // The paste keystroke follows only a successful write.
    Outcome pasteAsPlainText(bool reportMissingText);
    // Without a terms store the terms are read from the preference store for this call only.
    Outcome transformClipboard(TextTransformKind kind, const ProtectedTermsStore *termsStore,
                               bool reportMissingText);
    // Reads non-blank text, then replaces the clipboard with the operation's result, even an
    // empty or unchanged one.
    Outcome applyTextOperation(const TextOperation &operation);
    // The common end of the commands: write the result, keep the previous text for restore once
    // the write succeeded, refresh; a failed write keeps nothing and alerts when asked to.
    bool replaceClipboardText(const std::function<std::u16string()> &result, bool reportFailure = true);

    void showClipboardAlert(std::u16string_view message);
    void postPasteKeystroke();

signals:
    // After every replaceClipboardText, whichever command ran it.
    void clipboardReplaced(bool written);

private:
    Pasteboard &pasteboard_;
    Dialogs &dialogs_;
    KeystrokeSender &keystrokes_;
    PreferenceStore &userDefaults_;
    AppSettings &settings_;
    ClipboardHistory &history_;
    ClipboardMonitor &monitor_;
};

} // namespace glyphmill
