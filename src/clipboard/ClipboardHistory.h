// The clipboard's plain text from before the program last changed it, for one level of
// "Restore Previous Clipboard". Kept in memory only.
#pragma once

#include "platform/Pasteboard.h"

#include <QObject>

#include <optional>
#include <string>

namespace glyphmill {

class ClipboardMonitor;

class ClipboardHistory final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canRestore READ canRestore NOTIFY canRestoreChanged)

public:
    ClipboardHistory(Pasteboard &pasteboard, ClipboardMonitor &monitor, QObject *parent = nullptr);

    // Made on first use from the installed platform services; never destroyed.
    static ClipboardHistory &shared();

    bool canRestore() const { return canRestore_; }
    const std::optional<std::u16string> &savedText() const { return savedText_; }

    // Remembers the clipboard's plain string; without one (an image, say) the earlier saved
    // text stays.
    void saveCurrentText();
    // The two halves of saveCurrentText, for a command that keeps the text only once its own
    // write has succeeded: what the clipboard holds now, and keeping it (none changes nothing).
    std::optional<std::u16string> currentText() const;
    void save(std::optional<std::u16string> text);
    // Writes the saved text back unchanged and forgets it; there is no redo. False when nothing
    // was saved or the write failed; a text that could not be written stays saved.
    bool restore();

signals:
    void canRestoreChanged(bool canRestore);

private:
    void setSavedText(std::optional<std::u16string> text);

    Pasteboard &pasteboard_;
    ClipboardMonitor &monitor_;
    bool canRestore_ = false;
    std::optional<std::u16string> savedText_;
};

} // namespace glyphmill
