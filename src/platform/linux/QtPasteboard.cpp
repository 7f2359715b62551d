#include "platform/linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

namespace glyphmill {

namespace {

QString toQString(std::string_view latin1) {
    return QString::fromLatin1(latin1.data(), static_cast<qsizetype>(latin1.size()));
}

// Qt lists every X target it does not translate under the target's own name: the protocol's
// TARGETS, MULTIPLE, TIMESTAMP and SAVE_TARGETS, and legacy encodings such as STRING or
// COMPOUND_TEXT (the text ones it already reports as text/plain). MIME types always hold a '/',
// those names never do.
bool isMimeType(const QString &format) {
    return format.contains(u'/');
}

} // namespace

QtPasteboard::QtPasteboard() : clipboard_(QGuiApplication::clipboard()) {
    changedConnection_ = QObject::connect(clipboard_, &QClipboard::changed, [this](QClipboard::Mode mode) {
        if (mode == QClipboard::Clipboard && !writing_)
            ++changeCount_;
    });
}

QtPasteboard::~QtPasteboard() {
    QObject::disconnect(changedConnection_);
}

std::vector<std::string> QtPasteboard::types() const {
    std::vector<std::string> names;
    const QMimeData *contents = clipboard_->mimeData(QClipboard::Clipboard);
    if (!contents)
        return names;
    for (const QString &format : contents->formats()) {
        if (!isMimeType(format))
            continue;
        std::string name = format.toStdString();
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(std::move(name));
    }
    return names;
}

std::optional<std::u16string> QtPasteboard::string(std::string_view type) const {
    const QMimeData *contents = clipboard_->mimeData(QClipboard::Clipboard);
    if (!contents)
        return std::nullopt;
    // Qt gathers text/plain from whichever text target the owner offers (UTF8_STRING, STRING…).
    if (type == pasteboardType::plainText) {
        if (!contents->hasText())
            return std::nullopt;
        return contents->text().toStdU16String();
    }
    const QString format = toQString(type);
    if (!contents->hasFormat(format))
        return std::nullopt;
    return QString::fromUtf8(contents->data(format)).toStdU16String();
}

std::optional<PasteboardData> QtPasteboard::data(std::string_view type) const {
    const QMimeData *contents = clipboard_->mimeData(QClipboard::Clipboard);
    const QString format = toQString(type);
    if (!contents || !contents->hasFormat(format))
        return std::nullopt;
    const QByteArray bytes = contents->data(format);
    return PasteboardData(bytes.begin(), bytes.end());
}

void QtPasteboard::clearContents() {
    writing_ = true;
    clipboard_->clear(QClipboard::Clipboard);
    writing_ = false;
    ++changeCount_;
}

void QtPasteboard::setString(std::u16string_view text, std::string_view type) {
    auto *contents = new QMimeData;
    const QString value = QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    if (type == pasteboardType::plainText)
        contents->setText(value);
    else
        contents->setData(toQString(type), value.toUtf8());
    writing_ = true;
    clipboard_->setMimeData(contents, QClipboard::Clipboard); // takes ownership
    writing_ = false;
    ++changeCount_;
}

} // namespace glyphmill
