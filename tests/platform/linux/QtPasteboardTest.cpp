#include "platform/linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <gtest/gtest.h>

#include <algorithm>
namespace glyphmill {
namespace {

using Types = std::vector<std::string>;

PasteboardData bytes(std::string_view text) {
    return PasteboardData(text.begin(), text.end());
}

// The offscreen platform keeps the clipboard inside the process, which is enough to check the
// translation to and from QMimeData; the X11 tests cover other programs.
TEST(QtPasteboard, PlainTextRoundTripsAndEachOwnWriteCountsOnce) {
    QtPasteboard pasteboard;
    std::int64_t count = pasteboard.changeCount();

    pasteboard.clearContents();
    EXPECT_EQ(pasteboard.changeCount(), ++count);
    EXPECT_EQ(pasteboard.types(), Types{});
    EXPECT_EQ(pasteboard.string("text/plain"), std::nullopt);
    EXPECT_EQ(pasteboard.data("text/plain"), std::nullopt);

    pasteboard.setString(u"h\u00e9llo\nw\u00f6rld \u2713", "text/plain");
    EXPECT_EQ(pasteboard.changeCount(), ++count);
    EXPECT_EQ(pasteboard.types(), Types{"text/plain"});
    EXPECT_EQ(pasteboard.string("text/plain"), u"h\u00e9llo\nw\u00f6rld \u2713");
    EXPECT_EQ(pasteboard.data("text/plain"), bytes("h\xc3\xa9llo\nw\xc3\xb6rld \xe2\x9c\x93"));
    EXPECT_EQ(pasteboard.data("text/html"), std::nullopt);
}

TEST(QtPasteboard, SeesWhatOthersPutOnTheClipboard) {
    QtPasteboard pasteboard;
    const std::int64_t before = pasteboard.changeCount();

    auto *copied = new QMimeData;
    copied->setHtml("<b>bold</b>");
    copied->setText("bold");
    QGuiApplication::clipboard()->setMimeData(copied);

    EXPECT_GT(pasteboard.changeCount(), before);
    Types types = pasteboard.types();
    std::sort(types.begin(), types.end());
    EXPECT_EQ(types, (Types{"text/html", "text/plain"}));
    EXPECT_EQ(pasteboard.data("text/html"), bytes("<b>bold</b>"));
    EXPECT_EQ(pasteboard.string("text/html"), u"<b>bold</b>");
    EXPECT_EQ(pasteboard.string("text/plain"), u"bold");
}

} // namespace
} // namespace glyphmill
