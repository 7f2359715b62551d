// The general clipboard on Linux: Qt's CLIPBOARD selection (X11, Wayland, or the in-process
// clipboard of the offscreen platform).
#pragma once

#include "platform/Pasteboard.h"

#include <QMetaObject>

#include <functional>
#include <memory>

class QClipboard;
class QMimeData;
class QWindow;

namespace glyphmill {

// Needs a QGuiApplication; use it on the main thread only.
class QtPasteboard final : public Pasteboard {
public:
    QtPasteboard();
    ~QtPasteboard() override;
    QtPasteboard(const QtPasteboard &) = delete;
    QtPasteboard &operator=(const QtPasteboard &) = delete;

    // The MIME types on offer, in the owner's order, without the window system's own targets.
    std::vector<std::string> types() const override;
    std::optional<std::u16string> string(std::string_view type) const override;
    std::optional<PasteboardData> data(std::string_view type) const override;
    // Both confirm the result with the window system. On X11 the server silently ignores a claim
    // of the clipboard whose timestamp is older than the current owner's, and Qt claims it with
    // the time of the last event it has handled, which can predate another program's copy; such a
    // write is made once more with a fresh server time.
    bool clearContents() override;
    // Replaces the whole clipboard: Qt offers one set of representations at a time, and the
    // program only ever writes one plain string.
    bool setString(std::u16string_view text, std::string_view type) override;
    // Our own writes count once each, even where the clipboard reports nothing (clearing a
    // clipboard another program owns) or reports twice. X11 can still announce our clear once
    // more, later; the count then grows twice for it, which only costs an extra look.
    std::int64_t changeCount() const override { return changeCount_; }

private:
    // Runs the write, and once more after refreshing the server time when the confirmation
    // fails. Our own writes raise the change count once, however often they are tried.
    bool writeConfirmed(const std::function<void()> &write, const std::function<bool()> &confirm);
    bool refreshServerTime();

    QClipboard *clipboard_;
    // An unmapped window of ours whose property changes bring Qt a fresh server time (X11).
    std::unique_ptr<QWindow> timeWindow_;
    QMetaObject::Connection changedConnection_;
    std::int64_t changeCount_ = 0;
    bool writing_ = false;
};

} // namespace glyphmill
