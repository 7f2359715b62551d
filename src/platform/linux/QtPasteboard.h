// The general clipboard on Linux: Qt's CLIPBOARD selection (X11, Wayland, or the in-process
// clipboard of the offscreen platform).
#pragma once

#include "platform/Pasteboard.h"

#include <QMetaObject>

class QClipboard;

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
    void clearContents() override;
    // Replaces the whole clipboard: Qt offers one set of representations at a time, and the
    // program only ever writes one plain string.
    void setString(std::u16string_view text, std::string_view type) override;
    // Our own writes count once each, even where the clipboard reports nothing (clearing a
    // clipboard another program owns) or reports twice. X11 can still announce our clear once
    // more, later; the count then grows twice for it, which only costs an extra look.
    std::int64_t changeCount() const override { return changeCount_; }

private:
    QClipboard *clipboard_;
    QMetaObject::Connection changedConnection_;
    std::int64_t changeCount_ = 0;
    bool writing_ = false;
};

} // namespace glyphmill
