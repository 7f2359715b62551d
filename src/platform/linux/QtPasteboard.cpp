#include "platform/linux/QtPasteboard.h"

#include <QAbstractNativeEventFilter>
#include <QClipboard>
#include <QEventLoop>
#include <QGuiApplication>
#include <QMimeData>
#include <QTimer>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>

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

// The server answers a property change at once; this only keeps a dead connection from hanging us.
constexpr auto serverTimeDeadline = std::chrono::seconds(5);

// Quits the loop once the server has reported the change of one property on one window. Qt
// handles the event after us and takes over its time as the latest it knows.
class PropertyNotifyWatch final : public QAbstractNativeEventFilter {
public:
    PropertyNotifyWatch(xcb_window_t window, xcb_atom_t property, QEventLoop &loop)
        : window_(window), property_(property), loop_(loop) {}
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *) override {
        if (eventType != "xcb_generic_event_t")
            return false;
        const auto *event = static_cast<const xcb_generic_event_t *>(message);
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            return false;
        const auto *notify = static_cast<const xcb_property_notify_event_t *>(message);
        if (notify->window == window_ && notify->atom == property_ &&
            notify->state == XCB_PROPERTY_NEW_VALUE) {
            seen = true;
            loop_.quit();
        }
        return false;
    }
    bool seen = false;

private:
    xcb_window_t window_;
    xcb_atom_t property_;
    QEventLoop &loop_;
};

xcb_atom_t internAtom(xcb_connection_t *connection, std::string_view name) {
    const xcb_intern_atom_cookie_t cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
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

bool QtPasteboard::clearContents() {
    return writeConfirmed([this] { clipboard_->clear(QClipboard::Clipboard); },
                          [this] {
                              // On X11 an empty clipboard has no owner, which Qt reports as no formats.
                              const QMimeData *held = clipboard_->mimeData(QClipboard::Clipboard);
                              return !held || held->formats().isEmpty();
                          });
}

bool QtPasteboard::setString(std::u16string_view text, std::string_view type) {
    const QString value = QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    const QMimeData *written = nullptr;
    return writeConfirmed(
        [&] {
            // A new object each time: Qt ignores the one it already holds, and deletes it when
            // replaced.
            auto *contents = new QMimeData;
            if (type == pasteboardType::plainText)
                contents->setText(value);
            else
                contents->setData(toQString(type), value.toUtf8());
            written = contents;
            clipboard_->setMimeData(contents, QClipboard::Clipboard); // takes ownership
        },
        // Qt hands out our own object only while the window system names us the owner (on X11 it
        // asks the server each time); otherwise it offers the owner's data.
        [&] { return clipboard_->mimeData(QClipboard::Clipboard) == written; });
}

bool QtPasteboard::writeConfirmed(const std::function<void()> &write, const std::function<bool()> &confirm) {
    ++changeCount_;
    for (int attempt = 0; attempt < 2; ++attempt) {
        writing_ = true;
        write();
        writing_ = false;
        if (confirm())
            return true;
        if (attempt == 0 && !refreshServerTime())
            return false;
    }
    return false;
}

// A zero-length append to a property of our own window changes nothing, yet the server reports
// it with its current time, and Qt takes over the time of the events it handles.
bool QtPasteboard::refreshServerTime() {
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return false; // other window systems have no timestamps to go stale
    if (!timeWindow_) {
        timeWindow_ = std::make_unique<QWindow>();
        timeWindow_->create();
    }
    const auto window = static_cast<xcb_window_t>(timeWindow_->winId());
    const xcb_atom_t property = internAtom(connection, "_GLYPHMILL_SERVER_TIME");
    if (!window || property == XCB_ATOM_NONE)
        return false;

    QEventLoop loop;
    PropertyNotifyWatch watch(window, property, loop);
    QCoreApplication::instance()->installNativeEventFilter(&watch);
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, property, XCB_ATOM_INTEGER, 32, 0, nullptr);
    xcb_flush(connection);
    QTimer::singleShot(serverTimeDeadline, &loop, &QEventLoop::quit);
    if (!watch.seen)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    QCoreApplication::instance()->removeNativeEventFilter(&watch);
    xcb_delete_property(connection, window, property);
    xcb_flush(connection);
    return watch.seen;
}

} // namespace glyphmill
