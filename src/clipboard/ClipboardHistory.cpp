#include "clipboard/ClipboardHistory.h"

#include "clipboard/ClipboardMonitor.h"
#include "clipboard/PasteboardText.h"
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
    if (auto text = pasteboard_.string(pasteboardType::plainText))
        setSavedText(std::move(text));
}

void ClipboardHistory::restore() {
    if (!savedText_)
        return;
    pasteboardText::writePlainText(pasteboard_, *savedText_);
    setSavedText(std::nullopt);
    monitor_.refresh();
}

void ClipboardHistory::setSavedText(std::optional<std::u16string> text) {
    savedText_ = std::move(text);
    emit savedTextChanged();
    canRestore_ = savedText_.has_value();
    emit canRestoreChanged(canRestore_);
}

} // namespace glyphmill
