// The clipboard commands every door of the application runs: transform the clipboard, Clear
// Formatting, Paste as Plain Text and the read-change-write sequence of the line tools. Every
// command that changes the clipboard first saves its previous plain text for restore and then
// refreshes the monitor. Holds no state; the clipboard is read afresh by every call.
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

    static constexpr std::u16string_view alertTitle = u"Glyphmill";
    static constexpr std::u16string_view missingTextMessage = u"Clipboard does not contain text.";

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
    void writePlainText(std::u16string_view text);
    // Automatic clearing: saves nothing and refreshes nothing. True when it rewrote the clipboard.
    bool clearFormattingIfRich();

    // "Clear Formatting": rewrites any text, blank included, as one plain string with LF breaks.
    void clearClipboardFormatting();
    void pasteAsPlainText(bool reportMissingText);
    // Without a terms store the terms are read from the preference store for this call only.
    void transformClipboard(TextTransformKind kind, const ProtectedTermsStore *termsStore,
                            bool reportMissingText);
    // Reads non-blank text, then replaces the clipboard with the operation's result, even an
    // empty or unchanged one.
    void applyTextOperation(const TextOperation &operation);
    // The common end of the commands: save the previous text, write the result, refresh.
    void replaceClipboardText(const std::function<std::u16string()> &result);

    void showClipboardAlert(std::u16string_view message);
    void postPasteKeystroke();

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
