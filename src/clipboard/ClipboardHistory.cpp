#include "clipboard/ClipboardHistory.h"

#include "clipboard/ClipboardMonitor.h"
#include "clipboard/text/PasteboardText.h"
#include "platform/PlatformServices.h"

namespace glyphmill {

ClipboardHistory::ClipboardHistory(Pasteboard &pasteboard, ClipboardMonitor &monitor, QObject *parent)
    : QObject(parent), pasteboard_(pasteboard), monitor_(monitor) {}

ClipboardHistory &ClipboardHistory::shared() {
    static ClipboardHistory *instance =
        new ClipboardHistory(*platformServices().pasteboard, ClipboardMonitor::shared());
    return *instance;
}

void ClipboardHistory::saveCurrentText() {
    save(currentText());
}

std::optional<std::u16string> ClipboardHistory::currentText() const {
    return pasteboard_.string(pasteboardType::plainText);
}

void ClipboardHistory::save(std::optional<std::u16string> text) {
    if (text)
        setSavedText(std::move(text));
}

bool ClipboardHistory::restore() {
    if (!savedText_)
        return false;
    const bool written = pasteboardText::writePlainText(pasteboard_, *savedText_);
    if (written)
        setSavedText(std::nullopt);
    monitor_.refresh();
    return written;
}

void ClipboardHistory::setSavedText(std::optional<std::u16string> text) {
    savedText_ = std::move(text);
    canRestore_ = savedText_.has_value();
    emit canRestoreChanged(canRestore_);
}

} // namespace glyphmill
